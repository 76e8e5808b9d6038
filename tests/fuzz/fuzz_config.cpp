// Feeds arbitrary bytes to both configuration readers and to the lookup.
#include "config.h"

#include <QString>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <unistd.h>

namespace {

// The readers take a file name, so every input goes through one scratch
// file, made once and removed at exit.
const std::string& scratchPath()
{
    static const std::string path = [] {
        char name[] = "/tmp/fuzz_config_XXXXXX";
        const int fd = mkstemp(name);
        if (fd < 0)
            std::abort();
        close(fd);
        return std::string(name);
    }();
    static const bool removedAtExit = [] {
        std::atexit([] { std::remove(scratchPath().c_str()); });
        return true;
    }();
    (void)removedAtExit;
    return path;
}

void exerciseLookups(const libconfig::Config& config, const uint8_t* data, size_t size)
{
    static const char* const fixedKeys[] = {
        "zentaro.logger.level", "zentaro", "zentaro.", "..", "", "a.b.c.d.e", "zentaro.a.b",
    };
    for (const char* key : fixedKeys)
        (void)config.lookup(QString::fromLatin1(key));
    const size_t keyLength = size < 64 ? size : 64;
    (void)config.lookup(QString::fromLatin1(reinterpret_cast<const char*>(data), qsizetype(keyLength)));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string& path = scratchPath();
    {
        std::ofstream out(path, std::ios::binary | std::ios::trunc);
        out.write(reinterpret_cast<const char*>(data), std::streamsize(size));
    }
    const QString name = QString::fromLocal8Bit(path.c_str());

    const libconfig::Config cfg(name, QStringLiteral("cfg"));
    exerciseLookups(cfg, data, size);

    const libconfig::Config xml(name, QStringLiteral("xml"));
    exerciseLookups(xml, data, size);
    return 0;
}

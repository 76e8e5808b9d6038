// Feeds arbitrary bytes to both configuration readers and to the lookup.
#include "config.h"

#include <QByteArray>
#include <QString>

#include <cstdint>

namespace {

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
    const QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(data), qsizetype(size));
    for (const char* format : {"cfg", "xml"}) {
        libconfig::Config config;
        config.readData(bytes, QString::fromLatin1(format), QStringLiteral("fuzz.conf"));
        exerciseLookups(config, data, size);
    }
    return 0;
}

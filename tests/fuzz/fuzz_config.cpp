// Feeds arbitrary bytes to both configuration readers, the lookup and the writers.
#include "config.h"

#include <QByteArray>
#include <QString>
#include <QTextStream>

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

// The writers take whatever tree the readers make. The text goes to a
// string: the fuzzer has no files to spare. Indentation grows with the
// depth, so the written text grows with its square: larger inputs, which
// could nest deeper, are left to the readers alone to keep runs quick.
void exerciseWriters(const libconfig::Config& config)
{
    QString text;
    QTextStream ts(&text);
    const libconfig::ConfigNode* fileElement = config.document()->firstChild();
    config.buildConfigFile(fileElement, ts);
    config.buildConfigXmlFile(fileElement, ts);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(data), qsizetype(size));
    for (const char* format : {"cfg", "xml"}) {
        libconfig::Config config;
        config.readData(bytes, QString::fromLatin1(format), QStringLiteral("fuzz.conf"));
        exerciseLookups(config, data, size);
        if (size <= 2048)
            exerciseWriters(config);
    }
    return 0;
}

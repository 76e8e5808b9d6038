#pragma once

// Reads a configuration of one format from the fuzzer's bytes, looks up
// fixed keys and a key made of the same bytes, and writes the tree.
#include "config.h"

#include <QByteArray>
#include <QString>
#include <QTextStream>

#include <cstddef>
#include <cstdint>

// The writers take whatever tree the readers make. The text goes to a
// string: the fuzzer has no files to spare. Indentation grows with the
// depth, so the written text grows with its square: larger inputs, which
// could nest deeper, are left to the readers and the lookup.
inline void writeTree(const libconfig::Config& config, size_t inputSize)
{
    if (inputSize > 2048)
        return;
    QString text;
    QTextStream ts(&text);
    const libconfig::ConfigNode* fileElement = config.document()->firstChild();
    config.buildConfigFile(fileElement, ts);
    config.buildConfigXmlFile(fileElement, ts);
}

inline void readAndLookUp(const uint8_t* data, size_t size, const char* format)
{
    const QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(data), qsizetype(size));
    libconfig::Config config;
    config.readData(bytes, QString::fromLatin1(format), QStringLiteral("fuzz.conf"));
    static const char* const fixedKeys[] = {
        "zentaro.logger.level", "zentaro", "zentaro.", "..", "", "a.b.c.d.e", "zentaro.a.b",
    };
    for (const char* key : fixedKeys)
        (void)config.lookup(QString::fromLatin1(key));
    const size_t keyLength = size < 64 ? size : 64;
    (void)config.lookup(QString::fromLatin1(reinterpret_cast<const char*>(data), qsizetype(keyLength)));
    writeTree(config, size);
}

#pragma once

// Reads a configuration of one format from the fuzzer's bytes and looks up
// fixed keys and a key made of the same bytes.
#include "config.h"

#include <QByteArray>
#include <QString>

#include <cstddef>
#include <cstdint>

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
}

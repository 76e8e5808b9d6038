#pragma once

#include "ztconfiguration.h"

#include <QByteArray>
#include <QString>

#include <memory>

// A configuration holding only the four logger settings; a setting given as
// a null text is left out. For programs that link the app folder.
inline std::unique_ptr<ZTConfiguration> loggerConfiguration(const QString& level, const QString& type,
                                                            const QString& basedir, const QString& filename)
{
    QByteArray text = "zentaro : { logger : {\n";
    const auto add = [&text](const char* key, const QString& value) {
        if (!value.isNull())
            text += QByteArray(key) + " = \"" + value.toLocal8Bit() + "\";\n";
    };
    add("level", level);
    add("type", type);
    add("basedir", basedir);
    add("filename", filename);
    text += "}; };\n";
    return ZTConfiguration::fromText(text);
}

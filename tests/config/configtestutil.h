#pragma once

#include "confignode.h"

#include <QFile>
#include <QString>
#include <QStringList>

#include <ostream>
#include <string_view>

// Readable failure messages for QString comparisons.
inline void PrintTo(const QString& text, std::ostream* os)
{
    *os << '"' << text.toStdString() << '"' << (text.isNull() ? " (null)" : "");
}

// Writes the bytes exactly as given (NUL and 8-bit bytes included).
inline bool writeBytes(const QString& path, std::string_view bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    return file.write(bytes.data(), qint64(bytes.size())) == qint64(bytes.size());
}

// A one-line picture of a tree: tag[name=value,...]{child, child}. The
// root of a document has an empty tag.
inline QString dumpTree(const libconfig::ConfigNode* node)
{
    if (!node)
        return QStringLiteral("null");
    QString out = node->tagName();
    if (!node->attributes().isEmpty()) {
        QStringList settings;
        for (const auto& [name, value] : node->attributes())
            settings << name + QLatin1Char('=') + value;
        out += QLatin1Char('[') + settings.join(QLatin1Char(',')) + QLatin1Char(']');
    }
    if (!node->children().empty()) {
        QStringList children;
        for (const auto& child : node->children())
            children << dumpTree(child.get());
        out += QLatin1Char('{') + children.join(QStringLiteral(", ")) + QLatin1Char('}');
    }
    return out;
}

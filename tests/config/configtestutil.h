#pragma once

#include "confignode.h"

#include <QString>
#include <QStringList>

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

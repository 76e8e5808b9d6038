#include "ztconfiguration.h"

#include <QDir>

ZTConfiguration::ZTConfiguration()
{
    readFile(QDir::homePath() + QLatin1String("/.zentaro/conf/zentaro.conf"), QStringLiteral("cfg"));
}

QString ZTConfiguration::getStrValue(const QString& key) const
{
    // Settings are 8-bit text for the callers: what the local 8-bit encoding
    // cannot carry does not survive, in the key or in the value.
    const QString value = lookup(QString::fromLocal8Bit(key.toLocal8Bit()));
    if (value.isEmpty())
        return value;
    return QString::fromLocal8Bit(value.toLocal8Bit());
}

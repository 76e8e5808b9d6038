#include "ztconfiguration.h"

#include <QDir>

using namespace Qt::StringLiterals;

ZTConfiguration::ZTConfiguration()
    : ZTConfiguration(userFilePath())
{
}

ZTConfiguration::ZTConfiguration(const QString& path, const QString& fileType)
{
    readFile(path, fileType);
}

ZTConfiguration::ZTConfiguration(Unloaded) {}

std::unique_ptr<ZTConfiguration> ZTConfiguration::fromText(const QByteArray& text, const QString& fileType)
{
    std::unique_ptr<ZTConfiguration> configuration(new ZTConfiguration(Unloaded{}));
    configuration->readData(text, fileType);
    return configuration;
}

QString ZTConfiguration::userFilePath()
{
    return QDir::homePath() + "/.zentaro/conf/zentaro.conf"_L1;
}

namespace {

bool isAscii(const QString& text)
{
    for (QChar c : text)
        if (c.unicode() >= 0x80)
            return false;
    return true;
}

} // namespace

QString ZTConfiguration::getStrValue(const QString& key) const
{
    // Settings are 8-bit text for the callers: what the local 8-bit encoding
    // cannot carry does not survive, in the key or in the value. ASCII
    // survives every such encoding unchanged.
    const QString value = lookup(isAscii(key) ? key : QString::fromLocal8Bit(key.toLocal8Bit()));
    if (value.isEmpty() || isAscii(value))
        return value;
    return QString::fromLocal8Bit(value.toLocal8Bit());
}

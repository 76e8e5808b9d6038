#ifndef ZTCONFIGURATION_H
#define ZTCONFIGURATION_H

#include "config.h"

#include <QString>

// The application configuration: the store loaded from the user's
// $HOME/.zentaro/conf/zentaro.conf. Reached through
// SyncSingleton<ZTConfiguration>.
class ZTConfiguration : public libconfig::Config
{
public:
    ZTConfiguration();

    // The text of a dotted key such as "zentaro.logger.level"; empty when
    // the key is not set.
    QString getStrValue(const QString& key) const;
};

#endif

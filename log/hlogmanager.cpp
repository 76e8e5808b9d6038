#include "hlogmanager.h"

#include "logger.h"

using namespace Qt::StringLiterals;

namespace {

QString registryKey(const QString& key)
{
    return key.isEmpty() ? u"default"_s : key;
}

} // namespace

HLogManager::HLogManager(const ZTConfiguration* configuration)
    : configuration(configuration)
{
}

HLogManager::~HLogManager()
{
    // The map may hold null entries (left by getLog): delete skips them.
    for (Logger* logger : std::as_const(loggers))
        delete logger;
}

void HLogManager::set(const QString& name, const QString& key)
{
    auto logger = std::make_unique<Logger>(name, configuration);
    Logger*& slot = loggers[registryKey(key)];
    if (slot)
        replaced.emplace_back(slot);
    slot = logger.release();
}

Logger* HLogManager::getLog(const QString& key)
{
    if (key.isEmpty())
        return loggers[u"default"_s];
    return loggers.value(key, nullptr);
}

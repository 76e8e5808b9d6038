#pragma once

#include <QMap>
#include <QString>

#include <memory>
#include <vector>

class Logger;
class ZTConfiguration;

// The process-wide registry of Loggers by key, reached through
// SyncSingleton<HLogManager>. The key "default" stands for the empty key.
// Callers borrow the Loggers it hands out; the manager deletes them when it
// is destroyed, at process exit for the singleton.
class HLogManager
{
public:
    // Loggers read their settings from `configuration`, which must outlive
    // the manager; without one, from the user's configuration.
    explicit HLogManager(const ZTConfiguration* configuration = nullptr);
    ~HLogManager();

    HLogManager(const HLogManager&) = delete;
    HLogManager& operator=(const HLogManager&) = delete;

    // Stores a new Logger(name) under `key` ("default" when empty). A Logger
    // already there is replaced but stays alive, its file open, because
    // someone may still hold it.
    void set(const QString& name, const QString& key);

    // The Logger under `key`, or null. The empty key asks for "default" and
    // leaves an entry there, null if nothing was set under it.
    Logger* getLog(const QString& key);

private:
    const ZTConfiguration* configuration;
    QMap<QString, Logger*> loggers;
    // Loggers that set() replaced: unreachable through the map, still alive.
    std::vector<std::unique_ptr<Logger>> replaced;
};

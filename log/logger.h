#pragma once

#include <QString>

#include <memory>

class QFile;
class QTextStream;
class ZTConfiguration;

// Writes levelled, time-stamped lines to the log file the configuration
// names ("zentaro.logger.basedir" and "zentaro.logger.filename"), opened as
// "zentaro.logger.type" says and filtered by "zentaro.logger.level".
// Every line reaches the file as soon as it is written.
class Logger
{
public:
    // The number orders the levels and indexes their printed names.
    enum Level : int { DEBUG = 0, INFO = 1, WARNING = 2, ERROR = 3, FATAL = 4 };

    // The name is accepted for the callers' sake and not used: every Logger
    // reads the same four keys and so writes to the same file. Settings
    // come from `configuration`, which must outlive the constructor; without
    // one, from the user's configuration (the process singleton).
    explicit Logger(const QString& name, const ZTConfiguration* configuration = nullptr);
    ~Logger();

    Logger(const Logger&) = delete;
    Logger& operator=(const Logger&) = delete;

    // "DEBUG", "INFO", "WARNING", "ERROR" or "FATAL" in any case; any other
    // text sets DEBUG.
    void setLevel(const QString& levelName);
    // "APPEND" or "OVERWRITE" in any case opens the file anew; any other
    // text leaves it closed, and lines written then are lost.
    void setType(const QString& type);

    void write(Level lvl, const QString& text);
    void fatal(const QString& text);
    void error(const QString& text);
    void warning(const QString& text);
    void info(const QString& text);
    void debug(const QString& text);

    QString logFileName() const { return fileName; }

private:
    std::unique_ptr<QFile> file;
    std::unique_ptr<QTextStream> stream;
    Level level = DEBUG;
    QString fileName;
};

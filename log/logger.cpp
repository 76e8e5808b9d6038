#include "logger.h"

#include "diagnostics.h"
#include "syncsingleton.h"
#include "ztconfiguration.h"

#include <QDateTime>
#include <QFile>
#include <QTextStream>

#include <array>

using namespace Qt::StringLiterals;

namespace {

// Indexed by Logger::Level.
constexpr std::array<QLatin1StringView, 5> levelNames = {
    "DEBUG"_L1, "INFO"_L1, "WARNING"_L1, "ERROR"_L1, "FATAL"_L1,
};

QLatin1StringView levelName(Logger::Level lvl)
{
    const int index = int(lvl);
    return index >= 0 && index < int(levelNames.size()) ? levelNames[index] : QLatin1StringView();
}

} // namespace

Logger::Logger(const QString& /*name*/, const ZTConfiguration* configuration)
{
    const ZTConfiguration* settings = configuration ? configuration : SyncSingleton<ZTConfiguration>::instance();
    setLevel(settings->getStrValue(u"zentaro.logger.level"_s));
    // Joined as it stands: an empty base gives "/name", a base ending in "/"
    // a doubled slash.
    fileName = settings->getStrValue(u"zentaro.logger.basedir"_s) + u'/'
        + settings->getStrValue(u"zentaro.logger.filename"_s);
    file = std::make_unique<QFile>(fileName);
    setType(settings->getStrValue(u"zentaro.logger.type"_s));
    stream = std::make_unique<QTextStream>(file.get());
    stream->setEncoding(QStringConverter::System);
    debug(u"Start Logger"_s);
}

Logger::~Logger()
{
    // The stream flushed every line already; it goes before the file it
    // writes to.
    file->close();
    stream.reset();
    file.reset();
}

void Logger::setLevel(const QString& levelName)
{
    level = DEBUG;
    for (std::size_t i = 0; i < levelNames.size(); ++i) {
        if (levelName.compare(levelNames[i], Qt::CaseInsensitive) == 0)
            level = Level(i);
    }
}

void Logger::setType(const QString& type)
{
    QIODevice::OpenMode mode;
    if (type.compare("APPEND"_L1, Qt::CaseInsensitive) == 0)
        mode = QIODevice::Append;
    else if (type.compare("OVERWRITE"_L1, Qt::CaseInsensitive) == 0)
        mode = QIODevice::WriteOnly | QIODevice::Truncate;
    else
        return;

    if (file->isOpen()) {
        if (stream)
            stream->flush();
        file->close();
    }
    if (!file->open(mode))
        printDiagnostic({"Error in the method Logger::setType(", type.toLocal8Bit(), ")"});
    if (stream)
        stream->setDevice(file.get()); // forget any state of the earlier opening
}

void Logger::write(Level lvl, const QString& text)
{
    if (level > lvl)
        return;
    // A closed file (unknown type, failed open) loses the line quietly
    // rather than having the stream complain about it.
    if (!file->isOpen())
        return;
    const QString stamp = QDateTime::currentDateTime().toString(u"MM-dd-yyyy hh:mm:ss:zzz"_s);
    *stream << '[' << stamp << "] " << levelName(lvl) << ": " << text << '\n';
    stream->flush();
}

void Logger::fatal(const QString& text) { write(FATAL, text); }
void Logger::error(const QString& text) { write(ERROR, text); }
void Logger::warning(const QString& text) { write(WARNING, text); }
void Logger::info(const QString& text) { write(INFO, text); }
void Logger::debug(const QString& text) { write(DEBUG, text); }

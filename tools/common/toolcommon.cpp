#include "toolcommon.h"

#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>

#include <cstdio>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

const char* programName = "";

} // namespace

void setProgram(const char* name, const char* version)
{
    programName = name;
    QCoreApplication::setApplicationName(QString::fromLatin1(name));
    QCoreApplication::setApplicationVersion(QString::fromLatin1(version));
}

void printError(const QString& message)
{
    const QByteArray line = (QCoreApplication::applicationName() + ": "_L1 + message + u'\n').toLocal8Bit();
    std::fwrite(line.constData(), 1, std::size_t(line.size()), stderr);
}

void printError(const char* message)
{
    std::fputs(programName, stderr);
    std::fputs(": ", stderr);
    std::fputs(message, stderr);
    std::fputc('\n', stderr);
}

int usageError(const QString& message)
{
    printError(message + " (see --help)"_L1);
    return exitUsage;
}

void addHelpAndVersion(QCommandLineParser& parser)
{
    parser.addOption(QCommandLineOption({u"h"_s, u"help"_s}, u"Show this help."_s));
    parser.addOption(QCommandLineOption({u"v"_s, u"version"_s}, u"Show the version."_s));
}

std::optional<int> answerHelpOrVersion(const QCommandLineParser& parser)
{
    QString text;
    if (parser.isSet(u"help"_s)) {
        // Before there is an application object the parser does not know
        // the program's name.
        text = parser.helpText().replace("<executable_name>"_L1, QCoreApplication::applicationName());
    } else if (parser.isSet(u"version"_s)) {
        text = QCoreApplication::applicationName() + u' ' + QCoreApplication::applicationVersion() + u'\n';
    } else {
        return std::nullopt;
    }
    const QByteArray bytes = text.toLocal8Bit();
    std::fwrite(bytes.constData(), 1, std::size_t(bytes.size()), stdout);
    return exitSuccess;
}

std::optional<unsigned> wholeNumber(const QCommandLineParser& parser, const QCommandLineOption& option,
                                    QString* error, unsigned minimum, unsigned maximum)
{
    const QString text = parser.value(option);
    bool ok = false;
    const unsigned value = text.toUInt(&ok);
    if (ok && value >= minimum && value <= maximum)
        return value;
    *error = "--"_L1 + option.names().constLast() + ": '"_L1 + text + "' is not a whole number"_L1;
    if (maximum != 0xffffffffu)
        *error += " from "_L1 + QString::number(minimum) + " to "_L1 + QString::number(maximum);
    else if (minimum != 0)
        *error += " of "_L1 + QString::number(minimum) + " or more"_L1;
    return std::nullopt;
}

bool sameFile(const QString& first, const QString& second)
{
    struct stat a{}, b{};
    return ::stat(QFile::encodeName(first).constData(), &a) == 0
        && ::stat(QFile::encodeName(second).constData(), &b) == 0 && a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

bool displayAvailable()
{
    // "offscreen:fontengine=freetype" is the offscreen platform too.
    const QString platform = qEnvironmentVariable("QT_QPA_PLATFORM").section(u':', 0, 0);
    if (platform == "offscreen"_L1 || platform == "minimal"_L1)
        return false;
    return !platform.isEmpty() || !qEnvironmentVariableIsEmpty("DISPLAY")
        || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

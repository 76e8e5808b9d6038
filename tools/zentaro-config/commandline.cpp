#include "commandline.h"

#include "toolcommon.h"
#include "ztconfiguration.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

// How many words follow each command.
int argumentCount(const QString& command)
{
    if (command == "get"_L1 || command == "write-cfg"_L1 || command == "write-xml"_L1)
        return 1;
    if (command == "set"_L1)
        return 2;
    if (command == "dump"_L1 || command == "edit"_L1)
        return 0;
    return -1;
}

// A file named *.xml is read as XML, any other as "cfg" text.
QString formatFromName(const QString& path)
{
    return QFileInfo(path).suffix().compare("xml"_L1, Qt::CaseInsensitive) == 0 ? u"xml"_s : u"cfg"_s;
}

} // namespace

CommandLine::CommandLine()
    : m_fileOption({u"f"_s, u"file"_s},
                   u"Work on the configuration file PATH instead of $HOME/.zentaro/conf/zentaro.conf."_s, u"PATH"_s)
    , m_formatOption(u"format"_s, u"Read PATH as cfg or xml (default: xml for a name ending in .xml, else cfg)."_s,
                     u"cfg|xml"_s)
    , m_screenshotOption(u"screenshot"_s, u"edit: save a picture of the window as PNG and quit."_s, u"PNG"_s)
{
    m_screenshotOption.setFlags(QCommandLineOption::HiddenFromHelp);
    m_parser.setApplicationDescription(
        u"Reads, converts and edits the suite's configuration.\n\n"
        "Commands:\n"
        "  get KEY          print the value of a dotted key such as zentaro.logger.level\n"
        "                   (exit status 1 when the key has no value)\n"
        "  set KEY VALUE    change the value of a key in a cfg file, or add the key;\n"
        "                   nothing else in the file changes\n"
        "  dump             print the whole tree\n"
        "  write-cfg FILE   write the configuration to FILE as cfg text\n"
        "  write-xml FILE   write the configuration to FILE as XML\n"
        "  edit             open the configuration in an editor window"_s);
    m_parser.addOptions({m_fileOption, m_formatOption, m_screenshotOption});
    addHelpAndVersion(m_parser);
    m_parser.addPositionalArgument(u"command"_s, u"get KEY, set KEY VALUE, dump, write-cfg FILE, write-xml FILE or edit."_s,
                                   u"command [arguments]"_s);
}

bool CommandLine::parse(const QStringList& arguments)
{
    if (!m_parser.parse(arguments)) {
        m_error = m_parser.errorText();
        return false;
    }
    if (m_parser.isSet(u"help"_s) || m_parser.isSet(u"version"_s))
        return true;

    m_invocation.file = m_parser.isSet(m_fileOption) ? m_parser.value(m_fileOption) : ZTConfiguration::userFilePath();
    if (m_invocation.file.isEmpty()) {
        m_error = u"the file name is empty"_s;
        return false;
    }
    m_invocation.format = m_parser.isSet(m_formatOption) ? m_parser.value(m_formatOption)
                                                          : formatFromName(m_invocation.file);
    if (m_invocation.format != "cfg"_L1 && m_invocation.format != "xml"_L1) {
        m_error = u"unknown format \"%1\" (cfg or xml)"_s.arg(m_invocation.format);
        return false;
    }
    return readCommand(m_parser.positionalArguments());
}

bool CommandLine::readCommand(const QStringList& words)
{
    if (words.isEmpty()) {
        m_error = u"no command given"_s;
        return false;
    }
    m_invocation.command = words.first();
    const int wanted = argumentCount(m_invocation.command);
    if (wanted < 0) {
        m_error = u"unknown command \"%1\""_s.arg(m_invocation.command);
        return false;
    }
    if (words.size() - 1 != wanted) {
        m_error = wanted == 0 ? u"%1 takes no argument"_s.arg(m_invocation.command)
            : wanted == 1     ? u"%1 takes one argument"_s.arg(m_invocation.command)
                              : u"%1 takes two arguments"_s.arg(m_invocation.command);
        return false;
    }
    if (wanted >= 1)
        m_invocation.argument = words.at(1);
    if (wanted == 2)
        m_invocation.value = words.at(2);
    // An empty name would make the writers fall back to the file being read.
    if (m_invocation.command.startsWith("write-"_L1) && m_invocation.argument.isEmpty()) {
        m_error = u"%1 needs a file name"_s.arg(m_invocation.command);
        return false;
    }
    if (m_parser.isSet(m_screenshotOption)) {
        if (m_invocation.command != "edit"_L1) {
            m_error = u"--screenshot goes with edit only"_s;
            return false;
        }
        m_invocation.screenshot = m_parser.value(m_screenshotOption);
    }
    return true;
}

QString CommandLine::usageLine()
{
    return u"Usage: zentaro-config [--file PATH] [--format cfg|xml] get KEY | set KEY VALUE | dump | write-cfg FILE | write-xml FILE | edit"_s;
}

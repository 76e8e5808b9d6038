// zentaro-send [options] PRINTFILE DEVICE
//
// Copies a print file line by line to a line printer, a serial port, a FIFO
// or a file, pausing between lines and asking for a new sheet when one is
// full, or sends one page of it. Errors are one line on standard error;
// the exit status is 0 on success, 1 when the copy failed, 2 for a wrong
// command line.

#include "hlibrary.h"
#include "catalogue.h"
#include "syncsingleton.h"
#include "ztconfiguration.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QTranslator>

#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>

using namespace Qt::StringLiterals;

namespace {

constexpr int copyFailed = 1;
constexpr int wrongUsage = 2;

const char programName[] = "zentaro-send";

void printError(const QString& message)
{
    std::fprintf(stderr, "%s: %s\n", programName, message.toLocal8Bit().constData());
}

struct Request
{
    QString printFile;
    QString device;
    unsigned pauseMs = 0;
    unsigned linesPerSheet = 0;
    // The second form: one page.
    std::optional<unsigned> page;
    unsigned linesPerPage = 0;
    // A count given on the command line, or a document type whose count
    // the configuration holds.
    unsigned copies = 1;
    QString copiesOf;
    bool textPrompt = false;
};

struct Options
{
    QCommandLineOption linesPerSheet{u"lines-per-sheet"_s,
                                     u"Ask for a new sheet after every N lines (the first sheet takes N + 1); "
                                     "0, the default, never asks."_s,
                                     u"N"_s};
    QCommandLineOption pause{u"pause"_s, u"Pause MS milliseconds after each line (default 0)."_s, u"MS"_s};
    QCommandLineOption page{u"page"_s, u"Send only page P, counted from 0, of --lines-per-page lines."_s, u"P"_s};
    QCommandLineOption linesPerPage{u"lines-per-page"_s,
                                    u"Lines of a page for --page; 0 sends the whole file."_s, u"N"_s};
    QCommandLineOption copies{u"copies"_s, u"Send N copies (default 1)."_s, u"N"_s};
    QCommandLineOption copiesOf{u"copies-of"_s,
                                u"Send as many copies as the configuration sets for the document type TYPE "
                                "(order, prefiscal, fiscal, receipt, invoice, delivery, report); 1 when it "
                                "sets none."_s,
                                u"TYPE"_s};
    QCommandLineOption textPrompt{u"text-prompt"_s,
                                  u"Ask for a new sheet on the terminal even when a display is available."_s};
};

// A whole number from an option; an error message when it is not one.
std::optional<unsigned> wholeNumber(const QCommandLineParser& parser, const QCommandLineOption& option,
                                    QString* error)
{
    bool ok = false;
    const QString text = parser.value(option);
    const unsigned value = text.toUInt(&ok);
    if (!ok)
        *error = "--"_L1 + option.names().constFirst() + ": '"_L1 + text + "' is not a whole number"_L1;
    return ok ? std::optional(value) : std::nullopt;
}

// Reads the command line into a request; false, with `error` set, when it
// is wrong.
bool readRequest(const QCommandLineParser& parser, const Options& options, Request* request, QString* error)
{
    const QStringList files = parser.positionalArguments();
    if (files.size() != 2) {
        *error = files.size() < 2 ? u"needs a PRINTFILE and a DEVICE"_s
                                  : "unexpected argument '"_L1 + files.at(2) + u'\'';
        return false;
    }
    request->printFile = files.at(0);
    request->device = files.at(1);

    if (parser.isSet(options.page) && parser.isSet(options.linesPerSheet)) {
        *error = u"--page sends one page and cannot take --lines-per-sheet"_s;
        return false;
    }
    if (parser.isSet(options.linesPerPage) && !parser.isSet(options.page)) {
        *error = u"--lines-per-page needs --page"_s;
        return false;
    }
    if (parser.isSet(options.page) && !parser.isSet(options.linesPerPage)) {
        *error = u"--page needs --lines-per-page"_s;
        return false;
    }
    if (parser.isSet(options.copies) && parser.isSet(options.copiesOf)) {
        *error = u"--copies and --copies-of cannot be combined"_s;
        return false;
    }

    // Each option that is set must be a whole number.
    const std::pair<const QCommandLineOption*, unsigned*> numbers[] = {
        {&options.linesPerSheet, &request->linesPerSheet},
        {&options.pause, &request->pauseMs},
        {&options.linesPerPage, &request->linesPerPage},
        {&options.copies, &request->copies},
    };
    for (const auto& [option, target] : numbers) {
        if (!parser.isSet(*option))
            continue;
        const std::optional<unsigned> value = wholeNumber(parser, *option, error);
        if (!value)
            return false;
        *target = *value;
    }
    if (parser.isSet(options.page)) {
        request->page = wholeNumber(parser, options.page, error);
        if (!request->page)
            return false;
    }
    request->copiesOf = parser.value(options.copiesOf);
    request->textPrompt = parser.isSet(options.textPrompt);
    return true;
}

// A display to show the paper prompt on.
bool graphicalSession()
{
    return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")
        || !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
}

// Lines of a file as the copy counts them: pieces of at most 127 bytes.
std::uint64_t countLines(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    char buffer[128];
    std::uint64_t lines = 0;
    while (file.readLine(buffer, sizeof buffer) > 0)
        ++lines;
    return lines;
}

bool sendOnce(const Request& request)
{
    if (request.page)
        return HLibrary::copy(request.printFile, request.device, request.linesPerPage, request.pauseMs,
                              *request.page);
    return HLibrary::copy(request.printFile, request.device, request.linesPerSheet, request.pauseMs);
}

// Why a copy failed once the print file was found readable.
QString copyFailure(const Request& request)
{
    if (request.page) {
        const std::uint64_t before = std::uint64_t(request.linesPerPage) * *request.page;
        if (before > 0 && countLines(request.printFile) <= before)
            return request.printFile + " has no page "_L1 + QString::number(*request.page) + " of "_L1
                + QString::number(request.linesPerPage) + " lines"_L1;
    }
    return "cannot write to "_L1 + request.device;
}

unsigned copiesToSend(const Request& request)
{
    if (request.copiesOf.isEmpty())
        return request.copies;
    bool ok = false;
    const unsigned configured = HLibrary::copyNumber(request.copiesOf).trimmed().toUInt(&ok);
    return ok ? configured : 1;
}

int send(const Request& request)
{
    QFile printFile(request.printFile);
    if (!printFile.open(QIODevice::ReadOnly)) {
        printError("cannot read "_L1 + request.printFile + ": "_L1 + printFile.errorString());
        return copyFailed;
    }
    printFile.close();

    const unsigned copies = copiesToSend(request);
    for (unsigned copy = 0; copy < copies; ++copy) {
        if (!sendOnce(request)) {
            printError(copyFailure(request));
            return copyFailed;
        }
    }
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));

    QCoreApplication::setApplicationName(QString::fromLatin1(programName));
    QCoreApplication::setApplicationVersion(QStringLiteral(ZENTARO_VERSION));
    QCommandLineParser parser;
    parser.setApplicationDescription(
        u"Sends PRINTFILE to DEVICE (a line printer such as /dev/usb/lp0, a serial port, a FIFO or a file) "
        "line by line."_s);
    // Qt's own help option would also offer Qt's options, which a tool
    // that may have no display does not take.
    const QCommandLineOption help({u"h"_s, u"help"_s}, u"Displays this help."_s);
    parser.addOption(help);
    const QCommandLineOption version = parser.addVersionOption();
    const Options options;
    parser.addOptions({options.linesPerSheet, options.pause, options.page, options.linesPerPage, options.copies,
                       options.copiesOf, options.textPrompt});
    parser.addPositionalArgument(u"PRINTFILE"_s, u"The print file to send."_s);
    parser.addPositionalArgument(u"DEVICE"_s, u"Where to send it."_s);

    if (!parser.parse(arguments)) {
        printError(parser.errorText());
        return wrongUsage;
    }
    if (parser.isSet(help)) {
        // The command line is parsed before there is an application object
        // (its kind depends on the options), so the help cannot know the
        // program's name by itself.
        QString text = parser.helpText();
        text.replace("<executable_name>"_L1, QLatin1StringView(programName));
        std::fputs(text.toLocal8Bit().constData(), stdout);
        return 0;
    }
    if (parser.isSet(version)) {
        std::printf("%s %s\n", programName, ZENTARO_VERSION);
        return 0;
    }
    Request request;
    QString error;
    if (!readRequest(parser, options, &request, &error)) {
        printError(error + " (see --help)"_L1);
        return wrongUsage;
    }

    // The paper prompt is a message box in a graphical session and a line
    // on the terminal otherwise; the kind of application decides which.
    std::unique_ptr<QCoreApplication> application;
    if (graphicalSession() && !request.textPrompt)
        application = std::make_unique<QApplication>(argc, argv);
    else
        application = std::make_unique<QCoreApplication>(argc, argv);

    QTranslator translator;
    loadTranslation(translator, *SyncSingleton<ZTConfiguration>::instance());
    QCoreApplication::installTranslator(&translator);

    return send(request);
}

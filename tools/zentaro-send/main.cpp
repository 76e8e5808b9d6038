// zentaro-send [options] PRINTFILE DEVICE
//
// Copies a print file line by line to a line printer, a serial port, a FIFO
// or a file, pausing between lines and asking for a new sheet when one is
// full, or sends one page of it. Errors are one line on standard error;
// the exit status is 0 on success, 1 when the print file could not be sent,
// 2 for a wrong command line, 3 when the device did not take it (a printer
// that is off, missing or out of paper).

#include "diagnostics.h"
#include "hlibrary.h"
#include "catalogue.h"
#include "syncsingleton.h"
#include "toolcommon.h"
#include "ztconfiguration.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFileInfo>
#include <QTranslator>

#include <memory>
#include <optional>

using namespace Qt::StringLiterals;

namespace {

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

    // Each option that is set must be a whole number; no copies at all is
    // a slip, not a request.
    const struct
    {
        const QCommandLineOption* option;
        unsigned* target;
        unsigned minimum;
    } numbers[] = {
        {&options.linesPerSheet, &request->linesPerSheet, 0},
        {&options.pause, &request->pauseMs, 0},
        {&options.linesPerPage, &request->linesPerPage, 0},
        {&options.copies, &request->copies, 1},
    };
    for (const auto& [option, target, minimum] : numbers) {
        if (!parser.isSet(*option))
            continue;
        const std::optional<unsigned> value = wholeNumber(parser, *option, error, minimum);
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

HLibrary::CopyResult sendOnce(const Request& request)
{
    if (request.page)
        return HLibrary::copyWithResult(request.printFile, request.device, request.linesPerPage, request.pauseMs,
                                        *request.page);
    return HLibrary::copyWithResult(request.printFile, request.device, request.linesPerSheet, request.pauseMs);
}

// The error line for a failed copy, and the status to exit with.
int reportFailure(const Request& request, const HLibrary::CopyResult& result)
{
    using Failure = HLibrary::CopyResult::Failure;
    switch (result.failure) {
    case Failure::SourceUnreadable:
        printError("cannot read "_L1 + request.printFile + ": "_L1 + result.errorText);
        return exitFailure;
    case Failure::NoSuchPage:
        printError(request.printFile + " has no page "_L1 + QString::number(*request.page) + " of "_L1
                   + QString::number(request.linesPerPage) + " lines"_L1);
        return exitFailure;
    case Failure::DestinationUnopenable:
        printError("cannot open "_L1 + request.device + ": "_L1 + result.errorText);
        return exitPrinterNotReady;
    case Failure::WriteFailed:
        printError("cannot write to "_L1 + request.device + " after "_L1 + QString::number(result.linesWritten)
                   + " lines ("_L1 + QString::number(result.bytesWritten) + " bytes): "_L1 + result.errorText);
        return exitPrinterNotReady;
    case Failure::None:
        break;
    }
    return exitSuccess;
}

// What the suite's code reports while reading settings goes to standard
// error as the program's own error lines: standard output carries the
// paper prompt.
void passOn(const DiagnosticCapture& capture)
{
    for (const QByteArray& line : capture.lines())
        printError(QString::fromLocal8Bit(line));
}

// Reads the user's configuration and loads the paper prompt's language.
void loadSettings(QTranslator* translator)
{
    const QString path = ZTConfiguration::userFilePath();
    DiagnosticCapture capture;
    loadTranslation(*translator, *SyncSingleton<ZTConfiguration>::instance());
    if (QFileInfo(path).isFile())
        passOn(capture);
    else
        printError("no configuration at "_L1 + path + "; sending with the defaults"_L1);
}

unsigned copiesToSend(const Request& request)
{
    if (request.copiesOf.isEmpty())
        return request.copies;
    DiagnosticCapture capture;
    bool ok = false;
    const unsigned configured = HLibrary::copyNumber(request.copiesOf).trimmed().toUInt(&ok);
    passOn(capture);
    return ok ? configured : 1;
}

int send(const Request& request)
{
    const unsigned copies = copiesToSend(request);
    for (unsigned copy = 0; copy < copies; ++copy) {
        const HLibrary::CopyResult result = sendOnce(request);
        if (!result.succeeded())
            return reportFailure(request, result);
    }
    return exitSuccess;
}

} // namespace

int main(int argc, char** argv)
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));

    setProgram("zentaro-send", ZENTARO_VERSION);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        u"Sends PRINTFILE to DEVICE (a line printer such as /dev/usb/lp0, a serial port, a FIFO or a file) "
        "line by line."_s);
    addHelpAndVersion(parser);
    const Options options;
    parser.addOptions({options.linesPerSheet, options.pause, options.page, options.linesPerPage, options.copies,
                       options.copiesOf, options.textPrompt});
    parser.addPositionalArgument(u"PRINTFILE"_s, u"The print file to send."_s);
    parser.addPositionalArgument(u"DEVICE"_s, u"Where to send it."_s);

    if (!parser.parse(arguments))
        return usageError(parser.errorText());
    if (const std::optional<int> status = answerHelpOrVersion(parser))
        return *status;
    Request request;
    QString error;
    if (!readRequest(parser, options, &request, &error))
        return usageError(error);

    // The paper prompt is a message box where someone sees it and a line on
    // the terminal otherwise; the kind of application decides which.
    std::unique_ptr<QCoreApplication> application;
    if (displayAvailable() && !request.textPrompt)
        application = std::make_unique<QApplication>(argc, argv);
    else
        application = std::make_unique<QCoreApplication>(argc, argv);

    QTranslator translator;
    loadSettings(&translator);
    QCoreApplication::installTranslator(&translator);

    return send(request);
}

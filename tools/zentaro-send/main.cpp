// zentaro-send [options] PRINTFILE DESTINATION
// zentaro-send [options] --printer NAME PRINTFILE
// zentaro-send [options] --status DESTINATION
//
// Sends a print file to a printer: a device path, a network printer
// (socket://HOST[:PORT]), a CUPS queue (cups:QUEUE) or standard output (-),
// pausing between lines and asking for a new sheet when one is full, or
// sends one page of it. Asks an ESC/POS printer for its status. Errors are
// one line on standard error; the exit status is 0 when everything was
// delivered, 1 when it was not (or not wholly), 2 for a wrong command line,
// 3 when the printer is not ready (not there, refusing, out of paper).

#include "destination.h"
#include "diagnostics.h"
#include "documenttypes.h"
#include "hlibrary.h"
#include "catalogue.h"
#include "sender.h"
#include "syncsingleton.h"
#include "toolcommon.h"
#include "ztconfiguration.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFileInfo>
#include <QTranslator>

#include <csignal>
#include <cstdio>
#include <memory>
#include <optional>
#include <thread>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using delivery::Milliseconds;

namespace {

struct Request
{
    QString printFile;
    QString destination; // as given, or the named printer's
    QString printer;
    QString configPath;
    pagedcopy::Paging paging;
    // A count given on the command line, or a document type whose count
    // the configuration holds.
    unsigned copies = 1;
    QString copiesOf;
    bool textPrompt = false;
    bool statusOnly = false;
    bool check = false;
    bool wait = false;
    Milliseconds timeout{10000};
    unsigned retries = 2;
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
                                u"Send as many copies as the configuration sets for the document type TYPE ("_s
                                    + DocumentTypes::names() + "); 1 when it sets none."_L1,
                                u"TYPE"_s};
    QCommandLineOption textPrompt{u"text-prompt"_s,
                                  u"Ask for a new sheet on the terminal even when a display is available."_s};
    QCommandLineOption printer{u"printer"_s,
                               u"Send to the printer NAME of the configuration (zentaro.printers.NAME.uri)."_s,
                               u"NAME"_s};
    QCommandLineOption config{u"config"_s,
                              u"Read the settings from PATH instead of ~/.zentaro/conf/zentaro.conf."_s, u"PATH"_s};
    QCommandLineOption status{u"status"_s,
                              u"Print the printer's status, one fact a line, instead of sending: exit 0 when it "
                              "can print, 3 when it cannot, 1 when it does not answer."_s};
    QCommandLineOption check{u"check"_s,
                             u"Ask the printer's status first and send nothing to one that cannot print."_s};
    QCommandLineOption wait{u"wait"_s, u"For a CUPS queue: wait until the job has ended and report how."_s};
    QCommandLineOption timeout{u"timeout"_s,
                               u"Give up on a printer that does not connect, answer or take data within SECONDS "
                               "(default 10)."_s,
                               u"SECONDS"_s};
    QCommandLineOption retries{u"retries"_s,
                               u"Try N more times, with a growing pause, when the printer cannot be reached and "
                               "nothing was sent (default 2)."_s,
                               u"N"_s};
};

// Reads the command line into a request; false, with `error` set, when it
// is wrong.
bool readRequest(const QCommandLineParser& parser, const Options& options, Request* request, QString* error)
{
    request->statusOnly = parser.isSet(options.status);
    request->printer = parser.value(options.printer);
    const QStringList files = parser.positionalArguments();
    // What the positional arguments are: the print file unless only the
    // status is asked, and the destination unless a named printer is.
    const qsizetype wanted = (request->statusOnly ? 0 : 1) + (request->printer.isEmpty() ? 1 : 0);
    if (files.size() != wanted) {
        if (files.size() > wanted)
            *error = "unexpected argument '"_L1 + files.at(wanted) + u'\'';
        else if (request->statusOnly)
            *error = u"--status needs a DESTINATION or --printer"_s;
        else
            *error = request->printer.isEmpty() ? u"needs a PRINTFILE and a DESTINATION"_s : u"needs a PRINTFILE"_s;
        return false;
    }
    if (!request->statusOnly)
        request->printFile = files.at(0);
    if (request->printer.isEmpty())
        request->destination = files.constLast();

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
    request->copiesOf = parser.value(options.copiesOf);
    if (!request->copiesOf.isEmpty() && !DocumentTypes::find(request->copiesOf)) {
        *error = "--copies-of: no document type '"_L1 + request->copiesOf + u'\'';
        return false;
    }

    // Each option that is set must be a whole number; no copies at all is
    // a slip, not a request, and so is a printer given no time at all.
    unsigned timeoutSeconds = 10;
    const struct
    {
        const QCommandLineOption* option;
        unsigned* target;
        unsigned minimum;
        unsigned maximum;
    } numbers[] = {
        {&options.linesPerSheet, &request->paging.linesPerSheet, 0, 0xffffffffu},
        {&options.pause, &request->paging.pauseMs, 0, 0xffffffffu},
        {&options.linesPerPage, &request->paging.linesPerPage, 0, 0xffffffffu},
        {&options.copies, &request->copies, 1, 0xffffffffu},
        {&options.timeout, &timeoutSeconds, 1, 86400},
        {&options.retries, &request->retries, 0, 100},
    };
    for (const auto& [option, target, minimum, maximum] : numbers) {
        if (!parser.isSet(*option))
            continue;
        const std::optional<unsigned> value = wholeNumber(parser, *option, error, minimum, maximum);
        if (!value)
            return false;
        *target = *value;
    }
    request->timeout = Milliseconds(std::uint64_t(timeoutSeconds) * 1000);
    if (parser.isSet(options.page)) {
        request->paging.page = wholeNumber(parser, options.page, error);
        if (!request->paging.page)
            return false;
    }
    request->textPrompt = parser.isSet(options.textPrompt);
    request->check = parser.isSet(options.check);
    request->wait = parser.isSet(options.wait);
    request->configPath = parser.value(options.config);
    return true;
}

// What the suite's code reports while reading settings goes to standard
// error as the program's own error lines: standard output carries the
// paper prompt.
void passOn(const DiagnosticCapture& capture)
{
    for (const QByteArray& line : capture.lines())
        printError(QString::fromLocal8Bit(line));
}

// The settings: the file named on the command line, or the user's, whose
// absence is worth a line but not a failure.
const ZTConfiguration* loadSettings(const Request& request, std::unique_ptr<ZTConfiguration>* owned,
                                    QTranslator* translator)
{
    DiagnosticCapture capture;
    const ZTConfiguration* configuration = nullptr;
    if (!request.configPath.isEmpty()) {
        *owned = std::make_unique<ZTConfiguration>(request.configPath);
        configuration = owned->get();
    } else {
        configuration = SyncSingleton<ZTConfiguration>::instance();
    }
    loadTranslation(*translator, *configuration);
    const QString path = request.configPath.isEmpty() ? ZTConfiguration::userFilePath() : request.configPath;
    if (QFileInfo(path).isFile())
        passOn(capture);
    else
        printError("no configuration at "_L1 + path + "; sending with the defaults"_L1);
    return configuration;
}

unsigned copiesToSend(const Request& request, const ZTConfiguration* configuration)
{
    if (request.copiesOf.isEmpty())
        return request.copies;
    DiagnosticCapture capture;
    bool ok = false;
    const unsigned configured = HLibrary::copyNumber(request.copiesOf, configuration).trimmed().toUInt(&ok);
    passOn(capture);
    return ok ? configured : 1;
}

QString lineCount(const pagedcopy::Result& result)
{
    return QString::number(result.linesWritten) + " lines ("_L1 + QString::number(result.bytesWritten) + " bytes)"_L1;
}

// What went wrong in a copy, from what the copy tells; the status to exit
// with. A device that took nothing is a printer that is not ready.
int reportFailure(const Request& request, const pagedcopy::Result& result, const delivery::Destination* destination)
{
    using Failure = pagedcopy::Result::Failure;
    switch (result.failure) {
    case Failure::None:
        return exitSuccess;
    case Failure::NoSuchPage:
        printError(request.printFile + " has no page "_L1 + QString::number(*request.paging.page) + " of "_L1
                   + QString::number(request.paging.linesPerPage) + " lines"_L1);
        return exitFailure;
    case Failure::WriteFailed:
        printError("cannot write to "_L1 + request.destination + " after "_L1 + lineCount(result) + ": "_L1
                   + result.errorText);
        return result.bytesWritten == 0 && destination && !destination->isQueue() ? exitPrinterNotReady
                                                                                  : exitFailure;
    case Failure::SourceUnreadable:
        printError("cannot read "_L1 + request.printFile + ": "_L1 + result.errorText);
        return exitFailure;
    case Failure::DestinationUnopenable:
        printError("cannot open "_L1 + request.destination + ": "_L1 + result.errorText);
        return exitPrinterNotReady;
    }
    return exitFailure;
}

// Opens the destination, trying again with a growing pause while it cannot
// be reached: nothing has gone out yet, so no ticket can come out twice.
std::unique_ptr<delivery::Destination> openWithRetries(const Request& request, int* status)
{
    QString error;
    for (unsigned attempt = 0;; ++attempt) {
        std::unique_ptr<delivery::Destination> destination = delivery::makeDestination(request.destination, &error);
        if (!destination) {
            *status = usageError(error);
            return nullptr;
        }
        const QString title = request.printFile == "-"_L1 ? u"standard input"_s
                                                         : QFileInfo(request.printFile).fileName();
        if (destination->open(request.timeout, title))
            return destination;
        // A spooler keeps and retries its jobs itself: its refusal is final.
        if (attempt == request.retries || destination->isQueue()) {
            const QString tries = attempt == 0 ? QString() : " ("_L1 + QString::number(attempt + 1) + " tries)"_L1;
            printError("cannot open "_L1 + request.destination + ": "_L1 + destination->errorString() + tries);
            *status = destination->isQueue() ? exitFailure : exitPrinterNotReady;
            return nullptr;
        }
        std::this_thread::sleep_for(Milliseconds(250 << std::min(attempt, 5u)));
    }
}

int printStatus(delivery::Destination& destination, const Request& request)
{
    const std::optional<delivery::PrinterStatus> status = destination.status(request.timeout);
    if (!status) {
        printError("no status from "_L1 + request.destination + ": "_L1 + destination.errorString());
        return exitFailure;
    }
    for (const QString& fact : status->facts())
        std::printf("%s\n", fact.toLocal8Bit().constData());
    return status->canPrint() ? exitSuccess : exitPrinterNotReady;
}

// --check: a printer that says it cannot print gets nothing; one that does
// not say is sent to all the same.
bool readyToPrint(delivery::Destination& destination, const Request& request)
{
    const std::optional<delivery::PrinterStatus> status = destination.status(request.timeout);
    if (!status) {
        printError("status of "_L1 + request.destination + " unknown ("_L1 + destination.errorString()
                   + "); sending"_L1);
        return true;
    }
    if (status->canPrint())
        return true;
    QStringList facts = status->facts();
    if (!status->offline)
        facts.removeFirst();
    printError(request.destination + " is not ready: "_L1 + facts.join(", "_L1) + "; nothing sent"_L1);
    return false;
}

int send(const Request& request, PrintFileLines& lines, unsigned copies)
{
    int status = exitSuccess;
    const std::unique_ptr<delivery::Destination> destination = openWithRetries(request, &status);
    if (!destination)
        return status;
    if (request.statusOnly)
        return printStatus(*destination, request);
    if (request.check && !readyToPrint(*destination, request))
        return exitPrinterNotReady;

    DestinationSink sink(*destination, request.timeout);
    const pagedcopy::Result sent = pagedcopy::copy(lines, sink, request.paging, copies);
    if (!sent.succeeded())
        return reportFailure(request, sent, destination.get());
    if (!destination->close(request.timeout)) {
        printError("cannot finish sending to "_L1 + request.destination + " after "_L1 + lineCount(sent)
                   + ": "_L1 + destination->errorString());
        return exitFailure;
    }
    const QString job = destination->jobReport();
    if (!job.isEmpty())
        std::printf("%s\n", job.toLocal8Bit().constData());
    if (request.wait) {
        std::fflush(stdout);
        QString state;
        const bool completed = destination->waitForJob(request.timeout, &state);
        if (!completed) {
            printError(job + ' ' + state);
            return exitFailure;
        }
        std::printf("%s %s\n", job.toLocal8Bit().constData(), state.toLocal8Bit().constData());
    }
    return exitSuccess;
}

int run(Request request, const ZTConfiguration* configuration)
{
    if (!request.printer.isEmpty()) {
        request.destination = configuration->getStrValue("zentaro.printers."_L1 + request.printer + ".uri"_L1);
        if (request.destination.isEmpty())
            return usageError("no printer "_L1 + request.printer + " in the configuration (zentaro.printers."_L1
                              + request.printer + ".uri)"_L1);
    }
    PrintFileLines lines;
    if (request.statusOnly)
        return send(request, lines, 0);

    if (request.destination != "-"_L1 && request.printFile != "-"_L1
        && sameFile(request.printFile, request.destination))
        return usageError(request.destination + " is the print file itself"_L1);
    if (!lines.open(request.printFile))
        return reportFailure(request, pagedcopy::Result::failed(pagedcopy::Result::Failure::SourceUnreadable,
                                                                lines.errorString()),
                             nullptr);
    // A page that is not there is found before the destination is opened:
    // a printer or a queue gets no empty job.
    const pagedcopy::Result page = pagedcopy::skipToPage(lines, request.paging);
    if (!page.succeeded())
        return reportFailure(request, page, nullptr);
    lines.rewind();
    return send(request, lines, copiesToSend(request, configuration));
}

} // namespace

int main(int argc, char** argv)
{
    // A reader that goes away is a failed write to report, not a silent end.
    std::signal(SIGPIPE, SIG_IGN);
    // A closed standard output is held by /dev/null, so that no file the
    // program opens takes its place and gets the job report.
    const bool outputClosed = ::fcntl(STDOUT_FILENO, F_GETFD) < 0;
    if (outputClosed)
        ::dup2(::open("/dev/null", O_WRONLY | O_CLOEXEC), STDOUT_FILENO);

    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));

    setProgram("zentaro-send", ZENTARO_VERSION);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        u"Sends PRINTFILE (- reads standard input) to DESTINATION line by line: a device or file path such as "
        "/dev/usb/lp0, a network printer socket://HOST[:PORT] (port 9100 by default), a CUPS queue cups:QUEUE, "
        "or - for standard output."_s);
    addHelpAndVersion(parser);
    const Options options;
    parser.addOptions({options.linesPerSheet, options.pause, options.page, options.linesPerPage, options.copies,
                       options.copiesOf, options.textPrompt, options.printer, options.config, options.status,
                       options.check, options.wait, options.timeout, options.retries});
    parser.addPositionalArgument(u"PRINTFILE"_s, u"The print file to send."_s);
    parser.addPositionalArgument(u"DESTINATION"_s, u"Where to send it."_s);

    if (!parser.parse(arguments))
        return usageError(parser.errorText());
    if (const std::optional<int> status = answerHelpOrVersion(parser))
        return *status;
    Request request;
    QString error;
    if (!readRequest(parser, options, &request, &error))
        return usageError(error);
    if (outputClosed && request.destination == "-"_L1) {
        printError(u"cannot write to standard output: it is closed"_s);
        return exitFailure;
    }
    if (!request.configPath.isEmpty() && !QFileInfo(request.configPath).isFile()) {
        printError("cannot read the configuration "_L1 + request.configPath);
        return exitFailure;
    }

    // The paper prompt is a message box where someone sees it and a line on
    // the terminal otherwise; the kind of application decides which.
    std::unique_ptr<QCoreApplication> application;
    if (displayAvailable() && !request.textPrompt && request.paging.linesPerSheet != 0)
        application = std::make_unique<QApplication>(argc, argv);
    else
        application = std::make_unique<QCoreApplication>(argc, argv);

    LabelTranslator translator;
    std::unique_ptr<ZTConfiguration> configuration;
    const ZTConfiguration* settings = loadSettings(request, &configuration, &translator);
    QCoreApplication::installTranslator(&translator);

    const int status = run(request, settings);
    // Standard output may have been closed or gone away: that is the job
    // report's loss, said once.
    if (std::fflush(stdout) != 0 || std::ferror(stdout)) {
        printError(u"cannot write to standard output"_s);
        return status == exitSuccess ? exitFailure : status;
    }
    return status;
}

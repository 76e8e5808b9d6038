#include "printrun.h"

#include "catalogue.h"
#include "diagnostics.h"
#include "render.h"
#include "syncsingleton.h"
#include "toolcommon.h"
#include "ztconfiguration.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QTranslator>

#include <csignal>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>

using namespace Qt::StringLiterals;

namespace {

// What the command line asks for.
struct Invocation
{
    bool strict = false;
    QString configPath; // empty: the user's configuration
    const char* request = nullptr;
    const char* printFile = nullptr;
};

const char helpText[] =
    "Usage: zentaro-print [options] REQUEST PRINTFILE\n"
    "Renders the print request REQUEST (XML) into PRINTFILE, the printer's command text.\n"
    "A file name \"-\" is standard input or standard output.\n"
    "\n"
    "Options (before the file names):\n"
    "  --strict        also report each fault on standard error and exit 1 after one\n"
    "                  (2 for a wrong command line)\n"
    "  --config PATH   read the configuration from PATH instead of\n"
    "                  $HOME/.zentaro/conf/zentaro.conf\n"
    "  -h, --help      show this help\n"
    "  -v, --version   show the version\n";

// The suite's own usage line, on standard output.
void printUsageLine(const char* program)
{
    std::printf("Usage: %s input_file output_file\n", program ? program : "zentaro-print");
    std::fflush(stdout);
}

bool isStandardStream(const char* name)
{
    return std::strcmp(name, "-") == 0;
}

// Reads the options before the file names; the status to exit with when the
// command line already decides the run (help, version, a wrong option).
std::optional<int> readOptions(int argc, char** argv, Invocation& invocation, int& next)
{
    for (next = 1; next < argc; ++next) {
        const char* word = argv[next];
        if (std::strcmp(word, "--") == 0) {
            ++next;
            break;
        }
        if (word[0] != '-' || isStandardStream(word))
            break;
        if (std::strcmp(word, "--strict") == 0) {
            invocation.strict = true;
        } else if (std::strcmp(word, "--config") == 0 && next + 1 < argc) {
            invocation.configPath = QString::fromLocal8Bit(argv[++next]);
        } else if (std::strncmp(word, "--config=", 9) == 0) {
            invocation.configPath = QString::fromLocal8Bit(word + 9);
        } else if (std::strcmp(word, "--help") == 0 || std::strcmp(word, "-h") == 0) {
            std::fputs(helpText, stdout);
            return exitSuccess;
        } else if (std::strcmp(word, "--version") == 0 || std::strcmp(word, "-v") == 0) {
            std::printf("zentaro-print %s\n", ZENTARO_VERSION);
            return exitSuccess;
        } else {
            // Worded as the other programs' option parser words it.
            const QString option = QString::fromLocal8Bit(word).section(u'=', 0, 0);
            return usageError(u"Unknown option '%1'."_s.arg(option.mid(option.startsWith("--"_L1) ? 2 : 1)));
        }
    }
    return std::nullopt;
}

// The faults a strict run reports on standard error, besides the suite's
// own lines on standard output.
class StrictReport
{
public:
    explicit StrictReport(bool strict) : strict(strict) {}

    void fault(const QString& message)
    {
        faulty = true;
        if (strict)
            printError(message);
    }
    // A fault told without allocating: memory has run out.
    void fault(const char* message)
    {
        faulty = true;
        if (strict)
            printError(message);
    }
    int status() const { return strict && faulty ? exitFailure : exitSuccess; }

private:
    bool strict;
    bool faulty = false;
};

std::unique_ptr<QIODevice> openRequest(const char* name, StrictReport& report)
{
    auto input = std::make_unique<QFile>();
    const bool opened = isStandardStream(name) ? input->open(stdin, QIODevice::ReadOnly)
                                               : (input->setFileName(QString::fromLocal8Bit(name)),
                                                  input->open(QIODevice::ReadOnly));
    // A request that cannot be read parses as empty input.
    if (!opened)
        report.fault(u"cannot read the request "_s + QString::fromLocal8Bit(name) + ": "_L1 + input->errorString());
    return input;
}

void reportOutcome(const RenderOutcome& outcome, const Invocation& invocation, const QFile& output,
                   StrictReport& report)
{
    const QString printFile = QString::fromLocal8Bit(invocation.printFile);
    if (!outcome.printFileOpened)
        report.fault(u"cannot write the print file "_s + printFile + ": "_L1 + output.errorString());
    if (outcome.faultLine >= 0) {
        report.fault(u"the request is not well-formed at line %1, column %2: %3; the print file ends there"_s
                         .arg(outcome.faultLine)
                         .arg(outcome.faultColumn)
                         .arg(QString::fromLatin1(outcome.faultReason)));
    }
    if (!outcome.unknownMethod.isNull())
        report.fault(u"unknown method \"%1\": nothing after it is printed"_s.arg(outcome.unknownMethod));
    if (!outcome.writeError.isEmpty()) {
        const QByteArray reason = outcome.writeError.toLocal8Bit();
        printDiagnostic({"Writing ", invocation.printFile, " failed, the print file is incomplete: ", reason});
        report.fault(u"the print file "_s + printFile + " is incomplete: "_L1 + outcome.writeError);
    }
    if (!outcome.replacementSummary.isEmpty())
        printDiagnostic({outcome.replacementSummary});
}

void render(const Invocation& invocation, const ZTConfiguration& configuration, StrictReport& report)
{
    const std::unique_ptr<QIODevice> input = openRequest(invocation.request, report);
    // The renderer opens (and empties) the print file before the request is read.
    QFile output;
    if (isStandardStream(invocation.printFile))
        output.open(stdout, QIODevice::WriteOnly | QIODevice::Unbuffered);
    else
        output.setFileName(QString::fromLocal8Bit(invocation.printFile));
    const RenderOutcome outcome = renderRequest(*input, output, configuration);
    bool outOfMemory = outcome.outOfMemory;
    try {
        reportOutcome(outcome, invocation, output, report);
    } catch (const std::bad_alloc&) {
        outOfMemory = true;
    }
    // Said with nothing left to allocate: the lines go out as they stand.
    if (outOfMemory) {
        std::fputs("Out of memory: the print file ends with what was rendered before\n", diagnosticStream());
        std::fflush(diagnosticStream());
        report.fault("out of memory: the print file ends with what was rendered before");
    }
}

std::unique_ptr<ZTConfiguration> configurationAt(const QString& path, StrictReport& report)
{
    if (!QFileInfo(path).isReadable())
        report.fault(u"cannot read the configuration "_s + path);
    const QString type = path.endsWith(".xml"_L1, Qt::CaseInsensitive) ? u"xml"_s : u"cfg"_s;
    return std::make_unique<ZTConfiguration>(path, type);
}

} // namespace

int compile(int argc, char** argv)
{
    Invocation invocation;
    int next = 1;
    setProgram("zentaro-print", ZENTARO_VERSION);
    if (const std::optional<int> decided = readOptions(argc, argv, invocation, next))
        return *decided;
    // Two file names, and one more word that is not read.
    const int words = argc - next;
    if (words != 2 && words != 3) {
        printUsageLine(argc > 0 ? argv[0] : nullptr);
        return invocation.strict ? exitUsage : exitSuccess;
    }
    invocation.request = argv[next];
    invocation.printFile = argv[next + 1];

    // A reader of the diagnostics that has gone away must not end the run.
    std::signal(SIGPIPE, SIG_IGN);
    // Standard output carrying the print file keeps nothing else.
    if (isStandardStream(invocation.printFile))
        setDiagnosticStream(stderr);
    StrictReport report(invocation.strict);
    if (!isStandardStream(invocation.request) && sameFile(QString::fromLocal8Bit(invocation.request), QString::fromLocal8Bit(invocation.printFile))) {
        printDiagnostic({"The output file is the input file, nothing was written: ", invocation.printFile});
        report.fault(u"the print file is the request, nothing was written"_s);
        return report.status();
    }

    // The application object only provides the translation services.
    QCoreApplication application(argc, argv);
    std::unique_ptr<ZTConfiguration> given;
    if (!invocation.configPath.isEmpty())
        given = configurationAt(invocation.configPath, report);
    const ZTConfiguration& configuration = given ? *given : *SyncSingleton<ZTConfiguration>::instance();
    LabelTranslator translator;
    const CatalogueLoad catalogue = loadTranslation(translator, configuration);
    if (catalogue == CatalogueLoad::Missing || catalogue == CatalogueLoad::Damaged)
        report.fault(catalogue == CatalogueLoad::Missing ? u"the label catalogue is missing"_s
                                                         : u"the label catalogue is damaged"_s);
    QCoreApplication::installTranslator(&translator);
    render(invocation, configuration, report);
    return report.status();
}

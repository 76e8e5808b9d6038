// zentaro-preview [options] INPUT OUTPUT
//
// Draws what a print request (rendered as the print run renders it) or a
// print file puts on paper, as PNG, SVG or HTML, and lists what is wrong
// with it, one line each. Exit status: 0 when nothing was flagged, 1 when
// something was, 2 for a wrong command line, input that cannot be read or
// output that cannot be written.

#include "diagnostics.h"
#include "findings.h"
#include "pngpicture.h"
#include "preview.h"
#include "catalogue.h"
#include "textpictures.h"
#include "toolcommon.h"
#include "ztconfiguration.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QTranslator>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>

#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

// A finding is not a failure of the program, and input it cannot read is
// as wrong as a wrong command line: the statuses say so.
constexpr int nothingFlagged = exitSuccess;
constexpr int somethingFlagged = 1;
constexpr int failed = exitUsage;

// Larger input is refused: the print file of a request of tens of
// thousands of items is a few megabytes, and reading /dev/zero must end.
constexpr qsizetype largestInput = 64 * 1024 * 1024;

int fail(const QString& message)
{
    printError(message);
    return failed;
}

enum class Format { Png, Svg, Html };

struct Request
{
    QString input;
    QString output; // "-": SVG on standard output
    Format format = Format::Svg;
    QString configPath;
    unsigned width = 0;
    QByteArray codePage;
};

struct Options
{
    QCommandLineOption config{u"config"_s,
                              u"Read the settings from PATH instead of ~/.zentaro/conf/zentaro.conf."_s, u"PATH"_s};
    QCommandLineOption width{u"width"_s,
                             u"Draw paper N characters wide, whatever the configuration says."_s, u"N"_s};
    QCommandLineOption codePage{u"code-page"_s,
                                u"A print file's code page (default: the locale's character set)."_s, u"NAME"_s};
};

std::optional<Format> formatOf(const QString& output)
{
    if (output == "-"_L1)
        return Format::Svg;
    const QString suffix = QFileInfo(output).suffix().toLower();
    if (suffix == "png"_L1)
        return Format::Png;
    if (suffix == "svg"_L1)
        return Format::Svg;
    if (suffix == "html"_L1 || suffix == "htm"_L1)
        return Format::Html;
    return std::nullopt;
}

// The command line as a request; an error message when it is wrong.
std::optional<Request> readRequest(const QCommandLineParser& parser, const Options& options, QString* error)
{
    const QStringList files = parser.positionalArguments();
    if (files.size() != 2) {
        *error = files.size() < 2 ? u"needs an INPUT and an OUTPUT (see --help)"_s
                                  : "unexpected argument '"_L1 + files.at(2) + u'\'';
        return std::nullopt;
    }
    Request request;
    request.input = files.at(0);
    request.output = files.at(1);
    const std::optional<Format> format = formatOf(request.output);
    if (!format) {
        *error = "OUTPUT must end in .png, .svg or .html, or be - for SVG on standard output: '"_L1
                 + request.output + u'\'';
        return std::nullopt;
    }
    request.format = *format;
    if (parser.isSet(options.width)) {
        const std::optional<unsigned> width = wholeNumber(parser, options.width, error, 1, 4096);
        if (!width)
            return std::nullopt;
        request.width = *width;
    }
    request.configPath = parser.value(options.config);
    request.codePage = parser.value(options.codePage).toLatin1();
    return request;
}

std::optional<QByteArray> readInput(const QString& path, QString* error)
{
    QFile file;
    const QString name = path == "-"_L1 ? u"standard input"_s : path;
    if (QFileInfo(path).isDir() && path != "-"_L1) {
        *error = "cannot read "_L1 + name + ": it is a folder"_L1;
        return std::nullopt;
    }
    const bool opened = path == "-"_L1 ? file.open(stdin, QIODevice::ReadOnly)
                                       : (file.setFileName(path), file.open(QIODevice::ReadOnly));
    QByteArray bytes;
    for (QByteArray chunk; opened && bytes.size() <= largestInput && !(chunk = file.read(1 << 20)).isEmpty();)
        bytes += chunk;
    if (!opened || file.error() != QFileDevice::NoError) {
        *error = "cannot read "_L1 + name + ": "_L1 + file.errorString();
        return std::nullopt;
    }
    if (bytes.size() > largestInput) {
        *error = "cannot read "_L1 + name + ": larger than "_L1 + QString::number(largestInput >> 20)
                 + " MiB, the most the preview reads"_L1;
        return std::nullopt;
    }
    return bytes;
}

bool writeFile(const QString& path, const QByteArray& bytes, QString* error)
{
    QFile file;
    const bool opened = path == "-"_L1 ? file.open(stdout, QIODevice::WriteOnly)
                                       : (file.setFileName(path), file.open(QIODevice::WriteOnly));
    if (!opened || file.write(bytes) != bytes.size() || !file.flush()) {
        *error = "cannot write "_L1 + (path == "-"_L1 ? u"standard output"_s : path) + ": "_L1 + file.errorString();
        return false;
    }
    return true;
}

int run(const Request& request)
{
    if (request.input != "-"_L1 && request.output != "-"_L1 && sameFile(request.input, request.output))
        return fail("INPUT and OUTPUT are the same file, nothing was written: "_L1 + request.output);
    QString error;
    const std::optional<QByteArray> input = readInput(request.input, &error);
    if (!input)
        return fail(error);
    if (!request.configPath.isEmpty() && !QFileInfo(request.configPath).isFile())
        return fail("cannot read the configuration "_L1 + request.configPath);

    // What reading the settings and the labels reports belongs to the
    // whole document.
    std::vector<QByteArray> reported;
    std::unique_ptr<ZTConfiguration> configuration;
    LabelTranslator translator;
    {
        DiagnosticCapture capture;
        configuration = request.configPath.isEmpty() ? std::make_unique<ZTConfiguration>()
                                                     : std::make_unique<ZTConfiguration>(request.configPath);
        loadTranslation(translator, *configuration);
        reported.assign(capture.lines().begin(), capture.lines().end());
    }
    QCoreApplication::installTranslator(&translator);

    preview::PreviewSettings settings;
    settings.configuration = configuration.get();
    settings.width = int(request.width);
    settings.codePage = request.codePage;
    const QString source = request.input == "-"_L1 ? u"<stdin>"_s : request.input;
    preview::Paper paper = preview::previewInput(*input, source, settings);
    for (auto line = reported.rbegin(); line != reported.rend(); ++line)
        paper.flagStart({preview::Flag::Kind::Notice, "the print run reports: "_L1 + QString::fromLocal8Bit(*line),
                         QString::fromLocal8Bit(*line)});

    bool written = true;
    switch (request.format) {
    case Format::Png: {
        const preview::PngPages pages = preview::writePngPages(paper, request.output);
        error = pages.error;
        written = !pages.written.isEmpty() && error.isEmpty();
        if (written && !pages.leftOut.isEmpty())
            printError(pages.leftOut);
        break;
    }
    case Format::Svg:
        written = writeFile(request.output, preview::svgPicture(paper), &error);
        break;
    case Format::Html:
        written = writeFile(request.output, preview::htmlPicture(paper), &error);
        break;
    }
    if (!written)
        return fail(error);

    // With the picture on standard output, the findings go beside it.
    std::FILE* list = request.output == "-"_L1 ? stderr : stdout;
    errno = 0;
    for (const QString& line : preview::findingLines(paper))
        std::fprintf(list, "%s\n", line.toLocal8Bit().constData());
    if (std::fflush(list) != 0 || std::ferror(list))
        return fail("cannot write the findings: "_L1 + QString::fromLocal8Bit(std::strerror(errno ? errno : EIO)));
    return paper.isFlagged() ? somethingFlagged : nothingFlagged;
}

// Qt's own chatter (a missing runtime folder, font fallbacks) is no
// concern of the reader; its errors still are.
void quietQtMessages(QtMsgType type, const QMessageLogContext&, const QString& message)
{
    if (type == QtCriticalMsg || type == QtFatalMsg)
        printError(message);
}

} // namespace

int main(int argc, char** argv)
{
    // A reader that has gone away is a failed write to report, not a
    // silent end; a closed standard output is held by /dev/null, opened for
    // reading, so that no file the program opens takes its place and
    // writing to it fails as it should.
    std::signal(SIGPIPE, SIG_IGN);
    if (::fcntl(STDOUT_FILENO, F_GETFD) < 0)
        ::dup2(::open("/dev/null", O_RDONLY | O_CLOEXEC), STDOUT_FILENO);
    qInstallMessageHandler(quietQtMessages);
    setProgram("zentaro-preview", ZENTARO_VERSION);
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);

    QCommandLineParser parser;
    parser.setApplicationDescription(
        u"Draws what a print request or a print file puts on receipt paper, and lists what is wrong with it.\n"
        "INPUT is a request (XML, rendered as zentaro-print renders it) or a print file written by zentaro-print.\n"
        "OUTPUT's extension chooses the picture: .png (taller pictures go on OUTPUT-2.png, ...), .svg or .html;\n"
        "- writes SVG to standard output and the list to standard error.\n"
        "Flagged: lines wider than the paper, characters the code page lacks, request elements and attributes\n"
        "the document does not read or that come before its method element, settings read as 0 or false\n"
        "from other text. Exit status: 0 nothing flagged, 1 something flagged, 2 usage, input or output errors.\n"
        "Limits: input larger than "_s + QString::number(largestInput >> 20)
        + " MiB is refused. PNG pages are at most "_L1 + QString::number(preview::PageBounds().height)
        + " pixels tall and "_L1 + QString::number(preview::PageBounds().pixels / 1'000'000)
        + " million pixels large\n(wide paper gives shorter pages); after "_L1
        + QString::number(preview::PageBounds().pages)
        + " pages the picture stops, and standard error and\nits last page say which printed lines are left out."_L1);
    const Options options;
    parser.addOptions({options.config, options.width, options.codePage});
    addHelpAndVersion(parser);
    parser.addPositionalArgument(u"INPUT"_s, u"The request or print file; - reads standard input."_s);
    parser.addPositionalArgument(u"OUTPUT"_s, u"The picture: .png, .svg, .html, or -."_s);

    if (!parser.parse(arguments))
        return fail(parser.errorText());
    if (const std::optional<int> status = answerHelpOrVersion(parser))
        return *status;
    QString error;
    const std::optional<Request> request = readRequest(parser, options, &error);
    if (!request)
        return fail(error);

    // Only a PNG needs fonts and the GUI library's painting; no window is
    // ever shown, so the platform needs no display.
    std::unique_ptr<QCoreApplication> application;
    if (request->format == Format::Png) {
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
        application = std::make_unique<QGuiApplication>(argc, argv);
    } else {
        application = std::make_unique<QCoreApplication>(argc, argv);
    }
    return run(*request);
}

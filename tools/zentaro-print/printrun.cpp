#include "printrun.h"

#include "catalogue.h"
#include "diagnostics.h"
#include "render.h"
#include "syncsingleton.h"
#include "ztconfiguration.h"

#include <QCoreApplication>
#include <QFile>
#include <QTranslator>

#include <csignal>
#include <cstdio>

#include <sys/stat.h>

namespace {

// Whether two paths name one file, through links and hard links alike.
bool sameFile(const char* first, const char* second)
{
    struct stat a, b;
    return ::stat(first, &a) == 0 && ::stat(second, &b) == 0 && a.st_dev == b.st_dev
        && a.st_ino == b.st_ino;
}

void render(const char* requestPath, const char* printPath, const ZTConfiguration& configuration)
{
    QFile input(QString::fromLocal8Bit(requestPath));
    // A request that cannot be read parses as empty input.
    (void)input.open(QIODevice::ReadOnly);
    // The renderer opens (and empties) the print file before the request is read.
    QFile output(QString::fromLocal8Bit(printPath));
    const RenderOutcome outcome = renderRequest(input, output, configuration);
    if (outcome.outOfMemory)
        printDiagnostic({"Out of memory: the print file ends with what was rendered before"});
    if (!outcome.writeError.isEmpty())
        printDiagnostic({"Writing ", printPath, " failed, the print file is incomplete: ",
                         outcome.writeError.toLocal8Bit()});
    if (!outcome.replacementSummary.isEmpty())
        printDiagnostic({outcome.replacementSummary});
}

} // namespace

void compile(int argc, char** argv)
{
    if (argc != 3 && argc != 4) {
        std::printf("Usage: %s input_file output_file\n", argc > 0 && argv[0] ? argv[0] : "zentaro-print");
        std::fflush(stdout);
        return;
    }
    // A reader of the diagnostics that has gone away must not end the run.
    std::signal(SIGPIPE, SIG_IGN);
    if (sameFile(argv[1], argv[2])) {
        printDiagnostic({"The output file is the input file, nothing was written: ", argv[2]});
        return;
    }

    // The application object only provides the translation services.
    QCoreApplication application(argc, argv);
    const ZTConfiguration* configuration = SyncSingleton<ZTConfiguration>::instance();
    QTranslator translator;
    loadTranslation(translator, *configuration);
    QCoreApplication::installTranslator(&translator);
    render(argv[1], argv[2], *configuration);
}

#include "printrun.h"

#include "catalogue.h"
#include "companyprinterdriver.h"
#include "diagnostics.h"
#include "syncsingleton.h"
#include "xmlreader.h"
#include "ztconfiguration.h"

#include <QCoreApplication>
#include <QFile>
#include <QLocale>
#include <QTranslator>

#include <csignal>
#include <cstdio>
#include <new>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

void loadTranslation(QTranslator& translator, const ZTConfiguration& configuration)
{
    const QString base = configuration.getStrValue(u"zentaro.language.basedir"_s);
    const QString file = configuration.getStrValue(u"zentaro.language.file"_s);
    // "/" as the file asks for the catalogue of the system locale in the base
    // folder; any other value is joined to the base as it stands. Without a
    // catalogue the labels stay English.
    if (file == "/"_L1)
        loadSoundCatalogue(translator, base + "/zentaro_"_L1 + QLocale::system().name(), u"."_s);
    else
        loadSoundCatalogue(translator, base + file);
}

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
    // The driver opens (and empties) the print file before the request is read.
    CompanyPrinterDriver driver(QString::fromLocal8Bit(printPath), &configuration);
    QFile input(QString::fromLocal8Bit(requestPath));
    // A request that cannot be read parses as empty input.
    (void)input.open(QIODevice::ReadOnly);
    XmlReader reader(driver);
    // Request text must not be able to end a printed line or start a command.
    reader.setBlankControlCharacters(true);
    try {
        reader.parse(&input);
    } catch (const std::bad_alloc&) {
        // What was rendered so far is kept: the driver writes it on its way out.
        printDiagnostic({"Out of memory: the print file ends with what was rendered before"});
    }
    if (const QByteArray summary = driver.replacementSummary(); !summary.isEmpty())
        printDiagnostic({summary});
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

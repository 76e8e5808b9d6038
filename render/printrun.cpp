#include "printrun.h"

#include "companyprinterdriver.h"
#include "saxreader.h"
#include "syncsingleton.h"
#include "ztconfiguration.h"

#include <QCoreApplication>
#include <QFile>
#include <QLocale>
#include <QTranslator>

#include <cstdio>
#include <optional>

using namespace Qt::StringLiterals;

void loadTranslation(QTranslator& translator, const ZTConfiguration& configuration)
{
    const QString base = configuration.getStrValue(u"zentaro.language.basedir"_s);
    const QString file = configuration.getStrValue(u"zentaro.language.file"_s);
    // "/" as the file asks for the catalogue of the system locale in the base
    // folder; any other value is joined to the base as it stands. What the
    // load finds is not examined: without a catalogue the labels stay English.
    if (file == "/"_L1)
        (void)translator.load(base + "/zentaro_"_L1 + QLocale::system().name(), u"."_s);
    else
        (void)translator.load(base + file);
}

void compile(int argc, char** argv)
{
    if (argc != 3 && argc != 4) {
        std::printf("Usage: %s input_file output_file\n", argc > 0 && argv[0] ? argv[0] : "zentaro-print");
        std::fflush(stdout);
        return;
    }

    // The application object only provides the translation services.
    QCoreApplication application(argc, argv);
    const ZTConfiguration* configuration = SyncSingleton<ZTConfiguration>::instance();
    QTranslator translator;
    loadTranslation(translator, *configuration);
    QCoreApplication::installTranslator(&translator);

    // The driver opens (and empties) the print file before the request is read.
    CompanyPrinterDriver driver(QString::fromLocal8Bit(argv[2]), configuration);
    QFile input(QString::fromLocal8Bit(argv[1]));
    // A request that cannot be read parses as empty input.
    (void)input.open(QIODevice::ReadOnly);
    parseXml(&input, driver);
}

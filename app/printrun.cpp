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
#include <memory>

namespace {

// "/" as the file setting asks for the catalogue of the system locale in the
// base folder; any other value is joined to the base as it stands.
void loadTranslation(QTranslator& translator, const QString& base, const QString& file)
{
    if (file == QLatin1StringView("/"))
        (void)translator.load(base + QStringLiteral("/zentaro_") + QLocale::system().name(),
                              QStringLiteral("."));
    else
        (void)translator.load(base + file);
}

} // namespace

void compile(int argc, char** argv)
{
    if (argc != 3 && argc != 4) {
        std::printf("Usage: %s input_file output_file\n", argc > 0 && argv[0] ? argv[0] : "zentaro-print");
        std::fflush(stdout);
        return;
    }

    // The application object only provides the translation services.
    auto application = std::make_unique<QCoreApplication>(argc, argv);
    ZTConfiguration* configuration = SyncSingleton<ZTConfiguration>::instance();

    auto translator = std::make_unique<QTranslator>();
    auto base = std::make_unique<QString>(
        configuration->getStrValue(QStringLiteral("zentaro.language.basedir")));
    auto file = std::make_unique<QString>(
        configuration->getStrValue(QStringLiteral("zentaro.language.file")));
    loadTranslation(*translator, *base, *file);
    QCoreApplication::installTranslator(translator.get());

    auto driver = std::make_unique<CompanyPrinterDriver>(QString::fromLocal8Bit(argv[2]));
    {
        QFile input(QString::fromLocal8Bit(argv[1]));
        // A request that cannot be read parses as empty input.
        (void)input.open(QIODevice::ReadOnly);
        parseXml(&input, *driver);
    }
    driver.reset();
    base.reset();
    file.reset();
    translator.reset();
    application.reset();
}

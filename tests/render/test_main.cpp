#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

// The configuration singleton reads $HOME once, when the first driver is
// made, so HOME points at this file before any test runs.
static const char settingsFile[] = R"(zentaro : {
    doc : { paperWidth = 0; };
    receiptdoc : { paperWidth = "wide"; };
    invoicedoc : {
        paperWidth = 40;
        printHeader = "True";
        printLogo = "1";
        printCompany = "true";
        printCustomer = " true";
    };
    reportdoc : { paperWidth = 44; quantityFieldWidth = 4; };
    solddoc : { paperWidth = 36; quantityFieldWidth = 5; };
    fiscaldoc : { descriptionWidth = 5; };
};
)";

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    QTemporaryDir home;
    if (!home.isValid() || !QDir(home.path()).mkpath(QStringLiteral(".zentaro/conf")))
        return 2;
    QFile conf(home.filePath(QStringLiteral(".zentaro/conf/zentaro.conf")));
    if (!conf.open(QIODevice::WriteOnly) || conf.write(settingsFile) < 0)
        return 2;
    conf.close();
    qputenv("HOME", home.path().toLocal8Bit());

    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}

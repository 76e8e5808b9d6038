// Creates the GUI application object on the offscreen platform, as the
// preview does for PNG pictures, and exits: what starting the GUI library
// costs before a program draws anything.
#include <QGuiApplication>

int main(int argc, char** argv)
{
    // Quiet as the preview is about the platform's chatter (a missing
    // runtime folder), which would otherwise fill the benchmark's report.
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    return 0;
}

// zentaro-config: reads, converts and edits the suite's configuration.
// Only edit needs a display; the other commands run on QtCore alone.

#include "commandline.h"
#include "commands.h"
#include "editorwindow.h"

#include <QApplication>
#include <QCoreApplication>
#include <QTimer>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

void printOut(const QString& text)
{
    const QByteArray bytes = text.toLocal8Bit();
    std::fwrite(bytes.constData(), 1, std::size_t(bytes.size()), stdout);
}

// Without a platform to show a window on, the toolkit would abort; say so
// in a line instead.
bool displayAvailable()
{
    return !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") || !qEnvironmentVariableIsEmpty("DISPLAY")
        || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

int runEditor(int argc, char** argv, const Invocation& invocation)
{
    if (!displayAvailable()) {
        complain(u"edit needs a display (DISPLAY or WAYLAND_DISPLAY; QT_QPA_PLATFORM=offscreen shows nothing)"_s);
        return exitFailure;
    }
    QApplication app(argc, argv);
    std::unique_ptr<ZTConfiguration> configuration = loadConfiguration(invocation);
    if (!configuration)
        return exitFailure;
    EditorWindow window(std::move(configuration), invocation.file, invocation.format);
    window.show();
    if (invocation.screenshot.isEmpty())
        return app.exec();

    window.showExample();
    int status = exitFailure;
    QTimer::singleShot(0, &window, [&] {
        if (window.grab().save(invocation.screenshot, "PNG"))
            status = exitSuccess;
        else
            complain(u"cannot write %1"_s.arg(invocation.screenshot));
        app.quit();
    });
    app.exec();
    return status;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication::setApplicationName(u"zentaro-config"_s);
    QCoreApplication::setApplicationVersion(QStringLiteral(ZENTARO_VERSION));

    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    CommandLine commandLine;
    const bool understood = commandLine.parse(arguments);
    const bool informationOnly = commandLine.helpRequested() || commandLine.versionRequested();
    if (understood && !informationOnly && commandLine.invocation().command == "edit"_L1)
        return runEditor(argc, argv, commandLine.invocation());

    QCoreApplication app(argc, argv);
    if (!understood) {
        complain(commandLine.error());
        std::fputs(qPrintable(CommandLine::usageLine() + u'\n'), stderr);
        return exitUsage;
    }
    if (commandLine.helpRequested()) {
        printOut(commandLine.helpText());
        return exitSuccess;
    }
    if (commandLine.versionRequested()) {
        printOut(u"zentaro-config %1\n"_s.arg(QCoreApplication::applicationVersion()));
        return exitSuccess;
    }
    return runCommand(commandLine.invocation());
}

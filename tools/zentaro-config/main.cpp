// zentaro-config: reads, converts and edits the suite's configuration.
// Only edit needs a display; the other commands run on QtCore alone.

#include "commandline.h"
#include "commands.h"
#include "editorwindow.h"
#include "toolcommon.h"

#include <QApplication>
#include <QCoreApplication>
#include <QTimer>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

int runEditor(int argc, char** argv, const Invocation& invocation)
{
    if (!displayAvailable()) {
        // A window no one sees would wait for ever. A picture of it needs
        // no display: the offscreen platform draws it.
        if (invocation.screenshot.isEmpty()) {
            printError(u"edit needs a display (DISPLAY or WAYLAND_DISPLAY; the offscreen platform shows nothing)"_s);
            return exitFailure;
        }
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
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
            printError(u"cannot write %1"_s.arg(invocation.screenshot));
        app.quit();
    });
    app.exec();
    return status;
}

} // namespace

int main(int argc, char** argv)
{
    setProgram("zentaro-config", ZENTARO_VERSION);

    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    CommandLine commandLine;
    if (!commandLine.parse(arguments)) {
        const int status = usageError(commandLine.error());
        std::fputs(qPrintable(CommandLine::usageLine() + u'\n'), stderr);
        return status;
    }
    if (const std::optional<int> status = answerHelpOrVersion(commandLine.parser()))
        return *status;
    if (commandLine.invocation().command == "edit"_L1)
        return runEditor(argc, argv, commandLine.invocation());

    QCoreApplication app(argc, argv);
    return runCommand(commandLine.invocation());
}

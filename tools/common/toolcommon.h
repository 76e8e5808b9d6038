#pragma once

// The command-line habits every program of the suite keeps: an error is one
// line on standard error, "program: message", and the exit status says how
// the run ended. The program's name is QCoreApplication's application name,
// which a program sets first thing (setProgram).

#include <QString>

#include <optional>

class QCommandLineOption;
class QCommandLineParser;

enum ExitStatus {
    exitSuccess = 0,
    exitFailure = 1,
    exitUsage = 2, // a wrong command line
    exitPrinterNotReady = 3, // the device did not take what was sent to it
};

// Names the program for its error lines, --help and --version.
void setProgram(const char* name, const char* version);

// "program: message" and a line end on standard error.
void printError(const QString& message);
// The same without allocating, for when memory has run out.
void printError(const char* message);

// An error about the command line: printed with a pointer to --help; the
// status to exit with.
int usageError(const QString& message);

// Adds -h/--help and -v/--version. Qt's own help option would also list
// Qt's options, which programs that may run without a display do not take.
void addHelpAndVersion(QCommandLineParser& parser);

// When the parsed command line asks for the help or the version, prints it
// on standard output and gives the status to exit with.
std::optional<int> answerHelpOrVersion(const QCommandLineParser& parser);

// The value of a set option as a whole number from `minimum` to `maximum`;
// nothing, with `error` set, when it is not one.
std::optional<unsigned> wholeNumber(const QCommandLineParser& parser, const QCommandLineOption& option,
                                    QString* error, unsigned minimum = 0, unsigned maximum = 0xffffffffu);

// Whether two paths name one file, through symbolic and hard links alike.
bool sameFile(const QString& first, const QString& second);

// Whether a window would be seen by someone. The offscreen and minimal
// platforms draw nowhere; without them, a display is a platform chosen by
// QT_QPA_PLATFORM, or an X or Wayland display in DISPLAY or WAYLAND_DISPLAY.
bool displayAvailable();

#pragma once

// What the test programs share: readable QString failures, files written
// and read byte for byte, a temporary home folder, and line diffs of
// printed text.

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

// Readable failure messages for QString comparisons.
void PrintTo(const QString& text, std::ostream* os);

namespace testsupport {

// Writes the bytes exactly as given (NUL and 8-bit bytes included),
// creating the folders on the way.
bool writeBytes(const QString& path, std::string_view bytes);
QByteArray readBytes(const QString& path);

// A fresh home folder that HOME points at while the object lives, for code
// that finds the user's configuration on its own.
class TemporaryHome
{
public:
    TemporaryHome();
    ~TemporaryHome();
    TemporaryHome(const TemporaryHome&) = delete;
    TemporaryHome& operator=(const TemporaryHome&) = delete;

    QString path() const;
    // Writes the user's configuration file ($HOME/.zentaro/conf/zentaro.conf).
    bool writeConfiguration(std::string_view text) const;
    QString configurationPath() const;

private:
    QTemporaryDir dir;
    QByteArray savedHome;
};

// The lines of both texts side by side as cat -A would show them ("$" at a
// line end, "^M" for a carriage return): equal lines plain, differing ones
// marked - (expected) and + (actual).
std::string lineDiff(const QByteArray& expected, const QByteArray& actual);
// The bytes around the first difference of two binary files, as hex dumps
// of 16 bytes a row; lineDiff for text (no byte below a blank but line ends).
std::string byteDiff(const QByteArray& expected, const QByteArray& actual);

// A print file of `count` lines, each ten times one digit (0, 1, ... 9, 0,
// ...) and a line end: 11 bytes a line.
QByteArray numberedLines(int count);

// The names of the folders in `dir`, sorted: one test case each.
std::vector<std::string> subfolderNames(const QString& dir);

// A log file's text with the time stamp "[MM-dd-yyyy hh:mm:ss:zzz] " taken
// off every line that starts with one, so that the rest can be compared.
QByteArray withoutTimeStamps(const QByteArray& log);

// Expects `actual` to be the bytes of the golden file at `path`, showing a
// line diff when it is not. With GOLDEN_UPDATE=1 in the environment it
// writes the file instead, for review with git diff.
void expectGoldenFile(const QString& path, const QByteArray& actual);

struct ProgramRun
{
    int status = -1; // -1 when the program did not end normally
    QByteArray out;
    QByteArray err;
};

// Starts a program in `home` (its working folder and HOME) without a
// display whatever the caller's environment says; `environment` adds
// NAME=VALUE settings on top.
void startProgram(QProcess& process, const QString& program, const QStringList& arguments, const QString& home,
                  const QStringList& environment = {});

// Runs a program as startProgram does, with `input` on its standard input,
// and waits for its end.
ProgramRun runProgram(const QString& program, const QStringList& arguments, const QString& home,
                      const QByteArray& input = {}, const QStringList& environment = {});

// Reads what the process writes on its standard output into `out` until
// `out` ends with `expected`; false when nothing more comes for 30 s.
bool waitForOutput(QProcess& process, QByteArray* out, const QByteArray& expected);

} // namespace testsupport

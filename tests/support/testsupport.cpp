#include "testsupport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QStringList>

#include <gtest/gtest.h>

#include <algorithm>

void PrintTo(const QString& text, std::ostream* os)
{
    *os << '"' << text.toStdString() << '"' << (text.isNull() ? " (null)" : "");
}

namespace testsupport {

bool writeBytes(const QString& path, std::string_view bytes)
{
    if (!QDir().mkpath(QFileInfo(path).path()))
        return false;
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    return file.write(bytes.data(), qint64(bytes.size())) == qint64(bytes.size());
}

QByteArray readBytes(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

TemporaryHome::TemporaryHome()
    : savedHome(qgetenv("HOME"))
{
    qputenv("HOME", dir.path().toLocal8Bit());
}

TemporaryHome::~TemporaryHome()
{
    qputenv("HOME", savedHome);
}

QString TemporaryHome::path() const
{
    return dir.path();
}

QString TemporaryHome::configurationPath() const
{
    return dir.path() + QStringLiteral("/.zentaro/conf/zentaro.conf");
}

bool TemporaryHome::writeConfiguration(std::string_view text) const
{
    return writeBytes(configurationPath(), text);
}

namespace {

QStringList visibleLines(const QByteArray& text)
{
    QStringList lines;
    const QList<QByteArray> pieces = text.split('\n');
    for (qsizetype i = 0; i < pieces.size(); ++i) {
        QString line;
        for (const char c : pieces[i]) {
            const auto u = static_cast<unsigned char>(c);
            line += u < 32 || u == 127 ? QStringLiteral("^") + QChar(u ^ 64) : QString(QChar(u));
        }
        if (i + 1 < pieces.size())
            lines.append(line + QLatin1Char('$'));
        else if (!line.isEmpty())
            lines.append(line);
    }
    return lines;
}

} // namespace

std::string lineDiff(const QByteArray& expected, const QByteArray& actual)
{
    const QStringList want = visibleLines(expected), got = visibleLines(actual);
    QString out = QStringLiteral("--- expected\n+++ actual\n");
    for (qsizetype i = 0; i < qMax(want.size(), got.size()); ++i) {
        const QString n = QString::number(i + 1) + QLatin1Char('\t');
        if (i < want.size() && i < got.size() && want[i] == got[i]) {
            out += QStringLiteral("  ") + n + want[i] + QLatin1Char('\n');
            continue;
        }
        if (i < want.size())
            out += QStringLiteral("- ") + n + want[i] + QLatin1Char('\n');
        if (i < got.size())
            out += QStringLiteral("+ ") + n + got[i] + QLatin1Char('\n');
    }
    return out.toStdString();
}

namespace {

bool isBinary(const QByteArray& bytes)
{
    return std::any_of(bytes.begin(), bytes.end(),
                       [](char c) { return uchar(c) < 0x20 && c != '\n' && c != '\r' && c != '\t'; });
}

QString hexRows(const QByteArray& bytes, qsizetype from, qsizetype to)
{
    QString out;
    for (qsizetype row = from; row < qMin(to, bytes.size()); row += 16) {
        out += QStringLiteral("%1 ").arg(row, 8, 16, QLatin1Char('0'));
        for (qsizetype i = row; i < qMin(row + 16, bytes.size()); ++i)
            out += QStringLiteral(" %1").arg(uchar(bytes[i]), 2, 16, QLatin1Char('0'));
        out += QLatin1Char('\n');
    }
    return out;
}

} // namespace

std::string byteDiff(const QByteArray& expected, const QByteArray& actual)
{
    if (!isBinary(expected) && !isBinary(actual))
        return lineDiff(expected, actual);
    qsizetype first = 0;
    while (first < expected.size() && first < actual.size() && expected[first] == actual[first])
        ++first;
    const qsizetype from = qMax<qsizetype>(0, first / 16 * 16 - 32), to = first / 16 * 16 + 48;
    return QStringLiteral("first difference at byte %1 (expected %2 bytes, actual %3)\n--- expected\n%4+++ actual\n%5")
        .arg(first).arg(expected.size()).arg(actual.size())
        .arg(hexRows(expected, from, to), hexRows(actual, from, to))
        .toStdString();
}

QByteArray numberedLines(int count)
{
    QByteArray text;
    for (int i = 0; i < count; ++i)
        text += QByteArray::number(i % 10).repeated(10) + '\n';
    return text;
}

std::vector<std::string> subfolderNames(const QString& dir)
{
    std::vector<std::string> names;
    for (const QString& name : QDir(dir).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name))
        names.push_back(name.toStdString());
    return names;
}

QByteArray withoutTimeStamps(const QByteArray& log)
{
    static const QRegularExpression stamp(
        QStringLiteral(R"(^\[\d\d-\d\d-\d{4} \d\d:\d\d:\d\d:\d{3}\] )"),
        QRegularExpression::MultilineOption);
    return QString::fromLocal8Bit(log).remove(stamp).toLocal8Bit();
}

void expectGoldenFile(const QString& path, const QByteArray& actual)
{
    if (qEnvironmentVariableIntValue("GOLDEN_UPDATE") == 1) {
        EXPECT_TRUE(writeBytes(path, actual.toStdString())) << path.toStdString();
        return;
    }
    if (!QFileInfo::exists(path)) {
        ADD_FAILURE() << "no golden file " << path.toStdString() << " (GOLDEN_UPDATE=1 writes it)";
        return;
    }
    const QByteArray expected = readBytes(path);
    // Not EXPECT_EQ: the diff says more than two dumps of the bytes.
    EXPECT_TRUE(expected == actual) << path.toStdString() << '\n' << lineDiff(expected, actual);
}

void startProgram(QProcess& process, const QString& program, const QStringList& arguments, const QString& home,
                  const QStringList& environment)
{
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("HOME"), home);
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        env.remove(QString::fromLatin1(name));
    for (const QString& setting : environment)
        env.insert(setting.section(u'=', 0, 0), setting.section(u'=', 1));
    process.setProcessEnvironment(env);
    process.setWorkingDirectory(home);
    process.start(program, arguments);
}

ProgramRun runProgram(const QString& program, const QStringList& arguments, const QString& home,
                      const QByteArray& input, const QStringList& environment)
{
    QProcess process;
    startProgram(process, program, arguments, home, environment);
    process.write(input);
    process.closeWriteChannel();
    EXPECT_TRUE(process.waitForFinished(60000)) << program.toStdString() << " did not finish";
    const bool normal = process.exitStatus() == QProcess::NormalExit;
    return {normal ? process.exitCode() : -1, process.readAllStandardOutput(), process.readAllStandardError()};
}

bool waitForOutput(QProcess& process, QByteArray* out, const QByteArray& expected)
{
    while (!out->endsWith(expected)) {
        if (!process.waitForReadyRead(30000))
            return false;
        *out += process.readAllStandardOutput();
    }
    return true;
}

} // namespace testsupport

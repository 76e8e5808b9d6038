#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <string>
#include <vector>

// A case folder holds request.xml (absent: the input file is missing),
// expected.txt (absent: no output file may appear), optionally zentaro.conf
// (else cases/default.conf), args (words replacing "@REQUEST@ @OUTPUT@"),
// env (NAME=value lines added to the environment) and expected_stdout.txt
// (absent: standard output must stay empty).
namespace {

const QString casesDir = QStringLiteral(GOLDEN_CASES);

std::vector<std::string> caseNames()
{
    std::vector<std::string> names;
    for (const QString& name : QDir(casesDir).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name))
        names.push_back(name.toStdString());
    return names;
}

QByteArray readAll(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// The lines of a text as cat -A shows them: "$" for each line end, "^M"
// for a carriage return and so on.
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

// A line-by-line comparison: equal lines plain, differing ones as -/+.
std::string diff(const QByteArray& expected, const QByteArray& actual)
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

class Golden : public testing::TestWithParam<std::string>
{
};

TEST_P(Golden, PrintRun)
{
    const QDir dir(casesDir + QLatin1Char('/') + QString::fromStdString(GetParam()));
    QTemporaryDir work;
    ASSERT_TRUE(work.isValid());
    const QString home = work.filePath(QStringLiteral("home"));
    ASSERT_TRUE(QDir().mkpath(home + QStringLiteral("/.zentaro/conf")));

    QString confPath = dir.filePath(QStringLiteral("zentaro.conf"));
    if (!QFile::exists(confPath))
        confPath = casesDir + QStringLiteral("/default.conf");
    QByteArray conf = readAll(confPath);
    conf.replace("@TRANSLATIONS@", ZENTARO_TRANSLATIONS);
    QFile confFile(home + QStringLiteral("/.zentaro/conf/zentaro.conf"));
    ASSERT_TRUE(confFile.open(QIODevice::WriteOnly) && confFile.write(conf) == conf.size());
    confFile.close();

    const QString request = dir.filePath(QStringLiteral("request.xml"));
    const QString output = work.filePath(QStringLiteral("out.txt"));
    QStringList args{QStringLiteral("@REQUEST@"), QStringLiteral("@OUTPUT@")};
    if (dir.exists(QStringLiteral("args")))
        args = QString::fromUtf8(readAll(dir.filePath(QStringLiteral("args"))))
                   .split(QRegularExpression(QStringLiteral("\\s+")), Qt::SkipEmptyParts);
    for (QString& arg : args)
        arg.replace(QStringLiteral("@REQUEST@"), request).replace(QStringLiteral("@OUTPUT@"), output);

    QProcess run;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("HOME"), home);
    const QString extraEnv = QString::fromUtf8(readAll(dir.filePath(QStringLiteral("env"))));
    for (const QString& line : extraEnv.split(QLatin1Char('\n'), Qt::SkipEmptyParts))
        env.insert(line.section(QLatin1Char('='), 0, 0), line.section(QLatin1Char('='), 1));
    run.setProcessEnvironment(env);
    run.setWorkingDirectory(work.path());
    run.start(QStringLiteral(ZENTARO_PRINT), args);
    ASSERT_TRUE(run.waitForFinished(30000)) << "did not finish";
    const QByteArray errors = run.readAllStandardError();
    EXPECT_EQ(run.exitStatus(), QProcess::NormalExit) << errors.toStdString();
    EXPECT_EQ(run.exitCode(), 0) << errors.toStdString();

    QByteArray wantStdout = readAll(dir.filePath(QStringLiteral("expected_stdout.txt")));
    wantStdout.replace("@PROGRAM@", ZENTARO_PRINT);
    const QByteArray gotStdout = run.readAllStandardOutput();
    EXPECT_TRUE(gotStdout == wantStdout) << "standard output\n" << diff(wantStdout, gotStdout);

    const QString expectedPath = dir.filePath(QStringLiteral("expected.txt"));
    if (!QFile::exists(expectedPath)) {
        EXPECT_FALSE(QFile::exists(output)) << "an output file was written";
        return;
    }
    ASSERT_TRUE(QFile::exists(output)) << "no output file";
    const QByteArray want = readAll(expectedPath), got = readAll(output);
    EXPECT_TRUE(got == want) << "output file\n" << diff(want, got);
}

INSTANTIATE_TEST_SUITE_P(Cases, Golden, testing::ValuesIn(caseNames()),
                         [](const testing::TestParamInfo<std::string>& info) { return info.param; });
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(Golden);

} // namespace

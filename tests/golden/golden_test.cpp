// Whole print runs through the real executable. Every folder under cases/
// holds a request and the exact bytes expected on paper and on standard
// output:
//   request.xml          the request (absent: the input file is missing)
//   settings.conf        settings that differ from cases/default.conf (optional;
//                        @TRANSLATIONS@ is the build's catalogues, @CASE@ the case folder)
//   args                 words replacing "@REQUEST@ @OUTPUT@" (optional)
//   env                  NAME=value lines added to the environment (optional)
//   expected.txt         the print file (absent: no print file may appear);
//                        a binary one (ESC/POS) is expected.bin, and shown as
//                        a hex dump where it differs
//   expected_stdout.txt  standard output (absent: it must stay empty)
//
// GOLDEN_UPDATE=1 in the environment rewrites the expected files from what
// the program does now, for review with git diff.
#include "testsupport.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace Qt::StringLiterals;
using testsupport::byteDiff;
using testsupport::readBytes;

namespace {

const QString casesDir = QStringLiteral(GOLDEN_CASES);

bool updating()
{
    return qEnvironmentVariableIntValue("GOLDEN_UPDATE") == 1;
}

// The case's settings go first inside the top-level group of the shared
// configuration: a lookup finds them before the defaults, whose groups of
// the same names it reaches only for keys the case does not set.
QByteArray configurationFor(const QDir& dir)
{
    QByteArray conf = readBytes(casesDir + "/default.conf"_L1);
    const QByteArray settings = readBytes(dir.filePath(u"settings.conf"_s));
    conf.insert(conf.indexOf('{') + 1, "\n" + settings);
    return conf.replace("@TRANSLATIONS@", ZENTARO_TRANSLATIONS).replace("@CASE@", dir.path().toLocal8Bit());
}

QStringList argumentsFor(const QDir& dir, const QString& request, const QString& output)
{
    QStringList args{u"@REQUEST@"_s, u"@OUTPUT@"_s};
    if (dir.exists(u"args"_s))
        args = QString::fromUtf8(readBytes(dir.filePath(u"args"_s)))
                   .split(QRegularExpression(u"\\s+"_s), Qt::SkipEmptyParts);
    for (QString& arg : args)
        arg.replace("@REQUEST@"_L1, request).replace("@OUTPUT@"_L1, output);
    return args;
}

// Compares with the expected file, or writes it when updating; an empty
// actual text means "no such file" for optional expectations.
void expectFile(const QString& path, const QByteArray& actual, bool optional, const char* what)
{
    if (updating()) {
        if (optional && actual.isEmpty())
            QFile::remove(path);
        else
            ASSERT_TRUE(testsupport::writeBytes(path, actual.toStdString()));
        return;
    }
    const QByteArray expected = readBytes(path);
    EXPECT_TRUE(actual == expected) << what << "\n" << byteDiff(expected, actual);
}

class Golden : public testing::TestWithParam<std::string>
{
};

TEST_P(Golden, PrintRun)
{
    const QDir dir(casesDir + u'/' + QString::fromStdString(GetParam()));
    QTemporaryDir work;
    ASSERT_TRUE(work.isValid());
    const QString home = work.filePath(u"home"_s);
    ASSERT_TRUE(testsupport::writeBytes(home + "/.zentaro/conf/zentaro.conf"_L1,
                                        configurationFor(dir).toStdString()));

    const QString request = dir.filePath(u"request.xml"_s);
    const QString output = work.filePath(u"out.txt"_s);
    // The print file is written in the locale's character set unless the
    // configuration names a code page; the case's env comes on top.
    const QStringList environment = QStringList{u"LC_ALL=C.UTF-8"_s}
        + QString::fromUtf8(readBytes(dir.filePath(u"env"_s))).split(u'\n', Qt::SkipEmptyParts);
    const testsupport::ProgramRun run = testsupport::runProgram(QStringLiteral(ZENTARO_PRINT),
                                                                argumentsFor(dir, request, output), home, {}, environment);
    EXPECT_EQ(run.status, 0) << run.err.toStdString();

    QByteArray gotStdout = run.out;
    // The program's and the case's paths differ from one checkout to the next.
    gotStdout.replace(ZENTARO_PRINT, "@PROGRAM@").replace(dir.path().toLocal8Bit(), "@CASE@");
    expectFile(dir.filePath(u"expected_stdout.txt"_s), gotStdout, true, "standard output");

    const bool printed = QFile::exists(output);
    const QByteArray printFile = printed ? readBytes(output) : QByteArray();
    const bool binary = updating() ? printFile.contains('\x1b') : dir.exists(u"expected.bin"_s);
    const QString expectedPath = dir.filePath(binary ? u"expected.bin"_s : u"expected.txt"_s);
    if (updating()) {
        QFile::remove(dir.filePath(binary ? u"expected.txt"_s : u"expected.bin"_s));
        if (printed)
            expectFile(expectedPath, printFile, false, "print file");
        else
            QFile::remove(expectedPath);
        return;
    }
    ASSERT_EQ(printed, QFile::exists(expectedPath)) << (printed ? "an unexpected print file was written"
                                                                : "no print file");
    if (printed)
        expectFile(expectedPath, printFile, false, "print file");
}

INSTANTIATE_TEST_SUITE_P(Cases, Golden, testing::ValuesIn(testsupport::subfolderNames(casesDir)),
                         [](const testing::TestParamInfo<std::string>& info) { return info.param; });
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(Golden);

} // namespace

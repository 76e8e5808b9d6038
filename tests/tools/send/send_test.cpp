#include "testsupport.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using testsupport::numberedLines;
using testsupport::readBytes;
using testsupport::writeBytes;

namespace {

using Result = testsupport::ProgramRun;

// zentaro-send in a home of its own, without a display: the paper prompt
// is a line on standard output answered on standard input.
class SendTest : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(home.isValid());
        ASSERT_TRUE(writeConfiguration(""));
        ASSERT_TRUE(writeBytes(source, numberedLines(7).toStdString()));
    }

    bool writeConfiguration(const QByteArray& settings) const
    {
        return writeBytes(home.filePath(u".zentaro/conf/zentaro.conf"_s),
                          ("zentaro : {\n" + settings + "};\n").toStdString());
    }

    // For the one test that talks with the program while it runs.
    void start(QProcess& process, const QStringList& arguments) const
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
            environment.remove(QString::fromLatin1(name));
        environment.insert(u"HOME"_s, home.path());
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral(ZENTARO_SEND), arguments);
    }

    Result send(const QStringList& arguments, const QByteArray& input = {}) const
    {
        return testsupport::runProgram(QStringLiteral(ZENTARO_SEND), arguments, home.path(), input);
    }

    QString path(const char* name) const { return home.filePath(QString::fromLatin1(name)); }

    QTemporaryDir home;
    const QString source = path("receipt.txt");
    const QString device = path("lp0");
};

TEST_F(SendTest, HelpAndVersion)
{
    const Result help = send({u"--help"_s});
    EXPECT_EQ(help.status, 0);
    EXPECT_TRUE(help.out.startsWith("Usage: zentaro-send [options] PRINTFILE DEVICE\n")) << help.out.toStdString();
    for (const char* option : {"--lines-per-sheet <N>", "--pause <MS>", "--page <P>", "--lines-per-page <N>",
                               "--copies <N>", "--copies-of <TYPE>", "--text-prompt", "--version"})
        EXPECT_TRUE(help.out.contains(option)) << option;
    EXPECT_EQ(help.err, "");

    const Result version = send({u"--version"_s});
    EXPECT_EQ(version.status, 0);
    EXPECT_EQ(version.out, "zentaro-send 0.1\n");
}

struct UsageCase
{
    const char* name;
    QStringList arguments;
    const char* error;
};

void PrintTo(const UsageCase& c, std::ostream* os)
{
    *os << c.name;
}

class SendUsage : public SendTest, public testing::WithParamInterface<UsageCase>
{
};

TEST_P(SendUsage, IsOneLineOnStandardError)
{
    const Result result = send(GetParam().arguments);
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, QByteArray("zentaro-send: ") + GetParam().error + "\n");
    EXPECT_EQ(result.out, "");
    EXPECT_FALSE(QFile::exists(device));
}

// "F" and "D" stand for the print file and the device: every case but the
// ones about them names both.
INSTANTIATE_TEST_SUITE_P(
    ZentaroSend, SendUsage,
    testing::Values(
        UsageCase{"nothing", {}, "needs a PRINTFILE and a DEVICE (see --help)"},
        UsageCase{"three_files", {u"F"_s, u"D"_s, u"E"_s}, "unexpected argument 'E' (see --help)"},
        UsageCase{"unknown_option", {u"--colour"_s, u"F"_s, u"D"_s}, "Unknown option 'colour'."},
        UsageCase{"pause_not_a_number", {u"--pause"_s, u"soon"_s, u"F"_s, u"D"_s},
                  "--pause: 'soon' is not a whole number (see --help)"},
        UsageCase{"page_without_length", {u"--page"_s, u"1"_s, u"F"_s, u"D"_s},
                  "--page needs --lines-per-page (see --help)"},
        UsageCase{"page_and_sheets",
                  {u"--page"_s, u"0"_s, u"--lines-per-page"_s, u"3"_s, u"--lines-per-sheet"_s, u"3"_s, u"F"_s, u"D"_s},
                  "--page sends one page and cannot take --lines-per-sheet (see --help)"},
        UsageCase{"two_counts", {u"--copies"_s, u"2"_s, u"--copies-of"_s, u"receipt"_s, u"F"_s, u"D"_s},
                  "--copies and --copies-of cannot be combined (see --help)"}));

TEST_F(SendTest, CopiesTheFile)
{
    const Result result = send({source, device});
    EXPECT_EQ(result.status, 0) << result.err.toStdString();
    EXPECT_EQ(readBytes(device), numberedLines(7));
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "");
}

TEST_F(SendTest, SendsOnePage)
{
    const Result result = send({u"--page"_s, u"1"_s, u"--lines-per-page"_s, u"3"_s, u"--pause"_s, u"1"_s, source, device});
    EXPECT_EQ(result.status, 0) << result.err.toStdString();
    EXPECT_EQ(readBytes(device), numberedLines(7).mid(33, 33));
}

TEST_F(SendTest, FailuresAreOneLineAndStatusOne)
{
    Result result = send({path("missing.txt"), device});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "zentaro-send: cannot read " + path("missing.txt").toUtf8() + ": No such file or directory\n");
    EXPECT_FALSE(QFile::exists(device));

    result = send({source, path("no/such/lp0")});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "zentaro-send: cannot write to " + path("no/such/lp0").toUtf8() + "\n");

    result = send({u"--page"_s, u"3"_s, u"--lines-per-page"_s, u"3"_s, source, device});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "zentaro-send: " + source.toUtf8() + " has no page 3 of 3 lines\n");
    EXPECT_EQ(result.out, "");
}

// Reads what is waiting in the process's standard output until `expected`
// has come, or a timeout.
bool waitForOutput(QProcess& process, QByteArray* out, const QByteArray& expected)
{
    while (!out->endsWith(expected)) {
        if (!process.waitForReadyRead(30000))
            return false;
        *out += process.readAllStandardOutput();
    }
    return true;
}

TEST_F(SendTest, PaperPromptWaitsForALine)
{
    QProcess process;
    start(process, {u"--lines-per-sheet"_s, u"3"_s, source, device});
    QByteArray out;
    ASSERT_TRUE(waitForOutput(process, &out, "Insert a new sheet\n")) << out.toStdString();
    // The first sheet, one line longer than the others, and nothing more
    // until the line comes.
    EXPECT_EQ(readBytes(device), numberedLines(4));
    QThread::msleep(200);
    EXPECT_EQ(readBytes(device), numberedLines(4));
    EXPECT_EQ(process.state(), QProcess::Running);

    process.write("\n");
    ASSERT_TRUE(waitForOutput(process, &out, "Insert a new sheet\nInsert a new sheet\n")) << out.toStdString();
    EXPECT_EQ(readBytes(device), numberedLines(7));
    process.write("ok\n");
    process.closeWriteChannel();
    ASSERT_TRUE(process.waitForFinished(30000));
    EXPECT_EQ(process.exitCode(), 0);
    EXPECT_EQ(out + process.readAllStandardOutput(), "Insert a new sheet\nInsert a new sheet\n");
}

TEST_F(SendTest, EndOfInputGoesOn)
{
    const Result result = send({u"--lines-per-sheet"_s, u"2"_s, source, device});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "Insert a new sheet\nInsert a new sheet\nInsert a new sheet\n");
    EXPECT_EQ(readBytes(device), numberedLines(7));
}

TEST_F(SendTest, PromptInTheConfiguredLanguage)
{
    ASSERT_TRUE(writeConfiguration("language : { basedir = \"" ZENTARO_TRANSLATIONS "/\"; file = \"zentaro_it.qm\"; };\n"));
    const Result result = send({u"--lines-per-sheet"_s, u"5"_s, source, device});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "Inserire un nuovo foglio\n");
}

// Copies go one after another to a FIFO that this test holds open, as a
// printer's queue would take them.
class SendToFifo : public SendTest
{
protected:
    void SetUp() override
    {
        SendTest::SetUp();
        ASSERT_EQ(::mkfifo(QFile::encodeName(device).constData(), 0600), 0);
        // Read and write: opening does not wait for a writer, and the
        // writers do not wait for a reader.
        reader = ::open(QFile::encodeName(device).constData(), O_RDWR | O_NONBLOCK);
        ASSERT_GE(reader, 0);
    }
    void TearDown() override
    {
        if (reader >= 0)
            ::close(reader);
    }

    QByteArray received() const
    {
        QByteArray bytes;
        char buffer[4096];
        ssize_t n;
        while ((n = ::read(reader, buffer, sizeof buffer)) > 0)
            bytes.append(buffer, n);
        return bytes;
    }

    int reader = -1;
};

TEST_F(SendToFifo, CountFromTheCommandLine)
{
    const Result result = send({u"--copies"_s, u"2"_s, source, device});
    EXPECT_EQ(result.status, 0) << result.err.toStdString();
    EXPECT_EQ(received(), numberedLines(7).repeated(2));
}

TEST_F(SendToFifo, CountFromTheConfiguration)
{
    ASSERT_TRUE(writeConfiguration("receiptdoc : { copyNumber = 3; };\ninvoicedoc : { copyNumber = 0; };\n"));
    Result result = send({u"--copies-of"_s, u"Receipt"_s, source, device});
    EXPECT_EQ(result.status, 0) << result.err.toStdString();
    EXPECT_EQ(received(), numberedLines(7).repeated(3));

    // A type whose count is not set sends one copy.
    result = send({u"--copies-of"_s, u"delivery"_s, source, device});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(received(), numberedLines(7));

    // Zero copies: the configuration does not print this type.
    result = send({u"--copies-of"_s, u"invoice"_s, source, device});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(received(), "");
}

} // namespace

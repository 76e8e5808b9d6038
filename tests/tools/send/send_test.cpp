// zentaro-send as a process, in a home of its own and without a display:
// the paper prompt is a line on standard output answered on standard input.
// How the copy pages and prompts is the utility library's to test; here,
// what the program adds: its command line, its messages and statuses, the
// prompt's channel and language, the number of copies.
#include "testsupport.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QThread>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using testsupport::numberedLines;
using testsupport::readBytes;
using testsupport::writeBytes;

namespace {

using Result = testsupport::ProgramRun;

// The program runs in the home folder: the print file is receipt.txt there
// and the device is lp0 unless a test says otherwise.
class SendTest : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(home.isValid());
        ASSERT_TRUE(writeConfiguration(""));
        ASSERT_TRUE(writeBytes(path("receipt.txt"), numberedLines(7).toStdString()));
        ASSERT_EQ(::mkfifo(QFile::encodeName(path("fifo")).constData(), 0600), 0);
    }

    bool writeConfiguration(const QByteArray& settings) const
    {
        return writeBytes(configuration, ("zentaro : {\n" + settings + "};\n").toStdString());
    }

    Result send(const QStringList& arguments, const QStringList& environment = {}) const
    {
        return testsupport::runProgram(QStringLiteral(ZENTARO_SEND), arguments, home.path(), {}, environment);
    }

    QString path(const char* name) const { return home.filePath(QString::fromLatin1(name)); }

    QTemporaryDir home;
    const QString configuration = path(".zentaro/conf/zentaro.conf");
};

struct RunCase
{
    const char* name;
    QStringList arguments;
    int status;
    const char* error; // after "zentaro-send: "; none for a run that succeeds
};

void PrintTo(const RunCase& c, std::ostream* os)
{
    *os << c.name;
}

class SendRun : public SendTest, public testing::WithParamInterface<RunCase>
{
};

TEST_P(SendRun, StatusAndOneErrorLine)
{
    const Result result = send(GetParam().arguments);
    EXPECT_EQ(result.status, GetParam().status);
    EXPECT_EQ(result.err, GetParam().error ? QByteArray("zentaro-send: ") + GetParam().error + "\n" : "");
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(readBytes(path("receipt.txt")), numberedLines(7));
    if (GetParam().status == 0) {
        EXPECT_EQ(readBytes(path("lp0")), numberedLines(7));
    } else if (GetParam().status == 2) {
        EXPECT_FALSE(QFile::exists(path("lp0")));
    }
}

const QString F = u"receipt.txt"_s, D = u"lp0"_s;

INSTANTIATE_TEST_SUITE_P(
    ZentaroSend, SendRun,
    testing::Values(
        RunCase{"copies_the_file", {F, D}, 0, nullptr},
        RunCase{"nothing", {}, 2, "needs a PRINTFILE and a DESTINATION (see --help)"},
        RunCase{"three_files", {F, D, u"E"_s}, 2, "unexpected argument 'E' (see --help)"},
        RunCase{"pause_not_a_number", {u"--pause"_s, u"soon"_s, F, D}, 2,
                "--pause: 'soon' is not a whole number (see --help)"},
        RunCase{"no_copies", {u"--copies"_s, u"0"_s, F, D}, 2, "--copies: '0' is not a whole number of 1 or more (see --help)"},
        RunCase{"page_without_length", {u"--page"_s, u"1"_s, F, D}, 2, "--page needs --lines-per-page (see --help)"},
        RunCase{"page_and_sheets", {u"--page"_s, u"0"_s, u"--lines-per-page"_s, u"3"_s, u"--lines-per-sheet"_s, u"3"_s, F, D},
                2, "--page sends one page and cannot take --lines-per-sheet (see --help)"},
        RunCase{"two_counts", {u"--copies"_s, u"2"_s, u"--copies-of"_s, u"receipt"_s, F, D}, 2,
                "--copies and --copies-of cannot be combined (see --help)"},
        RunCase{"unreadable_print_file", {u"missing.txt"_s, D}, 1, "cannot read missing.txt: No such file or directory"},
        RunCase{"no_such_page", {u"--page"_s, u"3"_s, u"--lines-per-page"_s, u"3"_s, F, D}, 1,
                "receipt.txt has no page 3 of 3 lines"},
        RunCase{"device_not_there", {u"--retries"_s, u"0"_s, F, u"usb/lp0"_s}, 3,
                "cannot open usb/lp0: No such file or directory"},
        RunCase{"fifo_without_reader", {u"--timeout"_s, u"1"_s, u"--retries"_s, u"0"_s, F, u"fifo"_s}, 3,
                "cannot open fifo: nothing read from it within 1 s"},
        RunCase{"the_print_file_itself", {F, u"./receipt.txt"_s}, 2, "./receipt.txt is the print file itself (see --help)"},
        RunCase{"host_and_port", {F, u"10.0.0.5:9100"_s}, 2,
                "10.0.0.5:9100 is no file; a network printer is socket://10.0.0.5:9100 (see --help)"},
        RunCase{"unknown_scheme", {F, u"ipp://10.0.0.5"_s}, 2,
                "unknown kind of destination ipp://10.0.0.5; a network printer is socket://HOST:PORT, a CUPS queue "
                "cups:QUEUE (see --help)"},
        RunCase{"unknown_document_type", {u"--copies-of"_s, u"menu"_s, F, D}, 2,
                "--copies-of: no document type 'menu' (see --help)"},
        RunCase{"unknown_printer", {u"--printer"_s, u"bar"_s, F}, 2,
                "no printer bar in the configuration (zentaro.printers.bar.uri) (see --help)"},
        RunCase{"device_full", {F, u"/dev/full"_s}, 3,
                "cannot write to /dev/full after 0 lines (0 bytes): No space left on device"}));

TEST_F(SendTest, EscPosBytesGoUnchanged)
{
    // A printer's reset, a raster picture holding every byte value (NUL and
    // line feeds among them) in one run longer than a read, the drawer, the cut.
    QByteArray bytes = "\x1b@\x1bt\x13\x1dv0\x00\x20\x00\x08\x00"_ba;
    for (int i = 0; i < 256; ++i)
        bytes += char(i);
    bytes += "TOTAL\n\x1bp\x00\x19\xfa\x1b" "d\x04\x1dV\x01"_ba;
    ASSERT_TRUE(writeBytes(path("receipt.bin"), bytes.toStdString()));
    EXPECT_EQ(send({u"receipt.bin"_s, D}).status, 0);
    EXPECT_EQ(readBytes(path("lp0")), bytes);
}

TEST_F(SendTest, MissingConfigurationIsAWarningOnStandardError)
{
    ASSERT_TRUE(QFile::remove(configuration));
    const Result result = send({u"--copies-of"_s, u"receipt"_s, u"receipt.txt"_s, u"lp0"_s});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "zentaro-send: no configuration at " + configuration.toLocal8Bit() + "; sending with the defaults\n");
    EXPECT_EQ(readBytes(path("lp0")), numberedLines(7));
}

TEST_F(SendTest, PaperPromptWaitsForALine)
{
    QProcess process;
    testsupport::startProgram(process, QStringLiteral(ZENTARO_SEND), {u"--lines-per-sheet"_s, u"3"_s, u"receipt.txt"_s, u"lp0"_s},
                              home.path());
    QByteArray out;
    ASSERT_TRUE(testsupport::waitForOutput(process, &out, "Insert a new sheet\n")) << out.toStdString();
    // Nothing more until the line comes.
    EXPECT_EQ(readBytes(path("lp0")), numberedLines(4));
    QThread::msleep(200);
    EXPECT_EQ(readBytes(path("lp0")), numberedLines(4));
    EXPECT_EQ(process.state(), QProcess::Running);

    process.write("ok\n");
    process.closeWriteChannel();
    ASSERT_TRUE(process.waitForFinished(30000));
    EXPECT_EQ(process.exitCode(), 0);
    EXPECT_EQ(out + process.readAllStandardOutput(), "Insert a new sheet\nInsert a new sheet\n");
    EXPECT_EQ(readBytes(path("lp0")), numberedLines(7));
}

// Platforms that draw nowhere are no display, whatever DISPLAY says, and
// --text-prompt keeps to the terminal where there is one (here a display
// that is not there, which a window would fail on): the prompt goes to the
// terminal, where the end of the input answers it.
TEST_F(SendTest, PromptOnTheTerminalWithoutAVisibleDisplay)
{
    const struct
    {
        QStringList environment;
        QStringList options;
    } cases[] = {
        {{}, {}},
        {{u"QT_QPA_PLATFORM=offscreen"_s, u"DISPLAY=:99"_s}, {}},
        {{u"QT_QPA_PLATFORM=minimal"_s, u"WAYLAND_DISPLAY=wayland-99"_s}, {}},
        {{u"QT_QPA_PLATFORM=offscreen:fontengine=freetype"_s, u"DISPLAY=:99"_s}, {}},
        {{u"DISPLAY=:99"_s}, {u"--text-prompt"_s}},
    };
    for (const auto& [environment, options] : cases) {
        const Result result =
            send(options + QStringList{u"--lines-per-sheet"_s, u"5"_s, u"receipt.txt"_s, u"lp0"_s}, environment);
        EXPECT_EQ(result.status, 0) << environment.join(u' ').toStdString();
        EXPECT_EQ(result.out, "Insert a new sheet\n") << environment.join(u' ').toStdString();
        EXPECT_EQ(readBytes(path("lp0")), numberedLines(7));
    }
}

// A FIFO is tried again until a reader comes, within the timeout.
TEST_F(SendTest, FifoWaitsForItsReader)
{
    QProcess process;
    testsupport::startProgram(process, QStringLiteral(ZENTARO_SEND),
                              {u"--timeout"_s, u"2"_s, u"--retries"_s, u"0"_s, u"receipt.txt"_s, u"fifo"_s},
                              home.path());
    QThread::msleep(300);
    // Opened without waiting for a writer; what is written stays in the
    // FIFO while this end is open.
    const int reader = ::open(QFile::encodeName(path("fifo")).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    ASSERT_GE(reader, 0);
    ASSERT_TRUE(process.waitForFinished(30000));
    EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
    char buffer[256];
    const ssize_t n = ::read(reader, buffer, sizeof buffer);
    ::close(reader);
    EXPECT_EQ(QByteArray(buffer, std::max<ssize_t>(n, 0)), numberedLines(7));
}

TEST_F(SendTest, PromptInTheConfiguredLanguage)
{
    ASSERT_TRUE(writeConfiguration("language : { basedir = \"" ZENTARO_TRANSLATIONS "/\"; file = \"zentaro_it.qm\"; };\n"));
    const Result result = send({u"--lines-per-sheet"_s, u"5"_s, u"receipt.txt"_s, u"lp0"_s});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "Inserire un nuovo foglio\n");
}

// The copies go one after another to the device, a regular file here,
// which keeps every one.
TEST_F(SendTest, NumberOfCopies)
{
    ASSERT_TRUE(writeConfiguration("receiptdoc : { copyNumber = 3; };\ninvoicedoc : { copyNumber = 0; };\n"));
    const struct
    {
        QStringList count;
        int copies;
    } cases[] = {
        {{u"--copies"_s, u"2"_s}, 2},
        {{u"--copies-of"_s, u"Receipt"_s}, 3},
        {{u"--copies-of"_s, u"delivery"_s}, 1}, // not set
        {{u"--copies-of"_s, u"invoice"_s}, 0}, // this type is not printed
    };
    for (const auto& [count, copies] : cases) {
        const Result result = send(count + QStringList{u"receipt.txt"_s, u"lp0"_s});
        EXPECT_EQ(result.status, 0) << result.err.toStdString();
        EXPECT_EQ(readBytes(path("lp0")), numberedLines(7).repeated(copies)) << count.join(u' ').toStdString();
    }
}

TEST_F(SendTest, OnePage)
{
    const QByteArray lines = numberedLines(7);
    const struct
    {
        const char* page;
        QByteArray expected;
    } cases[] = {
        {"1", lines.mid(33, 33)}, // lines 4 to 6
        {"2", lines.mid(66)}, // the last page, shorter
    };
    for (const auto& [page, expected] : cases) {
        const Result result = send({u"--page"_s, QString::fromLatin1(page), u"--lines-per-page"_s, u"3"_s, u"receipt.txt"_s, u"-"_s});
        EXPECT_EQ(result.status, 0) << result.err.toStdString();
        EXPECT_EQ(result.out, expected) << page;
    }
}

// Standard input to standard output, and a reader that has gone away: an
// error line and a status, not a silent end by a signal.
TEST_F(SendTest, StandardStreams)
{
    const Result piped = testsupport::runProgram(QStringLiteral(ZENTARO_SEND), {u"-"_s, u"-"_s}, home.path(), "a\nb\n");
    EXPECT_EQ(piped.status, 0);
    EXPECT_EQ(piped.out, "a\nb\n");

    const Result closed = testsupport::runProgram(
        u"bash"_s, {u"-c"_s, u"{ sleep 0.3; \"$0\" receipt.txt -; } | : ; exit ${PIPESTATUS[0]}"_s, QStringLiteral(ZENTARO_SEND)},
        home.path());
    EXPECT_EQ(closed.status, 3);
    EXPECT_TRUE(closed.err.endsWith("zentaro-send: cannot write to - after 0 lines (0 bytes): Broken pipe\n"))
        << closed.err.toStdString();
}

} // namespace

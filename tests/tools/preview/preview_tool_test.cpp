// zentaro-preview as a process: what its command line accepts, where its
// pictures and findings go, and its exit status.
#include "testsupport.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using testsupport::readBytes;
using testsupport::writeBytes;

namespace {

const char settings[] = R"(zentaro : {
    receiptdoc : { quantityFieldWidth = 3; priceFieldWidth = 8; totalPriceFieldWidth = 9; paperWidth = 40; };
};
)";

const char cleanRequest[] = R"(<?xml version="1.0" encoding="UTF-8"?>
<receipt>
  <method name="printFullOrderReceipt"/>
  <receipe number="3" name="Tagliatelle" price="9.50" totalPrice="28.50"/>
  <total price="28.50"/>
</receipt>
)";

// Two findings: an attribute not read, and a line wider than the paper.
const char flaggedRequest[] = R"(<?xml version="1.0" encoding="UTF-8"?>
<receipt>
  <method name="printFullOrderReceipt"/>
  <receipe number="1000" name="Grissini" price="1234567.00" totalprice="1.00"/>
</receipt>
)";

using Outcome = testsupport::ProgramRun;

class PreviewTool : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(work.isValid());
        ASSERT_TRUE(writeBytes(work.filePath(u".zentaro/conf/zentaro.conf"_s), settings));
        ASSERT_TRUE(writeBytes(path(u"clean.xml"_s), cleanRequest));
        ASSERT_TRUE(writeBytes(path(u"flagged.xml"_s), flaggedRequest));
    }

    QString path(const QString& name) const { return work.filePath(name); }

    Outcome run(const QStringList& arguments, const QByteArray& input = {}, const QString& program = ZENTARO_PREVIEW)
    {
        return testsupport::runProgram(program, arguments, work.path(), input, {u"LC_ALL=C.UTF-8"_s});
    }

    QTemporaryDir work;
};

TEST_F(PreviewTool, WrongCommandLinesAndUnreadableInputAreOneLineAndStatusTwo)
{
    ASSERT_TRUE(QDir(work.path()).mkdir(u"folder"_s));
    ASSERT_TRUE(writeBytes(path(u"same.svg"_s), cleanRequest));
    ASSERT_TRUE(QFile::link(path(u"same.svg"_s), path(u"link.svg"_s)));
    const QStringList cases[] = {
        {},
        {u"clean.xml"_s},
        {u"clean.xml"_s, u"out.txt"_s},
        {u"clean.xml"_s, u"out.svg"_s, u"more"_s},
        {u"--width"_s, u"0"_s, u"clean.xml"_s, u"out.svg"_s},
        {u"--width"_s, u"wide"_s, u"clean.xml"_s, u"out.svg"_s},
        {u"missing.xml"_s, u"out.svg"_s},
        {u"folder"_s, u"out.svg"_s},
        {u"--config"_s, u"missing.conf"_s, u"clean.xml"_s, u"out.svg"_s},
        {u"clean.xml"_s, u"no/such/folder/out.svg"_s},
        {u"/dev/zero"_s, u"out.svg"_s},
        {u"same.svg"_s, u"same.svg"_s},
        {u"link.svg"_s, u"same.svg"_s},
    };
    for (const QStringList& arguments : cases) {
        const Outcome result = run(arguments);
        const std::string shown = arguments.join(u' ').toStdString();
        EXPECT_EQ(result.status, 2) << shown;
        EXPECT_TRUE(result.out.isEmpty()) << shown;
        EXPECT_TRUE(result.err.startsWith("zentaro-preview: ")) << shown << ": " << result.err.toStdString();
        EXPECT_EQ(result.err.count('\n'), 1) << shown << ": " << result.err.toStdString();
    }
    EXPECT_FALSE(QFile::exists(path(u"out.svg"_s)));
    EXPECT_EQ(readBytes(path(u"same.svg"_s)), cleanRequest);
}

// Standard output whose reader has gone (the picture goes there), or that
// is closed (the list goes there): the failed write is reported, the
// program is not ended by a signal.
TEST_F(PreviewTool, AFailedWriteToStandardOutputIsReported)
{
    const QByteArray program = ZENTARO_PREVIEW, input = path(u"flagged.xml"_s).toLocal8Bit();
    const QByteArray errors = path(u"errors.txt"_s).toLocal8Bit(), home = "HOME=" + work.path().toLocal8Bit();
    for (const QByteArray& output : {QByteArray("-"), path(u"flagged.svg"_s).toLocal8Bit()}) {
        int ends[2];
        ASSERT_EQ(pipe(ends), 0);
        close(ends[0]);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        if (output == "-")
            posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
        else
            posix_spawn_file_actions_addclose(&actions, STDOUT_FILENO);
        posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, errors.constData(),
                                         O_WRONLY | O_CREAT | O_TRUNC, 0600);
        const char* argv[] = {program.constData(), input.constData(), output.constData(), nullptr};
        const char* envp[] = {home.constData(), "LC_ALL=C.UTF-8", nullptr};
        pid_t pid = 0;
        ASSERT_EQ(posix_spawn(&pid, program.constData(), &actions, nullptr, const_cast<char**>(argv),
                              const_cast<char**>(envp)), 0);
        posix_spawn_file_actions_destroy(&actions);
        close(ends[1]);
        int status = 0;
        ASSERT_EQ(waitpid(pid, &status, 0), pid);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 2) << output.constData() << ": " << status;
        const QByteArray message = readBytes(QString::fromLocal8Bit(errors));
        EXPECT_TRUE(message.startsWith("zentaro-preview: cannot write ") && message.count('\n') == 1)
            << message.constData();
    }
}

TEST_F(PreviewTool, StatusSaysWhetherAnythingWasFlagged)
{
    const Outcome clean = run({u"clean.xml"_s, u"clean.svg"_s});
    EXPECT_EQ(clean.status, 0) << clean.err.toStdString();
    EXPECT_EQ(clean.out, "");
    EXPECT_TRUE(readBytes(path(u"clean.svg"_s)).startsWith("<?xml"));

    const Outcome flagged = run({u"flagged.xml"_s, u"flagged.html"_s});
    EXPECT_EQ(flagged.status, 1);
    EXPECT_EQ(flagged.out.toStdString(),
              "flagged.xml: printed line 2: attribute \"totalprice\" of <receipe> is not read by "
              "printFullOrderReceipt; did you mean \"totalPrice\"? (request line 4, column 61)\n"
              "flagged.xml: printed line 2: wider than the paper: 43 characters on paper 40 wide\n");
    const QByteArray html = readBytes(path(u"flagged.html"_s));
    EXPECT_TRUE(html.contains("<svg") && html.contains("<li>flagged.xml: printed line 2: wider")) << html.toStdString();
}

TEST_F(PreviewTool, PictureOnStandardOutputListOnStandardError)
{
    const Outcome result = run({u"-"_s, u"-"_s}, flaggedRequest);
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.out.startsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg"));
    EXPECT_TRUE(result.out.endsWith("</svg>\n"));
    EXPECT_EQ(result.err.count('\n'), 2) << result.err.toStdString();
    EXPECT_TRUE(result.err.startsWith("<stdin>: printed line 2: ")) << result.err.toStdString();
}

TEST_F(PreviewTool, PngNeedsNoDisplay)
{
    const Outcome result = run({u"clean.xml"_s, u"clean.png"_s});
    EXPECT_EQ(result.status, 0) << result.err.toStdString();
    EXPECT_EQ(result.err, "");
    EXPECT_TRUE(readBytes(path(u"clean.png"_s)).startsWith("\x89PNG\r\n"));
}

TEST_F(PreviewTool, APrintFileShowsAsItsRequestDoes)
{
    const Outcome print = run({u"flagged.xml"_s, u"flagged.txt"_s}, {}, ZENTARO_PRINT);
    ASSERT_EQ(print.status, 0);
    // The print file does not say its document; its paper is the widest configured.
    const Outcome result = run({u"flagged.txt"_s, u"printed.svg"_s});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out.toStdString(), "flagged.txt: printed line 2: wider than the paper: 43 characters on paper 40 wide\n");
    const Outcome narrower = run({u"--width"_s, u"32"_s, u"flagged.txt"_s, u"narrow.svg"_s});
    EXPECT_EQ(narrower.out.count('\n'), 2);
}

} // namespace

// The print run as a process, where a golden file cannot show what matters:
// a closed standard output, the request named twice, memory running out.
#include "testsupport.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using testsupport::readBytes;
using testsupport::writeBytes;

extern char** environ;

namespace {

const QByteArray request = R"(<?xml version="1.0" encoding="UTF-8"?>
<receipt>
  <method name="printFullOrderReceipt"/>
  <receipe number="2" name="Pizza Margherita" price="7.50" totalPrice="15.00"/>
  <total price="15.00"/>
</receipt>
)";

class PrintRun : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(work.isValid());
        requestPath = work.filePath(u"request.xml"_s);
        printPath = work.filePath(u"print.txt"_s);
        ASSERT_TRUE(writeBytes(requestPath, request.toStdString()));
    }

    // Runs the program with HOME pointing at the (empty) work folder.
    testsupport::ProgramRun run(const QStringList& arguments, const QStringList& environment = {})
    {
        return testsupport::runProgram(QStringLiteral(ZENTARO_PRINT), arguments, work.path(), {}, environment);
    }

    QTemporaryDir work;
    QString requestPath;
    QString printPath;
};

// The missing configuration is reported before the print file is made: a
// reader of the diagnostics that has gone away must not end the run there.
TEST_F(PrintRun, ClosedStandardOutputDoesNotEndTheRun)
{
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    close(ends[0]);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    const QByteArray program = ZENTARO_PRINT, in = requestPath.toLocal8Bit(), out = printPath.toLocal8Bit();
    const QByteArray home = "HOME=" + work.path().toLocal8Bit();
    char* argv[] = {const_cast<char*>(program.constData()), const_cast<char*>(in.constData()),
                    const_cast<char*>(out.constData()), nullptr};
    char* envp[] = {const_cast<char*>(home.constData()), nullptr};
    pid_t pid = 0;
    ASSERT_EQ(posix_spawn(&pid, program.constData(), &actions, nullptr, argv, envp), 0);
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    int status = 0;
    ASSERT_EQ(waitpid(pid, &status, 0), pid);
    ASSERT_TRUE(WIFEXITED(status)) << "ended by signal " << WTERMSIG(status);
    EXPECT_EQ(WEXITSTATUS(status), 0);
    EXPECT_TRUE(readBytes(printPath).contains("Pizza Margherita"));
}

TEST_F(PrintRun, TheRequestIsNeverItsOwnPrintFile)
{
    const QString link = work.filePath(u"link.xml"_s);
    ASSERT_TRUE(QFile::link(requestPath, link));
    for (const QString& output : {requestPath, link}) {
        const testsupport::ProgramRun done = run({requestPath, output});
        EXPECT_EQ(done.status, 0);
        EXPECT_TRUE(done.out.endsWith(
            "The output file is the input file, nothing was written: " + output.toLocal8Bit() + "\n"));
        EXPECT_EQ(readBytes(requestPath), request);
    }
}

// Memory that runs out in the middle of a request keeps what was rendered
// before. No allocation above a limit succeeds, and one item's name is
// larger than that: in the reader's buffer (first case) or once it is text
// (second case: its tab is blanked, so it is decoded rather than printed as
// the request's bytes).
TEST_F(PrintRun, RunningOutOfMemoryKeepsWhatWasRendered)
{
    struct Case { int nameKiB; int limitMiB; const char* message; };
    const Case cases[] = {
        {1200, 2, "XML input not read past line 5: out of memory\n"},
        {1700, 3, "Out of memory: the print file ends with what was rendered before\n"},
    };
    for (const Case& c : cases) {
        QByteArray large = request;
        large.insert(large.indexOf("  <total"), "  <receipe number=\"1\" name=\"&#9;" + QByteArray(c.nameKiB * 1024, 'x')
                                                      + "\" price=\"1\" totalPrice=\"1\"/>\n");
        ASSERT_TRUE(writeBytes(requestPath, large.toStdString()));
#ifdef ZENTARO_SANITIZED
        const QStringList limit{u"ASAN_OPTIONS=allocator_may_return_null=1:detect_leaks=0:max_allocation_size_mb="_s
                                + QString::number(c.limitMiB)};
#else
        const QStringList limit{u"LD_PRELOAD="_s + QStringLiteral(FAILING_MALLOC),
                                u"FAIL_ALLOCATIONS_OVER="_s + QString::number(c.limitMiB << 20)};
#endif
        const testsupport::ProgramRun done = run({requestPath, printPath}, limit);
        EXPECT_EQ(done.status, 0);
        EXPECT_EQ(done.out.toStdString(),
                  "Error in the method FileReader::open( " + work.path().toStdString()
                      + "/.zentaro/conf/zentaro.conf ): File Not Found\n" + c.message);
        const QByteArray printed = readBytes(printPath);
        EXPECT_TRUE(printed.contains("Pizza Margherita")) << c.nameKiB;
        EXPECT_FALSE(printed.contains("xxxx")) << c.nameKiB;
    }
}

// Each fault a run can meet: by default the suite's contract (status 0,
// its own lines on standard output); with --strict also one line on
// standard error and status 1.
TEST_F(PrintRun, StrictRunsReportEachFault)
{
    ASSERT_TRUE(writeBytes(work.filePath(u"cut.xml"_s), request.left(request.indexOf("  <total")).toStdString()));
    ASSERT_TRUE(writeBytes(work.filePath(u"unknown.xml"_s), "<r><method name=\"printRecipe\"/></r>"));
    ASSERT_TRUE(writeBytes(work.filePath(u"catalogue.conf"_s),
                           "zentaro : { language : { basedir = \"/nowhere/\"; file = \"zentaro_it.qm\"; }; };\n"));
    struct Case
    {
        const char* name;
        QStringList arguments;
        const char* error; // the strict run's line on standard error
        const char* said;  // a line on standard output in both modes, if any
    };
    const QString cut = work.filePath(u"cut.xml"_s);
    const Case cases[] = {
        {"missing request", {work.filePath(u"none.xml"_s), printPath}, "cannot read the request ", nullptr},
        {"print file in no folder", {requestPath, u"/nonexistent/print.txt"_s}, "cannot write the print file ",
         "PrintManager::printAbstractOrder(...): Unable To Open File"},
        {"full disk", {requestPath, u"/dev/full"_s}, "the print file /dev/full is incomplete: ",
         "Writing /dev/full failed, the print file is incomplete: "},
        {"not well-formed", {cut, printPath}, "the request is not well-formed at line 5, column 1: no element found", nullptr},
        {"unknown method", {work.filePath(u"unknown.xml"_s), printPath}, "unknown method \"printRecipe\"",
         "File Format Not Supported"},
        {"missing catalogue", {u"--config"_s, work.filePath(u"catalogue.conf"_s), requestPath, printPath},
         "the label catalogue is missing", "Label catalogue not found, labels stay untranslated: /nowhere/zentaro_it.qm"},
    };
    for (const Case& c : cases) {
        const testsupport::ProgramRun plain = run(c.arguments);
        EXPECT_EQ(plain.status, 0) << c.name;
        EXPECT_EQ(plain.err, "") << c.name;
        const testsupport::ProgramRun strict = run(QStringList{u"--strict"_s} + c.arguments);
        EXPECT_EQ(strict.status, 1) << c.name;
        EXPECT_TRUE(strict.err.startsWith(QByteArray("zentaro-print: ") + c.error)) << c.name << ": " << strict.err.toStdString();
        EXPECT_EQ(strict.err.count('\n'), 1) << c.name;
        if (c.said) {
            EXPECT_TRUE(plain.out.contains(c.said) && strict.out.contains(c.said)) << c.name;
        }
    }
    EXPECT_EQ(run({u"--strict"_s, requestPath}).status, 2);
    EXPECT_EQ(run({u"--strict"_s, requestPath, printPath}).status, 0);
}

// "-" reads the request from standard input and writes the print file to
// standard output, which then carries nothing else.
TEST_F(PrintRun, StandardStreams)
{
    const testsupport::ProgramRun done =
        testsupport::runProgram(QStringLiteral(ZENTARO_PRINT), {u"-"_s, u"-"_s}, work.path(), request);
    EXPECT_EQ(done.status, 0);
    EXPECT_TRUE(done.out.startsWith("\nj\n")) << done.out.toStdString();
    EXPECT_TRUE(done.out.contains("Pizza Margherita"));
    EXPECT_TRUE(done.err.contains("File Not Found"));
}

#ifndef ZENTARO_SANITIZED
// Memory that runs out for good at any point of the render, not only for
// one large piece: the run still ends normally, with what it rendered.
TEST_F(PrintRun, AllocationsFailingFromAnyPointEndNormally)
{
    QByteArray items;
    for (int i = 0; i < 300; ++i)
        items += "  <receipe number=\"1\" name=\"Pizza " + QByteArray::number(i) + "\" price=\"1\" totalPrice=\"1\"/>\n";
    QByteArray large = request;
    large.insert(large.indexOf("  <total"), items);
    ASSERT_TRUE(writeBytes(requestPath, large.toStdString()));
    int rendering = 0;
    // From before the print file is made to past the end of the run.
    for (int after = 0; after < 1500; after += 5) {
        QFile::remove(printPath);
        const testsupport::ProgramRun done =
            run({requestPath, printPath},
                {u"LD_PRELOAD="_s + QStringLiteral(FAILING_MALLOC), u"FAIL_AFTER_ALLOCATIONS="_s + QString::number(after)});
        if (!QFile::exists(printPath))
            continue; // the toolkit itself could not start
        ++rendering;
        EXPECT_EQ(done.status, 0) << "after " << after << " allocations: " << done.err.toStdString();
    }
    EXPECT_GT(rendering, 0);
}
#endif

// Without a code page in the configuration the print file is in the
// locale's character set; the locale is compiled here when the system does
// not have it.
TEST_F(PrintRun, WritesTheLocalesCharacterSetByDefault)
{
    const QString locales = work.filePath(u"locales"_s);
    ASSERT_TRUE(QDir().mkpath(locales));
    QProcess::execute(u"localedef"_s, {u"-i"_s, u"it_IT"_s, u"-f"_s, u"ISO-8859-15"_s,
                                       locales + u"/it_IT.ISO-8859-15"_s});
    ASSERT_TRUE(QFile::exists(locales + u"/it_IT.ISO-8859-15/LC_CTYPE"_s)) << "localedef failed";
    ASSERT_TRUE(writeBytes(requestPath, "<?xml version=\"1.0\" encoding=\"UTF-8\"?><r>"
                                        "<method name=\"printPartialOrder\"/>"
                                        "<receipe number=\"1\" name=\"Caff\xc3\xa8 \xe2\x82\xac \xe2\x80\xa6\"/></r>"));
    const testsupport::ProgramRun done =
        run({requestPath, printPath}, {u"LOCPATH="_s + locales, u"LC_ALL=it_IT.ISO-8859-15"_s});
    EXPECT_EQ(done.status, 0);
    EXPECT_TRUE(readBytes(printPath).contains("\"1 Caff\xe8 \xa4 ...")) << readBytes(printPath).toStdString();
    EXPECT_TRUE(done.out.endsWith(
        "Characters the printer lacks were printed as their closest text: 1 in ISO-8859-15\n"));
}

} // namespace

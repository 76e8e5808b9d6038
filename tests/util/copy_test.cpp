// The paged copy in a widgets application on the offscreen platform, which
// shows no box: the paper prompt is the terminal's.
#include "hlibrary.h"
#include "testsupport.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include <poll.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using testsupport::numberedLines;
using testsupport::readBytes;
using testsupport::writeBytes;

namespace {

// Runs `copy` with standard input and output on pipes, as on a terminal
// without a display, and answers every paper prompt with a line as soon as
// it has shown, noting how far the copy had come: the size of the
// destination then.
std::vector<qint64> sizesAtPrompts(const QString& destination, const std::function<void()>& copy)
{
    int input[2], output[2];
    if (::pipe(input) != 0 || ::pipe(output) != 0)
        return {-1};
    std::fflush(stdout);
    const int savedInput = ::dup(STDIN_FILENO), savedOutput = ::dup(STDOUT_FILENO);
    ::dup2(input[0], STDIN_FILENO);
    ::dup2(output[1], STDOUT_FILENO);
    ::close(input[0]);
    ::close(output[1]);
    std::clearerr(stdin);
    // Once the copy is over, its end of the prompts' pipe closes.
    std::thread copying([&] {
        copy();
        std::fflush(stdout);
        ::dup2(savedOutput, STDOUT_FILENO);
    });

    const QByteArray prompt = "Insert a new sheet\n";
    std::vector<qint64> sizes;
    QByteArray shown;
    char buffer[256];
    pollfd prompts{output[0], POLLIN, 0};
    while (::poll(&prompts, 1, 30000) > 0) {
        const ssize_t n = ::read(output[0], buffer, sizeof buffer);
        if (n <= 0)
            break;
        for (shown.append(buffer, n); shown.startsWith(prompt); shown.remove(0, prompt.size())) {
            // A copy that did not wait for the answer would have gone on.
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            sizes.push_back(QFileInfo(destination).size());
            (void)!::write(input[1], "\n", 1);
        }
    }
    // The end of the input answers a prompt that is still waiting.
    ::close(input[1]);
    copying.join();
    ::dup2(savedInput, STDIN_FILENO);
    for (int fd : {savedInput, savedOutput, output[0]})
        ::close(fd);
    std::clearerr(stdin);
    if (!shown.isEmpty())
        sizes.push_back(-1);
    return sizes;
}

class CopyTest : public testing::Test
{
protected:
    QString path(const char* name) const { return dir.filePath(QString::fromLatin1(name)); }

    QTemporaryDir dir;
    const QString source = path("print.txt");
    const QString destination = path("lp0");
};

struct SheetCase
{
    const char* name;
    int lines;
    unsigned linesPerSheet;
    std::vector<qint64> linesAtPrompts;
};

void PrintTo(const SheetCase& c, std::ostream* os)
{
    *os << c.name;
}

class CopyBySheet : public CopyTest, public testing::WithParamInterface<SheetCase>
{
};

TEST_P(CopyBySheet, AsksForPaperWhenASheetIsFull)
{
    const QByteArray content = numberedLines(GetParam().lines);
    ASSERT_TRUE(writeBytes(source, content.toStdString()));
    bool copied = false;
    const std::vector<qint64> sizes =
        sizesAtPrompts(destination, [&] { copied = HLibrary::copy(source, destination, GetParam().linesPerSheet, 0u); });

    EXPECT_TRUE(copied);
    EXPECT_EQ(readBytes(destination), content);
    std::vector<qint64> linesAtPrompts;
    for (qint64 size : sizes)
        linesAtPrompts.push_back(size / 11);
    EXPECT_EQ(linesAtPrompts, GetParam().linesAtPrompts);
}

// The first sheet takes one line more than the others.
INSTANTIATE_TEST_SUITE_P(HLibrary, CopyBySheet,
                         testing::Values(SheetCase{"seven_lines_by_three", 7, 3, {4, 7}},
                                         SheetCase{"six_lines_by_three", 6, 3, {4}},
                                         SheetCase{"four_lines_by_three", 4, 3, {4}},
                                         SheetCase{"three_lines_by_three", 3, 3, {}},
                                         SheetCase{"three_lines_by_one", 3, 1, {2, 3}},
                                         SheetCase{"never_asks", 25, 0, {}},
                                         SheetCase{"empty_file", 0, 1, {}}));

TEST_F(CopyTest, LongLinesAreReadIn127BytePieces)
{
    const QByteArray line = QByteArray(300, 'x') + '\n';
    ASSERT_TRUE(writeBytes(source, (line + "end\n").toStdString()));
    // Pieces of 127, 127, 47 and 4 bytes: prompts after the second, third
    // and fourth.
    bool copied = false;
    EXPECT_EQ(sizesAtPrompts(destination, [&] { copied = HLibrary::copy(source, destination, 1u, 0u); }),
              (std::vector<qint64>{254, 301, 305}));
    EXPECT_TRUE(copied);
    EXPECT_EQ(readBytes(destination), line + "end\n");
}

TEST_F(CopyTest, BytesGoAcrossUnchanged)
{
    const std::string bytes("\x1b@\x1b!\x08\"TOTAL\"@\r\n\xe9\xff\0tail", 21);
    ASSERT_TRUE(writeBytes(source, bytes));
    const HLibrary::CopyResult result = HLibrary::copyWithResult(source, destination, 0u, 0u);
    EXPECT_TRUE(result.succeeded());
    EXPECT_EQ(readBytes(destination).toStdString(), bytes);
    EXPECT_EQ(result.linesWritten, 2u);
    EXPECT_EQ(result.bytesWritten, 21u);
}

TEST_F(CopyTest, NumbersAsText)
{
    ASSERT_TRUE(writeBytes(source, numberedLines(7).toStdString()));
    bool copied = false;
    EXPECT_EQ(sizesAtPrompts(destination, [&] { copied = HLibrary::copy(source, destination, u"3"_s, u"0"_s); }),
              (std::vector<qint64>{44, 77}));
    EXPECT_TRUE(copied);
    // Text that is not a number counts as 0: no prompt, no pause.
    EXPECT_EQ(sizesAtPrompts(destination, [&] { copied = HLibrary::copy(source, destination, u"three"_s, u"-5"_s); }),
              std::vector<qint64>{});
    EXPECT_TRUE(copied);
}

TEST_F(CopyTest, PausesAfterEveryLine)
{
    ASSERT_TRUE(writeBytes(source, numberedLines(4).toStdString()));
    QElapsedTimer timer;
    timer.start();
    EXPECT_TRUE(HLibrary::copy(source, destination, 0u, 50u));
    EXPECT_GE(timer.elapsed(), 4 * 50);
}

// Both forms of the copy say what failed, in the system's words. The
// source is opened first: a copy that cannot read leaves the destination
// as it was.
TEST_F(CopyTest, FailuresSayWhat)
{
    using Failure = HLibrary::CopyResult::Failure;
    ASSERT_TRUE(writeBytes(source, numberedLines(3).toStdString()));
    ASSERT_TRUE(writeBytes(destination, "kept\n"));
    const struct
    {
        QString source, destination;
        Failure failure;
    } cases[] = {
        {path("missing"), destination, Failure::SourceUnreadable},
        {source, path("no/such/folder/lp0"), Failure::DestinationUnopenable},
        {source, dir.path(), Failure::DestinationUnopenable},
        {source, u"/dev/full"_s, Failure::WriteFailed},
    };
    for (const auto& c : cases) {
        for (const HLibrary::CopyResult& result : {HLibrary::copyWithResult(c.source, c.destination, 0u, 0u),
                                                   HLibrary::copyWithResult(c.source, c.destination, 2u, 0u, 0u)}) {
            EXPECT_EQ(result.failure, c.failure) << c.destination.toStdString();
            EXPECT_FALSE(result.errorText.isEmpty()) << c.destination.toStdString();
            EXPECT_EQ(result.bytesWritten, 0u);
        }
        EXPECT_FALSE(HLibrary::copy(c.source, c.destination, 0u, 0u));
    }
    EXPECT_EQ(readBytes(destination), "kept\n");
}

struct PageCase
{
    const char* name;
    unsigned linesPerPage;
    unsigned page;
    bool sent;
    int firstLine; // of the seven in the file
    int lines;
};

void PrintTo(const PageCase& c, std::ostream* os)
{
    *os << c.name;
}

class CopyPage : public CopyTest, public testing::WithParamInterface<PageCase>
{
};

TEST_P(CopyPage, SendsOnePage)
{
    const QByteArray content = numberedLines(7);
    ASSERT_TRUE(writeBytes(source, content.toStdString()));
    ASSERT_TRUE(writeBytes(destination, "old"));
    HLibrary::CopyResult result;
    EXPECT_EQ(sizesAtPrompts(destination,
                             [&] {
                                 result = HLibrary::copyWithResult(source, destination, GetParam().linesPerPage, 0u,
                                                                   GetParam().page);
                             }),
              std::vector<qint64>{});
    EXPECT_EQ(result.failure, GetParam().sent ? HLibrary::CopyResult::Failure::None
                                              : HLibrary::CopyResult::Failure::NoSuchPage);
    EXPECT_EQ(readBytes(destination), content.mid(GetParam().firstLine * 11, GetParam().lines * 11));
}

INSTANTIATE_TEST_SUITE_P(HLibrary, CopyPage,
                         testing::Values(PageCase{"first", 3, 0, true, 0, 3}, PageCase{"second", 3, 1, true, 3, 3},
                                         PageCase{"last_short", 3, 2, true, 6, 1},
                                         PageCase{"past_the_end", 3, 3, false, 0, 0},
                                         PageCase{"ends_with_the_skipped_lines", 7, 1, false, 0, 0},
                                         PageCase{"whole_file_by_zero_lines", 0, 5, true, 0, 7},
                                         PageCase{"one_line_pages", 1, 6, true, 6, 1}));

TEST_F(CopyTest, PageOfAnEmptyFile)
{
    ASSERT_TRUE(writeBytes(source, ""));
    EXPECT_TRUE(HLibrary::copy(source, destination, 3u, 0u, 0u));
    EXPECT_FALSE(HLibrary::copy(source, destination, 3u, 0u, 1u));
    EXPECT_EQ(readBytes(destination), "");
}

TEST_F(CopyTest, PagePausesBetweenItsLinesOnly)
{
    ASSERT_TRUE(writeBytes(source, numberedLines(7).toStdString()));
    QElapsedTimer timer;
    timer.start();
    // Three lines, two pauses: none after the last line of the page.
    EXPECT_TRUE(HLibrary::copy(source, destination, 3u, 300u, 1u));
    const qint64 elapsed = timer.elapsed();
    EXPECT_GE(elapsed, 600);
    EXPECT_LT(elapsed, 900);
}

} // namespace

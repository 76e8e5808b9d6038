// PNG pages: their size follows the paper's width and the number of lines,
// a flagged line has its margin coloured, and a long paper is cut into
// pages of bounded height.
#include "picture.h"
#include "pngpicture.h"
#include "printfile.h"

#include <QGuiApplication>
#include <QImage>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace preview;

namespace {

// A print file of `lines` lines, each `length` characters long.
Paper paperOf(int width, int lines, int length = 10)
{
    QByteArray bytes = "\nj\n";
    for (int i = 0; i < lines; ++i)
        bytes += '"' + QByteArray(length, char('a' + i % 26)) + "\"@\n";
    SectionSetup setup;
    setup.paperWidth = width;
    Paper paper = readPrintFile(bytes + "J\n", {setup}, u"p.txt"_s);
    flagWideRows(paper);
    return paper;
}

QImage pictureOf(const Paper& paper)
{
    QTemporaryDir dir;
    const PngPages pages = writePngPages(paper, dir.filePath(u"p.png"_s));
    EXPECT_EQ(pages.written.size(), 1) << pages.error.toStdString();
    return QImage(dir.filePath(u"p.png"_s));
}

TEST(Png, SizeFollowsThePaperWidthAndTheLineCount)
{
    const QImage narrow = pictureOf(paperOf(32, 10));
    const QImage wide = pictureOf(paperOf(40, 10));
    const QImage wider = pictureOf(paperOf(48, 10));
    ASSERT_FALSE(narrow.isNull());
    const int eightColumns = wide.width() - narrow.width();
    EXPECT_GT(eightColumns, 0);
    EXPECT_EQ(eightColumns % 8, 0);
    EXPECT_EQ(wider.width() - wide.width(), eightColumns);
    EXPECT_EQ(wide.height(), narrow.height());

    const QImage longer = pictureOf(paperOf(40, 20));
    const QImage longest = pictureOf(paperOf(40, 30));
    const int tenLines = longer.height() - wide.height();
    EXPECT_GT(tenLines, 0);
    EXPECT_EQ(longest.height() - longer.height(), tenLines);
    EXPECT_EQ(longer.width(), wide.width());
}

TEST(Png, TheMarginOfAFlaggedLineIsColoured)
{
    // Lines 1 and 3 fit on the paper, line 2 does not.
    SectionSetup setup;
    setup.paperWidth = 10;
    Paper paper = readPrintFile("\nj\n\"fits\"@\n\"far too wide for it\"@\n\"fits\"@\nJ\n", {setup}, u"p.txt"_s);
    flagWideRows(paper);
    const QImage image = pictureOf(paper);
    ASSERT_FALSE(image.isNull());

    // Where the rows are, from the picture's own layout of the same paper.
    const Picture picture(paper, pngMetrics());
    ASSERT_EQ(picture.width(), image.width());
    const std::vector<Band> bands = picture.bands();
    std::vector<int> middles;
    for (std::size_t i = 0; i < bands.size(); ++i) {
        if (bands[i].kind == Band::Kind::Row)
            middles.push_back(picture.top(bands, i) + picture.metrics().rowHeight / 2);
    }
    ASSERT_EQ(middles.size(), 3u);
    const int x = picture.flagMarginLeft() + picture.flagMarginWidth() / 2;
    const QColor flag = QColor::fromString(colourOf(Canvas::Ink::Flag));
    const QColor desk = QColor::fromString(colourOf(Canvas::Ink::Desk));
    EXPECT_EQ(image.pixelColor(x, middles[0]), desk);
    EXPECT_EQ(image.pixelColor(x, middles[1]), flag);
    EXPECT_EQ(image.pixelColor(x, middles[2]), desk);
    // The characters past the paper's edge stand on the overflow colour.
    const int pastEdge = picture.textLeft() + 15 * picture.metrics().charWidth;
    EXPECT_EQ(image.pixelColor(pastEdge, middles[1] - picture.metrics().rowHeight / 2 + 1),
              QColor::fromString(colourOf(Canvas::Ink::Overflow)));
}

TEST(Png, ALongPaperIsCutIntoBoundedPages)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(u"long.png"_s);
    // Pages left by an earlier, longer picture of the same name go.
    for (int stale = 2; stale <= 20; ++stale)
        QImage(1, 1, QImage::Format_RGB32).save(pageFileName(path, stale));
    const Paper paper = paperOf(40, 200);
    const qsizetype allPages = qsizetype(Picture(paper, pngMetrics()).pages(1000).size());
    ASSERT_GT(allPages, 3);
    // By height alone every line is drawn on as many pages as it takes;
    // shorter for their pixels and stopped after three, the rest is left out.
    for (const auto& [bounds, whole] :
         {std::pair{PageBounds{1000}, true}, std::pair{PageBounds{1000, 300'000, 3}, false}}) {
        const PngPages pages = writePngPages(paper, path, bounds);
        ASSERT_TRUE(pages.error.isEmpty()) << pages.error.toStdString();
        ASSERT_EQ(pages.written.size(), whole ? allPages : 3);
        EXPECT_EQ(pages.leftOut.isEmpty(), whole) << pages.leftOut.toStdString();
        EXPECT_EQ(pages.written.at(1), dir.filePath(u"long-2.png"_s));
        int rows = 0;
        for (const QString& page : pages.written) {
            const QImage image(page);
            EXPECT_LE(image.height(), 1000) << page.toStdString();
            EXPECT_LE(image.width() * image.height(), bounds.pixels) << page.toStdString();
            rows += image.height();
        }
        EXPECT_EQ(rows > 200 * pngMetrics().rowHeight, whole);
        EXPECT_FALSE(QFile::exists(pageFileName(path, int(pages.written.size()) + 1)));
    }
    EXPECT_FALSE(QFile::exists(pageFileName(path, 20)));
    EXPECT_EQ(pageFileName(u"out/a.b/receipt"_s, 3), u"out/a.b/receipt-3"_s);
}

} // namespace

int main(int argc, char** argv)
{
    // CTest sets the offscreen platform for the tests; listing them, it
    // does not, and nothing here needs a display either way.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}

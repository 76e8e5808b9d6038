#include "codepage.h"
#include "escpos.h"
#include "testdriver.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

// A page has its ESC/POS number by any of its usual names; every numbered
// page can be encoded.
TEST(CodePage, EscPosNumbersByAnyName)
{
    const std::pair<const char*, int> names[] = {
        {"CP858", 19}, {"IBM00858", 19}, {"ibm858", 19}, {" cp437 ", 0}, {"IBM850", 2}, {"windows-1252", 16},
        {"CP1252", 16}, {"ISO-8859-7", 15}, {"ISO-8859-15", -1}, {"UTF-8", -1}, {"CP", -1}, {"", -1},
    };
    for (const auto& [name, number] : names)
        EXPECT_EQ(EscPos::codePageNumber(name), number) << name;
    for (const EscPos::CodePageNumber& page : EscPos::codePageNumbers()) {
        EXPECT_TRUE(CodePage(page.name).isValid()) << page.name;
        EXPECT_EQ(EscPos::codePageOfNumber(page.number), page.name);
    }
}

TEST(CodePage, ReplacesWhatItLacksWithTheClosestText)
{
    struct Case { const char* page; QString text; QString printed; int replaced; };
    const Case cases[] = {
        {"CP437", u"Caffè €"_s, u"Caffè EUR"_s, 1},
        {"CP850", u"‘q’ “q” ‚„ – — … ő Ł œ"_s, u"'q' \"q\" '\" - - ... o L oe"_s, 12},
        {"US-ASCII", u"Crème brûlée"_s, u"Creme brulee"_s, 3},
        {"US-ASCII", u"家"_s, u"?"_s, 1},
        {"UTF-8", u"家 € e\u0301"_s, u"家 € é"_s, 0},
        {"ISO-8859-1", u"e\u0301"_s, u"é"_s, 0}, // composed first: one character, printable
    };
    for (const Case& c : cases) {
        CodePage page{QByteArray(c.page)};
        EXPECT_EQ(page.printable(QStringView(c.text)), c.printed) << c.page;
        EXPECT_EQ(page.replacements(), c.replaced) << c.page;
    }
}

// A character outside the Basic Multilingual Plane is one printed character,
// and a letter with a combining accent is one after composing: both count
// once in a column and are never cut in half.
TEST(CodePage, ColumnsCountPrintedCharacters)
{
    TestDriver driver;
    driver.selectMethod(u"printPartialOrder"_s);
    driver.setWidths(20, 3, 4, 5); // description 7 in "qdpt"
    const QString pizza = u"Pizza \U0001F355 x"_s;
    EXPECT_EQ(driver.descriptionRow(u"1", pizza, u"2.00", u"2.00", u'.', u"qdpt"),
              u"  1 Pizza \U0001F3552.00 2.00"_s);
    EXPECT_EQ(driver.descriptionRow(u"1", u"Cafe\u0301", u"1", u"1", u'.', u"qdpt"), u"  1 Café......1    1"_s);
    EXPECT_EQ(printedLeft(u"ab\U0001F355c", 3), u"ab\U0001F355"_s);
    EXPECT_EQ(printedLength(u"ab\U0001F355c"), 4);

    // The fiscal printer's description width is counted the same way.
    TestDriver fiscal; // descriptionWidth 5
    fiscal.selectMethod(u"printFullOrderFiscal"_s);
    fiscal.element(u"receipe"_s, TestDriver::attrs({{"name", u"Caf\U0001F355\U0001F355xyz"_s}, {"price", u"1"_s}}));
    EXPECT_EQ(fiscal.bytes(), "\n\"Caf\xf0\x9f\x8d\x95\xf0\x9f\x8d\x95\"*1HR\r\n");
}

} // namespace

#include "printfile.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace Qt::StringLiterals;
using namespace preview;

namespace {

// A paper as text: a strip per section, "|" before each row ("~" for an
// annotation), the flags' kinds after it, and the strip's end.
std::string dump(const Paper& paper)
{
    std::string out;
    for (const Section& section : paper.sections) {
        out += section.fiscal ? "[fiscal " : "[";
        out += std::to_string(section.paperWidth) + "]\n";
        for (const Row& row : section.rows) {
            out += row.style == Row::Style::Paper ? "|" : "~";
            out += row.text.toStdString();
            for (const Flag& flag : row.flags) {
                const char* kinds[] = {"wide", "unprintable", "request", "setting", "notice"};
                out += std::string(" <") + kinds[int(flag.kind)] + ">";
            }
            // How an ESC/POS printer prints it.
            if (row.bold || row.doubleHeight || row.centred || row.image) {
                out += std::string(" {") + (row.bold ? "b" : "") + (row.doubleHeight ? "2" : "")
                       + (row.centred ? "c" : "") + (row.image ? "picture" : "") + "}";
            }
            out += "\n";
        }
        out += section.cut ? "cut\n" : "not cut\n";
    }
    return out;
}

TEST(PrintFile, FramingIsReadNotShown)
{
    struct Case { const char* name; QByteArray bytes; std::string paper; };
    const Case cases[] = {
        {"a document", "\nj\n\"Pizza\"@\n\"        Cassa 1\"@\n\"\"@\nJ\n",
         "[40]\n|Pizza\n|        Cassa 1\n|\ncut\n"},
        {"two methods: the first strip is not cut", "\nj\n\"a\"@\n\nj\n\"b\"@\nJ\n",
         "[40]\n|a\nnot cut\n[40]\n|b\ncut\n"},
        {"a line feed inside a printed line", "\nj\n\"2 x 7.50\nPizza.....15.00\"@\nJ\n",
         "[40]\n|2 x 7.50\n|Pizza.....15.00\ncut\n"},
        {"a request without a method element", "J\n", ""},
        {"an empty file", "", ""},
        {"cut off before its end", "\nj\n\"a\"@\n", "[40]\n|a <notice>\nnot cut\n"},
        {"a line that is no command", "\nj\nESC p\n\"a\"@\nJ\n", "[40]\n~ESC p <notice>\n|a\ncut\n"},
        {"control characters and bytes no character", "\nj\n\"a\x1b" "b\"@\n\"\xff\"@\nJ\n",
         "[40]\n|a\x1b" "b <unprintable>\n|\xef\xbf\xbd <unprintable>\ncut\n"},
    };
    for (const Case& c : cases) {
        SectionSetup setup;
        setup.paperWidth = 40;
        Paper paper = readPrintFile(c.bytes, {setup}, u"p.txt"_s);
        flagUnclosedEnd(paper);
        EXPECT_EQ(dump(paper), c.paper) << c.name;
    }
}

TEST(PrintFile, FiscalCommandsAreLaidOutAsTheFiscalPrinterPrintsThem)
{
    const QByteArray bytes = "\n"
                             "\"Pizza Margherita\"2*7,50H1R\r\n"
                             "\"Acqua\"1*2,00H2R-0,50*5M\r\n"
                             "\"Coperto\"3*1,50H4R2*1M\r\n"
                             "\"Spaghetti alla carbonara\"12*9,00H1R\r\n"
                             "=10*2M\r\n"
                             "100,00H1T\r\n25,00H3T\r\n5,00H2T\r\n4,00H5T\r\n"
                             "1T\n";
    SectionSetup setup;
    setup.paperWidth = 32;
    setup.fiscal = true;
    EXPECT_EQ(dump(readPrintFile(bytes, {setup}, u"p.txt"_s)),
              "[fiscal 32]\n"
              "|Pizza Margherita\n"
              "|                2 x 7,50  dept 1\n"
              "|Acqua           1 x 2,00  dept 2\n"
              "|                  discount -0,50\n"
              "|Coperto         3 x 1,50  dept 4\n"
              "|                     surcharge 2\n"
              "|Spaghetti alla carbonara\n"
              "|               12 x 9,00  dept 1\n"
              "|Discount                     10%\n"
              "|Cash                      100,00\n"
              "|Credit card                25,00\n"
              "|Cheque                      5,00\n"
              "|Ticket                      4,00\n"
              "~closing: total by the printer\n"
              "cut\n");
}

TEST(PrintFile, EachSectionIsReadInItsOwnCodePageAndWidth)
{
    // A kitchen ticket in CP437, then a receipt in ISO-8859-15, as a
    // request's two method elements would set them up.
    const QByteArray bytes = "\nj\n\"Caff\x82\"@\n\nj\n\"Caff\xe9 \xa4\"@\nJ\n";
    std::vector<SectionSetup> setups(2);
    setups[0] = {0, u"printPartialOrder"_s, 32, "CP437", false};
    setups[1] = {qint64(bytes.indexOf("\n\nj") + 1), u"printFullOrderReceipt"_s, 40, "ISO-8859-15", false};
    const Paper paper = readPrintFile(bytes, setups, u"p.txt"_s);
    EXPECT_EQ(dump(paper), "[32]\n|Caffé\nnot cut\n[40]\n|Caffé €\ncut\n");
    EXPECT_EQ(paper.sections[1].method, u"printFullOrderReceipt"_s);
    EXPECT_EQ(paper.sections[1].rows[0].offset, bytes.indexOf("\"Caff\xe9"));
}

TEST(PrintFile, EscPosCommandsAreReadNotShown)
{
    struct Case { const char* name; QByteArray bytes; std::string paper; };
    const Case cases[] = {
        {"modes, a picture, the drawer and the cut",
         "\x1b@\x1bt\x13\x1b" "a\x01\x1dv0\x00\x01\x00\x02\x00\x80\x01" "Cassa\n\x1b" "E\x01\x1d!\x01TOTAL\n"
         "\x1b" "E\x00\x1d!\x00\x1b" "a\x00" "Caff\x8a\n\x1bp\x00\x19\xfa\x1b" "d\x04\x1dV\x01"_ba,
         "[40]\n| {cpicture}\n|Cassa {c}\n|TOTAL {b2c}\n|Caffè\n~the cash drawer opens\ncut\n"},
        {"a command the preview does not know", "\x1b@\x1b-\x01" "a\n"_ba,
         "[40]\n~command 1B 2D <notice>\n|\x01" "a <unprintable>\nnot cut\n"},
        {"a picture cut off", "\x1b@\x1dv0\x00\x01\x00\x05\x00\x80"_ba, "[40]\n~command 1D 76 <notice>\nnot cut\n"},
        {"a page number not on the table", "\x1b@\x1bt\x28" "caf\xe9\n\x1dV\x01"_ba,
         "[40]\n~ESC t 40: page 40 is not on the usual table; read as ISO-8859-15 <notice>\n|café\ncut\n"},
        {"a second document after the cut", "\x1b@\x1bt\x02" "caf\x82\n\x1dV\x01\x1b@b\n"_ba,
         "[40]\n|café\ncut\n[40]\n|b\nnot cut\n"},
    };
    for (const Case& c : cases) {
        SectionSetup setup;
        setup.paperWidth = 40;
        setup.codePage = "ISO-8859-15";
        EXPECT_EQ(dump(readPrintFile(c.bytes, {setup}, u"p.bin"_s)), c.paper) << c.name;
    }
}

TEST(PrintFile, FlagsLinesWiderThanThePaper)
{
    SectionSetup setup;
    setup.paperWidth = 10;
    Paper paper = readPrintFile("\nj\n\"0123456789\"@\n\"0123456789A\"@\n\"\xf0\x9f\x8d\x95" "012345678\"@\nJ\n",
                                {setup}, u"p.txt"_s);
    flagWideRows(paper);
    // A character outside the Basic Multilingual Plane is one printed character.
    EXPECT_EQ(dump(paper), "[10]\n|0123456789\n|0123456789A <wide>\n|\xf0\x9f\x8d\x95" "012345678\ncut\n");
    EXPECT_EQ(paper.sections[0].rows[1].flags[0].what, u"wider than the paper: 11 characters on paper 10 wide"_s);
}

TEST(PrintFile, TellsRequestsFromPrintFiles)
{
    EXPECT_TRUE(looksLikeRequest("<?xml version=\"1.0\"?><r/>"));
    EXPECT_TRUE(looksLikeRequest("\xEF\xBB\xBF  \n<r/>"));
    EXPECT_TRUE(looksLikeRequest("\xFF\xFE<\0r\0/\0>\0"));
    EXPECT_FALSE(looksLikeRequest("\nj\n\"<b>\"@\nJ\n"));
    EXPECT_FALSE(looksLikeRequest(""));
}

} // namespace

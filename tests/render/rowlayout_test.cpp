#include "testdriver.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

struct Row
{
    const char* layout;
    int w, q, p, t;
    char fill;
    const char *a1, *a2, *a3, *a4;
    const char* expected;
};

// Widths: paper, quantity, price, total. The first eight rows are the
// reference lines of the layouts; the rest are their boundaries.
const Row rows[] = {
    {"qdpt", 40, 3, 8, 9, '.', "2", "Pizza Margherita", "7.50", "15.00", "  2 Pizza Margherita.......7.50    15.00"},
    {"qdpt", 40, 3, 8, 9, ' ', "Qty", "Description", "Price", "Total", "Qty Description           Price    Total"},
    {"qxdpt", 40, 3, 8, 9, '.', "2", "Pizza Margherita", "7.50", "15.00", "  2 x Pizza Margherita.....7.50    15.00"},
    {"qxdpt", 40, 3, 8, 9, '.', "12", "Spaghetti alla carbonara grande", "9.00", "108.00", " 12 x Spaghetti alla ca....9.00   108.00"},
    {"qxdtDoubleLine", 40, 3, 8, 9, '.', "2", "Pizza Margherita", "7.50", "15.00", "2 x 7.50\nPizza Margherita...................15.00"},
    {"qxd", 40, 3, 8, 9, ' ', "2", "Pizza Margherita", "", "", "  2 x Pizza Margherita                  "},
    {"qd", 40, 3, 8, 9, '.', "2", "Pizza Margherita", "", "", "  2 Pizza Margherita                  "},
    {"date-amount-type", 40, 3, 8, 9, '.', "01/02/2009", "Payment", "50.00", "", "01/02/2009     Payment..........50.00"},
    {"qdpt", 40, 3, 8, 9, '.', "1", "Nineteen characters", "", "", "  1 Nineteen characters........         "},
    {"qdpt", 40, 3, 8, 9, '.', "1", "Nineteen characters!", "", "", "  1 Nineteen characters........         "},
    {"qdpt", 40, 3, 8, 9, '.', "1", "", "2.00", "2.00", "  1 .......................2.00     2.00"},
    {"qd", 40, 3, 8, 9, '.', "1", "", "", "", "  1                                   "},
    {"qdpt", 40, 3, 8, 9, '.', "1234", "Pizza", "7.50", "15.00", "1234 Pizza..................7.50    15.00"},
    {"qxdpt", 40, 3, 8, 9, '.', "2", "Pizza", "123456789", "15.00", "  2 x Pizza............123456789    15.00"},
    {"qdpt", 40, 3, 8, 9, '.', "2", "Pizza", "7.50", "1234567890", "  2 Pizza..................7.501234567890"},
    {"qxdtDoubleLine", 40, 3, 8, 9, '-', "3", "Caffè", "1.00", "1234567890", "3 x 1.00\nCaffè--------------------------1234567890"},
    {"qxdtDoubleLine", 40, 3, 8, 9, '-', "3", "Caffè", "1.00", "3.00", "3 x 1.00\nCaffè-------------------------------3.00"},
    {"date-amount-type", 40, 3, 8, 9, '.', "01/02/2009 12:30: ", "Payment", "50.00", "", "01/02/2009 12:30: Payment..........50.00"},
    {"qxd", 40, 3, 8, 9, '.', "10", "A very long description that overflows the paper", "", " ", " 10 x A very long description that overf"},
    {"qdpt", 32, 3, 8, 9, '.', "2", "Pizza Margherita", "7.50", "15.00", "  2 Pizza Margh....7.50    15.00"},
    {"qdpt", 21, 3, 8, 9, '.', "2", "Pizza", "7.50", "15.00", "  2 ....7.50    15.00"},
    {"qdpt", 20, 3, 8, 9, '.', "2", "Pizza", "7.50", "15.00", "  2 Pizza....7.50    15.00"},
    {"qxd", 5, 3, 8, 9, '.', "2", "Pizza Margherita", "", "", "  2 x Pizza Margherita"},
    {"QDPT", 40, 3, 8, 9, '.', "2", "Pizza", "7.50", "15.00", ""},
    {"qdpt ", 40, 3, 8, 9, '.', "2", "Pizza", "7.50", "15.00", ""},
    {"", 40, 3, 8, 9, '.', "2", "Pizza", "7.50", "15.00", ""},
};

TEST(DescriptionRow, Layouts)
{
    TestDriver driver;
    for (const Row& row : rows) {
        driver.setWidths(row.w, row.q, row.p, row.t);
        const QString line = driver.descriptionRow(
            QString::fromUtf8(row.a1), QString::fromUtf8(row.a2), QString::fromUtf8(row.a3),
            QString::fromUtf8(row.a4), QLatin1Char(row.fill), QString::fromUtf8(row.layout));
        EXPECT_EQ(line.toStdString(), row.expected)
            << row.layout << " W=" << row.w << " a2=" << row.a2;
    }
}

// Rows of attribute values go out as the request's bytes where they print as
// they stand; every row must come out as the same row built as text does.
TEST(DescriptionRow, RowsWrittenAsBytesAreTheRowsBuiltAsText)
{
    const char* const texts[] = {
        "", "2", "Pizza Margherita", "Spaghetti alla carbonara grande", "Caff\u00e8", "Tiramis\u00f9 della casa",
        "Cafe\u0301", "\u20ac 5", "TOTALE", "say \"hi\"", "tab\there",
    };
    struct Widths { int w, q, p, t; };
    for (const char* page : {"UTF-8", "CP858", "US-ASCII"}) {
        for (const bool safeText : {false, true}) {
            for (const Widths widths : {Widths{40, 3, 8, 9}, Widths{21, 3, 8, 9}, Widths{5, 3, 8, 9}}) {
                for (int layout = RowLayout::qdpt; layout <= RowLayout::dateAmountType; ++layout) {
                    for (const char* text : texts) {
                        TestDriver asBytes, asText;
                        for (TestDriver* driver : {&asBytes, &asText}) {
                            driver->selectMethod(QStringLiteral("printPartialOrder"));
                            driver->chooseCodePage(page);
                            driver->setWidths(widths.w, widths.q, widths.p, widths.t);
                            driver->settings.safeText = safeText;
                        }
                        const QString value = QString::fromUtf8(text);
                        const XmlAttributes atts = TestDriver::attrs({{"q", u"12"_s}, {"d", value}, {"p", value}, {"t", u"3.00"_s}});
                        const auto kind = RowLayout::Layout(layout);
                        asBytes.printRow(atts, {"q"_L1, "d"_L1, "p"_L1, "t"_L1}, u'.', kind);
                        asText.println(asText.descriptionRow(u"12", value, value, u"3.00", u'.', kind));
                        EXPECT_EQ(asBytes.bytes(), asText.bytes()) << page << " layout " << layout << " " << text;
                    }
                }
            }
        }
    }
}

TEST(DescriptionRow, ColumnTitlesOncePerDocumentAndSeparator)
{
    TestDriver driver;
    driver.selectMethod(QStringLiteral("printPartialOrder"));  // W 32, other widths 0
    driver.printColumnsHeader(QStringLiteral("Q"), QStringLiteral("D"), QStringLiteral("P"), QStringLiteral("T"));
    driver.printColumnsHeader(QStringLiteral("x"), QStringLiteral("y"), QStringLiteral("z"), QStringLiteral("w"));
    driver.printSeparatorLine();
    EXPECT_EQ(driver.bytes().toStdString(),
              "\nj\n\"Q D" + std::string(30, ' ') + "PT\"@\n\"" + std::string(32, '=') + "\"@\n");

    TestDriver late;
    late.selectMethod(QStringLiteral("printPartialOrder"));
    EXPECT_TRUE(late.oneTime());
    late.printColumnsHeader(QStringLiteral("Q"), QStringLiteral("D"), QStringLiteral("P"), QStringLiteral("T"));
    EXPECT_EQ(late.bytes().toStdString(), "\nj\n");
}

} // namespace

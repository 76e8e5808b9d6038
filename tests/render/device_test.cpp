#include "testdriver.h"

#include <gtest/gtest.h>

#include <string>

namespace {

const QString partialOrder = QStringLiteral("printPartialOrder");

TEST(Device, BuffersUntilPrintlnAndFramesEachLine)
{
    TestDriver driver;
    driver.selectMethod(partialOrder);
    EXPECT_EQ(driver.bytes(), "\nj\n");
    driver.print(1, QStringLiteral("abc"));
    EXPECT_EQ(driver.bytes(), "\nj\n");
    driver.println(2, QStringLiteral("Pizza"));
    driver.println(QStringLiteral("TOTALE = TOTALE, not Totale or totale"));
    driver.println(QString());
    driver.endDocument();
    EXPECT_EQ(driver.bytes(), "\nj\n"
                              "\" abc  Pizza\"@\n"
                              "\"SOMMA = SOMMA, not Totale or totale\"@\n"
                              "\"\"@\n"
                              "J\n");
}

// The pad's boundaries are in the golden case of centred lines; here, that
// either character size goes back to the left.
TEST(Device, CharSizeEndsCentring)
{
    TestDriver driver;
    driver.selectMethod(partialOrder);
    driver.setCenterJustify();
    driver.setCharSize(1);
    driver.println(QStringLiteral("left"));
    driver.setCenterJustify();
    driver.setCharSize();
    driver.println(QStringLiteral("left"));
    EXPECT_EQ(driver.bytes(), "\nj\n\"left\"@\n\"left\"@\n");
}

TEST(Device, FiscalSectionsHaveNoFrameCommands)
{
    TestDriver driver;
    driver.selectMethod(QStringLiteral("printFullOrderFiscal"));
    driver.println(QStringLiteral("first"));
    driver.println(QStringLiteral("second"));
    driver.endDocument();
    EXPECT_EQ(driver.bytes(), "\nfirst\"@\n\"second\"@\n1T\n");
}

TEST(Device, FiscalItemLines)
{
    TestDriver driver;
    driver.printRowFiscal(QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("Pizza"),
                          QStringLiteral("7.50"));
    driver.printRowFiscal(QStringLiteral("3"), QStringLiteral("1.5"), QStringLiteral("Say \"cheese\""),
                          QStringLiteral("1.234.5"));
    const char* adjustments[] = {"-1.50", "2", "", "+0.5"};
    for (const char* adjustment : adjustments)
        driver.printRowFiscal(QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("Pizza"),
                              QStringLiteral("7.50"), QString::fromLatin1(adjustment));
    EXPECT_EQ(driver.bytes(), "\"Pizza\"2*7,50H1R\r\n"
                              "\"Say \"cheese\"\"1.5*1,234,5H3R\r\n"
                              "\"Pizza\"2*7,50H1R-1,50*5M\r\n"
                              "\"Pizza\"2*7,50H1R2*1M\r\n"
                              "\"Pizza\"2*7,50H1R*1M\r\n"
                              "\"Pizza\"2*7,50H1R+0,5*1M\r\n");
}

TEST(Device, FiscalPaymentLines)
{
    struct Case
    {
        const char* name;
        XmlAttributes atts;
        const char* expected;
    };
    const auto a = TestDriver::attrs;
    const Case cases[] = {
        {"totals", a({{"cash", "12.50"}}), "12,50H1T\r\n"},
        {"totals",
         a({{"ticket", "7"}, {"cheque", "3"}, {"creditCard", "5.5"}, {"cash", "20"}, {"discountRate", "10"}}),
         "=10*2M\r\n20H1T\r\n5,5H3T\r\n3H2T\r\n7H5T\r\n"},
        {"total", a({{"cash", "20"}, {"discountRate", "10"}}), ""},
        {"Totals", a({{"cash", "20"}}), ""},
        {"totals",
         a({{"cash", "0"}, {"creditCard", "0.00"}, {"cheque", ""}, {"discountRate", "ten"}}), ""},
        {"totals", a({{"cash", "0.50"}, {"ticket", "-2"}, {"cheque", "3 euro"}}),
         "0,50H1T\r\n3 euroH2T\r\n-2H5T\r\n"},
        {"totals", a({{"creditCard", "0,05"}, {"cheque", "-0.00"}, {"ticket", ".5"}}), "0,05H3T\r\n,5H5T\r\n"},
    };
    for (const Case& c : cases) {
        TestDriver driver;
        driver.printRowFiscal(QString::fromLatin1(c.name), c.atts);
        EXPECT_EQ(driver.bytes().toStdString(), c.expected) << c.name;
    }
}

} // namespace

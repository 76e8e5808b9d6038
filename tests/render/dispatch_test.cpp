#include "xmlreader.h"
#include "testdriver.h"

#include <gtest/gtest.h>

#include <string>

namespace {

struct Parsed
{
    bool complete;
    std::string bytes;
    std::string out;
};

Parsed parse(const char* xml)
{
    TestDriver driver;
    QBuffer input;
    input.setData(xml);
    input.open(QIODevice::ReadOnly);
    testing::internal::CaptureStdout();
    const bool complete = parseXml(&input, driver);
    const std::string out = testing::internal::GetCapturedStdout();
    return {complete, driver.bytes().toStdString(), out};
}

TEST(Dispatch, MethodElementChoosesTheDocument)
{
    // The kitchen ticket's settings leave only the 32-character paper width.
    const std::string pizza = "\"1 Pizza" + std::string(24, ' ') + "\"@\n";
    struct Case { const char* xml; bool complete; std::string bytes; const char* out; };
    const Case cases[] = {
        {"<r><receipe number='1' name='Early'/><method name='printPartialOrder'/>"
         "<receipe number='1' name='Pizza'/></r>",
         true, "\nj\n" + pizza + "J\n", ""},
        {"<r><receipe number='1' name='Pizza'/></r>", true, "J\n", ""},
        {"<r><method name='printRecipe'/><receipe number='1' name='Pizza'/></r>", false, "",
         "File Format Not Supported\n"},
        {"<r><method name='printpartialorder'/></r>", false, "", "File Format Not Supported\n"},
        {"<r><method name='printPartialOrder'/><receipe number='1' name='Pizza'/><a></r>"
         "<receipe number='2' name='Lost'/>",
         false, "\nj\n" + pizza, ""},
        {"", false, "", ""},
    };
    for (const Case& c : cases) {
        const Parsed parsed = parse(c.xml);
        EXPECT_EQ(parsed.complete, c.complete) << c.xml;
        EXPECT_EQ(parsed.bytes, c.bytes) << c.xml;
        EXPECT_EQ(parsed.out, c.out) << c.xml;
    }
}

TEST(Dispatch, LoadsTheSettingsOfTheDocumentType)
{
    // Paper widths in the test configuration: order 0, prefiscal absent,
    // receipt "wide", invoice 40, report 44, sold 36, fiscal absent.
    struct Case { const char* method; const char* prefix; int paperWidth; int quantityWidth; };
    const Case cases[] = {
        {"printPartialOrder", "zentaro.doc.", 32, 0},
        {"printAbstractOrder", "zentaro.doc.", 32, 0},
        {"printFullOrder", "zentaro.prefiscaldoc.", 32, 0},
        {"printFullOrderReceipt", "zentaro.receiptdoc.", 32, 0},
        {"printAbstractOrderInvoice", "zentaro.invoicedoc.", 40, 0},
        {"printFullOrderDelivery", "zentaro.deliverydoc.", 32, 0},
        {"printAbstractOrderFiscal", "zentaro.fiscaldoc.", 32, 0},
        {"printReport", "zentaro.reportdoc.", 44, 4},
        {"printStatementOfAccount", "zentaro.reportdoc.", 44, 4},
        {"printSold", "zentaro.solddoc.", 36, 5},
    };
    for (const Case& c : cases) {
        TestDriver driver;
        ASSERT_TRUE(driver.selectMethod(QString::fromLatin1(c.method)));
        EXPECT_EQ(driver.method(), QLatin1StringView(c.method));
        EXPECT_EQ(driver.docPath.toStdString(), c.prefix) << c.method;
        EXPECT_EQ(driver.settings.paperWidth, c.paperWidth) << c.method;
        EXPECT_EQ(driver.settings.quantityFieldWidth, c.quantityWidth) << c.method;
    }

    // Only the exact text "true" switches on: "True", "1" and " true" do not.
    TestDriver invoice;
    invoice.selectMethod(QStringLiteral("printFullOrderInvoice"));
    EXPECT_TRUE(invoice.settings.printCompany);
    EXPECT_FALSE(invoice.settings.printHeader);
    EXPECT_FALSE(invoice.settings.printLogo);
    EXPECT_FALSE(invoice.settings.printCustomer);
}

TEST(Dispatch, InvoicesAreDuplicatedFiscalReceiptsAreNot)
{
    TestDriver driver;
    EXPECT_FALSE(driver.printDuplicate());
    const std::pair<const char*, bool> steps[] = {
        {"printFullOrderInvoice", true},     {"printFullOrderReceipt", true},
        {"printFullOrderFiscal", false},     {"printAbstractOrderInvoice", true},
        {"printAbstractOrderFiscal", false}, {"printReport", false},
    };
    for (const auto& [method, duplicate] : steps) {
        driver.selectMethod(QString::fromLatin1(method));
        EXPECT_EQ(driver.printDuplicate(), duplicate) << method;
    }
}

TEST(Dispatch, DocumentPathOfAnUnknownTypeFallsBackToPrefiscal)
{
    TestDriver driver;
    testing::internal::CaptureStdout();
    EXPECT_EQ(driver.documentPath(QStringLiteral("RECEIPT")), QStringLiteral("zentaro.receiptdoc."));
    EXPECT_EQ(driver.documentPath(QStringLiteral("Kitchen")), QStringLiteral("zentaro.prefiscaldoc."));
    EXPECT_EQ(driver.documentPath(QString()), QStringLiteral("zentaro.prefiscaldoc."));
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Error into PrinterDriver::documentPath:  kitchen\n"
              "Error into PrinterDriver::documentPath:  \n");
}

} // namespace

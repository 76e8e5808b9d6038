#include "documents.h"
#include "documenttypes.h"
#include "render.h"
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
    QBuffer input;
    input.setData(xml);
    input.open(QIODevice::ReadOnly);
    QBuffer printFile;
    testing::internal::CaptureStdout();
    const bool complete = renderRequest(input, printFile, testConfiguration()).complete;
    const std::string out = testing::internal::GetCapturedStdout();
    return {complete, printFile.data().toStdString(), out};
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

TEST(Dispatch, LoadsTheSettingsOfTheDocumentsType)
{
    // The test configuration gives the types different paper widths
    // (report 44, sold 36, invoice 40, a "wide" receipt read as 32).
    for (const Documents::Document& document : Documents::all()) {
        TestDriver driver;
        ASSERT_TRUE(driver.selectMethod(document.method.toString()));
        EXPECT_EQ(driver.method(), document.method);
        EXPECT_EQ(driver.docPath, document.type.prefix) << document.method.data();
        EXPECT_EQ(driver.settings.paperWidth,
                  readDocumentSettings(testConfiguration(), document.type).paperWidth)
            << document.method.data();
    }
    TestDriver statement;
    statement.selectMethod(QStringLiteral("printStatementOfAccount"));
    EXPECT_EQ(statement.settings.paperWidth, 44);

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

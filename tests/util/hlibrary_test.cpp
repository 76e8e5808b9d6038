#include "hlibrary.h"
#include "testsupport.h"
#include "ztconfiguration.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

TEST(TruncateDecimal, DropsBeyondTheThirdDecimalThenRoundsHalfUp)
{
    struct Case
    {
        double value;
        const char* expected;
    };
    const Case cases[] = {
        {1.2349, "1.23"}, {1.2351, "1.24"}, {1.235, "1.24"}, {3, "3.00"}, {1.005, "1.00"},
        {-1.239, "-1.23"}, {-1.235, "-1.23"}, {-1.2399, "-1.23"}, {12.5, "12.50"}, {0.29, "0.29"},
        {0.1, "0.10"}, {0, "0.00"}, {-0.004, "0.00"}, {-0.009, "0.00"}, {-3, "-3.00"},
        {1234567.891, "1234567.89"}, {0.995, "1.00"}, {99.9951, "100.00"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(HLibrary::truncateDecimal(c.value), QString::fromLatin1(c.expected)) << "value " << c.value;
}

TEST(TruncateDecimal, OutOfRangeAmountsStillGiveTwoDecimals)
{
    for (double value : {1e12, -1e12, std::numeric_limits<double>::infinity(), std::nan("")}) {
        const QString text = HLibrary::truncateDecimal(value);
        EXPECT_EQ(text.indexOf(u'.'), text.size() - 3) << text.toStdString();
    }
}

const char copySettings[] = R"(zentaro : {
    doc : { copyNumber = 1; };
    prefiscaldoc : { copyNumber = 2; };
    fiscaldoc : { copyNumber = 3; };
    receiptdoc : { copyNumber = 4; };
    invoicedoc : { copyNumber = 5; };
    deliverydoc : { copyNumber = 6; };
    reportdoc : { copyNumber = 7; };
    solddoc : { copyNumber = 8; };
    db : { dbname = "pos"; username = "cashier"; password = "s3cret"; hostname = "/run/postgresql"; };
    bin : { path = "/opt/pos/bin"; };
};
)";

TEST(CopyNumber, ReadsTheCountOfTheDocumentType)
{
    const auto configuration = ZTConfiguration::fromText(copySettings);
    struct Case
    {
        const char* type;
        const char* expected;
    };
    const Case cases[] = {
        {"order", "1"},   {"prefiscal", "2"}, {"fiscal", "3"},  {"receipt", "4"}, {"Receipt", "4"},
        {"RECEIPT", "4"}, {"invoice", "5"},   {"delivery", "6"}, {"report", "7"}, {"sold", "8"},
    };
    testing::internal::CaptureStdout();
    for (const Case& c : cases) {
        EXPECT_EQ(HLibrary::copyNumber(QString::fromLatin1(c.type), configuration.get()),
                  QString::fromLatin1(c.expected))
            << c.type;
    }
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST(CopyNumber, UnknownTypeIsReportedAndCountsAsPrefiscal)
{
    const auto configuration = ZTConfiguration::fromText(copySettings);
    testing::internal::CaptureStdout();
    EXPECT_EQ(HLibrary::copyNumber(u"Kitchen"_s, configuration.get()), u"2"_s);
    EXPECT_EQ(HLibrary::copyNumber(QString(), configuration.get()), u"2"_s);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Error into HLibrary::copyNumber::documentPath: kitchen\n"
              "Error into HLibrary::copyNumber::documentPath: \n");
}

TEST(Settings, EachGetterReadsItsKey)
{
    const auto configuration = ZTConfiguration::fromText(copySettings);
    const ZTConfiguration* settings = configuration.get();
    const std::pair<QString, const char*> cases[] = {
        {HLibrary::dbname(settings), "pos"},
        {HLibrary::username(settings), "cashier"},
        {HLibrary::password(settings), "s3cret"},
        {HLibrary::hostname(settings), "/run/postgresql"},
        {HLibrary::pathWithBinaryFile(u"zentaro-print"_s, settings), "/opt/pos/bin/zentaro-print"},
    };
    for (const auto& [value, expected] : cases)
        EXPECT_EQ(value, QString::fromLatin1(expected));
}

TEST(Settings, ComeFromTheUsersFileWithoutAConfiguration)
{
    testsupport::TemporaryHome home;
    ASSERT_TRUE(home.writeConfiguration(copySettings));
    EXPECT_EQ(HLibrary::copyNumber(u"invoice"_s), u"5"_s);
    EXPECT_EQ(HLibrary::dbname(), u"pos"_s);
    EXPECT_EQ(HLibrary::dataPath(), home.path());
}

// The first file of the current folder named core*, case and all, in the
// folder's default order: by name, case ignored.
TEST(GetCoreFile, FirstFileNamedCore)
{
    const QTemporaryDir dir;
    const QString saved = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(dir.path()));
    const QString inEmptyFolder = HLibrary::getCoreFile();
    QDir().mkdir(u"core.0"_s);
    for (const char* name : {"Core", "mycore", "core.B", "core.a"})
        testsupport::writeBytes(QString::fromLatin1(name), "");
    const QString found = HLibrary::getCoreFile();
    QDir::setCurrent(saved);
    EXPECT_EQ(inEmptyFolder, u""_s);
    EXPECT_EQ(found, u"core.a"_s);
}

} // namespace

#include "hlibrary.h"
#include "testsupport.h"
#include "ztconfiguration.h"

#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cmath>
#include <ctime>
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

TEST(CopyNumber, MissingSettingIsEmpty)
{
    const auto configuration = ZTConfiguration::fromText("zentaro : { };\n");
    const QString count = HLibrary::copyNumber(u"receipt"_s, configuration.get());
    EXPECT_EQ(count, u""_s);
    EXPECT_FALSE(count.isNull());
}

TEST(Settings, DatabaseParametersAndProgramPath)
{
    const auto configuration = ZTConfiguration::fromText(copySettings);
    EXPECT_EQ(HLibrary::dbname(configuration.get()), u"pos"_s);
    EXPECT_EQ(HLibrary::username(configuration.get()), u"cashier"_s);
    EXPECT_EQ(HLibrary::password(configuration.get()), u"s3cret"_s);
    EXPECT_EQ(HLibrary::hostname(configuration.get()), u"/run/postgresql"_s);
    EXPECT_EQ(HLibrary::pathWithBinaryFile(u"zentaro-print"_s, configuration.get()), u"/opt/pos/bin/zentaro-print"_s);

    const auto bare = ZTConfiguration::fromText("zentaro : { bin : { path = \"/opt/\"; }; };\n");
    EXPECT_EQ(HLibrary::pathWithBinaryFile(u"x"_s, bare.get()), u"/opt//x"_s);
    EXPECT_EQ(HLibrary::dbname(bare.get()), u""_s);
}

TEST(Settings, ComeFromTheUsersFileWithoutAConfiguration)
{
    testsupport::TemporaryHome home;
    ASSERT_TRUE(home.writeConfiguration(copySettings));
    EXPECT_EQ(HLibrary::copyNumber(u"invoice"_s), u"5"_s);
    EXPECT_EQ(HLibrary::dbname(), u"pos"_s);
    EXPECT_EQ(HLibrary::dataPath(), home.path());
}

TEST(ComboBoxIndexOf, FindsTheFirstExactText)
{
    QComboBox box;
    box.addItems({u"Tea"_s, u"tea"_s, u"Coffee"_s, u"Tea"_s, QString()});
    EXPECT_EQ(HLibrary::comboBoxIndexOf(&box, u"Tea"_s), 0);
    EXPECT_EQ(HLibrary::comboBoxIndexOf(&box, u"tea"_s), 1);
    EXPECT_EQ(HLibrary::comboBoxIndexOf(&box, u"Coffee"_s), 2);
    EXPECT_EQ(HLibrary::comboBoxIndexOf(&box, u""_s), 4);
    EXPECT_EQ(HLibrary::comboBoxIndexOf(&box, u"Coffee "_s), -1);
    EXPECT_EQ(HLibrary::comboBoxIndexOf(nullptr, u"Tea"_s), -1);
}

// Runs a test in a fresh current folder.
class InTemporaryFolder : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(dir.isValid());
        ASSERT_TRUE(QDir::setCurrent(dir.path()));
    }
    void TearDown() override { QDir::setCurrent(saved); }

    QTemporaryDir dir;
    const QString saved = QDir::currentPath();
};

TEST_F(InTemporaryFolder, CoreFileIsTheFirstByName)
{
    EXPECT_EQ(HLibrary::getCoreFile(), u""_s);
    EXPECT_FALSE(HLibrary::getCoreFile().isNull());

    ASSERT_TRUE(QDir().mkdir(u"core.d"_s)); // a folder is not a core file
    ASSERT_TRUE(testsupport::writeBytes(u"mycore"_s, ""));
    ASSERT_TRUE(testsupport::writeBytes(u"Core"_s, ""));
    EXPECT_EQ(HLibrary::getCoreFile(), u""_s);

    ASSERT_TRUE(testsupport::writeBytes(u"core.2"_s, ""));
    ASSERT_TRUE(testsupport::writeBytes(u"core.10"_s, ""));
    EXPECT_EQ(HLibrary::getCoreFile(), u"core.10"_s);
}

TEST_F(InTemporaryFolder, TouchCreatesOrEmpties)
{
    HLibrary::touch(u"new"_s);
    EXPECT_TRUE(QFile::exists(u"new"_s));
    ASSERT_TRUE(testsupport::writeBytes(u"full"_s, "data"));
    HLibrary::touch(u"full"_s);
    EXPECT_EQ(testsupport::readBytes(u"full"_s), "");
    HLibrary::touch(u"missing/file"_s); // silent
    EXPECT_FALSE(QFile::exists(u"missing/file"_s));
}

TEST(GetNewRand, SameSecondSameNumber)
{
    // Retried when the second changes between the two calls.
    for (int attempt = 0; attempt < 3; ++attempt) {
        const std::time_t before = std::time(nullptr);
        const QString first = HLibrary::getNewRand();
        const QString second = HLibrary::getNewRand();
        if (std::time(nullptr) != before)
            continue;
        bool number = false;
        first.toUInt(&number);
        EXPECT_TRUE(number) << first.toStdString();
        EXPECT_EQ(first, second);
        return;
    }
    FAIL() << "the clock never stood still for two calls";
}

} // namespace

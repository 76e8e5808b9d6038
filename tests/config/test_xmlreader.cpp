#include "config.h"
#include "configtestutil.h"

#include <gtest/gtest.h>

#include <string>

using libconfig::Config;

namespace {

const QString dataDir = QStringLiteral(CONFIG_TEST_DATA);

TEST(XmlReader, WellFormedFileBecomesGroupsAndSettings)
{
    const QString path = dataDir + QStringLiteral("/zentaro.xml");
    Config config(path, QStringLiteral("xml"));

    // Declaration, comment, processing instruction and text leave no trace.
    EXPECT_EQ(dumpTree(config.document()),
              QStringLiteral("{%1{zentaro{"
                             "logger[level=WARNING,basedir=/var/log/pos,filename=print.log,type=append], "
                             "language[basedir= /usr/share/pos/lang ,file=de], "
                             "language[file=it,extra=caf\u00e9]}}}")
                  .arg(path));
    EXPECT_EQ(config.lookup(QStringLiteral("zentaro.logger.level")), QStringLiteral("WARNING"));
    EXPECT_EQ(config.lookup(QStringLiteral("zentaro.language.file")), QStringLiteral("de"));
    EXPECT_EQ(config.lookup(QStringLiteral("zentaro.language.extra")), QStringLiteral("caf\u00e9"));
    EXPECT_EQ(config.lookup(QStringLiteral("zentaro.logger.size")), QStringLiteral(""));
}

TEST(XmlReader, PrefixedNamesAreKeptAsWritten)
{
    const QString path = QStringLiteral("ns.xml");
    Config config;
    config.readData("<p:zentaro xmlns:p=\"urn:x\"><p:g p:k=\"1\"/></p:zentaro>", QStringLiteral("xml"), path);
    // Without namespace processing a declaration is an ordinary setting.
    EXPECT_EQ(dumpTree(config.document()), QStringLiteral("{%1{p:zentaro[xmlns:p=urn:x]{p:g[p:k=1]}}}").arg(path));
    EXPECT_EQ(config.lookup(QStringLiteral("p:zentaro.p:g.p:k")), QStringLiteral("1"));
}

struct NothingLoadedCase {
    const char* name;
    QString file;
    QString format;
};

class XmlNothingLoaded : public testing::TestWithParam<NothingLoadedCase> {};

TEST_P(XmlNothingLoaded, SilentlyGivesEmptyDocument)
{
    const NothingLoadedCase& row = GetParam();
    testing::internal::CaptureStdout();
    Config config(dataDir + row.file, row.format);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");

    ASSERT_NE(config.document(), nullptr);
    EXPECT_TRUE(config.document()->children().empty());
    EXPECT_EQ(config.lookup(QStringLiteral("zentaro.logger.level")), QStringLiteral(""));
    EXPECT_FALSE(config.lookup(QStringLiteral("zentaro.logger.level")).isNull());
}

INSTANTIATE_TEST_SUITE_P(
    Cases, XmlNothingLoaded,
    testing::Values(NothingLoadedCase{"Malformed", QStringLiteral("/broken.xml"), QStringLiteral("xml")},
                    NothingLoadedCase{"Missing", QStringLiteral("/absent.xml"), QStringLiteral("xml")},
                    NothingLoadedCase{"NotXml", QStringLiteral("/zentaro.conf"), QStringLiteral("xml")},
                    NothingLoadedCase{"UnknownFormatWord", QStringLiteral("/zentaro.conf"), QStringLiteral("ini")},
                    NothingLoadedCase{"FormatWordCaseSensitive", QStringLiteral("/zentaro.conf"), QStringLiteral("CFG")}),
    [](const testing::TestParamInfo<NothingLoadedCase>& info) { return std::string(info.param.name); });

TEST(XmlReader, OversizedMarkupIsToldApartFromMalformedText)
{
    Config config;
    testing::internal::CaptureStdout();
    config.readData("<zentaro>\n<logger level=\"" + QByteArray(10 << 20, 'x') + "\"/>\n</zentaro>",
                    QStringLiteral("xml"));
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(config.document()->firstChild(), nullptr);
    EXPECT_EQ(config.oversizedMarkupLine(), 2);

    config.readData("<zentaro>\n<logger level=\"x\">\n</zentaro>", QStringLiteral("xml"));
    EXPECT_EQ(config.oversizedMarkupLine(), -1);
}

TEST(XmlReader, DeepNestingDoesNotExhaustTheStack)
{
    constexpr int depth = 100000;
    std::string text;
    for (int i = 0; i < depth; ++i)
        text += "<a>";
    text += "<a k=\"deep\"/>";
    for (int i = 0; i < depth; ++i)
        text += "</a>";

    Config config;
    config.readData(QByteArray::fromStdString(text), QStringLiteral("xml"));
    QStringList fields(depth + 1, QStringLiteral("a"));
    fields << QStringLiteral("k");
    EXPECT_EQ(config.lookup(fields.join(QLatin1Char('.'))), QStringLiteral("deep"));
}

} // namespace

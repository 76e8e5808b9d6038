// The writers against golden files: every folder under data/writer/ holds
// an input and the exact "cfg" text, XML text and tree printout expected
// from it (GOLDEN_UPDATE=1 rewrites them). Inputs are read as if they were
// the user's file, so that the file element carries a fixed name.
#include "config.h"
#include "configtestutil.h"
#include "testsupport.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

using namespace Qt::StringLiterals;
using libconfig::Config;
using testsupport::expectGoldenFile;
using testsupport::readBytes;

namespace {

const QString writerData = QStringLiteral(CONFIG_TEST_DATA "/writer");
const QString sampleFileName = u"/home/anna/.zentaro/conf/zentaro.conf"_s;

struct WriterCase {
    std::string name;
    QString input;
    QString format;
    // Whether writing and reading back gives the very same tree: not when
    // a second top-level group follows the first (both formats), nor in XML
    // when the file element has settings of its own or a name is no XML name.
    bool cfgRoundTrip = true;
    bool xmlRoundTrip = true;
};

void PrintTo(const WriterCase& row, std::ostream* os)
{
    *os << row.name;
}

WriterCase inFolder(const std::string& name, const QString& format = u"cfg"_s)
{
    const QString input = writerData + u'/' + QString::fromStdString(name) + "/input."_L1
        + (format == "xml"_L1 ? "xml"_L1 : "conf"_L1);
    return {name, input, format};
}

std::vector<WriterCase> writerCases()
{
    std::vector<WriterCase> cases{
        inFolder("worked_example"),
        {"example_configuration", QStringLiteral(EXAMPLE_CONFIGURATION), u"cfg"_s},
        inFolder("outside_groups"),
        inFolder("duplicate_groups"),
        inFolder("empty_values"),
        inFolder("blanks_in_quotes"),
        inFolder("second_top_level"),
        inFolder("xml_file", u"xml"_s),
    };
    cases[2].xmlRoundTrip = false; // settings outside the groups
    cases[5].xmlRoundTrip = false; // "my key"
    cases[6].cfgRoundTrip = cases[6].xmlRoundTrip = false;
    return cases;
}

std::unique_ptr<Config> loadText(const QByteArray& text, const QString& format)
{
    auto config = std::make_unique<Config>();
    config->readData(text, format, sampleFileName);
    return config;
}

class WriterGolden : public testing::TestWithParam<WriterCase>
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(scratch.isValid());
        config = loadText(readBytes(GetParam().input), GetParam().format);
        ASSERT_NE(config->document()->firstChild(), nullptr) << "the input loads nothing";
    }

    QString expected(const char* file) const
    {
        return writerData + u'/' + QString::fromStdString(GetParam().name) + u'/' + QLatin1StringView(file);
    }

    QByteArray writtenCfg() const
    {
        const QString path = scratch.filePath(u"out.conf"_s);
        EXPECT_TRUE(config->buildConfigFile(path));
        return readBytes(path);
    }

    QByteArray writtenXml() const
    {
        const QString path = scratch.filePath(u"out.xml"_s);
        EXPECT_TRUE(config->buildConfigXmlFile(path));
        return readBytes(path);
    }

    QTemporaryDir scratch;
    std::unique_ptr<Config> config;
};

TEST_P(WriterGolden, CfgText)
{
    expectGoldenFile(expected("expected.cfg"), writtenCfg());
}

TEST_P(WriterGolden, XmlText)
{
    expectGoldenFile(expected("expected.xml"), writtenXml());
}

TEST_P(WriterGolden, TreePrintout)
{
    testing::internal::CaptureStdout();
    config->printConfigTree();
    expectGoldenFile(expected("expected.tree"), QByteArray::fromStdString(testing::internal::GetCapturedStdout()));
}

INSTANTIATE_TEST_SUITE_P(Cases, WriterGolden, testing::ValuesIn(writerCases()),
                         [](const testing::TestParamInfo<WriterCase>& info) { return info.param.name; });

// Written in one format and read back, a tree stays what it was, where the
// format can carry all of it.
struct RoundTripCase {
    WriterCase source;
    QString format;
};

void PrintTo(const RoundTripCase& row, std::ostream* os)
{
    *os << row.source.name << " as " << row.format.toStdString();
}

std::vector<RoundTripCase> roundTripCases()
{
    std::vector<RoundTripCase> cases;
    for (const WriterCase& source : writerCases()) {
        if (source.cfgRoundTrip)
            cases.push_back({source, u"cfg"_s});
        if (source.xmlRoundTrip)
            cases.push_back({source, u"xml"_s});
    }
    return cases;
}

class RoundTrip : public testing::TestWithParam<RoundTripCase>
{};

TEST_P(RoundTrip, ReadsBackAsTheSameTree)
{
    const RoundTripCase& row = GetParam();
    QTemporaryDir scratch;
    const QString path = scratch.filePath(u"out"_s);
    const auto original = loadText(readBytes(row.source.input), row.source.format);
    ASSERT_TRUE(row.format == "xml"_L1 ? original->buildConfigXmlFile(path) : original->buildConfigFile(path));
    EXPECT_EQ(dumpTree(loadText(readBytes(path), row.format)->document()), dumpTree(original->document()));
}

INSTANTIATE_TEST_SUITE_P(Cases, RoundTrip, testing::ValuesIn(roundTripCases()),
                         [](const testing::TestParamInfo<RoundTripCase>& info) {
                             return info.param.source.name + '_' + info.param.format.toStdString();
                         });

// What the "cfg" text cannot carry: the tree read back from it.
struct LossCase {
    const char* name;
    QByteArray input;
    QString format;
    QString readBack; // dumpTree below the file element
};

void PrintTo(const LossCase& row, std::ostream* os)
{
    *os << row.name;
}

class CfgLosses : public testing::TestWithParam<LossCase>
{};

TEST_P(CfgLosses, ReadBack)
{
    const LossCase& row = GetParam();
    QTemporaryDir scratch;
    const QString path = scratch.filePath(u"out.conf"_s);
    ASSERT_TRUE(loadText(row.input, row.format)->buildConfigFile(path));
    EXPECT_EQ(dumpTree(loadText(readBytes(path), u"cfg"_s)->document()),
              u"{%1{%2}}"_s.arg(sampleFileName, row.readBack));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, CfgLosses,
    testing::Values(LossCase{"QuoteInValueVanishes", "<z><g k='a&quot;b'/></z>", u"xml"_s, u"z{g[k=ab]}"_s},
                    LossCase{"SemicolonCutsValueAndSpillsIntoNextName", "<z><g k='a;b' j='c'/></z>", u"xml"_s,
                             u"z{g[k=a,b\";\n        j=c]}"_s},
                    LossCase{"ColonCutsGroupName", "<z><p:g k='1'/></z>", u"xml"_s, u"z{p[k=1]}"_s},
                    LossCase{"LaterTopLevelGroupsDropped", "a : { k = 1; };\nb : { k = 2; };", u"cfg"_s,
                             u"a[k=1]"_s},
                    LossCase{"BeyondLatin1BecomesQuestionMark", "<z k='\xE2\x82\xAC'/>", u"xml"_s, u"z[k=?]"_s}),
    [](const testing::TestParamInfo<LossCase>& info) { return std::string(info.param.name); });

TEST(ConfigWriter, EmptyNameWritesTheLoadedFile)
{
    QTemporaryDir scratch;
    const QString path = scratch.filePath(u"zentaro.conf"_s);
    ASSERT_TRUE(testsupport::writeBytes(path, "zentaro : { a : { k = v; }; };"));
    Config config(path, u"cfg"_s);

    ASSERT_TRUE(config.buildConfigFile());
    EXPECT_EQ(readBytes(path), "zentaro: \n{\n    a: \n    {\n        k = \"v\";\n    };\n\n};\n\n");
    ASSERT_TRUE(config.buildConfigXmlFile());
    EXPECT_EQ(readBytes(path), "\n<zentaro>\n\n    <a\n        k = \"v\">\n    </a>\n</zentaro>\n");
}

TEST(ConfigWriter, FileThatCannotBeWrittenIsReportedOnce)
{
    QTemporaryDir scratch;
    const QString path = scratch.filePath(u"missing/zentaro.conf"_s);
    const auto config = loadText("zentaro : { k = v; };", u"cfg"_s);

    testing::internal::CaptureStdout();
    EXPECT_FALSE(config->buildConfigFile(path));
    EXPECT_FALSE(config->buildConfigXmlFile(scratch.path()));
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Error in the method Config::buildConfigFile( " + path.toStdString() + " ): Unable To Open File\n"
              "Error in the method Config::buildConfigXmlFile( " + scratch.path().toStdString()
                  + " ): Unable To Open File\n");
}

TEST(ConfigWriter, NothingLoadedWritesAnEmptyFileAndABareTree)
{
    QTemporaryDir scratch;
    const QString path = scratch.filePath(u"out.conf"_s);
    ASSERT_TRUE(testsupport::writeBytes(path, "old"));
    Config config;

    EXPECT_TRUE(config.buildConfigFile(path));
    EXPECT_EQ(readBytes(path), QByteArray());
    testing::internal::CaptureStdout();
    config.printConfigTree();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Tree \n");
}

// The walk keeps its own stack; the printout, unlike the indented writers,
// stays linear in the depth and so can show it.
TEST(ConfigWriter, DeepNestingDoesNotExhaustTheStack)
{
    constexpr int depth = 200000;
    QByteArray text;
    for (int i = 0; i < depth; ++i)
        text += "g:{";
    text += "k=v;";
    const auto config = loadText(text, u"cfg"_s);

    testing::internal::CaptureStdout();
    config->printConfigTree();
    const std::string printed = testing::internal::GetCapturedStdout();
    EXPECT_EQ(std::count(printed.begin(), printed.end(), '\n'), depth + 3);
    EXPECT_TRUE(printed.ends_with("g\nk = v\n"));
}

} // namespace

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
    // The formats that write and read back the very same tree: not "cfg"
    // nor XML when a second top-level group follows the first, not XML when
    // the file element has settings of its own or a name is no XML name.
    QStringList roundTrips{u"cfg"_s, u"xml"_s};
};

void PrintTo(const WriterCase& row, std::ostream* os)
{
    *os << row.name;
}

WriterCase inFolder(const std::string& name, QStringList roundTrips = {u"cfg"_s, u"xml"_s})
{
    const bool xml = name.starts_with("xml");
    const QString input = writerData + u'/' + QString::fromStdString(name) + (xml ? "/input.xml"_L1 : "/input.conf"_L1);
    return {name, input, xml ? u"xml"_s : u"cfg"_s, roundTrips};
}

std::vector<WriterCase> writerCases()
{
    return {
        inFolder("worked_example"),
        {"example_configuration", QStringLiteral(EXAMPLE_CONFIGURATION), u"cfg"_s},
        inFolder("outside_groups", {u"cfg"_s}),
        inFolder("duplicate_groups"),
        inFolder("empty_values"),
        inFolder("blanks_in_quotes", {u"cfg"_s}), // "my key"
        inFolder("second_top_level", {}),
        inFolder("xml_file"),
    };
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

    // The file the writer of `format` writes.
    QByteArray written(const QString& format) const
    {
        const QString path = scratch.filePath(u"out."_s + format);
        EXPECT_TRUE(format == "xml"_L1 ? config->buildConfigXmlFile(path) : config->buildConfigFile(path));
        return readBytes(path);
    }

    QTemporaryDir scratch;
    std::unique_ptr<Config> config;
};

TEST_P(WriterGolden, WritesTheExpectedTexts)
{
    const QString expected = writerData + u'/' + QString::fromStdString(GetParam().name) + "/expected."_L1;
    expectGoldenFile(expected + "cfg"_L1, written(u"cfg"_s));
    expectGoldenFile(expected + "xml"_L1, written(u"xml"_s));
    testing::internal::CaptureStdout();
    config->printConfigTree();
    expectGoldenFile(expected + "tree"_L1, QByteArray::fromStdString(testing::internal::GetCapturedStdout()));
}

TEST_P(WriterGolden, ReadsBackAsTheSameTree)
{
    for (const QString& format : GetParam().roundTrips)
        EXPECT_EQ(dumpTree(loadText(written(format), format)->document()), dumpTree(config->document())) << format.toStdString();
}

INSTANTIATE_TEST_SUITE_P(Cases, WriterGolden, testing::ValuesIn(writerCases()),
                         [](const testing::TestParamInfo<WriterCase>& info) { return info.param.name; });

// The walk keeps its own stack, so the printout can show any depth.
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

// Past a floor the indentation stops growing: the text stays proportional
// to the tree (four blanks more on every level would make some 4.5 MB of
// 1500 levels) and still reads back as the same tree.
TEST(ConfigWriter, DeepTreeWritesTextProportionalToIt)
{
    // Deep enough that indentation rebuilt per line would pass the bound,
    // shallow enough for the recursive test helper under the sanitizers.
    constexpr int depth = 1500;
    const auto config = loadText(QByteArray("g:{").repeated(depth) + "k=v;", u"cfg"_s);
    QTemporaryDir scratch;
    const QString xmlPath = scratch.filePath(u"deep.xml"_s);
    ASSERT_TRUE(config->buildConfigXmlFile(xmlPath));

    for (const auto& [format, text] : {std::pair{u"cfg"_s, config->cfgText()}, std::pair{u"xml"_s, readBytes(xmlPath)}}) {
        EXPECT_LT(text.size(), 1000 * depth) << format.toStdString();
        EXPECT_EQ(dumpTree(loadText(text, format)->document()).size(), dumpTree(config->document()).size());
    }
}

} // namespace

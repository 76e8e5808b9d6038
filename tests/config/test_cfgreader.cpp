#include "config.h"
#include "configtestutil.h"
#include "testsupport.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <string>
#include <vector>

using libconfig::Config;
using libconfig::ConfigNode;
using testsupport::writeBytes;

namespace {

const QString dataDir = QStringLiteral(CONFIG_TEST_DATA);

QString latin1(std::string_view bytes)
{
    return QString::fromLatin1(bytes.data(), qsizetype(bytes.size()));
}

TEST(CfgReader, ReadsTheApplicationFile)
{
    Config config(dataDir + QStringLiteral("/zentaro.conf"), QStringLiteral("cfg"));

    EXPECT_EQ(config.lookup(QStringLiteral("zentaro.logger.level")), QStringLiteral("WARNING"));
    EXPECT_EQ(config.lookup(QStringLiteral("zentaro.logger.filename")), QStringLiteral("print.log"));
    EXPECT_EQ(config.lookup(QStringLiteral("zentaro.language.basedir")), QStringLiteral(" /usr/share/pos/lang "));
    EXPECT_EQ(config.lookup(QStringLiteral("zentaro.logger.size")), QStringLiteral(""));
    EXPECT_EQ(config.lookup(QStringLiteral("logger.level")), QStringLiteral(""));
    EXPECT_EQ(config.lookup(QStringLiteral("zentaro.logger")), QStringLiteral(""));
    EXPECT_FALSE(config.lookup(QStringLiteral("zentaro.logger.size")).isNull());
}

struct CfgCase {
    std::string name;     // test name suffix
    std::string text;     // file bytes, ISO 8859-1
    std::string key;      // ISO 8859-1
    std::string expected; // ISO 8859-1
};

void PrintTo(const CfgCase& row, std::ostream* os)
{
    *os << row.name;
}

std::vector<CfgCase> cfgCases()
{
    using namespace std::string_literals;
    const std::string nested = "zentaro : {\n    a : {\n";
    const std::string close = "    };\n};\n";
    const std::string longText(3000, 'v');
    return {
        {"QuotedBlanksKept", nested + "k = \"  a b  \";\n" + close, "zentaro.a.k", "  a b  "},
        {"UnquotedValueTrimmed", nested + "k =   plain text \t ;\n" + close, "zentaro.a.k", "plain text"},
        {"QuotesRemovedAnywhere", nested + "k = \"x\"y\"z\";\n" + close, "zentaro.a.k", "xyz"},
        {"StructuralCharsInValue", nested + "k = \"a=b:c{d}e\";\n" + close, "zentaro.a.k", "a=b:c{d}e"},
        {"NoBreakSpaceTrimmed", nested + "k = \xA0v\xA0;\n" + close, "zentaro.a.k", "v"},
        {"NextLineCharNotTrimmed", nested + "k = v\x85;\n" + close, "zentaro.a.k", "v\x85"},
        {"Latin1Value", nested + "k = caf\xE9;\n" + close, "zentaro.a.k", "caf\xE9"},
        {"CrLfLines", "zentaro : {\r\n  a : {\r\n    k = v;\r\n  };\r\n};\r\n", "zentaro.a.k", "v"},
        {"NulEndsValue", nested + "k = ab\0cd;\n"s + close, "zentaro.a.k", "ab"},
        {"NulCutBeforeTrimAndQuotes", nested + "k = \"ab \0 cd\";\n"s + close, "zentaro.a.k", "ab"},
        {"NulEndsName", nested + "k\0junk = v;\n"s + close, "zentaro.a.k", "v"},
        {"DuplicateGroupsSearchedInOrder", "zentaro:{a:{x=1;};a:{k=2;};};", "zentaro.a.k", "2"},
        {"EmptyValueCountsAsMissing", "zentaro:{a:{k=\"\";};a:{k=2;};};", "zentaro.a.k", "2"},
        {"OnlyEmptyValue", "zentaro:{k=\"\";};", "zentaro.k", ""},
        {"RepeatedKeyLaterValue", "zentaro:{a:{k=1;k=2;};};", "zentaro.a.k", "2"},
        {"TopLevelSettingNeverFound", "k = 1;\nzentaro:{a=2;};", "zentaro.k", ""},
        {"SecondTopLevelGroupUnreached", "zentaro:{a=1;};\nother:{b=2;};", "other.b", ""},
        {"BraceWithoutSemicolonLosesStatements", "zentaro:{a:{k=1;}\n b = 2;\n c = 3;\n};", "zentaro.b", ""},
        {"BraceWithoutSemicolonThenReadsOn", "zentaro:{a:{k=1;}\n b = 2;\n c = 3;\n};", "zentaro.c", "3"},
        {"TopLevelBraceEndsReading", "};\nzentaro:{a=1;};", "zentaro.a", ""},
        {"CommentLineJoinsName", "zentaro : {\n# note\nlevel = 1;\n};", "zentaro.# note\nlevel", "1"},
        {"CommentLineHidesKey", "zentaro : {\n# note\nlevel = 1;\n};", "zentaro.level", ""},
        {"DoubledSemicolonJoinsName", "zentaro:{a=1;;b=2;};", "zentaro.;b", "2"},
        {"ValueWithoutSemicolonRunsOn", "zentaro : {\n  a = 1\n  b = 2;\n};", "zentaro.a", "1\n  b = 2"},
        {"ValueRunsToEndOfFile", "zentaro : {\n  a = open  \n", "zentaro.a", "open"},
        {"ColonWithoutBraceTakesNextBody", "zentaro:{a:\n x = 1;\n b:{k=2;};\n};", "zentaro.a.k", "2"},
        {"ColonWithoutBraceLosesNextGroup", "zentaro:{a:\n x = 1;\n b:{k=2;};\n};", "zentaro.b.k", ""},
        {"OpenGroupAtEndKeepsSettings", "zentaro:{a:{k=1;", "zentaro.a.k", "1"},
        {"LongValueKeptWhole", "zentaro:{k=" + longText + ";};", "zentaro.k", longText},
        {"LongNameKeptWhole", "zentaro:{" + longText + "=1;};", "zentaro." + longText, "1"},
        {"BlankInsideKey", "zentaro:{my key = 1;};", "zentaro.my key", "1"},
        {"SingleFieldKey", "zentaro:{a=1;};", "zentaro", ""},
        {"TrailingDotReadsAttribute", "zentaro:{a=1;};", "zentaro.a.", "1"},
        {"FourFieldKey", "zentaro:{a:{b:{k=1;};};};", "zentaro.a.b.k", "1"},
        {"CaseSensitive", "zentaro:{a=1;};", "Zentaro.a", ""},
        {"EmptyFile", "", "zentaro.a", ""},
        {"NoStructure", "just some words\n", "just some words", ""},
    };
}

class CfgLookup : public testing::TestWithParam<CfgCase> {};

TEST_P(CfgLookup, GivesExpectedValue)
{
    const CfgCase& row = GetParam();
    Config config;
    config.readData(QByteArray::fromStdString(row.text), QStringLiteral("cfg"));
    const QString value = config.lookup(latin1(row.key));
    EXPECT_EQ(value, latin1(row.expected));
    EXPECT_FALSE(value.isNull());
}

INSTANTIATE_TEST_SUITE_P(Cases, CfgLookup, testing::ValuesIn(cfgCases()),
                         [](const testing::TestParamInfo<CfgCase>& info) { return info.param.name; });

TEST(CfgReader, TreeShape)
{
    const QString path = QStringLiteral("/home/anna/shape.conf");
    Config config;
    config.readData("top = 1;\n"
                    "zentaro : {\n"
                    "    empty : { };\n"
                    "    b = 2;\n"
                    "    a = 1;\n"
                    "    b = 3;\n"
                    "    g : { x = 1; };\n"
                    "    g : { y = 2; };\n"
                    "    outer : { inner : { }; };\n"
                    "};\n"
                    "second : { s = 1; };\n",
                    QStringLiteral("cfg"), path);
    EXPECT_EQ(dumpTree(config.document()),
              QStringLiteral("{%1[top=1]{zentaro[b=3,a=1]{g[x=1], g[y=2], outer}, second[s=1]}}").arg(path));
    EXPECT_EQ(config.document()->firstChild()->parent(), config.document());
}

// Only a regular file is read: a FIFO would block at open, and a folder
// holds no settings. Each reads like a missing file.
TEST(CfgReader, WhatIsNotARegularFileReportsAndLoadsNothing)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString fifo = dir.filePath(QStringLiteral("fifo.conf"));
    ASSERT_EQ(mkfifo(fifo.toLocal8Bit().constData(), 0600), 0);
    for (const QString& path : {dir.filePath(QStringLiteral("absent.conf")), dir.path(), fifo}) {
        testing::internal::CaptureStdout();
        Config config(path, QStringLiteral("cfg"));
        EXPECT_EQ(testing::internal::GetCapturedStdout(),
                  "Error in the method FileReader::open( " + path.toStdString() + " ): File Not Found\n");
        ASSERT_NE(config.document(), nullptr);
        EXPECT_TRUE(config.document()->children().empty());
    }
}

TEST(CfgReader, DefaultConstructedHasNoDocument)
{
    Config config;
    EXPECT_EQ(config.document(), nullptr);
    EXPECT_EQ(config.lookup(QStringLiteral("zentaro.a")), QStringLiteral(""));
    EXPECT_FALSE(config.lookup(QStringLiteral("zentaro.a")).isNull());
}

// A top-level '}' leaves the stream open; reading another file must still
// work and show only the new file.
TEST(CfgReader, ReadFileAgainReplacesDocument)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString first = dir.filePath(QStringLiteral("first.conf"));
    const QString second = dir.filePath(QStringLiteral("second.conf"));
    ASSERT_TRUE(writeBytes(first, "zentaro:{a=1;};\n};\nzentaro:{c=3;};"));
    ASSERT_TRUE(writeBytes(second, "zentaro:{b=2;};"));

    Config config(first, QStringLiteral("cfg"));
    ASSERT_EQ(config.lookup(QStringLiteral("zentaro.a")), QStringLiteral("1"));

    testing::internal::CaptureStdout();
    config.readFile(second, QStringLiteral("cfg"));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(config.lookup(QStringLiteral("zentaro.a")), QStringLiteral(""));
    EXPECT_EQ(config.lookup(QStringLiteral("zentaro.b")), QStringLiteral("2"));

    // A file that cannot be opened reads as empty, not as what is left of the last one.
    config.readFile(first, QStringLiteral("cfg"));
    testing::internal::CaptureStdout();
    config.readFile(dir.filePath(QStringLiteral("missing.conf")), QStringLiteral("cfg"));
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(config.document()->children().size(), 0u);
}

// Nesting depth is under the file's control; reading, searching and freeing
// must not use the call stack for it.
TEST(CfgReader, DeepNestingDoesNotExhaustTheStack)
{
    constexpr int depth = 300000;
    std::string text;
    QStringList fields;
    for (int i = 0; i < depth; ++i) {
        text += "a:{";
        fields << QStringLiteral("a");
    }
    text += "k = deep;";
    fields << QStringLiteral("k");

    Config config;
    config.readData(QByteArray::fromStdString(text), QStringLiteral("cfg"));
    EXPECT_EQ(config.lookup(fields.join(QLatin1Char('.'))), QStringLiteral("deep"));
    EXPECT_EQ(config.lookup(QStringLiteral("a.a.a.missing")), QStringLiteral(""));
}

} // namespace

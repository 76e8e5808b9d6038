// zentaro-config run as the real executable, in a scratch home of its own:
// what each command prints and writes, its exit statuses, and that the file
// it reads is left as it was.
#include "testsupport.h"

#include <QDateTime>
#include <QFile>
#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <unistd.h>

#include <string>
#include <vector>

using namespace Qt::StringLiterals;
using testsupport::readBytes;

namespace {

const QString writerData = QStringLiteral(CONFIG_TEST_DATA "/writer");
const QString exampleConfiguration = QStringLiteral(EXAMPLE_CONFIGURATION);
const QString setData = QStringLiteral(SET_TEST_DATA);

using Outcome = testsupport::ProgramRun;

// The scratch home holds the user's file, a copy of the example
// configuration; every test checks at its end that the file is untouched.
class ToolTest : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(home.isValid());
        userFile = home.filePath(u".zentaro/conf/zentaro.conf"_s);
        ASSERT_TRUE(testsupport::writeBytes(userFile, readBytes(exampleConfiguration).toStdString()));
        userFileTime = QFileInfo(userFile).lastModified();
    }

    void TearDown() override
    {
        EXPECT_EQ(readBytes(userFile), readBytes(exampleConfiguration)) << "the user's file changed";
        EXPECT_EQ(QFileInfo(userFile).lastModified(), userFileTime);
    }

    // Runs the program in the home folder, without a display unless the
    // environment given asks for a platform.
    Outcome run(const QStringList& arguments, const QStringList& environment = {}) const
    {
        return testsupport::runProgram(QStringLiteral(ZENTARO_CONFIG), arguments, home.path(), {}, environment);
    }

    void writeInHome(const QString& name, const QByteArray& text) const
    {
        EXPECT_TRUE(testsupport::writeBytes(home.filePath(name), text.toStdString()));
    }

    QTemporaryDir home;
    QString userFile;
    QDateTime userFileTime;
};

struct GetCase {
    const char* name;
    QStringList arguments;
    int status;
    QByteArray out;
};

void PrintTo(const GetCase& row, std::ostream* os)
{
    *os << row.name;
}

class Get : public ToolTest, public testing::WithParamInterface<GetCase>
{};

// other.conf and other.xml in the home folder hold a value beyond ASCII.
TEST_P(Get, PrintsTheValueOrNothing)
{
    writeInHome(u"other.conf"_s, "zentaro : { company : { name = \"Caf\xE9\"; }; };\n");
    writeInHome(u"other.xml"_s, "<zentaro><company name='Caf\xC3\xA9'/></zentaro>");
    const Outcome r = run(GetParam().arguments);
    EXPECT_EQ(r.status, GetParam().status);
    EXPECT_EQ(r.out, GetParam().out);
    EXPECT_EQ(r.err, "");
}

INSTANTIATE_TEST_SUITE_P(
    Cases, Get,
    testing::Values(
        GetCase{"UsersFile", {u"get"_s, u"zentaro.logger.level"_s}, 0, "WARNING\n"},
        GetCase{"MissingKey", {u"get"_s, u"zentaro.logger.size"_s}, 1, ""},
        GetCase{"EmptyValueIsNotThere", {u"get"_s, u"zentaro.language.basedir"_s}, 1, ""},
        GetCase{"CfgBytesAsInTheFile", {u"--file"_s, u"other.conf"_s, u"get"_s, u"zentaro.company.name"_s}, 0,
                "Caf\xE9\n"},
        GetCase{"XmlByItsName", {u"-f"_s, u"other.xml"_s, u"get"_s, u"zentaro.company.name"_s}, 0, "Caf\xC3\xA9\n"},
        GetCase{"FormatOverridesTheName",
                {u"--file=other.xml"_s, u"--format"_s, u"cfg"_s, u"get"_s, u"zentaro.company.name"_s}, 1, ""}),
    [](const testing::TestParamInfo<GetCase>& info) { return std::string(info.param.name); });

TEST_F(ToolTest, DumpPrintsTheTree)
{
    writeInHome(u"zentaro.conf"_s, readBytes(writerData + "/worked_example/input.conf"_L1));
    QByteArray expected = readBytes(writerData + "/worked_example/expected.tree"_L1);
    expected.replace("/home/anna/.zentaro/conf/zentaro.conf", "zentaro.conf");

    const Outcome r = run({u"--file"_s, u"zentaro.conf"_s, u"dump"_s});
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.out, expected) << testsupport::lineDiff(expected, r.out);
    EXPECT_EQ(r.err, "");
}

// The conversions of the user's file give the writers' golden texts.
TEST_F(ToolTest, WriteCfgAndWriteXmlConvert)
{
    for (const auto& [command, golden] : {std::pair{"write-cfg", "expected.cfg"}, std::pair{"write-xml", "expected.xml"}}) {
        const QString output = home.filePath(QLatin1StringView(golden));
        const Outcome r = run({QLatin1StringView(command), output});
        EXPECT_EQ(r.status, 0) << command;
        EXPECT_EQ(r.out + r.err, "") << command;
        const QByteArray expected = readBytes(writerData + "/example_configuration/"_L1 + QLatin1StringView(golden));
        EXPECT_TRUE(readBytes(output) == expected) << testsupport::lineDiff(expected, readBytes(output));
    }
}

class Set : public ToolTest, public testing::WithParamInterface<std::string>
{};

// Each folder of data/set holds a command line's KEY and VALUE and the file
// it makes of data/set/input.conf, whose layout it must keep.
TEST_P(Set, ChangesOnlyTheValuesBytes)
{
    const QString folder = setData + u'/' + QString::fromStdString(GetParam());
    const QString command = QString::fromLatin1(readBytes(folder + "/command"_L1).trimmed());
    const qsizetype blank = command.indexOf(u' ');
    writeInHome(u"input.conf"_s, readBytes(setData + "/input.conf"_L1));

    const Outcome r = run({u"-f"_s, u"input.conf"_s, u"set"_s, command.first(blank), command.sliced(blank + 1)});
    EXPECT_EQ(r.status, 0) << r.err.toStdString();
    EXPECT_EQ(r.out + r.err, "");
    testsupport::expectGoldenFile(folder + "/expected.conf"_L1, readBytes(home.filePath(u"input.conf"_s)));
}

INSTANTIATE_TEST_SUITE_P(Cases, Set, testing::ValuesIn(testsupport::subfolderNames(setData)),
                         [](const testing::TestParamInfo<std::string>& info) { return info.param; });

class Usage : public ToolTest, public testing::WithParamInterface<QStringList>
{};

TEST_P(Usage, WrongUsageGivesTheUsageLineAndStatus2)
{
    const Outcome r = run(GetParam());
    EXPECT_EQ(r.status, 2);
    EXPECT_EQ(r.out, "");
    const QList<QByteArray> lines = r.err.trimmed().split('\n');
    EXPECT_EQ(lines.size(), 2) << r.err.toStdString();
    EXPECT_TRUE(lines.last().startsWith("Usage: zentaro-config ")) << r.err.toStdString();
}

INSTANTIATE_TEST_SUITE_P(Cases, Usage,
                         testing::Values(QStringList{}, QStringList{u"frob"_s}, QStringList{u"get"_s},
                                         QStringList{u"get"_s, u"a"_s, u"b"_s}, QStringList{u"dump"_s, u"x"_s},
                                         QStringList{u"write-cfg"_s}, QStringList{u"write-xml"_s, QString()},
                                         QStringList{u"set"_s, u"zentaro.logger.level"_s},
                                         QStringList{u"--format"_s, u"ini"_s, u"dump"_s},
                                         QStringList{u"--bogus"_s, u"dump"_s}, QStringList{u"--file"_s},
                                         QStringList{u"--file"_s, QString(), u"dump"_s},
                                         QStringList{u"--screenshot"_s, u"x.png"_s, u"dump"_s}));

struct FailureCase {
    const char* name;
    QStringList arguments;
    QByteArray out;      // what the writers report
    QByteArray errStart; // the start of the one line on standard error
};

void PrintTo(const FailureCase& row, std::ostream* os)
{
    *os << row.name;
}

class Failure : public ToolTest, public testing::WithParamInterface<FailureCase>
{};

// broken.xml, settings.xml, a folder, a file nested too deep, another name (a hard link)
// of the user's own file and the file itself are there to fail on.
TEST_P(Failure, OneLineAndStatus1)
{
    writeInHome(u"broken.xml"_s, "<zentaro><logger level='x'></zentaro>");
    writeInHome(u"settings.xml"_s, "<zentaro><a b='c'/></zentaro>");
    writeInHome(u"deep.conf"_s, QByteArray("g:{").repeated(10000) + "k=v;" + QByteArray("};").repeated(10000));
    writeInHome(u"large.xml"_s, "<zentaro>\n<logger level='" + QByteArray(10 << 20, 'x') + "'/>\n</zentaro>");
    ASSERT_TRUE(QDir(home.path()).mkpath(u"folder"_s));
    ASSERT_EQ(::link(QFile::encodeName(userFile).constData(), QFile::encodeName(home.filePath(u"link.conf"_s)).constData()), 0);
    const Outcome r = run(GetParam().arguments);
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.out, GetParam().out);
    EXPECT_TRUE(r.err.startsWith(GetParam().errStart)) << r.err.toStdString();
    EXPECT_EQ(r.err.count('\n'), GetParam().errStart.isEmpty() ? 0 : 1) << r.err.toStdString();
}

INSTANTIATE_TEST_SUITE_P(
    Cases, Failure,
    testing::Values(
        FailureCase{"MissingFile", {u"-f"_s, u"missing.conf"_s, u"get"_s, u"k"_s}, "",
                    "zentaro-config: cannot read missing.conf: no such file"},
        FailureCase{"Folder", {u"-f"_s, u"folder"_s, u"dump"_s}, "", "zentaro-config: cannot read folder: "},
        FailureCase{"MalformedXml", {u"-f"_s, u"broken.xml"_s, u"dump"_s}, "",
                    "zentaro-config: cannot read broken.xml: not well-formed XML"},
        FailureCase{"ValueOverTheMarkupLimit", {u"-f"_s, u"large.xml"_s, u"dump"_s},
                    "XML input not read past line 2: a start tag or other markup there is larger than the limit of "
                    "4 MiB\n",
                    "zentaro-config: cannot read large.xml: a start tag or other markup at line 2 is larger than the "
                    "limit of 4 MiB"},
        FailureCase{"UnwritableOutput", {u"write-cfg"_s, u"no/such/folder.conf"_s},
                    "Error in the method Config::buildConfigFile( no/such/folder.conf ): Unable To Open File\n", ""},
        FailureCase{"OutputIsTheInput", {u"write-xml"_s, u"./.zentaro/conf/zentaro.conf"_s}, "",
                    "zentaro-config: ./.zentaro/conf/zentaro.conf is the file being read"},
        FailureCase{"OutputIsAHardLinkOfTheInput", {u"write-xml"_s, u"link.conf"_s}, "",
                    "zentaro-config: link.conf is the file being read"},
        FailureCase{"NestedTooDeep", {u"-f"_s, u"deep.conf"_s, u"write-cfg"_s, u"out.conf"_s}, "",
                    "zentaro-config: cannot read deep.conf: groups nested deeper than 100 levels"},
        FailureCase{"EditWithoutDisplay", {u"edit"_s}, "", "zentaro-config: edit needs a display"},
        // set refuses a value its key cannot hold, and what no cfg file or
        // no key of this one can hold.
        FailureCase{"SetWordForNumber", {u"set"_s, u"zentaro.doc.paperWidth"_s, u"forty-eight"_s}, "",
                    "zentaro-config: paperWidth takes a whole number, not \"forty-eight\""},
        FailureCase{"SetFractionForNumber", {u"set"_s, u"zentaro.doc.topMargin"_s, u"1.5"_s}, "",
                    "zentaro-config: topMargin takes a whole number"},
        FailureCase{"SetNegativeNumber", {u"--"_s, u"set"_s, u"zentaro.fiscaldoc.copyNumber"_s, u"-1"_s}, "",
                    "zentaro-config: copyNumber takes a whole number"},
        FailureCase{"SetYesForSwitch", {u"set"_s, u"zentaro.doc.printLogo"_s, u"yes"_s}, "",
                    "zentaro-config: printLogo takes true or false, not \"yes\""},
        FailureCase{"SetCapitalTrue", {u"set"_s, u"zentaro.doc.openCashDrawer"_s, u"True"_s}, "",
                    "zentaro-config: openCashDrawer takes true or false"},
        FailureCase{"SetUnknownCodePage", {u"set"_s, u"zentaro.doc.codePage"_s, u"CP999"_s}, "",
                    "zentaro-config: codePage takes a code page the print run knows"},
        FailureCase{"SetSemicolon", {u"set"_s, u"zentaro.logger.level"_s, u"INFO;"_s}, "",
                    "zentaro-config: a value in a cfg file cannot hold"},
        FailureCase{"SetBeyondLatin1", {u"set"_s, u"zentaro.company.name"_s, u"\u20AC"_s}, "",
                    "zentaro-config: a value in a cfg file holds ISO 8859-1 characters only"},
        FailureCase{"SetKeyWithoutGroup", {u"set"_s, u"zentaro"_s, u"x"_s}, "", "zentaro-config: \"zentaro\" is not a key"},
        FailureCase{"SetColonInName", {u"set"_s, u"zentaro.a:b.c"_s, u"x"_s}, "",
                    "zentaro-config: \"zentaro.a:b.c\" is not a key"},
        FailureCase{"SetOtherTopLevelGroup", {u"set"_s, u"backup.logger.level"_s, u"x"_s}, "",
                    "zentaro-config: the file's top-level group is \"zentaro\", not \"backup\""},
        FailureCase{"SetInXml", {u"-f"_s, u"settings.xml"_s, u"set"_s, u"zentaro.a.b"_s, u"d"_s}, "",
                    "zentaro-config: set changes cfg files only"}),
    [](const testing::TestParamInfo<FailureCase>& info) { return std::string(info.param.name); });

TEST_F(ToolTest, EditShowsTheWindowAndLeavesTheFile)
{
    const QString picture = home.filePath(u"edit.png"_s);
    // No display: the picture is drawn offscreen.
    const Outcome r = run({u"edit"_s, u"--screenshot"_s, picture});
    EXPECT_EQ(r.status, 0) << r.err.toStdString();
    EXPECT_EQ(r.out, "");
    EXPECT_TRUE(readBytes(picture).startsWith("\x89PNG"));
}

} // namespace

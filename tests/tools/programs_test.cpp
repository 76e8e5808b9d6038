// What every program answers alike: its help and version on standard output
// with status 0, and an option it does not know as an error line with
// status 2.
#include "testsupport.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

struct Program
{
    const char* name;
    const char* path;
    const char* usage; // the help's first line
};

const Program programs[] = {
    {"zentaro-print", ZENTARO_PRINT, "Usage: zentaro-print [options] REQUEST PRINTFILE\n"},
    {"zentaro-send", ZENTARO_SEND, "Usage: zentaro-send [options] PRINTFILE DESTINATION\n"},
    {"zentaro-config", ZENTARO_CONFIG, "Usage: zentaro-config [options] command [arguments]\n"},
    {"zentaro-preview", ZENTARO_PREVIEW, "Usage: zentaro-preview [options] INPUT OUTPUT\n"},
};

TEST(Programs, HelpVersionAndUnknownOptions)
{
    const QTemporaryDir home;
    for (const Program& program : programs) {
        const QString path = QString::fromLocal8Bit(program.path);
        const QByteArray name(program.name);
        // The help wins over a command line that is otherwise wrong.
        const testsupport::ProgramRun help = testsupport::runProgram(path, {u"--help"_s, u"extra"_s}, home.path());
        EXPECT_EQ(help.status, 0) << name.constData();
        EXPECT_TRUE(help.out.startsWith(program.usage)) << help.out.toStdString();
        // Only the program's own options: none of the toolkit's.
        EXPECT_TRUE(help.out.contains("-h, --help") && help.out.contains("-v, --version")) << name.constData();
        EXPECT_FALSE(help.out.contains("--help-all") || help.out.contains("--platform")) << name.constData();
        EXPECT_EQ(help.err, "") << name.constData();

        const testsupport::ProgramRun version = testsupport::runProgram(path, {u"-v"_s}, home.path());
        EXPECT_EQ(version.status, 0) << name.constData();
        EXPECT_EQ(version.out, name + " " ZENTARO_VERSION "\n");

        const testsupport::ProgramRun wrong = testsupport::runProgram(path, {u"--colour"_s}, home.path());
        EXPECT_EQ(wrong.status, 2) << name.constData();
        EXPECT_EQ(wrong.out, "") << name.constData();
        EXPECT_TRUE(wrong.err.startsWith(name + ": Unknown option 'colour'.")) << wrong.err.toStdString();
    }
}

} // namespace

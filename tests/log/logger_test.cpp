#include "logconfig.h"
#include "logger.h"
#include "testsupport.h"

#include <QDateTime>
#include <QDir>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using testsupport::readBytes;
using testsupport::withoutTimeStamps;
using testsupport::writeBytes;

namespace {

// A log file in a fresh folder, with the settings each test chooses.
class LoggerTest : public testing::Test
{
protected:
    std::unique_ptr<Logger> makeLogger(const QString& level, const QString& type)
    {
        configuration = loggerConfiguration(level, type, dir.path(), u"print.log"_s);
        return std::make_unique<Logger>(u"test"_s, configuration.get());
    }
    QString logPath() const { return dir.filePath(u"print.log"_s); }
    QByteArray logText() const { return withoutTimeStamps(readBytes(logPath())); }

    // Writes one line at each level, in level order.
    static void writeEveryLevel(Logger& logger)
    {
        logger.debug(u"d"_s);
        logger.info(u"i"_s);
        logger.warning(u"w"_s);
        logger.error(u"e"_s);
        logger.fatal(u"f"_s);
    }

    QTemporaryDir dir;
    std::unique_ptr<ZTConfiguration> configuration;
};

struct LevelCase
{
    const char* setting;
    const char* expected;
};

// Names the case in the test's name.
void PrintTo(const LevelCase& c, std::ostream* os)
{
    *os << "level \"" << c.setting << '"';
}

class LoggerLevel : public LoggerTest, public testing::WithParamInterface<LevelCase>
{
};

TEST_P(LoggerLevel, KeepsLinesAtOrAboveTheThreshold)
{
    auto logger = makeLogger(QString::fromLatin1(GetParam().setting), u"OVERWRITE"_s);
    writeEveryLevel(*logger);
    EXPECT_EQ(logText(), GetParam().expected);
}

const char everyLevel[] = "DEBUG: Start Logger\nDEBUG: d\nINFO: i\nWARNING: w\nERROR: e\nFATAL: f\n";

INSTANTIATE_TEST_SUITE_P(
    Names, LoggerLevel,
    testing::Values(LevelCase{"DEBUG", everyLevel}, LevelCase{"info", "INFO: i\nWARNING: w\nERROR: e\nFATAL: f\n"},
                    LevelCase{"warning", "WARNING: w\nERROR: e\nFATAL: f\n"},
                    LevelCase{"eRRoR", "ERROR: e\nFATAL: f\n"},
                    LevelCase{"FATAL", "FATAL: f\n"},
                    // Anything else is DEBUG, quietly.
                    LevelCase{"", everyLevel}, LevelCase{"verbose", everyLevel}, LevelCase{"WARN", everyLevel}));

TEST_F(LoggerTest, LineCarriesLocalTimeStampAndLevel)
{
    const QDateTime before = QDateTime::currentDateTime().addMSecs(-1);
    auto logger = makeLogger(u"debug"_s, u"overwrite"_s);
    const QDateTime after = QDateTime::currentDateTime().addMSecs(1);

    const QString line = QString::fromLocal8Bit(readBytes(logPath()));
    static const QRegularExpression format(
        uR"(^\[(\d\d-\d\d-\d{4} \d\d:\d\d:\d\d:\d{3})\] DEBUG: Start Logger\n$)"_s);
    const QRegularExpressionMatch match = format.match(line);
    ASSERT_TRUE(match.hasMatch()) << line.toStdString();
    const QDateTime stamped = QDateTime::fromString(match.captured(1), u"MM-dd-yyyy hh:mm:ss:zzz"_s);
    ASSERT_TRUE(stamped.isValid());
    EXPECT_LE(before, stamped);
    EXPECT_LE(stamped, after);
}

TEST_F(LoggerTest, TextIsWrittenAsGiven)
{
    auto logger = makeLogger(u"INFO"_s, u"OVERWRITE"_s);
    logger->info(u"two\nlines"_s);
    logger->error(QString());
    logger->write(Logger::Level(7), u"no such level"_s);
    EXPECT_EQ(logText(), "INFO: two\nlines\nERROR: \n: no such level\n");
}

TEST_F(LoggerTest, ThresholdCanChangeLater)
{
    auto logger = makeLogger(u"FATAL"_s, u"OVERWRITE"_s);
    logger->info(u"dropped"_s);
    logger->setLevel(u"info"_s);
    logger->info(u"kept"_s);
    logger->setLevel(u"nonsense"_s);
    logger->debug(u"kept too"_s);
    EXPECT_EQ(logText(), "INFO: kept\nDEBUG: kept too\n");
}

struct TypeCase
{
    const char* type;
    const char* expected; // the file after "old\n" and one new line
};

void PrintTo(const TypeCase& c, std::ostream* os)
{
    *os << "type \"" << c.type << '"';
}

class LoggerType : public LoggerTest, public testing::WithParamInterface<TypeCase>
{
};

TEST_P(LoggerType, OpensTheExistingFileAsTheTypeSays)
{
    ASSERT_TRUE(writeBytes(logPath(), "old\n"));
    testing::internal::CaptureStdout();
    auto logger = makeLogger(u"INFO"_s, QString::fromLatin1(GetParam().type));
    logger->info(u"new"_s);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(logText(), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Types, LoggerType,
                         testing::Values(TypeCase{"append", "old\nINFO: new\n"},
                                         TypeCase{"Overwrite", "INFO: new\n"},
                                         // Unknown or missing: the file stays closed and untouched.
                                         TypeCase{"replace", "old\n"}, TypeCase{"", "old\n"}));

TEST_F(LoggerTest, MissingFolderIsReportedWithTheTypeAsRead)
{
    configuration = loggerConfiguration(u"DEBUG"_s, u"Append"_s, dir.filePath(u"missing"_s), u"print.log"_s);
    testing::internal::CaptureStdout();
    Logger logger(u"test"_s, configuration.get());
    logger.error(u"lost"_s);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Error in the method Logger::setType(Append)\n");
    EXPECT_FALSE(QFile::exists(dir.filePath(u"missing/print.log"_s)));
}

TEST_F(LoggerTest, SetTypeOpensTheFileAnew)
{
    auto logger = makeLogger(u"INFO"_s, u"APPEND"_s);
    logger->info(u"first run"_s);
    logger->setType(u"OVERWRITE"_s);
    logger->info(u"second run"_s);
    logger->setType(u"APPEND"_s);
    logger->info(u"third run"_s);
    EXPECT_EQ(logText(), "INFO: second run\nINFO: third run\n");
}

TEST(LoggerFileName, IsBaseSlashNameAsItStands)
{
    struct Case
    {
        QString basedir, filename, expected;
    };
    const Case cases[] = {
        {u"/var/log"_s, u"print.log"_s, u"/var/log/print.log"_s},
        {QString(), u"print.log"_s, u"/print.log"_s},
        {u"/var/log/"_s, u"print.log"_s, u"/var/log//print.log"_s},
        {u"logs"_s, QString(), u"logs/"_s},
    };
    for (const Case& c : cases) {
        // No type: nothing is opened, so these paths are never touched.
        const auto configuration = loggerConfiguration(u"DEBUG"_s, QString(), c.basedir, c.filename);
        const Logger logger(u"any"_s, configuration.get());
        EXPECT_EQ(logger.logFileName(), c.expected);
    }
}

} // namespace

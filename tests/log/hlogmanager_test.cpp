#include "hlogmanager.h"
#include "logconfig.h"
#include "logger.h"
#include "syncsingleton.h"
#include "testsupport.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using testsupport::readBytes;
using testsupport::withoutTimeStamps;

namespace {

class HLogManagerTest : public testing::Test
{
protected:
    QByteArray logText() const { return withoutTimeStamps(readBytes(dir.filePath(u"suite.log"_s))); }

    QTemporaryDir dir;
    const std::unique_ptr<ZTConfiguration> configuration =
        loggerConfiguration(u"INFO"_s, u"APPEND"_s, dir.path(), u"suite.log"_s);
    HLogManager manager{configuration.get()};
};

TEST_F(HLogManagerTest, EmptyKeyAndDefaultAreOneEntry)
{
    // A fresh manager has nothing there, and leaves a null entry behind
    // that a later set replaces (or the destructor passes over).
    EXPECT_EQ(manager.getLog(QString()), nullptr);
    manager.set(u"db"_s, QString());
    Logger* logger = manager.getLog(QString());
    ASSERT_NE(logger, nullptr);
    EXPECT_EQ(manager.getLog(u"default"_s), logger);

    manager.set(u"db"_s, u"default"_s);
    EXPECT_NE(manager.getLog(QString()), logger);
    EXPECT_EQ(manager.getLog(QString()), manager.getLog(u"default"_s));
}

TEST_F(HLogManagerTest, UnknownKeyAnswersNull)
{
    manager.set(u"print"_s, u"print"_s);
    EXPECT_NE(manager.getLog(u"print"_s), nullptr);
    EXPECT_EQ(manager.getLog(u"Print"_s), nullptr);
    EXPECT_EQ(manager.getLog(u"default"_s), nullptr);
}

TEST_F(HLogManagerTest, ReplacedLoggerStaysUsable)
{
    manager.set(u"first"_s, u"k"_s);
    Logger* first = manager.getLog(u"k"_s);
    manager.set(u"second"_s, u"k"_s);
    Logger* second = manager.getLog(u"k"_s);
    ASSERT_NE(first, second);

    // Someone who borrowed the first Logger may go on writing with it.
    first->info(u"from the first"_s);
    second->info(u"from the second"_s);
    EXPECT_EQ(logText(), "INFO: from the first\nINFO: from the second\n");
}

// The only test of the singleton, so its configuration is read once.
TEST(HLogManagerSingleton, LoggersReadTheUsersConfiguration)
{
    testsupport::TemporaryHome home;
    ASSERT_TRUE(home.writeConfiguration("zentaro : { logger : { level = \"info\"; type = \"overwrite\"; basedir = \"" +
                                        home.path().toStdString() + "\"; filename = \"user.log\"; }; };\n"));
    HLogManager* manager = SyncSingleton<HLogManager>::instance();
    EXPECT_EQ(SyncSingleton<HLogManager>::instance(), manager);

    manager->set(u"main"_s, QString());
    manager->getLog(QString())->info(u"hello"_s);
    EXPECT_EQ(withoutTimeStamps(readBytes(home.path() + u"/user.log"_s)), "INFO: hello\n");
}

} // namespace

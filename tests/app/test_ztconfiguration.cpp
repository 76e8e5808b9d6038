#include "syncsingleton.h"
#include "testsupport.h"
#include "ztconfiguration.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <latch>
#include <thread>
#include <vector>

namespace {

using testsupport::TemporaryHome;

const char applicationFile[] = "zentaro : {\n"
                               "    logger : { level = \"WARNING\"; };\n"
                               "    language : { basedir = \" /usr/share/pos/lang \"; file = caf\xE9; };\n"
                               "};\n";

TEST(ZTConfiguration, ReadsTheFileInTheHomeDirectory)
{
    TemporaryHome home;
    ASSERT_TRUE(home.writeConfiguration(applicationFile));

    ZTConfiguration configuration;
    EXPECT_EQ(configuration.getStrValue(QStringLiteral("zentaro.logger.level")), QStringLiteral("WARNING"));
    // The same file named explicitly, as the tools open one.
    EXPECT_EQ(ZTConfiguration(home.configurationPath()).getStrValue(QStringLiteral("zentaro.logger.level")),
              QStringLiteral("WARNING"));
    EXPECT_EQ(configuration.getStrValue(QStringLiteral("zentaro.language.basedir")),
              QStringLiteral(" /usr/share/pos/lang "));
    EXPECT_EQ(configuration.getStrValue(QStringLiteral("zentaro.language.file")), QStringLiteral("caf\u00e9"));
    EXPECT_EQ(configuration.getStrValue(QStringLiteral("zentaro.logger.size")), QStringLiteral(""));
}

TEST(ZTConfiguration, MissingFileGivesEmptySettings)
{
    TemporaryHome home;

    testing::internal::CaptureStdout();
    ZTConfiguration configuration;
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Error in the method FileReader::open( " + home.configurationPath().toStdString() +
                  " ): File Not Found\n");

    const QString value = configuration.getStrValue(QStringLiteral("zentaro.logger.level"));
    EXPECT_EQ(value, QStringLiteral(""));
    EXPECT_FALSE(value.isNull());
}

// The only test that touches the application's singleton, so the process
// creates it exactly once whichever way the tests are run.
TEST(ZTConfiguration, SingletonReadsTheFileOnce)
{
    TemporaryHome home;
    ASSERT_TRUE(home.writeConfiguration(applicationFile));

    ZTConfiguration* first = SyncSingleton<ZTConfiguration>::instance();
    ASSERT_NE(first, nullptr);
    ASSERT_TRUE(home.writeConfiguration("zentaro : { logger : { level = ERROR; }; };\n"));
    EXPECT_EQ(SyncSingleton<ZTConfiguration>::instance(), first);
    EXPECT_EQ(first->getStrValue(QStringLiteral("zentaro.logger.level")), QStringLiteral("WARNING"));
}

struct SlowToBuild {
    static inline std::atomic<int> built{0};
    SlowToBuild()
    {
        ++built;
        // Widen the window in which other threads find the pointer still null.
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
};

TEST(SyncSingleton, ConcurrentFirstUseCreatesOneInstance)
{
    constexpr int threadCount = 8;
    std::latch start(threadCount);
    std::vector<SlowToBuild*> seen(threadCount, nullptr);
    std::vector<std::thread> threads;
    for (int i = 0; i < threadCount; ++i) {
        threads.emplace_back([&, i] {
            start.arrive_and_wait();
            seen[i] = SyncSingleton<SlowToBuild>::instance();
        });
    }
    for (auto& thread : threads)
        thread.join();

    EXPECT_EQ(SlowToBuild::built.load(), 1);
    ASSERT_NE(seen[0], nullptr);
    for (SlowToBuild* instance : seen)
        EXPECT_EQ(instance, seen[0]);
    EXPECT_EQ(SyncSingleton<SlowToBuild>::instance(), seen[0]);
}

} // namespace

#include "plugins/PluginEnvironment.h"

#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

namespace {

TEST(PluginEnvironmentTest, EachPointerHasItsOwnPlace)
{
    PluginEnvironment environment;
    EXPECT_EQ(-1, reinterpret_cast<std::intptr_t>(environment.getQuorvaneDrvHandle()));
    EXPECT_EQ(-1, reinterpret_cast<std::intptr_t>(environment.getCstraceDrvHandle()));
    test::RecordingLogger loggers[5];
    environment.setErrorLogger(&loggers[0]);
    environment.setDebugLogger(&loggers[1]);
    environment.setNullLogger(&loggers[2]);
    environment.setDataOutputHandle(&loggers[3]);
    environment.setFileOutputHandle(&loggers[4]);
    int things[5];
    environment.setWriterStream(&things[0]);
    environment.setTopologyManager(&things[1]);
    environment.setPreCollectionTopology(&things[2]);
    environment.setQuorvaneDrvHandle(&things[3]);
    environment.setCstraceDrvHandle(&things[4]);

    const Logger* const shownLoggers[] = {environment.getErrorLogger(), environment.getDebugLogger(),
                                          environment.getNullLogger(), environment.getDataOutputHandle(),
                                          environment.getFileOutputHandle("any path")};
    const void* const shownThings[] = {environment.getWriterStream(), environment.getTopologyManager(),
                                       environment.getPreCollectionTopology(), environment.getQuorvaneDrvHandle(),
                                       environment.getCstraceDrvHandle()};
    for (int at = 0; at < 5; ++at) {
        EXPECT_EQ(&loggers[at], shownLoggers[at]) << at;
        EXPECT_EQ(&things[at], shownThings[at]) << at;
    }
}

TEST(PluginEnvironmentTest, FlagsAreIndependentAndCanBeTakenBack)
{
    PluginEnvironment environment;
    environment.setCsTraceEnable(true);
    EXPECT_TRUE(environment.isCstraceRegister());
    EXPECT_FALSE(environment.isCsFeatureEnabled());
    environment.setCsFeatureEnabled(true);
    environment.setCsTraceEnable(false);
    EXPECT_FALSE(environment.isCstraceRegister());
    EXPECT_TRUE(environment.isCsFeatureEnabled());
}

TEST(PluginEnvironmentTest, FileHandleIsNewForEachCallUntilOneIsStored)
{
    const std::string path = "PluginEnvironmentTest.log";
    PluginEnvironment environment;
    EXPECT_EQ(nullptr, environment.getFileOutputHandle(nullptr));
    std::unique_ptr<Logger> first(environment.getFileOutputHandle(path.c_str()));
    std::unique_ptr<Logger> second(environment.getFileOutputHandle(path.c_str()));
    ASSERT_NE(nullptr, first);
    EXPECT_NE(first, second);
    *first << "text" << std::endl;
    first.reset();
    second.reset();
    std::ifstream file(path, std::ios::binary);
    EXPECT_EQ("text\n", std::string(std::istreambuf_iterator<char>(file), {}));
    file.close();
    std::filesystem::remove(path);

    test::RecordingLogger stored;
    environment.setFileOutputHandle(&stored);
    EXPECT_EQ(&stored, environment.getFileOutputHandle("other path"));
    EXPECT_EQ(nullptr, environment.getFileOutputHandle(nullptr));
}

TEST(PluginEnvironmentTest, SwitchesAndPrefixesMatchExactly)
{
    PluginEnvironment environment;
    environment.insertMetricSwitch("cpu-pkg");
    EXPECT_TRUE(environment.hasMetricSwitch("cpu-pkg"));
    EXPECT_FALSE(environment.hasMetricSwitch("cpu"));
    EXPECT_FALSE(environment.hasMetricSwitch("cpu-pkg-temp"));
    EXPECT_FALSE(environment.isDebugLoggingEnabledFor("cpu-pkg"));

    environment.addPrefixForDebugLogging("meridx");
    EXPECT_TRUE(environment.isDebugLoggingEnabledFor("meridx"));
    EXPECT_TRUE(environment.isDebugLoggingEnabledFor(std::string("meridx")));
    EXPECT_FALSE(environment.isDebugLoggingEnabledFor("MERIDX"));
    EXPECT_FALSE(environment.isDebugLoggingEnabledFor(""));
    EXPECT_FALSE(environment.isDebugLoggingEnabledFor(static_cast<const char*>(nullptr)));
}

TEST(PluginEnvironmentTest, TimestampsTurnIntoSecondsOfTheDefaultClock)
{
    PluginEnvironment environment;
    EXPECT_TRUE(std::isinf(environment.getSecFromTimestamp(1)));
    EXPECT_TRUE(std::isnan(environment.getSecFromTimestamp(0)));

    environment.setDefaultClockToTSCRatio(1000.0F, 2500.0F);
    EXPECT_FLOAT_EQ(1000.0F, environment.getDefaultClockMHz());
    EXPECT_FLOAT_EQ(0.4F, environment.getDefaultClockToTSCRatio());
    EXPECT_FLOAT_EQ(1.5F, environment.getSecFromTimestamp(1500000000ULL));
    EXPECT_FLOAT_EQ(18446744073.709551616F, environment.getSecFromTimestamp(UINT64_MAX));
}

TEST(PluginEnvironmentTest, QueuedMessagesAreCopiesThatTheHostDrains)
{
    PluginEnvironment environment;
    char text[] = "first";
    environment.queueMessage(text);
    text[0] = 'F';
    environment.queueMessage("second");
    environment.queueMessage(nullptr);
    EXPECT_EQ((std::deque<std::string>{"first", "second"}), environment.getQueuedMessages());
    environment.getQueuedMessages().clear();
    EXPECT_TRUE(environment.getQueuedMessages().empty());
}

}    // namespace

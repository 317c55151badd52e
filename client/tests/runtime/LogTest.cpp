#include "runtime/Log.h"

#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <iomanip>
#include <string>
#include <vector>

namespace {

using test::LogCapture;

void logAllLevels()
{
    QV_LOG_PLAIN("plain %d\n", 0);
    QV_LOG_ERROR("ERROR: %d\n", 1);
    QV_LOG_WARNING("WARNING: %d\n", 2);
    QV_LOG_DEBUG("DEBUG: %d\n", 3);
    QV_LOG_INFO("INFO: %d\n", 4);
}

void streamAllLevels()
{
    QV_STREAM_PLAIN << "p" << 0;
    QV_STREAM_ERROR << "e" << 1;
    QV_STREAM_WARNING << "w" << 2;
    QV_STREAM_DEBUG << "d" << 3;
    QV_STREAM_INFO << "i" << 4;
}

TEST(LogTest, FormatFormGoesOutFromItsLevelOnToTheLoggerOfTheLevel)
{
    const struct {
        unsigned short verbosity;
        const char* errors;
        const char* debug;
    } cases[] = {
        {0, "", "plain 0\n"},
        {1, "ERROR: 1\n", "plain 0\n"},
        {2, "ERROR: 1\n", "plain 0\nWARNING: 2\n"},
        {3, "ERROR: 1\n", "plain 0\nWARNING: 2\nDEBUG: 3\n"},
        {4, "ERROR: 1\n", "plain 0\nWARNING: 2\nDEBUG: 3\nINFO: 4\n"},
        {999, "ERROR: 1\n", "plain 0\nWARNING: 2\nDEBUG: 3\nINFO: 4\n"},
    };
    for (const auto& c : cases) {
        LogCapture log(c.verbosity);
        logAllLevels();
        EXPECT_EQ(c.errors, log.errors()) << c.verbosity;
        EXPECT_EQ(c.debug, log.debug()) << c.verbosity;
        EXPECT_EQ("", log.discarded()) << c.verbosity;
    }
}

TEST(LogTest, StreamFormPutsDigitAndPrefixInFrontAndDiscardsTheRestBare)
{
    const struct {
        unsigned short verbosity;
        const char* errors;
        const char* debug;
        const char* discarded;
    } cases[] = {
        {0, "", "0p0\n", "e1\nw2\nd3\ni4\n"},
        {1, "1ERROR: e1\n", "0p0\n", "w2\nd3\ni4\n"},
        {2, "1ERROR: e1\n", "0p0\n2WARNING: w2\n", "d3\ni4\n"},
        {4, "1ERROR: e1\n", "0p0\n2WARNING: w2\n3DEBUG: d3\n4INFO: i4\n", ""},
    };
    for (const auto& c : cases) {
        LogCapture log(c.verbosity);
        streamAllLevels();
        EXPECT_EQ(c.errors, log.errors()) << c.verbosity;
        EXPECT_EQ(c.debug, log.debug()) << c.verbosity;
        EXPECT_EQ(c.discarded, log.discarded()) << c.verbosity;
    }
}

TEST(LogTest, FatalTextGoesToTheErrorLoggerWhateverTheVerbosity)
{
    LogCapture log(0);
    QV_STREAM_FATAL << "no memory";
    QV_LOG_FATAL("FATAL: %s\n", "no file");
    EXPECT_EQ("0FATAL: no memory\nFATAL: no file\n", log.errors());
}

class LevelLogger : public test::RecordingLogger {
public:
    using Logger::log;
    void log(int level, const char*) override { levels.push_back(level); }
    std::vector<int> levels;
};

TEST(LogTest, LoggersAreToldTheLevelOfAWholeText)
{
    LogCapture log;
    LevelLogger errors;
    LevelLogger debug;
    log.environment().setErrorLogger(&errors);
    log.environment().setDebugLogger(&debug);
    logAllLevels();
    QV_LOG_FATAL("FATAL: 0\n");
    EXPECT_EQ((std::vector<int>{1, 0}), errors.levels);
    EXPECT_EQ((std::vector<int>{0, 2, 3, 4}), debug.levels);
}

TEST(LogTest, DebugPrefixLetsItsFamilyOut)
{
    LogCapture log(1);
    QV_LOG_DEBUG_FOR("etw-session", "DEBUG: quiet\n");
    QV_STREAM_INFO_FOR("etw-session") << "quiet";
    EXPECT_EQ("", log.debug());
    EXPECT_EQ("quiet\n", log.discarded());

    log.environment().addPrefixForDebugLogging("etw-session");
    QV_LOG_DEBUG_FOR("etw-session", "DEBUG: loud\n");
    QV_STREAM_INFO_FOR("etw-session") << "loud";
    QV_LOG_DEBUG_FOR("etw", "DEBUG: part of the name\n");
    EXPECT_EQ("DEBUG: loud\n4INFO: loud\n", log.debug());
    log.environment().setVerbosity(0);
    QV_LOG_ERROR_FOR("etw-session", "ERROR: x\n");
    EXPECT_EQ("ERROR: x\n", log.errors());
}

int counted(int& calls)
{
    return ++calls;
}

TEST(LogTest, SuppressedFormatFormEvaluatesNothingAndTheStreamFormEverything)
{
    LogCapture log(1);
    int calls = 0;
    QV_LOG_WARNING("WARNING: %d\n", counted(calls));
    QV_LOG_INFO_FOR("meridx", "INFO: %d\n", counted(calls));
    EXPECT_EQ(0, calls);
    QV_STREAM_WARNING << counted(calls);
    EXPECT_EQ(1, calls);
}

TEST(LogTest, TextOfAnyLengthArrivesWhole)
{
    LogCapture log;
    for (std::size_t length : {0U, 510U, 511U, 512U, 513U, 100000U}) {
        const std::string text(length, 'x');
        log.clear();
        QV_LOG_INFO("%s|%llu\n", text.c_str(), 18446744073709551615ULL);
        EXPECT_EQ(text + "|18446744073709551615\n", log.debug()) << length;
    }
}

TEST(LogTest, MissingEnvironmentOrLoggersSwallowTheText)
{
    PluginEnvironment* const previous = g_pluginEnvironment;
    g_pluginEnvironment = nullptr;
    EXPECT_FALSE(pwr::isLogged(pwr::LogLevel::PLAIN));
    EXPECT_FALSE(pwr::isLoggedFor(pwr::LogLevel::ERROR_, "meridx"));
    logAllLevels();
    streamAllLevels();
    QV_STREAM_FATAL << "lost";

    PluginEnvironment bare;
    g_pluginEnvironment = &bare;
    for (const pwr::LogLevel verbosity : {pwr::LogLevel::PLAIN, pwr::LogLevel::INFO}) {
        bare.setVerbosity(static_cast<unsigned short>(verbosity));
        logAllLevels();
        streamAllLevels();
        QV_STREAM_FATAL << "lost";
    }
    g_pluginEnvironment = previous;
}

TEST(LogTest, FormatsOfTheStreamNeitherEnterALineNorLeaveIt)
{
    LogCapture log;
    Logger& logger = *log.environment().getDebugLogger();
    logger << std::hex << std::setprecision(2) << std::setfill('*');
    QV_STREAM_WARNING << 255 << ' ' << 1.23456 << ' ' << std::setw(4) << 7 << std::oct << std::setfill('-');
    logger << 255 << ' ' << 1.23456 << ' ' << std::setw(4) << 7 << std::endl;
    EXPECT_EQ("2WARNING: 255 1.23456    7\nff 1.2 ***7\n", log.debug());
}

TEST(LogTest, NullPieceDoesNotSilenceTheLogger)
{
    LogCapture log;
    const char* missing = nullptr;
    char* alsoMissing = nullptr;
    QV_STREAM_WARNING << "a" << missing << "b";
    QV_STREAM_WARNING << "c" << alsoMissing;
    QV_STREAM_WARNING << "d";
    EXPECT_EQ("2WARNING: ab\n2WARNING: c\n2WARNING: d\n", log.debug());
}

}    // namespace

#include "runtime/EtwSession.h"

#include "runtime/OsInfo.h"
#include "support/DoorGuard.h"
#include "support/FakeTracing.h"
#include "support/LogCapture.h"
#include "support/NoMemory.h"

#include <gtest/gtest.h>

#include <cstring>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

using Calls = std::vector<std::string>;

constexpr GUID FIRST{1, 0, 0, {}};
constexpr GUID SECOND{2, 0, 0, {}};
constexpr GUID BATTERY{0x59819d0a, 0xadaf, 0x46b2, {0x8d, 0x7c, 0x99, 0x0b, 0xc3, 0x9c, 0x7c, 0x15}};

// Shows what derived classes see.
class Session : public EtwSession {
public:
    Session() : EtwSession("a/run.etl", "_User", "Sess", "user session") {}
    explicit Session(const std::string& resultFile, const std::string& suffix = "_User")
        : EtwSession(resultFile, suffix, "Sess", "user session")
    {
    }
    ~Session() override { std::free(m_properties); }

    bool flush() override { return flushes ? EtwSession::flush() : false; }
    bool isBlockThere() const { return m_properties != nullptr; }
    const std::string& logFile() const { return m_logFile; }

    bool flushes = true;
};

class EtwSessionTest : public testing::Test {
protected:
    EtwSessionTest()
    {
        m_door->tracing = &m_tracing;
        m_session.addProvider(FIRST, 5);
        m_session.addProvider(SECOND, 0);
    }
    ~EtwSessionTest() override { EtwSession::setUserBuffer(1024, 2, 400); }

    void begin()
    {
        ASSERT_TRUE(m_session.begin());
        m_tracing.calls.clear();
        m_log.clear();
    }

    test::LogCapture m_log{2};
    test::DoorGuard m_door;
    test::FakeTracing m_tracing;
    Session m_session;
};

TEST(EtwSessionNameTest, SuffixGoesBeforeTheEndingBehindTheLastDot)
{
    const struct {
        const char* resultFile;
        const char* suffix;
        const char* logFile;
    } cases[] = {
        {"a/run.etl", "_Kernel", "a/run_Kernel.etl"},
        {"run.etl", "", "run.etl"},
        {"a.b/run.1.etl", "_K", "a.b/run.1_K.etl"},
        {"run.etl.etl", "_K", "run.etl_K.etl"},
        {"run.etlx", "_K", "run_K.etlx"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.logFile, Session(c.resultFile, c.suffix).logFile()) << c.resultFile;
    }
    for (const char* bad : {"run.txt", "run", "a.etl.txt", "", "run.et"}) {
        try {
            const Session session(bad);
            ADD_FAILURE() << bad;
        } catch (const std::runtime_error& error) {
            EXPECT_STREQ("Issue with result file name", error.what()) << bad;
        }
    }
}

TEST_F(EtwSessionTest, BeginStartsThenEnablesEachProvider)
{
    m_session.addProvider(FIRST, 8);
    EXPECT_TRUE(m_session.begin());
    EXPECT_EQ((Calls{"start Sess a/run_User.etl", "enable 1 level 4 keywords 13", "capture 1 level 4 keywords 13",
                     "enable 2 level 4 keywords 0", "capture 2 level 4 keywords 0"}),
              m_tracing.calls);
    EXPECT_TRUE(m_session.isBlockThere());
    EXPECT_EQ("", m_log.debug() + m_log.errors());
}

TEST_F(EtwSessionTest, BlockHoldsSettingsAndBothNames)
{
    EtwSession::setUserBuffer(64, 3, 9);
    EXPECT_TRUE(m_session.begin());
    EVENT_TRACE_PROPERTIES block{};
    ASSERT_EQ(120U + 5 + 15, m_tracing.block.size());
    std::memcpy(&block, m_tracing.block.data(), sizeof block);
    EXPECT_EQ(140U, block.Wnode.BufferSize);
    EXPECT_EQ(0x20000U, block.Wnode.Flags);
    EXPECT_EQ(1U, block.Wnode.ClientContext);
    EXPECT_EQ(1U, block.Wnode.Guid.Data1);
    EXPECT_EQ(64U, block.BufferSize);
    EXPECT_EQ(3U, block.MinimumBuffers);
    EXPECT_EQ(9U, block.MaximumBuffers);
    EXPECT_EQ(0U, block.MaximumFileSize);
    EXPECT_EQ(1U, block.LogFileMode);
    EXPECT_EQ(120U, block.LoggerNameOffset);
    EXPECT_EQ(125U, block.LogFileNameOffset);
    EXPECT_EQ(std::string("a/run_User.etl") + '\0', std::string(m_tracing.block.data() + 125, 15));
}

TEST_F(EtwSessionTest, LeftoverSessionIsStoppedAndItsFileForgotten)
{
    m_tracing.codes["start"] = {183, 0};
    EXPECT_TRUE(m_session.begin());
    m_tracing.calls.resize(3);
    EXPECT_EQ((Calls{"start Sess a/run_User.etl", "stop Sess by name", "start Sess a/run_User.etl"}), m_tracing.calls);
}

TEST_F(EtwSessionTest, FailedStartIsToldWithAdvice)
{
    const struct {
        std::vector<unsigned long> codes;
        const char* advice;
    } cases[] = {
        {{5}, ""},
        {{183, 183}, ""},
        {{112}, " ETW requires at least 200MB disk space to start a trace.\n"},
        {{8}, " Try to use smaller buffer size using --etw-user[kernel]-buffers [size] [min] [max] option.\n"},
        {{183, 112}, " ETW requires at least 200MB disk space to start a trace.\n"},
    };
    for (const auto& c : cases) {
        m_log.clear();
        m_tracing.codes["start"] = c.codes;
        EXPECT_FALSE(m_session.begin());
        EXPECT_FALSE(m_session.isBlockThere());
        EXPECT_EQ("WARNING: Cannot start the trace a/run_User.etl. " + formatErrorMessage(c.codes.back()) + c.advice,
                  m_log.debug());
    }
    m_log.clear();
    m_log.environment().setVerbosity(1);
    m_tracing.codes["start"] = {5};
    EXPECT_FALSE(m_session.begin());
    EXPECT_EQ("", m_log.debug() + m_log.errors());
}

TEST_F(EtwSessionTest, ProviderThatCannotBeEnabledStopsTheSession)
{
    m_log.environment().setVerbosity(0);
    m_tracing.codes["enable"] = {0, 5};
    EXPECT_FALSE(m_session.begin());
    const std::string text =
        "Cannot enable ETW event provider in the trace file a/run_User.etl. " + formatErrorMessage(5);
    EXPECT_EQ(text + "\n", m_log.debug());
    EXPECT_EQ((std::deque<std::string>{text}), m_log.environment().getQueuedMessages());
    EXPECT_EQ("stop Sess", m_tracing.calls.back());
    EXPECT_FALSE(m_session.isBlockThere());
}

TEST_F(EtwSessionTest, ProviderThatCannotTellItsStateStopsTheSession)
{
    m_tracing.codes["capture"] = {87};
    EXPECT_FALSE(m_session.begin());
    EXPECT_EQ("WARNING: Cannot capture state of provider in the trace file a/run_User.etl. " + formatErrorMessage(87),
              m_log.debug());
    EXPECT_EQ((Calls{"start Sess a/run_User.etl", "enable 1 level 4 keywords 5", "capture 1 level 4 keywords 5",
                     "stop Sess"}),
              m_tracing.calls);
    EXPECT_FALSE(m_session.isBlockThere());
    EXPECT_TRUE(m_log.environment().getQueuedMessages().empty());
}

TEST_F(EtwSessionTest, ProvidersAreNamedInInfoOrForTheDebugPrefix)
{
    m_session.addProvider(BATTERY, 0);
    m_log.environment().addPrefixForDebugLogging("etw-session");
    EXPECT_TRUE(m_session.begin());
    EXPECT_TRUE(m_log.contains("INFO: Starting trace for provider Microsoft-Windows-Battery "
                               "(59819d0a-adaf-46b2-8d7c-990bc39c7c15).\n"));
    EXPECT_TRUE(m_log.contains("INFO: Starting trace for unknown provider (00000001-0000-0000-0000-000000000000). Use "
                               "\"xperf -providers I\" to look up the provider name from the guid.\n"));
}

TEST_F(EtwSessionTest, NoMemoryForTheBlockThrows)
{
    test::NoMemory noMemory;
    m_door->memory = &noMemory;
    EXPECT_THROW(m_session.begin(), std::bad_alloc);
    EXPECT_FALSE(m_session.isBlockThere());
    m_tracing.codes["enumerate"] = {122};
    m_tracing.neededBytes = 77;
    GUID guid{};
    wchar_t name[] = L"x";
    EXPECT_FALSE(EtwSession::getGuidForProvider(name, &guid));
    EXPECT_EQ("WARNING: Allocation failed (size=77).\n", m_log.debug());
}

TEST_F(EtwSessionTest, EndFlushesDisablesAndStops)
{
    EXPECT_FALSE(m_session.end());
    EXPECT_TRUE(m_tracing.calls.empty());    // nothing runs: the system is not asked
    begin();
    EXPECT_TRUE(m_session.end());
    EXPECT_EQ((Calls{"flush Sess", "disable 1 level 4 keywords 0", "disable 2 level 4 keywords 0", "stop Sess"}),
              m_tracing.calls);
    EXPECT_FALSE(m_session.isBlockThere());
    EXPECT_FALSE(m_session.end());
}

TEST_F(EtwSessionTest, FailedStepOfTheEndKeepsTheSession)
{
    const struct {
        const char* call;
        unsigned long code;
        std::string text;
    } cases[] = {
        {"flush", 5, "WARNING: Unable verify that user session is buffering events properly."},
        {"disable", 87, "WARNING: Cannot disable the trace. " + formatErrorMessage(87)},
        {"stop", 5, "WARNING: Cannot stop the trace. " + formatErrorMessage(5)},
    };
    begin();
    for (const auto& c : cases) {
        m_log.clear();
        m_tracing.codes[c.call] = {c.code};
        EXPECT_FALSE(m_session.end()) << c.call;
        EXPECT_EQ(c.text, m_log.debug());
        EXPECT_TRUE(m_session.isBlockThere()) << c.call;
    }
    m_tracing.calls.clear();
    m_session.flushes = false;
    EXPECT_FALSE(m_session.end());
    EXPECT_TRUE(m_tracing.calls.empty());    // the derived class's flush decides
    m_session.flushes = true;
    EXPECT_TRUE(m_session.end());
}

TEST_F(EtwSessionTest, LostEventsAreQueriedWithABlockOfTheirOwn)
{
    begin();
    m_tracing.eventsLost = 7;
    EXPECT_EQ(7U, m_session.queryLostEvents());
    EXPECT_EQ(140U, m_tracing.block.size());
    m_tracing.codes["query"] = {4201};
    EXPECT_EQ(0xFFFFFFFFU, m_session.queryLostEvents());
    EXPECT_EQ((Calls{"query Sess", "query Sess"}), m_tracing.calls);
}

TEST_F(EtwSessionTest, LogIsReplayedAndClosed)
{
    const EVENT_TRACE_LOGFILEA logfile = m_session.setLogfileCallback();
    EXPECT_STREQ("a/run_User.etl", logfile.LogFileName);
    EXPECT_EQ(0x10001000U, logfile.ProcessTraceMode);
    m_tracing.eventsLost = 3;
    EXPECT_TRUE(m_session.postProcessLog());
    EXPECT_EQ((Calls{"open a/run_User.etl", "process log", "close log"}), m_tracing.calls);
    EXPECT_EQ(" Processing ETW data for user session.\n", m_log.debug());
    EXPECT_EQ("FATAL: Warning: Lost events detected (3) in a/run_User.etl.\n", m_log.errors());
}

TEST_F(EtwSessionTest, LogThatCannotBeReplayedIsTold)
{
    const std::string start = " Processing ETW data for user session.\n";
    m_tracing.codes["open"] = {2};
    EXPECT_FALSE(m_session.postProcessLog());
    EXPECT_EQ("FATAL: Cannot open the ETW data file for user session: a/run_User.etl. " + formatErrorMessage(2),
              m_log.errors());
    m_log.clear();
    m_tracing.codes["process"] = {1223};
    EXPECT_FALSE(m_session.postProcessLog());
    EXPECT_EQ("close log", m_tracing.calls.back());
    EXPECT_EQ(start + "WARNING: Cannot process the trace file user session. " + formatErrorMessage(1223),
              m_log.debug());
    m_log.clear();
    m_tracing.pointerSize = 4;
    EXPECT_FALSE(m_session.postProcessLog());
    EXPECT_EQ(start + "WARNING: Using -i option on a 64-bit version for logs collected using a 32-bit version might "
                      "result in unpredictable behavior.\n",
              m_log.debug());
    EXPECT_EQ("close log", m_tracing.calls.back());
}

// A list as the system gives it: one row for each name, the GUID's first number counting from 1.
std::vector<char> providerList(const std::vector<std::wstring>& names)
{
    PROVIDER_ENUMERATION_INFO head{};
    head.NumberOfProviders = static_cast<ULONG>(names.size());
    std::vector<char> list(8 + names.size() * sizeof(TRACE_PROVIDER_INFO));
    std::memcpy(list.data(), &head, 8);
    for (std::size_t i = 0; i < names.size(); ++i) {
        const TRACE_PROVIDER_INFO row{GUID{static_cast<ULONG>(i + 1), 0, 0, {}}, 0, static_cast<ULONG>(list.size())};
        std::memcpy(list.data() + 8 + i * sizeof row, &row, sizeof row);
        const char* text = reinterpret_cast<const char*>(names[i].c_str());
        list.insert(list.end(), text, text + (names[i].size() + 1) * sizeof(wchar_t));
    }
    return list;
}

TEST_F(EtwSessionTest, ProviderIsFoundByItsExactName)
{
    m_tracing.providers = providerList({L"Alpha", L"beta", L"beta"});
    m_tracing.neededBytes = static_cast<ULONG>(m_tracing.providers.size());
    const struct {
        std::wstring name;
        ULONG found;
    } cases[] = {{L"Alpha", 1}, {L"beta", 2}, {L"Beta", 0}, {L"Alph", 0}, {L"", 0}};
    for (const auto& c : cases) {
        std::wstring name = c.name;
        GUID guid{};
        m_tracing.codes["enumerate"] = {122, 122};
        EXPECT_EQ(c.found != 0, EtwSession::getGuidForProvider(name.data(), &guid));
        EXPECT_EQ(c.found, guid.Data1);
    }
    EXPECT_EQ("enumerate 0", m_tracing.calls[0]);
    EXPECT_EQ("enumerate " + std::to_string(m_tracing.neededBytes), m_tracing.calls[1]);
    GUID guid{};
    EXPECT_FALSE(EtwSession::getGuidForProvider(nullptr, &guid));
}

TEST_F(EtwSessionTest, ProviderListThatCannotBeHadIsTold)
{
    GUID guid{};
    wchar_t name[] = L"Alpha";
    EXPECT_FALSE(EtwSession::getGuidForProvider(name, &guid));
    EXPECT_EQ("WARNING: TdhEnumerateProvider PROVIDER_ENUMERATION_INFO is NULL.\n", m_log.debug());
    m_log.clear();
    m_tracing.neededBytes = 10;
    m_tracing.codes["enumerate"] = {122, 8};
    EXPECT_FALSE(EtwSession::getGuidForProvider(name, &guid));
    EXPECT_EQ("WARNING: TdhEnumerateProviders failed with 8.\n", m_log.debug());
}

}    // namespace

#include "plugins/PluginEnvironment.h"

#include "runtime/OsInfo.h"
#include "support/DoorGuard.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>
#include <vector>

namespace {

// The system's libraries; functions can be missing, the program's path can be another, or not to be had.
class WatchedLibraries : public pwr::os::Libraries {
public:
    bool executablePath(std::string& path, unsigned long& lastError) override
    {
        lastError = pathError;
        if (pathError != 0) return false;
        path = program;
        return true;
    }
    void setSearchDirectory(const std::string& directory) override { searched.push_back(stringToWstring(directory)); }
    void addSearchDirectory(const std::wstring& directory) override { searched.push_back(directory); }
    void* load(const std::string& path, unsigned long& lastError) override { return m_real.load(path, lastError); }
    void* symbol(void* library, const char* name) override
    {
        return missing.count(name) == 0 ? m_real.symbol(library, name) : nullptr;
    }
    void unload(void* library) override
    {
        unloaded.push_back(library);
        m_real.unload(library);
    }
    unsigned long lastError() override { return m_real.lastError(); }

    std::string program;
    unsigned long pathError = 0;
    std::set<std::string> missing;
    std::vector<std::wstring> searched;
    std::vector<void*> unloaded;

private:
    pwr::os::Libraries& m_real = *pwr::os::current().libraries;
};

class PerformanceLibraryTest : public testing::Test {
protected:
    // Loaded twice, so that what a stopped library was asked can still be seen.
    void SetUp() override
    {
        unsigned long lastError = 0;
        m_library = m_libraries.load(QUORVANE_FAKE_PERFORMANCE_LIBRARY, lastError);
        ASSERT_NE(nullptr, m_library) << lastError;
        ASSERT_EQ(m_library, m_libraries.load(QUORVANE_FAKE_PERFORMANCE_LIBRARY, lastError));
        m_door->libraries = &m_libraries;
        m_environment.setMeridxDllHandle(m_library);
        m_environment.setMeridxConfigFileName("events.cfg");
    }
    void TearDown() override
    {
        for (std::size_t held = 2 - m_libraries.unloaded.size(); held > 0; --held)
            m_libraries.unload(m_library);
    }

    enum Function { CONFIGURE, VERSION, START, STOP };
    void answer(Function function, int status) { numbers("FAKE_Status")[function] = status; }
    std::vector<int> calls()    // of each function
    {
        const int* counts = numbers("FAKE_Calls");
        return {counts, counts + 4};
    }
    bool version() { return m_environment.getMeridxVersion(&m_a, &m_b, &m_c); }

    WatchedLibraries m_libraries;
    test::DoorGuard m_door;
    test::LogCapture m_log{4};
    PluginEnvironment& m_environment = m_log.environment();
    void* m_library = nullptr;
    unsigned int m_a = 0;
    unsigned int m_b = 0;
    unsigned int m_c = 0;

private:
    int* numbers(const char* name) { return static_cast<int*>(m_libraries.symbol(m_library, name)); }
};

TEST_F(PerformanceLibraryTest, RunsFromConfigurationToStop)
{
    EXPECT_TRUE(m_environment.configureMeridx());
    EXPECT_TRUE(version());
    EXPECT_TRUE(m_a == 1 && m_b == 2 && m_c == 3);
    EXPECT_TRUE(m_environment.startMeridx());
    EXPECT_TRUE(m_libraries.unloaded.empty());
    EXPECT_TRUE(m_environment.stopMeridx());
    EXPECT_EQ(std::vector<void*>{m_library}, m_libraries.unloaded);
    EXPECT_EQ((std::vector<int>{1, 1, 1, 1}), calls());
    EXPECT_EQ("DEBUG: Reconfigured MERIDX interface (events.cfg)!\n"
              "INFO: LUMEX: MERIDX_Start_Collection return status - 0\n"
              "INFO: OK, starting MERIDX collection!\n"
              "INFO: LUMEX: MERIDX_Stop_Collection return status - 0\n"
              "INFO: OK, stopped MERIDX collection!\n",
              m_log.debug());
    EXPECT_EQ("", m_log.errors());
}

TEST_F(PerformanceLibraryTest, RefusedConfigurationTakesTheLibraryOutOfUse)
{
    answer(CONFIGURE, 12);
    EXPECT_FALSE(m_environment.configureMeridx());
    EXPECT_EQ("ERROR: System not configured to allow access to bandwidth data.\n", m_log.errors());
    EXPECT_EQ("WARNING: MERIDX configuration error: no access.\n", m_log.debug());
    answer(CONFIGURE, 0);
    EXPECT_FALSE(m_environment.configureMeridx() || version() || m_environment.startMeridx() ||
                 m_environment.stopMeridx());
    EXPECT_EQ((std::vector<int>{1, 0, 0, 0}), calls());
    EXPECT_TRUE(m_libraries.unloaded.empty());

    m_environment.setMeridxConfigFileName("events.cfg");
    EXPECT_TRUE(m_environment.configureMeridx());
}

TEST_F(PerformanceLibraryTest, ErrorTextOfAConfigurationGoesOutForItsPrefixToo)
{
    const struct {
        unsigned short verbosity;
        const char* prefix;
        int status;
        const char* missing;
        std::string text;
    } cases[] = {
        {2, "", 12, "", "WARNING: MERIDX configuration error: no access.\n"},
        {1, "", 12, "", ""},
        {0, "meridx", 12, "", "WARNING: MERIDX configuration error: no access.\n"},
        {2, "", 99, "", "WARNING: MERIDX configuration error: .\n"},
        {2, "", 12, "MERIDX_Get_Error_Message", ""},
    };
    for (const auto& c : cases) {
        test::LogCapture log(c.verbosity);
        log.environment().setMeridxDllHandle(m_library);
        log.environment().setMeridxConfigFileName("events.cfg");
        log.environment().addPrefixForDebugLogging(c.prefix);
        m_libraries.missing = {c.missing};
        answer(CONFIGURE, c.status);
        EXPECT_FALSE(log.environment().configureMeridx());
        EXPECT_EQ(c.text, log.debug());
        EXPECT_EQ(c.verbosity >= 1, !log.errors().empty());
    }
}

TEST_F(PerformanceLibraryTest, FailedCallsAreReportedAndAStoppedLibraryIsUnloadedAllTheSame)
{
    answer(VERSION, 1);
    answer(START, 2);
    answer(STOP, -3);
    EXPECT_FALSE(version());
    EXPECT_FALSE(m_environment.startMeridx());
    EXPECT_TRUE(m_libraries.unloaded.empty());
    EXPECT_FALSE(m_environment.stopMeridx());
    EXPECT_EQ(1U, m_libraries.unloaded.size());
    EXPECT_EQ("INFO: LUMEX: MERIDX_Start_Collection return status - 2\n"
              "WARNING: ERROR starting a MERIDX collection!\n"
              "INFO: LUMEX: MERIDX_Stop_Collection return status - -3\n"
              "WARNING: ERROR stopping a MERIDX collection!\n",
              m_log.debug());
}

TEST_F(PerformanceLibraryTest, WithoutAHandleOrAFunctionNothingIsCalled)
{
    const std::string unusable =
        "WARNING: Error due to NULL meridxDllHandle or invalid address for MERIDX_Start_Collection function !\n !\n"
        "WARNING: Error due to NULL meridxDllHandle or invalid address for MERIDX_Stop_Collection function !\n";
    for (const bool hasHandle : {true, false}) {
        if (hasHandle) {
            m_libraries.missing = {"MERIDX_Config_Event", "MERIDX_Get_Version", "MERIDX_Start_Collection",
                                   "MERIDX_Stop_Collection"};
        } else {
            m_libraries.missing.clear();
            m_environment.setMeridxDllHandle(nullptr);
        }
        m_log.clear();
        EXPECT_FALSE(m_environment.configureMeridx() || version());
        EXPECT_EQ("", m_log.debug() + m_log.errors());
        EXPECT_FALSE(m_environment.startMeridx() || m_environment.stopMeridx());
        EXPECT_EQ(unusable, m_log.debug());
        EXPECT_TRUE(m_libraries.unloaded.empty());
    }
    EXPECT_EQ((std::vector<int>{0, 0, 0, 0}), calls());
}

TEST_F(PerformanceLibraryTest, TheRunsEnvironmentSaysWhetherItIsInUse)
{
    PluginEnvironment other;
    other.setMeridxDllHandle(m_library);
    EXPECT_TRUE(other.startMeridx());
    g_pluginEnvironment = nullptr;
    EXPECT_FALSE(m_environment.startMeridx() || m_environment.stopMeridx());
    EXPECT_TRUE(m_environment.configureMeridx());
    g_pluginEnvironment = &m_environment;
}

TEST_F(PerformanceLibraryTest, ToolDirectoryIsTheProgramsAndIsSearchedForLibraries)
{
    const std::string separator(1, m_door->files->pathSeparator());
    m_libraries.program = separator + "tools" + separator + "caf\xE9" + separator + "quorvane";
    m_environment.setQuorvaneDirectory("elsewhere");
    const std::string directory = separator + "tools" + separator + "caf\xE9";
    EXPECT_EQ(directory + separator, m_environment.getQuorvaneDirectory());
    EXPECT_EQ((std::vector<std::wstring>{stringToWstring(directory),
                                         stringToWstring(directory + separator + "plugins" + separator)}),
              m_libraries.searched);
}

TEST_F(PerformanceLibraryTest, ToolDirectoryStaysWhereThePathIsNotToBeHad)
{
    m_libraries.program = std::string(1, m_door->files->pathSeparator()) + "quorvane";
    m_environment.setQuorvaneDirectory("");
    const std::string before = m_environment.getQuorvaneDirectory();
    EXPECT_EQ(std::string(1, m_door->files->pathSeparator()), before) << "in the root";
    m_libraries.searched.clear();
    for (const unsigned long code : {5UL, 8UL, 122UL}) {
        m_log.clear();
        m_libraries.pathError = code;
        m_environment.setQuorvaneDirectory("");
        EXPECT_EQ("ERROR: Cannot get full pathname for quorvane executable. Error: " + formatErrorMessage(code) + "\n",
                  m_log.errors());
    }
    EXPECT_EQ(before, m_environment.getQuorvaneDirectory());
    EXPECT_TRUE(m_libraries.searched.empty());
}

TEST(ToolDirectoryTest, HoldsTheRunningProgram)
{
    PluginEnvironment environment;
    environment.setQuorvaneDirectory("");
    const std::string directory = environment.getQuorvaneDirectory();
    ASSERT_FALSE(directory.empty());
    EXPECT_EQ(pwr::os::current().files->pathSeparator(), directory.back());
    EXPECT_TRUE(std::filesystem::exists(directory + "plugins_internal_test") ||
                std::filesystem::exists(directory + "plugins_internal_test.exe"));
}

}    // namespace

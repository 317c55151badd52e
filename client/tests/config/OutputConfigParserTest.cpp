#include "config/OutputConfigParser.h"

#include "support/DoorGuard.h"
#include "support/FakeFiles.h"
#include "support/LogCapture.h"
#include "support/RecordingConsole.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

using namespace pwr;
using test::LogCapture;

namespace {

class OutputConfigParserTest : public testing::Test {
protected:
    OutputConfigParserTest() { m_door->console = &m_console; }
    ~OutputConfigParserTest() override { std::filesystem::remove_all(m_path); }

    bool load(const std::string& content)
    {
        std::ofstream(m_path, std::ios::binary) << content;
        return OutputConfigParser().load({m_path});
    }

    const std::string m_path = "OutputConfigParserTest.conf";
    const std::string m_fatal = "0FATAL: ERROR parsing config file OutputConfigParserTest.conf!\n";
    const std::string m_parsing = "ERROR parsing config file OutputConfigParserTest.conf\n";
    const std::string m_opening = "Error opening config file OutputConfigParserTest.conf\n";
    test::RecordingConsole m_console;
    LogCapture m_log{2};
    test::DoorGuard m_door;
};

TEST_F(OutputConfigParserTest, AFailingRuleLeavesTheChainOfItsCallers)
{
    const struct {
        const char* line;
        std::vector<std::string> rules;
    } cases[] = {
        {"ALL_FEAT_RESID_SAMPLE-COUNT_COLOR=x", {"tagSub", "metricRule", "platformSub"}},
        {"ALL_FEAT_RESID_SAMPLE-COUNT_TITLE =x", {"tagSub", "metricRule", "platformSub"}},
        {"ALL_FEAT_RESID_SAMPLE-COUNT_title=x", {"tagSub", "metricRule", "platformSub"}},
        {"ALL_FEAT__SAMPLE-COUNT_TITLE=x", {"tag", "metricRule", "platformSub"}},
        {"ALL_FEAT_TAG_TITLE_ORDER=x", {"metricOrderRule", "metricRule", "platformSub"}},
        {"ALL_FEAT_TAG_TABLE_TITLE=x", {"metricOrderRule", "metricRule", "platformSub"}},
        {"ALL_FEAT_TAG_TABLE_ORDER=,", {"metricOrderValue", "metricOrderRule", "metricRule", "platformSub"}},
        {"ALL_OUTPUT-ORDER_TAG_FEATURE_ORDER=A, ,B", {"featureOrderValue", "featureOrderRule", "platformSub"}},
        {"ALL_OUTPUT-ORDER_RESID_FEATURE_ORDER=A", {"featureOrderRule", "platformSub"}},
        {"ALL_OUTPUT-ORDER_TAG_FEATURE_TITLE=A", {"featureOrderRule", "platformSub"}},
        {"-A_FEAT_RESID_T_TITLE=x", {"platformRule"}},
        {"_FEAT_RESID_T_TITLE=x", {"platformRule"}},
    };
    for (const auto& c : cases) {
        m_log.clear();
        m_console.text.clear();
        EXPECT_FALSE(load(std::string("\t") + c.line + " # comment\r\nALL_NEVER_READ"));
        std::string chain;
        for (const std::string& rule : c.rules)
            chain += "WARNING: ERROR calling function \"" + rule + "\"\n";
        EXPECT_EQ(chain, m_log.debug()) << c.line;
        EXPECT_EQ("1ERROR: ERROR parsing line " + std::string(c.line) + "\n" + m_fatal, m_log.errors());
        EXPECT_EQ(m_parsing, m_console.text);
    }
}

TEST_F(OutputConfigParserTest, ALineThatCannotBeSplitIsAnException)
{
    for (const std::string line : {"ALL_FEAT_RESID_T_TITLE", "ALL_FEAT_RESID_TITLE=x", "=", "A=B_C_D_E_F", "x"}) {
        m_log.clear();
        m_console.text.clear();
        EXPECT_FALSE(load(line + " #=\n"));
        EXPECT_EQ("", m_log.debug()) << line;
        EXPECT_EQ("1ERROR: EXCEPTION CAUGHT: ERROR parsing line " + line + "\n" + m_fatal, m_log.errors());
        EXPECT_EQ(m_parsing, m_console.text);
    }
}

TEST_F(OutputConfigParserTest, AFileThatCannotBeReadFails)
{
    EXPECT_FALSE(OutputConfigParser().load({m_path}));
    EXPECT_EQ(m_opening, m_console.text);
    EXPECT_EQ(m_fatal, m_log.errors());

    std::filesystem::create_directory(m_path);
    EXPECT_FALSE(OutputConfigParser().load({m_path}));
    EXPECT_EQ(m_opening + m_opening, m_console.text);
    std::filesystem::remove(m_path);

    test::FakeFiles files('/');
    files.stream = std::fopen(m_path.c_str(), "wb");    // opens, and can't be read
    m_door->files = &files;
    EXPECT_FALSE(OutputConfigParser().load({m_path}));
    EXPECT_EQ(m_opening + m_opening + m_parsing, m_console.text);
    EXPECT_EQ(m_fatal + m_fatal + m_fatal, m_log.errors());
}

TEST_F(OutputConfigParserTest, TheLogTagSpeaksBelowTheVerbosity)
{
    const std::string content = "ALL_FEAT_RESID_T_TITLE=x\n"
                                "ALL_FEAT_RESID_T_TITLE=y\n"
                                "ALL_FEAT_TAG_TABLE_ORDER=A,B\n"
                                "ALL_OUTPUT-ORDER_TAG_FEATURE_ORDER=FEAT\n";
    m_log.environment().setVerbosity(1);
    EXPECT_TRUE(load(content));
    EXPECT_EQ("", m_log.debug() + m_log.errors());

    m_log.environment().setVerbosity(0);
    m_log.environment().addPrefixForDebugLogging("output-config-parser");
    EXPECT_TRUE(load(content));
    EXPECT_EQ("INFO: Path is: OutputConfigParserTest.conf\n"
              "INFO: key TITLE, table-type T, value ALL_FEAT_RESID\n"
              "INFO: key TITLE, table-type T, value ALL_FEAT_RESID\n"
              "WARNING: Config table info (TITLE) entry already present for metric table T for metric container "
              "ALL_FEAT_RESID\n"
              "INFO: Feature prefix FEAT, value A,B\n"
              "INFO: Prefix OUTPUT-ORDER, value FEAT\n"
              "INFO: curr Key: ALL_FEAT_RESID\n"
              "INFO: \tcurr Table: T\n"
              "INFO: \t\tcurr Table-Info: TITLE, value: x\n"
              "INFO: Metric order per Feature:\n"
              "INFO: curr Feature: FEAT\n"
              "INFO: \tcurr Metric: A\n"
              "INFO: \tcurr Metric: B\n"
              "INFO: Feature order:\n"
              "INFO: \tcurr Feature: FEAT\n",
              m_log.debug());
}

}    // namespace

#include "config/OutputConfig.h"

#include "record/SystemMetadata.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <deque>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

using namespace pwr;
using test::LogCapture;

namespace {

using Tags = std::deque<std::string>;

class OutputConfigTest : public testing::Test {
protected:
    ~OutputConfigTest() override
    {
        m_config->destroy();
        for (const std::string& path : m_files)
            std::filesystem::remove(path);
    }

    // Loads files of these contents, in order.
    int load(const std::vector<std::string>& contents)
    {
        std::vector<std::string> files;
        for (const std::string& content : contents) {
            files.push_back("OutputConfigTest" + std::to_string(m_files.size()) + ".conf");
            m_files.push_back(files.back());
            std::ofstream(files.back(), std::ios::binary) << content;
        }
        return m_config->parse(files, SystemMetadata());
    }

    TableInfo table(const std::string& metric, const std::string& type) const
    {
        TableInfo info;
        EXPECT_TRUE(m_config->getTableInfoFor(info, metric, "FEAT", type)) << metric << ' ' << type;
        return info;
    }

    std::string title(const std::string& metric, const std::string& type) const
    {
        std::string text = "none";
        table(metric, type).getTableTitle(text);
        return text;
    }

    Tags metricOrder(const std::string& feature) const
    {
        Tags order = {"untouched"};
        const bool found = m_config->getMetricOrderForFeature(order, feature);
        EXPECT_EQ(found, order != Tags({"untouched"}));
        return order;
    }

    WriterInterfaceConfigFileParser* m_config = WriterInterfaceConfigFileParser::instance();
    LogCapture m_log{2};

private:
    std::vector<std::string> m_files;
};

TEST_F(OutputConfigTest, TheFirstValueOfASettingStays)
{
    TableInfo info;
    EXPECT_TRUE(info.isEmpty());
    EXPECT_TRUE(info.setKeyValuePair("TITLE", "first"));
    EXPECT_FALSE(info.setKeyValuePair("TITLE", "second"));
    EXPECT_EQ("WARNING: Config table info (TITLE) entry already present for metric table\n", m_log.debug());

    std::string text = "untouched";
    EXPECT_FALSE(info.getPreTableNote(text));
    EXPECT_FALSE(info.getPostTableNote(text));
    EXPECT_EQ("untouched", text);
    EXPECT_TRUE(info.getTableTitle(text));
    EXPECT_EQ("first", text);
}

TEST_F(OutputConfigTest, OnlyUpperCaseYesIsYes)
{
    const TableInfo none;
    EXPECT_TRUE(none.isTableDisplayed());
    EXPECT_FALSE(none.isTableTransposed());
    EXPECT_FALSE(none.suppressTotal());
    for (const std::string text : {"YES", "NO", "no", "yes", "Yes", "", "YES "}) {
        TableInfo info;
        for (const char* key : {"TABLE", "TRANSPOSE", "SUPPRESS-TOTAL"})
            info.setKeyValuePair(key, text);
        EXPECT_EQ(text == "YES", info.isTableDisplayed()) << text;
        EXPECT_EQ(text == "YES", info.isTableTransposed()) << text;
        EXPECT_EQ(text == "YES", info.suppressTotal()) << text;
    }
}

TEST_F(OutputConfigTest, WithoutALoadEveryQueryIsFalse)
{
    const auto expectNothing = [this] {
        TableInfo info;
        Tags order = {"untouched"};
        EXPECT_FALSE(m_config->getTableInfoFor(info, "RESID", "FEAT", "T"));
        EXPECT_FALSE(m_config->getTableOrderForMetric(order, "RESID", "FEAT"));
        EXPECT_FALSE(m_config->getMetricOrderForFeature(order, "FEAT"));
        EXPECT_FALSE(m_config->getFeatureOrder(order));
        EXPECT_FALSE(m_config->getAllFeaturePrefixes(order));
        EXPECT_EQ(Tags({"untouched"}), order);
    };
    expectNothing();
    EXPECT_EQ(0, m_config->parse({}, SystemMetadata()));
    expectNothing();
    EXPECT_EQ(
        0, load({"ALL_FEAT_RESID_T_TITLE=x\nALL_FEAT_TAG_TABLE_ORDER=RESID\nALL_OUTPUT-ORDER_TAG_FEATURE_ORDER=FEAT"}));
    EXPECT_EQ("x", title("RESID", "T"));
    EXPECT_EQ(0, load({"# only a comment"}));
    expectNothing();
    m_config->destroy();
    m_config->destroy();
    expectNothing();
    EXPECT_EQ("", m_log.debug() + m_log.errors());
}

TEST_F(OutputConfigTest, SettingsAreKeptByMetricAndTableType)
{
    ASSERT_EQ(0, load({"# a comment, then an empty line\n"
                       "\n \t\r\n"
                       " ALL_FEAT_RESID_SAMPLE-COUNT_TITLE=  Title = a_b \t # more\r\n"
                       "ALL_FEAT_RESID_MIN-MAX-AVG_TABLE=NO\n"
                       "ALL_FEAT_RESID_SAMPLE-COUNT_TRANSPOSE=YES\n"
                       "ALL_FEAT_RESID__PRE-TABLE-TEXT=note\n"
                       "PLATA_FEAT_OTHER_SAMPLE-COUNT_TITLE=unreachable\n"
                       "ALL-_FEAT_TAILLESS_SAMPLE-COUNT_STATES=\n",
                       "ALL_FEAT_RESID_SAMPLE-COUNT_ATTRIBUTES=a,,b\n"
                       "ALL_FEAT_RESID_SAMPLE-COUNT_SUPPRESS-TOTAL=YES\n"
                       "ALL_FEAT_RESID_SAMPLE-COUNT_POST-TABLE-TEXT=\xC3\xA4"}));
    EXPECT_EQ("", m_log.debug() + m_log.errors());

    const TableInfo info = table("RESID", "SAMPLE-COUNT");
    EXPECT_EQ("Title = a_b", title("RESID", "SAMPLE-COUNT"));
    EXPECT_TRUE(info.isTableTransposed());
    EXPECT_TRUE(info.suppressTotal());
    EXPECT_TRUE(info.isTableDisplayed());
    std::string note;
    EXPECT_TRUE(info.getPostTableNote(note));
    EXPECT_EQ("\xC3\xA4", note);
    EXPECT_EQ("a,,b", info.begin()->second);
    EXPECT_FALSE(table("RESID", "MIN-MAX-AVG").isTableDisplayed());
    EXPECT_TRUE(table("RESID", "").getPreTableNote(note));
    EXPECT_TRUE(table("TAILLESS", "SAMPLE-COUNT").isKeySet("STATES"));

    TableInfo untouched;
    untouched.setKeyValuePair("TITLE", "mine");
    EXPECT_FALSE(m_config->getTableInfoFor(untouched, "OTHER", "FEAT", "SAMPLE-COUNT"));
    EXPECT_FALSE(m_config->getTableInfoFor(untouched, "RESID", "FEAT", "HISTOGRAM"));
    EXPECT_TRUE(untouched.isKeySet("TITLE"));

    Tags order;
    EXPECT_TRUE(m_config->getTableOrderForMetric(order, "RESID", "FEAT"));
    EXPECT_EQ(Tags({"SAMPLE-COUNT", "MIN-MAX-AVG", ""}), order);
    EXPECT_FALSE(m_config->getTableOrderForMetric(order, "OTHER", "FEAT"));
    EXPECT_TRUE(m_config->getAllFeaturePrefixes(order));
    EXPECT_EQ(Tags({"FEAT", "FEAT", "FEAT"}), order);
}

TEST_F(OutputConfigTest, OrdersAddUp)
{
    EXPECT_EQ(0, load({"ALL_FEAT_TAG_TABLE_ORDER= RESID , OTHER,\n"
                       "PLATA_FEAT_TAG_TABLE_ORDER=THIRD\n"
                       "ALL_EMPTY_TAG_TABLE_ORDER=\n"
                       "ALL_OUTPUT-ORDER_TAG_FEATURE_ORDER=FEAT,B C\n",
                       "PLATB_OUTPUT-ORDER_TAG_FEATURE_ORDER=A\n"
                       "ALL_OUTPUT-ORDER_TAG_FEATURE_ORDER=\n"}));
    EXPECT_EQ(Tags({"RESID", "OTHER", "THIRD"}), metricOrder("FEAT"));
    EXPECT_EQ(Tags({"untouched"}), metricOrder("EMPTY"));
    Tags order;
    EXPECT_TRUE(m_config->getFeatureOrder(order));
    EXPECT_EQ(Tags({"FEAT", "B C", "A"}), order);
    EXPECT_FALSE(m_config->getAllFeaturePrefixes(order));
    EXPECT_EQ("", m_log.debug());    // nothing to compare while there are no tables
}

TEST_F(OutputConfigTest, OrdersThatDisagreeAreTold)
{
    const std::string tables = "ALL_FEAT_RESID_T_TITLE=x\n";
    const std::string features = "ALL_OUTPUT-ORDER_TAG_FEATURE_ORDER=C,FEAT,A,FEAT\n";
    EXPECT_EQ(0, load({tables + features +
                       "ALL_FEAT_TAG_TABLE_ORDER=RESID\nALL_E_TAG_TABLE_ORDER=R\nALL_D_TAG_TABLE_ORDER=R\n"}));
    EXPECT_EQ("\nWARNING: Output Config: Ordering requested for the following features, but corresponding metric "
              "container ordering entries (ALL_<FEATURE-SWITCH-TAG>_TAG_TABLE_ORDER) missing:\n"
              "A, C, \n"
              "\nWARNING: Output Config: Metric container table entries present for the following feature, but feature "
              "ordering not explicitly requested. Missing feature switch tags in "
              "'ALL_OUTPUT-ORDER_TAG_FEATURE_ORDER=<FEATURE-SWITCH-TAG>,...'. (This may be acceptable for metrics that "
              "don't need to be in specific order):\n"
              "D, E, \n\n",
              m_log.debug());
    m_log.clear();
    EXPECT_EQ(0, load({tables + "ALL_E_TAG_TABLE_ORDER=R\n"}));    // no feature order at all
    EXPECT_EQ("", m_log.debug());
}

TEST_F(OutputConfigTest, WhatStoodBeforeABadLineStays)
{
    EXPECT_EQ(-1, load({"ALL_FEAT_RESID_T_TITLE=old\n"
                        "ALL_FEAT_TAG_TABLE_ORDER=A\n"
                        "ALL_FEAT_TAG_TABLE_ORDER=B,,C\n"
                        "ALL_FEAT_RESID_U_TITLE=new\n",
                        "ALL_FEAT_RESID_V_TITLE=new\n"}));
    EXPECT_EQ("old", title("RESID", "T"));
    EXPECT_EQ(Tags({"A"}), metricOrder("FEAT"));
    Tags order;
    EXPECT_TRUE(m_config->getTableOrderForMetric(order, "RESID", "FEAT"));
    EXPECT_EQ(Tags({"T"}), order);
}

}    // namespace

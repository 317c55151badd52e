#include "plugins/PluginCapability.h"

#include "plugins/FakeRequirement.h"
#include "record/SystemMetadata.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

using namespace pwr;
using test::FakeRequirement;

namespace {

// Lets the tests at the attribute word.
template <typename Base>
class Open : public Base {
public:
    using Base::Base;
    using Base::getAttributes_i;
    using Base::isAttributeSet_i;
    using Base::setAttribute_i;
};

using OpenCapability = Open<PluginCapability>;
using OpenMetricCapability = Open<MetricPluginCapability>;

MetricPluginCapability makeMetric(const FMS& fms)
{
    return MetricPluginCapability("load", "Busy share", "CPU-LOAD", 3, fms);
}

TEST(PluginCapabilityTest, IsFoundByNameOrGroup)
{
    PluginCapability capability("cpu-load", "Busy share", false);
    capability.addGroupName("sys");
    capability.addGroupName("cpu");
    capability.addGroupName("sys");
    EXPECT_EQ((PWSet<std::string>{"cpu", "sys"}), capability.getGroupNames());
    const struct {
        const char* text;
        bool isName;
        bool isNameOrGroup;
    } cases[] = {
        {"cpu-load", true, true}, {"cpu", false, true}, {"sys", false, true},
        {"CPU", false, false},    {"", false, false},   {"cpu-load ", false, false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.isName, capability == std::string(c.text)) << c.text;
        EXPECT_EQ(c.isNameOrGroup, capability.equals(c.text)) << c.text;
    }
}

TEST(PluginCapabilityTest, AttributesStandInTheirBits)
{
    OpenMetricCapability capability("m", "", "M", 1);
    EXPECT_EQ(0x4ULL, capability.getAttributes_i());
    EXPECT_TRUE(capability.doesSupportContinuousCollection());
    EXPECT_TRUE(capability.shouldCheckBeforeDisplaying());
    capability.setOrResetContinuousCollectionSupport(false);
    EXPECT_EQ(0x0ULL, capability.getAttributes_i());
    capability.setHidden();
    EXPECT_EQ(0x2ULL, capability.getAttributes_i());
    capability.setNoCollect();
    EXPECT_EQ(0x102ULL, capability.getAttributes_i());
    capability.setDependent();
    EXPECT_EQ(0x302ULL, capability.getAttributes_i());
    capability.disableDynamicCheck();
    EXPECT_EQ(0x702ULL, capability.getAttributes_i());
    EXPECT_TRUE(capability.isHidden() && capability.isNoCollect() && capability.isDependent());
    EXPECT_FALSE(capability.shouldCheckBeforeDisplaying());
    EXPECT_EQ(0x0ULL, OpenCapability("a", "", false).getAttributes_i());
}

TEST(PluginCapabilityTest, DerivedClassesHaveBitsEightToSixtyThree)
{
    OpenCapability capability("m", "", true);
    constexpr unsigned char REFUSED[] = {0, 1, 7, 64, 72, 255};
    for (const unsigned char refused : REFUSED) {
        EXPECT_FALSE(capability.setAttribute_i(refused)) << int{refused};
        EXPECT_EQ(0x4ULL, capability.getAttributes_i());
    }
    EXPECT_TRUE(capability.setAttribute_i(8));
    EXPECT_TRUE(capability.setAttribute_i(63));
    EXPECT_EQ(0x8000000000000104ULL, capability.getAttributes_i());
    EXPECT_TRUE(capability.isAttributeSet_i(63));
    EXPECT_FALSE(capability.isAttributeSet_i(64 + 2));
}

TEST(PluginCapabilityTest, SuitabilityNeedsEveryRequirement)
{
    using Result = PluginRequirementResult;
    const struct {
        std::vector<std::pair<bool, bool>> requirements;    // raw answer, negative
        Result result;
        int asked;
    } cases[] = {
        {{}, Result::SUITABLE_UNTESTED, 0},
        {{{true, false}}, Result::SUITABLE, 1},
        {{{false, true}, {true, false}}, Result::SUITABLE, 2},
        {{{true, false}, {true, true}, {true, false}}, Result::NOT_SUITABLE, 2},
        {{{false, false}, {true, false}}, Result::NOT_SUITABLE, 1},
    };
    for (const auto& c : cases) {
        test::RequirementCounts counts;
        {
            PluginCapability capability("name", "text", false);
            for (const auto& requirement : c.requirements)
                capability.addPluginRequirement(new FakeRequirement(counts, requirement.first, requirement.second));
            capability.addPluginRequirement(nullptr);
            EXPECT_EQ(c.result, capability.isCapabilitySuitableFor(SystemMetadata(), {}));
            EXPECT_EQ(c.asked, counts.asked);
        }
        EXPECT_EQ(static_cast<int>(c.requirements.size()), counts.deleted) << "owned by the capability";
    }
}

TEST(PluginCapabilityTest, SuitabilityIsExplainedInTheLog)
{
    test::LogCapture log(3);
    test::RequirementCounts counts;
    PluginCapability capability("name", "text", false);
    capability.addPluginRequirement(new FakeRequirement(counts, false, true));
    capability.addPluginRequirement(new FakeRequirement(counts, false));
    EXPECT_EQ(PluginRequirementResult::NOT_SUITABLE, capability.isCapabilitySuitableFor(SystemMetadata(), {}));
    EXPECT_EQ("DEBUG: Negative Requirement met: 1\n"
              "DEBUG: set PASSED for  name, text\n"
              "DEBUG: Requirement met: 0\n"
              "DEBUG: text has result = 0\n",
              log.debug());
}

TEST(PluginCapabilityTest, ContinuousCollectionNeedsSupport)
{
    SystemMetadata continuous;
    continuous.continuousCollectionQuantum = 1;
    test::LogCapture log(4);
    test::RequirementCounts counts;
    PluginCapability capability("name", "text", false);
    capability.addPluginRequirement(new FakeRequirement(counts, true));
    EXPECT_EQ(PluginRequirementResult::NOT_SUITABLE, capability.isCapabilitySuitableFor(continuous, {}));
    EXPECT_EQ(0, counts.asked);
    EXPECT_EQ("", log.debug());
    capability.setOrResetContinuousCollectionSupport(true);
    EXPECT_EQ(PluginRequirementResult::SUITABLE, capability.isCapabilitySuitableFor(continuous, {}));
}

TEST(MetricPluginCapabilityTest, EachConstructorSetsRangeAndGroup)
{
    const FMS lake{6, 0x8e, 9};
    const FMS highest{0xFF, 0xFF, 0xFF};
    const MetricPluginCapability plain("n", "d", "P", 200);
    const MetricPluginCapability withFms("n", "d", "P", 200, lake);
    const MetricPluginCapability withGroup("n", "d", "P", 200, "sys");
    const MetricPluginCapability withBoth("n", "d", "P", 200, lake, "sys");
    const MetricPluginCapability withEmptyGroup("n", "d", "P", 200, lake, "");
    const struct {
        const MetricPluginCapability& capability;
        FMS low;
        FMS high;
        PWSet<std::string> groups;
    } cases[] = {
        {plain, {}, highest, {}},        {withFms, lake, lake, {}},        {withGroup, {}, highest, {"sys"}},
        {withBoth, lake, lake, {"sys"}}, {withEmptyGroup, lake, lake, {}},
    };
    for (const auto& c : cases) {
        EXPECT_EQ("n", c.capability.getName());
        EXPECT_EQ("d", c.capability.getDescription());
        EXPECT_EQ("P", c.capability.getConfigFilePrefix());
        EXPECT_EQ(200, c.capability.getMetricID());
        EXPECT_TRUE(c.capability.doesSupportContinuousCollection());
        EXPECT_EQ(c.groups, c.capability.getGroupNames());
        EXPECT_EQ(c.low.stepping, c.capability.getFMSRange().first.stepping);
        EXPECT_TRUE(c.low == c.capability.getFMSRange().first);
        EXPECT_TRUE(c.high == c.capability.getFMSRange().second);
        EXPECT_EQ(c.high.stepping, c.capability.getFMSRange().second.stepping);
    }
}

TEST(MetricPluginCapabilityTest, RangeOfOneProcessor)
{
    const struct {
        FMS own;
        FMS asked;
        bool included;
    } cases[] = {
        {{0, 0, 0}, {0, 0, 0}, true},    {{0, 0, 0}, {0, 1, 0}, true},  {{0, 0, 0}, {0xFF, 0xFF, 0xFF}, true},
        {{0, 0, 5}, {0, 0, 4}, false},    // from there up
        {{0, 0, 5}, {6, 1, 1}, true},    {{1, 2, 0}, {1, 2, 15}, true}, {{1, 2, 0}, {1, 3, 0}, false},
        {{1, 2, 0}, {1, 1, 255}, false}, {{1, 2, 3}, {1, 2, 3}, true},  {{1, 2, 3}, {1, 2, 0}, true},
        {{1, 2, 3}, {1, 2, 4}, false},   {{0, 2, 0}, {0, 3, 0}, false},    // a model alone is no wildcard
    };
    for (const auto& c : cases)
        EXPECT_EQ(c.included, makeMetric(c.own).doesRangeInclude(c.asked)) << c.own << " " << c.asked;
}

TEST(MetricPluginCapabilityTest, RangeIsOrderedByFamilyModelStepping)
{
    MetricPluginCapability capability = MetricPluginCapability("load", "", "", 0);
    capability.setFMSRange({6, 10, 2}, {7, 3, 4});
    const struct {
        FMS asked;
        bool included;
    } cases[] = {
        {{6, 10, 1}, false}, {{6, 10, 2}, true}, {{6, 10, 0}, true}, {{6, 9, 255}, false}, {{6, 255, 0}, true},
        {{7, 0, 0}, true},   {{7, 3, 4}, true},  {{7, 3, 5}, false}, {{7, 4, 0}, false},
    };
    for (const auto& c : cases)
        EXPECT_EQ(c.included, capability.doesRangeInclude(c.asked)) << c.asked;

    capability.setFMSRange({7, 3, 4}, {6, 10, 2});    // the wrong way round: the ends alone
    EXPECT_TRUE(capability.doesRangeInclude({7, 3, 4}));
    EXPECT_TRUE(capability.doesRangeInclude({6, 10, 2}));
    EXPECT_FALSE(capability.doesRangeInclude({7, 0, 1}));
    EXPECT_FALSE(capability.doesRangeInclude({6, 10, 3}));
}

TEST(MetricPluginCapabilityTest, ReadTriggersAreDeprecated)
{
    const std::string line = "WARNING: DEPRECATED API!\n";
    test::LogCapture log(2);
    MetricPluginCapability capability("load", "", "", 0);
    capability.addReadTrigger(qv_when_type::POLL).addReadTrigger(qv_when_type::END);
    EXPECT_EQ(line + line, log.debug());
    EXPECT_EQ(5u, capability.getReadTriggers());
    EXPECT_EQ(line + line + line, log.debug());
    log.environment().setVerbosity(1);
    capability.getReadTriggers();
    EXPECT_EQ(3u, log.count(line));
}

TEST(ResultFilePluginCapabilityTest, VersionPacksThreeNumbers)
{
    EXPECT_EQ(0x010203u, ResultFilePluginCapability("f", 1, 2, 3).getVersion());
    EXPECT_EQ(0xFFFEFDu, ResultFilePluginCapability("f", 255, 254, 253).getVersion());
    const ResultFilePluginCapability whole("f", 0xFFFFFFFFU);
    EXPECT_EQ(0xFFFFFFFFu, whole.getVersion());
    EXPECT_EQ("", whole.getDescription());
    EXPECT_FALSE(whole.isHidden());
    EXPECT_FALSE(whole.doesSupportContinuousCollection());
}

TEST(WriterPluginCapabilityTest, TextsComeInTheOrderNameDescriptionSuffix)
{
    const WriterPluginCapability capability({}, "csv", "Comma-separated", ".csv", true);
    EXPECT_EQ("csv", capability.getName());
    EXPECT_EQ("Comma-separated", capability.getDescription());
    EXPECT_EQ(".csv", capability.getFileSuffix());
}

}    // namespace

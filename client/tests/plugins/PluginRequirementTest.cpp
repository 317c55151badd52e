#include "plugins/PluginRequirement.h"

#include "plugins/FakeRequirement.h"
#include "record/SystemMetadata.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <deque>
#include <string>
#include <vector>

using namespace pwr;
using test::FakeRequirement;

namespace {

bool isMet(const PluginRequirement& requirement, const SystemMetadata& system = {})
{
    return requirement.isPluginRequirementSatisfied(system, {});
}

class FakeDriver : public DriverInterface {
public:
    explicit FakeDriver(unsigned long long version) : m_version(version) {}
    ~FakeDriver() override = default;
    unsigned long long getVersion() override { return m_version; }

private:
    unsigned long long m_version;
};

TEST(PluginRequirementTest, EachReadsItsOwnFieldOfTheRecord)
{
    SystemMetadata system;
    system.fms = {1, 2, 5};
    system.scuVersion = 0xFFFFFFFF;
    system.osName = "Linux";
    system.platformName = "Old Lake H";
    system.iGfxId = 7;
    system.hyperVEnabled = 1;
    system.vsmEnabled = 1;
    SystemMetadata bare;
    bare.iGfxId = 7;

    const FMSPluginRequirement anyStepping(FMS{1, 2, 0}, false);
    const FMSPluginRequirement sameStepping(FMS{1, 2, 5}, false);
    const FMSPluginRequirement otherStepping(FMS{1, 2, 4}, false);
    const SCUPluginRequirement scu(0xFFFFFFFF, false);
    const OSNamePluginRequirement osName("Linux", false);
    const OSNamePluginRequirement partOfOsName("Lin", false);
    const PCHPluginRequirement partOfPlatform("Lake", false);
    const PCHPluginRequirement otherCase("lake", false);
    const PCHPluginRequirement anyPlatform("", false);
    const IGFXPresentPluginRequirement graphics;
    const HyperVEnablePluginRequirement hyperV;
    const VSMDisablePluginRequirement noVsm;
    const struct {
        const PluginRequirement& requirement;
        const char* name;
        bool onSystem;
        bool onBare;
    } cases[] = {
        {anyStepping, "FMS", true, false},    {sameStepping, "FMS", true, false},
        {otherStepping, "FMS", false, false}, {scu, "SCU", true, false},
        {osName, "OS", true, false},          {partOfOsName, "OS", false, false},
        {partOfPlatform, "PCH", true, false}, {otherCase, "PCH", false, false},
        {anyPlatform, "PCH", true, true},     {graphics, "IGFX", true, true},
        {hyperV, "HV", true, false},          {noVsm, "VSM", false, true},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.name, c.requirement.getName());
        EXPECT_EQ(c.onSystem, isMet(c.requirement, system)) << c.name;
        EXPECT_EQ(c.onBare, isMet(c.requirement, bare)) << c.name;
    }
}

TEST(PluginRequirementTest, NegativeSenseInvertsEveryKind)
{
    SystemMetadata system;
    system.iGfxId = 7;
    EXPECT_FALSE(isMet(FMSPluginRequirement(FMS{}, true), system));
    EXPECT_FALSE(isMet(SCUPluginRequirement(0, true), system));
    EXPECT_FALSE(isMet(OSNamePluginRequirement("", true), system));
    EXPECT_FALSE(isMet(PCHPluginRequirement("", true), system));
    EXPECT_FALSE(isMet(IGFXPresentPluginRequirement(true), system));
    EXPECT_TRUE(isMet(HyperVEnablePluginRequirement(true), system));
    EXPECT_FALSE(isMet(VSMDisablePluginRequirement(true), system));
}

TEST(PluginRequirementTest, ResultIsLoggedAsItIsGiven)
{
    test::RequirementCounts counts;
    const struct {
        bool raw;
        bool negative;
        bool met;
        const char* line;
    } cases[] = {
        {true, false, true, "DEBUG: Requirement met: 1\n"},
        {false, false, false, "DEBUG: Requirement met: 0\n"},
        {true, true, false, "DEBUG: Negative Requirement met: 0\n"},
        {false, true, true, "DEBUG: Negative Requirement met: 1\n"},
    };
    for (const auto& c : cases) {
        test::LogCapture log(3);
        EXPECT_EQ(c.met, isMet(FakeRequirement(counts, c.raw, c.negative)));
        EXPECT_EQ(c.line, log.debug());
    }
    test::LogCapture log(2);
    EXPECT_TRUE(isMet(FakeRequirement(counts, true)));
    EXPECT_EQ("", log.debug());
}

TEST(PluginRequirementTest, GroupEndsAtTheMemberThatDecides)
{
    struct Member {
        bool raw;
        bool negative;
    };
    const Member yes{true, false};
    const Member no{false, false};
    const Member notYes{true, true};
    const Member notNo{false, true};
    const struct {
        bool all;
        std::vector<Member> members;
        bool met;
        int asked;
    } cases[] = {
        {true, {}, true, 0},
        {false, {}, true, 0},
        {true, {yes, notNo}, true, 2},
        {true, {yes, no, yes}, false, 2},
        {true, {notYes, yes}, false, 1},
        {false, {no, notYes}, false, 2},
        {false, {no, yes, no}, true, 2},
        {false, {notNo, no}, true, 1},
    };
    for (const auto& c : cases) {
        test::RequirementCounts counts;
        {
            PluginRequirementGroup group(c.all);
            for (const Member& member : c.members)
                EXPECT_TRUE(group.addPluginRequirement(new FakeRequirement(counts, member.raw, member.negative)));
            EXPECT_TRUE(group.addPluginRequirement(nullptr));
            EXPECT_EQ("SYSTEM", group.getName());
            EXPECT_EQ(c.met, isMet(group));
            EXPECT_EQ(c.asked, counts.asked);
            EXPECT_EQ(0, counts.deleted);
        }
        EXPECT_EQ(static_cast<int>(c.members.size()), counts.deleted);
    }
}

TEST(PluginRequirementTest, MembersOfAGroupLogBeforeIt)
{
    test::LogCapture log(3);
    test::RequirementCounts counts;
    PluginRequirementGroup group;
    group.addPluginRequirement(new FakeRequirement(counts, false, true));
    group.addPluginRequirement(new FakeRequirement(counts, false));
    EXPECT_FALSE(isMet(group));
    EXPECT_EQ("DEBUG: Negative Requirement met: 1\nDEBUG: Requirement met: 0\nDEBUG: Requirement met: 0\n",
              log.debug());
}

// The only test that asks for graphics where there are none: the report comes once in the life of the process.
TEST(PluginRequirementTest, MissingGraphicsAreReportedOnceToTheUser)
{
    const std::string text =
        "An integrated graphics device is not detected. Integrated graphics related metrics are disabled.";
    EXPECT_FALSE(isMet(IGFXPresentPluginRequirement())) << "nobody to tell yet";

    test::LogCapture log(0);
    EXPECT_TRUE(isMet(IGFXPresentPluginRequirement(true)));
    EXPECT_EQ(text + "\n", log.debug());
    EXPECT_EQ(std::deque<std::string>{text}, log.environment().getQueuedMessages());

    EXPECT_FALSE(isMet(IGFXPresentPluginRequirement(false)));
    test::LogCapture nextRun(0);
    EXPECT_FALSE(isMet(IGFXPresentPluginRequirement(false)));
    EXPECT_EQ(text + "\n", log.debug());
    EXPECT_EQ(1u, log.environment().getQueuedMessages().size());
    EXPECT_EQ("", nextRun.debug());
    EXPECT_TRUE(nextRun.environment().getQueuedMessages().empty());
}

TEST(DriverRequirementTest, VersionsCompareAsWholeNumbers)
{
    const unsigned long long minimum = 0x0000000302010405ULL;    // 3.1.5, with bits that are not shown
    const struct {
        unsigned long long version;
        bool met;
    } cases[] = {
        {minimum, true},
        {minimum + 1, true},
        {minimum - 1, false},
        {minimum - 0x100, false},    // shows the same three numbers
        {minimum + 0x1000000, true},
        {0x0100000000000000ULL, true},
        {0xFFFFFFFFULL, false},
        {~0ULL, true},
    };
    for (const auto& c : cases) {
        FakeDriver driver(c.version);
        EXPECT_EQ(c.met, isMet(DriverRequirement(minimum, &driver))) << std::hex << c.version;
    }
}

TEST(DriverRequirementTest, OldDriverIsExplainedAtItsLevelOrForItsPrefix)
{
    const std::string info = "INFO: DriverRequirement requirement has driver version = 4328652803\n";
    const std::string warning = "WARNING: Driver version 1.2.3 found, minimum driver required is 255.254.253\n";
    const std::string result = "DEBUG: Requirement met: 0\n";
    const struct {
        unsigned short verbosity;
        const char* prefix;
        std::string text;
    } cases[] = {
        {1, "", ""},
        {2, "", warning},
        {3, "", warning + result},
        {4, "", info + warning + result},
        {0, "DRIVERREQ", info + warning},
        {0, "DRIVER", ""},
    };
    FakeDriver driver(0x0000000102020003ULL);
    const DriverRequirement requirement(0x000000FF00FE00FDULL, &driver);
    for (const auto& c : cases) {
        test::LogCapture log(c.verbosity);
        log.environment().addPrefixForDebugLogging(c.prefix);
        EXPECT_FALSE(isMet(requirement));
        EXPECT_EQ(c.text, log.debug()) << c.verbosity << c.prefix;
    }
    test::LogCapture log(2);
    EXPECT_FALSE(isMet(DriverRequirement(0, nullptr)));
    EXPECT_EQ("", log.debug()) << "no driver, nothing to explain";
}

}    // namespace

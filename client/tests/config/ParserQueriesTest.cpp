#include "config/Parser.h"

#include "config/Platform.h"
#include "support/CollectorConfig.h"

#include <string>
#include <vector>

using namespace pwr;
using test::FakeOperation;
using test::Names;

namespace {

class ParserQueriesTest : public test::CollectorConfig {
protected:
    bool loads(const std::string& content) { return m_parser.load({file(content)}, {&m_collector, &m_other}, {}); }

    // The chain of a list of names; "failed" when it does not resolve.
    Names chain(const std::string& names) const
    {
        std::vector<Platform*> platforms;
        if (!m_parser.getAllPlatforms_i(platforms, names)) return {"failed"};
        Names found;
        for (const Platform* platform : platforms)
            found.push_back(platform->getName());
        return found;
    }

    Names resolved(const std::string& names) const { return resolved(names, m_parser); }

    static Names resolved(const std::string& names, const Parser& parser)
    {
        std::vector<InputMsg*> found = {nullptr};
        const int result = parser.getMessagesForPrefix_i(found, names, "FEAT");
        EXPECT_EQ(found.empty() ? -1 : 0, result);
        Names fullNames;
        for (const InputMsg* one : found)
            fullNames.push_back(one->getFullName());
        return fullNames;
    }

    Parser m_parser;
};

TEST_F(ParserQueriesTest, OrphansAreAdoptedWhenTheirParentComes)
{
    m_log.environment().setVerbosity(3);
    EXPECT_EQ(nullptr, m_parser.getOrCreatePlatform("", "ALL"));
    Platform* first = m_parser.getOrCreatePlatform("PLATA-B", "PLATA");
    Platform* second = m_parser.getOrCreatePlatform("PLATA-A", "PLATA");
    EXPECT_EQ(nullptr, first->getParent());
    Platform* parent = m_parser.getOrCreatePlatform("PLATA", "ALL");
    EXPECT_EQ(parent, first->getParent());
    EXPECT_EQ(std::vector<Platform*>({first, second}), parent->getChildren());
    EXPECT_EQ(parent, m_parser.getOrCreatePlatform("PLATA", "OTHER"));
    EXPECT_EQ("3DEBUG: found orphaned platform \"PLATA-B\" with parent \"PLATA\"\n"
              "3DEBUG: found orphaned platform \"PLATA-A\" with parent \"PLATA\"\n"
              "3DEBUG: found orphaned platform \"PLATA\" with parent \"ALL\"\n"
              "3DEBUG: platform \"PLATA\" has orphaned children!\n"
              "3DEBUG: assigning previously orphaned child \"PLATA-B\" as a child of \"PLATA\"\n"
              "3DEBUG: assigning previously orphaned child \"PLATA-A\" as a child of \"PLATA\"\n",
              m_log.debug());
    EXPECT_FALSE(m_parser.load({}, {}, {}));
    EXPECT_EQ("1ERROR: the following \"parent\" platforms have not been defined: ALL\n"
              "0FATAL: config file parser sanity checks did NOT pass -- config files are invalid!\n",
              m_log.errors());

    EXPECT_EQ(nullptr, m_parser.getOrCreatePlatform("ALL", "ALL")->getParent());
    EXPECT_TRUE(m_parser.load({}, {}, {}));
}

TEST_F(ParserQueriesTest, AChainRunsFromTheMostSpecificPlatformToTheRoot)
{
    ASSERT_TRUE(loads("X-P-Q_MODEL_A_CONSTANT_VALUE=1\nX-P_MODEL_A_CONSTANT_VALUE=1\nX_MODEL_A_CONSTANT_VALUE=1\n"
                      "Y_MODEL_A_CONSTANT_VALUE=1\nALL_MODEL_A_CONSTANT_VALUE=1\n"));
    const struct {
        const char* names;
        Names chain;
    } cases[] = {
        {"FMS=X-P", {"X-P", "X", "ALL"}},
        {"PCI=Y,FMS=X-P-Q", {"Y", "X-P-Q", "X-P", "X", "ALL"}},
        {"FMS=X-P,FMS=X", {"X-P", "X", "X", "ALL"}},
        {"FMS=ALL", {"ALL"}},
        {"FMS=X,FMS=ALL", {"X", "ALL"}},
        {"", {}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(c.chain, chain(c.names)) << c.names;
}

TEST_F(ParserQueriesTest, ThePlatformsNameSaysItsParent)
{
    ASSERT_TRUE(loads("ALL-_MODEL_A_CONSTANT_VALUE=1\nALL-X_MODEL_A_CONSTANT_VALUE=1\nX_MODEL_A_CONSTANT_VALUE=1\n"
                      "X-P_MODEL_A_CONSTANT_VALUE=1\nX-Q-_MODEL_A_CONSTANT_VALUE=1\nX--_FEAT_M_OPKIND_CATEG=1\n"
                      "X--P_MODEL_A_CONSTANT_VALUE=1\n"));
    const struct {
        const char* name;
        Names chain;
    } cases[] = {
        {"ALL-X", {"ALL-X", "ALL"}}, {"X-P", {"X-P", "X", "ALL"}},
        {"X-Q", {"X-Q", "ALL"}},    // nothing behind the last "-": no tail
        {"X-", {"X-", "ALL"}},       {"X--P", {"X--P", "X-", "ALL"}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(c.chain, chain(std::string("F=") + c.name));
    EXPECT_EQ(Names({"X-_FEAT_M"}), resolved("F=X--P"));
}

TEST_F(ParserQueriesTest, AChainNeedsNamesThatExist)
{
    ASSERT_TRUE(loads("ALL_MODEL_A_CONSTANT_VALUE=1\n"));
    EXPECT_EQ(Names({"failed"}), chain("FMS=X"));
    EXPECT_EQ("1ERROR: ERROR: no platform \"X\" defined in config file!\n", m_log.errors());
    EXPECT_EQ(Names({"failed"}), chain("FMS=ALL,ALL"));
    EXPECT_EQ(Names({"failed"}), chain("FMS="));
    EXPECT_EQ("WARNING: invalid platform name entry ALL: MUST be of form <TYPE>=<NAME>!\n"
              "WARNING: invalid platform name entry FMS=: MUST be of form <TYPE>=<NAME>!\n",
              m_log.debug());
    m_log.clear();
    EXPECT_EQ(Names(), resolved("FMS=X"));
    EXPECT_TRUE(
        m_log.contains("1ERROR: couldn't retrieve valid list of platforms from platform name string = FMS=X\n"));
}

TEST_F(ParserQueriesTest, TheBestMatchInNameOrderSelectsThePlatform)
{
    m_log.environment().setVerbosity(0);
    m_log.environment().addPrefixForDebugLogging("config-parser");
    ASSERT_TRUE(loads("ALL_MODEL_PCI_CONSTANT_VALUE=VENDOR=0x1,DEVICE=0x2\n"
                      "D_MODEL_FMS_CONSTANT_VALUE=6.1.5\nC_MODEL_FMS_CONSTANT_VALUE=6.1.3\n"
                      "B_MODEL_FMS_CONSTANT_VALUE=7.1,6.1\nA_MODEL_FMS_CONSTANT_VALUE=7.2,6.1.4\n"
                      "B_MODEL_CORES_CONSTANT_RANGE=2,8\nA_MODEL_CORES_CONSTANT_VALUE=4\n"
                      "D_MODEL_FMS_CONSTANT_VALUE=8.1.4\nC_MODEL_FMS_CONSTANT_VALUE=8.1.3\n"));
    const struct {
        const char* type;
        const char* value;
        const char* platform;
    } cases[] = {
        {"FMS", "6.1.3", "C"},    // exact, though B matches partially before it
        {"FMS", "6.1", "B"},      // exact: no stepping on either side
        {"FMS", "6.1.9", "B"},    // partial
        {"FMS", "8.1", "C"},      // the first of two partial ones
        {"FMS", "6.1.4", "A"}, {"FMS", "7.2.1", "A"}, {"FMS", "9.9", ""},
        {"FMS", "", ""},       {"CORES", "4", "A"},   {"CORES", "5", "B"},
        {"CORES", "9", ""},    {"cores", "4", ""},    {"PCI", "VENDOR=0x1,DEVICE=0x2", "ALL"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(c.platform, m_parser.getPlatformName_i(c.type, c.value)) << c.type << '=' << c.value;
    EXPECT_TRUE(m_log.contains("INFO: getPlatformName_i::type:FMS, valueOrRange:8.1\n"));
    EXPECT_TRUE(m_log.contains("INFO: Specifier::is_match(): m_name:CORES, name:FMS\n"));
    EXPECT_TRUE(m_log.contains("4INFO: Found partial match for specifier: FMS=8.1 in Platform specifier FMS=8.1.3\n"));
    EXPECT_TRUE(m_log.contains("4INFO: Found exact match for specifier: FMS=6.1.3 in Platform specifier FMS=6.1.3\n"));
}

TEST_F(ParserQueriesTest, InheritanceIsDecidedForEachPlatformAndPrefix)
{
    const std::string lines = "ALL_FEAT_ROOT_OPKIND_CATEG=1\nX_FEAT_MID_OPKIND_CATEG=1\nX-P_FEAT_LEAF_OPKIND_CATEG=1\n"
                              "X-P_OWN_LEAF_OPKIND_CATEG=1\nALL_OWN_ROOT_OPKIND_CATEG=1\n"
                              "X-Q_MODEL_A_CONSTANT_VALUE=1\nY_MODEL_A_CONSTANT_VALUE=1\n";
    const struct {
        const char* inherit;
        const char* names;
        Names messages;
    } cases[] = {
        {"", "F=X-P", {"X-P_FEAT_LEAF"}},
        {"", "F=X-Q", {"X_FEAT_MID"}},    // none of its own: the parent fills in
        {"", "F=Y,F=X-P", {"X-P_FEAT_LEAF"}},
        {"", "F=Y", {"ALL_FEAT_ROOT"}},
        {"X-P_FEAT_INHERIT_MODE_VALUE=EXTEND", "F=X-P", {"X-P_FEAT_LEAF", "X_FEAT_MID"}},
        {"X-P_OWN_INHERIT_MODE_VALUE=EXTEND", "F=X-P", {"X-P_FEAT_LEAF"}},
        {"X_FEAT_INHERIT_MODE_VALUE=EXTEND", "F=X-P", {"X-P_FEAT_LEAF"}},
        {"X_FEAT_INHERIT_MODE_VALUE=EXTEND", "F=X-Q", {"X_FEAT_MID", "ALL_FEAT_ROOT"}},
        {"X-P_FEAT_INHERIT_MODE_VALUE=EXTEND\nX_FEAT_INHERIT_MODE_VALUE=EXTEND",
         "F=X-P",
         {"X-P_FEAT_LEAF", "X_FEAT_MID", "ALL_FEAT_ROOT"}},
        {"X-P_FEAT_INHERIT_MODE_VALUE=EXTEND\nX-P_FEAT_INHERIT_MODE_VALUE=OVERRIDE", "F=X-P", {"X-P_FEAT_LEAF"}},
        {"ALL_FEAT_INHERIT_MODE_VALUE=EXTEND", "F=ALL", {"ALL_FEAT_ROOT"}},
    };
    for (const auto& c : cases) {
        Parser parser;
        ASSERT_TRUE(parser.load({file(lines + c.inherit)}, {&m_collector}, {})) << c.inherit;
        EXPECT_EQ(c.messages, resolved(c.names, parser)) << c.inherit << ' ' << c.names;
    }
}

TEST_F(ParserQueriesTest, AClashDropsTheParentsLevelAndTheWalkGoesOn)
{
    ASSERT_TRUE(loads("ALL_FEAT_ROOT_OPKIND_CATEG=1\nX_FEAT_OTHER_OPKIND_CATEG=1\nX_FEAT_SAME_OPKIND_CATEG=1\n"
                      "X-P_FEAT_SAME_OPKIND_CATEG=1\nX-P_FEAT_INHERIT_MODE_VALUE=EXTEND\n"
                      "X_FEAT_INHERIT_MODE_VALUE=EXTEND\n"));
    EXPECT_EQ(Names({"X-P_FEAT_SAME", "ALL_FEAT_ROOT"}), resolved("F=X-P"));
    EXPECT_EQ("WARNING: Parent message (X_FEAT_SAME) clashes with child message (X-P_FEAT_SAME)\n", m_log.debug());
    EXPECT_EQ("ERROR: Duplicate messages found\n", m_log.errors());
}

TEST_F(ParserQueriesTest, AnOperationIsAddedOnceAndAnUnavailableOneNever)
{
    m_log.environment().setVerbosity(4);
    ASSERT_TRUE(loads(""));
    const int before = FakeOperation::alive();
    bool available = false;
    InputMsg message("M", "ALL_FEAT");
    EXPECT_EQ(nullptr, m_parser.addOperationToMessage(nullptr, "N", "OPKIND", available));
    EXPECT_EQ(nullptr, m_parser.addOperationToMessage(&message, "N", "NONE", available));
    EXPECT_EQ(nullptr, m_parser.addOperationToMessage(&message, "N", "ABSENT", available));
    EXPECT_FALSE(available);
    EXPECT_EQ(before, FakeOperation::alive());
    EXPECT_TRUE(
        m_log.contains("INFO: Didn't add operation N to msg M because op is not available on current platform!\n"));

    Operation* added = m_parser.addOperationToMessage(&message, "N", "OPKIND", available);
    EXPECT_EQ(added, m_parser.addOperationToMessage(&message, "N", "OPKIND", available));
    EXPECT_EQ(1u, message.getOperationCount());
    EXPECT_EQ(nullptr, m_parser.addOperationToMessage(&message, "X", "OTHER", available));
    EXPECT_TRUE(available);
    EXPECT_EQ(nullptr, m_parser.getOperationFor("NONE", available));
    EXPECT_NE(nullptr, m_parser.getOperationFor("ABSENT", available));
    EXPECT_FALSE(available);
    EXPECT_EQ("1ERROR: Cannot add operation OTHER to message ALL_FEAT_M because the collectors are different!\n",
              m_log.errors());
}

}    // namespace

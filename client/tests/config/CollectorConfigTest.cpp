#include "support/CollectorConfig.h"

#include <string>
#include <vector>

using namespace pwr;
using test::FakeCollector;
using test::FakeOperation;
using test::Names;

namespace {

using Settings = std::vector<std::pair<std::string, std::string>>;

class CollectorConfigTest : public test::CollectorConfig {
protected:
    Settings settingsOf(const Operation* operation) const
    {
        const auto* fake = dynamic_cast<const FakeOperation*>(operation);
        if (fake != nullptr) return fake->settings;
        const auto& constant = dynamic_cast<const CONSTANTOperation&>(*operation);
        return {constant.begin(), constant.end()};
    }

    Names operationsOf(const InputMsg& message) const
    {
        Names names;
        for (const Operation* operation : message)
            names.push_back(operation->getName());
        return names;
    }

    std::vector<const ConfigCap*> capabilities(const std::string& platform) const
    {
        std::vector<const ConfigCap*> caps = {nullptr};
        EXPECT_EQ(0, m_config->getCapabilitiesFor(caps, "FMS=" + platform));
        return caps;
    }
};

TEST_F(CollectorConfigTest, ReadsEveryStatement)
{
    ASSERT_EQ(0, load(test::WHOLE_LANGUAGE)) << m_log.errors();

    ASSERT_EQ(1u, capabilities("PLATA-B").size());
    const ConfigCap& cap = *capabilities("PLATA-B").front();
    EXPECT_EQ("feat", cap.getName());
    EXPECT_EQ("Feature text: a_b=c", cap.getDescription());
    EXPECT_EQ("FEAT", cap.getConfigfilePrefix());
    EXPECT_EQ(PWSet<std::string>({"a_b=c", "grp,not split"}), cap.getGroups());
    EXPECT_TRUE(cap.isHidden());

    const InputMsg& resid = message("ALL", "FEAT");
    EXPECT_EQ("ALL_FEAT_RESID", resid.getFullName());
    EXPECT_EQ("FEAT", resid.getConfigfilePrefix());
    EXPECT_EQ(16, resid.getMsgID());
    EXPECT_EQ("ALL", resid.getCPUString());
    EXPECT_EQ(PWSet<std::string>({"BEGIN", "POLL", "END", "NOTIFIER"}), resid.getTriggers());
    EXPECT_EQ(PWSet<std::string>({"n1"}), resid.getNotifierNames());
    EXPECT_EQ(Names({"FEAT_RESID_OPKIND", "FEAT_RESID_CONSTANT"}), operationsOf(resid));
    EXPECT_EQ(Settings({{"CATEG", "value"}, {"OTHER_CATEG", "a=b,c"}}), settingsOf(resid.getOperations()[0]));
    EXPECT_EQ(Settings({{"FEAT_RESID_KEY_WITH_UNDERSCORES", "text"}}), settingsOf(resid.getOperations()[1]));

    EXPECT_EQ(Names({"ALL_FEAT_RESID"}), messages("ALL", "FEAT", {"TRACEPOINT"}, CollectionType::MAX_DETAIL));
    EXPECT_EQ(PWSet<std::string>({"POLL", "TRACEPOINT"}), resid.getTriggers());
    EXPECT_EQ(PWSet<std::string>({"tp1", "t=p"}), resid.getTracepointNames());
    EXPECT_TRUE(resid.getNotifierNames().empty());

    EXPECT_EQ("PLATA", platformFor("FMS", "6.142.9"));
    EXPECT_EQ("PLATA", platformFor("FMS", "6.158.3"));
    EXPECT_EQ("PLATA", platformFor("PCI", "VENDOR=0x1234,DEVICE=0x5678"));
    EXPECT_EQ("PLATA", platformFor("PMT", "GUID=0x1234"));
    EXPECT_EQ("PLATA-B", platformFor("CORES", "8"));
    EXPECT_EQ("PLATA-B", platformFor("CORES", " 4 cores"));
    EXPECT_EQ("", platformFor("CORES", "9"));
}

TEST_F(CollectorConfigTest, ASourceLineCopiesTheOperationOfTheNearestAncestorsMessage)
{
    ASSERT_EQ(0, load("ALL_FEAT_FIRST_OPKIND_CATEG=far\nX_FEAT_FIRST_OPKIND_CATEG=1\n"
                      "X-Y_FEAT_COPY_MSG_SOURCE=FIRST\nX-Y_FEAT_COPY_OPKIND_CATEG=2\n"
                      "X-Y_FEAT_COPY_MSG_READ-WHEN=POLL\nX_FEAT_EMPTY_MSG_ID=1\nX-Y_FEAT_COPY_MSG_SOURCE=EMPTY\n"
                      "X-Y_FEAT_COPY_MSG_SOURCE=COPY\n"));
    const InputMsg& copy = message("X-Y", "FEAT");
    EXPECT_EQ(Names({"FEAT_COPY_OPKIND"}), operationsOf(copy));
    EXPECT_EQ(Settings({{"CATEG", "1"}, {"CATEG", "2"}}), settingsOf(copy.getOperations()[0]));
    EXPECT_EQ("WARNING: message X_FEAT_EMPTY cannot be sourced since it doesn't contain any supported operations!\n"
              "WARNING: CANNOT self-source for message X-Y_FEAT_COPY!\n",
              m_log.debug());
}

TEST_F(CollectorConfigTest, AGroupTakesItsMembersAndTheirLaterLines)
{
    ASSERT_EQ(0, load("ALL_FEAT_A_OPKIND_CATEG=a\nALL_FEAT_A_MSG_READ-WHEN=POLL\nALL_FEAT_B_OPKIND_CATEG=b\n"
                      "ALL_FEAT_A_MSG_GROUP= B , C ,A,\nALL_FEAT_B_OPKIND_CATEG=b2\nALL_FEAT_C_OPKIND_CATEG=c\n"
                      "ALL_FEAT_B_MSG_READ-WHICH-CPU=5\n"));
    const InputMsg& group = message("ALL", "FEAT");
    EXPECT_EQ(Names({"ALL_FEAT_A"}), messages("ALL", "FEAT", {"POLL"}));
    EXPECT_EQ(Names({"FEAT_A_OPKIND", "FEAT_B_OPKIND", "FEAT_C_OPKIND"}), operationsOf(group));
    EXPECT_EQ(Settings({{"CATEG", "b"}, {"CATEG", "b2"}}), settingsOf(group.getOperations()[1]));
    EXPECT_EQ("5", group.getCPUString());
}

// Names of tracepoints and notifiers stay with the member of a group.
TEST_F(CollectorConfigTest, AQueryGivesMessagesWithOperationsInTheOrderOfTheirLines)
{
    ASSERT_EQ(0, load("ALL_FEAT_Z_MSG_READ-WHEN=END\nALL_FEAT_BARE_MSG_READ-WHEN=POLL\nALL_FEAT_Z_OPKIND_CATEG=1\n"
                      "ALL_FEAT_A_OPKIND_CATEG=1\nALL_FEAT_A_MSG_READ-WHEN=POLL,TRACEPOINT=tp\n"
                      "ALL_OTHER_A_OPKIND_CATEG=1\nALL_OTHER_A_MSG_READ-WHEN=POLL\nALL_FEAT_TOP_MSG_GROUP=A\n"));
    EXPECT_EQ(1, message("ALL", "OTHER").getMsgID());
    EXPECT_EQ(4, message("ALL", "FEAT").getMsgID());    // behind Z, BARE and A
    EXPECT_EQ(PWSet<std::string>({"POLL", "TRACEPOINT"}), message("ALL", "FEAT").getTriggers());
    EXPECT_TRUE(message("ALL", "FEAT").getTracepointNames().empty());
    m_log.clear();
    m_log.environment().setVerbosity(4);
    EXPECT_EQ(Names({"ALL_FEAT_Z", "ALL_FEAT_TOP"}), messages("ALL", "FEAT", {"END", "POLL"}));
    EXPECT_TRUE(m_log.contains("3DEBUG: pwr::Platform::getMessagesFor called for prefix FEAT on platform ALL\n"
                               "INFO: not adding message ALL_FEAT_BARE because it doesn't have any operations!\n"));
    messages("ALL", "NONE", {"END"});
    EXPECT_TRUE(m_log.contains("3DEBUG: combination of name ALL prefix NONE was NOT specified in config file!\n"));
}

// A message of many operations finds them by an index; what moves away must leave it.
TEST_F(CollectorConfigTest, ALargeGroupKeepsItsOperationsApart)
{
    std::string lines;
    std::string tags;
    for (int i = 0; i < 50; ++i) {
        const std::string tag = "M" + std::to_string(i);
        lines += "ALL_FEAT_" + tag + "_OPKIND_CATEG=first\n";
        tags += tag + ",";
    }
    lines += "ALL_FEAT_M0_MSG_GROUP=" + tags + "\n";
    for (int i = 0; i < 50; ++i)
        lines += "ALL_FEAT_M" + std::to_string(i) + "_OPKIND_CATEG=second\n";
    lines += "ALL_FEAT_TOP_MSG_READ-WHEN=POLL\nALL_FEAT_TOP_MSG_GROUP=M0\n";
    lines += "ALL_FEAT_M7_OPKIND_CATEG=M0 again\nALL_FEAT_M0_OPKIND_CATEG=TOP\n";
    ASSERT_EQ(0, load(lines)) << m_log.errors();

    const InputMsg& top = message("ALL", "FEAT");
    EXPECT_EQ("TOP", top.getName());
    ASSERT_EQ(50u, top.getOperationCount());
    EXPECT_EQ(Settings({{"CATEG", "first"}, {"CATEG", "second"}, {"CATEG", "TOP"}}), settingsOf(*top.begin()));
    EXPECT_EQ(Settings({{"CATEG", "first"}, {"CATEG", "second"}}), settingsOf(top.getOperations()[7]));
}

TEST_F(CollectorConfigTest, TheLastAvailableProviderOfAKindServes)
{
    const struct {
        bool first, second;
        std::size_t server;    // 2: nobody
    } cases[] = {{true, true, 1}, {true, false, 0}, {false, true, 1}, {false, false, 2}};
    for (const auto& c : cases) {
        const int before = FakeOperation::alive();
        FakeCollector collectors[2] = {FakeCollector("a"), FakeCollector("b")};
        const bool isAvailable[2] = {c.first, c.second};
        for (std::size_t i = 0; i < 2; ++i)
            isAvailable[i] ? collectors[i].provide("KIND") : collectors[i].provideUnavailable("KIND");
        // Nothing is checked of a kind that does not work here.
        const std::string nonsense = file("ALL_FEAT_A_KIND_CATEG=1\nALL_FEAT_A_KIND_nonsense=REFUSED\n");
        EXPECT_EQ(c.server == 2 ? 0 : -1, m_config->parse({nonsense}, {&collectors[0], nullptr, &collectors[1]}, {}));
        m_config->destroy();
        EXPECT_EQ(before + 2, FakeOperation::alive());

        ASSERT_EQ(0, m_config->parse({file("ALL_FEAT_A_KIND_CATEG=1\nALL_FEAT_A_MSG_READ-WHEN=POLL\n")},
                                     {&collectors[0], &collectors[1]}, {}));
        EXPECT_EQ(c.server != 2, m_config->isPlatformPrefixSupported("FMS=ALL", "FEAT"));
        CollectorPlugin::Results results;
        if (c.server != 2) message("ALL", "FEAT").execute(results);
        EXPECT_EQ(c.server == 0 ? 1u : 0u, collectors[0].calls.size());
        EXPECT_EQ(c.server == 1 ? 1u : 0u, collectors[1].calls.size());
        m_config->destroy();
    }
}

TEST_F(CollectorConfigTest, WithoutAProviderOfConstantsTheyEndTheLoad)
{
    EXPECT_EQ(-1, m_config->parse({file("ALL_FEAT_A_CONSTANT_C=1\n")}, {&m_other}, {}));
    EXPECT_TRUE(m_log.contains("1ERROR: ERROR: unknown collector type CONSTANT\n"));
}

TEST_F(CollectorConfigTest, AQueryChoosesTheTriggerGroup)
{
    ASSERT_EQ(0, load("ALL_FEAT_N_OPKIND_CATEG=1\nALL_FEAT_N_MSG_READ-WHEN=POLL\n"
                      "ALL_FEAT_M_OPKIND_CATEG=1\nALL_FEAT_M_MSG_READ-WHEN-MAX-DETAIL=POLL\n"
                      "ALL_FEAT_B_OPKIND_CATEG=1\nALL_FEAT_B_MSG_READ-WHEN=INIT\n"
                      "ALL_FEAT_B_MSG_READ-WHEN-MAX-DETAIL=POLL\n"
                      "ALL_FEAT_C_CONSTANT_X=1\nALL_FEAT_D_CONSTANT_X=1\nALL_FEAT_D_MSG_READ-WHEN=BEGIN\n"
                      "ALL_FEAT_E_CONSTANT_X=1\nALL_FEAT_E_MSG_READ-WHEN-MAX-DETAIL=BEGIN\n"));
    const struct {
        const char* trigger;
        CollectionType type;
        Names messages;
    } cases[] = {
        {"POLL", CollectionType::NORMAL, {"ALL_FEAT_N"}},
        {"POLL", CollectionType::MAX_DETAIL, {"ALL_FEAT_M", "ALL_FEAT_B"}},
        {"POLL", CollectionType::NORMAL_OR_MAX_DETAIL, {"ALL_FEAT_N", "ALL_FEAT_M"}},
        {"INIT", CollectionType::NORMAL, {"ALL_FEAT_B", "ALL_FEAT_C", "ALL_FEAT_E"}},
        {"INIT", CollectionType::MAX_DETAIL, {"ALL_FEAT_C", "ALL_FEAT_D"}},
        {"INIT", CollectionType::NORMAL_OR_MAX_DETAIL, {"ALL_FEAT_B", "ALL_FEAT_C"}},
        {"END", CollectionType::NORMAL, {}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(c.messages, messages("ALL", "FEAT", {"FINI", c.trigger}, c.type)) << c.trigger;
    EXPECT_EQ(Names({"none"}), messages("ALL", "NONE", {"POLL"}));

    std::vector<InputMsg*> found = {nullptr};
    m_config->getMessagesFor(found, "FMS=ALL", "FEAT", {"POLL"}, CollectionType::NORMAL);
    EXPECT_EQ(2u, found.size());    // appended
}

TEST_F(CollectorConfigTest, EveryPlatformOfTheChainGivesItsCapabilities)
{
    ASSERT_EQ(0, load("ALL_Z_CAPABILITY_COMMAND-LINE_VALUE=rootZ\nALL_A_CAPABILITY_COMMAND-LINE_VALUE=rootA\n"
                      "X_Z_CAPABILITY_COMMAND-LINE_VALUE=xZ\nX_Z_INHERIT_MODE_VALUE=OVERRIDE\n"
                      "X-P_B_CAPABILITY_COMMAND-LINE_VALUE=xpB\nX-P_B_CAPABILITY_COMMAND-LINE_VALUE=again\n"
                      "X-P_B_CAPABILITY_HIDDEN_VALUE=False\n"));
    Names names;
    for (const ConfigCap* cap : capabilities("X-P"))
        names.push_back(cap->getName());
    EXPECT_EQ(Names({"again", "xZ", "rootA", "rootZ"}), names);
    EXPECT_FALSE(capabilities("X-P").front()->isHidden());

    std::vector<const ConfigCap*> caps;
    EXPECT_EQ(-1, m_config->getCapabilitiesFor(caps, "FMS=NONE"));
    EXPECT_TRUE(caps.empty());
}

TEST_F(CollectorConfigTest, QueriesWithoutAConfigurationFindNothing)
{
    m_config->destroy();
    std::string name = "old";
    std::vector<InputMsg*> found;
    std::vector<const ConfigCap*> caps = {nullptr};
    EXPECT_EQ(-1, m_config->getPlatformName(name, {"FMS", "6.1"}));
    EXPECT_EQ("", name);
    EXPECT_FALSE(m_config->isPlatformPrefixSupported("FMS=ALL", "FEAT"));
    EXPECT_EQ(-1, m_config->getMessagesFor(found, "FMS=ALL", "FEAT", {"POLL"}, CollectionType::NORMAL));
    EXPECT_EQ(-1, m_config->getCapabilitiesFor(caps, "FMS=ALL"));
    EXPECT_TRUE(caps.empty());
}

TEST_F(CollectorConfigTest, FilesAreReadOneAfterTheOtherUntilOneFails)
{
    const std::string first = file("X_FEAT_A_OPKIND_CATEG=1\n");
    const std::string bad = file("X_FEAT_A_MSG_READ-WHEN=POLL\nnonsense\n");
    const std::string last = file("ALL_FEAT_A_OPKIND_CATEG=1\n");
    EXPECT_EQ(0, m_config->parse({first, last}, {&m_collector}, {}));
    EXPECT_TRUE(m_config->isPlatformPrefixSupported("FMS=ALL", "FEAT"));
    EXPECT_EQ(-1, m_config->parse({first, bad, last}, {&m_collector}, {}));
    EXPECT_EQ(Names({"X_FEAT_A"}), messages("X", "FEAT", {"POLL"}));
    EXPECT_FALSE(m_config->isPlatformPrefixSupported("FMS=ALL", "FEAT"));
    EXPECT_EQ(-1, m_config->parse({first}, {&m_collector}, {}));    // its parent is missing
    EXPECT_EQ(0, m_config->parse({last, first}, {&m_collector}, {}));
    EXPECT_EQ(0, m_config->parse({}, {}, {}));
    EXPECT_FALSE(m_config->isPlatformPrefixSupported("FMS=ALL", "FEAT"));

    EXPECT_EQ(0, m_config->parse({last, first}, {&m_collector}, {}));
    m_log.clear();
    m_log.environment().setVerbosity(3);
    m_config->destroy();
    EXPECT_EQ("3DEBUG: Deleting platform ALL\n3DEBUG: Deleting platform X\n", m_log.debug());
}

TEST_F(CollectorConfigTest, BadFilesFailOrLoadAndTheNextParseWorks)
{
    std::filesystem::create_directory("folder.conf");
    const std::string valid = "ALL_FEAT_A_OPKIND_CATEG=";
    const struct {
        const char* what;
        std::string path;
        int result;
    } cases[] = {
        {"missing", "missing.conf", -1},
        {"folder", "folder.conf", -1},
        {"zeros", file(std::string(100000, '\0')), -1},
        {"long value", file(valid + std::string(10 << 20, 'x')), 0},
        {"long nonsense", file(std::string(10 << 20, 'x')), -1},
        {"CR LF", file(valid + "x\r\nALL_FEAT_A_MSG_READ-WHEN=POLL\r\n\r\n"), 0},
        {"high bytes", file(valid + "\xff\xfe\x80\n\xc3\xa4_\xff__\x80_=\n"), -1},
        {"high byte in a tag", file("ALL_FEAT_\xc4_OPKIND_CATEG=x\n"), -1},
        {"zero in a value", file(valid + std::string("a\0b\n", 4)), 0},
        {"dashes", file("ALL-" + std::string(1000, '-') + "_FEAT_A_OPKIND_CATEG=x\n"), -1},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.result, m_config->parse({c.path}, {&m_collector}, {})) << c.what;
        EXPECT_EQ(0, load("ALL_FEAT_A_OPKIND_CATEG=1\n")) << c.what;
    }
    std::filesystem::remove("folder.conf");
}

TEST_F(CollectorConfigTest, APrefixMayBeEmpty)
{
    ASSERT_EQ(0, load("ALL__A_OPKIND_CATEG=1\nALL__B_OPKIND_CATEG=1\nALL__A_MSG_READ-WHEN=POLL\n"
                      "ALL__A_MSG_GROUP=B\nALL__B_OPKIND_CATEG=2\n"));
    EXPECT_EQ(Names({"ALL__A"}), messages("ALL", "", {"POLL"}));
    EXPECT_EQ(Names({"_A_OPKIND", "_B_OPKIND"}), operationsOf(message("ALL", "")));
}

// Files are read in blocks.
TEST_F(CollectorConfigTest, LinesOfAnyLengthKeepTheirText)
{
    std::string lines = "ALL_FEAT_A_MSG_READ-WHEN=POLL\n";
    Settings expected;
    for (std::size_t i = 0; i < 3000; ++i) {
        const std::string key = "K" + std::to_string(i);
        expected.emplace_back("FEAT_A_" + key, std::string(i == 1500 ? 300000 : i % 97, i == 50 ? '\0' : 'x'));
        lines += "ALL_FEAT_A_CONSTANT_" + key + "=" + expected.back().second + (i % 2 == 0 ? "\n" : "  # y\r\n");
    }
    lines.pop_back();    // the last line has no end
    ASSERT_EQ(0, load(lines));
    const InputMsg& constants = message("ALL", "FEAT");
    ASSERT_EQ(1u, constants.getOperationCount());
    EXPECT_EQ(expected, settingsOf(*constants.begin()));
}

}    // namespace

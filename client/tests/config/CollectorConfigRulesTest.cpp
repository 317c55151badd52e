#include "support/CollectorConfig.h"
#include "support/DoorGuard.h"
#include "support/RecordingConsole.h"

#include <string>
#include <vector>

using namespace pwr;

namespace {

// What a failing line leaves in the log and on the standard error stream.
class CollectorConfigRulesTest : public test::CollectorConfig {
protected:
    CollectorConfigRulesTest() { m_door->console = &m_console; }

    // The rules that the log names, from the inside out.
    std::string failedRules() const
    {
        const std::string begin = "WARNING: ERROR calling function \"";
        std::string rules;
        for (std::size_t at = 0; (at = m_log.debug().find(begin, at)) != std::string::npos;) {
            at += begin.size();
            rules += m_log.debug().substr(at, m_log.debug().find('"', at) - at) + " ";
        }
        return rules;
    }

    // Loads the lines, of which the last fails.
    void fail(const std::string& lines)
    {
        m_log.clear();
        m_console.text.clear();
        EXPECT_EQ(-1, load(lines)) << lines;
    }

    test::RecordingConsole m_console;
    test::DoorGuard m_door;
};

TEST_F(CollectorConfigRulesTest, AFailingRuleSaysWhatIsWrongAndLeavesTheChainOfItsCallers)
{
    constexpr const char* MODEL = "modelRule platformSub ";
    constexpr const char* METRIC = "metricRule platformSub ";
    constexpr const char* TAG = "tagSub metricRule platformSub ";
    constexpr const char* MSG = "msgSub tagSub metricRule platformSub ";
    const struct {
        const char* line;
        const char* rules;
        const char* callers;
        const char* text = "";    // what is wrong
    } cases[] = {
        {"-X_FEAT_A_MSG_ID=1", "platformRule", ""},
        {"_FEAT_A_MSG_ID=1", "platformRule", ""},
        {"-_FEAT_A_MSG_ID=1", "platformRule", ""},
        {"X_MODEL_FMS_CONST_VALUE=6.1", "modelFMSRule", MODEL},
        {"X_MODEL_FMS_CONSTANT_RANGE=6.1", "modelFMSRule", MODEL},
        {"ALL_MODEL_FMS_CONSTANT_VALUE=6.1", "modelFMSRule", MODEL,
         "1ERROR: ERROR: \"ALL\" is NOT allowed to have \"FMS\" as a model specifier!\n"},
        {"X_MODEL_FMS_CONSTANT_VALUE=6.1,,6.2", "fmsValue fmsValues modelFMSRule", MODEL},
        {"X_MODEL_PCI_CONSTANT_X=y", "modelPCIRule", MODEL},
        {"X_MODEL_PCI_CONSTANT_VALUE=VENDOR=1", "pciValue modelPCIRule", MODEL,
         "\nERROR: Invalid syntax for \"PCI\" model specifier\n"},
        {"X_MODEL_PCI_CONSTANT_VALUE=VENDOR=0x1,DEVICE=0x0", "pciValue modelPCIRule", MODEL,
         "1ERROR: Invalid version and/or device passed to PCI specifier\n"},
        {"X_MODEL_PCI_CONSTANT_VALUE=VENDOR=0x0,DEVICE=0x1", "pciValue modelPCIRule", MODEL,
         "1ERROR: Invalid version and/or device passed to PCI specifier\n"},
        {"X_MODEL_PMT_CONSTANT_VALUE=1", "PMTValue modelPMTRule", MODEL,
         "\nERROR: Invalid syntax for \"PMT\" GUID specifier\n"},
        {"X_MODEL_PMT_CONSTANT_VALUE=GUID=0x0", "PMTValue modelPMTRule", MODEL,
         "1ERROR: Invalid version and/or device passed to PMT specifier\n"},
        {"X_MODEL_1_CONSTANT_VALUE=y", "tag modelOtherRule", MODEL},
        {"X_MODEL__CONSTANT_VALUE=y", "tag modelOtherRule", MODEL},
        {"X_MODEL_CORES_CONST_VALUE=4", "modelSpec modelOtherRule", MODEL},
        {"X_MODEL_CORES_CONSTANT_LIST=4", "modelSpec modelOtherRule", MODEL},
        {"X_MODEL_CORES_CONSTANT_RANGE=4", "modelRangeSub modelRange modelSpec modelOtherRule", MODEL},
        {"X_MODEL_CORES_CONSTANT_RANGE=4,x", "modelRangeSub modelRange modelSpec modelOtherRule", MODEL},
        {"X_MODEL_CORES_CONSTANT_RANGE=", "modelRangeSub modelRange modelSpec modelOtherRule", MODEL},
        {"ALL_FEAT_CAPABILITY_COLOR_VALUE=x", "capSub capRule", METRIC},
        {"ALL_FEAT_CAPABILITY_COMMAND-LINE_TEXT=x", "capSubCmdline capSub capRule", METRIC},
        {"ALL_FEAT_CAPABILITY_HELP-STRING_value=x", "capSubHelp capSub capRule", METRIC},
        {"ALL_FEAT_CAPABILITY_GROUP_VALUE =x", "capSubGroup capSub capRule", METRIC,
         "\nWARNING: invalid token VALUE ; expected \"VALUE\"\n"},
        {"ALL_FEAT_CAPABILITY_HIDDEN_VALUE= yes", "capSubHidden capSub capRule", METRIC,
         "\nWARNING: invalid value yes passed to \"HIDDEN\" attribute; must be one of \"TRUE\" or \"FALSE\"\n"},
        {"ALL_FEAT_INHERIT_MODE_VALUE=extend", "inheritValue inheritMode inheritSub inheritRule", METRIC,
         "\nERROR: Invalid \"inherit\" value extend -- MUST be one of \"OVERRIDE\" or \"EXTEND\"\n"},
        {"ALL_FEAT_INHERIT_MODE_VALUE= EXTEND", "inheritValue inheritMode inheritSub inheritRule", METRIC},
        {"ALL_FEAT_INHERIT_MODE_WORD=EXTEND", "inheritMode inheritSub inheritRule", METRIC},
        {"ALL_FEAT_INHERIT_MODUS_VALUE=EXTEND", "inheritSub inheritRule", METRIC},
        {"ALL_FEAT_1A_MSG_ID=1", "tag", METRIC},
        {"ALL_FEAT__MSG_ID=1", "tag", METRIC},
        {"ALL_FEAT_A_MSG_COLOR=1", "msgSub", TAG},
        {"ALL_FEAT_A_MSG_ID=", "msgIDValue msgID", MSG},
        {"ALL_FEAT_A_MSG_ID= 7", "msgIDValue msgID", MSG},
        {"ALL_FEAT_A_MSG_READ-WHEN=BEGIN, POLL", "trigger triggers msgReadWhen", MSG},
        {"ALL_FEAT_A_MSG_READ-WHEN=BEGIN,,POLL", "trigger triggers msgReadWhen", MSG},
        {"ALL_FEAT_A_MSG_READ-WHEN=BEGIN=x", "trigger triggers msgReadWhen", MSG},
        {"ALL_FEAT_A_MSG_READ-WHEN-MAX-DETAIL=x", "trigger triggers msgReadWhenMaxDetail", MSG},
        {"ALL_FEAT_A_MSG_WRITE-WHEN=INIT,POLL", "trigger triggers msgWriteWhen", MSG},
        {"ALL_FEAT_A_MSG_WRITE-WHEN-MAX-DETAIL=poll", "trigger triggers msgWriteWhenMaxDetail", MSG},
        {"ALL_FEAT_A_MSG_READ-WHEN=NOTIFIER=", "notifierTrigger trigger triggers msgReadWhen", MSG},
        {"ALL_FEAT_A_MSG_READ-WHEN=TRACEPOINT", "traceTrigger trigger triggers msgReadWhen", MSG},
        {"ALL_FEAT_A_MSG_READ-WHICH-CPU=SOME", "readWriteCPU msgReadWhere", MSG},
        {"ALL_FEAT_A_MSG_WRITE-WHICH-CPU=", "readWriteCPU msgWriteWhere", MSG},
        {"ALL_FEAT_A_MSG_GROUP=B,,C", "name msgGroupList msgGroup", MSG},
        {"ALL_FEAT_A_MSG_GROUP=B,1", "name msgGroupList msgGroup", MSG},
        {"ALL_FEAT_A_OPKIND_CATEG=1\nALL_FEAT_B_OTHER_CATEG=1\nALL_FEAT_A_MSG_GROUP=B", "msgGroupList msgGroup", MSG,
         "1ERROR: ERROR appending messages ALL_FEAT_A and ALL_FEAT_B; CANNOT append messages if collectors are "
         "different!\n"},
        {"ALL_FEAT_A_MSG_READ-WHEN=POLL\nALL_FEAT_B_MSG_READ-WHEN=INIT\nALL_FEAT_A_MSG_GROUP=B",
         "msgGroupList msgGroup", MSG, "1ERROR: Msg ALL_FEAT_A and ALL_FEAT_B have incompatible read capabilities!\n"},
        {"ALL_FEAT_A_MSG_READ-WHEN-MAX-DETAIL=INIT\nALL_FEAT_B_MSG_READ-WHEN-MAX-DETAIL=POLL\nALL_FEAT_A_MSG_GROUP=B",
         "msgGroupList msgGroup", MSG,
         "1ERROR: Msg ALL_FEAT_A and ALL_FEAT_B have incompatible max-detail read capabilities!\n"},
        {"ALL_FEAT_A_OPKIND_CATEG=1\nALL_FEAT_B_OTHER_CATEG=1\nALL_FEAT_A_MSG_GROUP=C,B", "msgGroupList msgGroup", MSG,
         "\nWARNING: couldn't append message ALL_FEAT_B to message ALL_FEAT_A!\n"},
        {"ALL_FEAT_A_MSG_SOURCE=", "msgSourceRule msgSource", MSG},
        {"ALL_FEAT_A_MSG_SOURCE=B", "msgSourceRule msgSource", MSG,
         "\nWARNING: CANNOT source from non-existant msg B!\n"},
        {"ALL_FEAT_A_OPKIND_CATEG=1\nALL_FEAT_B_OPKIND_CATEG=1\nALL_FEAT_A_MSG_SOURCE=B", "msgSourceRule msgSource",
         MSG, "\nWARNING: CANNOT source to non-empty message ALL_FEAT_A!\n"},
        {"ALL_FEAT_A_OPKIND_CATEG=1\nALL_FEAT_B_OPKIND_CATEG=1\nALL_FEAT_A_MSG_GROUP=B\nALL_FEAT_C_MSG_SOURCE=B",
         "msgSourceRule msgSource", MSG,
         "\nWARNING: message ALL_FEAT_A cannot be sourced since it is part of a group!\n"},
        {"ALL_FEAT_A_NONE_CATEG=1", "hwMechRule", TAG, "1ERROR: ERROR: unknown collector type NONE\n"},
        {"ALL_FEAT_A__CATEG=1", "hwMechRule", TAG},
        {"ALL_FEAT_A_OPKIND_categ=1", "hwCatRule", TAG,
         "1ERROR: ERROR: unknown hardware category categ for operation OPKIND\n"},
        {"ALL_FEAT_A_OPKIND_CATEG=REFUSED", "directValue value", TAG,
         "\nWARNING: Couldn't add key CATEG, value REFUSED to operation FEAT_A_OPKIND\n"},
        {"ALL_FEAT_A_OPKIND_CATEG=1\nALL_FEAT_A_OTHER_CATEG=1", "hwMechRule", TAG,
         "1ERROR: Cannot add operation OTHER to message ALL_FEAT_A because the collectors are different!\n1ERROR: "
         "ERROR creating packet with key = ALL_FEAT_A_OTHER\n"},
        {"ALL_FEAT_A_OTHER_CATEG=1\nALL_FEAT_A_CONSTANT_C=1", "constantSub", TAG},
        {"ALL_FEAT_A_CONSTANT_C=1\nALL_FEAT_A_CONSTANT_C=2", "constantAnyValue constantAny constantSub", TAG,
         "\nERROR: key FEAT_A_C already set!\n"},
    };
    for (const auto& c : cases) {
        fail(c.line);
        EXPECT_EQ(std::string(c.rules) + " " + c.callers, failedRules()) << c.line;
        const std::string logged = "\n" + m_log.debug() + "\n" + m_log.errors();
        EXPECT_NE(std::string::npos, logged.find(c.text)) << c.line << logged;
        const std::string lines = c.line;
        const std::string last = lines.substr(lines.rfind('\n') + 1);
        EXPECT_TRUE(m_log.contains("1ERROR: ERROR parsing line " + last + "\n0FATAL: ERROR parsing config file "))
            << last;
    }
}

TEST_F(CollectorConfigRulesTest, AnFmsEntryThatCannotBeReadIsAnException)
{
    fail("X_MODEL_FMS_CONSTANT_VALUE=6.1, 6.x ,6.2");
    EXPECT_EQ("1ERROR: EXCEPTION CAUGHT: ERROR: 6.x is NOT a valid FMS specifier!\n"
              "0FATAL: ERROR parsing config file CollectorConfigRulesTest0.conf!\n",
              m_log.errors());
}

TEST_F(CollectorConfigRulesTest, TheErrorStreamNamesTheFileAndWhatTheLogDoesNot)
{
    fail("ALL_FEAT_A_CONSTANT_C=1\nALL_FEAT_A_CONSTANT_C= 2 \n");
    EXPECT_EQ("Couldn't add key FEAT_A_C, value 2\nERROR parsing config file CollectorConfigRulesTest0.conf\n",
              m_console.text);
    fail("ALL_FEAT_A_MSG_READ-WHEN=POLL\nALL_FEAT_A_MSG_WRITE-WHEN=POLL\n");
    EXPECT_EQ("Commands are not compatible!\nERROR parsing config file CollectorConfigRulesTest1.conf\n",
              m_console.text);
}

// Triggers test the operations that are there; one that was asked before is asked again after a setting.
TEST_F(CollectorConfigRulesTest, ATriggerTestsEveryOperationOfTheMoment)
{
    const std::string readable = "ALL_FEAT_A_OPKIND_CATEG=1\nALL_FEAT_A_MSG_READ-WHEN=POLL\n";
    EXPECT_EQ(0, load(readable + "ALL_FEAT_A_OPKIND_CATEG=WRITE-ONLY\n"));
    EXPECT_EQ(0, load(readable + "ALL_FEAT_B_OPKIND_CATEG=WRITE-ONLY\nALL_FEAT_A_MSG_GROUP=B\n"));
    for (const char* line : {"ALL_FEAT_A_OPKIND_CATEG=WRITE-ONLY\nALL_FEAT_A_MSG_READ-WHEN=POLL\n",
                             "ALL_FEAT_B_OPKIND_CATEG=WRITE-ONLY\nALL_FEAT_A_MSG_GROUP=B\n"
                             "ALL_FEAT_A_MSG_READ-WHEN=POLL\n"}) {
        fail(readable + line);
        EXPECT_EQ(0u, m_console.text.find("Commands are not compatible!\n")) << line;
    }
}

TEST_F(CollectorConfigRulesTest, DebugLoggingOfTheParserShowsInheritAndHiddenLines)
{
    m_log.environment().setVerbosity(0);
    m_log.environment().addPrefixForDebugLogging("config-parser");
    ASSERT_EQ(0, load("ALL_FEAT_INHERIT_MODE_VALUE=EXTEND\nALL_FEAT_CAPABILITY_HIDDEN_VALUE=False\n"));
    EXPECT_EQ("INFO: prefix = FEAT, inherit value = EXTEND\nINFO: HIDDEN attribute = False\n", m_log.debug());
}

TEST_F(CollectorConfigRulesTest, AFileCutAnywhereLoadsOrSaysWhyNot)
{
    const std::string whole = test::WHOLE_LANGUAGE;
    int loaded = 0;
    for (std::size_t size = 0; size <= whole.size(); ++size) {
        m_log.clear();
        m_console.text.clear();
        const int result = load(whole.substr(0, size));
        loaded += result == 0 ? 1 : 0;
        const bool isFailureTold = m_log.errors().find("0FATAL: ") != std::string::npos;
        EXPECT_EQ(result != 0, isFailureTold) << whole.substr(0, size);
        EXPECT_EQ(result == 0, (m_log.errors() + m_console.text).empty()) << whole.substr(0, size);
    }
    EXPECT_GT(loaded, 20);
    EXPECT_EQ(0, load(whole));
}

}    // namespace

#include "usage/UsageText.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

using namespace pwr::usage;
using nlohmann::json;

namespace {

// As a printer of help text sees the tables, with nothing changed at the end.
class UsageTextTest : public testing::Test, protected UsageText {
protected:
    ~UsageTextTest() override
    {
        s_IndividualFeatureOptions = m_features;
        s_ltrDevices.clear();
    }

    static json argsOf(const char* feature)
    {
        json j;
        appendArgsJson(j, Option(feature, "", TabLevel::LEVEL_1));
        return j;
    }

    // The valid arguments of the feature's first sub-option.
    static json validArgsOf(const char* feature) { return argsOf(feature)[feature]["options"].front()["valid args"]; }

    const std::map<std::string, std::vector<Option>> m_features = s_IndividualFeatureOptions;
};

std::string namesOf(const std::vector<Option>& options)
{
    std::string names;
    for (const Option& option : options)
        names += option.getName() + option.getAttribute(Option::Attribute::ABBREVIATION) + " ";
    return names;
}

TEST_F(UsageTextTest, CategoriesKeepTheOrderOfTheirOptions)
{
    EXPECT_EQ("General Options", m_category);
    EXPECT_EQ(3U, s_usageConstants.size());
    EXPECT_EQ("--help-h --version-v --log-l --print-fms --update-usage-consent --skip-usage-collection ",
              namesOf(s_usageConstants.at("General Options")));
    EXPECT_EQ("--input-i --output-o --result-r --no-post-processing ",
              namesOf(s_usageConstants.at("Post-processing Options")));
    EXPECT_EQ("--feature-f --max-detail-m --interval-n --output-o --program-p --startdelay-s --time-t "
              "--auto-connected-standby-z --program-delay --polling ",
              namesOf(s_usageConstants.at("Collection Options")));
}

// The columns of the tables that a slip would shift.
TEST_F(UsageTextTest, JsonHasCategoriesOptionsAndAttributes)
{
    json j;
    formatJson(j);
    const struct {
        const char *category, *name, *arg, *type, *units, *value;
    } cases[] = {
        {"Post-processing Options", "--output", "<filename>", "filename", "", ""},
        {"Post-processing Options", "--result", "<format>", "file format", "", "sum"},
        {"Collection Options", "--interval", "<milliseconds>", "time", "milliseconds", "100"},
        {"Collection Options", "--output", "<filename>", "filename", "", "QuorvaneOutput"},
    };
    for (const auto& c : cases) {
        const json& option = j[c.category][c.name];
        EXPECT_EQ((json{c.arg, c.type, c.units, c.value}),
                  (json{option["arg"], option["arg_type"], option["arg_units"], option["arg_default"]}))
            << c.name;
    }
    EXPECT_EQ("Specify output file name prefix [default \"QuorvaneOutput\"]",
              j["Collection Options"]["--output"]["description"]);
    EXPECT_EQ(R"({"abbreviation":"-h","alias":"help","arg":"","arg_default":"","arg_type":"","arg_units":"",)"
              R"("description":"Display text describing options and usage","name":"--help","normal name":"help",)"
              R"("notes":""})",
              j["General Options"]["--help"].dump());

    std::ofstream("usage.json") << j.dump(1);    // for the other reader, see CheckUsageJson.py
}

TEST_F(UsageTextTest, JsonNestsTheSubOptionsBesideTheFeaturesOwnKeys)
{
    json j;
    appendArgsJson(j, Option("--help", "", TabLevel::LEVEL_1));
    getIndividualFeatureOptions()["hollow"];
    appendArgsJson(j, Option("hollow", "", TabLevel::LEVEL_1));
    EXPECT_TRUE(j.is_null());

    const Option feature("pch-ip-active", "PCH", TabLevel::LEVEL_1);
    feature.formatJson(j);
    appendArgsJson(j, feature);
    EXPECT_EQ(11U, j["pch-ip-active"].size());
    EXPECT_EQ("PCH", j["pch-ip-active"]["description"]);
    const json& options = j["pch-ip-active"]["options"];
    EXPECT_EQ(2U, options.size());
    EXPECT_EQ("", options["pch-lvl"]["arg_default"]);
    EXPECT_EQ("5000", options["pch-int"]["arg_default"]);
    EXPECT_EQ((json{"1", "2", "3a", "3b", "3c", "3d", "4", "5"}), options["pch-lvl"]["valid args"]);
    EXPECT_FALSE(options["pch-int"].contains("valid args"));
}

TEST_F(UsageTextTest, AKnownChipExtendsTheIpsAtEachCall)
{
    const json plain = {"PCIE0", "PCIE1", "TBT0"};
    const json names = {"PCIE0", "PCIE1", "PCIE2", "PCIE3", "TBT0", "TBT1", "TBT2", "XHCI", "XDCI"};
    for (const char* chip : {"Unsupported", "Unknown", "", "narvane"}) {
        updateTcssIpInfo(chip);
        EXPECT_EQ(plain, validArgsOf("tcss-pm-dbg")) << chip;
    }
    json expected = plain;
    for (const char* chip : {"Narvane", "Narvane", "Tamrow"}) {
        updateTcssIpInfo(chip);
        expected.insert(expected.end(), names.begin(), names.end());
        EXPECT_EQ(expected, validArgsOf("tcss-pm-dbg")) << chip;
    }
    getIndividualFeatureOptions()["tcss-pm-dbg"].clear();
    updateTcssIpInfo("Narvane");
    getIndividualFeatureOptions().erase("tcss-pm-dbg");
    updateTcssIpInfo("Narvane");
    EXPECT_EQ(0U, getIndividualFeatureOptions().count("tcss-pm-dbg"));
}

TEST_F(UsageTextTest, DeviceNamesOfAChipAreThoseThatSomebodyFilledIn)
{
    updatePchDeviceInfo("Narvane");
    EXPECT_EQ((json{"SPA", "SPB", "SPC"}), validArgsOf("pch-ip-lat-limit"));
    s_ltrDevices = {{"Narvane", {"SPD"}}, {"Unsupported", {"SPE"}}};
    updatePchDeviceInfo("Narvane");
    updatePchDeviceInfo("Unsupported");
    EXPECT_EQ((json{"SPA", "SPB", "SPC", "SPD"}), validArgsOf("pch-ip-lat-limit"));
}

}    // namespace

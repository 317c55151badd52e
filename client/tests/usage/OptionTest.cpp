#include "usage/Option.h"

#include <gtest/gtest.h>

#include <cstring>
#include <sstream>
#include <string>
#include <vector>

using namespace pwr::usage;

namespace {

// As a printer of help text sees an option.
class HelpOption : public Option {
public:
    using Option::Option;
    HelpOption(const Option& option) : Option(option) {}

    using Option::descWidth;
    using Option::formatSubOption;
    using Option::formatWhitespace;
    using Option::getAlias;
    using Option::getNameColumnFormat;
    using Option::getTabString;
    using Option::init;
    using Option::nameWidth;
    using Option::stripChars;
    using Option::validArgs;
};

HelpOption makeOption(const std::string& name, const std::string& abbreviation)
{
    return HelpOption(name, "", abbreviation, "", "", "", "", {}, "", TabLevel::LEVEL_1);
}

std::string subOptionsOf(const char* feature)
{
    return HelpOption(feature, "", TabLevel::LEVEL_1).formatSubOption();
}

TEST(OptionTest, NamesAreMadeOfTheNameOrTheAbbreviation)
{
    const struct {
        const char *name, *abbreviation, *key, *normalName, *alias, *separator;
    } cases[] = {
        {"--max-detail", "-m", "--max-detail", "max detail", "maxdetail", ", "},
        {"--print-fms", "", "--print-fms", "print fms", "printfms", "    "},
        {"gbe-int", "", "gbe-int", "gbe int", "gbeint", ""},
        {"gbe-int", "-g", "gbe-int", "gbe int", "gbeint", ""},
        {"-a--b-", "", "-a--b-", "a  b", "ab", "    "},
        {"", "-z", "-z", "z", "z", ""},
        {"--", "", "--", "", "", "    "},
        {"", "", "", "", "", ""},
    };
    for (const auto& c : cases) {
        const HelpOption option = makeOption(c.name, c.abbreviation);
        EXPECT_EQ(c.key, option.getName()) << c.name;
        EXPECT_EQ(c.normalName, option.getNormalizedName()) << c.name;
        EXPECT_EQ(c.normalName, option.getAttribute(Option::Attribute::NORMAL_NAME)) << c.name;
        EXPECT_EQ(c.alias, option.getAlias()) << c.name;
        EXPECT_EQ(c.alias, option.getAttribute(Option::Attribute::ALIAS)) << c.name;
        EXPECT_EQ(c.separator, option.getNameColumnFormat()) << c.name;
    }
}

TEST(OptionTest, AnOptionSetUpAnewKeepsNothing)
{
    HelpOption option("old", "words", "-o", "<a>", "type", "unit", "1", {"1", "2"}, "note", TabLevel::LEVEL_2);
    EXPECT_EQ(20, option.nameWidth);
    EXPECT_EQ(60, option.descWidth);
    option.init("", "", "", "", "", "", "", {}, "", TabLevel::LEVEL_3);
    EXPECT_TRUE(option.validArgs.empty());
    EXPECT_EQ(25, option.nameWidth);
    EXPECT_EQ(55, option.descWidth);

    nlohmann::json emptied;
    option.formatJson(emptied);
    nlohmann::json made;
    Option().formatJson(made);
    EXPECT_EQ(made, emptied);
    EXPECT_EQ(1U, made.size());
    EXPECT_EQ(10U, made[""].size());
}

TEST(OptionTest, LevelsDecideTheIndentation)
{
    const struct {
        int level;
        std::string tabs;
        std::string line;
    } cases[] = {
        {1, "\t", "\tname" + std::string(21, ' ') + "|"},
        {2, "\t\t", "\t\tname" + std::string(16, ' ') + "|"},
        {3, "\t\t\t", "\t\t" + std::string(25, ' ') + "name|"},
        {4, "\t\t\t\t", "\t\t\t\tname" + std::string(21, ' ') + "|"},    // no level of ours
        {-1, "", "name" + std::string(21, ' ') + "|"},
    };
    for (const auto& c : cases) {
        const HelpOption option("name", "", static_cast<TabLevel>(c.level));
        EXPECT_EQ(c.tabs, option.getTabString()) << c.level;
        std::stringstream line;
        line.fill(c.level == 3 ? '*' : ' ');
        option.formatWhitespace(line);
        line << "name" << '|';
        EXPECT_EQ(c.line, line.str()) << c.level;
    }
}

TEST(OptionTest, OnlyTheTenAttributesHaveValues)
{
    const Option option("n", "d", "ab", "a", "t", "u", "v", {}, "o", TabLevel::LEVEL_1);
    std::string values;
    for (int i = -1; i <= 10; ++i)
        values += option.getAttribute(static_cast<Option::Attribute>(i)) + ";";
    EXPECT_EQ(";n;d;ab;n;a;v;u;t;o;n;;", values);
    EXPECT_EQ("abc", HelpOption::stripChars("-a/b-/c", {'-', '/'}));
}

TEST(OptionTest, ValidArgsAreAppendedInOrderAndKeptTwice)
{
    HelpOption option;
    option.appendValidArgs({"b", "a"});
    option.appendValidArgs(option.validArgs);
    EXPECT_EQ((std::vector<std::string>{"b", "a", "b", "a"}), option.validArgs);
    nlohmann::json j;
    option.formatJson(j);
    EXPECT_EQ((nlohmann::json{"b", "a", "b", "a"}), j[""]["valid args"]);
}

TEST(OptionTest, FeaturesListTheirSubOptionsLineByLine)
{
    const std::string indent = "\n\t\t" + std::string(25, ' ');
    const std::string note = indent + "  Note: interval values < default may reduce entry to low power states.";
    EXPECT_EQ(indent +
                  "--option gbe-int=<interval>; Wait time (milliseconds) between collecting GbE counters. "
                  "[default 1000]" +
                  note,
              subOptionsOf("pcie-lpm"));
    EXPECT_EQ(indent + "--option pch-lvl=<arg, arg, ...>; Specify additional groups of PCH IPs [default 1]" + indent +
                  "  Valid args: 1, 2, 3a, 3b, 3c, 3d, 4, 5" + indent +
                  "--option pch-int=<interval>; Wait time (milliseconds) between collecting PCH activity counters. "
                  "[default 5000]" +
                  note,
              subOptionsOf("pch-ip-active"));
    EXPECT_EQ(indent + "--option no-device-filter; Display all devices (turn off filtering)",
              subOptionsOf("acpi-dstate"));
    EXPECT_EQ("", subOptionsOf("--help"));
    EXPECT_EQ("", subOptionsOf("PCIE-LPM"));
}

TEST(OptionTest, JsonFillsNullAndObjectsAndRefusesOtherValues)
{
    const Option option("--log", "Save", TabLevel::LEVEL_1, "note");
    nlohmann::json j = {{"--log", {{"name", "old"}, {"options", 1}}}, {"--help", 2}};
    option.formatJson(j);
    EXPECT_EQ(R"({"--help":2,"--log":{"abbreviation":"","alias":"log","arg":"","arg_default":"","arg_type":"",)"
              R"("arg_units":"","description":"Save","name":"--log","normal name":"log","notes":"note","options":1}})",
              j.dump());

    for (nlohmann::json value : {nlohmann::json("text"), nlohmann::json::array(), nlohmann::json{{"--log", 7}}}) {
        const nlohmann::json before = value;
        try {
            option.formatJson(value);
            ADD_FAILURE() << before;
        } catch (const nlohmann::json::type_error& error) {
            EXPECT_NE(nullptr, std::strstr(error.what(), "cannot use operator[] with a string argument with "));
        }
        EXPECT_EQ(before, value);
    }
}

}    // namespace

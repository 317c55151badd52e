#include "Options.h"

#include "HelpText.h"
#include "ResultNames.h"

#include "usage/UsageText.h"

#include <algorithm>
#include <cstddef>
#include <gtest/gtest.h>
#include <iterator>
#include <set>
#include <sstream>

namespace {

using host::Options;
using pwr::usage::Option;
using Words = std::vector<std::string>;

Words wordsOf(const std::string& text)
{
    std::istringstream words(text);
    return {std::istream_iterator<std::string>(words), std::istream_iterator<std::string>()};
}

bool isTaken(const Words& arguments, std::string* error = nullptr)
{
    Options options;
    std::string fault;
    const bool isGood = host::parseOptions(arguments, options, fault);
    EXPECT_EQ(isGood, fault.empty());
    EXPECT_EQ(std::string::npos, fault.find('\n'));
    if (error != nullptr) *error = fault;
    return isGood;
}

TEST(OptionsTest, DefaultsMeasureEverythingUntilInterrupted)
{
    Options options;
    std::string error;
    ASSERT_TRUE(host::parseOptions({}, options, error));
    EXPECT_TRUE(options.features.empty() && options.results.empty() && options.program.empty());
    EXPECT_EQ(0.0, options.seconds + options.startDelaySeconds + options.programDelaySeconds);
    EXPECT_EQ(100u, options.intervalMs);
    EXPECT_EQ("QuorvaneOutput", options.output);
    EXPECT_EQ("", options.input + options.log + options.config + options.outputConfig + options.sysroot);
}

TEST(OptionsTest, EveryOptionIsTakenAndTheLastOfAKindWins)
{
    Options options;
    std::string error;
    Words words = wordsOf("-f cpu-load --feature cpu-idle --feature cpu-load --time 9 -t 0.25 -n 60000 -o --odd "
                          "-r csv,sum --result csv -s 0.5 -m -l log.txt --program-delay 0 --polling "
                          "--no-post-processing --skip-usage-collection --output-config a.conf --sysroot /tree "
                          "--config conf.d --list -h -v --print-fms --usage-json -p make -t");
    words.emplace_back();    // an empty argument of the program
    ASSERT_TRUE(host::parseOptions(words, options, error)) << error;
    EXPECT_EQ((Words{"cpu-load", "cpu-idle"}), options.features);
    EXPECT_EQ((Words{"csv", "sum"}), options.results);
    EXPECT_EQ((Words{"make", "-t", ""}), options.program);    // all behind it is the program's
    EXPECT_EQ(0.25, options.seconds);
    EXPECT_EQ(0.5, options.startDelaySeconds);
    EXPECT_EQ(60000u, options.intervalMs);
    EXPECT_EQ("--odd log.txt a.conf /tree conf.d", options.output + " " + options.log + " " + options.outputConfig +
                                                       " " + options.sysroot + " " + options.config);
    EXPECT_TRUE(options.list && options.help && options.version && options.printFms && options.usageJson &&
                options.maxDetail && options.noPostProcessing);
}

// What each option takes of: nothing, an empty text, a negative number, a huge one, a word.
TEST(OptionsTest, EachOptionTellsWhatItCanNotTake)
{
    const Words values = {"", "-1", "99999999999999999999", "abc"};
    const std::string huge = "99999999999999999999";
    const struct {
        Words names;
        std::string wants;    // empty: no argument at all
        std::set<std::string> good;
    } cases[] = {
        {{"--log", "-l"}, "a file", {"-1", huge, "abc"}},
        {{"--input", "-i"}, "a saved session", {"-1", huge, "abc"}},
        {{"--output", "-o"}, "the beginning of the files' names", {"-1", huge, "abc"}},
        {{"--result", "-r"}, "names of results, with a comma between two", {"-1", huge, "abc"}},
        {{"--feature", "-f"}, "the name of a feature", {"-1", huge, "abc"}},
        {{"--interval", "-n"}, "a whole number of milliseconds from 1 to 60000", {}},
        {{"--program", "-p"}, "a program, with its arguments behind it", {"-1", huge, "abc"}},
        {{"--startdelay", "-s"}, "a number of seconds from 0 to 1000000", {}},
        {{"--program-delay"}, "a number of seconds from 0 to 1000000", {}},
        {{"--time", "-t"}, "a number of seconds above 0 and up to 1000000", {}},
        {{"--config"}, "a folder", {"-1", huge, "abc"}},
        {{"--output-config"}, "a file", {"-1", huge, "abc"}},
        {{"--sysroot"}, "a folder", {"-1", huge, "abc"}},
        {{"--plugin-dir"}, "a folder", {"-1", huge, "abc"}},
        {{"--explain"}, "the name of a feature", {"-1", huge, "abc"}},
        {{"--trace"}, "a file that ends in .etl, which stands nowhere else in its path", {}},
        {{"--help", "-h"}, "", {}},
        {{"--version", "-v"}, "", {}},
        {{"--print-fms"}, "", {}},
        {{"--skip-usage-collection"}, "", {}},
        {{"--no-post-processing"}, "", {}},
        {{"--max-detail", "-m"}, "", {}},
        {{"--polling"}, "", {}},
        {{"--list"}, "", {}},
        {{"--quiet"}, "", {}},
        {{"--usage-json"}, "", {}},
    };
    std::string error;
    for (const auto& c : cases) {
        for (const std::string& name : c.names) {
            EXPECT_EQ(c.wants.empty(), isTaken({name}, &error)) << name;
            EXPECT_EQ(c.wants.empty() ? "" : name + " stands alone: give " + c.wants + " behind it", error);
            for (const std::string& value : values) {
                EXPECT_EQ(c.good.count(value) != 0, isTaken({name, value}, &error)) << name << " " << value;
                if (c.wants.empty()) {
                    const std::string kind =
                        value == "-1" ? "unknown option '-1'" : "unexpected argument '" + value + "'";
                    EXPECT_EQ(kind + ": --help lists the options", error);
                } else if (c.good.count(value) == 0) {
                    EXPECT_EQ(name + " can't take '" + value + "': give " + c.wants, error);
                }
            }
        }
    }
}

TEST(OptionsTest, NumbersHaveTheirLimits)
{
    for (const char* value : {"0", "nan", "inf", "1e99", "1000000.1", "3s", " 3", "-0"})
        EXPECT_FALSE(isTaken({"--time", value})) << value;
    for (const char* value : {"nan", "inf", "1e99", "-0", "1,5"})
        EXPECT_FALSE(isTaken({"--startdelay", value})) << value;
    for (const char* value : {"0", "1.5", " 5", "60001"})
        EXPECT_FALSE(isTaken({"--interval", value})) << value;
    for (const char* value : {",", "csv,", ",csv", "csv,,sum"})
        EXPECT_FALSE(isTaken({"--result", value})) << value;
    EXPECT_TRUE(isTaken({"--time", "1000000", "--startdelay", "0", "--interval", "1"}));
}

TEST(OptionsTest, WhatThisHostCanNotDoItSays)
{
    const struct {
        Words arguments;
        std::string error;
    } cases[] = {
        {{"--fast"}, "unknown option '--fast': --help lists the options"},
        {{"--list", "cpu-idle"}, "unexpected argument 'cpu-idle': --help lists the options"},
        {{"-z"}, "-z is not for this host: it can't put the system into connected standby"},
        {{"--auto-connected-standby"},
         "--auto-connected-standby is not for this host: it can't put the system into connected standby"},
        {{"--update-usage-consent"},
         "--update-usage-consent is not for this host: it collects no usage data that one could opt in to"},
        {{"-t", "3", "-i", "run.qvs"},
         "-t is about a collection, and --input processes one that was saved: give one of the two"},
        {{"--input", "run.qvs", "--no-post-processing"},
         "--no-post-processing is about a collection, and --input processes one that was saved: give one of the two"},
    };
    std::string error;
    for (const auto& c : cases) {
        EXPECT_FALSE(isTaken(c.arguments, &error));
        EXPECT_EQ(c.error, error);
    }
    EXPECT_TRUE(isTaken(wordsOf("-i run.qvs -o -t -r csv --output-config a -l b --plugin-dir c --print-fms")));
}

// The parser and the tool's description agree on each option.
class Described : public pwr::usage::UsageText {
public:
    static std::vector<Option> all()
    {
        std::vector<Option> options;
        for (const auto& [category, some] : s_usageConstants)
            options.insert(options.end(), some.begin(), some.end());
        return options;
    }
};

TEST(OptionsTest, EachDescribedOptionIsKnownByNameAndAbbreviation)
{
    for (const Option& option : Described::all()) {
        const bool hasArgument = !option.getAttribute(Option::Attribute::ARG).empty();
        for (const auto attribute : {Option::Attribute::NAME, Option::Attribute::ABBREVIATION}) {
            const std::string name = option.getAttribute(attribute);
            std::string error;
            if (name.empty()) continue;
            isTaken({name}, &error);
            EXPECT_FALSE(error.starts_with("unknown")) << name;
            EXPECT_EQ(hasArgument, error.find("stands alone") != std::string::npos) << name;
        }
    }
}

TEST(OptionsTest, TheHelpTellsAllInLinesThatFitTheConsole)
{
    for (const std::size_t width : {60u, 80u, 200u}) {
        const std::string help = host::helpText(width, host::resultOptions({}));
        std::istringstream lines(help);
        for (std::string line; std::getline(lines, line);) {
            EXPECT_LT(line.size(), width) << line;
            EXPECT_FALSE(line.ends_with(" ")) << line;
        }
        std::string words = help;    // as if no line were broken
        std::replace(words.begin(), words.end(), '\n', ' ');
        words.erase(std::unique(words.begin(), words.end(), [](char a, char b) { return a == ' ' && b == ' '; }),
                    words.end());
        std::vector<Option> options = Described::all();
        const std::vector<Option> own = host::hostOptions();
        const std::vector<Option> results = host::resultOptions({});
        options.insert(options.end(), own.begin(), own.end());
        options.insert(options.end(), results.begin(), results.end());
        for (const Option& option : options) {
            std::string text = option.getAttribute(Option::Attribute::DESCRIPTION);
            text.erase(std::unique(text.begin(), text.end(), [](char a, char b) { return a == ' ' && b == ' '; }),
                       text.end());
            EXPECT_NE(std::string::npos, words.find(text)) << option.getName();
            EXPECT_NE(std::string::npos, help.find("\n  " + option.getName())) << option.getName();
        }
    }
    const std::string help = host::helpText(80, host::resultOptions({}));
    for (const char* part : {"General Options:\n  --help, -h               Display text describing options and usage\n",
                             "  --program, -p <executable>\n                           Specify executable",
                             "\nHost Options:\n  --config     DIR         what is collected",
                             "\n  sum                      summary tables",
                             "\n  cpu-load                 busy percent of each logical processor\n",
                             "\n  acpi-dstate\n      --option no-device-filter; Display all devices (turn off "
                             "filtering)\n"})
        EXPECT_NE(std::string::npos, help.find(part)) << part;
    EXPECT_LT(help.find("Collection Options:"), help.find("Host Options:"));
}

}    // namespace

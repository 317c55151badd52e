#include "Options.h"

#include <gtest/gtest.h>

namespace {

using host::Options;

TEST(OptionsTest, DefaultsMeasureEverythingForThreeSeconds)
{
    Options options;
    std::string error;
    ASSERT_TRUE(host::parseOptions({}, options, error));
    EXPECT_TRUE(options.features.empty());
    EXPECT_EQ(3.0, options.seconds);
    EXPECT_EQ(100u, options.intervalMs);
    EXPECT_EQ("", options.output + options.config + options.outputConfig + options.sysroot);
    EXPECT_TRUE(options.results.empty());
    EXPECT_FALSE(options.list || options.help || options.quiet);
}

TEST(OptionsTest, EveryOptionIsTakenAndTheLastOfAKindWins)
{
    Options options;
    std::string error;
    ASSERT_TRUE(host::parseOptions({"--feature", "cpu-load", "--feature",       "cpu-idle", "--feature",  "cpu-load",
                                    "--time",    "9",        "--time",          "0.25",     "--interval", "60000",
                                    "--output",  "--odd",    "--output-config", "a.conf",   "--sysroot",  "/tree",
                                    "--config",  "conf.d",   "--list",          "--help",   "--result",   "html,csv",
                                    "--result",  "csv,prom", "--quiet"},
                                   options, error))
        << error;
    EXPECT_EQ((std::vector<std::string>{"cpu-load", "cpu-idle"}), options.features);
    EXPECT_EQ(0.25, options.seconds);
    EXPECT_EQ(60000u, options.intervalMs);
    EXPECT_EQ("--odd", options.output);
    EXPECT_EQ("a.conf", options.outputConfig);
    EXPECT_EQ("/tree", options.sysroot);
    EXPECT_EQ("conf.d", options.config);
    EXPECT_EQ((std::vector<std::string>{"html", "csv", "prom"}), options.results);
    EXPECT_TRUE(options.quiet);
    EXPECT_TRUE(options.list);
    EXPECT_TRUE(options.help);
}

TEST(OptionsTest, BadArgumentsGiveOneLineThatSaysWhatToDo)
{
    const std::string time = ": give a number of seconds above 0 and up to 1000000";
    const std::string interval = ": give a whole number of milliseconds from 1 to 60000";
    const std::string result = ": give csv, jsonl, trace, html or prom, with a comma between two";
    const struct {
        std::vector<std::string> arguments;
        std::string error;
    } cases[] = {
        {{"--fast"}, "unknown option '--fast': --help lists the options"},
        {{"-t", "3"}, "unknown option '-t': --help lists the options"},
        {{""}, "unexpected argument '': --help lists the options"},
        {{"--list", "cpu-idle"}, "unexpected argument 'cpu-idle': --help lists the options"},
        {{"--time"}, "--time stands alone: give a number of seconds above 0 and up to 1000000 behind it"},
        {{"--time", "abc"}, "--time can't take 'abc'" + time},
        {{"--time", "3s"}, "--time can't take '3s'" + time},
        {{"--time", ""}, "--time can't take ''" + time},
        {{"--time", "0"}, "--time can't take '0'" + time},
        {{"--time", "-1"}, "--time can't take '-1'" + time},
        {{"--time", "nan"}, "--time can't take 'nan'" + time},
        {{"--time", "inf"}, "--time can't take 'inf'" + time},
        {{"--time", "1e99"}, "--time can't take '1e99'" + time},
        {{"--interval", "0"}, "--interval can't take '0'" + interval},
        {{"--interval", "1.5"}, "--interval can't take '1.5'" + interval},
        {{"--interval", " 5"}, "--interval can't take ' 5'" + interval},
        {{"--interval", "60001"}, "--interval can't take '60001'" + interval},
        {{"--interval", "99999999999999999999"}, "--interval can't take '99999999999999999999'" + interval},
        {{"--feature", ""}, "--feature can't take '': give the name of a feature"},
        {{"--config", ""}, "--config can't take '': give a folder"},
        {{"--result", ""}, "--result can't take ''" + result},
        {{"--result", "csv,,html"}, "--result can't take 'csv,,html'" + result},
        {{"--result", "csv,"}, "--result can't take 'csv,'" + result},
        {{"--output", ""}, "--output can't take '': give the beginning of the files' names"},
    };
    for (const auto& c : cases) {
        Options options;
        std::string error;
        EXPECT_FALSE(host::parseOptions(c.arguments, options, error)) << c.error;
        EXPECT_EQ(c.error, error);
    }
}

}    // namespace

#include "HostFixture.h"
#include "system/ModuleFile.h"
#include "system/ProgramFolder.h"

#include "plugins/PluginEnvironment.h"

#include <filesystem>
#include <fstream>

namespace {

namespace fs = std::filesystem;

const std::string EXTENSION = host::ModuleFile::EXTENSION;

// A plugin folder of the test's own; modules are taken from those that the build made.
class ModulesTest : public test::HostFixture {
protected:
    ModulesTest() { fs::create_directories(folder); }

    void add(const std::string& module, const std::string& as = "") const
    {
        const fs::path built = fs::path(host::programFolder()) / ".." / "modules";
        fs::copy_file(built / (module + EXTENSION), pathOf(as.empty() ? module : as));
        const fs::path config = built / (module + ".conf");
        if (fs::exists(config)) fs::copy_file(config, fs::path(folder) / config.filename());
    }
    std::string pathOf(const std::string& module) const { return (fs::path(folder) / (module + EXTENSION)).string(); }
    std::string leftOut(const std::string& module) const
    {
        return "quorvane_host: " + fs::absolute(pathOf(module)).string() + " is left out: ";
    }

    int collect(Arguments more = {})
    {
        more.insert(more.begin(), {"--plugin-dir", folder, "--feature", "wave", "--output", path("run")});
        return measure(m_tree, more);
    }
    int process(Arguments more)
    {
        more.insert(more.begin(), {"--input", path("run.qvs"), "--output", path("again")});
        return run(more);
    }

    const std::string folder = path("modules");

private:
    const test::TreeCopy m_tree{"four-cores"};
};

// The records of one module's collector, the metric of another's plugin, and the writers of a third and of the host.
TEST_F(ModulesTest, CollectorMetricAndWriterOfModulesShareTheHostsState)
{
    for (const char* module : {"line_writer", "wave_collector", "wave_metric"})
        add(module);
    EXPECT_EQ(0, collect());
    EXPECT_EQ("", errors.str());
    EXPECT_NE(std::string::npos, out.str().find("Wave Summary - Sampled: Min/Max/Avg")) << out.str();
    const std::string summary = test::contentOf(path("run_summary.csv"));
    EXPECT_NE(std::string::npos, summary.find("Wave Summary - Sampled: Min/Max\n"));
    const std::string lines = test::contentOf(path("run_lines.txt"));
    EXPECT_NE(std::string::npos, lines.find("line: Wave Summary - Sampled: Min/Max: SYSTEM 10 ")) << lines;
    EXPECT_EQ(nullptr, g_pluginEnvironment);

    EXPECT_EQ(0, process({"--plugin-dir", folder}));
    EXPECT_EQ("", errors.str());
    EXPECT_EQ(summary, test::withoutLinesOf(test::contentOf(path("again_summary.csv")), "\"Post Processed "));
    EXPECT_EQ(lines, test::contentOf(path("again_lines.txt")));
    EXPECT_EQ(1, process({}));
    expectOnly(path("run.qvs") + " holds nothing that can be processed: these plugins are not here: "
                                 "8a1f6c0e-7d3b-4c52-9f10-3b5f1f2d7a02; give --plugin-dir the folder of their modules");

    EXPECT_EQ(0, run({"--plugin-dir", folder, "--list"}));
    EXPECT_NE(std::string::npos, out.str().find("wave ")) << out.str();
    EXPECT_NE(std::string::npos, out.str().find("a wave that is made up\n")) << out.str();
}

TEST_F(ModulesTest, WhatIsNoGoodModuleIsOneLineAndTheOthersAreLoaded)
{
    for (const char* module : {"no_entry", "other_abi", "fails", "throws", "throws_own", "gives_null", "same_uuid",
                               "same_name", "own_name", "no_name", "line_writer", "wave_collector", "wave_metric"})
        add(module);
    add("wave_metric", "again");    // in front of the one that it is a copy of
    std::ofstream(pathOf("text")) << "no module at all\n";
    std::ofstream(pathOf("text") + ".txt") << "nobody looks at this\n";
    fs::create_directories(pathOf("folder"));

    EXPECT_EQ(0, collect()) << errors.str();
    const std::string there = "its plugin 8a1f6c0e-7d3b-4c52-9f10-3b5f1f2d7a02 is there already, from " +
                              fs::absolute(pathOf("again")).string() + "\n";
    const std::string expected[] = {
        leftOut("fails") + "its entry failed with 7\n",
        leftOut("gives_null") + "its entry gave no plugin\n",
        leftOut("no_entry") + "it has no entry quorvane_module\n",
        leftOut("no_name") +
            "its writer 8a1f6c0e-7d3b-4c52-9f10-3b5f1f2d7a99 has no capability with a name for --result\n",
        leftOut("other_abi") + "it was built for ABI " + std::to_string(QUORVANE_ABI + 1) + ", this program for " +
            std::to_string(QUORVANE_ABI) + "\n",
        leftOut("own_name") + "its result 'csv' is named like one of the host's own\n",
        leftOut("same_name") + "its result 'lines' is there already, from " +
            fs::absolute(pathOf("line_writer")).string() + "\n",
        leftOut("same_uuid") + there,
        leftOut("text") + "it can't be loaded: ",
        leftOut("throws") + "its entry threw: no wish to go on\n",
        leftOut("throws_own") + "its entry threw: a trouble of its own\n",
        leftOut("wave_metric") + there,
    };
    const std::string text = errors.str();
    std::size_t at = 0;
    for (const std::string& line : expected) {
        EXPECT_EQ(at, text.find(line, at)) << line << text;
        at = text.find('\n', at) + 1;
    }
    EXPECT_EQ(text.size(), at) << text;
    EXPECT_NE(std::string::npos, out.str().find("Wave Summary")) << out.str();
}

TEST_F(ModulesTest, AWriterTakesPartWhenItIsNamedOrNothingIs)
{
    for (const char* module : {"line_writer", "wave_collector", "wave_metric"})
        add(module);
    const std::string lines = path("run_lines.txt");
    EXPECT_EQ(0, collect({"--result", "lines"})) << errors.str();
    EXPECT_TRUE(out.str().ends_with(", files: " + lines + ", " + path("run.qvs") + "\n")) << out.str();
    EXPECT_FALSE(fs::exists(path("run_summary.csv")));
    fs::remove(lines);
    EXPECT_EQ(0, collect({"--result", "sum"})) << errors.str();
    EXPECT_FALSE(fs::exists(lines));

    fs::create_directory(lines);
    const std::string fault = "quorvane_host: the output of the result 'lines' could not be opened: ";
    EXPECT_EQ(1, collect({"--result", "sum,lines"}));
    EXPECT_EQ(fault + "give --output a prefix that can be written\n", errors.str());
    EXPECT_EQ(0, collect());
    EXPECT_EQ(fault + "it is left out\n", errors.str());

    EXPECT_EQ(2, collect({"--result", "lines,tea"}));
    expectOnly("there is no result 'tea': give --result some of sum, csv, jsonl, trace, html, prom, lines");
    EXPECT_EQ(0, run({"--plugin-dir", folder, "--help"}));
    EXPECT_NE(std::string::npos, out.str().find("\n  lines                    tables as plain lines, in "
                                                "PREFIX_lines.txt\n"))
        << out.str();
}

TEST_F(ModulesTest, AFeatureWithoutMessagesIsNotOffered)
{
    add("wave_metric");    // and nobody who reads waves
    EXPECT_EQ(1, collect());
    EXPECT_TRUE(errors.str().starts_with("quorvane_host: this machine does not offer 'wave', which requires messages: "
                                         "there is none of WAVE for "))
        << errors.str();
}

TEST_F(ModulesTest, AFolderThatIsNotThereEndsTheRun)
{
    for (const Arguments& arguments : {Arguments{}, Arguments{"--input", path("run.qvs")}}) {
        Arguments all{"--plugin-dir", "/no/such/folder"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        EXPECT_EQ(1, run(all));
        expectOnly("there is no folder /no/such/folder: give --plugin-dir one that holds modules");
    }
}

}    // namespace

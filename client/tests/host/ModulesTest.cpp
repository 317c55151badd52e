#include "Host.h"
#include "TreeCopy.h"
#include "system/ModuleFile.h"
#include "system/ProgramFolder.h"

#include "plugins/PluginEnvironment.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

namespace {

namespace fs = std::filesystem;

const std::string EXTENSION = host::ModuleFile::EXTENSION;

// A plugin folder of the test's own; modules are taken from those that the build made.
class ModulesTest : public testing::Test {
protected:
    ModulesTest() { fs::create_directories(m_folder); }
    ~ModulesTest() override { fs::remove_all(m_folder); }

    void add(const std::string& module, const std::string& as = "") const
    {
        const fs::path built = fs::path(host::programFolder()) / ".." / "modules";
        fs::copy_file(built / (module + EXTENSION), pathOf(as.empty() ? module : as));
        const fs::path config = built / (module + ".conf");
        if (fs::exists(config)) fs::copy_file(config, fs::path(m_folder) / config.filename());
    }
    std::string pathOf(const std::string& module) const { return (fs::path(m_folder) / (module + EXTENSION)).string(); }
    std::string leftOut(const std::string& module) const
    {
        return "quorvane_host: " + fs::absolute(pathOf(module)).string() + " is left out: ";
    }

    int run(std::vector<std::string> more)
    {
        out.str("");
        errors.str("");
        more.insert(more.begin(), {"--sysroot", m_tree.root(), "--plugin-dir", m_folder, "--time", "0.3", "--interval",
                                   "50", "--feature", "wave"});
        return host::runHost(more, {out, errors});
    }

    std::ostringstream out;
    std::ostringstream errors;

private:
    const std::string m_folder = test::freshPath("modules");
    const test::TreeCopy m_tree{"four-cores"};
};

// The records of one module's collector, the metric of another's plugin, and the writers of a third and of the host.
TEST_F(ModulesTest, CollectorMetricAndWriterOfModulesShareTheHostsState)
{
    for (const char* module : {"line_writer", "wave_collector", "wave_metric"})
        add(module);
    const std::string prefix = test::freshPath("run");
    EXPECT_EQ(0, run({"--output", prefix})) << errors.str();
    EXPECT_EQ("", errors.str());
    EXPECT_NE(std::string::npos, out.str().find("Wave Summary - Sampled: Min/Max/Avg")) << out.str();
    EXPECT_NE(std::string::npos, test::contentOf(prefix + "_summary.csv").find("Wave Summary - Sampled: Min/Max\n"));
    const std::string lines = test::contentOf(prefix + "_lines.txt");
    EXPECT_NE(std::string::npos, lines.find("line: Wave Summary - Sampled: Min/Max: SYSTEM 10 ")) << lines;
    EXPECT_EQ(nullptr, g_pluginEnvironment);
    for (const char* file : {"_summary.csv", "_lines.txt", "_wave.csv"})
        fs::remove(prefix + file);

    EXPECT_EQ(0, run({"--list"}));
    EXPECT_NE(std::string::npos, out.str().find("wave ")) << out.str();
    EXPECT_NE(std::string::npos, out.str().find("a wave that is made up\n")) << out.str();
}

TEST_F(ModulesTest, WhatIsNoGoodModuleIsOneLineAndTheOthersAreLoaded)
{
    for (const char* module : {"no_entry", "other_abi", "fails", "throws", "throws_own", "gives_null", "same_uuid",
                               "wave_collector", "wave_metric"})
        add(module);
    add("wave_metric", "again");    // in front of the one that it is a copy of
    std::ofstream(pathOf("text")) << "no module at all\n";
    std::ofstream(pathOf("text") + ".txt") << "nobody looks at this\n";
    fs::create_directories(pathOf("folder"));

    EXPECT_EQ(0, run({})) << errors.str();
    const std::string there = "its plugin 8a1f6c0e-7d3b-4c52-9f10-3b5f1f2d7a02 is there already, from " +
                              fs::absolute(pathOf("again")).string() + "\n";
    const std::string expected[] = {
        leftOut("fails") + "its entry failed with 7\n",
        leftOut("gives_null") + "its entry gave no plugin\n",
        leftOut("no_entry") + "it has no entry quorvane_module\n",
        leftOut("other_abi") + "it was built for ABI " + std::to_string(QUORVANE_ABI + 1) + ", this program for " +
            std::to_string(QUORVANE_ABI) + "\n",
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

TEST_F(ModulesTest, AFeatureWithoutMessagesIsNotOffered)
{
    add("wave_metric");    // and nobody who reads waves
    EXPECT_EQ(1, run({}));
    EXPECT_TRUE(errors.str().starts_with("quorvane_host: this machine does not offer 'wave', which requires messages: "
                                         "there is none of WAVE for "))
        << errors.str();
}

TEST_F(ModulesTest, AFolderThatIsNotThereEndsTheRun)
{
    std::ostringstream ignored;
    EXPECT_EQ(1, host::runHost({"--plugin-dir", "/no/such/folder"}, {ignored, errors}));
    EXPECT_EQ("quorvane_host: there is no folder /no/such/folder: give --plugin-dir one that holds modules\n",
              errors.str());
}

}    // namespace

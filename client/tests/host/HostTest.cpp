#include "ConfigFiles.h"
#include "HostFixture.h"
#include "support/LogCapture.h"
#include "system/ProgramFolder.h"

#include "config/OutputConfig.h"
#include "record/SystemMetadata.h"

#include <chrono>
#include <csignal>
#include <nlohmann/json.hpp>

namespace {

namespace fs = std::filesystem;
using test::bodyOf;

using HostTest = test::HostFixture;

TEST_F(HostTest, HelpVersionAndBadArguments)
{
    EXPECT_EQ(0, run({"--help"}));
    EXPECT_NE(std::string::npos, out.str().find("  --sysroot     DIR  "));
    EXPECT_EQ(0, run({"--version"}));
    EXPECT_TRUE(out.str().starts_with("quorvane_host 0.")) << out.str();
    EXPECT_EQ(3, countLines(out.str()));
    EXPECT_EQ(0, run({"--usage-json"}));
    EXPECT_EQ("-h", nlohmann::json::parse(out.str())["General Options"]["--help"]["abbreviation"]);
    const test::TreeCopy tree("four-cores");
    EXPECT_EQ(0, run({"--print-fms", "--sysroot", tree.root()}));
    EXPECT_EQ("0x6.0x4d.0x2\n", out.str());
    EXPECT_EQ("", errors.str());

    EXPECT_EQ(2, run({"--nonsense"}));
    expectOnly("unknown option '--nonsense': --help lists the options");
}

TEST_F(HostTest, TheConsoleOutputIsKeptInTheLog)
{
    const test::TreeCopy tree("four-cores");
    EXPECT_EQ(0, measure(tree, {"--feature", "temperature", "--output", path("run"), "--log", path("console.log")}));
    EXPECT_NE(std::string::npos, out.str().find("Temperature Summary"));
    EXPECT_EQ(out.str(), test::contentOf(path("console.log")));
    EXPECT_EQ(1, measure(tree, {"--log", tree.root()}));
    expectOnly(tree.root() + " can't be written: give --log a file");
}

TEST_F(HostTest, AProgramIsStartedFirst)
{
    const test::TreeCopy tree("four-cores");
    EXPECT_EQ(1, measure(tree, {"--output", path("run"), "--program", "/no/such/program", "-t"}));
    EXPECT_TRUE(errors.str().starts_with("quorvane_host: /no/such/program could not be started: ")) << errors.str();
#ifndef _WIN32
    EXPECT_EQ(0, measure(tree, {"--feature", "temperature", "--output", path("run"), "--program-delay", "0.01",
                                "--startdelay", "0.01", "-p", "sh", "-c", "echo \"$1\" > " + path("said"), "-", "a b"}))
        << errors.str();
    EXPECT_EQ("a b\n", test::contentOf(path("said")));
#endif
}

TEST_F(HostTest, TheListTellsWhatIsOfferedAndWhyNot)
{
    const test::TreeCopy tree("no-idle");
    EXPECT_EQ(0, run({"--sysroot", tree.root(), "--list"}));
    const std::string missing = "                  not offered here: requires ";
    EXPECT_EQ("cpu-idle          time of each logical processor in each idle state, and active\n" + missing +
                  "idle states: there is no " + tree.root() +
                  "/sys/devices/system/cpu/cpu*/cpuidle/state*/time\n"
                  "cpu-load          busy percent of each logical processor\n"
                  "cpu-frequency     time of each logical processor at each frequency\n"
                  "context-switches  context switches of all processors\n"
                  "interrupts        hardware and software interrupts of all processors\n"
                  "processes         processes that start and end\n" +
                  missing + "processes: there is no " + tree.root() +
                  "/proc/*/stat\n"
                  "disk-io           bytes read from and written to each disk\n" +
                  missing + "disk counters: there is no " + tree.root() +
                  "/proc/diskstats\n"
                  "network-io        bytes received and sent by each network interface\n" +
                  missing + "interface counters: there is no " + tree.root() +
                  "/proc/net/dev\n"
                  "temperature       degrees of each thermal zone\n" +
                  missing + "thermal zones: there is no " + tree.root() + "/sys/class/thermal/thermal_zone*/temp\n",
              out.str());
    EXPECT_EQ("", errors.str());

    const test::TreeCopy partly("unreadable");
    EXPECT_EQ(0, run({"--sysroot", partly.root(), "--list"}));
    EXPECT_NE(std::string::npos, out.str().find("                  processor 1 is left out, since " + partly.root()));

    tree.remove("proc");    // and with it a kind of access
    EXPECT_EQ(0, run({"--sysroot", tree.root(), "--list"}));
    EXPECT_NE(std::string::npos,
              out.str().find("not offered here: requires processor times: there is no access to them on this machine"))
        << out.str();
}

TEST_F(HostTest, WhatCanNotBeMeasuredIsOneLineAndAStatus)
{
    const test::TreeCopy tree("no-idle");
    const test::TreeCopy bare("no-idle");
    bare.remove("proc");
    fs::create_directories(path("blocked_summary.csv"));
    fs::create_directories(path("unsaved.qvs"));
    const struct {
        Arguments arguments;
        int status;
        std::string line;
    } cases[] = {
        {{"--feature", "magic"}, 2, "there is no feature 'magic' here: --list tells the names"},
        {{"--feature", "cpu-load", "--feature", "temperature"},
         1,
         "this machine does not offer 'temperature', which requires thermal zones: there is no " + tree.root() +
             "/sys/class/thermal/thermal_zone*/temp: --list tells what it offers"},
        {{"--sysroot", "/no/such/folder"},
         1,
         "there is no folder /no/such/folder: give --sysroot one that holds sys and proc"},
        {{"--sysroot", bare.root()}, 1, "this machine offers no feature: --list tells why"},
        {{"--config", path("none")},
         1,
         "there is no folder " + path("none") + ": give --config one that holds *.conf files"},
        {{"--config", tree.root() + "/etc"},
         1,
         tree.root() + "/etc holds no collector configuration: give --config a folder with *.conf files"},
        {{"--output-config", path("none.conf")}, 1, path("none.conf") + " can't be read: give --output-config a file"},
        {{"--result", "csv,pdf", "--output", path("run")},
         2,
         "there is no result 'pdf': give --result some of sum, csv, jsonl, trace, html, prom"},
        {{"--output-config", tree.root()}, 1, tree.root() + " can't be read: give --output-config a file"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.status, measure(tree, c.arguments)) << c.line;
        expectOnly(c.line);
    }
    for (const char* file : {"blocked_summary.csv", "unsaved.qvs"}) {
        const std::string prefix = path(file).substr(0, path(file).find_first_of("_.", path("").size()));
        EXPECT_EQ(1, measure(tree, {"--output", prefix}));
        EXPECT_TRUE(errors.str().starts_with("quorvane_host: " + path(file) + " can't be written")) << errors.str();
        EXPECT_TRUE(errors.str().ends_with(": give --output a prefix that can be written\n")) << errors.str();
        EXPECT_TRUE(hasOneComplaint()) << errors.str();
    }
}

TEST_F(HostTest, ABadOutputConfigurationEndsTheRun)
{
    const test::TreeCopy tree("no-idle");
    tree.write("bad.conf", "ALL_CPU-LOAD_LOAD_MIN-MAX_COLOR=red\n");
    EXPECT_EQ(1, measure(tree, {"--output-config", tree.root() + "/bad.conf"}));
    EXPECT_NE(std::string::npos, errors.str().find("ALL_CPU-LOAD_LOAD_MIN-MAX_COLOR=red"));
    EXPECT_NE(std::string::npos,
              errors.str().find("bad.conf is no good output configuration: the line before says where\n"));
}

// All files of the folder, but the output configurations.
TEST_F(HostTest, TheConfigurationOfAFolderIsTakenInstead)
{
    const test::TreeCopy tree("four-cores");
    tree.write("c/20-more.conf", "ALL_TEMPERATURE_UNITS_CONSTANT_PER-DEGREE=100\n");
    tree.write("c/10-first.conf", "ALL_TEMPERATURE_CAPABILITY_HELP-STRING_VALUE=what is felt\n"
                                  "ALL_TEMPERATURE_CAPABILITY_COMMAND-LINE_VALUE=heat\n"
                                  "ALL_TEMPERATURE_ZONES_SYSFS_PATH=/sys/class/thermal/thermal_zone*/temp\n"
                                  "ALL_TEMPERATURE_ZONES_MSG_READ-WHEN=BEGIN,POLL\n"
                                  "ALL_CPU-LOAD_CAPABILITY_HIDDEN_VALUE=TRUE\n");
    tree.write("c/output.conf", "no collector configuration\n");
    tree.write("c/mine.conf", "ALL_TEMP_ALL-THERMAL-DATA_MIN-MAX-AVG_TITLE=Heat\n");
    tree.write("c/notes.txt", "no configuration at all\n");
    const std::string folder = tree.root() + "/c";
    EXPECT_EQ(0, measure(tree, {"--config", folder, "--output-config", folder + "/mine.conf", "--feature", "heat",
                                "--output", path("run")}))
        << errors.str();
    EXPECT_NE(std::string::npos, test::contentOf(path("run_summary.csv")).find("thermal_zone0,278,278,278.00"))
        << test::contentOf(path("run_summary.csv"));

    EXPECT_EQ(0,
              run({"--sysroot", tree.root(), "--config", folder, "--output-config", folder + "/mine.conf", "--list"}));
    EXPECT_TRUE(out.str().starts_with(
        "cpu-idle          time of each logical processor in each idle state, and active\n"
        "                  not offered here: requires idle states: there is no access to them on this machine (no "
        "message of CPU-IDLE for ALL=ALL)\n"
        "cpu-frequency "))
        << out.str();
    EXPECT_TRUE(out.str().ends_with("\ntemperature       what is felt\n")) << out.str();
}

TEST_F(HostTest, ABrokenConfigurationEndsTheRunAndSaysWhere)
{
    const test::TreeCopy tree("four-cores");
    const struct {
        const char* text;
        const char* part;
    } cases[] = {
        {"ALL_CPU-LOAD_TIMES_PROCFS_PATH=/sys/stat\n", "ALL_CPU-LOAD_TIMES_PROCFS_PATH=/sys/stat"},
        {"ALL_CPU-LOAD_TIMES_PROCFS_PATH=/proc/../etc/passwd\n", "ERROR parsing line"},
        {"ALL_CPU-LOAD_TIMES_PROCFS_FIELD=c*u*\n", "ERROR parsing line"},
        {"ALL_CPU-LOAD_TIMES_PROCFS_LEAST=17\n", "ERROR parsing line"},
        {"ALL_DISK-IO_SECTORS_PROCFS_NAME=0\n", "ERROR parsing line"},
        {"ALL_DISK-IO_SECTORS_PROCFS_NAME=9\n", "ERROR parsing line"},
        {"ALL_DISK-IO_SECTORS_PROCFS_WITHIN=/proc/block\n", "ERROR parsing line"},
        {"ALL_DISK-IO_SECTORS_PROCFS_DECIMALS=10\n", "ERROR parsing line"},
        {"ALL_PROCESSES_LIST_PROCESSES_FIELD=SOME\n", "ERROR parsing line"},
        {"ALL_CPU-IDLE_TIMES_SYSFS_PATH=/sys/*/*/*/*/*\n", "ERROR parsing line"},
        {"ALL_CPU-IDLE_TIMES_SYSFS_PATH=sys/a\n", "ERROR parsing line"},
        {"ALL_CPU-IDLE_TIMES_SYSFS_FIELD=PICTURE\n", "ERROR parsing line"},
        {"ALL_CPU-IDLE_TIMES_MAGIC_PATH=/sys/a\n", "unknown collector type MAGIC"},
        {"NEAR_CPU-IDLE_LABELS_CONSTANT_ACTIVE=On\n", "have not been defined: ALL"},
    };
    for (const auto& c : cases) {
        tree.write("c/a.conf", c.text);
        EXPECT_EQ(1, measure(tree, {"--config", tree.root() + "/c"})) << c.text;
        EXPECT_NE(std::string::npos, errors.str().find(c.part)) << errors.str();
        EXPECT_TRUE(errors.str().ends_with("quorvane_host: " + tree.root() +
                                           "/c holds no good collector configuration: the lines before say where\n"))
            << errors.str();
        EXPECT_EQ("", out.str());
    }
}

TEST_F(HostTest, AGroupMeansThoseOfItsFeaturesThatAreOffered)
{
    const test::TreeCopy tree("four-cores");
    EXPECT_EQ(0, measure(tree, {"--feature", "cpu", "--feature", "cpu-idle"}));
    EXPECT_NE(std::string::npos, out.str().find("CPU idle states Summary"));
    EXPECT_EQ(std::string::npos, out.str().find("Temperature Summary"));
    EXPECT_EQ("quorvane_host: cpu-load: nothing changed, so there is no sample\n", errors.str());

    tree.remove("proc/cpuinfo");
    for (const char* cpu : {"0", "1", "2", "3", "4", "5", "6", "7"})
        tree.remove(std::string("sys/devices/system/cpu/cpu") + cpu + "/cpuidle");
    EXPECT_EQ(1, measure(tree, {"--feature", "cpu"}));    // the load that stands still
    EXPECT_EQ("quorvane_host: cpu-load: nothing changed, so there is no sample\n"
              "quorvane_host: no sample was taken: collect longer with --time\n",
              errors.str());
    tree.remove("proc/stat");
    EXPECT_EQ(1, measure(tree, {"--feature", "cpu"}));
    EXPECT_NE(std::string::npos, errors.str().find("this machine does not offer 'cpu', which requires idle states: "));
}

TEST_F(HostTest, AWholeRunWritesTablesAndTimelines)
{
    const test::TreeCopy tree("modules");
    tree.write("sys/class/thermal/thermal_zone0/temp", "41500\n");
    tree.write("sys/class/thermal/thermal_zone0/type", "board\n");
    // Only what does not depend on the moments of the rounds.
    tree.write("tables.conf", "ALL_OUTPUT-ORDER_TAG_FEATURE_ORDER=TEMP,CPU-IDLE\n"
                              "ALL_TEMP_ALL-THERMAL-DATA_MIN-MAX-AVG_TITLE=Heat, felt\n"
                              "ALL_TEMP_ALL-THERMAL-DATA_SAMPLE-COUNT_TABLE=NO\n"
                              "ALL_TEMP_ALL-THERMAL-DATA_MIN-MAX_TABLE=NO\n"
                              "ALL_TEMP_ALL-THERMAL-DATA_NUMBER-OF-OCCURENCES_TABLE=NO\n"
                              "ALL_TEMP_ALL-THERMAL-DATA_RELATIVE-FREQUENCY-PERCENTAGE_TABLE=NO\n"
                              "ALL_TEMP_ALL-THERMAL-DATA_APPROXIMATED-RESIDENCY_TABLE=NO\n"
                              "ALL_CPU-IDLE_STATES_RESIDENCY-PERCENTAGE_TRANSPOSE=YES\n"
                              "ALL_CPU-IDLE_STATES_RESIDENCY-PERCENTAGE_POST-TABLE-TEXT=Quiet.\n"
                              "ALL_CPU-IDLE_STATES_SAMPLE-COUNT_TABLE=NO\n"
                              "ALL_CPU-IDLE_STATES_RESIDENCY-MILLISECOND_TABLE=NO\n"
                              "ALL_CPU-IDLE_STATES_RESIDENCY-COMBINED_TABLE=NO\n");
    EXPECT_EQ(0,
              measure(tree, {"--output-config", tree.root() + "/tables.conf", "--output", path("deep/run"), "--result",
                             "csv", "--feature", "temperature", "--feature", "cpu-idle", "--feature", "cpu-load"}));
    EXPECT_EQ("\"Heat, felt Summary - Sampled: Min/Max/Avg\"\n"
              ",Min (oC),Max (oC),Avg (oC),Time-weighted Avg (oC)\n"
              "board,42,42,42.00,42.00\n"
              "\n"
              "CPU idle states Summary: Residency (Percentage)\n"
              "Processor,Active (%),C1 (%),C1 (state1) (%)\n"
              "CPU/Package_0/Module_0/Core_0/Thread_0,100.00,0.00,0.00\n"
              "CPU/Package_0/Module_0/Core_1/Thread_1,100.00,0.00,0.00\n"
              "CPU/Package_0/Module_1/Core_2/Thread_2,100.00,0.00,0.00\n"
              "CPU/Package_0/Module_1/Core_3/Thread_3,100.00,0.00,0.00\n"
              "CPU/Package_0/Module_2/Core_4/Thread_4,100.00,0.00,0.00\n"
              "Quiet.\n"
              "\n",
              bodyOf(path("deep/run_summary.csv")));
    EXPECT_EQ("quorvane_host: cpu-load: nothing changed, so there is no sample\n", errors.str());

    // A round each 40 ms and one at the end; a busy machine may miss some. 16 samples a round.
    const std::string text = out.str();
    const std::string last = text.substr(text.rfind('\n', text.size() - 2) + 1);
    const int samples = std::stoi(last);
    EXPECT_TRUE(samples > 0 && samples <= 4 * 16 && samples % 16 == 0) << samples;
    EXPECT_EQ(std::to_string(samples) + " samples, 0 dropped points, files: " + path("deep/run_summary.csv, ") +
                  path("deep/run_temperature-metrics.csv, ") + path("deep/run_cpu-idle-states.csv, ") +
                  path("deep/run.qvs\n"),
              last);
    const std::string timeline = bodyOf(path("deep/run_cpu-idle-states.csv"));
    EXPECT_EQ(1 + samples / 16 * 15, countLines(timeline));
    EXPECT_TRUE(timeline.starts_with("Time (s),Time (UTC),Entity,Descriptor,Residency (ms),Duration (s)\n0."));
    EXPECT_EQ(nullptr, g_pluginEnvironment);
}

// The host's own output configuration; a tree stands still, so that the amounts are 0.
TEST_F(HostTest, EachKindOfMetricHasItsTables)
{
    const test::TreeCopy tree("no-idle");
    tree.write("proc/diskstats", "   8 0 sda 1 2 3 4 5 6 7 8\n");
    tree.write("proc/net/dev", "head\n  eth0: 1 2 3 4 5 6 7 8 9\n");
    tree.write("proc/5/stat", "5 (x) S 1 1 1 0 -1 4194304 1 2 3 4 5 6 7 8 20 0 1 0 5 9\n");
    EXPECT_EQ(0, measure(tree, {"--output", path("run")})) << errors.str();
    const std::string summary = test::contentOf(path("run_summary.csv"));
    for (const char* part : {"CPU frequency Summary: Residency (Percentage)\n"
                             "\"Looked at once in each round, in steps of 100 MHz.\"\n"
                             "Frequency (MHz),CPU/Package_0/Core_0/Thread_0 Residency (%)\n"
                             "1000,100.00\n\n",
                             "CPU frequency Summary: Entry Counts\n"
                             "Frequency (MHz),CPU/Package_0/Core_0/Thread_0 Entry Count\n"
                             "1000,1\n"
                             ",1\n"
                             "The end of the collection counts as well.\n\n",
                             "Context switches Summary: Average Rate and Total\n"
                             "System,Average Rate (Ops/sec),Total (OpsCount)\n"
                             "SYSTEM,0.00,0.00\n\n",
                             "Interrupts Summary: Average Rate and Total\n"
                             "System,Kind,Average Rate (Ops/sec),Total (OpsCount)\n"
                             "SYSTEM,Hardware,0.00,0.00\n"
                             "Total,,0.00,0.00\n\n",
                             "Disk IO Summary: Average Rate and Total\n"
                             "Disks that have been used since the system began.\n"
                             "Disk,Direction,Average Rate (MB/s),Total (bytes)\n"
                             "sda,Read,0.00,0.00\n"
                             "sda,Written,0.00,0.00\n\n",
                             "Network IO Summary: Average Rate and Total\n"
                             "Interfaces that have been used since the system began.\n"
                             "Interface,Direction,Average Rate (MB/s),Total (bytes)\n"
                             "eth0,Received,0.00,0.00\n"
                             "eth0,Sent,0.00,0.00\n\n"}) {
        EXPECT_NE(std::string::npos, summary.find(part)) << part << " is not in\n" << summary;
    }
    EXPECT_EQ("quorvane_host: cpu-load: nothing changed, so there is no sample\n"
              "quorvane_host: processes: nothing changed, so there is no sample\n",
              errors.str());
    EXPECT_NE(std::string::npos, out.str().find(" 0 dropped points, files: ")) << out.str();
}

TEST_F(HostTest, TheOwnOutputConfigurationIsFoundAndGood)
{
    test::LogCapture log(2);
    const std::string own = host::findOutputConfig(host::programFolder());
    ASSERT_TRUE(own.ends_with("output.conf")) << own;
    auto* parser = pwr::WriterInterfaceConfigFileParser::instance();
    EXPECT_EQ(0, parser->parse({own}, pwr::SystemMetadata()));
    EXPECT_EQ("", log.errors() + log.debug());
    parser->destroy();

    const test::TreeCopy tree("unreadable");
    EXPECT_EQ(0, measure(tree, {"--feature", "temperature", "--feature", "cpu-idle"}));
    const std::string text = out.str();
    for (const char* part :
         {"CPU idle states Summary: Residency (Percentage and Time)\nActive is the time that no idle",
          "  Processor                      Active (%)  C1 (%)  C2 (%)  Active (msec)",
          "Temperature Summary - Sampled: Min/Max/Avg\n", "processor 1 is left out, since ",
          "thermal zone 1 is left out, since ", "files: QuorvaneOutput_summary.csv, QuorvaneOutput.qvs\n"}) {
        EXPECT_NE(std::string::npos, text.find(part)) << part << " is not in\n" << text;
    }
    EXPECT_LT(text.find("CPU idle states Summary"), text.find("Temperature Summary"));
    EXPECT_EQ(2, countLines(errors.str())) << errors.str();
}

TEST_F(HostTest, ResultsThatCanNotAllBeWrittenAreAnError)
{
    const test::TreeCopy tree("four-cores");
    fs::create_directories(path("run_temperature-metrics.csv"));
    EXPECT_EQ(1, measure(tree, {"--output", path("run"), "--max-detail"}));
    EXPECT_NE(std::string::npos, errors.str().find(path("run_temperature-metrics.csv") + " can't be written"));
    EXPECT_NE("", bodyOf(path("run_cpu-idle-states.csv")));
    EXPECT_NE(std::string::npos, test::contentOf(path("run_summary.csv")).find("Temperature Summary"));
}

// Sends the signal with the first text, which here is the progress line of a collection under way.
class InterruptingBuffer : public std::stringbuf {
protected:
    std::streamsize xsputn(const char* text, std::streamsize size) override
    {
        interrupt();
        return std::stringbuf::xsputn(text, size);
    }
    int overflow(int c) override
    {
        interrupt();
        return std::stringbuf::overflow(c);
    }

private:
    void interrupt()
    {
        if (!m_isDone) std::raise(SIGINT);
        m_isDone = true;
    }
    bool m_isDone = false;
};

TEST_F(HostTest, EachResultIsWrittenFromTheSameRun)
{
    const test::TreeCopy tree("four-cores");
    EXPECT_EQ(0, measure(tree, {"--result", "prom,html", "--result", "trace,jsonl", "--output", path("run"),
                                "--feature", "temperature"}));
    EXPECT_NE(std::string::npos,
              out.str().find(" samples, 0 dropped points, files: " + path("run.jsonl, ") + path("run.trace.json, ") +
                             path("run.html, ") + path("run.prom, ") + path("run.qvs\n")))
        << out.str();
    EXPECT_FALSE(fs::exists(path("run_summary.csv")));
    EXPECT_NE(std::string::npos, test::contentOf(path("run.jsonl")).find("\"entity\":\"board\",\"entityId\":"));
    EXPECT_NE(std::string::npos, test::contentOf(path("run.trace.json")).find("{\"Temperature (oC)\":28}"));
    EXPECT_NE(std::string::npos, test::contentOf(path("run.html")).find("<td>board</td><td class=\"n\">28</td>"));
    EXPECT_NE(std::string::npos,
              test::contentOf(path("run.prom")).find("\nquorvane_temperature_metrics_celsius{entity=\"board\"} 28\n"));
}

TEST_F(HostTest, QuietShowsNoProgressOnATerminal)
{
    const test::TreeCopy tree("four-cores");
    const Arguments arguments{"--sysroot",  tree.root(), "--time",    "0.1",
                              "--interval", "20",        "--feature", "temperature"};
    for (const bool isQuiet : {false, true}) {
        Arguments all = arguments;
        if (isQuiet) all.push_back("--quiet");
        std::ostringstream terminal;
        EXPECT_EQ(0, host::runHost(all, {out, terminal, true}));
        EXPECT_EQ(isQuiet, terminal.str().empty()) << terminal.str();
    }
}

TEST_F(HostTest, AnInterruptEndsTheCollectionAndAllIsWritten)
{
    const test::TreeCopy tree("four-cores");
    const struct {
        Arguments time;    // none: until the interrupt
        const char* progress;
    } cases[] = {{{"--time", "600"}, " of 600.0 s, 2 samples"}, {{}, " s, 2 samples, Ctrl-C ends it"}};
    for (const auto& c : cases) {
        InterruptingBuffer buffer;
        std::ostream terminal(&buffer);
        Arguments arguments{"--sysroot", tree.root(), "--output", path("run"), "--feature", "temperature"};
        arguments.insert(arguments.end(), c.time.begin(), c.time.end());
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(0, host::runHost(arguments, {out, terminal, true}));
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::minutes(2));
        EXPECT_NE(std::string::npos, buffer.str().find(c.progress)) << buffer.str();
        EXPECT_NE(std::string::npos, out.str().find(" samples, 0 dropped points, files: "));
        EXPECT_NE(std::string::npos, bodyOf(path("run_summary.csv")).find("board,28,28,28.00,28.00\n"));
        EXPECT_EQ(SIG_DFL, std::signal(SIGINT, SIG_DFL));    // nothing of ours is left behind
    }
}

}    // namespace

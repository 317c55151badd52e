#include "HostFixture.h"

#include <regex>

namespace {

class ExplainTest : public test::HostFixture {
protected:
    int explain(const test::TreeCopy& tree, const std::string& feature, bool isOwnConfig = true)
    {
        Arguments arguments{"--sysroot", tree.root(), "--explain", feature};
        if (!isOwnConfig) arguments.insert(arguments.end(), {"--config", path("")});
        return run(arguments);
    }

    // What is printed up to the list of files, whose paths differ from place to place.
    std::string page() const { return out.str().substr(0, out.str().find("\nFiles\n")); }
};

// The host's own configuration: platforms, capabilities of two of them, a group, and messages let in from the parent.
TEST_F(ExplainTest, ThePageTellsWhatComesFromWhere)
{
    const test::TreeCopy tree("four-cores");
    ASSERT_EQ(0, explain(tree, "temperature")) << errors.str();
    std::string text = std::regex_replace(page(), std::regex("(20-hwmon|10-all).conf:[0-9]+ *"), "$1: ");
    text = std::regex_replace(text, std::regex("\n *"), "\n");
    std::size_t at = 0;
    for (const std::string part :
         {"temperature: degrees of each thermal zone and each sensor\noffered here\n",
          "\n20-hwmon: HWMON: FMS=6.77 fits this machine's FMS=6.77.2\nALL: the root, every machine\n",
          "\nHWMON\n20-hwmon: COMMAND-LINE = temperature\n", "\nALL\n10-all: COMMAND-LINE = temperature\n",
          "\nMessages of HWMON, the nearest that has some\n20-hwmon: EXTEND: behind these come those of ALL\n",
          "\n20-hwmon: SENSORS-CHIP: reads, cpu ANY, msg id 3\n20-hwmon: normal: INIT\nmax detail: none\n",
          "\n20-hwmon: SYSFS PATH = /sys/class/hwmon/hwmon*/temp*_label (of\nSENSORS-LABEL)\n",
          "\nMessages of ALL, let in by EXTEND of HWMON\n10-all: ZONES: reads, cpu ANY, msg id 1\n",
          "\nmax detail: INIT, as constants without triggers\n10-all: CONSTANT PER-DEGREE = 1000\n"}) {
        at = text.find(part, at);
        ASSERT_NE(std::string::npos, at) << part << text;
    }
    EXPECT_EQ("", errors.str());
    EXPECT_NE(std::string::npos, out.str().find("20-hwmon.conf     ")) << "where the files are";
}

TEST_F(ExplainTest, WhatIsLeftOutIsToldWithItsReason)
{
    write("10.conf", "ALL_CPU-LOAD_LIMIT_CONSTANT_A=1\nALL_CPU-LOAD_TIMES_PROCFS_PATH=/proc/stat\n");
    write("20.conf", "MANY_MODEL_CORES_CONSTANT_RANGE=1,99\nMANY_MODEL_OS_CONSTANT_VALUE=Linux\n"
                     "MANY_CPU-LOAD_TIMES_PROCFS_PATH=/proc/nothing\nMANY_CPU-LOAD_TIMES_MSG_ID=7\n"
                     "MANY_CPU-LOAD_TIMES_MSG_READ-WHEN=POLL\nMANY_CPU-LOAD_TIMES_MSG_READ-WHEN=END,BEGIN\n"
                     "MANY_CPU-LOAD_TIMES_MSG_READ-WHEN-MAX-DETAIL=TRACEPOINT=power,POLL\n"
                     "MANY_CPU-LOAD_MINE_MSG_SOURCE=LIMIT\nMANY_CPU-LOAD_AWAY_PROCESSORS_FIELD=KHZ\n");
    const test::TreeCopy tree("four-cores");
    ASSERT_EQ(0, explain(tree, "cpu-load", false)) << errors.str();
    const std::string head = "cpu-load: busy percent of each logical processor\n"
                             "not offered here: requires processor times: there is no\n  " +
                             tree.root() + "/proc/nothing\n";
    EXPECT_EQ(head, page().substr(0, head.size()));
    EXPECT_EQ(R"(
Platforms of this machine, nearest first
20.conf:1  MANY: CORES=1,99 fits this machine's CORES=4
20.conf:2  MANY: OS=Linux fits this machine's OS=Linux
           ALL: the root, every machine

Capability, that of the nearest platform first
           not told: the feature speaks for itself

Messages of MANY, the nearest that has some
           OVERRIDE: without those of ALL, since no line says otherwise
20.conf:3  TIMES: reads, cpu ANY, msg id 7
20.conf:5    normal: BEGIN, POLL, END
20.conf:5      READ-WHEN = POLL
20.conf:6      READ-WHEN = END,BEGIN
20.conf:7    max detail: POLL, TRACEPOINT=power
20.conf:4    ID = 7
20.conf:3    PROCFS PATH = /proc/nothing
20.conf:8  MINE: constants, cpu ANY, msg id 2
             normal: INIT, as constants without triggers
             max detail: INIT, as constants without triggers
20.conf:8    SOURCE = LIMIT
10.conf:1    CONSTANT A = 1 (of ALL's LIMIT)
20.conf:9  AWAY: not taken, no operation of it works on this machine
20.conf:9    PROCESSORS FIELD = KHZ: does not work on this machine

Messages of ALL
           not taken: MANY is nearer and does not extend
10.conf:1    LIMIT
10.conf:2    TIMES
)",
              page().substr(head.size()));

    write("30.conf", "MANY_CPU-LOAD_INHERIT_MODE_VALUE=EXTEND\n");
    ASSERT_EQ(0, explain(tree, "cpu-load", false));
    EXPECT_NE(std::string::npos, page().find("\n30.conf:1  EXTEND: behind these come those of ALL\n")) << page();
    EXPECT_NE(std::string::npos, page().find("not taken: MANY has a message TIMES, too: all of these stay out\n"))
        << page();
}

TEST_F(ExplainTest, NamesThatFitSeveralFeaturesOrNone)
{
    const test::TreeCopy tree("no-idle");
    ASSERT_EQ(0, explain(tree, "io"));
    EXPECT_EQ(0U, page().find("disk-io: "));
    EXPECT_NE(std::string::npos, out.str().find("\n\n\nnetwork-io: "));
    std::istringstream lines(out.str());
    for (std::string line; std::getline(lines, line);)
        EXPECT_TRUE(line.size() <= 80 || line.find('/') != std::string::npos) << line;

    write("10.conf", "ALL_CPU-IDLE_CAPABILITY_HIDDEN_VALUE=true\n");
    ASSERT_EQ(0, explain(tree, "cpu-idle", false));
    EXPECT_NE(std::string::npos, page().find("\nNo messages\n")) << page();
    EXPECT_NE(std::string::npos, page().find("not offered here: requires idle states: "));

    EXPECT_EQ(2, explain(tree, "disk"));
    expectOnly("there is no feature 'disk' here: --list tells the names");
}

}    // namespace

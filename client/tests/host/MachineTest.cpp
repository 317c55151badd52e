#include "ProgramRecord.h"
#include "TreeCopy.h"
#include "machine/Machine.h"
#include "machine/SystemTree.h"
#include "machine/Topology.h"
#include "support/LogCapture.h"
#include "support/TestSession.h"

#include "record/Serializer.h"

#include <gtest/gtest.h>
#include <memory>

namespace {

using host::ProcessorPlace;
using Remarks = std::vector<std::string>;

struct Counts {
    std::size_t packages, dies, modules, cores, threads;
    bool operator==(const Counts&) const = default;
};

Counts countsOf(const pwr::TopTree& tree)
{
    return {tree.getNumPackages(), tree.getNumDies(), tree.getNumModules(), tree.getNumCores(), tree.getNumThreads()};
}

TEST(MachineTest, RecordedTreesGiveTheirTopology)
{
    const struct {
        const char* tree;
        const char* text;
        unsigned long long coresPerModule;
        Counts counts;
    } cases[] = {
        {"four-cores", "0 0 0 -1 1 0 1 -1 2 0 2 -1 3 0 3 -1 4 0 0 -1 5 0 1 -1 6 0 2 -1 7 0 3 -1", 0, {1, 0, 0, 4, 8}},
        {"two-packages", "0 0 0 0 1 0 1 0 2 0 2 1 3 0 3 1 4 1 0 0 5 1 1 0 6 1 2 1 7 1 3 1", 0, {2, 4, 0, 8, 8}},
        {"modules", "0 0 0 -1 1 0 1 -1 2 0 2 -1 3 0 3 -1 4 0 4 -1", 2, {1, 0, 3, 5, 5}},
        {"no-idle", "0 0 0 -1 1 0 1 -1", 0, {1, 0, 0, 2, 2}},
        {"unreadable", "0 0 0 -1 1 0 1 -1 2 0 2 -1", 0, {1, 0, 0, 3, 3}},
    };
    for (const auto& c : cases) {
        const test::TreeCopy tree(c.tree);
        Remarks remarks;
        const host::TopologyText topology =
            host::makeTopologyText(host::readPlaces(host::SystemTree(tree.root()), remarks));
        EXPECT_EQ(c.text, topology.text) << c.tree;
        EXPECT_EQ(c.coresPerModule, topology.coresPerModule) << c.tree;
        EXPECT_TRUE(remarks.empty()) << c.tree;

        pwr::SystemMetadata record;
        EXPECT_TRUE(host::openMachine(tree.root())->describe(record, remarks));
        EXPECT_EQ(c.counts, countsOf(record.getCPUTopology())) << c.tree;
    }
}

TEST(MachineTest, ModulesAreRenumberedInEachPackage)
{
    // Two packages whose clusters hold one core, two cores, and one core of no cluster; core ids repeat.
    std::vector<ProcessorPlace> places;
    int processor = 0;
    for (const int package : {0, 1}) {
        places.push_back({processor++, package, 0, 7, 40});
        places.push_back({processor++, package, 0, 9, 3});
        places.push_back({processor++, package, 0, 9, 3});
        places.push_back({processor++, package, 0, 9, 2});
        places.push_back({processor++, package, 0, -1, 3});
    }
    const host::TopologyText topology = host::makeTopologyText(places);
    EXPECT_EQ(2u, topology.coresPerModule);
    EXPECT_EQ("0 0 2 -1 1 0 5 -1 2 0 5 -1 3 0 4 -1 4 0 0 -1 5 1 2 -1 6 1 5 -1 7 1 5 -1 8 1 4 -1 9 1 0 -1",
              topology.text);
    EXPECT_EQ("", host::makeTopologyText({}).text);
}

TEST(MachineTest, ProcessorsWithoutAPlaceAreLeftOut)
{
    const test::TreeCopy tree("four-cores");
    tree.remove("sys/devices/system/cpu/cpu3/topology");    // off line
    tree.makeUnreadable("sys/devices/system/cpu/cpu5/topology/core_id");
    tree.write("sys/devices/system/cpu/cpu6/topology/physical_package_id", "none\n");
    Remarks remarks;
    const auto places = host::readPlaces(host::SystemTree(tree.root() + "/"), remarks);
    ASSERT_EQ(5u, places.size());
    EXPECT_EQ(4, places[3].processor);
    EXPECT_EQ(7, places[4].processor);
    ASSERT_EQ(2u, remarks.size());
    EXPECT_EQ("processor 5 is left out, since " + tree.root() +
                  "/sys/devices/system/cpu/cpu5/topology/core_id can't be read",
              remarks[0]);
}

TEST(MachineTest, WithoutAnyTopologyEachProcessorIsACore)
{
    const test::TreeCopy tree("no-idle");
    for (const char* cpu : {"cpu0", "cpu1"})
        tree.remove(std::string("sys/devices/system/cpu/") + cpu + "/topology");
    Remarks remarks;
    EXPECT_EQ("0 0 0 -1 1 0 1 -1",
              host::makeTopologyText(host::readPlaces(host::SystemTree(tree.root()), remarks)).text);

    tree.remove("sys");
    pwr::SystemMetadata record;
    EXPECT_FALSE(host::openMachine(tree.root())->describe(record, remarks));
}

TEST(MachineTest, TheRecordIsFilledFromTheTree)
{
    const test::TreeCopy tree("four-cores");
    pwr::SystemMetadata record;
    Remarks remarks;
    ASSERT_TRUE(host::openMachine(tree.root())->describe(record, remarks));
    EXPECT_EQ("four", record.hostName);
    EXPECT_EQ("Test System 12", record.osName);
    EXPECT_EQ("Linux", record.osType);
    EXPECT_EQ("6.1.0-test", record.osVersion);
    EXPECT_EQ("Four Core Processor", record.platformName);
    EXPECT_EQ((pwr::FMS{6, 77, 2}), record.fms);
    EXPECT_EQ(2600.0F, record.cpuFreqMHz);
    EXPECT_EQ(800.0F, record.lfmFreqMHz);
    EXPECT_EQ(4100.0F, record.hfmFreqMHz);
}

// Of this machine, and of a tree that tells next to nothing.
TEST(MachineTest, EveryRecordCanBeReadBackWhole)
{
    const test::TreeCopy tree("no-idle");
    for (const char* path : {"proc/sys", "etc", "proc/cpuinfo"})
        tree.remove(path);
    for (const std::string& sysroot : {std::string(), tree.root()}) {
        test::TestSession session;
        pwr::SystemMetadata record;
        Remarks remarks;
        host::describeProgram(record, {"--time", "1"}, 100);
        ASSERT_TRUE(host::openMachine(sysroot)->describe(record, remarks)) << sysroot;
        pwr::Serializer bytes;
        record.serialize(bytes);
        session.log.clear();
        const std::unique_ptr<pwr::Metadata> read(pwr::Metadata::deserialize(bytes, 1));
        const auto* copy = dynamic_cast<const pwr::SystemMetadata*>(read.get());
        ASSERT_NE(nullptr, copy) << sysroot;
        EXPECT_EQ("", session.log.errors() + session.log.debug()) << sysroot;
        EXPECT_EQ("Unknown", copy->packageType);
        EXPECT_EQ((std::vector<std::string>{"quorvane_host", "--time", "1"}), copy->commandLine);
        EXPECT_EQ(record.getCPUTopology().getNumThreads(), copy->getCPUTopology().getNumThreads());
    }
}

TEST(SystemTreeTest, OnlyWholeNumbersAreRead)
{
    const test::TreeCopy tree("no-idle");
    const host::SystemTree system(tree.root());
    const struct {
        const char* text;
        bool isNumber;
        std::int64_t value;
    } cases[] = {
        {"42\n", true, 42},  {"-7 \t\r\n", true, -7}, {"0", true, 0},   {"", false, 0},
        {"12 13", false, 0}, {"0x10", false, 0},      {" 5", false, 0}, {"99999999999999999999", false, 0},
    };
    for (const auto& c : cases) {
        tree.write("number", c.text);
        std::int64_t value = 99;
        EXPECT_EQ(c.isNumber, system.readNumber("/number", value)) << c.text;
        EXPECT_EQ(c.isNumber ? c.value : 99, value) << c.text;
    }
    std::uint64_t counter = 0;
    tree.write("number", "18446744073709551615\n");
    EXPECT_TRUE(system.readNumber("/number", counter));
    tree.write("number", "-1\n");
    EXPECT_FALSE(system.readNumber("/number", counter));
    EXPECT_EQ(18446744073709551615ULL, counter);
    std::string text = "old";
    EXPECT_FALSE(system.readText("/sys", text));
    EXPECT_EQ("", text);
}

}    // namespace

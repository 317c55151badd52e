#include "FeatureTest.h"
#include "features/Counters.h"
#include "features/PrintableName.h"

#include <algorithm>

namespace {

using test::MS;
using test::Texts;

TEST(CountedBetweenTest, EndsOfRangesAreSteppedOverAndNewBeginningsTellNothing)
{
    constexpr std::uint64_t TOP_32 = 0xFFFFFFFF;
    constexpr std::uint64_t TOP_64 = ~std::uint64_t{0};
    constexpr std::uint64_t FARTHEST = std::uint64_t{1} << 28U;
    const struct {
        std::uint64_t last;
        std::uint64_t now;
        std::optional<std::uint64_t> counted;
    } cases[] = {
        {5, 5, 0},
        {5, 12, 7},
        {TOP_32, TOP_32 + 1, 1},
        {TOP_32 - 9, 20, 30},    // 32 bits
        {TOP_64 - 9, 20, 30},    // 64 bits
        {TOP_32 - FARTHEST + 1, 0, FARTHEST},
        {TOP_32 - FARTHEST, 0, std::nullopt},
        {TOP_64 - FARTHEST, 0, std::nullopt},
        {TOP_32 + 5, 20, std::nullopt},    // has more than 32 bits
        {3'000'000'000, 5, std::nullopt},
        {1000, 0, std::nullopt},
        {1000, 999, std::nullopt},
        {3, TOP_64 - 4, std::nullopt},    // below zero
        {TOP_64 - 4, 3, 8},
    };
    for (const auto& c : cases)
        EXPECT_EQ(c.counted, host::countedBetween(c.last, c.now)) << c.last << " " << c.now;
}

TEST(PrintableNameTest, OnlyPrintableUtf8Passes)
{
    const struct {
        std::string bytes;
        const char* name;
    } cases[] = {
        {"eth0", "eth0"},
        {"gr\xC3\xBC\xC3\x9F \xE2\x82\xAC \xF0\x9F\x98\x80", "gr\xC3\xBC\xC3\x9F \xE2\x82\xAC \xF0\x9F\x98\x80"},
        {"", "unnamed"},
        {"a\tb\x1B[1m\x7F", "a?b?[1m?"},
        {"\xFF\xFE", "??"},
        {"\xC0\x80", "??"},              // longer than needed
        {"\xE0\x9F\xBF", "???"},         //
        {"\xED\xA0\x80", "???"},         // a surrogate
        {"\xF4\x90\x80\x80", "????"},    // behind the last character
        {"\xF0\x8F\xBF\xBF", "????"},    //
        {"\xC2\x85", "??"},              // a control character
        {"x\xE2\x82", "x??"},            // cut
        {std::string("\0y", 2), "?y"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(c.name, host::printableName(c.bytes));
}

class CountersTest : public test::FeatureTest {
protected:
    CountersTest() : FeatureTest("two-packages") {}

    // A line of a disk that has read and written so many sectors.
    static std::string disk(const std::string& name, std::uint64_t read, std::uint64_t written)
    {
        return "   8       0 " + name + " 11 12 " + std::to_string(read) + " 14 15 16 " + std::to_string(written) +
               " 18 0 19 20 0 0 0 0 0 0\n";
    }
    void disks(const std::string& lines) const { tree.write("proc/diskstats", lines); }
    Texts at(std::size_t point)
    {
        Texts found = samples(point);
        std::sort(found.begin(), found.end());
        return found;
    }
};

TEST_F(CountersTest, SectorsBecomeBytesOfEachDiskAndPartitionsAreTheirDisks)
{
    tree.write("sys/block/sda/size", "1\n");
    tree.write("sys/block/cciss!c0d0/size", "1\n");
    disks(disk("sda", 100, 200) + disk("sda1", 90, 190) + disk("loop0", 0, 0) + disk("cciss/c0d0", 1, 0));
    start<host::DiskIo>();
    disks(disk("sda", 110, 200) + disk("sda1", 99, 190) + disk("loop0", 0, 0) + disk("cciss/c0d0", 1, 5));
    round(500);
    disks(disk("sda", 110, 204) + disk("sda1", 99, 194) + disk("loop0", 0, 0) + disk("cciss/c0d0", 1, 5));
    round(1000);
    ASSERT_TRUE(finish());
    ASSERT_EQ(2u, session.writer.points.size());
    EXPECT_EQ((Texts{"c0d0/Read=0", "c0d0/Written=2560", "sda/Read=5120", "sda/Written=0"}), at(0));
    EXPECT_EQ((Texts{"c0d0/Read=0", "c0d0/Written=0", "sda/Read=0", "sda/Written=2048"}), at(1));
    EXPECT_EQ(500u, duration(1));
    const auto rows = session.writer.tablesNamed("Disk IO Summary: Average Rate and Total");
    ASSERT_EQ(6u, rows.size());
    EXPECT_EQ((Texts{"Disk", "Direction", "Average Rate (MB/s)", "Total (bytes)"}), rows[0].columns);
    std::vector<Texts> cells;
    for (std::size_t i = 1; i < rows.size(); ++i)
        cells.push_back(rows[i].cells);
    EXPECT_NE(cells.end(), std::find(cells.begin(), cells.end(), Texts({"sda", "Read", "0.01", "5120.00"})));
    EXPECT_NE(cells.end(), std::find(cells.begin(), cells.end(), Texts({"sda", "Written", "0.00", "2048.00"})));
    EXPECT_EQ((Texts{"Total", "", "0.01", "9728.00"}), cells.back());
}

// One that goes on counts; one that began anew has its baseline there.
TEST_F(CountersTest, CountersThatWrapOrBeginAnewGiveNoAbsurdAmount)
{
    disks(disk("sda", 0xFFFFFFF0, 7) + disk("sdb", 5'000'000'000, 5) + disk("sdc", 18'446'744'073'709'551'610U, 0) +
          disk("sdd", 10, 10));
    start<host::DiskIo>();
    disks(disk("sda", 0x10, 7) + disk("sdb", 40, 6) + disk("sdc", 4, 0) + disk("sdd", 18'000'000'000'000'000'000U, 10));
    round(100);
    disks(disk("sda", 0x11, 7) + disk("sdb", 41, 6) + disk("sdc", 5, 0) + disk("sdd", 11, 10));
    round(200);
    disks(disk("sda", 0x11, 7) + disk("sdb", 41, 6) + disk("sdc", 5, 0) + disk("sdd", 12, 10));
    round(300);
    ASSERT_TRUE(finish());
    ASSERT_EQ(3u, session.writer.points.size());
    EXPECT_EQ((Texts{"sda/Read=16384", "sda/Written=0", "sdc/Read=5120", "sdc/Written=0"}), at(0));
    EXPECT_EQ(
        (Texts{"sda/Read=512", "sda/Written=0", "sdb/Read=512", "sdb/Written=0", "sdc/Read=512", "sdc/Written=0"}),
        at(1));
    EXPECT_EQ("sdd/Read=512", at(2)[6]);
    for (const auto& element : session.writer.points[1].elements)
        EXPECT_EQ(100 * MS, element.duration) << element.entity;
    EXPECT_FALSE(session.log.contains("discarded"));
}

TEST_F(CountersTest, DevicesComeAndGoAndAreUsedLate)
{
    disks(disk("sda", 10, 10) + disk("sdb", 0, 0));
    start<host::DiskIo>();
    disks(disk("sda", 11, 10) + disk("sdb", 0, 0) + disk("sdc", 50, 50) + disk("sdc", 99, 99));
    round(100);
    disks(disk("sdb", 3, 0) + disk("sdc", 51, 50) + "   8 0 sdd 1 2 3\nnonsense\n   8 0\n\n");
    round(200);
    disks(disk("sda", 500, 10) + disk("sdb", 3, 0) + disk("sdc", 51, 50));    // may be another one
    round(300);
    disks(disk("sda", 502, 10));
    round(400);
    tree.makeUnreadable("proc/diskstats");
    round(500);
    ASSERT_TRUE(finish());
    ASSERT_EQ(4u, session.writer.points.size());
    EXPECT_EQ((Texts{"sda/Read=512", "sda/Written=0"}), at(0));
    EXPECT_EQ((Texts{"sdb/Read=1536", "sdb/Written=0", "sdc/Read=512", "sdc/Written=0"}), at(1));
    EXPECT_EQ(200 * MS, session.writer.points[1].elements[0].duration);    // of sdb, since its baseline
    EXPECT_EQ(100 * MS, session.writer.points[1].elements[2].duration);
    EXPECT_EQ((Texts{"sdb/Read=0", "sdb/Written=0", "sdc/Read=0", "sdc/Written=0"}), at(2));
    EXPECT_EQ((Texts{"sda/Read=1024", "sda/Written=0"}), at(3));
    EXPECT_EQ(100u, duration(3));
}

TEST_F(CountersTest, ASuspendIsNobodysTime)
{
    disks(disk("sda", 10, 10));
    start<host::DiskIo>();
    disks(disk("sda", 20, 10));
    round(100);
    sleepUntil(3'600'000);
    disks(disk("sda", 9'999, 10));
    round(3'600'100);
    disks(disk("sda", 10'000, 10));
    round(3'600'200);
    ASSERT_TRUE(finish());
    ASSERT_EQ(2u, session.writer.points.size());
    EXPECT_EQ((Texts{"sda/Read=512", "sda/Written=0"}), at(1));
    EXPECT_EQ(100u, duration(1));
    const auto rows = session.writer.tablesNamed("Disk IO Summary: Average Rate and Total");
    EXPECT_EQ((Texts{"sda", "Read", "0.03", "5632.00"}), rows.at(1).cells);    // in 200 ms
}

TEST_F(CountersTest, InterfacesAreCalledAsTheSystemDoes)
{
    const std::string head = "Inter-|   Receive  |  Transmit\n face |bytes    packets errs|bytes\n";
    const auto line = [](const std::string& name, int received, int sent) {
        return name + std::to_string(received) + " 1 0 0 0 0 0 0 " + std::to_string(sent) + " 2 0 0 0 0 0 0\n";
    };
    tree.write("proc/net/dev",
               head + line("    lo: ", 1, 1) + line("eth0:", 5, 6) + line("  a\xFF: ", 1, 0) + line("  a\xFE: ", 1, 0));
    start<host::NetworkIo>();
    tree.write("proc/net/dev", head + line("    lo: ", 1, 1) + line("eth0:", 1'000'005, 16) + line("  a\xFF: ", 2, 0) +
                                   line("  a\xFE: ", 3, 0));
    round(100);
    ASSERT_TRUE(finish());
    EXPECT_EQ((Texts{"a? (2)/Received=2", "a? (2)/Sent=0", "a?/Received=1", "a?/Sent=0", "eth0/Received=1000000",
                     "eth0/Sent=10", "lo/Received=0", "lo/Sent=0"}),
              at(0));
}

TEST_F(CountersTest, SwitchesAndInterruptsAreOfTheWholeSystem)
{
    const auto stat = [this](const std::string& switches, const std::string& rest) {
        tree.write("proc/stat", "cpu0 1 2 3 4\nintr " + rest + "\nctxt " + switches + "\n");
    };
    stat("4294967290", "100 7 8 9");
    start<host::ContextSwitches>();
    stat("94", "100 7 8 9");
    round(1000);
    ASSERT_TRUE(finish());
    EXPECT_EQ((Texts{"SYSTEM=100"}), samples(0));
    const auto rows = session.writer.tablesNamed("Context switches Summary: Average Rate and Total");
    EXPECT_EQ((Texts{"System", "Average Rate (Ops/sec)", "Total (OpsCount)"}), rows.at(0).columns);
    EXPECT_EQ((Texts{"SYSTEM", "100.00", "100.00"}), rows.at(1).cells);
}

TEST_F(CountersTest, InterruptsOfBothKindsAreOnePoint)
{
    tree.write("proc/stat", "intr 100 7 8 9\nsoftirq 50 1 2\n");
    start<host::Interrupts>();
    tree.write("proc/stat", "intr 130 7 8 9\nsoftirq 60 1 2\n");
    round(1000);
    ASSERT_TRUE(finish());
    ASSERT_EQ(1u, session.writer.points.size());
    EXPECT_EQ((Texts{"SYSTEM/Hardware=30", "SYSTEM/Software=10"}), at(0));
    EXPECT_EQ(1u, feature->getPoints());
    EXPECT_EQ((Texts{"Total", "", "40.00", "40.00"}),
              session.writer.tablesNamed("Interrupts Summary: Average Rate and Total").at(3).cells);
}

TEST_F(CountersTest, ASourceThatTellsNothingIsNone)
{
    machine.load();
    const std::string path = tree.root() + "/proc/diskstats";
    EXPECT_EQ("requires disk counters: there is no " + path, explain<host::DiskIo>());
    disks("   8 0 sda 1 2 3\n");
    EXPECT_EQ("requires disk counters: " + path + " can't be read or tells no numbers", explain<host::DiskIo>());
    disks(disk("sda", 0, 0));
    EXPECT_EQ("", explain<host::DiskIo>());
}

}    // namespace

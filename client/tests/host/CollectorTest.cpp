#include "FeatureTest.h"
#include "collector/NumberPattern.h"
#include "features/CpuLoad.h"
#include "features/Features.h"
#include "features/Temperature.h"
#include "writers/PointCounter.h"

#include "config/ConfigCap.h"
#include "config/InputMsg.h"
#include "config/Operation.h"
#include "record/CollectionData.h"

#include <cstddef>

namespace {

using host::Indices;
using host::NumberPattern;
using host::PathPattern;
using test::MS;
using test::Texts;

TEST(NumberPatternTest, AStarIsOnePlainNumber)
{
    const struct {
        const char* pattern;
        const char* word;
        bool matches;
    } cases[] = {
        {"cpu*", "cpu0", true},
        {"cpu*", "cpu17", true},
        {"cpu*", "cpu", false},
        {"cpu*", "cpu07", false},
        {"cpu*", "cpu-1", false},
        {"cpu*", "cpu3x", false},
        {"cpu*", "cpu4294967296", false},
        {"cpu", "cpu", true},
        {"cpu", "cpu0", false},
        {"a*b", "a5b", true},
        {"a*b", "ab", false},
        {"*", "12", true},
        {"a1*1b", "a11b", false},
    };
    for (const auto& c : cases) {
        NumberPattern pattern;
        ASSERT_TRUE(pattern.set(c.pattern));
        Indices indices;
        EXPECT_EQ(c.matches, pattern.matches(c.word, indices)) << c.pattern << " " << c.word;
    }
    NumberPattern pattern;
    EXPECT_FALSE(pattern.set(""));
    EXPECT_FALSE(pattern.set("a*b*"));
}

TEST(PathPatternTest, PlacesComeInTheOrderOfTheirNumbers)
{
    const test::TreeCopy tree("no-idle");
    for (const char* file : {"sys/x/hwmon10/temp1_input", "sys/x/hwmon2/temp11_input", "sys/x/hwmon2/temp9_input",
                             "sys/x/hwmon2/temp1_max", "sys/x/hwmon02/temp5_input", "sys/x/hwmon/temp1_input"})
        tree.write(file, "1\n");
    PathPattern pattern;
    ASSERT_TRUE(pattern.set("/sys/x/hwmon*/temp*_input"));
    Texts found;
    for (const PathPattern::Place& place : pattern.find(host::SystemTree(tree.root()))) {
        EXPECT_EQ(place.path, host::fillPattern(pattern.getText(), place.indices));
        found.push_back(place.path);
    }
    EXPECT_EQ((Texts{"/sys/x/hwmon2/temp9_input", "/sys/x/hwmon2/temp11_input", "/sys/x/hwmon10/temp1_input"}), found);
    for (const char* text : {"", "sys/a", "/", "/sys//a", "/sys/../a", "/sys/./a", "/a*b*", "/*/*/*/*/*"})
        EXPECT_FALSE(pattern.set(text)) << text;
    EXPECT_EQ("/sys/x/hwmon*/temp*_input", pattern.getText());
}

TEST(PathPatternTest, NamesAreMadeOfTheLastNumbers)
{
    Indices two;
    two.add(3);
    two.add(12);
    EXPECT_EQ("/a*b/cpu3/state12/time", host::fillPattern("/a*b/cpu*/state*/time", two));
    EXPECT_EQ("state12", host::numberedName("/a*b/cpu*/state*/time", two));
    EXPECT_EQ("time", host::numberedName("/a/time", Indices()));
}

// The platform, and what the configuration says of the features there.
TEST(PlatformsTest, RecordedMachinesChooseTheirPlatforms)
{
    const struct {
        const char* tree;
        const char* platforms;
        const char* temperature;
    } cases[] = {
        {"four-cores", "FMS=HWMON", "degrees of each thermal zone and each sensor"},
        {"two-packages", "ALL=ALL", "degrees of each thermal zone"},
    };
    for (const auto& c : cases) {
        test::LogCapture log(1);
        test::MachineFixture machine(c.tree);
        machine.load();
        EXPECT_EQ(c.platforms, host::choosePlatforms(machine.record)) << c.tree;
        EXPECT_EQ(c.temperature, host::makeFeatures(c.platforms).back().getDescription());
        EXPECT_EQ("", log.errors());
    }
}

TEST(PlatformsTest, EveryPropertyCountsInItsOrder)
{
    test::LogCapture log(1);
    test::MachineFixture machine("four-cores");
    machine.load();
    pwr::SystemMetadata& record = machine.record;
    EXPECT_EQ((std::vector<std::pair<std::string, std::string>>{
                  {"FMS", "6.77.2"}, {"CORES", "4"}, {"THREADS", "8"}, {"OS", "Linux"}}),
              host::platformSpecifiers(record));
    record.osType = "Windows";
    EXPECT_EQ("FMS=HWMON,OS=WINDOWS", host::choosePlatforms(record));
    record.fms.model = 1;
    record.buildTopology(test::topologyText(1, 1025, 1), 0);
    EXPECT_EQ("CORES=MANY,OS=WINDOWS", host::choosePlatforms(record));
}

class CollectorTest : public test::FeatureTest {
protected:
    CollectorTest() : FeatureTest("four-cores") {}

    // What the platform reads for a feature, in the order of the configuration.
    std::vector<pwr::InputMsg*> messages(const std::string& platforms, const std::string& prefix)
    {
        std::vector<pwr::InputMsg*> found;
        pwr::QVConfigFileParser::instance()->getMessagesFor(found, platforms, prefix, {"INIT", "BEGIN", "POLL"},
                                                            pwr::CollectionType::NORMAL);
        return found;
    }
    // "tag:kind,kind" of each.
    Texts textsOf(const std::vector<pwr::InputMsg*>& found)
    {
        Texts texts;
        for (const pwr::InputMsg* message : found) {
            std::string text = message->getName();
            for (const pwr::Operation* operation : *message)
                text += (text == message->getName() ? ":" : ",") + operation->getOperation();
            texts.push_back(text);
        }
        return texts;
    }
    Texts immediate(pwr::InputMsg* message)
    {
        std::vector<std::pair<std::string, std::string>> results;
        Texts texts;
        if (message->execute(results) != 0) return {"failed"};
        for (const auto& [source, text] : results)
            texts.push_back(source.substr(source.rfind('/')) + "=" + text);
        return texts;
    }
};

TEST_F(CollectorTest, PlatformsExtendOverrideGroupAndSource)
{
    machine.load();
    EXPECT_EQ((Texts{"SENSORS:SYSFS", "SENSORS-CHIP:SYSFS,SYSFS", "ZONES:SYSFS", "ZONES-TYPE:SYSFS", "UNITS:CONSTANT"}),
              textsOf(messages("FMS=HWMON", "TEMPERATURE")));
    EXPECT_EQ((Texts{"TIMES:PROCFS", "COLUMNS:CONSTANT"}), textsOf(messages("FMS=HWMON", "CPU-LOAD")));
    EXPECT_EQ((Texts{"TOTAL:PROCFS", "SAME-COLUMNS:CONSTANT"}), textsOf(messages("CORES=MANY", "CPU-LOAD")));
    EXPECT_EQ((Texts{"COLUMNS:CONSTANT"}), textsOf(messages("OS=WINDOWS", "CPU-LOAD")));    // no such access here
    EXPECT_EQ((Texts{"COLUMNS:CONSTANT"}), textsOf(messages("OS=WINDOWS", "NETWORK-IO")));
    EXPECT_EQ((Texts{"UNITS:CONSTANT"}), textsOf(messages("OS=WINDOWS", "CPU-FREQUENCY")));
}

TEST_F(CollectorTest, MessagesCanBeReadAtOnce)
{
    machine.load();
    const auto found = messages("ALL=ALL", "TEMPERATURE");
    tree.write("sys/class/thermal/thermal_zone0/temp", "-5\n");
    tree.makeUnreadable("sys/class/thermal/thermal_zone1/temp");
    EXPECT_EQ((Texts{"/temp=-5"}), immediate(found.at(0)));
    EXPECT_EQ((Texts{"/type=board", "/type=package"}), immediate(found.at(1)));
    EXPECT_EQ((Texts{"failed"}), immediate(found.at(2)));    // constants are not read
    tree.write("proc/stat", "cpu 1\ncpu3 1 2 3 4\ncpu4 1 2 3\n");
    EXPECT_EQ((Texts{"/stat cpu3=1 2 3 4"}), immediate(messages("ALL=ALL", "CPU-LOAD").at(0)));
    EXPECT_EQ((Texts{"/cpuinfo processor 0 cpu MHz=2400000"}), immediate(messages("ALL=ALL", "CPU-FREQUENCY").at(1)));
    tree.write("proc/net/dev", "Inter-| x\n face |bytes\n  eth0:1 2 3 4 5 6 7 8 9\nlo : 9 8 7 6 5 4 3 2 1 -1\n");
    EXPECT_EQ((Texts{"/dev=eth0 1 2 3 4 5 6 7 8 9", "/dev=lo 9 8 7 6 5 4 3 2 1"}),
              immediate(messages("ALL=ALL", "NETWORK-IO").at(0)));
}

TEST_F(CollectorTest, RecordsSayWhoseTheyAreAndAreShownToTheEnvironment)
{
    start<host::Temperature>();
    host::Collector& collector = *machine.collector;
    EXPECT_EQ(1, machine.record.sidToUuid.count(1));
    EXPECT_EQ(feature->getUUID(), machine.record.sidToUuid.at(feature->getSID()));
    EXPECT_EQ(test::START, machine.record.startTSC);

    QVBuffer buffer;
    CollectionData summary;
    EXPECT_FALSE(collector.getContinuousResult(buffer, summary));    // begin() took them
    EXPECT_EQ(1, collector.continuousCollectionTick());              // the clock stands still
    machine.clock.advance(100 * MS);
    EXPECT_EQ(0, collector.continuousCollectionTick());
    EXPECT_TRUE(collector.getContinuousResult(buffer, summary));
    EXPECT_EQ(test::START + 100 * MS, summary.getStopTimestamp());
    std::size_t offset = 0;
    const qv_driver_msg* message = buffer.next(offset);
    ASSERT_NE(nullptr, message);
    EXPECT_EQ(feature->getSID(), message->plugin_id);
    EXPECT_EQ(feature->getCapability().getMetricID(), message->metric_id);
    const unsigned long long tsc = message->tsc;
    EXPECT_EQ(test::START + 100 * MS, tsc);
    EXPECT_TRUE(buffer.isAtEnd(offset));    // names are read once
    EXPECT_FALSE(session.log.environment().checkResetOccurred());
    collection.reset();
}

TEST_F(CollectorTest, ASuspendIsTwoEventsInFrontOfTheNextRecords)
{
    start<host::Temperature>();
    PluginEnvironment& environment = session.log.environment();
    round(100);
    sleepUntil(150);    // too short to be one
    round(200);
    EXPECT_TRUE(environment.getSystemStateEvents().empty());
    sleepUntil(60'000);
    round(60'100);
    round(60'200);
    const unsigned long long before = test::START + 200 * MS;
    const unsigned long long behind = test::START + 60'100 * MS - 1;
    EXPECT_EQ((std::map<unsigned long long, unsigned int>{{before, 4}, {behind, 1}}),
              environment.getSystemStateEvents());
    const auto state = [&](unsigned long long ms) {
        const auto sid = static_cast<unsigned char>(feature->getSID());
        unsigned long long found = 0;
        for (unsigned char id = 1; id < 9; ++id)
            found += environment.isSystemReset(sid, 1, id, test::START + ms * MS);
        return found;
    };
    EXPECT_EQ(1u, state(60'100));    // of one message
    EXPECT_EQ(0u, state(60'200));
    EXPECT_EQ((std::pair<unsigned long long, unsigned long long>{before, behind}),
              environment.getLastResetEvent(test::START + 60'200 * MS));
}

TEST_F(CollectorTest, APauseTakesNoRecordsAndEndsWithANewBaseline)
{
    start<host::Temperature>();
    host::Collector& collector = *machine.collector;
    EXPECT_EQ(1, collector.resumeCollection());
    round(100);
    EXPECT_EQ(0, collector.pauseCollection());
    EXPECT_EQ(1, collector.pauseCollection());
    machine.clock.advance(1000 * MS);
    EXPECT_FALSE(collection->takeRound());
    EXPECT_EQ(0, collector.resumeCollection());
    round(1200);
    round(1300);
    ASSERT_TRUE(finish());
    EXPECT_EQ(1, collector.pauseCollection());    // over
    ASSERT_EQ(3u, session.writer.points.size());
    EXPECT_EQ(0u, duration(1));
    EXPECT_EQ(100u, duration(2));
    EXPECT_EQ(2u, session.log.environment().getSystemStateEvents().at(test::START + 100 * MS));
}

TEST_F(CollectorTest, APluginRefusesWhatItDoesNotKnow)
{
    start<host::Temperature>();
    round(100);
    const auto sid = static_cast<std::uint8_t>(feature->getSID());
    const auto deliver = [&](std::uint8_t msgId, auto fill) {
        QVBuffer buffer;
        buffer.beginRecord(machine.clock.now.tick + MS, {sid, 1, msgId});
        fill(buffer);
        buffer.endRecord();
        std::size_t offset = 0;
        return feature->processMessage_i(machine.record, buffer.next(offset));
    };
    const auto nothing = [](QVBuffer&) {};
    const auto twoBlocks = [](QVBuffer& buffer) {
        buffer.beginBlock(host::BlockKind::NUMBERS);
        buffer.beginBlock(host::BlockKind::NUMBERS);
    };
    const auto strangers = [](QVBuffer& buffer) {
        buffer.beginBlock(host::BlockKind::NUMBERS);
        host::RecordItem item;
        buffer.addItem(item);
        item.indices.add(77);
        buffer.addItem(item);
    };
    EXPECT_EQ(1, feature->processMessage_i(machine.record, nullptr));
    EXPECT_EQ(1, deliver(200, nothing));
    EXPECT_EQ(1, deliver(1, nothing));
    EXPECT_EQ(1, deliver(1, twoBlocks));
    EXPECT_EQ(0, deliver(1, strangers));
    ASSERT_TRUE(finish());
    EXPECT_EQ(1u, session.writer.points.size());
}

TEST_F(CollectorTest, OneTimestampServesARoundAndAClockThatStandsStillGivesNone)
{
    host::CpuLoad load;
    host::Temperature heat;
    for (host::FeaturePlugin* plugin :
         {static_cast<host::FeaturePlugin*>(&load), static_cast<host::FeaturePlugin*>(&heat)})
        host::enroll(*plugin, machine.record);
    machine.load();
    pwr::DataHandleProvider::initTopology(machine.record);
    {
        host::Collection both(machine.record, *machine.collector, {&load, &heat});
        ASSERT_EQ(nullptr, both.begin(machine.params));
        const auto change = [this](int user) {
            tree.write("proc/stat", "cpu0 " + std::to_string(user) + " 0 2000 90000 1000\n");
        };
        change(20'000);
        EXPECT_FALSE(both.takeRound());
        machine.clock.advance(MS);
        EXPECT_TRUE(both.takeRound());
        change(30'000);
        machine.clock.now.tick -= 500;    // set back
        EXPECT_FALSE(both.takeRound());
        machine.clock.advance(MS);
        EXPECT_TRUE(both.takeRound());
        EXPECT_EQ(machine.clock.now.tick, machine.record.stopTSC);
        EXPECT_TRUE(both.end().empty());
        EXPECT_EQ(2u + 2u * 2u, both.getSamples());
        EXPECT_EQ(0u, both.getFailedRecords());
        // No counter stood behind the stream: it got nothing of what was handed in.
        EXPECT_EQ(4u, both.getDroppedPoints(host::PointCounter()));
    }
    ASSERT_EQ(4u, session.writer.points.size());
    std::map<unsigned long long, int> points;
    for (const auto& point : session.writer.points)
        ++points[point.timestamp];
    EXPECT_EQ((std::map<unsigned long long, int>{{test::START + MS, 2}, {machine.clock.now.tick, 2}}), points);
}

TEST_F(CollectorTest, IdsThatDoNotFitIntoARecordAreRefused)
{
    machine.load();
    auto found = messages("ALL=ALL", "TEMPERATURE");
    found.at(0)->setPluginID(256);
    EXPECT_EQ(1, machine.collector->startCollection(found, machine.record));
    EXPECT_TRUE(session.log.contains("ERROR: the ids of the message ALL_TEMPERATURE_ZONES don't fit into a record\n"));
    EXPECT_EQ(1, machine.collector->continuousCollectionTick());
}

}    // namespace

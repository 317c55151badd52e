#include "FeatureTest.h"
#include "HostFixture.h"
#include "features/Counters.h"
#include "modules/ModuleFeature.h"
#include "sessions/Replay.h"
#include "sessions/SessionReader.h"
#include "sessions/SessionWriter.h"

#include "plugins/PluginCapability.h"
#include "record/Metadata.h"

#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>

namespace {

namespace fs = std::filesystem;
using host::SessionEntry;

using SessionTest = test::HostFixture;

// The tree is gone by then: all comes from the file.
TEST_F(SessionTest, ASavedSessionGivesTheSameFilesOnAnyMachine)
{
    std::vector<std::string> names;
    {
        const test::TreeCopy tree("four-cores");
        tree.write("proc/5/stat", "5 (x) S 1 1 1 0 -1 4194304 1 2 3 4 5 6 7 8 20 0 1 0 5 9\n");
        tree.write("proc/diskstats", "   8 0 sda 1 2 3 4 5 6 7 8\n");
        ASSERT_EQ(0, measure(tree, {"-m", "-r", "sum,html", "-o", path("live")})) << errors.str();
    }
    EXPECT_EQ(0, run({"-i", path("live.qvs"), "-r", "sum,html", "-o", path("again")})) << errors.str();
    EXPECT_NE(std::string::npos, out.str().find("\nPost Processed using Quorvane for Windows* OS Version "));
    for (const auto& entry : fs::directory_iterator(path(""))) {
        const std::string name = entry.path().filename().string();
        if (!name.starts_with("live_") && name != "live.html") continue;
        names.push_back(name);
        const bool isCsv = name != "live.html";
        const std::string live = test::contentOf(path(name));
        const std::string again = test::contentOf(path("again" + name.substr(4)));
        EXPECT_TRUE(live.starts_with(isCsv ? "\"-------" : "<!DOCTYPE html>\n")) << name;
        EXPECT_NE(live, again) << name;
        EXPECT_EQ(live, test::withoutLinesOf(again, isCsv ? "\"Post Processed " : "Post Processed ")) << name;
    }
    EXPECT_GE(names.size(), 6u);    // report, summary, and the timelines of what changes or is always told
}

TEST_F(SessionTest, WithoutPostProcessingTheSessionIsAll)
{
    const test::TreeCopy tree("four-cores");
    EXPECT_EQ(0, measure(tree, {"--no-post-processing", "-o", path("run")})) << errors.str();
    EXPECT_TRUE(out.str().ends_with(" records are saved in " + path("run.qvs") + "\n")) << out.str();
    EXPECT_FALSE(fs::exists(path("run_summary.csv")));
    EXPECT_EQ(0, run({"-i", path("run.qvs"), "-o", path("run"), "-r", "csv"})) << errors.str();
    EXPECT_NE(std::string::npos, test::contentOf(path("run_summary.csv")).find("Temperature Summary"));
    EXPECT_TRUE(fs::exists(path("run_temperature-metrics.csv")));
    EXPECT_EQ(0, run({"-i", path("run.qvs"), "--print-fms"}));
    EXPECT_EQ("0x6.0x4d.0x2\n", out.str());
}

// Cut at each byte it is no session, or ends with a fault; then what the host says in each part of it.
TEST_F(SessionTest, EachCutEndsTheSessionWithOneClearLine)
{
    const test::TreeCopy tree("no-idle");
    tree.write("sys/class/thermal/thermal_zone0/temp", "41500\n");
    ASSERT_EQ(0, measure(tree, {"--feature", "temperature", "-o", path("live")})) << errors.str();
    const std::string whole = test::contentOf(path("live.qvs"));
    std::vector<std::size_t> ends;    // of the entries, the system record's first
    for (std::size_t size = 0; size <= whole.size(); ++size) {
        const test::TestSession session;
        std::istringstream in(whole.substr(0, size));
        host::SessionReader reader(in);
        pwr::SystemMetadata record;
        bool isRead = reader.begin(record);
        if (isRead && ends.empty()) ends.push_back(size);
        ASSERT_EQ(!ends.empty(), isRead) << size;
        std::size_t entries = isRead ? 1 : 0;
        for (; isRead && reader.next(); ++entries)
            continue;
        if (entries > ends.size()) ends.push_back(size);
        ASSERT_EQ(entries, ends.size()) << size;
        EXPECT_EQ(size == whole.size(), reader.isWhole());
        EXPECT_EQ(size == whole.size(), reader.getFault().empty());
    }
    ASSERT_LE(8u, ends.size());    // with metadata, the baseline, rounds, and the closing record

    const std::string upTo = " records were read up to there\n";
    const struct {
        std::size_t size;
        int status;
        std::string begin;
        std::string end;
    } cases[] = {
        {ends[0] - 1, 1, " is no saved session: its system record is cut", "\n"},
        {ends[0], 1, " holds nothing that can be processed: it has no end\n", ""},
        {ends[0] + 7, 1, " holds nothing that can be processed: it is cut\n", ""},
        {ends[ends.size() - 2], 0, " has no end: ", upTo},
        {whole.size() - 1, 0, " is cut: ", upTo},
    };
    for (const auto& c : cases) {
        write("cut.qvs", whole.substr(0, c.size));
        EXPECT_EQ(c.status, run({"-i", path("cut.qvs"), "-o", path("cut")})) << c.begin;
        const std::string text = errors.str();
        EXPECT_TRUE(text.starts_with("quorvane_host: " + path("cut.qvs") + c.begin)) << text;
        EXPECT_TRUE(text.ends_with(c.end) && hasOneComplaint()) << text;
    }
}

TEST_F(SessionTest, WhatIsNoSessionIsRefused)
{
    const test::TreeCopy tree("no-idle");
    write("text.qvs", "Time (s),Entity\n");
    const std::string magic("QVS\r\n\x1A\n\0", 8);
    write("later.qvs", magic + std::string("\x02\0\0\0", 4));
    const struct {
        std::string file;
        std::string fault;
    } cases[] = {
        {path("none.qvs"), " can't be read: give --input a saved session"},
        {path("text.qvs"), " is no saved session: it begins otherwise"},
        {path("later.qvs"), " is no saved session: its version is 2, and only version 1 is known"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(1, run({"-i", c.file, "-o", path("run")}));
        expectOnly(c.file + c.fault);
    }
    EXPECT_EQ(1, run({"-i", tree.root(), "-o", path("run")}));
}

// Saves metadata and records by hand, as if a host with the plugins of the record's numbers had collected them.
class SessionBytesTest : public test::HostFixture {
protected:
    SessionBytesTest()
    {
        record.qvaClockFreqMHz = 1000;
        record.stopTSC = 0x11;
        record.stopTimeval = 0x22;
        record.programStopTimeval = 0x33;
    }
    void begin(const std::map<int, std::string>& plugins)
    {
        record.sidToUuid = plugins;
        EXPECT_TRUE(writer.open(path("run.qvs")));
        writer.begin(record);
    }
    void addMessage(int plugin, const std::string& feature)
    {
        pwr::MsgMetadata message(plugin, 1, 1);
        message.setCapName(feature);
        message.setMsgName("M");
        writer.addMetadata(message);
    }
    static QVBuffer recordOf(unsigned long long tick, const id_config_t& id)
    {
        QVBuffer records;
        records.beginRecord(tick, id);
        records.endRecord();
        return records;
    }
    std::string bytes()
    {
        writer.end(record);
        EXPECT_TRUE(writer.close());
        return test::contentOf(path("run.qvs"));
    }

    const test::TestSession session;
    pwr::SystemMetadata record = test::makeSystem();
    host::SessionWriter writer;
};

// The bytes that docs/session-files.md tells.
TEST_F(SessionBytesTest, TheFormatIsAsDocumented)
{
    begin({});
    pwr::MetricMetadata constants(1, 2);
    constants.addValue("k", "v");
    writer.addMetadata(constants);
    writer.addStates({{0x102, 4}});
    writer.addStates({{0x102, 4}});    // known already
    writer.addStates({{0x102, 1}});    // overwritten
    writer.addRecords(recordOf(0x44, {1, 2, 3}));
    const std::string whole = bytes();
    EXPECT_EQ(std::string("QVS\r\n\x1A\n\0\x01\0\0\0\x01", 13), whole.substr(0, 13));
    const std::string entries("\x02\x14\0\0\0\x01\0\0\0\x01\0\0\0\x02\0\0\0\x01\0\x01\0k\x01\0v"
                              "\x04\x0C\0\0\0\x02\x01\0\0\0\0\0\0\x04\0\0\0"
                              "\x04\x0C\0\0\0\x02\x01\0\0\0\0\0\0\x01\0\0\0"
                              "\x03\x0D\0\0\0\x44\0\0\0\0\0\0\0\0\0\x01\x02\x03"
                              "\x05\x18\0\0\0\x11\0\0\0\0\0\0\0\x22\0\0\0\0\0\0\0\x33\0\0\0\0\0\0\0",
                              25 + 17 + 17 + 18 + 29);
    EXPECT_EQ(entries, whole.substr(whole.size() - entries.size()));

    // A length that nothing follows takes no memory; an unknown kind, a system record among the metadata and a message
    // record that is none are damage, and so is more metadata or states than anybody has.
    const std::string front = whole.substr(0, whole.size() - entries.size());
    const auto repeated = [&entries](std::size_t at, std::size_t size, std::size_t count) {
        std::string text;
        for (std::size_t i = 0; i < count; ++i)
            text.append(entries, at, size);
        return text;
    };
    const struct {
        std::string more;
        std::string fault;
        int entries = 0;
    } cases[] = {
        {std::string("\x03\0\0\0\x04", 5), "is cut"},
        {std::string("\x03\x01\0\0\x04", 5), "is damaged"},
        {std::string("\x03\x0C\0\0\0tooShortHead", 17), "is damaged"},
        {std::string("\x07\0\0\0\0", 5), "is damaged"},
        {std::string("\x02\x04\0\0\0\x02\0\0\0", 9), "is damaged"},
        {std::string("\x02\x05\0\0\0\x01\0\0\0\0", 10), "is damaged"},
        {std::string("\x04\x01\0\0\0\0", 6), "is damaged"},
        {std::string("\x05\x01\0\0\0\0", 6), "is damaged"},
        {front.substr(12), "is damaged"},    // a second system record
        {repeated(0, 25, 65537), "is damaged", 65536},
        {repeated(25, 17, 65537), "is damaged", 65536},
        {"", "has no end"},
    };
    for (const auto& c : cases) {
        std::istringstream in(front + c.more);
        host::SessionReader reader(in);
        pwr::SystemMetadata again;
        ASSERT_TRUE(reader.begin(again));
        int read = 0;
        while (reader.next())
            ++read;
        EXPECT_EQ(c.entries, read);
        EXPECT_EQ(c.fault, reader.getFault());
        EXPECT_FALSE(reader.isWhole());
    }

    pwr::MetricMetadata unreadable(1, 2);
    unreadable.addValue("key", "");
    host::SessionWriter other;
    ASSERT_TRUE(other.open(path("run.qvs")));
    other.addMetadata(unreadable);
    EXPECT_FALSE(other.close());
    EXPECT_EQ(path("run.qvs") + " can't hold a metadata record with an empty text", other.getError());
}

// A module's plugin with two features, which writes down what it is given.
class TwoFeatures : public MetricPlugin {
public:
    TwoFeatures() : MetricPlugin("two")
    {
        for (const char* name : {"a", "b"})
            addCapability(new pwr::MetricPluginCapability(name, "", "PREFIX", 1));
    }
    int initialize(const pwr::SystemMetadata&) override
    {
        calls += "init " + std::to_string(getSID()) + ", ";
        return result;
    }
    int finalize(const pwr::SystemMetadata&) override { return 0; }
    int initializeCollection(Messages&, MetadataList&, const std::string&, const Params&,
                             const pwr::SystemMetadata&) override
    {
        ADD_FAILURE() << "nothing is collected";
        return 0;
    }
    int processMetadata(const pwr::Metadata* metadata) override
    {
        calls += "metadata " + std::to_string(metadata->getPluginID()) + ", ";
        return 0;
    }
    int processMessage_i(const pwr::SystemMetadata&, const qv_driver_msg* message) override
    {
        calls += "record " + std::to_string(message->plugin_id) + ", ";
        return 0;
    }
    const pwr::MetricPluginCapability& capability(std::size_t i) const
    {
        Capabilities capabilities;
        getAllCapabilities(capabilities);
        return dynamic_cast<const pwr::MetricPluginCapability&>(*capabilities.at(i));
    }

    std::string calls;
    int result = 0;
};

TEST_F(SessionBytesTest, ANumberStandsForOneFeatureOfItsPlugin)
{
    begin({{3, "gone"}, {4, "two"}, {7, "two"}, {8, "two"}});
    for (const auto& [plugin, feature] :
         std::vector<std::pair<int, std::string>>{{7, "b"}, {8, "a later one"}, {3, "a"}, {4, "a"}, {7, "b"}})
        addMessage(plugin, feature);
    for (const std::uint8_t number : std::initializer_list<std::uint8_t>{4, 8, 7, 3, 9})
        writer.addRecords(recordOf(2000, {number, 1, 1}));
    const std::string saved = bytes();
    TwoFeatures plugin;
    for (const int result : {0, 1}) {
        host::ModuleFeature a(plugin, plugin.capability(0));
        host::ModuleFeature b(plugin, plugin.capability(1));
        std::istringstream in(saved);
        host::SessionReader reader(in);
        ASSERT_TRUE(reader.begin(record));
        host::Replay replay(record, reader);
        EXPECT_EQ((std::vector<host::FeaturePlugin*>{&b, &a}), replay.choose({&a, &b}));
        EXPECT_EQ((std::set<std::string>{"gone", "two"}), replay.getMissing());
        plugin.calls.clear();
        plugin.result = result;
        EXPECT_EQ(result == 0 ? nullptr : &b, replay.begin());
        if (result != 0) continue;
        replay.run();
        EXPECT_EQ("init 7, metadata 7, metadata 7, init 4, metadata 4, record 4, record 7, ", plugin.calls);
        EXPECT_EQ(3u, replay.getLeftOutRecords());
        EXPECT_TRUE(reader.isWhole());
    }
}

// A system that never wakes up would have the environment keep each record.
TEST_F(SessionBytesTest, ASessionWithTooManyResetsEndsThere)
{
    begin({{1, "two"}});
    addMessage(1, "a");
    writer.addStates({{1, 4}});
    for (unsigned long long tick = 0; tick < host::MOST_RESETS + 9; ++tick)
        writer.addRecords(recordOf(2000 + tick, {1, 1, 1}));
    std::istringstream in(bytes());
    host::SessionReader reader(in);
    ASSERT_TRUE(reader.begin(record));
    host::Replay replay(record, reader);
    TwoFeatures plugin;
    host::ModuleFeature feature(plugin, plugin.capability(0));
    ASSERT_EQ(1u, replay.choose({&feature}).size());
    ASSERT_EQ(nullptr, replay.begin());
    replay.run();
    EXPECT_EQ("tells of more than 262144 resets", reader.getFault());
    EXPECT_EQ(host::MOST_RESETS + 2, reader.getRecords());
    EXPECT_EQ(2000 + host::MOST_RESETS + 1, record.stopTSC);
}

// A feature whose collection is saved along.
class SuspendedSessionTest : public test::FeatureTest {
protected:
    SuspendedSessionTest() : FeatureTest("no-idle") {}
};

// Behind a suspend the counters have new baselines, in the collection as in the processing of what it saved.
TEST_F(SuspendedSessionTest, ResetsAreProcessedAsTheyWere)
{
    const std::string file = test::freshPath("suspended");
    feature = std::make_unique<host::ContextSwitches>();
    host::enroll(*feature, machine.record);
    machine.load();
    ASSERT_EQ(0, pwr::DataHandleProvider::initTopology(machine.record));
    collection = std::make_unique<host::Collection>(machine.record, *machine.collector,
                                                    std::vector<host::FeaturePlugin*>{feature.get()});
    host::SessionWriter writer;
    ASSERT_TRUE(writer.open(file));
    collection->saveTo(writer);
    const auto count = [this](const char* number) { tree.write("proc/stat", std::string("ctxt ") + number + "\n"); };
    count("100");
    ASSERT_EQ(nullptr, collection->begin(machine.params));
    count("150");
    round(100);
    sleepUntil(5000);
    count("7000");
    round(5100);
    count("7010");
    round(5200);
    EXPECT_TRUE(finish());
    EXPECT_TRUE(writer.close());
    const auto live = session.writer.points;
    ASSERT_FALSE(live.empty());
    session.writer.points.clear();

    std::ifstream in(file, std::ios::binary);
    host::SessionReader reader(in);
    pwr::SystemMetadata saved;
    ASSERT_TRUE(reader.begin(saved));
    host::ContextSwitches again;
    PluginEnvironment* const published = g_pluginEnvironment;
    while (!published->getSystemStateEvents().empty())
        published->removeLastSystemStateEvent();
    host::Replay replay(saved, reader);
    const auto chosen = replay.choose({&again});
    ASSERT_EQ(1u, chosen.size());
    replay.use(chosen);
    ASSERT_EQ(nullptr, replay.begin());
    replay.run();
    EXPECT_TRUE(replay.end().empty());
    EXPECT_EQ(2u, published->getSystemStateEvents().size());
    EXPECT_TRUE(reader.isWhole());
    EXPECT_EQ(machine.record.stopTSC, saved.stopTSC);
    ASSERT_EQ(live.size(), session.writer.points.size());
    for (std::size_t i = 0; i < live.size(); ++i) {
        EXPECT_EQ(live[i].timestamp, session.writer.points[i].timestamp);
        EXPECT_EQ(live[i].elements.at(0).duration, session.writer.points[i].elements.at(0).duration);
        EXPECT_TRUE(live[i].elements.at(0).value == session.writer.points[i].elements.at(0).value);
    }
    in.close();
    fs::remove(file);
}

}    // namespace

#include "FeatureTest.h"
#include "Host.h"
#include "features/Counters.h"
#include "features/CpuLoad.h"
#include "sessions/Replay.h"
#include "sessions/SessionReader.h"
#include "sessions/SessionWriter.h"

#include "record/Metadata.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

namespace {

namespace fs = std::filesystem;
using host::SessionEntry;

class SessionTest : public testing::Test {
protected:
    ~SessionTest() override { fs::remove_all(m_folder); }

    int run(std::vector<std::string> arguments)
    {
        out.str("");
        errors.str("");
        return host::runHost(arguments, {out, errors});
    }
    int collect(const test::TreeCopy& tree, std::vector<std::string> more)
    {
        const std::vector<std::string> common{"--sysroot", tree.root(), "-t", "0.15", "-n", "40"};
        more.insert(more.begin(), common.begin(), common.end());
        return run(more);
    }
    std::string path(const std::string& name) const { return m_folder + "/" + name; }
    void write(const std::string& name, const std::string& bytes) const
    {
        fs::create_directories(m_folder);
        std::ofstream(path(name), std::ios::binary) << bytes;
    }

    std::ostringstream out;
    std::ostringstream errors;

private:
    const std::string m_folder = test::freshPath("sessions");
};

std::string withoutLinesOf(const std::string& text, const std::string& head)
{
    std::istringstream lines(text);
    std::string rest;
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with(head)) rest += line + '\n';
    }
    return rest;
}

// The tree is gone by then: all comes from the file.
TEST_F(SessionTest, ASavedSessionGivesTheSameFilesOnAnyMachine)
{
    std::vector<std::string> names;
    {
        const test::TreeCopy tree("four-cores");
        tree.write("proc/5/stat", "5 (x) S 1 1 1 0 -1 4194304 1 2 3 4 5 6 7 8 20 0 1 0 5 9\n");
        tree.write("proc/diskstats", "   8 0 sda 1 2 3 4 5 6 7 8\n");
        ASSERT_EQ(0, collect(tree, {"-m", "-o", path("live")})) << errors.str();
    }
    EXPECT_EQ(0, run({"-i", path("live.qvs"), "-o", path("again")})) << errors.str();
    EXPECT_NE(std::string::npos, out.str().find("\nPost Processed using Quorvane for Windows* OS Version "));
    for (const auto& entry : fs::directory_iterator(path(""))) {
        const std::string name = entry.path().filename().string();
        if (!name.starts_with("live_")) continue;
        names.push_back(name);
        const std::string live = test::contentOf(path(name));
        const std::string again = test::contentOf(path("again" + name.substr(4)));
        EXPECT_TRUE(live.starts_with("\"-------")) << name;
        EXPECT_NE(live, again) << name;
        EXPECT_EQ(live, withoutLinesOf(again, "\"Post Processed ")) << name;
    }
    EXPECT_GE(names.size(), 5u);    // the summary, and the timelines of what changes or is always told
}

TEST_F(SessionTest, WithoutPostProcessingTheSessionIsAll)
{
    const test::TreeCopy tree("four-cores");
    EXPECT_EQ(0, collect(tree, {"--no-post-processing", "-o", path("run")})) << errors.str();
    EXPECT_TRUE(out.str().ends_with(" records are saved in " + path("run.qvs") + "\n")) << out.str();
    EXPECT_FALSE(fs::exists(path("run_summary.csv")));
    EXPECT_EQ(0, run({"-i", path("run.qvs"), "-o", path("run"), "-r", "csv"})) << errors.str();
    EXPECT_NE(std::string::npos, test::contentOf(path("run_summary.csv")).find("Temperature Summary"));
    EXPECT_TRUE(fs::exists(path("run_temperature-metrics.csv")));
}

TEST_F(SessionTest, EachCutGivesOneClearLine)
{
    const test::TreeCopy tree("no-idle");
    tree.write("sys/class/thermal/thermal_zone0/temp", "41500\n");
    ASSERT_EQ(0, collect(tree, {"--feature", "temperature", "-o", path("live")})) << errors.str();
    const std::string whole = test::contentOf(path("live.qvs"));
    ASSERT_LT(300u, whole.size());
    std::size_t steps[4] = {};    // no session, nothing in it, no sample in it, samples
    for (std::size_t size = 0; size < whole.size(); size += size + 80 < whole.size() ? 7 : 1) {
        write("cut.qvs", whole.substr(0, size));
        const int status = run({"-i", path("cut.qvs"), "-o", path("cut")});
        const std::string text = errors.str();
        const bool isSession = text.find(" is no saved session: ") == std::string::npos;
        const bool isEmpty = text.find(" holds nothing that can be processed: it ") != std::string::npos;
        EXPECT_EQ(isSession && !isEmpty, text.find(" records were read up to there\n") != std::string::npos) << text;
        EXPECT_TRUE(status == 1 || (isSession && !isEmpty)) << text;
        const bool hasOneLine = std::count(text.begin(), text.end(), '\n') == 1;
        EXPECT_TRUE(hasOneLine || (isSession && !isEmpty && status == 1)) << text;
        ++steps[!isSession ? 0 : isEmpty ? 1 : status == 1 ? 2 : 3];
    }
    for (const std::size_t count : steps)
        EXPECT_LT(0u, count);
    EXPECT_EQ(0, run({"-i", path("live.qvs"), "-o", path("cut")}));
    EXPECT_EQ("", errors.str());
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
        EXPECT_EQ("quorvane_host: " + c.file + c.fault + "\n", errors.str());
        EXPECT_EQ("", out.str());
    }
    EXPECT_EQ(1, run({"-i", tree.root(), "-o", path("run")}));
}

// The bytes that docs/session-files.md tells.
TEST_F(SessionTest, TheFormatIsAsDocumented)
{
    const test::TestSession session;
    pwr::SystemMetadata record;
    record.platformName = record.hostName = record.osName = record.osType = record.osVersion = "x";
    record.qvaClockFreqMHz = 1000;
    record.stopTSC = 0x11;
    record.stopTimeval = 0x22;
    record.programStopTimeval = 0x33;
    QVBuffer records;
    records.beginRecord(0x44, {1, 2, 3});
    records.endRecord();
    pwr::MetricMetadata constants(1, 2);
    constants.addValue("k", "v");

    host::SessionWriter writer;
    ASSERT_TRUE(writer.open(path("run.qvs")));
    writer.begin(record);
    writer.addMetadata(constants);
    writer.addStates({{0x102, 4}});
    writer.addStates({{0x102, 4}});    // known already
    writer.addRecords(records);
    writer.end(record);
    EXPECT_TRUE(writer.close());
    const std::string bytes = test::contentOf(path("run.qvs"));
    EXPECT_EQ(std::string("QVS\r\n\x1A\n\0\x01\0\0\0\x01", 13), bytes.substr(0, 13));
    EXPECT_EQ(std::string("\x02\x14\0\0\0\x01\0\0\0\x01\0\0\0\x02\0\0\0\x01\0\x01\0k\x01\0v"
                          "\x04\x0C\0\0\0\x02\x01\0\0\0\0\0\0\x04\0\0\0"
                          "\x03\x0D\0\0\0\x44\0\0\0\0\0\0\0\0\0\x01\x02\x03"
                          "\x05\x18\0\0\0\x11\0\0\0\0\0\0\0\x22\0\0\0\0\0\0\0\x33\0\0\0\0\0\0\0",
                          25 + 17 + 18 + 29),
              bytes.substr(bytes.size() - 25 - 17 - 18 - 29));

    // A length that nothing follows takes no memory; an unknown kind, a system record among the metadata and a message
    // record that is none are damage.
    const std::string front = bytes.substr(0, bytes.size() - 89);
    const struct {
        std::string more;
        std::string fault;
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
        {"", "has no end"},
    };
    for (const auto& c : cases) {
        std::istringstream in(front + c.more);
        host::SessionReader reader(in);
        pwr::SystemMetadata again;
        ASSERT_TRUE(reader.begin(again));
        EXPECT_FALSE(reader.next());
        EXPECT_EQ(c.fault, reader.getFault());
        EXPECT_FALSE(reader.isWhole());
    }
}

TEST_F(SessionTest, AMetadataRecordThatCouldNotBeReadBackIsAnError)
{
    host::SessionWriter writer;
    ASSERT_TRUE(writer.open(path("run.qvs")));
    pwr::MetricMetadata record(1, 2);
    record.addValue("key", "");
    writer.addMetadata(record);
    EXPECT_FALSE(writer.close());
    EXPECT_EQ(path("run.qvs") + " can't hold a metadata record with an empty text", writer.getError());
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

    std::ifstream once(file, std::ios::binary);
    host::SessionReader more(once);
    ASSERT_TRUE(more.begin(saved));
    host::CpuLoad other;
    host::Replay nobody(saved, more);
    EXPECT_TRUE(nobody.choose({&other}).empty());
    nobody.run();
    EXPECT_EQ(more.getRecords(), nobody.getLeftOutRecords());
    EXPECT_EQ((std::set<std::string>{again.getUUID()}), nobody.getMissing());
    EXPECT_EQ(0u, nobody.getFailedRecords());
    in.close();
    once.close();
    fs::remove(file);
}

}    // namespace

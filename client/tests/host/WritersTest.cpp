#include "Session.h"
#include "TreeCopy.h"
#include "support/LogCapture.h"
#include "writers/ConsoleWriter.h"
#include "writers/CsvFile.h"
#include "writers/CsvWriter.h"

#include "metrics/Metric.h"
#include "output/TableMessage.h"
#include "output/TextNotes.h"
#include "plugins/PluginCapability.h"
#include "record/SystemMetadata.h"
#include "values/Description.h"
#include "values/EntityHandle.h"
#include "values/Formatter.h"
#include "values/Process.h"
#include "values/Quantity.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <sstream>

namespace {

using host::CsvFile;
namespace fs = std::filesystem;

TEST(CsvFileTest, FoldersAreMadeAndLinesEndInALineFeedEverywhere)
{
    const std::string folder = test::freshPath("folder");
    CsvFile file;
    ASSERT_TRUE(file.open(folder + "/deeper/a.csv"));
    file.writeRow({"x", "", "1,5"});
    file.writeEmptyLine();
    file.writeRow({"end"});
    EXPECT_TRUE(file.close());
    EXPECT_EQ("x,,\"1,5\"\n\nend\n", test::contentOf(folder + "/deeper/a.csv"));
    fs::remove_all(folder);
}

TEST(CsvFileTest, AFileThatCanNotBeOpenedIsReportedOnce)
{
    const std::string folder = test::freshPath("folder");
    fs::create_directory(folder);
    CsvFile file;
    EXPECT_FALSE(file.open(folder));
    const std::string error = file.getError();
    EXPECT_TRUE(error.starts_with(folder + " can't be written")) << error;
    file.writeRow({"lost"});
    EXPECT_FALSE(file.close());
    EXPECT_EQ(error, file.getError());
    fs::remove_all(folder);
}

TEST(CsvFileTest, AFullDeviceIsReportedAtTheLatestWhenClosed)
{
    if (!fs::exists("/dev/full")) GTEST_SKIP() << "this system has no full device";
    CsvFile file;
    ASSERT_TRUE(file.open("/dev/full"));
    file.writeRow({"text"});
    EXPECT_FALSE(file.close());
    EXPECT_TRUE(file.getError().starts_with("/dev/full could not be written to its end: ")) << file.getError();
}

// Both writers behind one stream, as in a run.
class WritersTest : public testing::Test {
protected:
    WritersTest() : csv(prefix)
    {
        record.qvaClockFreqMHz = 1000;
        record.startTSC = 1'000'000'000;
        EXPECT_EQ(0, csv.openOutput());
        stream.addWriter(console);
        stream.addWriter(csv);
        EXPECT_TRUE(stream.open(session.getEnvironment(), record));
    }
    ~WritersTest() override
    {
        stream.close();
        for (const std::string& file : csv.getFiles())
            fs::remove(file);
    }

    void push(pwr::WriterMessage& message)
    {
        static_cast<WriterStream*>(session.getEnvironment().getWriterStream())->pushMessage(message);
    }
    std::string file(const std::string& name)
    {
        stream.close();
        return test::bodyOf(prefix + "_" + name + ".csv");
    }

    const std::string prefix = test::freshPath("writers");
    std::ostringstream errors;
    std::ostringstream out;
    host::Session session{errors};
    pwr::SystemMetadata record;
    host::ConsoleWriter console{out};
    host::CsvWriter csv;
    host::OutputStream stream;
};

TEST_F(WritersTest, EachWriterHasOneCapabilityAndTheStreamKnowsItsTables)
{
    for (const WriterPlugin* writer :
         {static_cast<const WriterPlugin*>(&console), static_cast<const WriterPlugin*>(&csv)}) {
        Plugin::Capabilities capabilities;
        writer->getAllCapabilities(capabilities);
        ASSERT_EQ(1u, capabilities.size());
        EXPECT_EQ(writer, capabilities[0]->getOwner());
    }
    const auto* published = static_cast<WriterStream*>(session.getEnvironment().getWriterStream());
    EXPECT_TRUE(published->isSupportedTableClass(host::TableWriter::SUMMARIES));
    EXPECT_FALSE(published->isSupportedTableClass(pwr::TableClass{1}));
}

TEST_F(WritersTest, HostileTextsStayInTheirCells)
{
    const pwr::EntityHandle* entity = pwr::EntityHandle::create("evil, \"entity\"", nullptr);
    pwr::TextNotes notes;
    notes.addPreTableNote("before, this");
    notes.addPostTableNote("after\nthat");
    pwr::TableMessage table("Title, \"quoted\"", nullptr);
    table.setTextNotes(&notes);
    table.addField("State", pwr::DataType::STRING, true);
    table.addField("Load (%)", pwr::DataType::REAL, pwr::RealFormatter(0, 2), false);
    table.addField("Time (ms)", pwr::DataType::UINT, false);
    table.addEntity(entity);
    table.createTable();
    push(table);
    table.setField(0, "a,b\r\nc");
    table.setField(entity, 1, 1234567.5);
    push(table);
    table.setField(0, "=1+1");
    table.setField(entity, 2, 7U);
    push(table);
    EXPECT_EQ("\"Title, \"\"quoted\"\"\"\n"
              "\"before, this\"\n"
              "State,\"evil, \"\"entity\"\" Load (%)\",\"evil, \"\"entity\"\" Time (ms)\"\n"
              "\"a,b\r\nc\",1234567.50,\n"
              "'=1+1,,7\n"
              "\"after\nthat\"\n"
              "\n",
              file("summary"));
    EXPECT_EQ("", errors.str());
}

TEST_F(WritersTest, TheConsoleAlignsTextsLeftAndNumbersRight)
{
    const pwr::EntityHandle* core = pwr::EntityHandle::create("Core", nullptr);
    pwr::TableMessage table("Loads", nullptr);
    table.addField("State", pwr::DataType::STRING, true);
    table.addField("Load (%)", pwr::DataType::REAL, pwr::RealFormatter(0, 2), false);
    table.addField("n", pwr::DataType::INT, false);
    table.addEntity(core);
    table.createTable();
    push(table);
    const struct {
        const char* state;
        double load;
        int count;
    } rows[] = {{"C6", 5.0, -12}, {"Zust\xC3\xA4nd", 100.0, 3}};
    for (const auto& row : rows) {
        table.setField(0, row.state);
        table.setField(core, 1, row.load);
        table.setField(core, 2, row.count);
        push(table);
    }
    pwr::TableMessage empty("Nothing", nullptr);
    empty.addField("Only", pwr::DataType::INT, true);
    empty.createTable();
    push(empty);
    stream.close();
    EXPECT_EQ("\nLoads\n\n"
              "               Core  Core\n"
              "  State    Load (%)     n\n"
              "  C6           5.00   -12\n"
              "  Zust\xC3\xA4nd    100.00     3\n"
              "\nNothing\n\n"
              "  Only\n",
              out.str());
}

TEST_F(WritersTest, TimelinesTellEachSampleInFull)
{
    const pwr::EntityHandle* core = pwr::EntityHandle::create("Core, 0", nullptr);
    const auto collect = [&](const std::string& name, auto value) {
        pwr::Metric metric(name, pwr::Metric::MetricType::SampledValue, "M", "F", record, pwr::Quantity::power());
        pwr::DataElement element(core, nullptr);
        element.setValue(value);
        metric.setData(1'000'000'001, element, 0);
        metric.setData(1'250'000'000, element, 0);
        metric.setPreMetricTextInfo("pre, metric");
        metric.setPostMetricTextInfo("post metric");
        metric.finalize();
    };
    collect("Package power!", 1.0 / 3.0);
    collect("package POWER?", 4096U);
    collect("Summary", "a\"b");
    const std::string summary = file("summary");
    EXPECT_EQ("Time (s),Time (UTC),Entity,Descriptor,Power (mW),Duration (s)\n"
              "0.000000001,,\"Core, 0\",,0.3333333333333333,0.000000001\n"
              "0.250000000,,\"Core, 0\",,0.3333333333333333,0.249999999\n",
              file("package-power-"));
    EXPECT_EQ("Time (s),Time (UTC),Entity,Descriptor,Power (mW),Duration (s)\n"
              "0.000000001,,\"Core, 0\",,4096,0.000000001\n"
              "0.250000000,,\"Core, 0\",,4096,0.249999999\n",
              file("package-power--2"));
    EXPECT_NE("", file("summary-2"));
    EXPECT_TRUE(summary.starts_with("\"pre, metric\"\n\n")) << summary;
    EXPECT_TRUE(summary.ends_with("\n\npost metric\n\n")) << summary;
    EXPECT_EQ(4u, csv.getFiles().size());
    EXPECT_EQ("", csv.getError());
}

TEST_F(WritersTest, TimelinesNameHandlesAndTellProcessesApart)
{
    pwr::Metric metric("Events", pwr::Metric::MetricType::TracedEvent, "M", "F", record, nullptr);
    metric.setValueGroupInfo(pwr::FieldDescription("What", ""));
    pwr::ProcessManager::create(pwr::ProcessDescription(77, 0, 1, "shell, old"));
    const pwr::EntityHandle* system = pwr::EntityHandle::create("All", nullptr);
    unsigned long long tsc = 1'000'000'001;
    for (const pwr::DataHandle* handle :
         {static_cast<const pwr::DataHandle*>(pwr::Process::get(77)), static_cast<const pwr::DataHandle*>(system)}) {
        pwr::DataElement element(system, nullptr);
        element.setValue(*handle);
        metric.setData(tsc++, element, 0);
    }
    metric.finalize();
    stream.close();
    EXPECT_EQ("Time (s),Time (UTC),Entity,Descriptor,What,Duration (s)\n"
              "0.000000001,,All,,\"shell, old (77)\",0.000000001\n"
              "0.000000002,,All,,All,0.000000001\n",
              test::bodyOf(prefix + "_events.csv"));
}

TEST_F(WritersTest, ATimelineThatCanNotBeOpenedIsAnError)
{
    const std::string path = prefix + "_m.csv";
    fs::create_directory(path);
    const pwr::EntityHandle* core = pwr::EntityHandle::create("Core", nullptr);
    pwr::Metric metric("M", pwr::Metric::MetricType::SampledValue, "M", "F", record, nullptr);
    pwr::DataElement element(core, nullptr);
    element.setValue(1);
    metric.setData(1'000'000'001, element, 0);
    metric.finalize();
    stream.close();
    EXPECT_TRUE(csv.getError().starts_with(path + " can't be written")) << csv.getError();
    EXPECT_EQ(1u, csv.getFiles().size());
    fs::remove(path);
}

}    // namespace

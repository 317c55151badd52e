#include "Session.h"
#include "features/Counters.h"
#include "sessions/Replay.h"
#include "sessions/SessionReader.h"
#include "sessions/SessionWriter.h"
#include "records/QVBuffer.h"
#include "writers/ConsoleWriter.h"
#include "writers/CsvWriter.h"

#include "metrics/Metric.h"
#include "record/Metadata.h"
#include "record/SystemMetadata.h"
#include "values/EntityHandle.h"
#include "values/Quantity.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <ostream>
#include <string>
#include <sys/resource.h>

// Saved sessions: writing and processing driver records, each of which makes one sample. Both take memory that does not
// grow with the records; processing takes at most 3 times as long as the same setData calls with the same writers.

namespace {

constexpr unsigned long long INTERVAL_TICKS = 1'000'000;
constexpr unsigned long long START = 1'000'000'000;
constexpr int RECORDS_IN_A_ROUND = 10;

pwr::SystemMetadata makeRecord(const std::string& uuid)
{
    pwr::SystemMetadata record;
    record.platformName = record.hostName = record.osName = record.osType = record.osVersion = "bench";
    record.exeBuildDate = record.nonNumericVersion = record.buildRef = record.packageType = "bench";
    record.qvaClockFreqMHz = 1000;
    record.startTSC = START;
    record.sidToUuid[1] = uuid;
    record.buildTopology("0 0 0 -1", 0);
    return record;
}

std::string fileFor(std::int64_t records)
{
    return (std::filesystem::temp_directory_path() / ("quorvane-bench-" + std::to_string(records) + ".qvs")).string();
}

void addMessage(host::SessionWriter& session)
{
    pwr::MsgMetadata message(1, 1, 1);
    message.setCapName("context-switches");
    message.setMsgName("TOTAL");
    auto* operation = new pwr::OperationMetadata("CONTEXT-SWITCHES_TOTAL_PROCFS", "PROCFS", 0);
    operation->setOrgMsgTag("/proc/stat");
    message.addMetaValue(operation);
    session.addMetadata(message);
}

// As many rounds as make that many records.
void writeSession(const std::string& path, const pwr::SystemMetadata& record, std::int64_t records)
{
    host::SessionWriter session;
    session.open(path);
    session.begin(record);
    addMessage(session);
    QVBuffer buffer;
    unsigned long long tick = START;
    for (std::int64_t i = 0; i < records; i += RECORDS_IN_A_ROUND) {
        buffer.clear();
        for (int k = 0; k < RECORDS_IN_A_ROUND; ++k) {
            tick += INTERVAL_TICKS;
            buffer.beginRecord(tick, {1, 1, 1});
            buffer.beginBlock(host::BlockKind::ROWS);
            host::RecordItem row;
            row.numbers[0] = tick / 1000;
            row.numberCount = 1;
            buffer.addItem(row);
            buffer.endRecord();
        }
        session.addRecords(buffer);
        session.flush();
    }
    session.end(record);
    session.close();
}

long peakKilobytes()
{
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

// What a run writes to: tables that nobody sees, and files.
struct Writers {
    Writers() : tables(nowhere), csv(fileFor(0)) { csv.openOutput(); }
    void open(host::Session& session, pwr::SystemMetadata& record)
    {
        stream.addWriter(tables);
        stream.addWriter(csv);
        stream.open(session.getEnvironment(), record);
    }
    ~Writers()
    {
        stream.close();
        for (const std::string& file : csv.getFiles())
            std::filesystem::remove(file);
    }

    std::ostream nowhere{nullptr};
    host::ConsoleWriter tables;
    host::CsvWriter csv;
    host::OutputStream stream;
};

void BM_SessionWrite(benchmark::State& state)
{
    std::ostream nowhere(nullptr);
    const host::Session session(nowhere);
    const pwr::SystemMetadata record = makeRecord(host::ContextSwitches().getUUID());
    const long before = peakKilobytes();
    for (auto _ : state)
        writeSession(fileFor(state.range(0)), record, state.range(0));
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.counters["peak_growth_KiB"] = static_cast<double>(peakKilobytes() - before);
    std::filesystem::remove(fileFor(state.range(0)));
}

void BM_SessionProcess(benchmark::State& state)
{
    std::ostream nowhere(nullptr);
    const std::string file = fileFor(state.range(0));
    {
        const host::Session session(nowhere);
        writeSession(file, makeRecord(host::ContextSwitches().getUUID()), state.range(0));
    }
    const long before = peakKilobytes();
    for (auto _ : state) {
        host::Session session(nowhere);
        pwr::SystemMetadata record;
        std::ifstream in(file, std::ios::binary);
        host::SessionReader reader(in);
        host::ContextSwitches feature;
        Writers writers;
        host::Replay replay(record, reader);
        if (!reader.begin(record)) state.SkipWithError("no session");
        session.useSavedRecord(record);
        writers.open(session, record);
        replay.use(replay.choose({&feature}));
        replay.begin();
        replay.run();
        replay.end();
        if (!reader.isWhole() || feature.getSamples() + 1 != static_cast<std::uint64_t>(state.range(0)))
            state.SkipWithError("not all records were processed");
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.counters["peak_growth_KiB"] = static_cast<double>(peakKilobytes() - before);
    std::filesystem::remove(file);
}

// The floor of processing.
void BM_SessionSetDataOnly(benchmark::State& state)
{
    std::ostream nowhere(nullptr);
    for (auto _ : state) {
        host::Session session(nowhere);
        pwr::SystemMetadata record = makeRecord("none");
        Writers writers;
        session.useRecord(record);
        writers.open(session, record);
        pwr::Metric metric("Context switches", pwr::Metric::MetricType::SampledDelta, "COUNT", "CONTEXT-SWITCHES",
                           record, pwr::Quantity::operations());
        pwr::DataElement element(pwr::EntityHandle::getSystemHandle(), nullptr);
        unsigned long long tick = START;
        for (std::int64_t i = 0; i < state.range(0); ++i) {
            tick += INTERVAL_TICKS;
            element.setValue(std::uint64_t{1000});
            if (metric.setData(tick, element, INTERVAL_TICKS) != 0) state.SkipWithError("a sample was refused");
        }
        metric.finalize();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

BENCHMARK(BM_SessionWrite)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(BM_SessionProcess)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(BM_SessionSetDataOnly)->Arg(1'000'000)->Unit(benchmark::kMillisecond)->Iterations(1);

}    // namespace

#include "Session.h"
#include "writers/Results.h"

#include "metrics/Metric.h"
#include "record/SystemMetadata.h"
#include "values/EntityHandle.h"
#include "values/Quantity.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <charconv>
#include <array>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <malloc.h>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

using namespace pwr;

namespace {

constexpr std::int64_t ROWS = 1'000'000;
constexpr std::size_t ENTITIES = 64;
constexpr std::uint64_t START = 1'000'000'000;
constexpr std::uint64_t INTERVAL = 10'000'000;

std::string folder()
{
    const auto path = std::filesystem::temp_directory_path() / ("quorvane-writer-bench-" + std::to_string(getpid()));
    std::filesystem::create_directories(path);
    return path.string();
}

double valueOf(std::uint64_t row)
{
    return static_cast<double>(row * 7919 % 100'003) / 7.0;
}

std::string nameOf(std::size_t entity)
{
    return "CPU/Package_0/Core_" + std::to_string(entity) + "/Thread_" + std::to_string(entity);
}

// What this process has allocated and not freed.
std::int64_t allocatedBytes()
{
    const struct mallinfo2 info = mallinfo2();
    return static_cast<std::int64_t>(info.uordblks + info.hblkhd);
}

template <typename... Format>
char* digits(char* at, Format... format)
{
    return std::to_chars(at, at + 400, format...).ptr;
}

// The floor: std::to_chars and fwrite of the fields of a row of a timeline, the moment in both its forms; rows/s.
void BM_WriterFloor(benchmark::State& state)
{
    const std::string path = folder() + "/floor.csv";
    std::vector<std::string> names;
    for (std::size_t i = 0; i < ENTITIES; ++i)
        names.push_back("," + nameOf(i) + ",,");
    for (auto _ : state) {
        std::FILE* file = std::fopen(path.c_str(), "wb");
        char text[2048];
        for (std::int64_t row = 0; row < ROWS; ++row) {
            const auto point = static_cast<std::uint64_t>(row) / ENTITIES + 1;
            const std::string& name = names[static_cast<std::size_t>(row) % ENTITIES];
            const double seconds = static_cast<double>(point * INTERVAL) * 1e-9;
            char* end = digits(text, seconds, std::chars_format::fixed, 9);
            *end++ = ',';
            end = digits(end, 1'795'400'378'000'000'000ULL + point * INTERVAL);
            end = std::copy(name.begin(), name.end(), end);
            end = digits(end, valueOf(static_cast<std::uint64_t>(row)));
            *end++ = ',';
            end = digits(end, 0.01, std::chars_format::fixed, 9);
            *end++ = '\n';
            std::fwrite(text, 1, static_cast<std::size_t>(end - text), file);
        }
        std::fclose(file);
    }
    state.SetItemsProcessed(state.iterations() * ROWS);
    std::filesystem::remove_all(folder());
}
BENCHMARK(BM_WriterFloor)->Unit(benchmark::kMillisecond);

// A host with the writers of some formats.
struct Run {
    explicit Run(const std::vector<std::string>& formats)
    {
        record.qvaClockFreqMHz = 1000;
        record.startTSC = START;
        record.startTimeval = 1'795'400'378'000'000'000;
        results.add(formats, folder() + "/run");
        results.open();
        for (const auto& writer : results.getWriters())
            stream.addWriter(*writer);
        stream.open(session.getEnvironment(), record);
        for (std::size_t i = 0; i < ENTITIES; ++i)
            entities.push_back(EntityHandle::create(nameOf(i), nullptr));
    }
    ~Run()
    {
        stream.close();
        std::filesystem::remove_all(folder());
    }
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    std::ostringstream log;
    host::Session session{log};
    SystemMetadata record;
    host::Results results;
    host::OutputStream stream;
    std::vector<const EntityHandle*> entities;
};

// Returns by how many bytes the allocated memory grew over the second half.
std::int64_t feedRows(Run& run, Metric& metric)
{
    std::int64_t half = 0;
    std::vector<DataElement> elements;
    for (const EntityHandle* entity : run.entities)
        elements.emplace_back(entity, nullptr);
    for (std::int64_t row = 0; row < ROWS; ++row) {
        const auto point = static_cast<std::uint64_t>(row) / ENTITIES + 1;
        DataElement& element = elements[static_cast<std::size_t>(row) % ENTITIES];
        element.setValue(valueOf(static_cast<std::uint64_t>(row)));
        metric.setData(START + point * INTERVAL, element, 0);
        if (row == ROWS / 2) half = allocatedBytes();
    }
    return allocatedBytes() - half;
}

// Rows/s of the whole road of a million data points: of the metric alone, and with each writer behind it. What csv and
// jsonl add to the metric's time is at most 3 times the floor. No writer allocates over the second half.
void BM_Writer(benchmark::State& state)
{
    const auto format = state.range(0);
    std::vector<std::string> formats;
    if (format >= 0)
        formats.emplace_back(std::array{"csv", "jsonl", "trace", "html", "prom"}[static_cast<std::size_t>(format)]);
    state.SetLabel(format >= 0 ? formats.front() : "metric alone");
    for (auto _ : state) {
        Run run(formats);
        Metric metric("Load", Metric::MetricType::SampledDelta, "LOAD", "LOAD", run.record, Quantity::energy());
        state.counters["grown_kB"] = static_cast<double>(feedRows(run, metric)) / 1024;
    }
    state.SetItemsProcessed(state.iterations() * ROWS);
}
BENCHMARK(BM_Writer)->ArgName("writer")->DenseRange(-1, 4)->Unit(benchmark::kMillisecond);

}    // namespace

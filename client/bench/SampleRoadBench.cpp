#include "metrics/Metric.h"
#include "output/WriterPlugin.h"
#include "output/WriterStream.h"
#include "plugins/PluginEnvironment.h"
#include "plugins/QuorvaneHost.h"
#include "record/SystemMetadata.h"
#include "values/Description.h"
#include "values/EntityHandle.h"
#include "values/Handles.h"
#include "values/Quantity.h"
#include "values/UniqueId.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <vector>

using namespace pwr;

namespace {

constexpr std::uint64_t INTERVAL_TICKS = 100'000;
constexpr std::size_t STATES = 4;
constexpr std::uint64_t VALUES = 16;

class IdleWriter : public WriterPlugin {
public:
    IdleWriter() : WriterPlugin("idle") {}
    ~IdleWriter() override = default;
    int openOutput() override { return 0; }
    int closeOutput() override { return 0; }
};

// A host with one writer that does nothing and no output configuration, so that every summary is made.
struct Session {
    explicit Session(std::size_t entityCount)
    {
        g_pluginEnvironment = &environment;
        UniqueId::initialize();
        stream = QuorvaneHost::createWriterStream(writers);
        environment.setWriterStream(stream);
        system.qvaClockFreqMHz = 1000;
        for (std::size_t i = 0; i < entityCount; ++i) {
            entities.push_back(EntityHandle::create("Core_" + std::to_string(i), nullptr));
        }
        for (std::size_t i = 0; i < STATES; ++i) {
            states.push_back(DataDescriptor::create(DataDescriptorBuilder("C" + std::to_string(i), "")));
        }
    }
    ~Session()
    {
        QuorvaneHost::destroyWriterStream(stream);
        UniqueId::destroy();
        g_pluginEnvironment = nullptr;
    }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    PluginEnvironment environment;
    IdleWriter writer;
    std::set<WriterPlugin*> writers{&writer};
    WriterStream* stream = nullptr;
    SystemMetadata system;
    std::vector<const EntityHandle*> entities;
    std::vector<const DataDescriptor*> states;
};

// Numbers below `limit`, the same in each run.
std::vector<std::uint64_t> randomNumbers(std::uint64_t limit)
{
    std::mt19937_64 random(20);
    std::vector<std::uint64_t> numbers(4096);
    for (std::uint64_t& number : numbers)
        number = random() % limit;
    return numbers;
}

// A metric plugin with one element for each pair that it samples.
class Feeder {
public:
    Feeder(Session& session, Metric::MetricType type)
        : m_metric("Bench", type, "BENCH", "FEATURE", session.system,
                   type == Metric::MetricType::SampledResidency ? Quantity::time() : nullptr)
    {
        for (const EntityHandle* entity : session.entities) {
            if (type == Metric::MetricType::SampledResidency) {
                for (const DataDescriptor* state : session.states)
                    m_elements.emplace_back(entity, state);
            } else {
                m_elements.emplace_back(entity, nullptr);
            }
        }
    }

    // One sampling point; `nextValue()` gives the value of each element.
    template <typename Source>
    void feedRound(Source nextValue)
    {
        m_timestamp += INTERVAL_TICKS;
        for (DataElement& element : m_elements) {
            element.setValue(nextValue());
            m_metric.setData(m_timestamp, element, 0);
        }
    }

    std::int64_t samplesPerRound() const { return static_cast<std::int64_t>(m_elements.size()); }

private:
    Metric m_metric;
    std::vector<DataElement> m_elements;
    std::uint64_t m_timestamp = 0;
};

struct Statistics {
    std::uint64_t count = 0;
    std::uint64_t min = ~0ULL;
    std::uint64_t max = 0;
    std::uint64_t sum = 0;
    double weightedSum = 0;
};

// The floor: one std::map lookup and five statistics for each sample; samples/s at that number of entities.
void BM_SampleRoadFloor(benchmark::State& state)
{
    const auto entityCount = static_cast<std::uint64_t>(state.range(0));
    const std::vector<std::uint64_t> values = randomNumbers(VALUES);
    std::map<std::uint64_t, Statistics> statistics;
    std::size_t at = 0;
    for (auto _ : state) {
        for (std::uint64_t id = 1; id <= entityCount; ++id) {
            const std::uint64_t value = values[at++ % values.size()];
            Statistics& entry = statistics[id];
            ++entry.count;
            entry.min = std::min(entry.min, value);
            entry.max = std::max(entry.max, value);
            entry.sum += value;
            entry.weightedSum += static_cast<double>(value) * static_cast<double>(INTERVAL_TICKS);
        }
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_SampleRoadFloor)->ArgName("entities")->Arg(8)->Arg(64)->Arg(512);

void runRoad(benchmark::State& state, Metric::MetricType type, std::uint64_t limit)
{
    Session session(static_cast<std::size_t>(state.range(0)));
    Feeder feeder(session, type);
    const std::vector<std::uint64_t> values = randomNumbers(limit);
    std::size_t at = 0;
    const auto nextValue = [&] { return values[at++ % values.size()]; };
    for (std::int64_t fed = 0; fed < state.range(1); fed += feeder.samplesPerRound())
        feeder.feedRound(nextValue);
    for (auto _ : state)
        feeder.feedRound(nextValue);
    state.SetItemsProcessed(state.iterations() * feeder.samplesPerRound());
}

// A sample's full road through setData() with all summaries costs at most 40 times the floor at 64 entities, at most
// double from 8 to 512 entities, and the same whatever came before; samples/s of values of which there are 16.
void BM_SampledValueRoad(benchmark::State& state)
{
    runRoad(state, Metric::MetricType::SampledValue, VALUES);
}
BENCHMARK(BM_SampledValueRoad)
    ->ArgNames({"entities", "before"})
    ->Args({8, 0})
    ->Args({64, 0})
    ->Args({512, 0})
    ->Args({64, 1'000'000});

// The same promise; samples/s of residencies in 4 states.
void BM_SampledResidencyRoad(benchmark::State& state)
{
    runRoad(state, Metric::MetricType::SampledResidency, INTERVAL_TICKS / STATES);
}
BENCHMARK(BM_SampledResidencyRoad)
    ->ArgNames({"entities", "before"})
    ->Args({8, 0})
    ->Args({64, 0})
    ->Args({512, 0})
    ->Args({64, 1'000'000});

// The same promise; samples/s of amounts, and of numbers as events.
void BM_SampledDeltaRoad(benchmark::State& state)
{
    runRoad(state, Metric::MetricType::SampledDelta, VALUES);
}
BENCHMARK(BM_SampledDeltaRoad)->ArgNames({"entities", "before"})->Args({8, 0})->Args({64, 0})->Args({512, 0});

void BM_TracedEventRoad(benchmark::State& state)
{
    runRoad(state, Metric::MetricType::TracedEvent, VALUES);
}
BENCHMARK(BM_TracedEventRoad)->ArgNames({"entities", "before"})->Args({8, 0})->Args({64, 0})->Args({512, 0});

// A million events of one entity, at most 1.5 times what as many values of a SampledValue cost; samples/s over that
// number of distinct values.
void runDistinctValues(benchmark::State& state, Metric::MetricType type)
{
    constexpr std::int64_t samples = 1'000'000;
    Session session(1);
    for (auto _ : state) {
        Feeder feeder(session, type);
        std::uint64_t count = 0;
        for (std::int64_t fed = 0; fed < samples; ++fed)
            feeder.feedRound([&] { return ++count * 7919 % static_cast<std::uint64_t>(state.range(0)); });
    }
    state.SetItemsProcessed(state.iterations() * samples);
}

void BM_TracedEventDistinctValues(benchmark::State& state)
{
    runDistinctValues(state, Metric::MetricType::TracedEvent);
}
BENCHMARK(BM_TracedEventDistinctValues)->ArgName("values")->Arg(1)->Arg(100)->Arg(10'000);

void BM_SampledValueDistinctValues(benchmark::State& state)
{
    runDistinctValues(state, Metric::MetricType::SampledValue);
}
BENCHMARK(BM_SampledValueDistinctValues)->ArgName("values")->Arg(1)->Arg(100)->Arg(10'000);

// The same promise; transitions/s between 16 values.
void BM_TracedTransitionRoad(benchmark::State& state)
{
    runRoad(state, Metric::MetricType::TracedValueTransition, VALUES);
}
BENCHMARK(BM_TracedTransitionRoad)
    ->ArgNames({"entities", "before"})
    ->Args({8, 0})
    ->Args({64, 0})
    ->Args({512, 0})
    ->Args({64, 1'000'000});

// Values that never repeat are not searched: samples/s of 1,000 entities hardly fall from 10,000 to 100,000 values.
void BM_ValuesThatNeverRepeat(benchmark::State& state)
{
    Session session(1000);
    for (auto _ : state) {
        state.PauseTiming();
        auto feeder = std::make_unique<Feeder>(session, Metric::MetricType::SampledValue);
        std::uint64_t value = 0;
        state.ResumeTiming();
        while (value < static_cast<std::uint64_t>(state.range(0)))
            feeder->feedRound([&value] { return ++value * 7919; });
        state.PauseTiming();
        feeder.reset();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_ValuesThatNeverRepeat)->ArgName("values")->Arg(10'000)->Arg(100'000);

}    // namespace

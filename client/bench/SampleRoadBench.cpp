#include "StreamSession.h"

#include "metrics/Metric.h"
#include "output/TableMessage.h"
#include "record/SystemMetadata.h"
#include "values/Description.h"
#include "values/EntityHandle.h"
#include "values/Handles.h"
#include "values/Quantity.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

using namespace pwr;

namespace {

using Type = Metric::MetricType;

constexpr std::uint64_t INTERVAL_TICKS = 100'000;
constexpr std::size_t ROAD_STATES = 4;
constexpr std::uint64_t VALUES = 16;

// A host with one writer that does nothing and no output configuration, so that every summary is made.
struct Session : bench::StreamSession {
    Session(std::size_t entityCount, std::size_t stateCount)
    {
        environment.setWriterStream(stream);
        system.qvaClockFreqMHz = 1000;
        for (std::size_t i = 0; i < entityCount; ++i) {
            entities.push_back(EntityHandle::create("Core_" + std::to_string(i), nullptr));
        }
        for (std::size_t i = 0; i < stateCount; ++i) {
            states.push_back(DataDescriptor::create(DataDescriptorBuilder("C" + std::to_string(i), "")));
        }
    }

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

// A metric plugin with one element for each pair that it samples, and for each entity alone if there are no states.
class Feeder {
public:
    Feeder(Session& session, Type type, bool withStates)
        : m_metric("Bench", type, "BENCH", "FEATURE", session.system,
                   type == Type::SampledResidency ? Quantity::time() : Quantity::data())
    {
        for (const EntityHandle* entity : session.entities) {
            if (!withStates) m_elements.emplace_back(entity, nullptr);
            for (std::size_t i = 0; withStates && i < session.states.size(); ++i)
                m_elements.emplace_back(entity, session.states[i]);
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

    void finalize() { m_metric.finalize(); }
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

// A sample's full road through setData() with all summaries costs at most 40 times the floor at 64 entities, at most
// double from 8 to 512 entities, and the same whatever came before; samples/s of values of which there are 16.
// Residencies have four states to an entity.
void BM_SampleRoad(benchmark::State& state, Type type)
{
    const bool withStates = type == Type::SampledResidency;
    Session session(static_cast<std::size_t>(state.range(0)), ROAD_STATES);
    Feeder feeder(session, type, withStates);
    const std::vector<std::uint64_t> values = randomNumbers(withStates ? INTERVAL_TICKS / ROAD_STATES : VALUES);
    std::size_t at = 0;
    const auto nextValue = [&] { return values[at++ % values.size()]; };
    for (std::int64_t fed = 0; fed < state.range(1); fed += feeder.samplesPerRound())
        feeder.feedRound(nextValue);
    for (auto _ : state)
        feeder.feedRound(nextValue);
    state.SetItemsProcessed(state.iterations() * feeder.samplesPerRound());
}

void roads(benchmark::internal::Benchmark* bench)
{
    bench->ArgNames({"entities", "before"})->Args({8, 0})->Args({64, 0})->Args({512, 0})->Args({64, 1'000'000});
}
BENCHMARK_CAPTURE(BM_SampleRoad, SampledDelta, Type::SampledDelta)->Apply(roads);
BENCHMARK_CAPTURE(BM_SampleRoad, SampledResidency, Type::SampledResidency)->Apply(roads);
BENCHMARK_CAPTURE(BM_SampleRoad, SampledValue, Type::SampledValue)->Apply(roads);
BENCHMARK_CAPTURE(BM_SampleRoad, TracedValueTransition, Type::TracedValueTransition)->Apply(roads);
BENCHMARK_CAPTURE(BM_SampleRoad, TracedEvent, Type::TracedEvent)->Apply(roads);

// A million samples of one entity, so one element to a point: no kind costs more than 1.5 times SampledValue at the
// same number of distinct values; samples/s.
void BM_DistinctValues(benchmark::State& state, Type type)
{
    constexpr std::int64_t samples = 1'000'000;
    Session session(1, 1);
    for (auto _ : state) {
        Feeder feeder(session, type, type == Type::SampledResidency);
        std::uint64_t count = 0;
        for (std::int64_t fed = 0; fed < samples; ++fed)
            feeder.feedRound([&] { return ++count * 7919 % static_cast<std::uint64_t>(state.range(0)); });
    }
    state.SetItemsProcessed(state.iterations() * samples);
}

void distinctValues(benchmark::internal::Benchmark* bench)
{
    bench->ArgName("values")->Arg(1)->Arg(100)->Arg(10'000)->Unit(benchmark::kMillisecond);
}
BENCHMARK_CAPTURE(BM_DistinctValues, SampledDelta, Type::SampledDelta)->Apply(distinctValues);
BENCHMARK_CAPTURE(BM_DistinctValues, SampledResidency, Type::SampledResidency)->Apply(distinctValues);
BENCHMARK_CAPTURE(BM_DistinctValues, SampledValue, Type::SampledValue)->Apply(distinctValues);
BENCHMARK_CAPTURE(BM_DistinctValues, TracedValueTransition, Type::TracedValueTransition)->Apply(distinctValues);
BENCHMARK_CAPTURE(BM_DistinctValues, TracedEvent, Type::TracedEvent)->Apply(distinctValues);

// Values that never repeat are not searched: samples/s of 1,000 entities hardly fall from 10,000 to 100,000 values.
void BM_ValuesThatNeverRepeat(benchmark::State& state)
{
    Session session(1000, 0);
    for (auto _ : state) {
        state.PauseTiming();
        auto feeder = std::make_unique<Feeder>(session, Type::SampledValue, false);
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

constexpr std::size_t ENTITIES = 512;
constexpr std::size_t DESCRIPTORS = 16;

// The floor of a finalize: one table with a row of two handles and four figures for each pair; pairs/s.
void BM_FinalizeFloor(benchmark::State& state)
{
    Session session(ENTITIES, DESCRIPTORS);
    for (auto _ : state) {
        TableMessage table("Floor", nullptr);
        for (unsigned int field = 0; field < 6; ++field)
            table.addField("field" + std::to_string(field), field < 2 ? DataType::HANDLE : DataType::REAL, false);
        table.createTable();
        for (const EntityHandle* entity : session.entities) {
            for (const DataDescriptor* descriptor : session.states) {
                table.setField(0, *entity);
                table.setField(1, *descriptor);
                for (unsigned int field = 2; field < 6; ++field)
                    table.setField(field, 1.5 * field);
                session.stream->pushMessage(table);
            }
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(ENTITIES * DESCRIPTORS));
}
BENCHMARK(BM_FinalizeFloor)->Unit(benchmark::kMillisecond);

// All tables of 512 entities with 16 descriptors each, of which there are 16 values; pairs/s.
void BM_Finalize(benchmark::State& state, Type type)
{
    Session session(ENTITIES, DESCRIPTORS);
    Feeder feeder(session, type, true);
    std::uint64_t count = 0;
    for (int round = 0; round < 16; ++round)
        feeder.feedRound([&] { return ++count * 7919 % VALUES; });
    for (auto _ : state)
        feeder.finalize();
    state.SetItemsProcessed(state.iterations() * feeder.samplesPerRound());
}
BENCHMARK_CAPTURE(BM_Finalize, SampledDelta, Type::SampledDelta)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Finalize, SampledResidency, Type::SampledResidency)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Finalize, SampledValue, Type::SampledValue)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Finalize, TracedValueTransition, Type::TracedValueTransition)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Finalize, TracedEvent, Type::TracedEvent)->Unit(benchmark::kMillisecond);

}    // namespace

#pragma once

#include "metrics/Accumulator.h"
#include "metrics/Metric.h"
#include "metrics/UniqueSequence.h"
#include "output/TextNotes.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <list>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

class WriterStream;

namespace pwr {

// What a metric knows, and the timing rules that a sample passes on its way into the buffer.
class Metric::State {
public:
    State(const std::string& metricName, MetricType metricType, const std::string& containerTag,
          const std::string& switchTag, const SystemMetadata& measuredSystem, const Quantity* measuredQuantity);
    ~State();

    // One entity of the samples that came.
    struct EntityTimes {
        std::uint64_t lastSamplingPoint = 0;    // ticks; only a residency metric moves it on
        // The check of a residency sampling point, as of the round that it was last met in.
        std::uint64_t round = 0;
        std::uint64_t ticks = 0;
        std::uint64_t durationTicks = 0;
    };

    // One entity and descriptor of the samples that came.
    struct PairTimes {
        std::uint64_t previous = 0;    // ticks of the last accepted sample; 0: none yet
        EntityTimes* entity = nullptr;
        const EntityHandle* listedEntity = nullptr;    // is known to stand in the entity list
    };

    // A sample on its way through setData().
    struct Sample {
        std::uint64_t timestamp;
        DataElement& element;
        std::uint64_t givenTicks;    // 0: to be worked out
        bool isReset;
        PairTimes& pair;
        bool isFirst;                  // of its pair
        std::uint64_t elapsedTicks;    // since the sample before
    };

    bool isTraced() const { return type >= MetricType::TracedValueTransition && type <= MetricType::TracedEvent; }
    bool isResidency() const { return type == MetricType::SampledResidency; }
    bool mayHaveFiniteSet() const
    {
        return type >= MetricType::SampledValue && type <= MetricType::TracedValueTransition;
    }

    // The steps of setData(), in their order.
    bool isComplete(std::uint64_t timestamp, const DataElement& element) const;
    Sample openSample(std::uint64_t timestamp, DataElement& element, std::uint64_t durationTicks);
    bool isTimely(const Sample& sample) const;
    void noteAccepted(const Sample& sample);
    bool opensSamplingPoint(const Sample& sample) const;
    void bufferTraced(const Sample& sample);
    void bufferSampled(const Sample& sample);
    void closeSample(const Sample& sample);

    // The steps of pushToStream().
    bool isSamplingPointValid();
    int initializeAccumulators(const Metric& metric);
    int feedAccumulators(const Metric& metric);
    void emptyBuffer();

    std::unique_ptr<Accumulator> makeAccumulator(const std::deque<std::string>& tableOrder) const;
    TextNotes& notes();

    const std::string name;
    const MetricType type;
    const std::string metricContainerTag;
    const std::string featureSwitchTag;
    const SystemMetadata& system;
    const Quantity* const quantity;    // not owned; may be null

    unsigned int id = 0;
    WriterStream* stream = nullptr;
    WriterInterfaceConfigFileParser* outputConfig = nullptr;
    std::unique_ptr<Accumulator> ownAccumulator;    // null: none for this type
    std::vector<Accumulator*> accumulators;         // the own one first; the others stay their makers'
    bool accumulatorsPending = true;

    std::vector<Data> finiteSetValues;
    const Field* valueGroupInfo = nullptr;
    const Field* entityGroupInfo = nullptr;
    const Field* descriptorGroupInfo = nullptr;
    RealTableClass legacyMetricType{};
    std::vector<EntityDescCombo> combinations;
    std::unique_ptr<TextNotes> textInfo;    // null: no notes
    bool traceSampleEntityAttribute = false;
    bool suppressEntityInfo = false;
    UniqueSequence<std::vector<const EntityHandle*>> entities;
    UniqueSequence<std::list<const DataDescriptor*>> descriptors;

    DataPoint point;                    // the buffer: elements of one timestamp
    std::uint64_t samplingPoint = 0;    // the timestamp of what is buffered
    std::uint64_t lastTimestamp = 0;    // of the last sample that passed all checks
    bool isEmpty = true;

private:
    using PairId = std::pair<std::uint64_t, std::uint64_t>;    // entity id, descriptor id (0: none)
    struct HashPair {
        std::size_t operator()(const PairId& pair) const
        {
            return std::hash<std::uint64_t>()((pair.first << 32) + (pair.first >> 32) + pair.second);
        }
    };

    PairTimes& timesOf_i(const DataElement& element);
    std::uint64_t sampledDuration_i(const Sample& sample) const;
    std::uint64_t sinceSamplingPoint_i(const EntityTimes& entity, std::uint64_t timestamp) const;
    void checkTicks_i(const Sample& sample, std::uint64_t durationTicks) const;
    void fillScopraDescriptor_i(DataElement& element);
    void buffer_i(const Sample& sample, std::uint64_t durationTicks);
    bool sumUpElement_i(const DataElement& element, EntityTimes& entity);
    bool areSumsWithinDuration_i() const;

    // One record for each pair and each entity, found once for each sample; the buffer keeps the way to the entities.
    std::unordered_map<PairId, PairTimes, HashPair> m_pairs;
    std::unordered_map<std::uint64_t, EntityTimes> m_entityTimes;
    std::vector<EntityTimes*> m_bufferedTimes;           // beside point.elements
    std::vector<std::unique_ptr<DataElement>> m_pool;    // elements to use again
    std::uint64_t m_round = 0;
    const DataDescriptor* m_nameDescriptor = nullptr;    // made of the metric's name, for elements without descriptor
};

}    // namespace pwr

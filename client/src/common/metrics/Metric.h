#pragma once

#include "metrics/DataElement.h"
#include "output/TableTypes.h"
#include "runtime/Export.h"

#include <cstdint>
#include <list>
#include <memory>
#include <string>
#include <vector>

namespace pwr {

class Accumulator;
class Field;
class FieldDescription;
class Quantity;
class SystemMetadata;
class TableMessage;
class TextNotes;

// One measurement, for instance temperature per core: takes time-stamped samples, checks their timing, gathers those of
// one sampling point, hands each finished data point to the writers (the timeline) and to its accumulators (the
// summaries), and has the accumulators send their tables at the end. Its plugin owns it; it outlives every message that
// points at its notes, and speaks to the writer stream that the environment had when it was made. Timestamps and
// durations are ticks of the default clock. One thread at a time.
//
//   Metric metric("Core temperature", Metric::MetricType::SampledValue, "TEMP", "TEMPERATURE", system,
//                 Quantity::temperature());
//   DataElement element(core0, nullptr);
//   element.setValue(41.5);
//   metric.setData(timestamp, element, 0);
//   ...
//   metric.finalize();
//
// Operations that return int give 0, or 1 with a line in the log.
class QUORVANE_API Metric {
public:
    enum class MetricType : std::uint8_t {
        SampledDelta = 0,             // an amount that accrued since the last sample
        SampledResidency = 1,         // ticks spent in the descriptor's state since the last sampling point
        SampledValue = 2,             // the value at that moment
        TracedValueTransition = 3,    // a value held until this transition
        TracedEvent = 4,              // an event that happened
    };

    // As a duration: the sample was taken at a reset. A sampled metric gives the element a duration of 0.
    static const unsigned long long RESET_DURATION;    // 0xFFFFFFFFFFFFFFFF

    struct EntityDescCombo {
        const EntityHandle* entity = nullptr;          // required
        const DataDescriptor* descriptor = nullptr;    // may be null
    };

    // What writers read in writeMessage(const Metric&).
    struct DataPoint {
        unsigned long long timestamp = 0;      // ticks
        std::vector<DataElement*> elements;    // owned by the metric, in the order in which they arrived
    };

    // The tags find the metric's tables in the output configuration, which should be parsed before. `system` and
    // `quantity` (may be null) are not owned. Throws a const char* text without a writer stream in the environment
    // ("Writer stream is not initialized"), and for a SampledResidency whose quantity is not Quantity::time().
    Metric(const std::string& name, MetricType type, const std::string& metricContainerTag,
           const std::string& featureSwitchTag, const SystemMetadata& system, const Quantity* quantity);
    ~Metric();
    Metric(const Metric&) = delete;
    Metric& operator=(const Metric&) = delete;

    // Set-up, before the first sample.

    // The values a SampledValue or TracedValueTransition may take, as handles; repeated calls extend the set. Its order
    // is the row order of the value tables. Refuses all of `descriptors` when one is null.
    int setFiniteSetValues(const std::vector<const DataDescriptor*>& descriptors);

    // What heads the value, entity and descriptor columns of the summary tables.
    int setValueGroupInfo(const FieldDescription& description);
    int setEntityGroupInfo(const FieldDescription& description);
    int setDescriptorGroupInfo(const FieldDescription& description);

    // Kept for the readers of the metric. 18 and above are refused with 1 and no message.
    int setLegacyMetricType(RealTableClass type);

    // Pairs that get a row even without a sample; replaces earlier ones. A null entity is refused; what stood before it
    // then stays in the entity and descriptor lists.
    int setEntityDescriptorCombinations(const std::vector<EntityDescCombo>& combinations);

    // Notes in front of and behind the metric's tables.
    int setPreMetricTextInfo(const std::string& text);
    int setPostMetricTextInfo(const std::string& text);

    // `accumulator` stays the caller's and outlives the metric's last call. Refused when null or after the first
    // sample.
    int addAccumulator(Accumulator* accumulator);

    // Sends a table of fixed rows, which is marked as this metric's and outlives the message. 1 for null.
    int addStaticTableRowInfo(TableMessage* table);

    // Only for a SampledResidency; any other metric warns and ignores it. Returns 0.
    int setTimelineTableToDisplay(TimelineTableType type);

    void setSuppressEntityInfoInSummary(bool suppress);
    void setTraceSampleEntityAttr(bool trace);

    // Collection. `timestamp` is not 0, at or after the record's startTSC for the first sample of an entity and
    // descriptor, and after the one before for the others. A `duration` of 0 is worked out; another is at most the time
    // since the sample before. Writes duration and Scopra descriptor into `element` and copies it. A refused sample
    // leaves the buffered ones untouched. A residency sampling point that adds up to more than its duration is dropped
    // when it is pushed, which no result tells.
    int setData(unsigned long long timestamp, DataElement& element, unsigned long long duration);

    // End: pushes what is buffered, then the container info, then every accumulator's tables. 1 when no sample was
    // accepted or an accumulator failed.
    int finalize();

    // Readers, for writers and accumulators.
    std::string getName() const;
    unsigned int getId() const;    // from the counter of the message ids
    const Quantity* getQuantity() const;
    MetricType getMetricType() const;
    RealTableClass getLegacyMetricType() const;
    const Field* getValueGroupInfo() const;         // null until set
    const Field* getEntityGroupInfo() const;        // null until set
    const Field* getDescriptorGroupInfo() const;    // null until set
    const std::vector<Data>& getFiniteSetValues() const;
    const std::vector<EntityDescCombo>& getEntityDescriptorCombinations() const;
    const TextNotes* getTextInfo() const;    // null without notes
    const std::string& getMetricContainerTag() const;
    const std::string& getFeatureSwitchTag() const;
    const std::vector<const EntityHandle*>& getEntityList() const;        // unique, in first-seen order
    const std::list<const DataDescriptor*>& getDescriptorList() const;    // unique; from the combinations alone
    bool getTraceSampleEntityAttr() const;
    bool getSuppressEntityInfoInSummary() const;
    bool isEmpty() const;    // no sample was accepted
    const DataPoint& getData() const;

private:
    class State;

    void init();
    int pushToStream();

    std::unique_ptr<State> m_state;
};

}    // namespace pwr

#pragma once

#include "metrics/Accumulator.h"
#include "metrics/ElementKey.h"

#include <cstdint>
#include <map>
#include <string>
#include <unordered_set>

namespace pwr {
class SummaryTable;
}

// Counts the distinct timestamps at which samples came, and the intervals between them: the "SAMPLE-COUNT" table. The
// other accumulators embed one and forward their calls to it.
class SampleCountSummarizer : public pwr::Accumulator {
public:
    // `isSampled` goes into the title, `showIntervals` gives the table its three interval columns, `perEntity` counts
    // whatever the descriptor.
    SampleCountSummarizer(bool isSampled, bool showIntervals, bool perEntity);

    int initialize(const pwr::Metric& metric, const pwr::SystemMetadata& system) override;
    int processMessage(const pwr::Metric& metric) override;
    int finalize(const pwr::Metric& metric) override;

private:
    struct Record {
        std::uint64_t samples = 0;
        std::uint64_t previousTimestamp = 0;    // ticks, as all below
        std::uint64_t minInterval = 0;
        std::uint64_t maxInterval = 0;
        std::uint64_t intervalSum = 0;
        double firstDuration = 0;
    };

    struct Row {
        const pwr::EntityHandle* entity = nullptr;
        const pwr::DataDescriptor* descriptor = nullptr;
    };

    struct Intervals {
        double min, max, average;    // ms
    };

    void countElement_i(const pwr::DataElement& element, std::uint64_t timestamp);
    void openRecord_i(Record& record, std::uint64_t key, const pwr::DataElement& element);
    void noteInterval_i(Record& record, std::uint64_t timestamp, const pwr::DataElement& element) const;
    void addRow_i(std::uint64_t key, const Row& row);
    void addCombinations_i(const pwr::Metric& metric);
    std::string title_i(const std::string& base) const;
    void addColumns_i(pwr::SummaryTable& table, const pwr::Metric& metric) const;
    void pushRow_i(pwr::SummaryTable& table, std::uint64_t key, const Row& row) const;
    Intervals intervalsOf_i(const Record& record) const;

    const bool m_isSampled;
    const bool m_showIntervals;
    const bool m_perEntity;
    bool m_hasDescriptors = false;
    double m_clockMHz = 0;
    pwr::RecordsByKey<Record> m_records;
    std::map<std::uint64_t, Row> m_rows;              // key order is the order of rows
    std::unordered_set<std::string> m_rowEntities;    // qualified names; only kept with m_perEntity
};

#pragma once

#include "metrics/Accumulator.h"
#include "metrics/Enum.h"
#include "values/DataType.h"

#include <cstddef>
#include <list>
#include <memory>
#include <string>
#include <vector>

class SampleCountSummarizer;
namespace pwr {
class DataElement;
struct TableRequest;
class TableInfo;
class TextNotes;
}    // namespace pwr

// What the accumulators of the metric kinds have in common: the list of tables to make, the embedded sample counting,
// clock and units, the notes of the tables. A kind adds what it keeps of a data point and how it draws each table.
class SummaryAccumulator : public pwr::Accumulator {
public:
    ~SummaryAccumulator() override;
    SummaryAccumulator(const SummaryAccumulator&) = delete;
    SummaryAccumulator& operator=(const SummaryAccumulator&) = delete;

    int initialize(const pwr::Metric& metric, const pwr::SystemMetadata& system) override;
    int processMessage(const pwr::Metric& metric) override;
    int finalize(const pwr::Metric& metric) override;

protected:
    // One table to make: its number in the kind's Summary, and the table type's name.
    struct Entry {
        std::size_t number;
        std::string name;
    };

    template <typename Summary>
    static std::list<Entry> entriesOf_i(const std::list<Summary>& summaries)
    {
        std::list<Entry> entries;
        for (const Summary summary : summaries) {
            entries.push_back({static_cast<std::size_t>(summary), pwr::Enum<Summary>::nameOf(summary)});
        }
        return entries;
    }

    explicit SummaryAccumulator(std::list<Entry> summaries);

    // Embeds a SampleCountSummarizer if the list asks for "SAMPLE-COUNT".
    void countSamples_i(bool isSampled, bool showIntervals, bool perEntity);

    // Made for the tables of one call and kept as long as the accumulator.
    const pwr::TextNotes* makeNotes_i(const pwr::TableInfo& info);

    virtual void initialize_i(const pwr::Metric& metric);
    virtual void announceTable_i(const pwr::Metric& metric, const std::string& tableType) const;
    virtual int processMessage_i(const pwr::Metric& metric);    // 0, or 1 to report failure
    virtual void addElement_i(const pwr::DataElement& element) = 0;
    virtual void makeTable_i(std::size_t summary, const pwr::TableRequest& request) = 0;    // any but "SAMPLE-COUNT"

    std::list<Entry> m_summaries;    // list order is the order of the tables
    double m_clockMHz = 0;
    std::string m_units;                                // " (units)" behind column names; empty without units
    pwr::DataType m_valueType = pwr::DataType::NONE;    // of the last value

private:
    std::unique_ptr<SampleCountSummarizer> m_sampleCounts;    // null: no such table
    std::vector<std::unique_ptr<pwr::TextNotes>> m_notes;
};

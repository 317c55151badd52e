#pragma once

#include "metrics/ElementKey.h"
#include "metrics/Participants.h"
#include "metrics/SummaryAccumulator.h"
#include "values/Data.h"

#include <cstdint>
#include <list>
#include <string>
#include <vector>

namespace pwr {
class Quantity;
class SummaryTable;
}    // namespace pwr

// Summarises amounts that accrued between samples, such as bytes moved: their totals and, where the metric's quantity
// has a rate form, the average rate over the time they took. A quantity without one gets the table of totals alone.
class SampledDeltaAccumulator : public SummaryAccumulator {
public:
    enum class Summary {
        SAMPLE_COUNT,
        AVERAGE_RATE_TOTAL,
        TOTAL_DELTA,
    };

    explicit SampledDeltaAccumulator(const std::list<Summary>& summaries);

private:
    // All that is known of one entity and descriptor. Combinations bring some that stay without a sample.
    struct Record {
        const pwr::EntityHandle* entity = nullptr;
        const pwr::DataDescriptor* descriptor = nullptr;
        std::uint64_t count = 0;
        double duration = 0;    // ticks
        pwr::Data total;        // of the type of the first value
    };

    void initialize_i(const pwr::Metric& metric) override;
    void addElement_i(const pwr::DataElement& element) override;
    void makeTable_i(std::size_t summary, const pwr::TableRequest& request) override;

    bool prepareRate_i(const pwr::Quantity* quantity, bool isWanted);
    void replaceRateByTotal_i();
    bool isListed_i(Summary summary) const;

    void openRecord_i(Record& record, const pwr::DataElement& element);
    bool hasDescriptors_i() const { return !m_participants.descriptors().empty(); }
    void addCombinations_i(const pwr::Metric& metric);
    pwr::Data rate_i(const Record& record) const;

    void makeRateTable_i(const pwr::TableRequest& request);
    void makeTransposedRateTable_i(const pwr::TableRequest& request);
    void makeTotalTable_i(const pwr::TableRequest& request);
    void setTotalPair_i(pwr::SummaryTable& table) const;

    const std::list<Entry> m_chosen;    // before the quantity decided on rates
    std::string m_rateUnits;            // " (units)" behind the column name; empty without a rate form
    double m_rateMultiplier = 1.0;
    pwr::RecordsByKey<Record> m_records;
    pwr::Participants m_participants;    // of the samples alone
};

template <>
const std::vector<std::string> pwr::Enum<SampledDeltaAccumulator::Summary>::s_names;

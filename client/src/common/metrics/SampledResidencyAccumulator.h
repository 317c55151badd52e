#pragma once

#include "metrics/ElementKey.h"
#include "metrics/ResidencyFigures.h"
#include "metrics/SummaryAccumulator.h"
#include "metrics/UniqueSequence.h"
#include "values/Data.h"

#include <cstdint>
#include <list>
#include <map>
#include <string>
#include <vector>

namespace pwr {
class SummaryTable;
}

// Summarises how long entities spent in each of their states (the descriptors): share of the time and milliseconds.
class SampledResidencyAccumulator : public SummaryAccumulator {
public:
    enum class Summary {
        SAMPLE_COUNT,
        RESIDENCY_PERCENTAGE,
        RESIDENCY_MILLISECOND,
        RESIDENCY_COMBINED,
    };

    explicit SampledResidencyAccumulator(const std::list<Summary>& summaries);

private:
    struct Entity {
        const pwr::EntityHandle* handle = nullptr;
        double totalDuration = 0;       // ticks of its sampling points
        std::uint64_t lastPoint = 0;    // the data point that its duration was last counted for
    };

    struct Record {
        Entity* entity = nullptr;
        double residency = 0;    // ticks
    };

    void initialize_i(const pwr::Metric& metric) override;
    int processMessage_i(const pwr::Metric& metric) override;
    void addElement_i(const pwr::DataElement& element) override;
    void makeTable_i(std::size_t summary, const pwr::TableRequest& request) override;

    Record& recordOf_i(const pwr::DataElement& element);

    void fillTable_i(pwr::SummaryTable& table, const pwr::Metric& metric, const pwr::ResidencyFigures& figures);
    void fillTransposedTable_i(pwr::SummaryTable& table, const pwr::Metric& metric,
                               const pwr::ResidencyFigures& figures);
    void addCombinations_i(const pwr::Metric& metric);
    std::vector<const pwr::DataDescriptor*> validDescriptors_i() const;
    double residencyOf_i(const pwr::EntityHandle* entity, const pwr::DataDescriptor* descriptor,
                         pwr::ResidencyFigure figure) const;

    pwr::RecordsByKey<Record> m_records;
    std::map<std::uint64_t, Entity> m_entities;                                  // by id: the order of columns, or rows
    pwr::UniqueSequence<std::list<const pwr::DataDescriptor*>> m_descriptors;    // the order of rows, or columns
    std::uint64_t m_point = 0;                                                   // number of the data point under way
};

template <>
const std::vector<std::string> pwr::Enum<SampledResidencyAccumulator::Summary>::s_names;

#pragma once

#include "metrics/ElementKey.h"
#include "metrics/Participants.h"
#include "metrics/ResidencyFigures.h"
#include "metrics/SeenValues.h"
#include "metrics/SummaryAccumulator.h"
#include "values/Data.h"

#include <cstddef>
#include <cstdint>
#include <list>
#include <map>
#include <string>
#include <vector>

namespace pwr {
class SummaryTable;
}

// Summarises a trace of the moments at which entities left one value for another: for how long each value was held, and
// how often it was left. An element carries the value left, and as its duration the time that it was held.
class TracedTransitionAccumulator : public SummaryAccumulator {
public:
    enum class Summary {
        RESIDENCY_PERCENTAGE,
        RESIDENCY_MILLISECOND,
        TRANSITION_COUNTS,
        RESIDENCY_COMBINED,
    };

    explicit TracedTransitionAccumulator(const std::list<Summary>& summaries);

private:
    // The transitions of one entity and descriptor.
    struct Record {
        pwr::SeenValues* seen = nullptr;    // of the descriptor
        pwr::ValueTallies tallies;          // times in ticks
    };

    // What the table of one descriptor shows.
    struct Member {
        const pwr::EntityHandle* entity;
        const Record* record;    // null: no transition of the descriptor
    };
    struct Content {
        std::vector<pwr::SeenValues::Entry> values;
        std::vector<Member> members;    // by entity id
    };

    void addElement_i(const pwr::DataElement& element) override;
    void announceTable_i(const pwr::Metric& metric, const std::string& tableType) const override;
    void makeTable_i(std::size_t summary, const pwr::TableRequest& request) override;

    std::vector<const pwr::DataDescriptor*> tableDescriptors_i(const pwr::Metric& metric);
    Content contentOf_i(const pwr::Metric& metric, const pwr::DataDescriptor* descriptor) const;

    void addValueColumn_i(pwr::SummaryTable& table, const pwr::Metric& metric) const;
    void fillCountTable_i(pwr::SummaryTable& table, const pwr::Metric& metric, const Content& content) const;
    void fillResidencyTable_i(pwr::SummaryTable& table, const pwr::Metric& metric, const Content& content,
                              const pwr::ResidencyFigures& figures) const;
    void setResidency_i(pwr::SummaryTable& table, const Member& member, const pwr::SeenValues::Entry& value,
                        const pwr::ResidencyFigures& figures) const;
    void fillTransposedTable_i(pwr::SummaryTable& table, const pwr::Metric& metric, const Content& content,
                               const pwr::ResidencyFigures& figures) const;
    double residencyOf_i(const Record& record, const pwr::SeenValues::Entry& value, pwr::ResidencyFigure figure) const;

    pwr::RecordsByKey<Record> m_records;
    std::map<std::uint64_t, pwr::SeenValues> m_seen;    // by descriptor id, 0 for none
    pwr::Participants m_participants;
};

template <>
const std::vector<std::string> pwr::Enum<TracedTransitionAccumulator::Summary>::s_names;

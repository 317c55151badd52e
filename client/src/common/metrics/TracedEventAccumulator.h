#pragma once

#include "metrics/ElementKey.h"
#include "metrics/Participants.h"
#include "metrics/SummaryAccumulator.h"
#include "values/Data.h"

#include <cstdint>
#include <list>
#include <map>
#include <set>
#include <string>
#include <vector>

// Summarises a trace of events: how often each event name came, and which values were the most frequent of each entity
// and descriptor. An event's name is that of the handle that it carries; an event of another type has an empty one.
class TracedEventAccumulator : public SummaryAccumulator {
public:
    enum class Summary {
        SAMPLE_COUNT,
        EVENT_NAME_COUNTS,
        TOP_TEN_EVENT,
    };

    explicit TracedEventAccumulator(const std::list<Summary>& summaries);

private:
    struct Tally {
        std::uint64_t count = 0;
        std::uint64_t* nameCount = nullptr;    // that of the value's name; several values may share one
    };
    using Tallies = std::map<pwr::Data, Tally>;

    // All that is known of one entity and descriptor.
    struct Record {
        const pwr::EntityHandle* entity = nullptr;
        const pwr::DataDescriptor* descriptor = nullptr;
        Tallies values;
        std::map<std::string, std::uint64_t> nameCounts;
    };

    void addElement_i(const pwr::DataElement& element) override;
    void makeTable_i(std::size_t summary, const pwr::TableRequest& request) override;

    void openRecord_i(Record& record, const pwr::DataElement& element);
    std::uint64_t& nameCount_i(Record& record, const pwr::Data& value);

    void makeNameTables_i(const pwr::TableRequest& request);
    void makeNameTable_i(const pwr::TableRequest& request, const std::string& title, std::uint64_t descriptorId,
                         const pwr::TextNotes* notes) const;
    void makeTopTables_i(const pwr::TableRequest& request);
    static std::vector<Tallies::const_iterator> mostFrequent_i(const Tallies& tallies);

    pwr::RecordsByKey<Record> m_records;
    pwr::Participants m_participants;
    std::map<std::uint64_t, std::set<std::string>> m_names;    // seen with a descriptor's id, 0 for none: row order
};

template <>
const std::vector<std::string> pwr::Enum<TracedEventAccumulator::Summary>::s_names;

#pragma once

#include "metrics/ElementKey.h"
#include "metrics/SeenValues.h"
#include "metrics/SummaryAccumulator.h"
#include "values/Data.h"

#include <cstdint>
#include <list>
#include <map>
#include <string>

namespace pwr {
class Field;
class SummaryTable;
}    // namespace pwr

// Summarises values read at each sampling point: minimum, maximum, average and time-weighted average for each entity
// and descriptor, and how often and for how much of the time each value was seen.
class SampledValueAccumulator : public SummaryAccumulator {
public:
    enum class Summary {
        SAMPLE_COUNT,
        MIN_MAX_AVG,
        NUMBER_OF_OCCURENCES,
        RELATIVE_FREQUENCY_PERCENTAGE,
        MIN_MAX,
        APPROXIMATED_RESIDENCY,
    };

    explicit SampledValueAccumulator(const std::list<Summary>& summaries);

private:
    struct Group;

    // All that is known of one entity and descriptor.
    struct Record {
        const pwr::EntityHandle* entity = nullptr;
        Group* group = nullptr;
        pwr::Data minimum;    // of the value's type, as the next two; numeric values only
        pwr::Data maximum;
        pwr::Data sum;
        double weightedSum = 0;       // value times exact microseconds
        pwr::ValueTallies tallies;    // times are the whole microseconds of each sample
    };

    // The samples of one descriptor: each has a value table of its own.
    struct Group {
        const pwr::DataDescriptor* descriptor = nullptr;    // null: the samples without
        pwr::SeenValues seen;
        std::map<std::uint64_t, const Record*> entities;    // id order is the order of columns, or rows
    };

    enum class Figure { COUNT, SHARE, TIME_SHARE };

    void addElement_i(const pwr::DataElement& element) override;
    void makeTable_i(std::size_t summary, const pwr::TableRequest& request) override;

    Record& recordOf_i(const pwr::DataElement& element);
    void openRecord_i(Record& record, const pwr::DataElement& element);

    void makeMinMaxTable_i(const pwr::TableRequest& request, bool withAverages);
    void pushMinMaxRow_i(pwr::SummaryTable& table, const Record& record, bool withAverages) const;

    void makeValueTables_i(const pwr::TableRequest& request, Figure figure);
    std::string valueTableTitle_i(const pwr::TableRequest& request, Figure figure, const Group& group) const;
    const pwr::Field* valueField_i(const pwr::Metric& metric, const Group& group) const;
    void fillValueTable_i(pwr::SummaryTable& table, const pwr::Metric& metric, Figure figure, const Group& group) const;
    void fillTransposedTable_i(pwr::SummaryTable& table, const pwr::Metric& metric, Figure figure,
                               const Group& group) const;
    static void addFigureColumn_i(pwr::SummaryTable& table, const std::string& name, Figure figure);
    static void setFigure_i(pwr::SummaryTable& table, unsigned int column, Figure figure, const Record& record,
                            const pwr::SeenValues::Entry& value);

    std::size_t m_descriptorCount = 0;
    pwr::RecordsByKey<Record> m_records;
    std::map<std::uint64_t, Group> m_groups;    // by descriptor id, 0 for none: the order of the value tables
};

template <>
const std::vector<std::string> pwr::Enum<SampledValueAccumulator::Summary>::s_names;

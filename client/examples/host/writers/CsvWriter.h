#pragma once

#include "writers/CsvFile.h"
#include "writers/ResultWriter.h"
#include "writers/Values.h"

#include <map>
#include <set>

namespace host {

// Writes comma-separated values for other programs. Numbers have a point and no grouping, times are UTC, whatever the
// locale. Each file begins with the head of the results, a quoted cell for each line, and an empty line.
//
// PREFIX_summary.csv holds every summary table, with an empty line behind each:
//
//   the title                                               one cell
//   the notes in front, one a line                          one cell each
//   the column titles, with units; a column that belongs to one entity begins with its name
//   row after row
//   the notes behind, one a line                            one cell each
//
// PREFIX_<metric>.csv is the timeline of one metric, a line for each sample:
//
//   Time (s)      since the start of the collection, to the nanosecond
//   Time (UTC)    the moment, to the nanosecond; empty where the start is not known
//   Entity        qualified name
//   Descriptor    the state, for example; empty without one
//   Value         headed by the metric's quantity and units; residencies are told in milliseconds
//   Duration (s)  what the value stands for, to the nanosecond
//
// <metric> is the metric's name in small letters, "-" for everything but letters and digits, cut to 100 of them.
class CsvWriter : public ResultWriter {
public:
    explicit CsvWriter(const std::string& prefix, bool hasTimelines = true);

    // Opens the summary file; 1 when that fails, see getError().
    int openOutput() override;
    int closeOutput() override;    // 1 when anything failed since

protected:
    void beginMetric_i(const std::string&) override {}    // the tables are titled
    void writeNotes_i(const std::vector<std::string>& notes) override;
    void beginTable_i(const TableHead& head) override;
    void writeRow_i(const std::vector<TableCell>& cells) override;
    void endTable_i(const TableHead& head) override;

private:
    struct Timeline {
        CsvFile file;
        ValueInfo info;
        BySeries<std::string> names;    // of each pair: entity and descriptor as they stand in the file
    };

    using ResultWriter::writeMessage;
    int writeMessage(const pwr::Metric& metric) override;

    Timeline& timelineOf_i(const pwr::Metric& metric);
    bool open_i(CsvFile& file, const std::string& name);
    void writeElement_i(Timeline& timeline, const pwr::DataElement& element);

    std::string m_prefix;
    bool m_hasTimelines;
    CsvFile m_summary;
    std::map<unsigned int, Timeline> m_timelines;    // by the metric's id
    std::set<std::string> m_names;                   // between prefix and ".csv", all different
    std::string m_times;                             // of the point in progress
};

}    // namespace host

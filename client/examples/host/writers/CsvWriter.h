#pragma once

#include "writers/CsvFile.h"
#include "writers/TableWriter.h"

#include <map>
#include <set>

namespace pwr {
class DataElement;
}

namespace host {

// Writes result files for other programs. Numbers have a point and no grouping, whatever the locale.
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
//   Entity        qualified name
//   Descriptor    the state, for example; empty without one
//   Value         headed by the metric's quantity and units; residencies are told in milliseconds
//   Duration (s)  what the value stands for, to the nanosecond
//
// <metric> is the metric's name in small letters, "-" for everything but letters and digits.
class CsvWriter : public TableWriter {
public:
    explicit CsvWriter(const std::string& prefix);

    // Opens the summary file; 1 when that fails, see getError().
    int openOutput() override;
    int closeOutput() override;    // 1 when anything failed since

    const std::vector<std::string>& getFiles() const { return m_paths; }    // those opened, the summary first
    const std::string& getError() const { return m_error; }                 // the first failure; empty: none

protected:
    void beginMetric_i(const std::string&) override {}    // the tables are titled
    void writeNotes_i(const std::vector<std::string>& notes) override;
    void beginTable_i(const TableHead& head) override;
    void writeRow_i(const std::vector<std::string>& cells) override;
    void endTable_i(const TableHead& head) override;

private:
    using TableWriter::writeMessage;
    int writeMessage(const pwr::SystemMessage& message) override;
    int writeMessage(const pwr::Metric& metric) override;

    CsvFile& timelineOf_i(const pwr::Metric& metric);
    bool open_i(CsvFile& file, const std::string& name);
    void close_i(CsvFile& file);
    std::string uniqueName_i(const std::string& metric);
    std::string secondsSinceStart_i(unsigned long long timestamp) const;
    std::string seconds_i(unsigned long long ticks) const;
    std::string valueText_i(const pwr::Metric& metric, const pwr::DataElement& element) const;

    std::string m_prefix;
    const pwr::SystemMetadata* m_system = nullptr;    // the record of the run; not owned
    CsvFile m_summary;
    std::map<unsigned int, CsvFile> m_timelines;    // by the metric's id
    std::set<std::string> m_names;                  // between prefix and ".csv", all different
    std::vector<std::string> m_paths;
    std::string m_error;
};

}    // namespace host

#pragma once

#include "writers/OutFile.h"
#include "writers/ResultWriter.h"
#include "writers/Values.h"

#include <cstdint>
#include <map>

namespace host {

// Writes PREFIX.trace.json in the trace event format that trace viewers open. Each metric is a process of the trace,
// each entity a counter or a lane of it:
//
//   sampled numbers and amounts    counters, from their sampling point on; amounts from where they began to accrue
//   sampled residencies            slices, one for each state in its order: the sum is told, not when each was
//   transitions and sampled texts  slices as long as the value was held
//   events                         instants
//   summary tables                 a last process with a lane for each table and an instant for each row
//
// Numbers that are not finite are left out.
class TraceWriter : public ResultWriter {
public:
    explicit TraceWriter(const std::string& prefix);
    int openOutput() override;
    int closeOutput() override;

protected:
    void beginMetric_i(const std::string&) override {}
    void writeNotes_i(const std::vector<std::string>&) override {}    // nothing to show them at
    void beginTable_i(const TableHead& head) override;
    void writeRow_i(const std::vector<TableCell>& cells) override;
    void endTable_i(const TableHead&) override {}

private:
    enum class Shape : std::uint8_t { COUNTERS, STACKED_SLICES, SLICES, INSTANTS };

    struct Lane {
        unsigned int number = 0;       // the trace's thread
        std::uint64_t point = 0;       // timestamp of the sampling point whose slices are being stacked
        std::uint64_t cursorNs = 0;    // where the next one begins
    };
    struct Series {
        Lane* lane = nullptr;
        std::string counter;    // the event up to its value
    };
    struct Process {
        unsigned int number = 0;
        Shape shape = Shape::COUNTERS;
        bool isAmount = false;
        std::string title;                    // of the value
        std::map<std::string, Lane> lanes;    // by their names
        BySeries<Series> series;
    };

    using ResultWriter::writeMessage;
    int writeMessage(const pwr::Metric& metric) override;

    std::string& beginEvent_i();
    void writeName_i(unsigned int process, unsigned int lane, const char* what, const std::string& name);
    unsigned int openProcess_i(const std::string& name);
    Process& processOf_i(const pwr::Metric& metric);
    Series makeSeries_i(Process& process, const pwr::DataElement& element);
    void writeElement_i(Process& process, std::uint64_t timestamp, const pwr::DataElement& element);
    void writeCounter_i(const Process& process, const Series& series, std::uint64_t fromNs, std::uint64_t atNs,
                        const Reading& reading);
    void writeSlice_i(const Process& process, const Lane& lane, const std::string& name, std::uint64_t fromNs,
                      std::uint64_t durationNs);
    void stackSlice_i(const Process& process, Lane& lane, std::uint64_t timestamp, std::uint64_t fromNs,
                      const pwr::DataElement& element, const Reading& reading);
    void writeInstant_i(unsigned int process, unsigned int lane, const std::string& name, std::uint64_t atNs,
                        const std::string& arguments);

    std::string m_path;
    OutFile m_file;
    bool m_isBegun = false;
    std::map<unsigned int, Process> m_processes;    // by the metric's id
    unsigned int m_processCount = 0;
    unsigned int m_laneCount = 0;
    std::uint64_t m_lastNs = 0;
    unsigned int m_summaries = 0;         // the process of the tables; 0: none yet
    unsigned int m_table = 0;             // the lane of the one in progress
    std::vector<std::string> m_titles;    // of its columns, all different
};

}    // namespace host

#pragma once

#include "writers/OutFile.h"
#include "writers/ResultWriter.h"
#include "writers/Values.h"

#include <map>

namespace host {

// Writes PREFIX.jsonl: one JSON object a line, each with its "type". docs/results.md tells the members of each. Numbers
// are those measured, not rounded; one that JSON has no digits for is the text "nan", "inf" or "-inf".
class JsonlWriter : public ResultWriter {
public:
    explicit JsonlWriter(const std::string& prefix);
    int openOutput() override;
    int closeOutput() override;

protected:
    void beginMetric_i(const std::string&) override {}
    void writeNotes_i(const std::vector<std::string>& notes) override;
    void beginTable_i(const TableHead& head) override;
    void writeRow_i(const std::vector<TableCell>& cells) override;
    void endTable_i(const TableHead&) override {}

private:
    struct Timeline {
        ValueInfo info;
        std::string begin;              // of each line, up to the value of "time"
        BySeries<std::string> names;    // from behind the time up to the value of "value"
    };

    using ResultWriter::writeMessage;
    int writeMessage(const pwr::SystemMessage& message) override;
    int writeMessage(const pwr::IdMessage& message) override;
    int writeMessage(const pwr::MetricContainerInfoMessage& message) override;
    int writeMessage(const pwr::Metric& metric) override;

    Timeline& timelineOf_i(const pwr::Metric& metric);
    void announce_i(const pwr::Metric& metric, const ValueInfo& info);
    void writeElement_i(Timeline& timeline, std::uint64_t sinceStartNs, const pwr::DataElement& element);

    std::string m_path;
    OutFile m_file;
    std::map<unsigned int, Timeline> m_timelines;    // by the metric's id
    unsigned int m_table = 0;                        // the id of the one in progress
};

}    // namespace host

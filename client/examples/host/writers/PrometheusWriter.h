#pragma once

#include "writers/ResultWriter.h"
#include "writers/Values.h"

#include <chrono>
#include <map>
#include <string>

namespace host {

// Writes PREFIX.prom in the Prometheus text format 0.0.4: the latest values and the totals so far, without time stamps,
// so that an engine that collects such files watches this machine while the host measures it. The file is there at any
// moment and always whole: a new one is written beside it and put in its place, once in `interval` while collecting
// and once in the end.
//
//   sampled numbers, transitions     gauge with the base unit
//   sampled and traced texts         gauge <name>_info, 1, with the text as a label
//   transitions                      counter <name>_transitions_total
//   amounts                          counter of their sum; amounts below zero, which no counter takes, are left out
//   residencies                      counter <name>_seconds_total
//   events                           counter <name>_events_total, for each event that is an identified object
class PrometheusWriter : public ResultWriter {
public:
    explicit PrometheusWriter(const std::string& prefix, std::chrono::milliseconds interval = std::chrono::seconds(1));

    int openOutput() override;
    int closeOutput() override;

    // True when the file was due and could be written. A failure between is made good by the next time.
    bool flushContinuousResults(const pwr::SystemMetadata& system) override;

protected:
    void beginMetric_i(const std::string&) override {}    // tables are for people
    void writeNotes_i(const std::vector<std::string>&) override {}
    void beginTable_i(const TableHead&) override {}
    void writeRow_i(const std::vector<TableCell>&) override {}
    void endTable_i(const TableHead&) override {}

private:
    struct Sample {
        std::string more;    // labels behind those of its key
        double value = 0;
    };
    struct Family {
        std::string help;
        bool isCounter = false;
        std::map<std::string, Sample> samples;    // by their labels
    };
    using Families = std::map<std::string, Family>;    // by their names; never removed

    struct Source {
        pwr::Metric::MetricType type{};
        std::string name;
        std::string stem;
        double factor = 1;
        Family* numbers = nullptr;    // gauges or sums; null until there is one
        Family* texts = nullptr;
        Family* count = nullptr;    // of transitions
        std::string unit;           // the base unit
        BySeries<std::string> labels;
    };

    using ResultWriter::writeMessage;
    int writeMessage(const pwr::SystemMessage& message) override;
    int writeMessage(const pwr::Metric& metric) override;

    Source& sourceOf_i(const pwr::Metric& metric);
    Family& familyOf_i(Family*& family, const Source& source, const std::string& end, bool isCounter, const char* what);
    void take_i(Source& source, const pwr::DataElement& element);
    void takeValue_i(Source& source, const std::string& labels, const Reading& reading);
    void takeAmount_i(Source& source, const std::string& labels, double amount);
    void takeEvent_i(Source& source, const std::string& labels, const pwr::DataElement& element);
    void describeRun_i();
    std::string render_i();
    bool replaceFile_i();

    std::string m_path;
    std::chrono::milliseconds m_interval;
    std::chrono::steady_clock::time_point m_next{};
    std::string m_lastError;    // of the latest attempt
    Families m_families;
    std::map<unsigned int, Source> m_sources;    // by the metric's id
};

}    // namespace host

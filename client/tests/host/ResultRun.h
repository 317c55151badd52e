#pragma once

#include "Session.h"
#include "writers/Results.h"

#include "metrics/Metric.h"
#include "record/SystemMetadata.h"

#include <sstream>
#include <string>
#include <vector>

namespace test {

// A run that feeds the writers of result files by hand, as the host does: one stream, one record, a clock of a tick a
// nanosecond that starts at one second. The files begin with `prefix`; the run removes its own at its end.
class ResultRun {
public:
    static constexpr unsigned long long START = 1'000'000'000;
    using Names = std::vector<std::string>;

    explicit ResultRun(const std::string& prefix, const Names& formats = {"csv", "jsonl", "trace", "html", "prom"});
    ~ResultRun();
    ResultRun(const ResultRun&) = delete;
    ResultRun& operator=(const ResultRun&) = delete;

    void push(pwr::WriterMessage& message) const;
    void flush() const { m_stream.flush(m_record); }    // the end of a round
    void close() { m_stream.close(); }
    std::string file(const std::string& ending) const;    // its content; close() first

    pwr::SystemMetadata& record() { return m_record; }
    host::Results& results() { return m_results; }
    const std::string& prefix() const { return m_prefix; }
    std::string log() const { return m_log.str(); }

private:
    const std::string m_prefix;
    std::ostringstream m_log;
    host::Session m_session{m_log};
    pwr::SystemMetadata m_record;
    host::Results m_results;
    host::OutputStream m_stream;
};

// Feeds a metric of each type with as many sampling points, 10 ms apart, for some entities, and its tables.
void feedAllTypes(ResultRun& run, int points, int entities);

// Texts that a browser, a shell, a spreadsheet or a parser could misread.
const std::vector<std::string>& hostileTexts();

// Feeds a metric of each type and a table, all made of one text and of numbers that are not finite.
void feedHostile(ResultRun& run, const std::string& text);

// A program that the tests use where it is installed. Empty, where it is not.
std::string findProgram(const std::string& name);

// Runs a command of the shell; its output, standard errors included, in `output`. Returns its exit status.
int runCommand(const std::string& command, std::string& output);

}    // namespace test

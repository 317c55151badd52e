#pragma once

#include "runtime/Export.h"

class WriterStream;

namespace pwr {

class Metric;
class SystemMetadata;
class WriterInterfaceConfigFileParser;

// Turns the data points of one Metric into summary tables. A metric makes one of its own kind for itself; others may be
// added with Metric::addAccumulator() and stay their maker's. Runs inside the metric's calls, on their thread.
//
//   initialize()        at the first data point, again with the next one if a sibling failed
//   processMessage()    at each data point: read metric.getData()
//   finalize()          at the end: push the tables
//
// All return 0, or 1 on failure.
class QUORVANE_API Accumulator {
public:
    virtual ~Accumulator();
    virtual int initialize(const Metric& metric, const SystemMetadata& system) = 0;
    virtual int finalize(const Metric& metric) = 0;
    virtual int processMessage(const Metric& metric) = 0;

protected:
    // Throws the text "ERROR: Writer stream is not initialized" (const char*) when the environment holds no stream.
    Accumulator();
    Accumulator(const Accumulator&) = default;
    Accumulator& operator=(const Accumulator&) = default;

    WriterStream* m_stream;                             // not owned
    WriterInterfaceConfigFileParser* m_outputConfig;    // the singleton
};

}    // namespace pwr

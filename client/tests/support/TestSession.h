#pragma once

#include "output/WriterStream.h"
#include "record/SystemMetadata.h"
#include "support/LogCapture.h"
#include "support/RecordingWriter.h"

#include <set>
#include <string>

namespace test {

// A run as a host makes it: environment with recording loggers, registry, one recording writer and the stream over it,
// published in the environment; all ended in the right order.
//
//   TestSession session;
//   TextMessage message;
//   message.setMessage("x");
//   EXPECT_EQ(1u, session.writer.texts.size());
class TestSession {
public:
    explicit TestSession(unsigned short verbosity = 2);
    ~TestSession();
    TestSession(const TestSession&) = delete;
    TestSession& operator=(const TestSession&) = delete;

    LogCapture log;
    RecordingWriter writer;
    std::set<WriterPlugin*> writers;
    WriterStream* stream;
};

// Groups for TopTree::buildTopology: every package with its cores, every core with its threads, logical processors
// numbered from 0, no dies.
std::string topologyText(int packages, int coresPerPackage, int threadsPerCore);

// A record with every text set, so that it can be read back; clock of `clockMHz`, start at tick `startTSC`.
pwr::SystemMetadata makeSystem(float clockMHz = 1000, unsigned long long startTSC = 1000);

}    // namespace test

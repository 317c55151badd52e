#pragma once

#include "system/TraceSlot.h"
#include "tracing/MarkSession.h"
#include "tracing/TraceEvents.h"
#include "tracing/TracingCollector.h"

#include <deque>
#include <functional>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>

namespace host {

// The trace of one run. Two sessions record the host's own events while it collects: FILE_Phases.etl has the phases,
// FILE_Rounds.etl a mark for each round. In the end both are merged by time into FILE_Capture.etl, which is read again
// and printed. Hosts that trace at the same time have sessions of their own. Without a file all of this does nothing.
// What fails is said, in one line. Needs the environment, with the tool's directory.
//
//   TraceRun trace("run.etl", std::cout, say);
//   if (!trace.begin()) return 1;
//   Collection collection(record, trace.watch(*collector), plugins);
//   ...
//   if (!trace.end()) return 1;
class TraceRun {
public:
    using Say = std::function<void(const std::string&)>;

    TraceRun(const std::string& file, std::ostream& out, Say say);
    ~TraceRun();    // ends the sessions

    // Whether both sessions and the merge find their files: the path ends in ".etl" and has no other ".etl".
    static bool isFileName(const std::string& file);

    // Starts the sessions; earlier files of these names are gone. False when a file can't be written or the system
    // refuses. A system that has no tracing is told of, and the run goes on without.
    bool begin();

    // What the collection drives in place of the collector, as long as the trace lives. One for a run.
    CollectorPlugin& watch(CollectorPlugin& collector);

    // Ends, merges and prints. False when any of it failed; where only the merge did, each file is printed.
    bool end();

private:
    bool makeRoom_i(const std::string& path) const;
    bool startSessions_i();
    bool stopSessions_i();
    bool merge_i() const;
    bool printMerged_i() const;
    bool printEach_i();
    bool print_i(MarkSession& session) const;
    bool fail_i(const std::string& text) const;

    std::string m_file;    // empty: no trace
    std::ostream& m_out;
    Say m_say;
    std::optional<TraceMarks> m_marks;
    std::optional<TraceSlot> m_slot;       // outlives the sessions, which it names
    std::deque<MarkSession> m_sessions;    // those that run, in the order of the suffixes
    std::unique_ptr<TracingCollector> m_collector;
};

}    // namespace host

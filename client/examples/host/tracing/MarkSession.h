#pragma once

#include "runtime/EtwSession.h"

#include <string>
#include <vector>

namespace host {

class TracePrinter;

// A tracing session for one kind of the host's events. The program's end, if nothing else, ends it.
class MarkSession : public EtwSession {
public:
    using EtwSession::EtwSession;    // throws std::runtime_error for a file that doesn't end in ".etl"
    ~MarkSession() override;

    bool isRunning() const { return m_properties != nullptr; }
    const std::string& getFile() const { return m_logFile; }

    // Hands this process's events of the file to the printer, their times in units of 100 ns. False when the file can't
    // be read to its end.
    bool replayTo(TracePrinter& printer);

    // Makes the "_Capture" file of those with the suffixes and returns when that is done. Failures are logged.
    static void merge(const std::string& resultFile, const std::vector<std::string>& suffixes);

private:
    EVENT_TRACE_LOGFILEA setLogfileCallback() override;

    TracePrinter* m_printer = nullptr;    // while it replays
};

}    // namespace host

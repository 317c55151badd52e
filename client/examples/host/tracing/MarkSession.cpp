#include "tracing/MarkSession.h"

#include "system/TraceSlot.h"
#include "tracing/TracePrinter.h"

#include <cstdlib>

namespace host {

MarkSession::~MarkSession()
{
    if (isRunning()) EtwSession::end();
    std::free(m_properties);    // of a session that could not be ended
}

bool MarkSession::replayTo(TracePrinter& printer)
{
    m_printer = &printer;
    const bool isWhole = postProcessLog();
    m_printer = nullptr;
    printer.finish();
    return isWhole;
}

// Without the raw times, which only those can read who know the clock.
EVENT_TRACE_LOGFILEA MarkSession::setLogfileCallback()
{
    EVENT_TRACE_LOGFILEA logfile = EtwSession::setLogfileCallback();
    logfile.ProcessTraceMode = PROCESS_TRACE_MODE_EVENT_RECORD;
    logfile.Context = this;
    // A session gets the marks of every host that traces meanwhile.
    logfile.EventRecordCallback = [](EVENT_RECORD* record) {
        TracePrinter* printer = static_cast<MarkSession*>(record->UserContext)->m_printer;
        if (printer != nullptr && record->EventHeader.ProcessId == ownProcessId()) printer->add(*record);
    };
    return logfile;
}

void MarkSession::merge(const std::string& resultFile, const std::vector<std::string>& suffixes)
{
    s_mergeFileList.clear();    // of an earlier run
    for (const std::string& suffix : suffixes)
        addMergeFile(suffix);
    if (mergeLogs(resultFile)) waitForMergeComplete();
}

}    // namespace host

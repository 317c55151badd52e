#pragma once

#include "runtime/os/posix/tracing/TraceReader.h"

#include <vector>

namespace pwr::os::trace {

// A trace file that was opened to hand its events to the callback of an EVENT_TRACE_LOGFILEA.
class TraceReplay {
public:
    // Opens the file and fills the log header. 0, or the code: 87 without a path, or when the callback would want
    // another form of events than records.
    unsigned long open(EVENT_TRACE_LOGFILEA& logfile);

    // Calls back for each event. 0 at the end of the file, 1392 where it is damaged, 1223 when the buffer callback,
    // which is called each time that a buffer has been read and handed on, gives 0.
    unsigned long process();

private:
    void fillLogHeader_i(TRACE_LOGFILE_HEADER& header) const;
    void deliver_i(const Record& record);
    LONGLONG timeOf_i(std::uint64_t ticks) const;
    bool goesOn_i();

    TraceReader m_reader;
    EVENT_TRACE_LOGFILEA m_logfile{};
    std::vector<std::uint64_t> m_payload;    // a copy that is aligned for whatever the payload holds
};

}    // namespace pwr::os::trace

#include "runtime/os/posix/tracing/TraceReplay.h"

#include <algorithm>
#include <cstring>

namespace pwr::os::trace {

namespace {

constexpr unsigned long CANCELLED = 1223;
constexpr std::uint64_t UNITS_PER_SECOND = 10000000;    // of 100 ns

LARGE_INTEGER large(std::uint64_t value)
{
    LARGE_INTEGER result{};
    result.QuadPart = static_cast<LONGLONG>(value);
    return result;
}

}    // namespace

unsigned long TraceReplay::open(EVENT_TRACE_LOGFILEA& logfile)
{
    if (logfile.LogFileName == nullptr) return INVALID_PARAMETER;
    if ((logfile.ProcessTraceMode & PROCESS_TRACE_MODE_EVENT_RECORD) == 0) return INVALID_PARAMETER;
    const unsigned long status = m_reader.open(logfile.LogFileName);
    if (status != 0) return status;
    fillLogHeader_i(logfile.LogfileHeader);
    m_logfile = logfile;
    m_payload.resize(MAX_PAYLOAD_BYTES / sizeof(std::uint64_t) + 1);
    return 0;
}

void TraceReplay::fillLogHeader_i(TRACE_LOGFILE_HEADER& header) const
{
    const FileHeader& file = m_reader.header();
    header = {};
    header.BufferSize = file.bufferKB * 1024;
    header.Version = FILE_VERSION;
    header.LogFileMode = EVENT_TRACE_FILE_MODE_SEQUENTIAL;
    header.BuffersWritten = file.buffersWritten;
    header.StartBuffers = 1;
    header.PointerSize = file.pointerSize;
    header.EventsLost = file.eventsLost;
    header.PerfFreq = large(file.frequencyHz);
    header.StartTime = large(file.startTime);
    header.EndTime = large(file.endTime);
    header.ReservedFlags = file.clock;
}

unsigned long TraceReplay::process()
{
    std::uint32_t buffers = m_reader.buffersRead();
    for (Record record; m_reader.next(record);) {
        if (m_reader.buffersRead() != buffers && !goesOn_i()) return CANCELLED;
        buffers = m_reader.buffersRead();
        deliver_i(record);
    }
    if (!goesOn_i()) return CANCELLED;
    return m_reader.status();
}

bool TraceReplay::goesOn_i()
{
    ++m_logfile.BuffersRead;
    return m_logfile.BufferCallback == nullptr || m_logfile.BufferCallback(&m_logfile) != 0;
}

void TraceReplay::deliver_i(const Record& record)
{
    if (m_logfile.EventRecordCallback == nullptr) return;
    std::memcpy(m_payload.data(), record.payload(), record.payloadBytes());
    EVENT_RECORD event{};
    event.EventHeader.Size = static_cast<USHORT>(sizeof(EVENT_HEADER) + record.payloadBytes());
    event.EventHeader.Flags = EVENT_HEADER_FLAG_64_BIT_HEADER;
    event.EventHeader.ThreadId = record.head.threadId;
    event.EventHeader.ProcessId = record.head.processId;
    event.EventHeader.TimeStamp.QuadPart = timeOf_i(record.head.ticks);
    event.EventHeader.ProviderId = record.head.provider;
    event.EventHeader.EventDescriptor = record.head.descriptor;
    event.UserDataLength = static_cast<USHORT>(record.payloadBytes());
    event.UserData = m_payload.data();
    event.UserContext = m_logfile.Context;
    m_logfile.EventRecordCallback(&event);
}

// Raw times are the clock's ticks; others are wall clock times in units of 100 ns since 1601.
LONGLONG TraceReplay::timeOf_i(std::uint64_t ticks) const
{
    const FileHeader& file = m_reader.header();
    const bool raw = (m_logfile.ProcessTraceMode & PROCESS_TRACE_MODE_RAW_TIMESTAMP) != 0;
    if (raw || file.frequencyHz == 0) return static_cast<LONGLONG>(ticks);
    const std::uint64_t past = ticks - file.startTicks;
    const std::uint64_t seconds = past / file.frequencyHz;
    const std::uint64_t rest = past % file.frequencyHz;
    return static_cast<LONGLONG>(file.startTime + seconds * UNITS_PER_SECOND +
                                 rest * UNITS_PER_SECOND / file.frequencyHz);
}

}    // namespace pwr::os::trace

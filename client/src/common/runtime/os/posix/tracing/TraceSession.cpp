#include "runtime/os/posix/tracing/TraceSession.h"

#include "runtime/os/Os.h"

#include <algorithm>
#include <cstring>

namespace pwr::os::trace {

namespace {

constexpr unsigned long EVENT_TOO_LARGE = 534;
constexpr std::uint32_t DEFAULT_BUFFER_KB = 64;
constexpr std::uint64_t SYSTEM_TIME_HZ = 10000000;

std::uint64_t ticksOf(std::uint32_t clock)
{
    Clocks& clocks = *current().clocks;
    if (clock == TIME_STAMP_COUNTER) return clocks.timeStampCounter();
    return clock == SYSTEM_TIME ? clocks.systemTime100ns() : clocks.performanceCounter();
}

std::uint64_t frequencyOf(std::uint32_t clock)
{
    if (clock == TIME_STAMP_COUNTER) return 0;
    return clock == SYSTEM_TIME ? SYSTEM_TIME_HZ : current().clocks->performanceFrequencyHz();
}

void copyName(EVENT_TRACE_PROPERTIES& block, ULONG offset, const std::string& name)
{
    const ULONG size = block.Wnode.BufferSize;
    if (offset < sizeof block || offset >= size || name.size() >= size - offset) return;
    std::memcpy(reinterpret_cast<char*>(&block) + offset, name.c_str(), name.size() + 1);
}

}    // namespace

TraceSession::TraceSession(TRACEHANDLE handle, const std::string& name) : m_handle(handle), m_name(name) {}

unsigned long TraceSession::start(const std::string& path, const EVENT_TRACE_PROPERTIES& properties)
{
    FileHeader header;
    header.clock = properties.Wnode.ClientContext;
    if (header.clock < PERFORMANCE_COUNTER || header.clock > TIME_STAMP_COUNTER) header.clock = PERFORMANCE_COUNTER;
    header.bufferKB = properties.BufferSize != 0 ? properties.BufferSize : DEFAULT_BUFFER_KB;
    header.frequencyHz = frequencyOf(header.clock);
    header.startTicks = ticksOf(header.clock);
    header.startTime = current().clocks->systemTime100ns();
    header.session = m_name;
    m_path = path;
    m_minimumBuffers = properties.MinimumBuffers;
    m_maximumBuffers = properties.MaximumBuffers;
    return m_writer.open(path, header, std::size_t{header.bufferKB} * 1024);
}

unsigned long TraceSession::lose_i(unsigned long status)
{
    addLost(m_writer.header(), 1);
    return status;
}

unsigned long TraceSession::add(EventHead& head, const Payload& payload)
{
    if (payload.bytes > MAX_PAYLOAD_BYTES) return lose_i(EVENT_TOO_LARGE);
    const auto payloadBytes = static_cast<std::size_t>(payload.bytes);
    unsigned long status = 0;
    char* out = m_writer.reserve(EVENT_HEADER_BYTES + payloadBytes, status);
    if (out == nullptr) return lose_i(status);
    m_lastTicks = std::max(m_lastTicks, ticksOf(m_writer.header().clock));
    head.ticks = m_lastTicks;
    encodeEvent(out, head, payloadBytes);
    out += EVENT_HEADER_BYTES;
    for (unsigned long i = 0; i < payload.count; ++i) {
        const EVENT_DATA_DESCRIPTOR& piece = payload.pieces[i];
        if (piece.Size == 0) continue;
        std::memcpy(out, reinterpret_cast<const void*>(static_cast<std::uintptr_t>(piece.Ptr)), piece.Size);
        out += piece.Size;
    }
    m_writer.commit(EVENT_HEADER_BYTES + payloadBytes);
    return 0;
}

unsigned long TraceSession::stop()
{
    return m_writer.close(current().clocks->systemTime100ns());
}

void TraceSession::describe(EVENT_TRACE_PROPERTIES& properties) const
{
    const FileHeader& header = m_writer.header();
    properties.Wnode.HistoricalContext = m_handle;
    properties.Wnode.ClientContext = header.clock;
    properties.BufferSize = header.bufferKB;
    properties.MinimumBuffers = m_minimumBuffers;
    properties.MaximumBuffers = m_maximumBuffers;
    properties.LogFileMode = EVENT_TRACE_FILE_MODE_SEQUENTIAL;
    properties.NumberOfBuffers = 1;
    properties.EventsLost = header.eventsLost;
    properties.BuffersWritten = header.buffersWritten;
    copyName(properties, properties.LoggerNameOffset, m_name);
    copyName(properties, properties.LogFileNameOffset, m_path);
}

}    // namespace pwr::os::trace

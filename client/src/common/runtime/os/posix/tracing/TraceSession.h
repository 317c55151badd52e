#pragma once

#include "runtime/os/posix/tracing/TraceWriter.h"

#include <string>
#include <vector>

namespace pwr::os::trace {

// The pieces of an event's payload, checked.
struct Payload {
    const EVENT_DATA_DESCRIPTOR* pieces = nullptr;
    unsigned long count = 0;
    std::uint64_t bytes = 0;
};

// A provider that a session takes events of.
struct EnabledProvider {
    GUID provider;
    UCHAR level;
    unsigned long long keywords;

    // Events without a level or without keywords always pass; the provider's level 0 and keywords 0 stand for all.
    bool takes(const EVENT_DESCRIPTOR& event) const
    {
        if (level != 0 && event.Level > level) return false;
        return keywords == 0 || event.Keyword == 0 || (event.Keyword & keywords) != 0;
    }
};

// A running session and its file. It has one buffer and no thread: the call that fills the buffer writes it out. The
// engine owns it and lets one thread in at a time.
class TraceSession {
public:
    TraceSession(TRACEHANDLE handle, const std::string& name);

    // Starts with what the caller's block says; 0, or the code of the file's failure.
    unsigned long start(const std::string& path, const EVENT_TRACE_PROPERTIES& properties);

    TRACEHANDLE handle() const { return m_handle; }
    const std::string& name() const { return m_name; }

    std::vector<EnabledProvider>& providers() { return m_providers; }

    // Times the event and puts it into the file. An event that is too large (534, 234) or can't be written is lost and
    // counted.
    unsigned long add(EventHead& head, const Payload& payload);

    unsigned long flush() { return m_writer.flush(); }
    unsigned long stop();

    // Tells settings and figures, and the names as far as the block has room for them.
    void describe(EVENT_TRACE_PROPERTIES& properties) const;

private:
    unsigned long lose_i(unsigned long status);

    TRACEHANDLE m_handle;
    std::string m_name;
    std::string m_path;
    std::uint32_t m_minimumBuffers = 0;
    std::uint32_t m_maximumBuffers = 0;
    std::uint64_t m_lastTicks = 0;    // time never steps back within a file
    std::vector<EnabledProvider> m_providers;
    TraceWriter m_writer;
};

}    // namespace pwr::os::trace

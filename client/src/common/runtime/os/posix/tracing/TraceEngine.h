#pragma once

#include "runtime/os/posix/tracing/TraceSession.h"

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace pwr::os::trace {

// The sessions and providers of this process. An event goes, on the writing thread, into every session that enabled its
// provider. One lock guards it all, so that the times in a file rise. Sessions that still run when the process ends are
// stopped then.
class TraceEngine {
public:
    TraceEngine();
    ~TraceEngine();
    TraceEngine(const TraceEngine&) = delete;
    TraceEngine& operator=(const TraceEngine&) = delete;

    // As in Tracing.
    unsigned long start(TRACEHANDLE& handle, const char* name, EVENT_TRACE_PROPERTIES* properties);
    unsigned long control(TRACEHANDLE handle, const char* name, EVENT_TRACE_PROPERTIES* properties, unsigned long code);
    unsigned long enable(TRACEHANDLE handle, const GUID& provider, unsigned long code, UCHAR level,
                         unsigned long long keywords);
    unsigned long registerProvider(const GUID& provider, REGHANDLE& handle);
    unsigned long unregisterProvider(REGHANDLE handle);
    unsigned long write(REGHANDLE handle, const EVENT_DESCRIPTOR& event, unsigned long count,
                        const EVENT_DATA_DESCRIPTOR* data);

private:
    // Where a registered provider's events go.
    struct Route {
        TraceSession* session;
        EnabledProvider enabled;
    };

    // A place in the table of registrations. A handle holds place and generation, so that an old one is no longer good.
    struct Registration {
        GUID provider{};
        std::uint32_t generation = 0;
        bool inUse = false;
        std::vector<Route> routes;
    };

    using Sessions = std::vector<std::unique_ptr<TraceSession>>;

    Sessions::iterator findSession_i(TRACEHANDLE handle, const std::string& name);    // handle 0: by the name
    Registration* findRegistration_i(REGHANDLE handle);
    unsigned long stop_i(Sessions::iterator session, EVENT_TRACE_PROPERTIES& properties);
    void routeAll_i();
    void route_i(Registration& registration) const;

    std::mutex m_mutex;
    Sessions m_sessions;
    std::vector<Registration> m_registrations;
    std::vector<std::size_t> m_free;    // places not in use
    TRACEHANDLE m_lastHandle = 0;
    std::uint32_t m_processId;
};

}    // namespace pwr::os::trace

#pragma once

#include "runtime/os/WindowsTypes.h"

namespace pwr::os {

// Event tracing: sessions that write events to a file, providers that write events, replay of a file. Each operation is
// the Windows call of its name in the comment; where there is none, an engine of our own does the same in this process.
// Results are Windows codes on every system, 0 for success.
class Tracing {
public:
    virtual ~Tracing() = default;

    // StartTraceA. `properties` ends with room for both names. 183: a session of that name runs already; 5: the file
    // can't be written; 112: disk full; 8: no memory for its buffer. A failure leaves `handle` 0.
    virtual unsigned long start(TRACEHANDLE& handle, const char* session, EVENT_TRACE_PROPERTIES* properties) = 0;

    // ControlTraceA: `code` 0 query, 1 stop, 3 flush; fills `properties`, of which the names need not fit. The session
    // is found by its handle, by its name where that is 0; 4201: there is none, 87: no `properties`.
    virtual unsigned long control(TRACEHANDLE handle, const char* session, EVENT_TRACE_PROPERTIES* properties,
                                  unsigned long code) = 0;

    // EnableTraceEx2: `code` 0 disable, 1 enable, 2 capture state. Events up to `level` with any of the `keywords`
    // go into the session; keywords 0 stand for all.
    virtual unsigned long enable(TRACEHANDLE handle, const GUID& provider, unsigned long code, unsigned char level,
                                 unsigned long long keywords) = 0;

    // OpenTraceA: opens the file of `logfile` and fills its header. All ones: it failed, `lastError` tells why.
    virtual TRACEHANDLE open(EVENT_TRACE_LOGFILEA& logfile, unsigned long& lastError) = 0;

    // ProcessTrace: hands the events of an opened file to its callback, in time order, on this thread. 1223: the buffer
    // callback wanted no more.
    virtual unsigned long process(TRACEHANDLE handle) = 0;

    // CloseTrace.
    virtual unsigned long close(TRACEHANDLE handle) = 0;

    // TdhEnumerateProviders: fills `list`, which is `size` bytes long. 122: too small, `size` tells what is needed.
    virtual unsigned long enumerateProviders(PROVIDER_ENUMERATION_INFO* list, ULONG& size) = 0;

    // EventRegister, without a callback; a failure leaves `handle` 0. EventUnregister.
    virtual unsigned long registerProvider(const GUID& provider, REGHANDLE& handle) = 0;
    virtual unsigned long unregisterProvider(REGHANDLE handle) = 0;

    // EventWrite: `data` are `count` pieces (128 at most) that make up the payload, in order. 0 when every session that
    // enabled the provider took the event, also when none did. Any thread.
    virtual unsigned long write(REGHANDLE handle, const EVENT_DESCRIPTOR& event, unsigned long count,
                                EVENT_DATA_DESCRIPTOR* data) = 0;
};

Tracing& systemTracing();

inline constexpr TRACEHANDLE INVALID_TRACE = ~0ULL;

}    // namespace pwr::os

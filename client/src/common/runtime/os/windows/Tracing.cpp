#include "runtime/os/Tracing.h"

namespace pwr::os {

namespace {

class WindowsTracing : public Tracing {
public:
    unsigned long start(TRACEHANDLE& handle, const char* session, EVENT_TRACE_PROPERTIES* properties) override
    {
        handle = 0;
        const ULONG status = StartTraceA(&handle, session, properties);
        if (status != ERROR_SUCCESS) handle = 0;
        return status;
    }

    unsigned long control(TRACEHANDLE handle, const char* session, EVENT_TRACE_PROPERTIES* properties,
                          unsigned long code) override
    {
        return ControlTraceA(handle, session, properties, code);
    }

    unsigned long enable(TRACEHANDLE handle, const GUID& provider, unsigned long code, unsigned char level,
                         unsigned long long keywords) override
    {
        return EnableTraceEx2(handle, &provider, code, level, keywords, 0, 0, nullptr);
    }

    TRACEHANDLE open(EVENT_TRACE_LOGFILEA& logfile, unsigned long& lastError) override
    {
        const TRACEHANDLE handle = OpenTraceA(&logfile);
        lastError = handle == INVALID_TRACE ? GetLastError() : 0;
        return handle;
    }

    unsigned long process(TRACEHANDLE handle) override { return ProcessTrace(&handle, 1, nullptr, nullptr); }
    unsigned long close(TRACEHANDLE handle) override { return CloseTrace(handle); }

    unsigned long enumerateProviders(PROVIDER_ENUMERATION_INFO* list, ULONG& size) override
    {
        return TdhEnumerateProviders(list, &size);
    }

    unsigned long registerProvider(const GUID& provider, REGHANDLE& handle) override
    {
        handle = 0;
        return EventRegister(&provider, nullptr, nullptr, &handle);
    }

    unsigned long unregisterProvider(REGHANDLE handle) override { return EventUnregister(handle); }

    unsigned long write(REGHANDLE handle, const EVENT_DESCRIPTOR& event, unsigned long count,
                        EVENT_DATA_DESCRIPTOR* data) override
    {
        return EventWrite(handle, &event, count, data);
    }
};

}    // namespace

Tracing& systemTracing()
{
    static WindowsTracing s_tracing;
    return s_tracing;
}

}    // namespace pwr::os

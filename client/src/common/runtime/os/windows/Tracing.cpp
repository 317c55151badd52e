#include "runtime/os/Tracing.h"

#include <cstddef>

namespace pwr::os {

namespace {

// What a session is described in. The system tells the names, the file's with its whole path: a block without room for
// them, as one that was made for a relative path, would turn work that is done into an error (234).
struct ControlBlock {
    static constexpr std::size_t NAME_BYTES = 2 * 1024;    // the longest name, of characters of two bytes

    EVENT_TRACE_PROPERTIES head;
    char session[NAME_BYTES];
    char file[NAME_BYTES];
};

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
        if (properties == nullptr) return ERROR_INVALID_PARAMETER;
        ControlBlock block{*properties, {}, {}};
        block.head.Wnode.BufferSize = sizeof block;
        block.head.LoggerNameOffset = offsetof(ControlBlock, session);
        block.head.LogFileNameOffset = offsetof(ControlBlock, file);
        const ULONG status = ControlTraceA(handle, session, &block.head, code);
        block.head.Wnode.BufferSize = properties->Wnode.BufferSize;
        block.head.LoggerNameOffset = properties->LoggerNameOffset;
        block.head.LogFileNameOffset = properties->LogFileNameOffset;
        *properties = block.head;
        return status;
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

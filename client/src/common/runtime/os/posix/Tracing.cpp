#include "runtime/os/Tracing.h"
#include "runtime/os/ProviderNames.h"
#include "runtime/os/posix/tracing/TraceEngine.h"
#include "runtime/os/posix/tracing/TraceReplay.h"

#include <cstdio>
#include <cstring>
#include <iterator>
#include <map>
#include <memory>
#include <mutex>

namespace pwr::os {

namespace {

constexpr unsigned long INVALID_HANDLE = 6;
constexpr unsigned long INSUFFICIENT_BUFFER = 122;

GUID guidFromText(const char* text)
{
    GUID guid{};
    unsigned int parts[3] = {};
    unsigned int bytes[8] = {};
    std::sscanf(text, "%8x-%4x-%4x-%2x%2x-%2x%2x%2x%2x%2x%2x", &parts[0], &parts[1], &parts[2], &bytes[0], &bytes[1],
                &bytes[2], &bytes[3], &bytes[4], &bytes[5], &bytes[6], &bytes[7]);
    guid.Data1 = parts[0];
    guid.Data2 = static_cast<USHORT>(parts[1]);
    guid.Data3 = static_cast<USHORT>(parts[2]);
    for (std::size_t i = 0; i < std::size(bytes); ++i) {
        guid.Data4[i] = static_cast<UCHAR>(bytes[i]);
    }
    return guid;
}

// The files that are opened for replay. A file stays while it is being replayed, also when it is closed meanwhile.
class OpenFiles {
public:
    TRACEHANDLE add(std::shared_ptr<trace::TraceReplay> replay)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_replays[++m_lastHandle] = std::move(replay);
        return m_lastHandle;
    }

    std::shared_ptr<trace::TraceReplay> find(TRACEHANDLE handle)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        const auto found = m_replays.find(handle);
        return found != m_replays.end() ? found->second : nullptr;
    }

    bool remove(TRACEHANDLE handle)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_replays.erase(handle) != 0;
    }

private:
    std::mutex m_mutex;
    TRACEHANDLE m_lastHandle = 0;
    std::map<TRACEHANDLE, std::shared_ptr<trace::TraceReplay>> m_replays;
};

// This system lists the providers that the tool knows by name.
class ProviderList {
public:
    static ULONG neededBytes()
    {
        std::size_t bytes = namesOffset_i();
        for (const ProviderName& each : PROVIDER_NAMES) {
            bytes += nameBytes_i(each);
        }
        return static_cast<ULONG>(bytes);
    }

    static void fill(PROVIDER_ENUMERATION_INFO& list)
    {
        char* start = reinterpret_cast<char*>(&list);
        char* info = start + offsetof(PROVIDER_ENUMERATION_INFO, TraceProviderInfoArray);
        std::size_t nameOffset = namesOffset_i();
        list.NumberOfProviders = static_cast<ULONG>(std::size(PROVIDER_NAMES));
        list.Padding = 0;
        for (const ProviderName& each : PROVIDER_NAMES) {
            const TRACE_PROVIDER_INFO row{guidFromText(each.guid), 0, static_cast<ULONG>(nameOffset)};
            std::memcpy(info, &row, sizeof row);
            info += sizeof row;
            const std::wstring name(each.name, each.name + std::strlen(each.name));
            std::memcpy(start + nameOffset, name.c_str(), nameBytes_i(each));
            nameOffset += nameBytes_i(each);
        }
    }

private:
    static std::size_t namesOffset_i()
    {
        return offsetof(PROVIDER_ENUMERATION_INFO, TraceProviderInfoArray) +
               std::size(PROVIDER_NAMES) * sizeof(TRACE_PROVIDER_INFO);
    }

    static std::size_t nameBytes_i(const ProviderName& name) { return (std::strlen(name.name) + 1) * sizeof(wchar_t); }
};

// Sessions and providers live in this process.
class PosixTracing : public Tracing {
public:
    unsigned long start(TRACEHANDLE& handle, const char* session, EVENT_TRACE_PROPERTIES* properties) override
    {
        return m_engine.start(handle, session, properties);
    }

    unsigned long control(TRACEHANDLE handle, const char* session, EVENT_TRACE_PROPERTIES* properties,
                          unsigned long code) override
    {
        return m_engine.control(handle, session, properties, code);
    }

    unsigned long enable(TRACEHANDLE handle, const GUID& provider, unsigned long code, unsigned char level,
                         unsigned long long keywords) override
    {
        return m_engine.enable(handle, provider, code, level, keywords);
    }

    TRACEHANDLE open(EVENT_TRACE_LOGFILEA& logfile, unsigned long& lastError) override
    {
        auto replay = std::make_shared<trace::TraceReplay>();
        lastError = replay->open(logfile);
        return lastError == 0 ? m_files.add(std::move(replay)) : INVALID_TRACE;
    }

    // Without a lock: the callback may write events itself.
    unsigned long process(TRACEHANDLE handle) override
    {
        const std::shared_ptr<trace::TraceReplay> replay = m_files.find(handle);
        return replay ? replay->process() : INVALID_HANDLE;
    }

    unsigned long close(TRACEHANDLE handle) override { return m_files.remove(handle) ? 0 : INVALID_HANDLE; }

    unsigned long enumerateProviders(PROVIDER_ENUMERATION_INFO* list, ULONG& size) override
    {
        const ULONG needed = ProviderList::neededBytes();
        const bool fits = list != nullptr && size >= needed;
        size = needed;
        if (!fits) return INSUFFICIENT_BUFFER;
        ProviderList::fill(*list);
        return 0;
    }

    unsigned long registerProvider(const GUID& provider, REGHANDLE& handle) override
    {
        return m_engine.registerProvider(provider, handle);
    }

    unsigned long unregisterProvider(REGHANDLE handle) override { return m_engine.unregisterProvider(handle); }

    unsigned long write(REGHANDLE handle, const EVENT_DESCRIPTOR& event, unsigned long count,
                        EVENT_DATA_DESCRIPTOR* data) override
    {
        return m_engine.write(handle, event, count, data);
    }

private:
    trace::TraceEngine m_engine;
    OpenFiles m_files;
};

}    // namespace

Tracing& systemTracing()
{
    static PosixTracing s_tracing;
    return s_tracing;
}

}    // namespace pwr::os

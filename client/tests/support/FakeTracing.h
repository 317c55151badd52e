#pragma once

#include "runtime/os/Tracing.h"

#include <cstring>
#include <map>
#include <string>
#include <vector>

namespace test {

// A tracing system that is not there: it keeps what it is asked, and answers with the codes that are put into `codes`
// for the calls by their names, in their order; 0 where there is none. For use with a DoorGuard.
//
//   FakeTracing tracing;
//   tracing.codes["start"] = {183, 0};
class FakeTracing : public pwr::os::Tracing {
public:
    static constexpr TRACEHANDLE HANDLE_OF_SESSION = 0x1234;
    static constexpr TRACEHANDLE HANDLE_OF_LOG = 0x5678;

    unsigned long start(TRACEHANDLE& handle, const char* session, EVENT_TRACE_PROPERTIES* properties) override
    {
        block = copyOf_i(properties);
        calls.push_back("start " + std::string(session) + " " + nameAt_i(properties->LogFileNameOffset));
        const unsigned long code = next_i("start");
        handle = code == 0 ? HANDLE_OF_SESSION : 0;
        return code;
    }

    // Scribbles on the block, as systems do.
    unsigned long control(TRACEHANDLE handle, const char* session, EVENT_TRACE_PROPERTIES* properties,
                          unsigned long code) override
    {
        static const char* const s_names[] = {"query", "stop", "update", "flush"};
        const std::string name = s_names[code & 3];
        calls.push_back(name + " " + session + (handle == HANDLE_OF_SESSION ? "" : " by name"));
        if (properties != nullptr) {
            block = copyOf_i(properties);
            properties->EventsLost = eventsLost;
            std::memset(reinterpret_cast<char*>(properties) + properties->LogFileNameOffset, '?', 1);
        }
        return next_i(name);
    }

    unsigned long enable(TRACEHANDLE, const GUID& provider, unsigned long code, unsigned char level,
                         unsigned long long keywords) override
    {
        static const char* const s_names[] = {"disable", "enable", "capture"};
        calls.push_back(std::string(s_names[code]) + " " + std::to_string(provider.Data1) + " level " +
                        std::to_string(level) + " keywords " + std::to_string(keywords));
        return next_i(s_names[code]);
    }

    TRACEHANDLE open(EVENT_TRACE_LOGFILEA& logfile, unsigned long& lastError) override
    {
        calls.push_back("open " + std::string(logfile.LogFileName));
        logfile.LogfileHeader.PointerSize = pointerSize;
        logfile.LogfileHeader.EventsLost = eventsLost;
        lastError = next_i("open");
        return lastError == 0 ? HANDLE_OF_LOG : pwr::os::INVALID_TRACE;
    }

    unsigned long process(TRACEHANDLE handle) override { return onLog_i("process", handle); }
    unsigned long close(TRACEHANDLE handle) override { return onLog_i("close", handle); }

    unsigned long enumerateProviders(PROVIDER_ENUMERATION_INFO* list, ULONG& size) override
    {
        calls.push_back("enumerate " + std::to_string(size));
        const unsigned long code = next_i("enumerate");
        if (code != 0) {
            size = neededBytes;
        } else if (list != nullptr) {
            std::memcpy(static_cast<void*>(list), providers.data(), providers.size());
        }
        return code;
    }

    unsigned long registerProvider(const GUID& provider, REGHANDLE& handle) override
    {
        calls.push_back("register " + std::to_string(provider.Data1));
        const unsigned long code = next_i("register");
        handle = code == 0 ? 0x99 : 0;
        return code;
    }

    unsigned long unregisterProvider(REGHANDLE handle) override
    {
        calls.push_back("unregister " + std::to_string(handle));
        return next_i("unregister");
    }

    unsigned long write(REGHANDLE handle, const EVENT_DESCRIPTOR& event, unsigned long count,
                        EVENT_DATA_DESCRIPTOR* data) override
    {
        calls.push_back("write " + std::to_string(handle) + " event " + std::to_string(event.Id));
        payload.clear();
        for (unsigned long i = 0; i < count; ++i) {
            payload.emplace_back(reinterpret_cast<const char*>(static_cast<std::uintptr_t>(data[i].Ptr)), data[i].Size);
        }
        return next_i("write");
    }

    std::map<std::string, std::vector<unsigned long>> codes;
    std::vector<std::string> calls;
    std::vector<char> block;             // the properties of the last call, before they were scribbled on
    std::vector<std::string> payload;    // of the last write, piece by piece
    std::vector<char> providers;         // what the enumeration gives
    ULONG neededBytes = 0;               // what it asks for with code 122
    ULONG eventsLost = 0;
    ULONG pointerSize = 8;

private:
    unsigned long next_i(const std::string& name)
    {
        std::vector<unsigned long>& left = codes[name];
        if (left.empty()) return 0;
        const unsigned long code = left.front();
        left.erase(left.begin());
        return code;
    }

    unsigned long onLog_i(const std::string& name, TRACEHANDLE handle)
    {
        calls.push_back(name + (handle == HANDLE_OF_LOG ? " log" : " another"));
        return next_i(name);
    }

    static std::vector<char> copyOf_i(const EVENT_TRACE_PROPERTIES* properties)
    {
        const char* bytes = reinterpret_cast<const char*>(properties);
        return {bytes, bytes + properties->Wnode.BufferSize};
    }

    std::string nameAt_i(ULONG offset) const { return block.data() + offset; }
};

}    // namespace test

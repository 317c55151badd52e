#pragma once

#include "runtime/os/Os.h"
#include "support/DoorGuard.h"
#include "support/HandClocks.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

namespace test {

inline constexpr GUID PROVIDER{0x11223344, 0x5566, 0x7788, {0x99, 0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF, 0x01}};
inline constexpr GUID OTHER_PROVIDER{2, 0, 0, {}};

inline EVENT_DESCRIPTOR event(USHORT id, UCHAR level = 4, unsigned long long keyword = 0)
{
    EVENT_DESCRIPTOR result{};
    result.Id = id;
    result.Level = level;
    result.Keyword = keyword;
    return result;
}

// What a replay gave.
struct Replayed {
    unsigned long status = 0;    // of the opening, else of the processing
    EVENT_TRACE_LOGFILEA logfile{};
    std::vector<std::string> events;    // "id@time payload"
};

// The tracing engine of this system in a folder of its own, with clocks set by hand.
class TraceFixture : public testing::Test {
protected:
    TraceFixture()
    {
        std::filesystem::create_directory(m_folder);
        m_door->clocks = &m_clocks;
        EXPECT_EQ(0U, m_tracing.registerProvider(PROVIDER, m_provider));
    }
    ~TraceFixture() override
    {
        m_tracing.unregisterProvider(m_provider);
        for (const char* session : {"one", "two"}) {
            control(0, session, EVENT_TRACE_CONTROL_STOP);
        }
        std::filesystem::remove_all(m_folder);
    }

    std::string path(const std::string& name) const { return m_folder + "/" + name; }

    // The structure with both names behind it.
    static std::vector<char> block(const std::string& session, const std::string& file, ULONG bufferKB = 64)
    {
        std::vector<char> bytes(sizeof(EVENT_TRACE_PROPERTIES) + session.size() + 1 + file.size() + 1);
        EVENT_TRACE_PROPERTIES& properties = of(bytes);
        properties.Wnode.BufferSize = static_cast<ULONG>(bytes.size());
        properties.Wnode.ClientContext = 1;
        properties.BufferSize = bufferKB;
        properties.LoggerNameOffset = sizeof properties;
        properties.LogFileNameOffset = static_cast<ULONG>(sizeof properties + session.size() + 1);
        std::memcpy(bytes.data() + properties.LogFileNameOffset, file.c_str(), file.size());
        return bytes;
    }

    static EVENT_TRACE_PROPERTIES& of(std::vector<char>& bytes)
    {
        return *reinterpret_cast<EVENT_TRACE_PROPERTIES*>(bytes.data());
    }

    unsigned long start(TRACEHANDLE& handle, const std::string& session, const std::string& file, ULONG bufferKB = 64)
    {
        std::vector<char> bytes = block(session, file, bufferKB);
        return m_tracing.start(handle, session.c_str(), &of(bytes));
    }

    // A session that takes all events of the provider.
    TRACEHANDLE running(const std::string& session, const std::string& file, ULONG bufferKB = 64)
    {
        TRACEHANDLE handle = 0;
        EXPECT_EQ(0U, start(handle, session, file, bufferKB));
        EXPECT_EQ(0U, m_tracing.enable(handle, PROVIDER, EVENT_CONTROL_CODE_ENABLE_PROVIDER, 4, 0));
        return handle;
    }

    unsigned long control(TRACEHANDLE handle, const std::string& session, ULONG code, ULONG* lost = nullptr)
    {
        std::vector<char> bytes = block(session, "");
        const unsigned long status = m_tracing.control(handle, session.c_str(), &of(bytes), code);
        if (lost != nullptr) *lost = of(bytes).EventsLost;
        return status;
    }

    unsigned long stop(TRACEHANDLE handle) { return control(handle, "", EVENT_TRACE_CONTROL_STOP); }

    unsigned long write(const EVENT_DESCRIPTOR& descriptor, const std::string& payload = "")
    {
        EVENT_DATA_DESCRIPTOR piece{};
        piece.Ptr = reinterpret_cast<std::uintptr_t>(payload.data());
        piece.Size = static_cast<ULONG>(payload.size());
        return m_tracing.write(m_provider, descriptor, 1, &piece);
    }

    void writeAt(unsigned long long ticks, USHORT id, const std::string& payload = "")
    {
        m_clocks.ticks = ticks;
        EXPECT_EQ(0U, write(event(id), payload));
    }

    Replayed replay(const std::string& file, ULONG mode = 0x10001000)
    {
        Replayed result;
        std::string name = file;
        result.logfile.LogFileName = name.data();
        result.logfile.ProcessTraceMode = mode;
        result.logfile.EventRecordCallback = &onEvent_i;
        result.logfile.Context = &result;
        const TRACEHANDLE handle = m_tracing.open(result.logfile, result.status);
        if (handle == pwr::os::INVALID_TRACE) return result;
        result.status = m_tracing.process(handle);
        EXPECT_EQ(0U, m_tracing.close(handle));
        return result;
    }

    std::vector<char> bytesOf(const std::string& file) const
    {
        std::ifstream in(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }

    void store(const std::string& file, const std::vector<char>& bytes) const
    {
        std::ofstream(file, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    }

    HandClocks m_clocks;
    DoorGuard m_door;
    pwr::os::Tracing& m_tracing = *pwr::os::current().tracing;
    REGHANDLE m_provider = 0;

private:
    static void onEvent_i(EVENT_RECORD* record)
    {
        const std::string payload(static_cast<const char*>(record->UserData), record->UserDataLength);
        static_cast<Replayed*>(record->UserContext)
            ->events.push_back(std::to_string(record->EventHeader.EventDescriptor.Id) + "@" +
                               std::to_string(record->EventHeader.TimeStamp.QuadPart) +
                               (payload.empty() ? "" : " " + payload));
    }

    const std::string m_folder = "TraceTestFolder";
};

}    // namespace test

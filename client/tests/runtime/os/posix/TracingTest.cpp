#include "runtime/os/Tracing.h"

#include "support/Bytes.h"
#include "TraceFixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <string>
#include <thread>
#include <vector>

#include <sys/resource.h>
#include <unistd.h>

namespace {

using test::event;
using Events = std::vector<std::string>;

class TracingTest : public test::TraceFixture {};

// No file grows beyond that many bytes: what a full disk does to a file.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        m_handler = std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_previous);
        const rlimit limit{bytes, m_previous.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() { lift(); }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

    void lift()
    {
        setrlimit(RLIMIT_FSIZE, &m_previous);
        std::signal(SIGXFSZ, m_handler);
    }

private:
    rlimit m_previous{};
    void (*m_handler)(int) = nullptr;
};

TEST_F(TracingTest, EventsAreReplayedInOrder)
{
    const std::string file = path("a.etl");
    const TRACEHANDLE session = running("one", file);
    writeAt(110, 1, "first");
    writeAt(120, 2);
    writeAt(115, 3);    // the clock stepped back: time in the file does not
    m_clocks.wallTime = 9000;
    EXPECT_EQ(0U, stop(session));
    const test::Replayed replayed = replay(file);
    EXPECT_EQ(0U, replayed.status);
    EXPECT_EQ((Events{"1@110 first", "2@120", "3@120"}), replayed.events);
    const TRACE_LOGFILE_HEADER& header = replayed.logfile.LogfileHeader;
    EXPECT_EQ(8U, header.PointerSize);
    EXPECT_EQ(0U, header.EventsLost);
    EXPECT_EQ(64U * 1024, header.BufferSize);
    EXPECT_EQ(1000, header.PerfFreq.QuadPart);
    EXPECT_EQ(5000, header.StartTime.QuadPart);
    EXPECT_EQ(9000, header.EndTime.QuadPart);
    // Times that are not raw are wall clock times: 10 ticks of 1 ms after the start.
    EXPECT_EQ("1@105000 first", replay(file, 0x10000000).events.front());
}

TEST_F(TracingTest, FileHasTheDocumentedBytes)
{
    const std::string file = path("a.etl");
    const TRACEHANDLE session = running("one", file, 2);
    m_clocks.ticks = 0x0102030405060708;
    const EVENT_DESCRIPTOR descriptor{0x1112, 0x13, 0x14, 0x04, 0x16, 0x1718, 0x2122232425262728};
    EXPECT_EQ(0U, write(descriptor, "xyz"));
    m_clocks.wallTime = 0x3132;
    EXPECT_EQ(0U, stop(session));
    std::vector<char> bytes = bytesOf(file);
    ASSERT_EQ(68U + 3 + 52 + 3, bytes.size());
    const std::vector<char> header = test::bytes("'QVTF' 01000000 47000000 08000000 01000000 02000000 E803000000000000"
                                                 "6400000000000000 8813000000000000 3231000000000000 00000000 01000000"
                                                 "03000000 'one'");
    EXPECT_EQ(header, std::vector<char>(bytes.begin(), bytes.begin() + 71));
    const auto pid = static_cast<unsigned int>(getpid());
    EXPECT_EQ(0, std::memcmp(&pid, bytes.data() + 75, 4));    // this test's only thread has the process's number
    EXPECT_EQ(0, std::memcmp(&pid, bytes.data() + 119, 4));
    std::fill_n(bytes.begin() + 75, 4, '\0');
    std::fill_n(bytes.begin() + 119, 4, '\0');
    const std::vector<char> record =
        test::bytes("37000000 00000000 0807060504030201 44332211 6655 8877 99AABBCCDDEEFF01 1211 13 14 04 16 1817"
                    "2827262524232221 00000000 'xyz'");
    EXPECT_EQ(record, std::vector<char>(bytes.begin() + 71, bytes.end()));
}

TEST_F(TracingTest, EventsPassByLevelAndKeywords)
{
    const struct {
        UCHAR level;
        unsigned long long keywords;
        EVENT_DESCRIPTOR event;
        bool passes;
    } cases[] = {
        {4, 0, event(1, 4), true},    {4, 0, event(2, 5), false},   {4, 0, event(3, 0), true},
        {0, 0, event(4, 255), true},  {4, 6, event(5, 4, 2), true}, {4, 6, event(6, 4, 1), false},
        {4, 6, event(7, 4, 0), true}, {4, 0, event(8, 4, 1), true}, {4, 6, event(9, 5, 2), false},
    };
    const std::string file = path("a.etl");
    const TRACEHANDLE session = running("one", file);
    Events expected;
    for (const auto& c : cases) {
        EXPECT_EQ(0U, m_tracing.enable(session, test::PROVIDER, 1, c.level, c.keywords));
        EXPECT_EQ(0U, write(c.event));
        if (c.passes) expected.push_back(std::to_string(c.event.Id) + "@100");
    }
    EXPECT_EQ(0U, m_tracing.enable(session, test::PROVIDER, EVENT_CONTROL_CODE_DISABLE_PROVIDER, 4, 0));
    EXPECT_EQ(0U, m_tracing.enable(session, test::OTHER_PROVIDER, EVENT_CONTROL_CODE_ENABLE_PROVIDER, 4, 0));
    EXPECT_EQ(0U, write(event(99)));
    EXPECT_EQ(0U, stop(session));
    EXPECT_EQ(expected, replay(file).events);
}

TEST_F(TracingTest, EverySessionThatEnabledTheProviderGetsTheEvent)
{
    const TRACEHANDLE one = running("one", path("1.etl"));
    const TRACEHANDLE two = running("two", path("2.etl"));
    REGHANDLE late = 0;
    EXPECT_EQ(0U, m_tracing.registerProvider(test::PROVIDER, late));
    EXPECT_EQ(0U, m_tracing.write(late, event(1), 0, nullptr));
    EXPECT_EQ(0U, stop(one));
    EXPECT_EQ(0U, write(event(2)));
    EXPECT_EQ(0U, m_tracing.unregisterProvider(late));
    EXPECT_EQ(6U, m_tracing.write(late, event(3), 0, nullptr));
    EXPECT_EQ(0U, m_tracing.registerProvider(test::PROVIDER, late));    // takes the place, not the handle
    EXPECT_EQ(6U, m_tracing.unregisterProvider(late - (1ULL << 32)));
    EXPECT_EQ(0U, m_tracing.unregisterProvider(late));
    EXPECT_EQ(6U, m_tracing.write(0, event(3), 0, nullptr));
    EXPECT_EQ(0U, stop(two));
    EXPECT_EQ((Events{"1@100"}), replay(path("1.etl")).events);
    EXPECT_EQ((Events{"1@100", "2@100"}), replay(path("2.etl")).events);
}

TEST_F(TracingTest, FailedStartGivesTheWindowsCode)
{
    const TRACEHANDLE session = running("one", path("1.etl"));
    const struct {
        const char* name;
        std::string file;
        ULONG bufferKB;
        unsigned long code;
    } cases[] = {
        {"one", path("2.etl"), 64, 183},       {"two", path("."), 64, 5},
        {"two", path("missing/2.etl"), 64, 3}, {"two", "/dev/full", 64, 112},
        {"two", path("2.etl"), 0xFFFFFFFF, 8}, {"two", "", 64, 161},
        {"", path("2.etl"), 64, 87},
    };
    for (const auto& c : cases) {
        TRACEHANDLE handle = 7;
        EXPECT_EQ(c.code, start(handle, c.name, c.file, c.bufferKB)) << c.file;
        EXPECT_EQ(0U, handle);
    }
    EXPECT_EQ(4201U, control(0, "two", EVENT_TRACE_CONTROL_QUERY));
    EXPECT_EQ(4201U, m_tracing.enable(session + 1, test::PROVIDER, 1, 4, 0));
    EXPECT_EQ(0U, control(0, "one", EVENT_TRACE_CONTROL_STOP));    // by its name
    running("two", path("2.etl"));
    EXPECT_EQ(4201U, control(session, "two", EVENT_TRACE_CONTROL_STOP)) << "a handle that is no more";
}

TEST_F(TracingTest, BlockIsReadWithinItsBounds)
{
    TRACEHANDLE handle = 0;
    for (const ULONG offset : {0U, 119U, 5000U}) {
        std::vector<char> bytes = block("one", path("1.etl"));
        of(bytes).LogFileNameOffset = offset;
        EXPECT_EQ(87U, m_tracing.start(handle, "one", &of(bytes))) << offset;
    }
    std::vector<char> unterminated = block("one", path("1.etl"));
    unterminated.back() = 'x';
    EXPECT_EQ(87U, m_tracing.start(handle, "one", &of(unterminated)));
    std::vector<char> small = block("one", path("1.etl"));
    of(small).Wnode.BufferSize = 100;
    EXPECT_EQ(24U, m_tracing.start(handle, "one", &of(small)));
    EXPECT_EQ(87U, m_tracing.start(handle, "one", nullptr));
}

TEST_F(TracingTest, EventsTooLargeAreLostAndCounted)
{
    const std::string file = path("a.etl");
    const TRACEHANDLE session = running("one", file, 1);
    EXPECT_EQ(0U, write(event(1), std::string(1024 - 52, 'x')));
    EXPECT_EQ(234U, write(event(2), std::string(1024 - 51, 'x')));
    EXPECT_EQ(534U, write(event(3), std::string(65456, 'x')));
    EVENT_DATA_DESCRIPTOR bad{};
    bad.Size = 1;
    EXPECT_EQ(87U, m_tracing.write(m_provider, event(4), 1, &bad));
    EXPECT_EQ(87U, m_tracing.write(m_provider, event(4), 129, &bad));
    EXPECT_EQ(0U, write(event(5)));    // writes the full buffer out
    ULONG lost = 0;
    EXPECT_EQ(0U, control(session, "one", EVENT_TRACE_CONTROL_QUERY, &lost));
    EXPECT_EQ(2U, lost);
    EXPECT_EQ(0U, stop(session));
    const test::Replayed replayed = replay(file);
    EXPECT_EQ(2U, replayed.logfile.LogfileHeader.EventsLost);
    EXPECT_EQ(2U, replayed.events.size());
    EXPECT_EQ(2U, replayed.logfile.LogfileHeader.BuffersWritten);
}

TEST_F(TracingTest, EventsThatFindTheDiskFullAreLostAndCounted)
{
    const std::string file = path("a.etl");
    const TRACEHANDLE session = running("one", file, 1);
    const std::string payload(148, 'x');    // records of 200 bytes: five fill the buffer
    FileSizeLimit limit(71 + 1000 + 500);
    for (USHORT id = 1; id <= 10; ++id) {
        EXPECT_EQ(0U, write(event(id), payload));
    }
    EXPECT_EQ(112U, control(session, "one", EVENT_TRACE_CONTROL_FLUSH));    // two and a half got in
    for (USHORT id = 11; id <= 15; ++id) {
        EXPECT_EQ(id <= 12 ? 0U : 112U, write(event(id), payload));    // there was room in the buffer for those
    }
    limit.lift();
    EXPECT_EQ(0U, write(event(16), payload));    // there is room again: what had to wait is written
    EXPECT_EQ(0U, stop(session));
    const test::Replayed replayed = replay(file);
    EXPECT_EQ(3U, replayed.logfile.LogfileHeader.EventsLost);
    ASSERT_EQ(13U, replayed.events.size());
    EXPECT_EQ("12@", replayed.events[11].substr(0, 3));
    EXPECT_EQ("16@", replayed.events[12].substr(0, 3));
}

TEST_F(TracingTest, EventsLeftWhenTheDiskStaysFullAreCounted)
{
    const std::string file = path("a.etl");
    const TRACEHANDLE session = running("one", file, 1);
    FileSizeLimit limit(71 + 500);
    for (USHORT id = 1; id <= 5; ++id) {
        EXPECT_EQ(0U, write(event(id), std::string(148, 'x')));
    }
    EXPECT_EQ(112U, stop(session));
    EXPECT_EQ(4201U, stop(session));    // it is gone all the same
    const test::Replayed replayed = replay(file);
    EXPECT_EQ(2U, replayed.events.size());
    EXPECT_EQ(3U, replayed.logfile.LogfileHeader.EventsLost);
}

TEST_F(TracingTest, FileCutAnywhereReplaysTheEventsBeforeTheCut)
{
    const std::string file = path("a.etl");
    const TRACEHANDLE session = running("one", file);
    for (USHORT id = 1; id <= 3; ++id) {
        writeAt(100U + id, id, "payload");
    }
    EXPECT_EQ(0U, stop(session));
    const std::vector<char> whole = bytesOf(file);
    const std::size_t headerBytes = 71;
    const std::size_t recordBytes = 59;
    ASSERT_EQ(headerBytes + 3 * recordBytes, whole.size());
    for (std::size_t size = 0; size <= whole.size(); ++size) {
        store(file, {whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)});
        const test::Replayed replayed = replay(file);
        EXPECT_EQ(size < headerBytes ? 13U : 0U, replayed.status) << size;
        EXPECT_EQ(size < headerBytes ? 0 : (size - headerBytes) / recordBytes, replayed.events.size()) << size;
    }
}

TEST_F(TracingTest, DamageEndsTheReplay)
{
    const std::string file = path("a.etl");
    const TRACEHANDLE session = running("one", file);
    writeAt(101, 1);
    writeAt(102, 2);
    EXPECT_EQ(0U, stop(session));
    const std::vector<char> whole = bytesOf(file);
    const std::size_t second = 71 + 52;
    const struct {
        std::size_t offset;
        char byte;
        unsigned long code;
        std::size_t events;
    } cases[] = {
        {second, 51, 1392, 1},         // smaller than any record
        {second + 3, 1, 1392, 1},      // larger than any record
        {second + 8, 100, 1392, 1},    // older than the one before
        {0, 'X', 13, 0},               // another kind of file
        {4, 2, 13, 0},                 // another version
        {16, 4, 13, 0},                // no such clock
        {8, 72, 13, 0},                // sizes that contradict each other
        {67, 1, 13, 0},                // a name beyond all bounds
    };
    for (const auto& c : cases) {
        std::vector<char> bytes = whole;
        bytes[c.offset] = c.byte;
        store(file, bytes);
        const test::Replayed replayed = replay(file);
        EXPECT_EQ(c.code, replayed.status) << c.offset;
        EXPECT_EQ(c.events, replayed.events.size()) << c.offset;
    }
    EXPECT_EQ(2U, replay(path("missing.etl")).status);
    EXPECT_EQ(5U, replay(path(".")).status);
    EXPECT_EQ(87U, replay(file, 0x1000).status);    // not as records
}

TEST_F(TracingTest, BufferCallbackEndsTheReplay)
{
    const std::string file = path("a.etl");
    const TRACEHANDLE session = running("one", file);
    for (USHORT id = 1; id <= 20; ++id) {
        EXPECT_EQ(0U, write(event(id), std::string(60000, 'x')));
    }
    EXPECT_EQ(0U, stop(session));
    static int s_events = 0;
    std::string name = file;
    EVENT_TRACE_LOGFILEA logfile{};
    logfile.LogFileName = name.data();
    logfile.ProcessTraceMode = 0x10001000;
    logfile.EventRecordCallback = [](EVENT_RECORD*) { ++s_events; };
    logfile.BufferCallback = [](EVENT_TRACE_LOGFILEA* at) -> ULONG { return at->BuffersRead < 2; };
    unsigned long lastError = 0;
    const TRACEHANDLE handle = m_tracing.open(logfile, lastError);
    EXPECT_EQ(1223U, m_tracing.process(handle));
    EXPECT_LT(0, s_events);
    EXPECT_GT(20, s_events);
    EXPECT_EQ(0U, m_tracing.close(handle));
    EXPECT_EQ(6U, m_tracing.process(handle));
    EXPECT_EQ(6U, m_tracing.close(handle));
}

TEST_F(TracingTest, ThreadsShareASession)
{
    constexpr int threads = 4;
    constexpr int events = 2000;
    m_door->clocks = &pwr::os::systemClocks();
    const std::string file = path("a.etl");
    const TRACEHANDLE session = running("one", file, 16);
    std::atomic<int> failures{0};
    std::vector<std::thread> writers;
    for (int i = 0; i < threads; ++i) {
        writers.emplace_back([this, &failures] {
            for (int n = 0; n < events; ++n) {
                if (write(event(1), "payload") != 0) ++failures;
            }
        });
    }
    for (int i = 0; i < 50; ++i) {
        EXPECT_EQ(0U, control(session, "one", EVENT_TRACE_CONTROL_FLUSH));
    }
    for (std::thread& writer : writers) {
        writer.join();
    }
    EXPECT_EQ(0U, stop(session));
    EXPECT_EQ(0, failures);
    const test::Replayed replayed = replay(file);
    EXPECT_EQ(0U, replayed.status);    // in time order, then
    EXPECT_EQ(static_cast<std::size_t>(threads * events), replayed.events.size());
}

TEST_F(TracingTest, KnownProvidersAreListed)
{
    ULONG size = 0;
    EXPECT_EQ(122U, m_tracing.enumerateProviders(nullptr, size));
    std::vector<char> bytes(size);
    auto* list = reinterpret_cast<PROVIDER_ENUMERATION_INFO*>(bytes.data());
    ULONG small = size - 1;
    EXPECT_EQ(122U, m_tracing.enumerateProviders(list, small));
    EXPECT_EQ(size, small);
    ASSERT_EQ(0U, m_tracing.enumerateProviders(list, size));
    ASSERT_EQ(10U, list->NumberOfProviders);
    TRACE_PROVIDER_INFO last{};
    std::memcpy(&last, bytes.data() + 8 + 9 * sizeof last, sizeof last);
    EXPECT_EQ(0x59819d0aU, last.ProviderGuid.Data1);
    EXPECT_EQ(0xadafU, last.ProviderGuid.Data2);
    EXPECT_EQ(0x15, last.ProviderGuid.Data4[7]);
    EXPECT_STREQ(L"Microsoft-Windows-Battery",
                 reinterpret_cast<const wchar_t*>(bytes.data() + last.ProviderNameOffset));
}

}    // namespace

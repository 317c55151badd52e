// Promised: an event written into one or four sessions costs at most 3 times one plain fwrite per session of the same
// bytes (BM_TraceWrite against BM_TraceWriteFloor); replay and merge in bytes per second, against reading and copying
// the same files.

#include "plugins/PluginEnvironment.h"
#include "runtime/EtwProvider.h"
#include "runtime/EtwSession.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr GUID PROVIDER{0x51ab3f02, 0x77de, 0x4a59, {0x8c, 0x01, 0x33, 0x90, 0x6e, 0xd2, 0x44, 0x18}};
constexpr EVENT_DESCRIPTOR SAMPLE{1, 0, 0, 4, 0, 0, 0};
constexpr int EVENTS = 400000;    // files of some 35 MB
constexpr std::size_t DATA_BYTES = 32;
constexpr std::size_t RECORD_BYTES = 52 + 4 + DATA_BYTES;    // header, size, data

std::string folder()
{
    return (std::filesystem::temp_directory_path() / "QuorvaneTraceBench").string();
}

// A folder for the files of one benchmark.
class Folder {
public:
    Folder() { std::filesystem::create_directories(folder()); }
    ~Folder() { std::filesystem::remove_all(folder()); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
};

class Session : public EtwSession {
public:
    explicit Session(int number)
        : EtwSession(folder() + "/run.etl", suffix(number), "TraceBench" + std::to_string(number), "bench")
    {
        addProvider(PROVIDER, 0);
    }
    ~Session() override { std::free(m_properties); }

    static std::string suffix(int number) { return "_" + std::to_string(number); }

    EVENT_TRACE_LOGFILEA setLogfileCallback() override
    {
        EVENT_TRACE_LOGFILEA logfile = EtwSession::setLogfileCallback();
        logfile.EventRecordCallback = [](EVENT_RECORD* record) { ++*static_cast<std::size_t*>(record->UserContext); };
        logfile.Context = &events;
        return logfile;
    }

    static unsigned long merge()
    {
        s_mergedFilePath = folder() + "/run.etl";
        return mergeThread(nullptr);
    }
    static void setMergeFiles(const std::vector<std::string>& suffixes) { s_mergeFileList = suffixes; }

    const std::string& path() const { return m_logFile; }
    std::size_t events = 0;
};

using Sessions = std::vector<std::unique_ptr<Session>>;

Sessions started(int count)
{
    Sessions sessions;
    for (int i = 0; i < count; ++i) {
        sessions.push_back(std::make_unique<Session>(i));
        if (!sessions.back()->begin()) std::abort();
    }
    return sessions;
}

// Files with EVENTS events each.
Sessions recorded(int count)
{
    Sessions sessions = started(count);
    EtwProvider provider(&PROVIDER);
    const char data[DATA_BYTES] = {};
    for (int i = 0; i < EVENTS; ++i) {
        if (!provider.WriteStructEvent(&SAMPLE, data, DATA_BYTES)) std::abort();
    }
    for (const auto& session : sessions) {
        if (!session->end()) std::abort();
    }
    return sessions;
}

void tellBytes(benchmark::State& state, const Sessions& sessions)
{
    std::uintmax_t bytes = 0;
    for (const auto& session : sessions) {
        bytes += std::filesystem::file_size(session->path());
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes));
}

void BM_TraceWrite(benchmark::State& state)
{
    const Folder files;
    Sessions sessions = started(static_cast<int>(state.range(0)));
    EtwProvider provider(&PROVIDER);
    const char data[DATA_BYTES] = {};
    for (auto _ : state) {
        if (!provider.WriteStructEvent(&SAMPLE, data, DATA_BYTES)) std::abort();
    }
    for (const auto& session : sessions) {
        if (session->queryLostEvents() != 0 || !session->end()) std::abort();
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_TraceWrite)->Arg(1)->Arg(4)->Iterations(EVENTS);

void BM_TraceWriteFloor(benchmark::State& state)
{
    const Folder files;
    std::vector<FILE*> streams;
    for (std::int64_t i = 0; i < state.range(0); ++i) {
        streams.push_back(std::fopen((folder() + "/floor" + std::to_string(i)).c_str(), "wb"));
        if (streams.back() == nullptr) std::abort();
    }
    char record[RECORD_BYTES] = {};
    for (auto _ : state) {
        for (FILE* stream : streams) {
            benchmark::DoNotOptimize(record);
            if (std::fwrite(record, sizeof record, 1, stream) != 1) std::abort();
        }
    }
    for (FILE* stream : streams) {
        std::fclose(stream);
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_TraceWriteFloor)->Arg(1)->Arg(4)->Iterations(EVENTS);

void BM_TraceReplay(benchmark::State& state)
{
    const Folder files;
    const Sessions sessions = recorded(1);
    for (auto _ : state) {
        sessions[0]->events = 0;
        if (!sessions[0]->postProcessLog() || sessions[0]->events != EVENTS) std::abort();
    }
    tellBytes(state, sessions);
}
BENCHMARK(BM_TraceReplay)->Unit(benchmark::kMillisecond);

// Reads the files through, and writes them on when there is an output.
void copyFiles(const Sessions& sessions, FILE* out)
{
    std::vector<char> buffer(256 * 1024);
    for (const auto& session : sessions) {
        FILE* in = std::fopen(session->path().c_str(), "rb");
        if (in == nullptr) std::abort();
        while (const std::size_t bytes = std::fread(buffer.data(), 1, buffer.size(), in)) {
            benchmark::DoNotOptimize(buffer.data());
            if (out != nullptr && std::fwrite(buffer.data(), 1, bytes, out) != bytes) std::abort();
        }
        std::fclose(in);
    }
}

void BM_TraceReplayFloor(benchmark::State& state)
{
    const Folder files;
    const Sessions sessions = recorded(1);
    for (auto _ : state) {
        copyFiles(sessions, nullptr);
    }
    tellBytes(state, sessions);
}
BENCHMARK(BM_TraceReplayFloor)->Unit(benchmark::kMillisecond);

void BM_TraceMerge(benchmark::State& state)
{
    const Folder files;
    PluginEnvironment environment;
    g_pluginEnvironment = &environment;
    environment.setQuorvaneDirectory("");    // the merge library stands beside this program
    const Sessions sessions = recorded(2);
    Session::setMergeFiles({Session::suffix(0), Session::suffix(1)});
    for (auto _ : state) {
        if (Session::merge() != 0) std::abort();
    }
    Session::setMergeFiles({});
    g_pluginEnvironment = nullptr;
    tellBytes(state, sessions);
}
BENCHMARK(BM_TraceMerge)->Unit(benchmark::kMillisecond);

void BM_TraceMergeFloor(benchmark::State& state)
{
    const Folder files;
    const Sessions sessions = recorded(2);
    for (auto _ : state) {
        FILE* out = std::fopen((folder() + "/floor").c_str(), "wb");
        if (out == nullptr) std::abort();
        copyFiles(sessions, out);
        std::fclose(out);
    }
    tellBytes(state, sessions);
}
BENCHMARK(BM_TraceMergeFloor)->Unit(benchmark::kMillisecond);

}    // namespace

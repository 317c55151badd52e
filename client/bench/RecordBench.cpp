#include "record/Serializer.h"
#include "record/SystemMetadata.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

using namespace pwr;

namespace {

constexpr int PACKAGES = 1;
constexpr int CORES = 8;
constexpr int THREADS_PER_CORE = 2;

// A record as a host keeps it, every field and list filled.
SystemMetadata makeFullSystem()
{
    SystemMetadata system;
    for (int sid = 0; sid < 4; ++sid) {
        system.sidToUuid[sid] = "5138ffc0-517d-11e5-b970-080020" + std::to_string(100000 + sid);
    }
    system.fms = {6, 0x8E, 9};
    system.appVersion = 2024U << 16;
    system.platformName = "Example platform, eighth generation";
    system.hostName = "measured-host";
    system.osName = "Example OS Professional";
    system.osType = "64-bit";
    system.osVersion = "10.0.22631.3296";
    std::string groups;
    for (int thread = 0; thread < CORES * THREADS_PER_CORE; ++thread) {
        groups += std::to_string(thread) + " 0 " + std::to_string(thread / THREADS_PER_CORE) + " -1 ";
    }
    system.buildTopology(groups, 0);
    system.qvaClockFreqMHz = 1000;
    system.cpuFreqMHz = 2000;
    system.commandLine = {"tool", "-f", "hw-cpu-cstate", "-f", "temp", "-t", "60", "-o", "results/run_2024_03_01"};
    for (int i = 0; i < 8; ++i) {
        const std::string number = std::to_string(i);
        system.platformSpecifiers.emplace_back("SPECIFIER_KEY_" + number, "value of specifier " + number);
        system.cpuNativeModelIds.push_back(0x20000001);
    }
    for (std::uint16_t i = 0; i < 4; ++i) {
        system.topologyChanges.emplace_back(qv_driver_topology_change{i, 1, i, i, 0}, 0);
    }
    system.driverBuildDate = "Mar 01 2024";
    system.exeBuildDate = "Mar 01 2024";
    const QVClockSync sync = {"d3ad8390-29cc-11e6-bdf4-0800200c9a66", "QPC",  10,   123456789,
                              "8ad42930-517d-11e5-b970-0800200c9a66", "NANO", 1000, 987654321};
    system.clockSyncs.assign(3, sync);
    system.nonNumericVersion = "2024.0.0";
    system.buildRef = "0123456789abcdef0123456789abcdef01234567";
    system.packageType = "BGA 1440";
    return system;
}

// The floor: the same fields and nodes by hand, to a byte vector and back, with none of the record's classes.
struct PlainNode {
    int id = 0;
    std::uint32_t type = 0;
    std::vector<std::unique_ptr<PlainNode>> children;
};

struct PlainChange {
    std::uint64_t timestamp = 0;
    std::uint32_t action = 0;
    std::uint16_t processor = 0;
    std::uint16_t core = 0;
    std::uint16_t package = 0;
    int module = -1;
};

struct PlainSync {
    std::string uuid;
    std::string name;
    float frequency = 0;
    std::uint64_t value = 0;
    std::string defaultUuid;
    std::string defaultName;
    float defaultFrequency = 0;
    std::uint64_t defaultValue = 0;
};

struct PlainSystem {
    std::map<int, std::string> sids;
    std::uint8_t fms[3] = {};
    std::uint32_t versions[3] = {};
    std::string names[5];
    std::vector<std::unique_ptr<PlainNode>> packages;
    float frequencies[5] = {};
    std::uint64_t span[4] = {};
    std::uint16_t interval = 0;
    std::uint8_t detail = 0;
    std::vector<std::string> commandLine;
    std::uint64_t samples[2] = {};
    std::uint8_t lowOverhead = 0;
    std::vector<std::pair<std::string, std::string>> specifiers;
    std::vector<PlainChange> changes;
    std::uint8_t hyperV = 0;
    std::uint8_t vsm = 0;
    std::vector<unsigned int> modelIds;
    std::uint32_t platformId = 0;
    std::uint8_t edram = 0;
    std::uint32_t graphics = 0;
    std::string driverDate;
    std::uint64_t programSpan[2] = {};
    std::string exeDate;
    std::uint32_t quantum = 0;
    std::vector<PlainSync> syncs;
    std::uint8_t hvci = 0;
    std::string texts[3];
};

// Both ends of the floor walk the fields by one operation `f`, as anyone would write it.
struct Append {
    std::vector<char>& bytes;

    template <typename T>
    void operator()(const T& value) requires std::is_arithmetic_v<T>
    {
        const char* from = reinterpret_cast<const char*>(&value);
        bytes.insert(bytes.end(), from, from + sizeof(T));
    }
    void operator()(const std::string& text)
    {
        (*this)(static_cast<std::uint16_t>(text.size()));
        bytes.insert(bytes.end(), text.begin(), text.end());
    }
    template <typename List>
    void count(const List& list)
    {
        (*this)(static_cast<std::uint16_t>(list.size()));
    }
};

struct Take {
    const std::vector<char>& bytes;
    std::size_t at = 0;

    template <typename T>
    void operator()(T& value) requires std::is_arithmetic_v<T>
    {
        if (bytes.size() - at < sizeof(T)) std::abort();
        std::memcpy(&value, bytes.data() + at, sizeof(T));
        at += sizeof(T);
    }
    void operator()(std::string& text)
    {
        std::uint16_t size = 0;
        (*this)(size);
        if (bytes.size() - at < size) std::abort();
        text.assign(bytes.data() + at, size);
        at += size;
    }
    template <typename List>
    void count(List& list)
    {
        std::uint16_t size = 0;
        (*this)(size);
        list.resize(size);
    }
};

void walkNode(Append& f, const PlainNode& node)
{
    f(node.id);
    f(node.type);
    for (const auto& child : node.children) {
        walkNode(f, *child);
    }
    f(-1);
}

std::unique_ptr<PlainNode> walkNode(Take& f)
{
    auto node = std::make_unique<PlainNode>();
    f(node->id);
    if (node->id == -1) return nullptr;
    f(node->type);
    while (auto child = walkNode(f)) {
        node->children.push_back(std::move(child));
    }
    return node;
}

void walkTree(Append& f, const PlainSystem& system)
{
    f.count(system.packages);
    for (const auto& package : system.packages) {
        walkNode(f, *package);
    }
}

void walkTree(Take& f, PlainSystem& system)
{
    f.count(system.packages);
    for (auto& package : system.packages) {
        package = walkNode(f);
    }
}

void walkSids(Append& f, const PlainSystem& system)
{
    f.count(system.sids);
    for (const auto& [sid, uuid] : system.sids) {
        f(sid);
        f(uuid);
    }
}

void walkSids(Take& f, PlainSystem& system)
{
    std::uint16_t count = 0;
    f(count);
    for (; count > 0; --count) {
        int sid = 0;
        f(sid);
        f(system.sids[sid]);
    }
}

template <typename Array>
void walkAll(auto& f, Array& values)
{
    for (auto& value : values) {
        f(value);
    }
}

template <typename System>
void walkLists(auto& f, System& system)
{
    f.count(system.specifiers);
    for (auto& [key, value] : system.specifiers) {
        f(key);
        f(value);
    }
    f.count(system.changes);
    for (auto& change : system.changes) {
        f(change.timestamp);
        f(change.action);
        f(change.processor);
        f(change.core);
        f(change.package);
        f(change.module);
    }
    f(system.hyperV);
    f(system.vsm);
    f.count(system.modelIds);
    walkAll(f, system.modelIds);
}

template <typename System>
void walkSyncs(auto& f, System& system)
{
    f.count(system.syncs);
    for (auto& sync : system.syncs) {
        f(sync.uuid);
        f(sync.name);
        f(sync.frequency);
        f(sync.value);
        f(sync.defaultUuid);
        f(sync.defaultName);
        f(sync.defaultFrequency);
        f(sync.defaultValue);
    }
}

template <typename System>
void walkSystem(auto& f, System& system)
{
    walkSids(f, system);
    walkAll(f, system.fms);
    walkAll(f, system.versions);
    walkAll(f, system.names);
    walkTree(f, system);
    walkAll(f, system.frequencies);
    walkAll(f, system.span);
    f(system.interval);
    f(system.detail);
    f.count(system.commandLine);
    walkAll(f, system.commandLine);
    walkAll(f, system.samples);
    f(system.lowOverhead);
    walkLists(f, system);
    f(system.platformId);
    f(system.edram);
    f(system.graphics);
    f(system.driverDate);
    walkAll(f, system.programSpan);
    f(system.exeDate);
    f(system.quantum);
    walkSyncs(f, system);
    f(system.hvci);
    walkAll(f, system.texts);
}

std::vector<char> makeBytes()
{
    Serializer out;
    makeFullSystem().serialize_i(out);
    return out.get_buffer();
}

// The floor must do the record's own work: its bytes are the record's.
PlainSystem makePlainSystem(const std::vector<char>& bytes)
{
    PlainSystem system;
    Take take{bytes};
    walkSystem(take, system);
    std::vector<char> again;
    Append append{again};
    walkSystem(append, std::as_const(system));
    if (again != bytes) std::abort();
    return system;
}

// Writing a full record of 16 processors costs at most 4 times BM_RecordWriteFloor.
void BM_RecordWrite(benchmark::State& state)
{
    const SystemMetadata system = makeFullSystem();
    for (auto _ : state) {
        Serializer out;
        system.serialize_i(out);
        benchmark::DoNotOptimize(out.size());
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_RecordWrite);

void BM_RecordWriteFloor(benchmark::State& state)
{
    const PlainSystem system = makePlainSystem(makeBytes());
    for (auto _ : state) {
        std::vector<char> bytes;
        Append append{bytes};
        walkSystem(append, system);
        benchmark::DoNotOptimize(bytes.data());
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_RecordWriteFloor);

// Reading it, without a registry, costs at most 3 times BM_RecordReadFloor.
void BM_RecordRead(benchmark::State& state)
{
    const std::vector<char> bytes = makeBytes();
    for (auto _ : state) {
        Serializer in(bytes);
        SystemMetadata system;
        if (system.deserialize_i(in, 1) != 0) state.SkipWithError("the record can't be read");
        benchmark::DoNotOptimize(&system);
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_RecordRead);

void BM_RecordReadFloor(benchmark::State& state)
{
    const std::vector<char> bytes = makeBytes();
    for (auto _ : state) {
        const std::vector<char> copy(bytes);
        PlainSystem system;
        Take take{copy};
        walkSystem(take, system);
        benchmark::DoNotOptimize(&system);
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_RecordReadFloor);

}    // namespace

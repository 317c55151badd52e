#include "WindowsCollector.h"
#include "machine/Machine.h"
#include "machine/Topology.h"
#include "system/System.h"

#include "record/SystemMetadata.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <io.h>
#include <windows.h>

namespace host {

namespace {

using Relations = std::vector<SYSTEM_LOGICAL_PROCESSOR_INFORMATION>;

Relations readRelations()
{
    DWORD sizeBytes = 0;
    GetLogicalProcessorInformation(nullptr, &sizeBytes);
    Relations relations(sizeBytes / sizeof(Relations::value_type));
    if (!GetLogicalProcessorInformation(relations.data(), &sizeBytes)) relations.clear();
    return relations;
}

// The number, among the relations of this kind, of the one that holds the processor; 0 without one.
int indexOf(const Relations& relations, LOGICAL_PROCESSOR_RELATIONSHIP kind, int processor)
{
    int index = 0;
    for (const auto& relation : relations) {
        if (relation.Relationship != kind) continue;
        if ((static_cast<std::uint64_t>(relation.ProcessorMask) >> static_cast<unsigned>(processor) & 1U) != 0)
            return index;
        ++index;
    }
    return 0;
}

// The processors of the first group, which has up to 64.
std::vector<ProcessorPlace> readPlaces()
{
    const Relations relations = readRelations();
    std::uint64_t mask = 0;
    for (const auto& relation : relations) {
        if (relation.Relationship == RelationProcessorCore) mask |= relation.ProcessorMask;
    }
    std::vector<ProcessorPlace> places;
    for (int processor = 0; processor < 64; ++processor) {
        if ((mask >> static_cast<unsigned>(processor) & 1U) == 0) continue;
        ProcessorPlace place;
        place.processor = processor;
        place.package = indexOf(relations, RelationProcessorPackage, processor);
        place.core = indexOf(relations, RelationProcessorCore, processor);
        places.push_back(place);
    }
    if (places.empty()) places.emplace_back();    // there is one at least: it runs this
    return places;
}

std::string computerName()
{
    char name[MAX_COMPUTERNAME_LENGTH + 1] = "";
    DWORD size = sizeof(name);
    return GetComputerNameA(name, &size) != 0 && size > 0 ? name : "unknown";
}

// The documented version calls tell an old version to programs without a manifest.
std::string windowsVersion()
{
    using GetVersion = LONG(WINAPI*)(OSVERSIONINFOW*);
    OSVERSIONINFOW version = {};
    version.dwOSVersionInfoSize = sizeof(version);
    const HMODULE kernel = GetModuleHandleA("ntdll.dll");
    const FARPROC found = kernel != nullptr ? GetProcAddress(kernel, "RtlGetVersion") : nullptr;
    if (found == nullptr || std::bit_cast<GetVersion>(found)(&version) != 0) return "Unknown";
    return std::to_string(version.dwMajorVersion) + "." + std::to_string(version.dwMinorVersion) + "." +
           std::to_string(version.dwBuildNumber);
}

class WindowsMachine : public Machine {
public:
    bool describe(pwr::SystemMetadata& record, std::vector<std::string>&) const override
    {
        record.hostName = computerName();
        record.osName = "Windows";
        record.osType = "Windows";
        record.osVersion = windowsVersion();
        record.platformName = "Unknown";
        askProcessor(record);
        const TopologyText topology = makeTopologyText(readPlaces());
        record.buildTopology(topology.text, topology.coresPerModule);
        return true;
    }

    std::unique_ptr<Collector> makeCollector(MachineClock& clock) const override
    {
        return std::make_unique<WindowsCollector>(clock);
    }
};

}    // namespace

std::unique_ptr<Machine> openThisMachine()
{
    return std::make_unique<WindowsMachine>();
}

// The count of milliseconds goes on while the system sleeps.
SleepClocks readSleepClocks()
{
    ULONGLONG awake100ns = 0;
    QueryUnbiasedInterruptTime(&awake100ns);
    return {GetTickCount64() * 1'000'000, awake100ns * 100};
}

bool isErrorStreamTerminal()
{
    constexpr int ERROR_STREAM = 2;
    return _isatty(ERROR_STREAM) != 0;
}

bool isErrorStreamColoured()
{
    const char* noColour = std::getenv("NO_COLOR");
    if ((noColour != nullptr && *noColour != '\0') || !isErrorStreamTerminal()) return false;
    constexpr DWORD SEQUENCES = 0x0004;    // the console understands escape sequences
    DWORD mode = 0;
    const HANDLE console = GetStdHandle(STD_ERROR_HANDLE);
    return GetConsoleMode(console, &mode) != 0 && SetConsoleMode(console, mode | SEQUENCES) != 0;
}

}    // namespace host

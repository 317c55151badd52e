#include "Sources.h"

#include <vector>
// In this order.
#include <windows.h>
#include <powrprof.h>

namespace host {

namespace {

// As documented; the headers lack it.
struct ProcessorPower {
    ULONG number;
    ULONG maxMHz;
    ULONG currentMHz;
    ULONG limitMHz;
    ULONG maxIdleState;
    ULONG currentIdleState;
};

}    // namespace

void readProcessorSpeeds(const TakeItem& take)
{
    SYSTEM_INFO system = {};
    GetSystemInfo(&system);
    std::vector<ProcessorPower> processors(system.dwNumberOfProcessors);
    const auto sizeBytes = static_cast<ULONG>(processors.size() * sizeof(ProcessorPower));
    if (CallNtPowerInformation(ProcessorInformation, nullptr, 0, processors.data(), sizeBytes) != 0) return;
    for (const ProcessorPower& processor : processors) {
        RecordItem item;
        item.indices.add(processor.number);
        item.number = std::uint64_t{1000} * processor.currentMHz;
        item.isRead = processor.currentMHz != 0;
        take(item);
    }
}

}    // namespace host

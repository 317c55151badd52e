#include "runtime/os/Memory.h"

#include <windows.h>

namespace pwr::os {

namespace {

class WindowsMemory : public Memory {
public:
    void* reserve(std::size_t sizeBytes) override
    {
        return VirtualAlloc(nullptr, sizeBytes, MEM_RESERVE, PAGE_NOACCESS);
    }

    bool commit(void* start, std::size_t sizeBytes) override
    {
        return VirtualAlloc(start, sizeBytes, MEM_COMMIT, PAGE_READWRITE) != nullptr;
    }
};

}    // namespace

Memory& systemMemory()
{
    static WindowsMemory s_memory;
    return s_memory;
}

}    // namespace pwr::os

#pragma once

#include "runtime/os/Memory.h"

namespace test {

// A system that has no memory left. For use with a DoorGuard.
class NoMemory : public pwr::os::Memory {
public:
    void* reserve(std::size_t) override { return nullptr; }
    bool commit(void*, std::size_t) override { return false; }
    void* allocate(std::size_t) override { return nullptr; }
};

}    // namespace test

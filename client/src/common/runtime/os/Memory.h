#pragma once

#include <cstddef>
#include <cstdlib>

namespace pwr::os {

// Ranges of addresses, reserved first and backed by memory piece by piece; and blocks of the heap, for callers that
// answer for a missing one.
class Memory {
public:
    virtual ~Memory() = default;

    // Reserves `sizeBytes` of addresses without memory behind them. Null when the system refuses, and under the address
    // sanitizer, which should see each object on its own.
    virtual void* reserve(std::size_t sizeBytes) = 0;

    // Puts memory behind a piece of a reserved range (page-aligned). False when there is none.
    virtual bool commit(void* start, std::size_t sizeBytes) = 0;

    // A block that is released with std::free; null when there is no memory for it.
    virtual void* allocate(std::size_t sizeBytes) { return std::malloc(sizeBytes); }
};

Memory& systemMemory();

}    // namespace pwr::os

#pragma once

#include <cstddef>

namespace pwr::os {

// Ranges of addresses: reserved first, backed by memory piece by piece.
class Memory {
public:
    virtual ~Memory() = default;

    // Reserves `sizeBytes` of addresses without memory behind them. Null when the system refuses, and under the address
    // sanitizer, which should see each object on its own.
    virtual void* reserve(std::size_t sizeBytes) = 0;

    // Puts memory behind a piece of a reserved range (page-aligned). False when there is none.
    virtual bool commit(void* start, std::size_t sizeBytes) = 0;
};

Memory& systemMemory();

}    // namespace pwr::os

#pragma once

#include <cstddef>

namespace test {

// The allocations of this program so far. Counts those of the library too where a program links its objects, hence for
// internal tests only: a program that calls this gets the counting operators new and delete.
std::size_t allocationCount();

}    // namespace test

#include "support/AllocationCount.h"

#include <cstdlib>
#include <new>

namespace {

std::size_t g_allocations = 0;

}    // namespace

std::size_t test::allocationCount()
{
    return g_allocations;
}

void* operator new(std::size_t sizeBytes)
{
    ++g_allocations;
    void* memory = std::malloc(sizeBytes > 0 ? sizeBytes : 1);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}

void* operator new[](std::size_t sizeBytes)
{
    return operator new(sizeBytes);
}

void* operator new(std::size_t sizeBytes, const std::nothrow_t&) noexcept
{
    ++g_allocations;
    return std::malloc(sizeBytes > 0 ? sizeBytes : 1);
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

void operator delete[](void* memory) noexcept
{
    std::free(memory);
}

void operator delete[](void* memory, std::size_t) noexcept
{
    std::free(memory);
}

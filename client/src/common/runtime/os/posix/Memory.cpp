#include "runtime/os/Memory.h"

#include <sys/mman.h>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define QUORVANE_ADDRESS_SANITIZER
#endif
#elif defined(__SANITIZE_ADDRESS__)
#define QUORVANE_ADDRESS_SANITIZER
#endif

namespace pwr::os {

namespace {

class PosixMemory : public Memory {
public:
    void* reserve([[maybe_unused]] std::size_t sizeBytes) override
    {
#if defined(QUORVANE_ADDRESS_SANITIZER)
        return nullptr;
#else
        void* start = mmap(nullptr, sizeBytes, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        return start == MAP_FAILED ? nullptr : start;
#endif
    }

    bool commit(void* start, std::size_t sizeBytes) override
    {
        return mprotect(start, sizeBytes, PROT_READ | PROT_WRITE) == 0;
    }
};

}    // namespace

Memory& systemMemory()
{
    static PosixMemory s_memory;
    return s_memory;
}

}    // namespace pwr::os

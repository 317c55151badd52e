#include "runtime/os/Processor.h"

#if defined(__x86_64__) || defined(__i386__)
#include <cpuid.h>
#endif

namespace pwr::os {

namespace {

class PosixProcessor : public Processor {
public:
    CpuidRegisters cpuid([[maybe_unused]] unsigned int leaf, [[maybe_unused]] unsigned int subLeaf) override
    {
        CpuidRegisters registers;
#if defined(__x86_64__) || defined(__i386__)
        __cpuid_count(leaf, subLeaf, registers.eax, registers.ebx, registers.ecx, registers.edx);
#endif
        return registers;
    }
};

}    // namespace

Processor& systemProcessor()
{
    static PosixProcessor s_processor;
    return s_processor;
}

}    // namespace pwr::os

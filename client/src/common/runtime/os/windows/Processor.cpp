#include "runtime/os/Processor.h"

#include <intrin.h>

namespace pwr::os {

namespace {

class WindowsProcessor : public Processor {
public:
    CpuidRegisters cpuid(unsigned int leaf, unsigned int subLeaf) override
    {
        int values[4] = {};
        __cpuidex(values, static_cast<int>(leaf), static_cast<int>(subLeaf));
        return {static_cast<unsigned int>(values[0]), static_cast<unsigned int>(values[1]),
                static_cast<unsigned int>(values[2]), static_cast<unsigned int>(values[3])};
    }
};

}    // namespace

Processor& systemProcessor()
{
    static WindowsProcessor s_processor;
    return s_processor;
}

}    // namespace pwr::os

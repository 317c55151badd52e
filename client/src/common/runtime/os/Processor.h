#pragma once

namespace pwr::os {

struct CpuidRegisters {
    unsigned int eax = 0;
    unsigned int ebx = 0;
    unsigned int ecx = 0;
    unsigned int edx = 0;
};

// What the processor says of itself.
class Processor {
public:
    virtual ~Processor() = default;

    // CPUID with the given leaf and sub-leaf; zeros where the processor has no such instruction.
    virtual CpuidRegisters cpuid(unsigned int leaf, unsigned int subLeaf) = 0;
};

Processor& systemProcessor();

}    // namespace pwr::os

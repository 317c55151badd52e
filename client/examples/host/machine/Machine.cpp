#include "machine/Machine.h"

#include "machine/TreeMachine.h"
#include "system/System.h"

#include "config/pw_utils.h"
#include "record/SystemMetadata.h"

#include <cstdint>

namespace host {

namespace {

pwr::FMS decodeSignature(unsigned int signature)
{
    unsigned int family = (signature >> 8U) & 0xFU;
    unsigned int model = (signature >> 4U) & 0xFU;
    if (family == 0x6 || family == 0xF) model |= (signature >> 12U) & 0xF0U;
    if (family == 0xF) family += (signature >> 20U) & 0xFFU;
    pwr::FMS fms;
    fms.family = static_cast<std::uint8_t>(family);
    fms.model = static_cast<std::uint8_t>(model);
    fms.stepping = static_cast<std::uint8_t>(signature & 0xFU);
    return fms;
}

}    // namespace

void Machine::askProcessor(pwr::SystemMetadata& record)
{
    constexpr unsigned int FREQUENCIES = 0x16;
    unsigned int highestLeaf = 0;
    pwr::getCpuid(0, &highestLeaf, nullptr, nullptr, nullptr);
    if (highestLeaf >= 1) {
        unsigned int signature = 0;
        pwr::getCpuid(1, &signature, nullptr, nullptr, nullptr);
        record.fms = decodeSignature(signature);
    }
    if (highestLeaf >= FREQUENCIES) {
        unsigned int base = 0;
        unsigned int highest = 0;
        unsigned int bus = 0;
        pwr::getCpuid(FREQUENCIES, &base, &highest, &bus, nullptr);
        // Virtual machines often tell zeros here; what is known already then stays.
        if ((base & 0xFFFFU) != 0) record.cpuFreqMHz = static_cast<float>(base & 0xFFFFU);
        record.hfmFreqMHz = static_cast<float>(highest & 0xFFFFU);
        record.busFreqMHz = static_cast<float>(bus & 0xFFFFU);
    }
}

std::unique_ptr<Machine> openMachine(const std::string& sysroot)
{
    if (sysroot.empty()) return openThisMachine();
    return std::make_unique<TreeMachine>(sysroot);
}

}    // namespace host

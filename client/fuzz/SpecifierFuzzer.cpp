// Input: a value of a system property. Invariant: no crash; every specifier takes it or not; a value that is read is
// matched exactly by the specifier that is made of it; PCI and PMT numbers are read as scanf reads them, up to 32 bits.
// Only the C library may take "0x" without digits for 0.

#include "config/Specifier.h"
#include "config/pw_utils.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

using namespace pwr;

namespace {

void check(bool isRight)
{
    if (!isRight) std::abort();
}

// A larger number than 32 bits is the largest one here, and something else there.
bool isSame(std::uint32_t read, unsigned long scanned)
{
    return read == 0xffffffff || read == static_cast<std::uint32_t>(scanned);
}

void checkFms(const std::string& value)
{
    std::uint8_t family = 0;
    std::uint8_t model = 0;
    std::uint8_t stepping = 0;
    const bool isRead = FMSSpecifier::extract_fms_i(family, model, stepping, value) == 0;
    check(FMSSpecifier(family, model, stepping).is_match("FMS", value) == (isRead ? 2 : 0));
    const int match = FMSSpecifier(family, model, 0).is_match("FMS", value);
    check(!isRead ? match == 0 : match == (stepping == 0 ? 2 : 1));
}

void checkPci(const std::string& value)
{
    std::uint32_t vendor = 0;
    std::uint32_t device = 0;
    unsigned long scannedVendor = 0;
    unsigned long scannedDevice = 0;
    const bool isRead = PCISpecifier::parse(value, vendor, device);
    const int scanned = std::sscanf(value.c_str(), "VENDOR=0x%lx,DEVICE=0x%lx", &scannedVendor, &scannedDevice);
    check(isRead == (scanned == 2) || (!isRead && (scannedVendor == 0 || scannedDevice == 0)));
    if (!isRead) return;
    check(isSame(vendor, scannedVendor) && isSame(device, scannedDevice));
    check(PCISpecifier(vendor, device).is_match("PCI", value) == 2);
}

void checkPmt(const std::string& value)
{
    std::uint32_t guid = 0;
    unsigned long scannedGuid = 0;
    const bool isRead = PMTSpecifier::parse(value, guid);
    const int scanned = std::sscanf(value.c_str(), "GUID=0x%lx", &scannedGuid);
    check(isRead == (scanned == 1) || (!isRead && scannedGuid == 0));
    if (!isRead) return;
    check(isSame(guid, scannedGuid));
    check(PMTSpecifier(guid).is_match("PMT", value) == 2);
}

}    // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string value(data, data + size);
    checkFms(value);
    checkPci(value);
    checkPmt(value);
    check(ValueSpecifier("ANY", value).is_match("ANY", value) == 2);
    check(RangeSpecifier("CORES", 0, 0xffffffff).is_match("CORES", value) == (isNumber(value) ? 2 : 0));
    return 0;
}

#pragma once

#include "runtime/Export.h"

#include <cstdint>
#include <string>
#include <unordered_map>
#include <utility>

namespace pwr {

// The readable names of the devices around a processor: chipsets, cards and telemetry sources. A platform's name tells
// them by short tokens, telemetry by GUIDs. The maps are filled when the library is loaded; there are no objects.
//
//   Device::deviceStringLookup("nothing");        // "Unsupported"
//   Device::pmtDeviceStringLookup(0x1234);        // "0x1234"
class QUORVANE_API Device {
public:
    // Where a telemetry source sits.
    enum class PMT_DEVICE_TYPE : std::uint32_t { PROCESSOR = 0, CHIPSET = 1, UNKNOWN = 5 };

    Device() = delete;

    static std::string deviceStringLookup(const std::string& token);    // "Unsupported" for an unknown token
    static std::string pmtDeviceStringLookup(unsigned int guid);        // an unknown GUID in lower-case hexadecimal
    static PMT_DEVICE_TYPE pmtDeviceTypeLookup(unsigned int guid);      // UNKNOWN for an unknown GUID

    // Token to name. A host may add devices of its own before the first report.
    static std::unordered_map<std::string, std::string>& getDeviceMap();

private:
    static std::unordered_map<std::string, std::string> s_deviceMap;
    static std::unordered_map<unsigned int, std::pair<std::string, PMT_DEVICE_TYPE>> s_pmtDeviceMap;
};

}    // namespace pwr

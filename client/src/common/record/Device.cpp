#include "record/Device.h"

#include "record/ChipTables.h"

#include <sstream>

namespace pwr {

// The tables are constants, so these are complete whenever the library's statics are.
std::unordered_map<std::string, std::string> Device::s_deviceMap = [] {
    std::unordered_map<std::string, std::string> map;
    for (const DeviceRow& row : deviceRows())
        map.emplace(row.token, row.name);
    return map;
}();

std::unordered_map<unsigned int, std::pair<std::string, Device::PMT_DEVICE_TYPE>> Device::s_pmtDeviceMap = [] {
    std::unordered_map<unsigned int, std::pair<std::string, PMT_DEVICE_TYPE>> map;
    for (const PmtDeviceRow& row : pmtDeviceRows())
        map.emplace(row.guid, std::pair(row.name, row.type));
    return map;
}();

std::string Device::deviceStringLookup(const std::string& token)
{
    const auto found = s_deviceMap.find(token);
    return found != s_deviceMap.end() ? found->second : "Unsupported";
}

std::string Device::pmtDeviceStringLookup(unsigned int guid)
{
    const auto found = s_pmtDeviceMap.find(guid);
    if (found != s_pmtDeviceMap.end()) return found->second.first;
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text << "0x" << std::hex << guid;
    return text.str();
}

Device::PMT_DEVICE_TYPE Device::pmtDeviceTypeLookup(unsigned int guid)
{
    const auto found = s_pmtDeviceMap.find(guid);
    return found != s_pmtDeviceMap.end() ? found->second.second : PMT_DEVICE_TYPE::UNKNOWN;
}

std::unordered_map<std::string, std::string>& Device::getDeviceMap()
{
    return s_deviceMap;
}

}    // namespace pwr

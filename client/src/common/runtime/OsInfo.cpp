#include "runtime/OsInfo.h"

#include "config/pw_utils.h"
#include "runtime/Log.h"
#include "runtime/os/Os.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <iterator>
#include <memory>

namespace {

constexpr unsigned int WORKSTATION = 1;
constexpr unsigned int SERVER = 3;

struct SystemName {
    std::uint32_t minor;
    const char* workstation;
    const char* server;
};

constexpr SystemName NAMES_OF_MAJOR_6[] = {
    {0, "Windows Vista", "Windows Server 2008"},
    {1, "Windows 7", "Windows Server 2008 R2"},
    {2, "Windows 8", "Windows Server 2012"},
    {3, "Windows 8.1", "Windows Server 2012 R2"},
};

const char* systemName(std::uint32_t major, std::uint32_t minor, bool isWorkstation)
{
    if (major == 10) return isWorkstation ? "Windows 10" : "Windows Server 2016 Technical Preview";
    const auto* found = std::find_if(std::begin(NAMES_OF_MAJOR_6), std::end(NAMES_OF_MAJOR_6),
                                     [minor](const SystemName& row) { return row.minor == minor; });
    if (major != 6 || found == std::end(NAMES_OF_MAJOR_6)) return "Windows Unsupported";
    return isWorkstation ? found->workstation : found->server;
}

const char* systemType(unsigned int productType)
{
    if (productType == WORKSTATION) return "NT_WORKTATION";    // as readers of the records know it
    return productType == SERVER ? "NT_SERVER" : "NT_DOMAIN_CONTROLLER";
}

std::string updateRevision()
{
    unsigned long long revision = 0;
    if (Registry::RegReadDword("SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion", "UBR", revision)) {
        QV_LOG_DEBUG("DEBUG: Found registry key for the updated build revision and including in the osVersion.\n");
        return "." + std::to_string(revision);
    }
    QV_LOG_DEBUG("DEBUG: Did not find the registry key for the updated build revision.\n");
    return "";
}

// The system's texts are terminated, unless they fill their field.
template <std::size_t size>
std::string text(const char (&field)[size])
{
    return {field, std::find(field, field + size, '\0')};
}

void print(const DISPLAY_DEVICEA& device)
{
    std::cout << "    Device ID: " << text(device.DeviceID) << "\n    Device Key: " << text(device.DeviceKey)
              << "\n    Device Name: " << text(device.DeviceName)
              << "\n    Device String: " << text(device.DeviceString) << '\n';
}

DISPLAY_DEVICEA noDevice()
{
    DISPLAY_DEVICEA device{};
    device.cb = sizeof device;
    return device;
}

}    // namespace

bool Registry::RegReadDword(std::string key, std::string value, unsigned long long& result)
{
    pwr::os::Registry& registry = *pwr::os::current().registry;
    void* opened = nullptr;
    if (RegError(registry.openKey(key.c_str(), opened))) return false;
    std::uint32_t number = 0;
    std::uint32_t size = sizeof number;
    const bool isRead = !RegError(registry.queryValue(opened, value.c_str(), &number, size)) && size == sizeof number;
    registry.closeKey(opened);
    if (isRead) result = number;
    return isRead;
}

std::string Registry::NormalizeRegKey(const std::string& text, const std::string& from)
{
    return pwr::StringOps::getSubString(text, from);
}

bool Registry::RegError(long status)
{
    return status != 0;
}

std::vector<std::pair<DISPLAY_DEVICEA, DISPLAY_DEVICEA>> Display::m_active;

Display::~Display() = default;

std::vector<std::pair<DISPLAY_DEVICEA, DISPLAY_DEVICEA>>& Display::GetActiveDisplayList()
{
    EnumDisplays();
    return m_active;
}

void Display::EnumDisplays()
{
    pwr::os::Displays& displays = *pwr::os::current().displays;
    DISPLAY_DEVICEA adapter = noDevice();
    for (unsigned int index = 0; displays.enumerate(nullptr, index, adapter); ++index) {
        DISPLAY_DEVICEA monitor = noDevice();
        displays.enumerate(text(adapter.DeviceName).c_str(), 0, monitor);
        if (monitor.StateFlags != 0) m_active.emplace_back(adapter, monitor);
        adapter = noDevice();
    }
}

void Display::PrintActiveDisplayList()
{
    for (const auto& [adapter, monitor] : m_active) {
        std::cout << "Display Adapter properties:\n";
        print(adapter);
        std::cout << "Active Display properties:\n";
        print(monitor);
        std::cout << std::endl;
    }
}

bool getFileVersion(const wchar_t* path, qv_driver_version_info& version)
{
    if (path == nullptr) return false;
    const pwr::os::Door& door = pwr::os::current();
    const std::uint32_t size = door.fileVersions->informationSize(path);
    if (size == 0) return false;
    const std::unique_ptr<void, decltype(&std::free)> block(door.memory->allocate(size), &std::free);
    std::uint32_t high = 0;
    std::uint32_t low = 0;
    if (!block || !door.fileVersions->readInformation(path, size, block.get())) return false;
    if (!door.fileVersions->fileVersion(block.get(), size, high, low)) return false;
    version.first = static_cast<std::uint16_t>(high >> 16);
    version.second = static_cast<std::uint16_t>(high);
    version.third = static_cast<std::uint16_t>(low >> 16);
    return true;
}

void GetOsInfo(OSVERSIONINFOEXA info, std::string& name, std::string& version, std::string& type)
{
    version = std::to_string(info.dwMajorVersion) + "." + std::to_string(info.dwMinorVersion) + " build " +
              std::to_string(info.dwBuildNumber) + updateRevision();
    name = systemName(info.dwMajorVersion, info.dwMinorVersion, info.wProductType == WORKSTATION);
    type = systemType(info.wProductType);
}

std::string formatErrorMessage(unsigned long code)
{
    return pwr::os::current().errorTexts->describeCode(static_cast<std::uint32_t>(code));
}

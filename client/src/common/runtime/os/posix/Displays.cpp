#include "runtime/os/Displays.h"
#include "runtime/os/posix/DrmDisplays.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>
#include <tuple>

namespace pwr::os {

namespace {

constexpr std::uint32_t MONITOR_ACTIVE = 1;
constexpr std::uint32_t MONITOR_ATTACHED = 2;

// Cut where it doesn't fit, always terminated.
template <std::size_t size>
void fill(char (&field)[size], const std::string& text)
{
    const std::size_t length = std::min(text.size(), size - 1);
    std::memcpy(field, text.data(), length);
    std::memset(field + length, 0, size - length);
}

// The first `limit` bytes of a file, empty when it can't be read.
std::string contents(const std::string& path, std::size_t limit)
{
    std::ifstream file(path, std::ios::binary);
    std::string bytes(limit, '\0');
    file.read(bytes.data(), static_cast<std::streamsize>(limit));
    bytes.resize(static_cast<std::size_t>(std::max<std::streamsize>(file.gcount(), 0)));
    return bytes;
}

// What a monitor tells about itself: maker, product and name in the first block of its EDID.
struct MonitorIdentity {
    std::string id;
    std::string name;
};

constexpr std::size_t EDID_BYTES = 128;

// A text of at most 13 characters that ends with a line end.
std::string edidName(const std::string& edid)
{
    constexpr std::size_t firstDescriptor = 54;
    constexpr std::size_t descriptorBytes = 18;
    const std::string nameHead("\0\0\0\xFC\0", 5);
    for (std::size_t at = firstDescriptor; at + descriptorBytes <= EDID_BYTES; at += descriptorBytes) {
        if (edid.compare(at, nameHead.size(), nameHead) != 0) continue;
        const auto begin = edid.begin() + static_cast<std::ptrdiff_t>(at + nameHead.size());
        return {begin, std::find_if(begin, begin + 13, [](char c) { return c < ' ' || c > '~'; })};
    }
    return "";
}

MonitorIdentity identify(const std::string& edid)
{
    const std::string mark("\0\xFF\xFF\xFF\xFF\xFF\xFF\0", 8);
    if (edid.size() < EDID_BYTES || edid.compare(0, mark.size(), mark) != 0) return {};
    const auto byte = [&edid](std::size_t at) { return static_cast<unsigned>(static_cast<unsigned char>(edid[at])); };
    const unsigned maker = byte(8) << 8 | byte(9);    // three letters of five bits, A is 1
    const auto letter = [maker](unsigned shift) { return static_cast<char>('A' - 1 + (maker >> shift & 0x1F)); };
    char id[16];
    std::snprintf(id, sizeof id, "%c%c%c%04X", letter(10), letter(5), letter(0), byte(11) << 8 | byte(10));
    return {std::string("MONITOR\\") + id, edidName(edid)};
}

// The hexadecimal digits behind "0x", in upper case.
std::string pciNumber(const std::string& line)
{
    std::string digits = line.size() > 2 ? line.substr(2) : "";
    std::transform(digits.begin(), digits.end(), digits.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return digits;
}

}    // namespace

DrmDisplays::DrmDisplays(const std::string& root) : m_folder(root + "/class/drm/") {}

bool DrmDisplays::enumerate(const char* adapter, unsigned int index, DISPLAY_DEVICEA& display)
{
    const std::uint32_t size = display.cb;
    display = {};
    display.cb = size;
    if (adapter == nullptr) {
        if (index == 0) look_i();
        if (index >= m_outputs.size()) return false;
        describeOutput_i(m_outputs[index], display);
        return true;
    }
    const auto output = std::find_if(m_outputs.begin(), m_outputs.end(),
                                     [adapter](const Output& candidate) { return candidate.name == adapter; });
    if (index > 0 || output == m_outputs.end() || monitorState_i(*output) == 0) return false;
    describeMonitor_i(*output, display);
    return true;
}

// Outputs are named "card", the number of the card, "-" and the connector.
void DrmDisplays::look_i()
{
    constexpr std::size_t longestName = sizeof DISPLAY_DEVICEA::DeviceName - 1;
    const std::string prefix = "card";
    m_outputs.clear();
    std::error_code error;
    std::filesystem::directory_iterator entry(m_folder, error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        if (name.compare(0, prefix.size(), prefix) != 0 || name.size() > longestName) continue;
        char* end = nullptr;
        const unsigned long card = std::strtoul(name.c_str() + prefix.size(), &end, 10);
        if (end == name.c_str() + prefix.size() || *end != '-') continue;
        m_outputs.push_back({card, name});
    }
    std::sort(m_outputs.begin(), m_outputs.end(), [](const Output& left, const Output& right) {
        return std::tie(left.card, left.name) < std::tie(right.card, right.name);
    });
}

void DrmDisplays::describeOutput_i(const Output& output, DISPLAY_DEVICEA& display) const
{
    const std::string device = m_folder + output.name.substr(0, output.name.find('-')) + "/device/";
    const std::string driver = line_i(device + "uevent");    // its first line names it
    const std::string driverKey = "DRIVER=";
    const std::string vendor = pciNumber(line_i(device + "vendor"));
    fill(display.DeviceName, output.name);
    if (driver.compare(0, driverKey.size(), driverKey) == 0) {
        fill(display.DeviceString, driver.substr(driverKey.size()));
    }
    if (!vendor.empty()) {
        fill(display.DeviceID, "PCI\\VEN_" + vendor + "&DEV_" + pciNumber(line_i(device + "device")));
    }
    fill(display.DeviceKey, m_folder + output.name);
    display.StateFlags = monitorState_i(output) & MONITOR_ACTIVE;    // attached to the desktop
}

void DrmDisplays::describeMonitor_i(const Output& output, DISPLAY_DEVICEA& display) const
{
    const std::string edidPath = m_folder + output.name + "/edid";
    const MonitorIdentity identity = identify(contents(edidPath, EDID_BYTES));
    fill(display.DeviceName, output.name + "/Monitor0");
    fill(display.DeviceString, identity.name);
    fill(display.DeviceID, identity.id);
    fill(display.DeviceKey, edidPath);
    display.StateFlags = monitorState_i(output);
}

// 0 without a connected monitor.
std::uint32_t DrmDisplays::monitorState_i(const Output& output) const
{
    if (line_i(m_folder + output.name + "/status") != "connected") return 0;
    const bool isEnabled = line_i(m_folder + output.name + "/enabled") == "enabled";
    return isEnabled ? MONITOR_ATTACHED | MONITOR_ACTIVE : MONITOR_ATTACHED;
}

std::string DrmDisplays::line_i(const std::string& path) const
{
    const std::string text = contents(path, 256);
    return text.substr(0, text.find('\n'));
}

Displays& systemDisplays()
{
    static DrmDisplays s_displays("/sys");
    return s_displays;
}

}    // namespace pwr::os

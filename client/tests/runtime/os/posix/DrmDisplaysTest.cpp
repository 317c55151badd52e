#include "runtime/os/posix/DrmDisplays.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

// The kernel's folder of a machine with two graphics cards.
class DrmDisplaysTest : public testing::Test {
protected:
    void SetUp() override { std::filesystem::remove_all(m_root); }
    void TearDown() override { std::filesystem::remove_all(m_root); }

    void file(const std::string& path, const std::string& text)
    {
        const std::filesystem::path whole = m_root + "/class/drm/" + path;
        std::filesystem::create_directories(whole.parent_path());
        std::ofstream(whole, std::ios::binary) << text;
    }

    void output(const std::string& name, const std::string& status, const std::string& enabled)
    {
        file(name + "/status", status + "\n");
        file(name + "/enabled", enabled + "\n");
    }

    // Maker DEL, product 0xA0C4, the name in the second descriptor.
    static std::string edid(const std::string& name)
    {
        std::string bytes("\0\xFF\xFF\xFF\xFF\xFF\xFF\0\x10\xAC\xC4\xA0", 12);
        bytes.resize(128);
        return bytes.replace(72, 5 + name.size(), std::string("\0\0\0\xFC\0", 5) + name);
    }

    std::vector<DISPLAY_DEVICEA> adapters()
    {
        std::vector<DISPLAY_DEVICEA> found;
        DISPLAY_DEVICEA device{};
        device.cb = sizeof device;
        for (unsigned int i = 0; m_displays.enumerate(nullptr, i, device); ++i)
            found.push_back(device);
        EXPECT_EQ(424U, device.cb);
        EXPECT_STREQ("", device.DeviceName);
        return found;
    }

    const std::string m_root = "DrmDisplaysTest";
    pwr::os::DrmDisplays m_displays{m_root};
};

TEST_F(DrmDisplaysTest, OutputsAreAdaptersInTheOrderOfTheirCards)
{
    EXPECT_TRUE(adapters().empty());
    for (const char* name : {"card10-DP-1", "card2-HDMI-A-1", "card2-DP-1"})
        output(name, "disconnected", "disabled");
    for (const char* other : {"card2/dev", "renderD128/dev", "version/x", "card-1/x", "cards2-DP-1/x",
                              "card2-a-name-longer-than-any-connector-has/status"})
        file(other, "connected\n");
    file("card2/device/uevent", "DRIVER=xe\nPCI_CLASS=30000\n");
    file("card2/device/vendor", "0x8086\n");
    file("card2/device/device", "0x46a6\n");

    const std::vector<DISPLAY_DEVICEA> found = adapters();
    ASSERT_EQ(3U, found.size());
    EXPECT_STREQ("card2-DP-1", found[0].DeviceName);
    EXPECT_STREQ("xe", found[0].DeviceString);
    EXPECT_STREQ("PCI\\VEN_8086&DEV_46A6", found[0].DeviceID);
    EXPECT_STREQ("DrmDisplaysTest/class/drm/card2-DP-1", found[0].DeviceKey);
    EXPECT_STREQ("card2-HDMI-A-1", found[1].DeviceName);
    EXPECT_STREQ("card10-DP-1", found[2].DeviceName);
    EXPECT_STREQ("", found[2].DeviceID);
}

TEST_F(DrmDisplaysTest, ConnectedMonitorsTellTheirNameAndWhetherTheyAreOn)
{
    output("card0-DP-1", "connected", "enabled");
    output("card0-DP-2", "connected", "disabled");
    output("card0-DP-3", "disconnected", "enabled");
    output("card0-DP-4", "connected", "enabled");
    output("card0-DP-5", "connected", "enabled");
    file("card0-DP-1/edid", edid("Office 27\n   "));
    file("card0-DP-4/edid", edid("Thirteen char") + std::string(128, 'x'));
    file("card0-DP-5/edid", edid("cut").substr(0, 127));
    const struct {
        const char* adapter;
        std::uint32_t state;
        const char* name;
        const char* id;
    } cases[] = {
        {"card0-DP-1", 3, "Office 27", "MONITOR\\DELA0C4"},     {"card0-DP-2", 2, "", ""}, {"card0-DP-3", 0, "", ""},
        {"card0-DP-4", 3, "Thirteen char", "MONITOR\\DELA0C4"}, {"card0-DP-5", 3, "", ""}, {"card7-DP-1", 0, "", ""},
    };
    EXPECT_EQ(5U, adapters().size());
    for (const auto& c : cases) {
        DISPLAY_DEVICEA monitor{};
        EXPECT_EQ(c.state != 0, m_displays.enumerate(c.adapter, 0, monitor)) << c.adapter;
        EXPECT_EQ(c.state, monitor.StateFlags) << c.adapter;
        EXPECT_STREQ(c.name, monitor.DeviceString) << c.adapter;
        EXPECT_STREQ(c.id, monitor.DeviceID) << c.adapter;
        EXPECT_FALSE(m_displays.enumerate(c.adapter, 1, monitor)) << c.adapter;
    }
}

}    // namespace

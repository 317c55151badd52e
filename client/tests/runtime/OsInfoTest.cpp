#include "runtime/OsInfo.h"

#include "support/DoorGuard.h"
#include "support/LogCapture.h"
#include "support/NoMemory.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <utility>
#include <vector>

namespace {

namespace os = pwr::os;

// A registry with one value; counts its open keys.
class FakeRegistry : public os::Registry {
public:
    long openKey(const char* path, void*& key) override
    {
        opened = path;
        key = openStatus == 0 ? this : nullptr;
        if (openStatus == 0) ++keys;
        return openStatus;
    }
    long queryValue(void* key, const char* name, void* data, std::uint32_t& sizeBytes) override
    {
        EXPECT_EQ(this, key);
        EXPECT_EQ(4U, sizeBytes);
        asked = name;
        std::memcpy(data, value.data(), std::min<std::size_t>(value.size(), sizeBytes));
        sizeBytes = static_cast<std::uint32_t>(value.size());
        return queryStatus;
    }
    void closeKey(void*) override { --keys; }
    bool store(const std::string&, const std::string&, const std::vector<unsigned char>&) override { return false; }

    long openStatus = 0;
    long queryStatus = 0;
    std::vector<unsigned char> value{5, 0, 0, 0};
    std::string opened;
    std::string asked;
    int keys = 0;
};

OSVERSIONINFOEXA systemVersion(unsigned int major, unsigned int minor, unsigned char productType)
{
    OSVERSIONINFOEXA info{};
    info.dwMajorVersion = major;
    info.dwMinorVersion = minor;
    info.dwBuildNumber = 1234;
    info.wProductType = productType;
    return info;
}

class OsInfoTest : public testing::Test {
protected:
    OsInfoTest() { m_door->registry = &m_registry; }

    test::DoorGuard m_door;
    test::LogCapture m_log{3};
    FakeRegistry m_registry;
    std::string m_name;
    std::string m_version = "before";
    std::string m_type;
};

TEST_F(OsInfoTest, VersionEndsWithTheUpdateRevisionWhereThereIsOne)
{
    GetOsInfo(systemVersion(10, 0, 1), m_name, m_version, m_type);
    EXPECT_EQ("10.0 build 1234.5", m_version);
    EXPECT_EQ("SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion", m_registry.opened);
    EXPECT_EQ("UBR", m_registry.asked);
    EXPECT_EQ("DEBUG: Found registry key for the updated build revision and including in the osVersion.\n",
              m_log.debug());

    m_log.clear();
    m_registry.openStatus = 2;
    GetOsInfo(systemVersion(10, 0, 1), m_name, m_version, m_type);
    EXPECT_EQ("10.0 build 1234", m_version);
    EXPECT_EQ("DEBUG: Did not find the registry key for the updated build revision.\n", m_log.debug());
}

TEST_F(OsInfoTest, SystemsHaveAWorkstationsAndAServersName)
{
    const struct {
        unsigned int major, minor;
        const char *workstation, *server;
    } cases[] = {
        {10, 0, "Windows 10", "Windows Server 2016 Technical Preview"},
        {10, 7, "Windows 10", "Windows Server 2016 Technical Preview"},
        {6, 0, "Windows Vista", "Windows Server 2008"},
        {6, 1, "Windows 7", "Windows Server 2008 R2"},
        {6, 2, "Windows 8", "Windows Server 2012"},
        {6, 3, "Windows 8.1", "Windows Server 2012 R2"},
        {6, 4, "Windows Unsupported", "Windows Unsupported"},
        {5, 1, "Windows Unsupported", "Windows Unsupported"},
        {11, 0, "Windows Unsupported", "Windows Unsupported"},
    };
    for (const auto& c : cases) {
        GetOsInfo(systemVersion(c.major, c.minor, 1), m_name, m_version, m_type);
        EXPECT_EQ(c.workstation, m_name);
        EXPECT_EQ("NT_WORKTATION", m_type);
        for (const auto& [productType, type] : {std::pair{2, "NT_DOMAIN_CONTROLLER"}, std::pair{3, "NT_SERVER"}}) {
            GetOsInfo(systemVersion(c.major, c.minor, static_cast<unsigned char>(productType)), m_name, m_version,
                      m_type);
            EXPECT_EQ(c.server, m_name);
            EXPECT_EQ(type, m_type);
        }
    }
}

TEST_F(OsInfoTest, RegistryFailuresLeaveTheResultAndCloseTheKey)
{
    const struct {
        long openStatus, queryStatus;
        std::size_t size;
        bool isRead;
    } cases[] = {
        {0, 0, 4, true},  {2, 0, 4, false}, {5, 0, 4, false}, {0, 2, 4, false},
        {0, 5, 4, false}, {0, 0, 2, false}, {0, 0, 0, false}, {0, 234, 8, false},
    };
    for (const auto& c : cases) {
        m_registry.openStatus = c.openStatus;
        m_registry.queryStatus = c.queryStatus;
        m_registry.value.assign(c.size, 0xFF);
        unsigned long long result = 77;
        EXPECT_EQ(c.isRead, Registry::RegReadDword("key", "value", result)) << c.openStatus << c.queryStatus << c.size;
        EXPECT_EQ(c.isRead ? 0xFFFFFFFFULL : 77ULL, result);
        EXPECT_EQ(0, m_registry.keys);
    }
}

TEST_F(OsInfoTest, KeysAreNormalisedByTheirBeginning)
{
    EXPECT_EQ("SOFTWARE\\Tool", Registry::NormalizeRegKey("HKLM\\SOFTWARE\\Tool", "SOFTWARE"));
    EXPECT_EQ("HKLM\\Tool", Registry::NormalizeRegKey("HKLM\\Tool", "SOFTWARE"));
}

// Adapters with the state of their first monitor.
class FakeDisplays : public os::Displays {
public:
    bool enumerate(const char* adapter, unsigned int index, DISPLAY_DEVICEA& display) override
    {
        EXPECT_EQ(424U, display.cb);
        EXPECT_STREQ("", display.DeviceName) << "each structure is new";
        if (adapter == nullptr) {
            if (index >= states.size()) return false;
            describe(display, "A" + std::to_string(index), 0);
            return true;
        }
        EXPECT_EQ(0U, index);
        const std::uint32_t state = states.at(std::stoul(adapter + 1));
        if (state == 0) return false;
        describe(display, std::string(adapter) + "M", state);
        return true;
    }

    std::vector<std::uint32_t> states;

private:
    static void describe(DISPLAY_DEVICEA& display, const std::string& name, std::uint32_t state)
    {
        std::strcpy(display.DeviceName, name.c_str());
        std::strcpy(display.DeviceString, "text");
        std::strcpy(display.DeviceID, "id");
        std::memset(display.DeviceKey, 'k', sizeof display.DeviceKey);    // no end mark
        display.StateFlags = state;
    }
};

TEST_F(OsInfoTest, ActiveDisplaysAreAppendedAtEachCallAndPrintedAsTheyStand)
{
    FakeDisplays displays;
    m_door->displays = &displays;
    displays.states = {0, 1, 0, 3};
    testing::internal::CaptureStdout();
    Display::PrintActiveDisplayList();
    EXPECT_EQ("", testing::internal::GetCapturedStdout());

    EXPECT_EQ(2U, Display::GetActiveDisplayList().size());
    displays.states = {1};
    auto& active = Display::GetActiveDisplayList();
    ASSERT_EQ(3U, active.size());
    EXPECT_STREQ("A3", active[1].first.DeviceName);
    EXPECT_STREQ("A3M", active[1].second.DeviceName);

    active.resize(1);
    testing::internal::CaptureStdout();
    Display::PrintActiveDisplayList();
    const std::string key(128, 'k');
    EXPECT_EQ("Display Adapter properties:\n    Device ID: id\n    Device Key: " + key +
                  "\n    Device Name: A1\n    Device String: text\nActive Display properties:\n    Device ID: id\n"
                  "    Device Key: " +
                  key + "\n    Device Name: A1M\n    Device String: text\n\n",
              testing::internal::GetCapturedStdout());
    active.clear();
}

// Version information whose steps fail one by one.
class FakeFileVersions : public os::FileVersions {
public:
    std::uint32_t informationSize(const wchar_t*) override { return failing == 1 ? 0 : 100; }
    bool readInformation(const wchar_t*, std::uint32_t sizeBytes, void* block) override
    {
        std::memset(block, 'v', sizeBytes);
        return failing != 3;
    }
    bool fileVersion(const void* block, std::uint32_t sizeBytes, std::uint32_t& high, std::uint32_t& low) override
    {
        EXPECT_EQ(std::string(sizeBytes, 'v'), std::string(static_cast<const char*>(block), sizeBytes));
        high = 0xFFFE'0002;
        low = 0x0003'0004;
        return failing != 4;
    }
    int failing = 0;
};

TEST_F(OsInfoTest, EachStepOfAFilesVersionCanFail)
{
    FakeFileVersions versions;
    test::NoMemory noMemory;
    m_door->fileVersions = &versions;
    os::Memory* memory = m_door->memory;
    for (versions.failing = 1; versions.failing <= 4; ++versions.failing) {
        m_door->memory = versions.failing == 2 ? &noMemory : memory;
        qv_driver_version_info version{7, 8, 9};
        EXPECT_FALSE(getFileVersion(L"file", version)) << versions.failing;
        EXPECT_TRUE(version.first == 7 && version.second == 8 && version.third == 9);
    }
    versions.failing = 0;
    m_door->memory = memory;
    qv_driver_version_info version{};
    EXPECT_TRUE(getFileVersion(L"file", version));
    EXPECT_TRUE(version.first == 0xFFFE && version.second == 2 && version.third == 3);
}

TEST_F(OsInfoTest, WantOfMemoryThrows)
{
    std::free(safeMalloc(1));
    test::NoMemory noMemory;
    m_door->memory = &noMemory;
    EXPECT_THROW(safeMalloc(1), std::bad_alloc);
}

}    // namespace

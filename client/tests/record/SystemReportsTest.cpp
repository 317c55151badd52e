#include "record/Device.h"
#include "record/SystemMetadata.h"
#include "support/TestSession.h"

#include <QuorvaneBuild.h>

#include <gtest/gtest.h>

using namespace pwr;

namespace {

SystemMetadata makeProcessor(int family, int model, int stepping)
{
    SystemMetadata system;
    system.fms = {static_cast<std::uint8_t>(family), static_cast<std::uint8_t>(model),
                  static_cast<std::uint8_t>(stepping)};
    return system;
}

std::list<std::string> pciNames(const std::string& platform)
{
    std::list<std::string> names;
    SystemMetadata().getFormattedPCIDeviceNames(platform, names);
    return names;
}

TEST(DeviceTest, UnknownDevicesAreToldByTextOrNumber)
{
    EXPECT_EQ("Unsupported", Device::deviceStringLookup("no such"));
    EXPECT_EQ("Unsupported", Device::deviceStringLookup(""));
    EXPECT_EQ("0x1234", Device::pmtDeviceStringLookup(4660));
    EXPECT_EQ("0xabcdef01", Device::pmtDeviceStringLookup(0xABCDEF01));
    EXPECT_EQ(5u, static_cast<unsigned int>(Device::pmtDeviceTypeLookup(4660)));
    EXPECT_EQ("GLD", Device::pmtDeviceStringLookup(0xF1F00002));
    EXPECT_EQ(0u, static_cast<unsigned int>(Device::pmtDeviceTypeLookup(0xF1F00001)));
    EXPECT_EQ(1u, static_cast<unsigned int>(Device::pmtDeviceTypeLookup(0xF1F00002)));
    EXPECT_EQ(13u, Device::getDeviceMap().size());
    EXPECT_EQ("Dessimar", Device::deviceStringLookup("DSM"));
}

TEST(SystemReportsTest, WallClockTimesAreGivenInGmt)
{
    const struct {
        unsigned long long nanoseconds;
        const char* text;
    } cases[] = {
        {0, "N/A"},
        {999999999, "1970-01-01 00:00:00 GMT"},
        {1000000000, "1970-01-01 00:00:01 GMT"},
        {1709208000999999999, "2024-02-29 12:00:00 GMT"},
        {18446744073709551615U, "2554-07-21 23:34:33 GMT"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(c.text, SystemMetadata().formatTimevalAsString(c.nanoseconds));
}

TEST(SystemReportsTest, TheVersionHeaderTellsTheToolAndWhoProcessed)
{
    SystemMetadata system;
    system.appVersion = 0x07E40301;
    system.driverVersion = 0x0102FF03;
    system.driverBuildDate = "";
    const std::string recorded = "Tessmar(R) Quorvane for Windows* OS Version 2020.3.1 [N/A]\n"
                                 "Build Ref: N/A\n"
                                 "Driver Version 258.255.3 [N/A]\n";
    EXPECT_EQ(recorded, system.getOSVersionString(false));

    system.nonNumericVersion = "next";
    system.exeBuildDate = "today";
    system.buildRef = "r1";
    system.driverBuildDate = "monday";
    const std::string named = "Tessmar(R) Quorvane for Windows* OS Version next [today]\n"
                              "Build Ref: r1\n"
                              "Driver Version 258.255.3 [monday]\n";
    EXPECT_EQ(named, system.getOSVersionString(false));

    const std::string reference = build::REF;
    const std::string processed = named + "Post Processed using Quorvane for Windows* OS Version " + build::VERSION +
                                  " [" + build::DATE +
                                  "]\n"
                                  "Post Processed Build Ref: " +
                                  (reference.empty() ? "N/A" : reference) + "\n";
    EXPECT_EQ(processed, system.getOSVersionString(true));

    const std::string rule = "--------------------------------------------------------------------------\n";
    EXPECT_EQ(rule + processed + build::COPYRIGHT +
                  "\n"
                  "Platform power analysis tool for use with Tessmar processors/chipsets/platforms.\n"
                  "*Other names and brands may be claimed as the property of others. \n" +
                  rule,
              system.getVersionHeader(true));
}

TEST(SystemReportsTest, TheCollectionHeaderTellsTheRun)
{
    SystemMetadata system;
    system.commandLine = {"tool", "-t", "5"};
    system.programStartTimeval = 1000000000;
    system.qvaClockFreqMHz = 1843.2f;
    system.startTimeval = 2000000000;
    system.stopTimeval = 3250000000;
    EXPECT_EQ("Command line options: tool -t 5 \n"
              "\n"
              "Program Started: 1970-01-01 00:00:01 GMT\n"
              "Data Collection Started: 1970-01-01 00:00:02 GMT \n"
              "TSC Frequency (MHz): 1843.2\n"
              "Collection duration (sec):1.25",
              system.getCollectionHeader());
}

TEST(SystemReportsTest, TheHardwareHeaderOfAnUnknownMachine)
{
    SystemMetadata system = makeProcessor(6, 0x8E, 10);
    system.hostName = "box";
    system.osName = "Testland";
    system.osVersion = "11";
    system.platformId = 13;
    system.edramCap = 2;
    system.cpuNativeModelIds = {0x71000001};
    system.platformName = "Some Processor";
    system.buildTopology(test::topologyText(10, 2, 1), 0);
    EXPECT_EQ("\nSystem Name: box"
              "\nOperating System: Testland [11]"
              "\nCPU: Unknown"
              "\nCPU ID (family.model.stepping): 0x6.0x8e.0xa"
              "\nPlatform ID: 0b101"
              "\nIntegrated GPU Device: NA"
              "\nPCH: "
              "\nEDRAM Present: Unsupported"
              " \nTotal # of packages: a"
              " \nTotal # of cores: 20"
              " \nTotal # of logical processors: 20\n",
              system.getSystemHWHeader());
}

TEST(SystemReportsTest, TheHardwareHeaderOfAKnownMachine)
{
    SystemMetadata system = makeProcessor(6, 0xF4, 0);
    system.platformId = 2;
    system.iGfxId = 0x1F;
    system.platformName = "PMT=TMRT,PCI=HTN,PCH=FRG,PMT=other,PCI=IVA";
    system.cpuNativeModelIds = {0x71000001, 0x72000001, 1};
    system.buildTopology(test::topologyText(1, 24, 1), 2);
    EXPECT_EQ("\nSystem Name: "
              "\nOperating System:  []"
              "\nCPU: Tamrow"
              "\nCPU ID (family.model.stepping): 0x6.0xf4.0x0"
              "\nPlatform ID: 0b010"
              "\nIntegrated GPU Device ID: 0x1f"
              "\nPMT: Tamrow telemetry"
              "\nPMT: Unsupported"
              "\nPCI: Hatterin"
              "\nPCI: Ivarren"
              "\nPCH: Fargrove-H"
              "\nEDRAM Present: Yes"
              " \nTotal # of packages: 1"
              " \nTotal # of modules: c"
              " \nTotal # of cores: 24"
              " \nTotal # of logical processors: 24\n"
              "\nCPU native model:"
              "\nCore0 = VEX"
              "\nCore1 = PIK"
              "\nCore2 = N/A",
              system.getSystemHWHeader());
    system.edramCap = 1;
    EXPECT_NE(std::string::npos, system.getSystemHWHeader().find("\nEDRAM Present: No \n"));
}

TEST(SystemReportsTest, CodeNamesComeFromTheFirstRowThatFits)
{
    const struct {
        int model, stepping;
        std::uint32_t platformId, iGfxId;
        const char* name;
    } cases[] = {
        {0xF0, 0, 0, 0, "Ardwyn"},        {0xF1, 255, 0, 0, "Ardwyn"},     {0xF2, 3, 0, 0, "Bellamar"},
        {0xF2, 4, 0, 0, "Corrigane"},     {0xF3, 3, 0, 0, "Corrigane"},    {0xF4, 7, 1, 0, "Narvane"},
        {0xF4, 8, 1, 0, "Unknown"},       {0xF4, 0, 2, 0, "Tamrow"},       {0xF4, 0, 3, 0, "Unknown"},
        {0xF5, 3, 0, 0xFE01, "Oskerry"},  {0xF5, 4, 0, 0xFE01, "Unknown"}, {0xF5, 4, 0, 0xFE02, "Lydmoor"},
        {0xF5, 16, 0, 0xFE02, "Unknown"}, {0xFF, 0, 1, 0xFE01, "Unknown"},
    };
    for (const auto& c : cases) {
        SystemMetadata system = makeProcessor(6, c.model, c.stepping);
        system.platformId = c.platformId;
        system.iGfxId = c.iGfxId;
        const std::string name = system.getFormattedCPUCodeName();
        EXPECT_EQ(c.name, name) << c.model << "." << c.stepping;
        EXPECT_EQ(name == "Narvane", system.isPlatformNRV());
        EXPECT_EQ(name == "Tamrow", system.isPlatformTMR());
        EXPECT_EQ(name == "Oskerry", system.isPlatformOSK());
        EXPECT_EQ(name == "Lydmoor", system.isPlatformLYD());
        system.fms.family = 7;
        EXPECT_FALSE(system.isPlatformNRV() || system.isPlatformTMR() || system.isPlatformOSK() ||
                     system.isPlatformLYD());
    }
}

TEST(SystemReportsTest, ANativeModelMayDependOnTheProcessor)
{
    EXPECT_EQ("VEX", makeProcessor(6, 0xF4, 0).getCPUNativeModelName(0x71000001));
    EXPECT_EQ("TOR", makeProcessor(6, 0xF5, 0).getCPUNativeModelName(0x71000001));
    EXPECT_EQ("LUM", makeProcessor(7, 0xF5, 0).getCPUNativeModelName(0x71000001));
    EXPECT_EQ("N/A", makeProcessor(6, 0xF4, 0).getCPUNativeModelName(0));
}

TEST(SystemReportsTest, TheChipsetIsNamedOrToldByItsIds)
{
    using Specifiers = std::vector<std::pair<std::string, std::string>>;
    const Specifiers id = {{"PCI", "1"}, {"PCH", "255"}};
    const struct {
        std::string platform;
        Specifiers specifiers;
        std::string text;
    } cases[] = {
        {"PCH=BRN", id, "Brennoch"},
        {"CPU=x,PCH=nothing,PCH=BRN", id, "Unsupported (0xff)"},    // the first one counts
        {"PCH=nothing", {}, "Unsupported"},
        {"PCH=BRN=CLV,PCH=CLV", id, "Calvane"},
        {"PCH=BRN=CLV", id, " (0xff)"},
        {"PCH,PCH=,=BRN, PCH=BRN,pch=BRN", {}, ""},
        {"",
         {{"PCH", "4095"}, {"PCH", "010"}, {"PCH", "0x10"}, {"PCH", ""}, {"PCH", "4294967295"}},
         " (0xfff) (0xa) (0x0) (0x0) (0xffffffff)"},
    };
    for (const auto& c : cases) {
        SystemMetadata system;
        system.platformSpecifiers = c.specifiers;
        EXPECT_EQ(c.text, system.getFormattedPCHDeviceName(c.platform)) << c.platform;
    }
}

TEST(SystemReportsTest, EveryDeviceTokenAddsAName)
{
    EXPECT_EQ((std::list<std::string>{"Hatterin X", "Unsupported", "Gilduin"}),
              pciNames("PCI=HTNX,PCH=BRN,PCI=no,PCI=HTN=IVA,PCI,PMT=IVA,,PCI=GLD"));
    EXPECT_EQ(std::list<std::string>{}, pciNames(""));

    std::list<std::string> names = {"first"};
    SystemMetadata().getFormattedPMTDeviceNames("PCI=HTN,PMT=GLDT", names);
    EXPECT_EQ((std::list<std::string>{"first", "Gilduin telemetry"}), names);

    Device::getDeviceMap()["mine"] = "My card";
    EXPECT_EQ((std::list<std::string>{"My card"}), pciNames("PCI=mine"));
    Device::getDeviceMap().erase("mine");
}

}    // namespace

#include "config/Specifier.h"

#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <string>

using namespace pwr;
using test::LogCapture;

namespace {

TEST(SpecifierTest, FmsMatchesPartiallyWhereOneSideHasNoStepping)
{
    const LogCapture log;
    const struct {
        int stepping;
        const char* system;
        int match;
    } cases[] = {
        {9, "6.142.9", 2},  {9, "6.142", 1},   {9, "6.142.0", 1}, {9, "6.142.3", 0}, {0, "6.142.3", 1},
        {0, "6.142", 2},    {0, "6.142.0", 2}, {9, "6.141.9", 0}, {9, "7.142.9", 0}, {9, "0x6.0x8e.9", 2},
        {9, "06.142.9", 2}, {9, "6", 0},       {9, "6.142.x", 0}, {9, "", 0},        {9, "262.398.265", 2},
    };
    for (const auto& c : cases) {
        const FMSSpecifier specifier(6, 142, static_cast<std::uint8_t>(c.stepping));
        EXPECT_EQ(c.match, specifier.is_match("FMS", c.system)) << c.stepping << ' ' << c.system;
        EXPECT_EQ(0, specifier.is_match("fms", c.system));
    }
}

TEST(SpecifierTest, AnFmsValueIsTwoOrThreeNumbers)
{
    const LogCapture log;
    const struct {
        const char* text;
        int result;
        int family, model, stepping;
    } cases[] = {
        {"6.142.9", 0, 6, 142, 9}, {"6.158", 0, 6, 158, 0}, {"6.158.", 0, 6, 158, 0}, {"010.1", 0, 16, 1, 0},
        {"6.1.9.7", 0, 6, 1, 9},   {"6.-1", 0, 6, 255, 0},  {"6", -1, 0, 0, 0},       {".1", -1, 0, 0, 0},
        {"6.", -1, 0, 0, 0},       {"6..9", -1, 0, 0, 0},   {" 6.1", -1, 0, 0, 0},    {"6.1.9 ", -1, 0, 0, 0},
    };
    for (const auto& c : cases) {
        std::uint8_t family = 77;
        std::uint8_t model = 77;
        std::uint8_t stepping = 77;
        EXPECT_EQ(c.result, FMSSpecifier::extract_fms_i(family, model, stepping, c.text)) << c.text;
        if (c.result != 0) continue;
        EXPECT_EQ(c.family, family) << c.text;
        EXPECT_EQ(c.model, model) << c.text;
        EXPECT_EQ(c.stepping, stepping) << c.text;
    }
}

TEST(SpecifierTest, ARangeHasBothItsBounds)
{
    LogCapture log;
    const RangeSpecifier range("CORES", 2, 8);
    const struct {
        const char* value;
        int match;
    } cases[] = {{"1", 0}, {"2", 2}, {"8", 2}, {"9", 0}, {"0x8", 2}, {"-1", 0}, {"99999999999", 0}};
    for (const auto& c : cases)
        EXPECT_EQ(c.match, range.is_match("CORES", c.value)) << c.value;
    EXPECT_EQ("", log.errors());
    EXPECT_EQ(0, range.is_match("CORES", "four"));
    EXPECT_EQ("1ERROR: ERROR: range specifier MUST be a number!\n", log.errors());
    EXPECT_EQ(0, RangeSpecifier("CORES", 8, 2).is_match_i("5"));
}

// The numbers are read as scanf reads "%x", on every system the same.
TEST(SpecifierTest, PciAndPmtNumbersAreReadLikeScanfDoes)
{
    const struct {
        const char* text;
        bool isRead;
        std::uint32_t vendor, device;
    } cases[] = {
        {"VENDOR=0x1234,DEVICE=0x5678", true, 0x1234, 0x5678},
        {"VENDOR=0x1234,DEVICE=0x5678 rest", true, 0x1234, 0x5678},
        {"VENDOR=0xaB,DEVICE=0x0xCd", true, 0xab, 0xcd},
        {"VENDOR=0x \t1,DEVICE=0x+2", true, 1, 2},
        {"VENDOR=0x0,DEVICE=0x-1", true, 0, 0xffffffff},
        {"VENDOR=0x123456789abcdef01,DEVICE=0xffffffff", true, 0xffffffff, 0xffffffff},
        {" VENDOR=0x1,DEVICE=0x2", false, 0, 0},
        {"VENDOR=1,DEVICE=2", false, 0, 0},
        {"VENDOR=0x1 ,DEVICE=0x2", false, 0, 0},
        {"VENDOR=0x1,DEVICE=0x", false, 0, 0},
        {"VENDOR=0x1,DEVICE=0xg", false, 0, 0},
        {"VENDOR=0x1,DEVICE=0x- 1", false, 0, 0},
        {"DEVICE=0x1,VENDOR=0x2", false, 0, 0},
        {"", false, 0, 0},
    };
    for (const auto& c : cases) {
        std::uint32_t vendor = 0;
        std::uint32_t device = 0;
        ASSERT_EQ(c.isRead, PCISpecifier::parse(c.text, vendor, device)) << c.text;
        if (!c.isRead) continue;
        EXPECT_EQ(c.vendor, vendor) << c.text;
        EXPECT_EQ(c.device, device) << c.text;
    }
    std::uint32_t guid = 0;
    EXPECT_TRUE(PMTSpecifier::parse("GUID=0xDEADbeef", guid));
    EXPECT_EQ(0xdeadbeefu, guid);
    EXPECT_FALSE(PMTSpecifier::parse("GUID=DEAD", guid));
}

TEST(SpecifierTest, OthersMatchExactlyOrNotAtAll)
{
    LogCapture log;
    const PCISpecifier pci(0x1234, 0x5678);
    EXPECT_EQ(2, pci.is_match("PCI", "VENDOR=0x1234,DEVICE=0x5678"));
    EXPECT_EQ(0, pci.is_match("PCI", "VENDOR=0x1235,DEVICE=0x5678"));
    EXPECT_EQ(0, pci.is_match("PCI", "VENDOR=0x1234,DEVICE=0x5679"));
    EXPECT_EQ(0, pci.is_match("PCI", "1234:5678"));
    EXPECT_EQ(2, PMTSpecifier(0x12).is_match("PMT", "GUID=0x12"));
    EXPECT_EQ(0, PMTSpecifier(0x12).is_match("PMT", "GUID=0x13"));
    const ValueSpecifier value("NAME", "Some text ");
    EXPECT_EQ(2, value.is_match("NAME", "Some text "));
    EXPECT_EQ(0, value.is_match("NAME", "Some text"));
    EXPECT_EQ("", log.errors());
    EXPECT_TRUE(log.contains("INFO: Specifier::is_match(): m_name:PMT, name:PMT\n"));
    EXPECT_TRUE(log.contains("INFO: ValueSpecifier::is_match_i:m_value:Some text , str:Some text\n"));
}

TEST(SpecifierTest, PrintsItsNameAndItsNumbers)
{
    EXPECT_EQ("NAME=text", ValueSpecifier("NAME", "text").toString());
    EXPECT_EQ("CORES=2,4294967295", RangeSpecifier("CORES", 2, 0xffffffff).toString());
    EXPECT_EQ("FMS=6.142.9", FMSSpecifier(6, 142, 9).toString());
    EXPECT_EQ("FMS=6.142", FMSSpecifier(6, 142, 0).toString());
    EXPECT_EQ("PCI=4660,22136", PCISpecifier(0x1234, 0x5678).toString());
    EXPECT_EQ("PMT=0xdeadbeef", PMTSpecifier(0xDEADBEEF).toString());
}

}    // namespace

#include "record/FieldDecoding.h"

#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace pwr;

namespace {

class FieldDecodingTest : public ::testing::Test {
protected:
    test::LogCapture m_log{2};
};

constexpr char EXPECTED_FORM[] = " is invalid. Format expected as UX.Y or SX.Y";

TEST_F(FieldDecodingTest, APciLocationIsTakenApart)
{
    _qv_pmt_pci_location location{0xE103};
    EXPECT_EQ("3:1:7", getFormatedPCIBDF(location));
    EXPECT_EQ(3, location.fields.bus);
    location.fields.device = 31;
    EXPECT_EQ("3:31:7", getFormatedPCIBDF(location));
    EXPECT_EQ("255:31:7", getFormatedPCIBDF({0xFFFF}));
}

TEST_F(FieldDecodingTest, NamesAreCutFromTagsAndValues)
{
    const struct {
        std::string tag, name;
    } tags[] = {
        {"MSG_POWER_X", "POWER"}, {"__A__B", "B"}, {"POWER", ""}, {"", ""}, {{"A_B\0C_D", 7}, "B"}, {{"A\0_B", 4}, ""},
    };
    for (const auto& c : tags)
        EXPECT_EQ(c.name, getCounterNameFromMsgTag(c.tag)) << c.tag;

    const struct {
        std::string text, end, start, name;
    } values[] = {
        {"id<power>rest>", ">", "<", "<power"},
        {"a>b<c", ">", "<", ""},
        {"a<b", ">", "<", ""},
        {"a>", ">", "<", ""},
        {"x--y-z", "-", "--", "-"},
        {"abc", "", "", "a"},
        {"", "", "", ""},
        {"#a#b", "#", "#", "#a"},
    };
    for (const auto& c : values)
        EXPECT_EQ(c.name, getCounterNameFromInitValue(c.text, c.end, c.start)) << c.text;

    const struct {
        std::string text, name;
    } ips[] = {
        {"a:disk-IP-IP:c", "disk"},  {"a:-IP:c", ""}, {"a:disk:c", ""}, {"a:disk-IP", ""}, {"a:disk-IP:c:d", ""},
        {"::a;:disk-IP;c:", "disk"}, {"", ""},
    };
    for (const auto& c : ips)
        EXPECT_EQ(c.name, getIPNameFromInitValue(c.text, ":;", "IP")) << c.text;
}

TEST_F(FieldDecodingTest, AMaskIsTwoNumbers)
{
    const struct {
        std::string mask;
        bool isValid;
        int msb, lsb;
    } cases[] = {
        {"31:16", true, 31, 16},     {"0x1F:0X10", true, 31, 16}, {"010:0x1f", true, 10, 31}, {"31", false, 0, 0},
        {"31:16:8", false, 0, 0},    {"::31::16:", true, 31, 16}, {"12abc:7", false, 12, 7},  {"", false, 0, 0},
        {"257:0x1FF", true, 1, 255}, {" 5:+6", false, 5, 6},      {"-1:1.5", true, 255, 1},   {"31-16", false, 0, 0},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.isValid, isMaskValid(c.mask, ":")) << c.mask;
        EXPECT_EQ(c.msb, retrieveMsbFromMask(c.mask)) << c.mask;
        EXPECT_EQ(c.lsb, retrieveLsbFromMask(c.mask)) << c.mask;
    }
    EXPECT_TRUE(isMaskValid("31-16", "-:"));
    EXPECT_EQ("", m_log.debug());
}

TEST_F(FieldDecodingTest, ANumberThatCantBeReadIsZeroAndTold)
{
    for (const std::string number : {"x", "0x", "0xg", "4294967296", "0x100000000", "-"}) {
        m_log.clear();
        EXPECT_EQ(0, retrieveMsbFromMask(number + ":8"));
        EXPECT_EQ("2WARNING: Failed to extract numeric value of " + number + "\n", m_log.debug());
    }
    m_log.clear();
    m_log.environment().setVerbosity(1);
    EXPECT_EQ(0, retrieveLsbFromMask("8:x"));
    EXPECT_EQ("", m_log.debug());
    EXPECT_EQ("Failed to extract numeric value of x\n", m_log.discarded());
}

TEST_F(FieldDecodingTest, AFieldIsCutOutOfAValue)
{
    const unsigned long long all = ~0ULL;
    const struct {
        unsigned long long value;
        unsigned char msb, lsb;
        unsigned long long field;
    } cases[] = {
        {0xABCD, 15, 8, 0xAB},  {all - 5, 63, 0, all - 5}, {all, 63, 63, 1},
        {all, 62, 0, all >> 1}, {all, 31, 0, 0xFFFFFFFF},  {0x8000000000000000, 63, 60, 8},
        {0xABCD, 0, 0, 1},      {all, 5, 7, all >> 7},    // a width of -1 counts as 63 bits
        {all, 70, 64, 0x7F},                              // a shift of 64 counts as 0
    };
    for (const auto& c : cases)
        EXPECT_EQ(c.field, extractBitRangeValue(c.value, c.msb, c.lsb)) << +c.msb << ":" << +c.lsb;
}

TEST_F(FieldDecodingTest, AFormatIsReadOrTheDefaultWithAnError)
{
    const struct {
        std::string text;
        char type;
        int integerBits, fractionBits;
        bool isGood;
    } cases[] = {
        {"U8.8", 'U', 8, 8, true},     {"S1.15", 'S', 1, 15, true},    {"U0x10.010", 'U', 16, 10, true},
        {"U256.257", 'U', 0, 1, true}, {"..U1..2..", 'U', 1, 2, true}, {"Q8.8", 'U', 0, 0, false},
        {"U8", 'U', 0, 0, false},      {"U8.8.8", 'U', 0, 0, false},   {"u8.8", 'U', 0, 0, false},
        {"", 'U', 0, 0, false},        {".", 'U', 0, 0, false},
    };
    for (const auto& c : cases) {
        m_log.clear();
        const qv_qformat format = retrieveQFormat(c.text);
        EXPECT_EQ(c.type, format.type) << c.text;
        EXPECT_EQ(c.integerBits, format.integerBits) << c.text;
        EXPECT_EQ(c.fractionBits, format.fractionBits) << c.text;
        EXPECT_EQ(c.isGood ? "" : "ERROR: Invalid DATA-FORMAT entry. " + c.text + EXPECTED_FORM, m_log.errors());
    }
    EXPECT_EQ('S', retrieveQFormat("S.5").type);
    EXPECT_EQ("2WARNING: Failed to extract numeric value of \n", m_log.debug());
}

TEST_F(FieldDecodingTest, OnlyUnsignedFormatsAreScaled)
{
    EXPECT_EQ(1.0, convertToFloatPoint(256, {'U', 8, 8}));
    EXPECT_EQ(256.0, convertToFloatPoint(256, {'U', 8, 0}));
    EXPECT_EQ(9223372036854775808.0, convertToFloatPoint(1ULL << 63, {}));
    for (int bits = 0; bits <= 255; ++bits) {
        const double expected = static_cast<double>(~0ULL / 3) / std::pow(2.0, bits);
        EXPECT_EQ(expected, convertToFloatPoint(~0ULL / 3, {'U', 0, static_cast<std::uint8_t>(bits)})) << bits;
    }
    EXPECT_EQ("", m_log.errors());

    EXPECT_EQ(256.0, convertToFloatPoint(256, {'S', 1, 15}));
    EXPECT_EQ("ERROR: Signed Qformat is currently not supported", m_log.errors());
    m_log.clear();
    EXPECT_EQ(256.0, convertToFloatPoint(256, {'Q', 200, 8}));
    EXPECT_EQ(std::string("ERROR: Invalid DATA-FORMAT entry. Q200.8") + EXPECTED_FORM, m_log.errors());
    m_log.clear();
    m_log.environment().setVerbosity(0);
    EXPECT_EQ(256.0, convertToFloatPoint(256, {'S', 1, 15}));
    EXPECT_EQ("", m_log.errors());
}

}    // namespace

#include "runtime/OsInfo.h"

#include "plugins/QuorvaneHost.h"

#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>
#include <string>

namespace {

TEST(OsInfoTextsTest, NumbersKeepTheDigitsThatAreAskedFor)
{
    EXPECT_EQ("1.50", doubleToString(1.5, 2));
    EXPECT_EQ("2", doubleToString(2.0, 0));
    EXPECT_EQ("-0.125000", doubleToString(-0.125, 6));
    EXPECT_EQ("123456789012345680.0", doubleToString(123456789012345680.0, 1));
    EXPECT_EQ("0." + std::string(3000000, '0'), doubleToString(0.0, 3000000)) << "more than a stack holds";
    EXPECT_EQ(doubleToString(INFINITY, 1), doubleToString(INFINITY, 2000));
}

TEST(OsInfoTextsTest, BytesWidenBySign)
{
    EXPECT_EQ(L"", stringToWstring(""));
    EXPECT_EQ(L"plain", stringToWstring("plain"));
    const std::wstring wide = stringToWstring(std::string("\xE9\x80\x7F\0", 4));
    ASSERT_EQ(4U, wide.size());
    const unsigned long units[] = {0xFFE9, 0xFF80, 0x7F, 0};
    for (std::size_t i = 0; i < wide.size(); ++i)
        EXPECT_EQ(units[i], static_cast<unsigned long>(wide[i])) << i;
}

TEST(OsInfoTextsTest, WideTextBecomesUtf8)
{
    const struct {
        std::wstring wide;
        std::string narrow;
    } cases[] = {
        {L"", ""},
        {L"plain", "plain"},
        {std::wstring(1, L'\0'), std::string(1, '\0')},
        {L"\u007F\u0080\u07FF\u0800", "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80"},
        {L"caf\u00E9", "caf\xC3\xA9"},
        {L"\uD7FF\uE000\uFFFF", "\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(c.narrow, wStringToString(c.wide));
    if (sizeof(wchar_t) > 2) {
        EXPECT_EQ("\xF0\x9F\x98\x80", wStringToString(std::wstring(1, static_cast<wchar_t>(0x1F600))));
        EXPECT_EQ("\xF4\x8F\xBF\xBF", wStringToString(std::wstring(1, static_cast<wchar_t>(0x10FFFF))));
    }
}

TEST(OsInfoTextsTest, UnitsThatAreNoCharacterThrow)
{
    std::vector<std::wstring> bad = {L"good", L"good", L"good"};
    bad[0] += static_cast<wchar_t>(0xD800);
    bad[1] += static_cast<wchar_t>(0xDFFF);
    bad[2] += static_cast<wchar_t>(0xD83D);
    bad[2] += static_cast<wchar_t>(0xDE00);
    if (sizeof(wchar_t) > 2) {
        bad.emplace_back(1, static_cast<wchar_t>(0x110000));
        bad.emplace_back(1, static_cast<wchar_t>(-1));
    }
    for (const std::wstring& text : bad) {
        try {
            wStringToString(text);
            ADD_FAILURE() << "nothing thrown";
        } catch (const std::range_error& error) {
            EXPECT_STREQ("bad conversion", error.what());
        }
    }
}

TEST(OsInfoTextsTest, ErrorCodesHaveWordsAndUnknownOnesNone)
{
    for (const unsigned long code : {0UL, 2UL, 3UL, 5UL, 8UL, 32UL, 87UL, 112UL, 122UL, 126UL, 183UL})
        EXPECT_FALSE(formatErrorMessage(code).empty()) << code;
    EXPECT_NE(formatErrorMessage(5), formatErrorMessage(112));
    EXPECT_EQ("", formatErrorMessage(0x2FFFFFFFUL));
    EXPECT_EQ("", formatErrorMessage(0xFFFFFFFEUL));
}

// The machine's own registry, where there is one, refuses what a host stores elsewhere.
TEST(OsInfoTextsTest, HostFillsTheRegistryOfASystemWithoutOne)
{
    const std::string key = "SOFTWARE\\QuorvaneTest";
    unsigned long long number = 1;
    EXPECT_FALSE(Registry::RegReadDword(key, "Revision", number));
    EXPECT_EQ(1U, number);
    if (!QuorvaneHost::setRegistryNumber(key, "Revision", 0xFFFFFFFF)) {
        const std::string processor = "HARDWARE\\DESCRIPTION\\System\\CentralProcessor\\0";
        EXPECT_TRUE(Registry::RegReadDword(processor, "~MHz", number));
        EXPECT_LT(1U, number);
        EXPECT_FALSE(Registry::RegReadDword(processor, "VendorIdentifier", number)) << "a longer text";
        EXPECT_FALSE(Registry::RegReadDword(key, "Revision", number)) << "not stored";
        return;
    }
    EXPECT_TRUE(Registry::RegReadDword("software\\quorvanetest", "REVISION", number));
    EXPECT_EQ(0xFFFFFFFFULL, number) << "without sign";
    EXPECT_TRUE(QuorvaneHost::setRegistryNumber(key, "revision", 5));
    EXPECT_TRUE(Registry::RegReadDword(key, "Revision", number));
    EXPECT_EQ(5U, number);
    EXPECT_FALSE(Registry::RegReadDword(key, "Other", number));
    EXPECT_FALSE(Registry::RegReadDword("SOFTWARE", "Revision", number));
    EXPECT_EQ(5U, number);
}

TEST(OsInfoTextsTest, DisplaysOfThisMachineAreNamedAndActive)
{
    auto& active = Display::GetActiveDisplayList();
    for (const auto& [adapter, monitor] : active) {
        EXPECT_EQ(424U, adapter.cb);
        EXPECT_STRNE("", adapter.DeviceName);
        EXPECT_NE(0U, monitor.StateFlags);
    }
    active.clear();
}

}    // namespace

#include "values/Formatter.h"

#include "support/TestSession.h"
#include "values/Data.h"
#include "values/Description.h"
#include "values/Handles.h"
#include "values/Process.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <limits>
#include <locale>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <vector>

using namespace pwr;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan_ = std::numeric_limits<double>::quiet_NaN();

std::string render(const Formatter& formatter, const Data& value)
{
    std::string text = "old";
    EXPECT_EQ(0, formatter.format(text, value));
    return text;
}

std::string streamed(double value, int precision)
{
    std::ostringstream stream;
    stream << std::fixed;
    stream.precision(precision);
    stream << value;
    return stream.str();
}

std::string streamed(long long value, bool hex)
{
    std::ostringstream stream;
    if (hex) stream << std::showbase << std::hex;
    stream << value;
    return stream.str();
}

// Groups of three digits and a comma for the point, as in many languages.
class Grouped : public std::numpunct<char> {
protected:
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

class GlobalLocale {
public:
    explicit GlobalLocale(const std::locale& locale) : m_previous(std::locale::global(locale)) {}
    ~GlobalLocale() { std::locale::global(m_previous); }
    GlobalLocale(const GlobalLocale&) = delete;
    GlobalLocale& operator=(const GlobalLocale&) = delete;

private:
    std::locale m_previous;
};

void expectAsStreamed(const std::vector<double>& values)
{
    for (const double value : values) {
        for (const int precision : {-1, 0, 1, 2, 3, 6, 17, 64, 65, 200}) {
            ASSERT_EQ(streamed(value, precision), render(RealFormatter(0, precision), Data(value))) << precision;
        }
    }
    for (const long long value : {0LL, 1LL, -1LL, 255LL, -1234567LL, std::numeric_limits<long long>::min()}) {
        for (const bool hex : {false, true}) {
            ASSERT_EQ(streamed(value, hex), render(IntFormatter(0, hex), Data(value)));
        }
    }
}

}    // namespace

TEST(FormatterTest, NumbersByType)
{
    const long long minusOne = -1;
    const struct {
        std::shared_ptr<Formatter> formatter;
        Data value;
        const char* text;
    } cases[] = {
        {std::make_shared<IntFormatter>(), Data(-12), "-12"},
        {std::make_shared<IntFormatter>("ms", 6, false), Data(12), "  12ms"},
        {std::make_shared<IntFormatter>("ms", 3, false), Data(12), "12ms"},
        {std::make_shared<IntFormatter>(-5), Data(12), "12"},
        {std::make_shared<IntFormatter>(0, true), Data(255), "0xff"},
        {std::make_shared<IntFormatter>(0, true), Data(0), "0"},
        {std::make_shared<IntFormatter>(0, true), Data(minusOne), "0xffffffffffffffff"},
        {std::make_shared<IntFormatter>(), Data(1, 5), "1 -- 5"},
        {std::make_shared<IntFormatter>("s", 12, true), Data(0, 16), "  0 -- 0x10s"},
        {std::make_shared<UIntFormatter>(), Data(~0ULL), "18446744073709551615"},
        {std::make_shared<UIntFormatter>("B", 8, true), Data(4096U), " 0x1000B"},
        {std::make_shared<UIntFormatter>(8), Data(1U, 5U), "  1 -- 5"},
        {std::make_shared<RealFormatter>(), Data(3.14159), "3.1"},
        {std::make_shared<RealFormatter>(), Data(0.25), "0.2"},
        {std::make_shared<RealFormatter>(0, 0), Data(2.5), "2"},
        {std::make_shared<RealFormatter>("%", 8, 2), Data(99.999), " 100.00%"},
        {std::make_shared<RealFormatter>(), Data(-0.04), "-0.0"},
        {std::make_shared<RealFormatter>(0, 2), Data(1.0, 2.345), "1.00 -- 2.35"},
        {std::make_shared<StringFormatter>(5), Data("abc"), "  abc"},
        {std::make_shared<StringFormatter>(2), Data("abc"), "abc"},
    };
    for (const auto& c : cases) {
        const std::unique_ptr<Formatter> clone(c.formatter->clone());
        EXPECT_EQ(c.text, render(*c.formatter, c.value));
        EXPECT_EQ(c.text, render(*clone, c.value));
    }
}

TEST(FormatterTest, WhatCannotBeRenderedLeavesAnEmptyText)
{
    test::LogCapture log(2);
    std::string text = "old";
    EXPECT_EQ(1, IntFormatter("ms", 6, false).format(text, Data(5U)));
    EXPECT_EQ("", text);
    EXPECT_EQ("WARNING: Attempt to retrieve a signed value from a non-signed type\n", log.debug());
    log.clear();
    for (const DataType type : {DataType::INT, DataType::UINT, DataType::REAL, DataType::INT_RANGE,
                                DataType::UINT_RANGE, DataType::REAL_RANGE, DataType::STRING}) {
        text = "old";
        EXPECT_EQ(1, Data(type).toFormattedString(text));
        EXPECT_EQ("", text);
    }
    EXPECT_EQ("", log.debug());
    EXPECT_EQ(1, Formatter::formatIntRange(IntFormatter(), text, Data(1)));
    EXPECT_EQ("WARNING: Attempt to retrieve a non int range value from a int range type\n", log.debug());

    log.clear();
    EXPECT_EQ(1, Data().toFormattedString(text));
    EXPECT_EQ("INVALID", text);
    EXPECT_EQ("WARNING: Cannot use data object with type pwr::DataType::NONE\n"
              "WARNING: Data of type pwr::DataType::NONE can't be formatted\n",
              log.debug());
}

TEST(FormatterTest, NumbersReadAsAStreamWritesThem)
{
    std::vector<double> values = {0.0,  -0.0,   0.05,     0.15,      0.25,   0.35,     2.5,       1e15, 1e16,
                                  1e23, 1e-300, 1.79e308, -1.79e308, 5e-324, infinity, -infinity, nan_, -nan_};
    std::mt19937_64 random(20240601);
    for (int i = 0; i < 500; ++i) {
        const std::uint64_t bits = random();
        double anyDouble = 0;
        std::memcpy(&anyDouble, &bits, sizeof anyDouble);
        values.push_back(anyDouble);
        values.push_back(static_cast<double>(static_cast<std::int64_t>(bits)) * 1e-14);    // the range of measurements
        values.push_back(static_cast<double>(bits % 2000000) / 1000 + 0.0005);             // ties when rounded
    }
    expectAsStreamed(values);
}

TEST(FormatterTest, GlobalLocaleShowsInNumbers)
{
    const GlobalLocale grouped(std::locale(std::locale::classic(), new Grouped));
    EXPECT_EQ("1.234.567", render(IntFormatter(), Data(1234567)));
    EXPECT_EQ("1.234.567,9", render(RealFormatter(), Data(1234567.89)));
    EXPECT_EQ("1.000 -- 2.000", render(UIntFormatter(), Data(1000U, 2000U)));
    expectAsStreamed({0.5, -1234567.891, 1e20, infinity});
}

TEST(FormatterTest, HandlesByKind)
{
    test::TestSession session;
    const struct {
        const DataHandle* handle;
        const char* text;
    } cases[] = {
        {Process::get(1234), "  1234"},
        {Thread::get(-7), "    -7"},
        {NameValuePair::create(3, "the value", "INFO"), "3 - INFO"},
        {Field::create(Description("C0", "")), "    C0"},
    };
    for (const auto& c : cases) {
        ASSERT_NE(nullptr, c.handle);
        const Data value(*c.handle);
        const DataHandle* found = nullptr;
        EXPECT_EQ(0, value.toHandle(found));
        EXPECT_EQ(c.handle, found);
        EXPECT_EQ(c.text, render(HandleFormatter(6), value));
    }
    EXPECT_FALSE(Data(*cases[0].handle) < Data(DataType::HANDLE));
}

TEST(FormatterTest, HandleThatIsGoneStillComparesAndKeepsTheText)
{
    Data first(DataType::HANDLE);
    Data second(DataType::HANDLE);
    {
        const test::TestSession session;
        first.setValue(*Field::create(Description("a", "")));
        second.setValue(*Field::create(Description("b", "")));
    }
    test::LogCapture log(2);
    EXPECT_TRUE(first < second);
    EXPECT_TRUE(first != second);
    EXPECT_EQ("", log.debug());
    std::string text = "old";
    EXPECT_EQ(1, first.toFormattedString(text));
    EXPECT_EQ(1, Data(DataType::HANDLE).toFormattedString(text));
    EXPECT_EQ("old", text);
}

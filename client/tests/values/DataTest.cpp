#include "values/Data.h"

#include "support/LogCapture.h"
#include "values/Formatter.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

using namespace pwr;

namespace {

using Int = long long;
using UInt = unsigned long long;
using IntPair = std::pair<Int, Int>;
using UIntPair = std::pair<UInt, UInt>;
using RealPair = std::pair<double, double>;

constexpr Int intMax = std::numeric_limits<Int>::max();
constexpr Int intMin = std::numeric_limits<Int>::min();
constexpr UInt uintMax = std::numeric_limits<UInt>::max();
constexpr double nan_ = std::numeric_limits<double>::quiet_NaN();

// Made by a static initialiser: values work before main.
const Data s_early(7LL);

const DataType allTypes[] = {DataType::NONE,       DataType::INT,       DataType::UINT,
                             DataType::REAL,       DataType::INT_RANGE, DataType::UINT_RANGE,
                             DataType::REAL_RANGE, DataType::HANDLE,    DataType::STRING};

Data invalid(Data value)
{
    value.invalidate();
    return value;
}

Int intOf(const Data& value)
{
    Int result = 0;
    EXPECT_EQ(0, value.toInt(result));
    return result;
}

UInt uintOf(const Data& value)
{
    UInt result = 0;
    EXPECT_EQ(0, value.toUInt(result));
    return result;
}

double realOf(const Data& value)
{
    double result = 0;
    EXPECT_EQ(0, value.toReal(result));
    return result;
}

std::string textOf(const Data& value)
{
    std::string text;
    EXPECT_EQ(0, value.toFormattedString(text));
    return text;
}

class DataTest : public testing::Test {
protected:
    test::LogCapture m_log{2};
};

}    // namespace

TEST_F(DataTest, EveryCxxNumberFindsItsKind)
{
    EXPECT_EQ(7, intOf(s_early));
    EXPECT_EQ(-3, intOf(Data(-3)));
    EXPECT_EQ(3u, uintOf(Data(3UL)));
    EXPECT_EQ(uintMax, uintOf(Data(std::uint64_t{uintMax})));
    EXPECT_EQ(0.5, realOf(Data(0.5F)));
    EXPECT_EQ(0.5, realOf(Data(0.5L)));
    EXPECT_EQ(DataType::STRING, Data("x").getType());
    EXPECT_EQ(DataType::INT_RANGE, Data(1, 5).getType());
    EXPECT_EQ(DataType::UINT_RANGE, Data(1U, 5U).getType());
    EXPECT_EQ(DataType::REAL_RANGE, Data(1.0, 5.0).getType());
    for (const DataType type : allTypes) {
        const bool isNumeric = type >= DataType::INT && type <= DataType::REAL_RANGE;
        const Data fresh(type);
        EXPECT_EQ(isNumeric, fresh.isNumeric());
        EXPECT_FALSE(fresh.isSet());
        EXPECT_FALSE(fresh.isValid());
    }
    EXPECT_EQ("", m_log.debug());
}

TEST_F(DataTest, ScalarsAndTextPromoteNoneAndLeaveSetAloneOnFailure)
{
    Data promoted;
    EXPECT_EQ(0, promoted.setValue(5LL));
    EXPECT_EQ(5, intOf(promoted));
    EXPECT_EQ("", m_log.debug());

    Data fresh(DataType::REAL);
    EXPECT_EQ(1, fresh.setValue(5LL));
    EXPECT_EQ("WARNING: Invalid attempt to initialize data of the wrong type (3 != 1)\n", m_log.debug());
    EXPECT_FALSE(fresh.isSet());
    EXPECT_FALSE(fresh.isValid());

    Data used(2.5);
    EXPECT_EQ(1, used.setValue(std::string("text")));
    EXPECT_TRUE(used.isSet());
    EXPECT_FALSE(used.isValid());
    EXPECT_EQ(0, used.setValue(3.5));
    EXPECT_EQ(3.5, realOf(used));
}

TEST_F(DataTest, PairsDoNotPromoteNoneAndRaiseSetEvenOnFailure)
{
    Data none;
    EXPECT_EQ(1, none.setValue(IntPair(1, 2)));
    EXPECT_EQ(DataType::NONE, none.getType());
    EXPECT_TRUE(none.isSet());
    EXPECT_FALSE(none.isValid());
    EXPECT_EQ("WARNING: Invalid attempt to initialize data of the wrong type (0 != 4)\n", m_log.debug());

    Data range(DataType::UINT_RANGE);
    EXPECT_EQ(1, range.setValue(RealPair(1, 2)));
    EXPECT_TRUE(range.isSet());
    EXPECT_EQ(0, range.setValue(UIntPair(1, 2)));
    UIntPair read;
    EXPECT_EQ(0, range.toUIntRange(read));
    EXPECT_EQ(UIntPair(1, 2), read);
}

TEST_F(DataTest, WholeValuesAreTakenOverBetweenEqualTypesOnly)
{
    Data source(12LL);
    source.setCustomFormatter(IntFormatter("ms", 6, false));
    Data target(DataType::INT);
    EXPECT_EQ(0, target.setValue(source));
    EXPECT_EQ("  12ms", textOf(target));
    EXPECT_EQ(0, target.setValue(Data(DataType::INT)));
    EXPECT_FALSE(target.isSet());
    EXPECT_EQ("", m_log.debug());

    Data none;
    EXPECT_EQ(1, none.setValue(source));
    EXPECT_FALSE(none.isSet());
    EXPECT_EQ("WARNING: Invalid attempt to initialize data of the wrong type (0 != 1)\n", m_log.debug());
    EXPECT_EQ(0, none.setValue(Data()));
}

TEST_F(DataTest, ReadingAnotherTypeWarnsAndReadingTheUnusableIsSilent)
{
    const DataHandle* handle = nullptr;
    std::string text = "kept";
    Int i = -1;
    UInt u = 9;
    double r = 0.5;
    IntPair ints;
    UIntPair uints;
    RealPair reals;
    const auto readAll = [&](const Data& value) {
        return value.toInt(i) + value.toUInt(u) + value.toReal(r) + value.toIntRange(ints) + value.toUIntRange(uints) +
               value.toRealRange(reals) + value.toHandle(handle) + value.toString(text);
    };
    EXPECT_EQ(8, readAll(Data()));
    EXPECT_EQ("WARNING: Attempt to retrieve a signed value from a non-signed type\n"
              "WARNING: Attempt to retrieve an unsigned value from a non-unsigned type\n"
              "WARNING: Attempt to retrieve a real value from a non-real type\n"
              "WARNING: Attempt to retrieve a non int range value from a int range type\n"
              "WARNING: Attempt to retrieve a non unsigned range value from an unsigned range type\n"
              "WARNING: Attempt to retrieve a not double range value from a double range type\n"
              "WARNING: Attempt to retrieve handle value from a non-unsigned type\n"
              "WARNING: Attempt to retrieve a string from a non-string type\n",
              m_log.debug());
    for (const DataType type : allTypes) {
        m_log.clear();
        EXPECT_EQ(8, readAll(Data(type)));
        EXPECT_EQ(type == DataType::NONE ? 8u : 7u, m_log.count("WARNING"));
    }
    m_log.clear();
    EXPECT_EQ(1, invalid(Data("text")).toString(text));
    EXPECT_EQ("", m_log.debug());
    EXPECT_EQ("kept", text);
}

TEST_F(DataTest, TypeNumberBeyondTheLastIsKeptAndWarnedAbout)
{
    Data odd(static_cast<DataType>(9));
    EXPECT_EQ("WARNING: Unhandled type 9\n", m_log.debug());
    EXPECT_EQ(static_cast<DataType>(9), odd.getType());
    EXPECT_FALSE(odd.isNumeric());
    EXPECT_EQ(1, odd.initZero());
    EXPECT_EQ(1, odd.addValue(Data(1)));
    EXPECT_EQ(1, odd.addValue(Data(1.0)));
    EXPECT_TRUE(m_log.contains("(9 != 1)\nWARNING: Accumulator must have INT type as input\n"));
    std::string text = "old";
    EXPECT_EQ(1, odd.toFormattedString(text));
    EXPECT_EQ("", text);
    EXPECT_TRUE(odd == Data(odd));
}

TEST_F(DataTest, ComparisonFollowsTypeThenStateThenValue)
{
    // Every value is below all that follow it.
    const std::vector<Data> ascending = {Data(),
                                         Data(DataType::INT),
                                         invalid(Data(9)),
                                         Data(intMin),
                                         Data(-1),
                                         Data(intMax),
                                         Data(DataType::UINT),
                                         Data(0U),
                                         Data(uintMax),
                                         Data(-std::numeric_limits<double>::infinity()),
                                         Data(-1.5),
                                         Data(2.5),
                                         Data(std::numeric_limits<double>::infinity()),
                                         Data(nan_),
                                         Data(-1, 9),
                                         Data(1, 0),
                                         Data(1U, 9U),
                                         Data(uintMax, UInt{0}),
                                         Data(-1.0, 9.0),
                                         Data(0.5, 0.0),
                                         Data(nan_, 0.0),
                                         Data("a"),
                                         Data("ab"),
                                         Data("b"),
                                         Data("\xff")};
    for (std::size_t i = 0; i < ascending.size(); ++i) {
        for (std::size_t j = i + 1; j < ascending.size(); ++j) {
            SCOPED_TRACE(testing::Message() << i << " and " << j);
            EXPECT_TRUE(ascending[i] < ascending[j]);
            EXPECT_FALSE(ascending[i] == ascending[j]);
            EXPECT_TRUE(ascending[i] != ascending[j]);
            EXPECT_FALSE(ascending[i] > ascending[j]);
            EXPECT_TRUE(ascending[i] <= ascending[j]);
            EXPECT_FALSE(ascending[i] >= ascending[j]);
            // A usable left side reads what is unset or invalid on the right as zero, so the way back may differ.
            if (ascending[i].isValid()) {
                EXPECT_FALSE(ascending[j] < ascending[i]);
            }
        }
        EXPECT_FALSE(ascending[i] < ascending[i]);
    }
    EXPECT_FALSE(Data(1, 2) < Data(1, 3) || Data(1, 2) == Data(1, 3));
    EXPECT_FALSE(Data(nan_) == Data(nan_));
    EXPECT_EQ("", m_log.debug());
}

TEST_F(DataTest, UnusableRightSideReadsAsZero)
{
    EXPECT_TRUE(Data(0) == Data(DataType::INT));
    EXPECT_FALSE(Data(DataType::INT) == Data(0));
    EXPECT_TRUE(Data(-1) < Data(DataType::INT));
    EXPECT_FALSE(Data(1) < invalid(Data(7)));
    EXPECT_TRUE(Data(0.0, 0.0) == Data(DataType::REAL_RANGE));
    EXPECT_TRUE(Data("") == Data(DataType::STRING));
    EXPECT_FALSE(Data("a") == Data(DataType::STRING));
    EXPECT_TRUE(invalid(Data(1)) == Data(DataType::INT));
    EXPECT_FALSE(Data(DataType::INT) == invalid(Data(1)));
}

TEST_F(DataTest, SumsByType)
{
    const struct {
        Data target;
        Data operand;
        const char* text;
    } cases[] = {
        {Data(2), Data(3), "5"},
        {Data(intMax), Data(1), "-9223372036854775808"},
        {Data(DataType::INT), Data(DataType::INT), "0"},
        {invalid(Data(2)), Data(3), "3"},
        {Data(2), invalid(Data(3)), "2"},
        {Data(uintMax), Data(2U), "1"},
        {Data(1.5), Data(1.0), "2.5"},
        {Data(1.5), Data(-1), "0.5"},
        {Data(1.5), Data(uintMax), "18446744073709551616.0"},
        {Data(1.5), Data(1.0, 2.0), "4.5"},
        {Data(1, 2), Data(10), "11 -- 12"},
        {Data(1, intMin), Data(-2, -1), "-1 -- 9223372036854775807"},
        {Data(1U, 2U), Data(10U), "11 -- 12"},
        {Data(1U, 2U), Data(10U, 20U), "11 -- 22"},
        {Data(1.0, 2.0), Data(0.5), "1.5 -- 2.5"},
        {Data(1.0, 2.0), Data(-1), "0.0 -- 1.0"},
        {Data(1.0, 2.0), Data(1U), "2.0 -- 3.0"},
        {Data(1.0, 2.0), Data(10.0, 20.0), "11.0 -- 22.0"},
        {Data(1.0, 2.0), Data(-10, 20), "-9.0 -- 22.0"},
        {Data(1.0, 2.0), Data(10U, 20U), "11.0 -- 22.0"},
    };
    for (const auto& c : cases) {
        Data sum = c.target;
        EXPECT_EQ(0, sum.addValue(c.operand));
        EXPECT_EQ(c.text, textOf(sum));
    }
    EXPECT_EQ("", m_log.debug());
}

TEST_F(DataTest, RefusedOperandsLeaveTheTargetAsItWas)
{
    const struct {
        Data target;
        Data operand;
        const char* warning;
    } cases[] = {
        {Data(2), Data(3U), "WARNING: Accumulator must have INT type as input\n"},
        {Data(2U), Data(3), "WARNING: Accumulator must have UINT type as input\n"},
        {Data(2.0), Data(1, 2), "WARNING: Accumulator must have REAL, INT, UINT or REAL_RANGE type as input\n"},
        {Data(1, 2), Data(1U), "WARNING: IntRange accumulate expects INT type\n"},
        {Data(1U, 2U), Data(1), "WARNING: UIntRange accumulate expects UINT type\n"},
        {Data(1.0, 2.0), Data("1"), "WARNING: Accumulator must have REAL, INT, or UINT type as input\n"},
        {Data("a"), Data("b"), "WARNING: Attempt to accumulate on unsupported type\n"},
    };
    for (const auto& c : cases) {
        Data target = c.target;
        m_log.clear();
        EXPECT_EQ(1, target.addValue(c.operand));
        EXPECT_EQ(c.warning, m_log.debug());
        EXPECT_TRUE(target == c.target) << c.warning;
        EXPECT_TRUE(target.isValid());
    }
    m_log.clear();
    EXPECT_EQ(1, Data().addValue(Data(1)) * Data(DataType::HANDLE).addValue(Data(1)));
    EXPECT_EQ(2u, m_log.count("WARNING: Attempt to accumulate on unsupported type\n"));
    m_log.clear();
    EXPECT_EQ(1, Data("2").multiplyValue(2));
    EXPECT_EQ("WARNING: Multiply only supported for numeric types\n", m_log.debug());
}

TEST_F(DataTest, ProductsRoundAwayFromZeroAndSaturate)
{
    const struct {
        Data value;
        double factor;
        Data product;
    } cases[] = {
        {Data(3), 0.5, Data(2)},
        {Data(-3), 0.5, Data(-2)},
        {Data(3), 1e30, Data(intMax)},
        {Data(3), -1e30, Data(intMin)},
        {Data(3), nan_, Data(0)},
        {Data(5U), 0.5, Data(3U)},
        {Data(UInt{1} << 62), 2.0, Data(UInt{1} << 63)},
        {Data(uintMax), 1.0, Data(uintMax)},
        {Data(5U), -1.0, Data(0U)},
        {Data(5U), nan_, Data(0U)},
        {Data(1.5), 0.5, Data(0.75)},
        {Data(3, -3), 0.5, Data(2, -2)},
        {Data(intMax, intMin), 2.0, Data(intMax, intMin)},
        {Data(3U, 4U), 0.5, Data(2U, 2U)},
        {Data(3U, 4U), -1e30, Data(0U, 0U)},
        {Data(1.5, -2.0), 0.5, Data(0.75, -1.0)},
        {Data(DataType::INT), 3.0, Data(0)},
        {invalid(Data(1.0, 2.0)), 3.0, Data(0.0, 0.0)},
    };
    for (const auto& c : cases) {
        Data product = c.value;
        EXPECT_EQ(0, product.multiplyValue(c.factor));
        EXPECT_TRUE(product == c.product) << textOf(product) << " is not " << textOf(c.product);
        EXPECT_TRUE(product.isValid());
    }
}

TEST_F(DataTest, StartValuesOfRunningStatistics)
{
    const struct {
        Data lowest;
        Data highest;
    } cases[] = {
        {Data(intMax), Data(intMin)},
        {Data(uintMax), Data(0U)},
        {Data(1.7976931348623157e+308), Data(2.2250738585072014e-308)},
    };
    for (const auto& c : cases) {
        Data value(c.lowest.getType());
        EXPECT_EQ(0, value.initMin());
        EXPECT_TRUE(value == c.lowest);
        EXPECT_EQ(0, value.initMax());
        EXPECT_TRUE(value == c.highest);
    }
    for (const DataType type : allTypes) {
        Data any(type);
        const bool isScalar = type >= DataType::INT && type <= DataType::REAL;
        EXPECT_EQ(isScalar ? 0 : 1, any.initMin());
        EXPECT_EQ(isScalar ? 0 : 1, any.initMax());
        EXPECT_EQ(isScalar, any.isValid());
        Data zero(type);
        EXPECT_EQ(zero.isNumeric() ? 0 : 1, zero.initZero());
        EXPECT_EQ(zero.isNumeric(), zero.isSet() && zero.isValid());
    }
    EXPECT_EQ("", m_log.debug());
}

TEST_F(DataTest, ConversionToReal)
{
    const struct {
        Data source;
        Data real;
    } cases[] = {
        {Data(-3), Data(-3.0)},
        {Data(uintMax), Data(18446744073709551616.0)},
        {Data(DataType::INT), Data(0.0)},
        {invalid(Data(5U)), Data(0.0)},
        {Data(-1, 5), Data(-1.0, 5.0)},
        {Data(1U, 5U), Data(1.0, 5.0)},
        {Data(DataType::UINT_RANGE), Data(0.0, 0.0)},
        {Data(0.1, 0.2), Data(0.1, 0.2)},
        {invalid(Data(0.5)), invalid(Data(0.5))},
        {Data(DataType::REAL), Data(DataType::REAL)},
    };
    Data titled(-3);
    titled.setCustomFormatter(IntFormatter("x", 0, false));
    EXPECT_EQ("-3.0", textOf(Data::convertToReal(&titled)));
    for (const auto& c : cases) {
        const Data real = Data::convertToReal(&c.source);
        EXPECT_TRUE(real == c.real);
        EXPECT_EQ(c.real.isValid(), real.isValid());
    }
    Data real(3.14159);
    real.setCustomFormatter(RealFormatter("V", 0, 3));
    EXPECT_EQ("3.142V", textOf(Data::convertToReal(&real)));
    EXPECT_EQ("", m_log.debug());

    const Data text("x");
    EXPECT_TRUE(Data::convertToReal(&text) == text);
    EXPECT_EQ("WARNING: Cannot convert data object to real type\n", m_log.debug());
    EXPECT_FALSE(Data::convertToReal(nullptr).isSet());
}

TEST_F(DataTest, FormattersAreClonedWithTheValue)
{
    Data original(12LL);
    {
        const IntFormatter shortLived("ms", 6, false);
        EXPECT_EQ(0, original.setCustomFormatter(shortLived));
        EXPECT_EQ(0, original.setCustomFormatter(shortLived));
    }
    Data copy(original);
    Data assigned("something else");
    assigned = copy;
    copy.setCustomFormatter(IntFormatter(0, true));
    EXPECT_EQ("  12ms", textOf(original));
    EXPECT_EQ("0xc", textOf(copy));
    EXPECT_EQ("  12ms", textOf(assigned));
    const Data& same = assigned;
    assigned = same;
    EXPECT_EQ("  12ms", textOf(assigned));
    assigned = Data(7LL);
    EXPECT_EQ("7", textOf(assigned));

    // A promotion starts afresh.
    Data promoted;
    promoted.setCustomFormatter(StringFormatter(9));
    EXPECT_EQ(0, promoted.setValue("text"));
    EXPECT_EQ("text", textOf(promoted));
}

TEST_F(DataTest, MovedFromValueIsUnsetAndOfItsType)
{
    Data source("a text long enough to be moved and not copied");
    source.setCustomFormatter(StringFormatter(50));
    Data target(std::move(source));
    EXPECT_EQ("     a text long enough to be moved and not copied", textOf(target));
    EXPECT_EQ(DataType::STRING, source.getType());
    EXPECT_FALSE(source.isSet());
    EXPECT_EQ(0, source.setValue("again"));
    EXPECT_EQ("again", textOf(source));

    Data number(3LL);
    number = std::move(target);
    EXPECT_EQ(DataType::STRING, number.getType());
    EXPECT_FALSE(target.isSet());
    EXPECT_EQ(1, target.setValue(3LL));
}

TEST_F(DataTest, NothingHereNeedsAnEnvironment)
{
    PluginEnvironment* const environment = std::exchange(g_pluginEnvironment, nullptr);
    std::string text;
    const Data none;
    EXPECT_EQ(1, none.toFormattedString(text));
    EXPECT_EQ("INVALID", text);
    EXPECT_EQ(1, Data(1).addValue(Data(1.0)));
    EXPECT_EQ(1, Data(DataType::HANDLE).toFormattedString(text));
    g_pluginEnvironment = environment;
    EXPECT_EQ("", m_log.debug());
}

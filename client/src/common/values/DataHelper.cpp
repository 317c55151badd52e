#include "values/DataHelper.h"

#include "runtime/Log.h"
#include "runtime/Saturate.h"

#include <cmath>
#include <limits>

namespace pwr {

int DataHelper::initZero(Data&) const
{
    return 1;
}

int DataHelper::addValue(Data&, const Data&) const
{
    QV_LOG_WARNING("WARNING: Attempt to accumulate on unsupported type\n");
    return 1;
}

int DataHelper::multiplyValue(Data&, double) const
{
    QV_LOG_WARNING("WARNING: Multiply only supported for numeric types\n");
    return 1;
}

int DataHelper::initMax(Data&) const
{
    return 1;
}

int DataHelper::initMin(Data&) const
{
    return 1;
}

namespace {

template <typename Number>
constexpr DataType numberType()
{
    if constexpr (std::is_floating_point_v<Number>) return DataType::REAL;
    return std::is_signed_v<Number> ? DataType::INT : DataType::UINT;
}

template <typename Number>
constexpr DataType rangeType()
{
    if constexpr (std::is_floating_point_v<Number>) return DataType::REAL_RANGE;
    return std::is_signed_v<Number> ? DataType::INT_RANGE : DataType::UINT_RANGE;
}

}    // namespace

template <typename Number>
Number DataHelper::slot_i(const Data& data, int index)
{
    if constexpr (std::is_floating_point_v<Number>)
        return data.m_value[index].r;
    else if constexpr (std::is_signed_v<Number>)
        return data.m_value[index].i;
    else
        return data.m_value[index].u;
}

template <typename Number>
Number DataHelper::number_i(const Data& data)
{
    if (data.m_type != numberType<Number>() || !data.isUsable_i()) return Number{};
    return slot_i<Number>(data, 0);
}

template <typename Number>
std::pair<Number, Number> DataHelper::range_i(const Data& data)
{
    if (data.m_type != rangeType<Number>() || !data.isUsable_i()) return {};
    return {slot_i<Number>(data, 0), slot_i<Number>(data, 1)};
}

unsigned long long DataHelper::handleId_i(const Data& data)
{
    return data.m_type == DataType::HANDLE && data.isUsable_i() ? data.m_value[0].u : 0;
}

std::string_view DataHelper::text_i(const Data& data)
{
    if (data.m_type != DataType::STRING || !data.isUsable_i()) return {};
    return data.m_text;
}

namespace {

// Signed sums wrap as unsigned ones do.
template <typename Number>
Number sum(Number a, Number b)
{
    if constexpr (std::is_floating_point_v<Number>)
        return a + b;
    else
        return static_cast<Number>(static_cast<unsigned long long>(a) + static_cast<unsigned long long>(b));
}

template <typename Number>
std::pair<Number, Number> sum(const std::pair<Number, Number>& a, const std::pair<Number, Number>& b)
{
    return {sum(a.first, b.first), sum(a.second, b.second)};
}

// Whole numbers are rounded half away from zero.
template <typename Number>
Number product(Number value, double factor)
{
    const double real = static_cast<double>(value) * factor;
    if constexpr (std::is_floating_point_v<Number>)
        return real;
    else
        return saturate<Number>(std::round(real));
}

template <typename Number>
std::pair<double, double> toDoubles(const std::pair<Number, Number>& range)
{
    return {static_cast<double>(range.first), static_cast<double>(range.second)};
}

// What the three scalar types share.
template <typename Number, typename NumberFormatter>
class NumberHelper : public DataHelper {
public:
    int initZero(Data& target) const override { return target.setValue(Number{}); }
    int initMin(Data& target) const override { return target.setValue(std::numeric_limits<Number>::max()); }

    // For a double, min() is the smallest positive normal number: a running maximum of negative values stays there.
    int initMax(Data& target) const override { return target.setValue(std::numeric_limits<Number>::min()); }

    int multiplyValue(Data& target, double factor) const override
    {
        return target.setValue(product(number_i<Number>(target), factor));
    }
    bool isLess(const Data& a, const Data& b) const override
    {
        return isLessNumber(number_i<Number>(a), number_i<Number>(b));
    }
    bool isEqual(const Data& a, const Data& b) const override { return number_i<Number>(a) == number_i<Number>(b); }
    const Formatter& getDefaultFormatter() const override { return m_formatter; }

protected:
    static int add_i(Data& target, Number operand) { return target.setValue(sum(number_i<Number>(target), operand)); }

private:
    NumberFormatter m_formatter;
};

// What the three range types share. Ranges are ordered by their first ends.
template <typename Number, typename NumberFormatter>
class RangeHelper : public DataHelper {
public:
    using Range = std::pair<Number, Number>;

    int initZero(Data& target) const override { return target.setValue(Range{}); }
    int multiplyValue(Data& target, double factor) const override
    {
        const Range range = range_i<Number>(target);
        return target.setValue(Range(product(range.first, factor), product(range.second, factor)));
    }
    bool isLess(const Data& a, const Data& b) const override
    {
        return isLessNumber(range_i<Number>(a).first, range_i<Number>(b).first);
    }
    bool isEqual(const Data& a, const Data& b) const override { return range_i<Number>(a) == range_i<Number>(b); }
    const Formatter& getDefaultFormatter() const override { return m_formatter; }

protected:
    static int add_i(Data& target, const Range& operand)
    {
        return target.setValue(sum(range_i<Number>(target), operand));
    }
    static int addToBoth_i(Data& target, Number operand) { return add_i(target, Range(operand, operand)); }

private:
    NumberFormatter m_formatter;
};

class IntHelper final : public NumberHelper<long long, IntFormatter> {
public:
    int addValue(Data& target, const Data& operand) const override
    {
        if (operand.getType() == DataType::INT) return add_i(target, number_i<long long>(operand));
        QV_LOG_WARNING("WARNING: Accumulator must have INT type as input\n");
        return 1;
    }
};

class UIntHelper final : public NumberHelper<unsigned long long, UIntFormatter> {
public:
    int addValue(Data& target, const Data& operand) const override
    {
        if (operand.getType() == DataType::UINT) return add_i(target, number_i<unsigned long long>(operand));
        QV_LOG_WARNING("WARNING: Accumulator must have UINT type as input\n");
        return 1;
    }
};

class RealHelper final : public NumberHelper<double, RealFormatter> {
public:
    int addValue(Data& target, const Data& operand) const override
    {
        switch (operand.getType()) {
        case DataType::REAL:
            return add_i(target, number_i<double>(operand));
        case DataType::INT:
            return add_i(target, static_cast<double>(number_i<long long>(operand)));
        case DataType::UINT:
            return add_i(target, static_cast<double>(number_i<unsigned long long>(operand)));
        case DataType::REAL_RANGE: {
            const auto range = range_i<double>(operand);
            return add_i(target, range.first + range.second);
        }
        default:
            QV_LOG_WARNING("WARNING: Accumulator must have REAL, INT, UINT or REAL_RANGE type as input\n");
            return 1;
        }
    }
};

class IntRangeHelper final : public RangeHelper<long long, IntFormatter> {
public:
    int addValue(Data& target, const Data& operand) const override
    {
        if (operand.getType() == DataType::INT) return addToBoth_i(target, number_i<long long>(operand));
        if (operand.getType() == DataType::INT_RANGE) return add_i(target, range_i<long long>(operand));
        QV_LOG_WARNING("WARNING: IntRange accumulate expects INT type\n");
        return 1;
    }
};

class UIntRangeHelper final : public RangeHelper<unsigned long long, UIntFormatter> {
public:
    int addValue(Data& target, const Data& operand) const override
    {
        if (operand.getType() == DataType::UINT) return addToBoth_i(target, number_i<unsigned long long>(operand));
        if (operand.getType() == DataType::UINT_RANGE) return add_i(target, range_i<unsigned long long>(operand));
        QV_LOG_WARNING("WARNING: UIntRange accumulate expects UINT type\n");
        return 1;
    }
};

class RealRangeHelper final : public RangeHelper<double, RealFormatter> {
public:
    int addValue(Data& target, const Data& operand) const override
    {
        switch (operand.getType()) {
        case DataType::REAL:
            return addToBoth_i(target, number_i<double>(operand));
        case DataType::INT:
            return addToBoth_i(target, static_cast<double>(number_i<long long>(operand)));
        case DataType::UINT:
            return addToBoth_i(target, static_cast<double>(number_i<unsigned long long>(operand)));
        case DataType::REAL_RANGE:
            return add_i(target, range_i<double>(operand));
        case DataType::INT_RANGE:
            return add_i(target, toDoubles(range_i<long long>(operand)));
        case DataType::UINT_RANGE:
            return add_i(target, toDoubles(range_i<unsigned long long>(operand)));
        default:
            QV_LOG_WARNING("WARNING: Accumulator must have REAL, INT, or UINT type as input\n");
            return 1;
        }
    }
};

class StringHelper final : public DataHelper {
public:
    bool isLess(const Data& a, const Data& b) const override { return text_i(a) < text_i(b); }
    bool isEqual(const Data& a, const Data& b) const override { return text_i(a) == text_i(b); }
    const Formatter& getDefaultFormatter() const override { return m_formatter; }

private:
    StringFormatter m_formatter;
};

// Compares the stored numbers, which are unique: nothing is looked up, so a handle that is gone still has its place.
class HandleHelper final : public DataHelper {
public:
    bool isLess(const Data& a, const Data& b) const override { return handleId_i(a) < handleId_i(b); }
    bool isEqual(const Data& a, const Data& b) const override { return handleId_i(a) == handleId_i(b); }
    const Formatter& getDefaultFormatter() const override { return m_formatter; }

private:
    HandleFormatter m_formatter;
};

class VoidHelper final : public DataHelper {
public:
    bool isLess(const Data&, const Data&) const override
    {
        warn_i();
        return false;
    }
    bool isEqual(const Data&, const Data&) const override
    {
        warn_i();
        return true;
    }
    const Formatter& getDefaultFormatter() const override
    {
        warn_i();
        return m_formatter;
    }

private:
    static void warn_i() { QV_LOG_WARNING("WARNING: Cannot use data object with type pwr::DataType::NONE\n"); }

    VoidFormatter m_formatter;
};

struct Helpers {
    const VoidHelper none;
    const IntHelper integer;
    const UIntHelper uinteger;
    const RealHelper real;
    const IntRangeHelper intRange;
    const UIntRangeHelper uintRange;
    const RealRangeHelper realRange;
    const HandleHelper handle;
    const StringHelper string;
    // By type number.
    const DataHelper* const byType[9] = {&none,      &integer,   &uinteger, &real,  &intRange,
                                         &uintRange, &realRange, &handle,   &string};
};

// Never destroyed, since a value in a static of somebody else's may outlive the statics of this file.
const Helpers& helpers()
{
    static const Helpers* const s_helpers = new Helpers{};
    return *s_helpers;
}

[[maybe_unused]] const Helpers& s_madeAtLoad = helpers();

}    // namespace

const DataHelper& DataHelper::forType(DataType type)
{
    const Helpers& all = helpers();
    if (type > DataType::STRING) return all.integer;
    return *all.byType[static_cast<std::uint8_t>(type)];
}

}    // namespace pwr

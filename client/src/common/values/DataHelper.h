#pragma once

#include "values/Data.h"
#include "values/Formatter.h"

#include <string_view>
#include <type_traits>
#include <utility>

namespace pwr {

// The order of numbers in comparisons. NaN sorts behind every number, so that doubles stay a strict weak order where
// they are sorted or used as keys.
template <typename Number>
constexpr bool isLessNumber(Number a, Number b)
{
    if constexpr (std::is_floating_point_v<Number>) {
        if (b != b) return a == a;
    }
    return a < b;
}

// The behaviour of a Data that depends on its type. One object per type lives as long as the library; all are
// immutable and may be used from any thread. Operands that are unset or invalid read as zero.
class DataHelper {
public:
    virtual ~DataHelper() = default;

    // 0; or 1 with the target as it was. Here: 1, silently for the three that initialise, else with a warning.
    virtual int initZero(Data& target) const;
    virtual int addValue(Data& target, const Data& operand) const;
    virtual int multiplyValue(Data& target, double factor) const;
    virtual int initMax(Data& target) const;
    virtual int initMin(Data& target) const;

    virtual bool isLess(const Data& a, const Data& b) const = 0;
    virtual bool isEqual(const Data& a, const Data& b) const = 0;
    virtual const Formatter& getDefaultFormatter() const = 0;

    // The helper of a type; that of INT for a number that is no type. Works from the first static initialiser to the
    // last static destructor.
    static const DataHelper& forType(DataType type);

protected:
    // The value of a usable Data of this kind; else zero, (0, 0), the empty text.
    template <typename Number>
    static Number number_i(const Data& data);
    template <typename Number>
    static std::pair<Number, Number> range_i(const Data& data);
    static unsigned long long handleId_i(const Data& data);
    static std::string_view text_i(const Data& data);

private:
    template <typename Number>
    static Number slot_i(const Data& data, int index);
};

}    // namespace pwr

#pragma once

#include "runtime/Export.h"
#include "values/DataType.h"

#include <concepts>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>

namespace pwr {

class DataHandle;
class DataHelper;
class Formatter;

// The tagged value that every measurement, table cell and attribute travels in. It knows whether it was ever set and
// whether what it holds may be used. A value created with a type keeps it for life, apart from assignment; one of type
// NONE takes the type of the first scalar or text set. One thread at a time.
//
//   Data watts(3.5);
//   watts.addValue(Data(2LL));    // a REAL takes integers: 5.5
//   double value;
//   if (watts.toReal(value) == 0) use(value);
//
// Operations that return int give 0, or 1 with a warning in the log where the type is wrong.
class QUORVANE_API Data {
public:
    Data();
    Data(DataType type);    // unset
    Data(const long long& value);
    Data(const unsigned long long& value);
    Data(const double& value);
    Data(const std::string& value);
    Data(const DataHandle& value);    // keeps the handle's number, not its address
    Data(const std::pair<long long, long long>& range);
    Data(long long first, long long second);
    Data(const std::pair<unsigned long long, unsigned long long>& range);
    Data(unsigned long long first, unsigned long long second);
    Data(const std::pair<double, double>& range);
    Data(double first, double second);

    // Other number types by their kind: signed integers become INT, unsigned UINT, floating point REAL.
    template <std::integral T>
    Data(const T& value) : Data(widen_i(value))
    {
    }
    template <std::integral T>
    Data(T first, T second) : Data(widen_i(first), widen_i(second))
    {
    }
    template <std::floating_point T>
    Data(const T& value) : Data(static_cast<double>(value))
    {
    }
    Data(const char* value) : Data(std::string(value != nullptr ? value : "")) {}

    // A copy has its own clone of the custom formatter.
    Data(const Data& other);
    Data& operator=(const Data& other);
    Data(Data&& other) noexcept;
    Data& operator=(Data&& other) noexcept;
    ~Data();

    // Stores the value and makes it set and valid. With another type than this value's: a warning, 1, and the value
    // reads as not valid.
    int setValue(const long long& value);
    int setValue(const unsigned long long& value);
    int setValue(const double& value);
    int setValue(const std::string& value);
    // These four kinds don't promote a NONE, and leave even a failed target set (but not valid).
    int setValue(const DataHandle& value);
    int setValue(const std::pair<long long, long long>& range);
    int setValue(const std::pair<unsigned long long, unsigned long long>& range);
    int setValue(const std::pair<double, double>& range);
    // Equal types: everything is copied, flags and custom formatter included. NONE isn't promoted.
    int setValue(const Data& value);

    template <std::integral T>
    int setValue(const T& value)
    {
        return setValue(widen_i(value));
    }
    template <std::floating_point T>
    int setValue(const T& value)
    {
        return setValue(static_cast<double>(value));
    }
    int setValue(const char* value) { return setValue(std::string(value != nullptr ? value : "")); }

    // Reads the value. 1 with a warning for another type; 1 without one for a value that is unset or invalid. The
    // argument is written only with result 0 (that of toHandle as DataHandle::get says).
    int toInt(long long& value) const;
    int toUInt(unsigned long long& value) const;
    int toReal(double& value) const;
    int toIntRange(std::pair<long long, long long>& range) const;
    int toUIntRange(std::pair<unsigned long long, unsigned long long>& range) const;
    int toRealRange(std::pair<double, double>& range) const;
    int toHandle(const DataHandle*& value) const;    // looks the stored number up
    int toString(std::string& value) const;

    // The text by the custom formatter, else by the default of the type.
    int toFormattedString(std::string& out) const;

    // Keeps its own clone; `formatter` stays the caller's. Returns 0.
    int setCustomFormatter(const Formatter& formatter);

    DataType getType() const { return m_type; }
    bool isSet() const { return m_set; }
    bool isValid() const { return m_valid; }
    bool isNumeric() const { return m_type >= DataType::INT && m_type <= DataType::REAL_RANGE; }
    void invalidate() { m_valid = false; }

    // Prepare a running sum, a running minimum (the top of the range) and a running maximum (the bottom; for a REAL the
    // smallest positive normal number). 1 for types without such a value.
    int initZero();
    int initMin();
    int initMax();

    // Adds, in the ways the type allows: integers and their ranges take their own kind (a number goes to both ends of a
    // range), a REAL also integers and both ends of a REAL_RANGE, a REAL_RANGE any number. Integer sums wrap. Whatever
    // is unset or invalid counts as zero; the result is usable. A refused operand leaves the value as it was.
    int addValue(const Data& operand);

    // Integers are rounded half away from zero and stop at the ends of their range.
    int multiplyValue(double factor);

    // A number as REAL, a range as REAL_RANGE; integers lose their formatter, and one that is unset or invalid gives a
    // usable zero. A warning and a copy for anything else; for null a warning and a Data().
    static const Data convertToReal(const Data* source);

    // Different types compare by type number. Unset is below set, invalid below valid, two of either are equal; but
    // beside a usable left side, an unusable right one counts as zero. Ranges are ordered by their first ends, handles
    // by their numbers, texts byte by byte; NaN comes behind every number and equals none, itself included.
    bool operator==(const Data& other) const;
    bool operator!=(const Data& other) const;
    bool operator<(const Data& other) const;
    bool operator>(const Data& other) const;
    bool operator<=(const Data& other) const;
    bool operator>=(const Data& other) const;

protected:
    void init_i(DataType type);

private:
    friend class DataHelper;

    template <std::integral T>
    static auto widen_i(const T& value)
    {
        using Wide = std::conditional_t<std::is_signed_v<T>, long long, unsigned long long>;
        return static_cast<Wide>(value);
    }

    union Slot {
        long long i;
        unsigned long long u;
        double r;
    };

    bool isUsable_i() const { return m_set && m_valid; }
    bool acceptsType_i(DataType wanted);
    bool beginScalar_i(DataType wanted);
    bool beginPair_i(DataType wanted);
    bool isReadable_i(DataType wanted, const char* warning) const;
    void copyFlat_i(const Data& other) noexcept;    // all but text and formatter
    static Data realOf_i(DataType type, const Data& source);

    Slot m_value[2] = {};                      // a scalar uses the first; a handle keeps its number there
    const DataHelper* m_helper = nullptr;      // shared, for the life of the library
    std::unique_ptr<Formatter> m_formatter;    // null: the default of the type
    std::string m_text;
    DataType m_type = DataType::NONE;
    bool m_valid = false;
    bool m_set = false;
};

}    // namespace pwr

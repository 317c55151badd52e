#include "values/Data.h"

#include "runtime/Log.h"
#include "values/DataHandle.h"
#include "values/DataHelper.h"
#include "values/Formatter.h"

namespace pwr {

Data::Data() : Data(DataType::NONE) {}

Data::Data(DataType type)
{
    init_i(type);
}

Data::Data(const long long& value) : Data(DataType::INT)
{
    setValue(value);
}

Data::Data(const unsigned long long& value) : Data(DataType::UINT)
{
    setValue(value);
}

Data::Data(const double& value) : Data(DataType::REAL)
{
    setValue(value);
}

Data::Data(const std::string& value) : Data(DataType::STRING)
{
    setValue(value);
}

Data::Data(const DataHandle& value) : Data(DataType::HANDLE)
{
    setValue(value);
}

Data::Data(const std::pair<long long, long long>& range) : Data(DataType::INT_RANGE)
{
    setValue(range);
}

Data::Data(long long first, long long second) : Data(std::make_pair(first, second)) {}

Data::Data(const std::pair<unsigned long long, unsigned long long>& range) : Data(DataType::UINT_RANGE)
{
    setValue(range);
}

Data::Data(unsigned long long first, unsigned long long second) : Data(std::make_pair(first, second)) {}

Data::Data(const std::pair<double, double>& range) : Data(DataType::REAL_RANGE)
{
    setValue(range);
}

Data::Data(double first, double second) : Data(std::make_pair(first, second)) {}

Data::Data(const Data& other)
    : m_value{other.m_value[0], other.m_value[1]}, m_helper(other.m_helper),
      m_formatter(other.m_formatter ? other.m_formatter->clone() : nullptr), m_text(other.m_text), m_type(other.m_type),
      m_valid(other.m_valid), m_set(other.m_set)
{
}

Data& Data::operator=(const Data& other)
{
    if (this == &other) return *this;
    if (m_formatter || other.m_formatter) m_formatter.reset(other.m_formatter ? other.m_formatter->clone() : nullptr);
    m_text = other.m_text;
    copyFlat_i(other);
    return *this;
}

Data::Data(Data&& other) noexcept : m_formatter(std::move(other.m_formatter)), m_text(std::move(other.m_text))
{
    copyFlat_i(other);
    other.m_text.clear();
    other.m_set = other.m_valid = false;
}

Data& Data::operator=(Data&& other) noexcept
{
    if (this == &other) return *this;
    m_formatter = std::move(other.m_formatter);
    m_text = std::move(other.m_text);
    copyFlat_i(other);
    other.m_text.clear();
    other.m_set = other.m_valid = false;
    return *this;
}

Data::~Data() = default;

void Data::init_i(DataType type)
{
    if (type > DataType::STRING) QV_LOG_WARNING("WARNING: Unhandled type %u\n", static_cast<unsigned int>(type));
    m_formatter.reset();
    m_type = type;
    m_valid = false;
    m_set = false;
    m_helper = &DataHelper::forType(type);
}

void Data::copyFlat_i(const Data& other) noexcept
{
    m_value[0] = other.m_value[0];
    m_value[1] = other.m_value[1];
    m_helper = other.m_helper;
    m_type = other.m_type;
    m_valid = other.m_valid;
    m_set = other.m_set;
}

bool Data::acceptsType_i(DataType wanted)
{
    if (m_type == wanted) return true;
    QV_LOG_WARNING("WARNING: Invalid attempt to initialize data of the wrong type (%d != %d)\n",
                   static_cast<int>(m_type), static_cast<int>(wanted));
    m_valid = false;
    return false;
}

bool Data::beginScalar_i(DataType wanted)
{
    if (m_type == DataType::NONE) init_i(wanted);
    if (!acceptsType_i(wanted)) return false;
    m_set = true;
    m_valid = true;
    return true;
}

bool Data::beginPair_i(DataType wanted)
{
    m_set = true;
    if (!acceptsType_i(wanted)) return false;
    m_valid = true;
    return true;
}

int Data::setValue(const long long& value)
{
    if (!beginScalar_i(DataType::INT)) return 1;
    m_value[0].i = value;
    return 0;
}

int Data::setValue(const unsigned long long& value)
{
    if (!beginScalar_i(DataType::UINT)) return 1;
    m_value[0].u = value;
    return 0;
}

int Data::setValue(const double& value)
{
    if (!beginScalar_i(DataType::REAL)) return 1;
    m_value[0].r = value;
    return 0;
}

int Data::setValue(const std::string& value)
{
    if (!beginScalar_i(DataType::STRING)) return 1;
    m_text = value;
    return 0;
}

int Data::setValue(const DataHandle& value)
{
    if (!beginPair_i(DataType::HANDLE)) return 1;
    m_value[0].u = value.getId();
    return 0;
}

int Data::setValue(const std::pair<long long, long long>& range)
{
    if (!beginPair_i(DataType::INT_RANGE)) return 1;
    m_value[0].i = range.first;
    m_value[1].i = range.second;
    return 0;
}

int Data::setValue(const std::pair<unsigned long long, unsigned long long>& range)
{
    if (!beginPair_i(DataType::UINT_RANGE)) return 1;
    m_value[0].u = range.first;
    m_value[1].u = range.second;
    return 0;
}

int Data::setValue(const std::pair<double, double>& range)
{
    if (!beginPair_i(DataType::REAL_RANGE)) return 1;
    m_value[0].r = range.first;
    m_value[1].r = range.second;
    return 0;
}

int Data::setValue(const Data& value)
{
    if (m_type == value.m_type) {
        *this = value;
        return 0;
    }
    QV_LOG_WARNING("WARNING: Invalid attempt to initialize data of the wrong type (%u != %u)\n",
                   static_cast<unsigned int>(m_type), static_cast<unsigned int>(value.m_type));
    m_valid = false;
    return 1;
}

bool Data::isReadable_i(DataType wanted, const char* warning) const
{
    if (m_type == wanted) return isUsable_i();
    QV_LOG_WARNING("%s", warning);
    return false;
}

int Data::toInt(long long& value) const
{
    if (!isReadable_i(DataType::INT, "WARNING: Attempt to retrieve a signed value from a non-signed type\n")) return 1;
    value = m_value[0].i;
    return 0;
}

int Data::toUInt(unsigned long long& value) const
{
    if (!isReadable_i(DataType::UINT, "WARNING: Attempt to retrieve an unsigned value from a non-unsigned type\n")) {
        return 1;
    }
    value = m_value[0].u;
    return 0;
}

int Data::toReal(double& value) const
{
    if (!isReadable_i(DataType::REAL, "WARNING: Attempt to retrieve a real value from a non-real type\n")) return 1;
    value = m_value[0].r;
    return 0;
}

int Data::toIntRange(std::pair<long long, long long>& range) const
{
    if (!isReadable_i(DataType::INT_RANGE,
                      "WARNING: Attempt to retrieve a non int range value from a int range type\n")) {
        return 1;
    }
    range = {m_value[0].i, m_value[1].i};
    return 0;
}

int Data::toUIntRange(std::pair<unsigned long long, unsigned long long>& range) const
{
    if (!isReadable_i(DataType::UINT_RANGE,
                      "WARNING: Attempt to retrieve a non unsigned range value from an unsigned range type\n")) {
        return 1;
    }
    range = {m_value[0].u, m_value[1].u};
    return 0;
}

int Data::toRealRange(std::pair<double, double>& range) const
{
    if (!isReadable_i(DataType::REAL_RANGE,
                      "WARNING: Attempt to retrieve a not double range value from a double range type\n")) {
        return 1;
    }
    range = {m_value[0].r, m_value[1].r};
    return 0;
}

int Data::toHandle(const DataHandle*& value) const
{
    if (!isReadable_i(DataType::HANDLE, "WARNING: Attempt to retrieve handle value from a non-unsigned type\n")) {
        return 1;
    }
    return DataHandle::get(m_value[0].u, value);
}

int Data::toString(std::string& value) const
{
    if (!isReadable_i(DataType::STRING, "WARNING: Attempt to retrieve a string from a non-string type\n")) return 1;
    value = m_text;
    return 0;
}

int Data::toFormattedString(std::string& out) const
{
    const Formatter& formatter = m_formatter ? *m_formatter : m_helper->getDefaultFormatter();
    return formatter.format(out, *this);
}

int Data::setCustomFormatter(const Formatter& formatter)
{
    m_formatter.reset(formatter.clone());    // the clone is made before the old one goes
    return 0;
}

int Data::initZero()
{
    return m_helper->initZero(*this);
}

int Data::initMin()
{
    return m_helper->initMin(*this);
}

int Data::initMax()
{
    return m_helper->initMax(*this);
}

int Data::addValue(const Data& operand)
{
    return m_helper->addValue(*this, operand);
}

int Data::multiplyValue(double factor)
{
    return m_helper->multiplyValue(*this, factor);
}

const Data Data::convertToReal(const Data* source)
{
    switch (source != nullptr ? source->m_type : DataType::NONE) {
    case DataType::REAL:
    case DataType::REAL_RANGE:
        return *source;
    case DataType::INT:
    case DataType::UINT:
        return realOf_i(DataType::REAL, *source);
    case DataType::INT_RANGE:
    case DataType::UINT_RANGE:
        return realOf_i(DataType::REAL_RANGE, *source);
    default:
        break;
    }
    QV_LOG_WARNING("WARNING: Cannot convert data object to real type\n");
    return source != nullptr ? *source : Data();
}

// Adding to zero converts, and counts an operand that can't be used as zero.
Data Data::realOf_i(DataType type, const Data& source)
{
    Data real(type);
    real.addValue(source);
    return real;
}

bool Data::operator==(const Data& other) const
{
    if (m_type != other.m_type) return false;
    if (!m_set) return !other.m_set;
    if (!m_valid) return !other.m_valid;
    if (other.m_valid) {    // the common types without a virtual call
        if (m_type == DataType::REAL) return m_value[0].r == other.m_value[0].r;
        if (m_type == DataType::UINT) return m_value[0].u == other.m_value[0].u;
        if (m_type == DataType::INT) return m_value[0].i == other.m_value[0].i;
    }
    return m_helper->isEqual(*this, other);
}

bool Data::operator!=(const Data& other) const
{
    return !(*this == other);
}

bool Data::operator<(const Data& other) const
{
    if (m_type != other.m_type) return m_type < other.m_type;
    if (!m_set) return other.m_set;
    if (!m_valid) return other.m_valid;
    if (other.m_valid) {
        if (m_type == DataType::REAL) return isLessNumber(m_value[0].r, other.m_value[0].r);
        if (m_type == DataType::UINT) return m_value[0].u < other.m_value[0].u;
        if (m_type == DataType::INT) return m_value[0].i < other.m_value[0].i;
    }
    return m_helper->isLess(*this, other);
}

bool Data::operator>(const Data& other) const
{
    return !(*this < other) && !(*this == other);
}

bool Data::operator<=(const Data& other) const
{
    return !(*this > other);
}

bool Data::operator>=(const Data& other) const
{
    return !(*this < other);
}

}    // namespace pwr

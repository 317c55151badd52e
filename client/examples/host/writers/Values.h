#pragma once

#include "metrics/Metric.h"

#include <cstdint>
#include <functional>
#include <string>
#include <unordered_map>
#include <utility>

namespace pwr {
class Data;
class DataHandle;
class EntityHandle;
}    // namespace pwr

namespace host {

// What the writers have in common of reading and naming what they are given.

// A value as it stands, without the rounding of a table's text.
struct Reading {
    enum class Kind : std::uint8_t { NOTHING, INTEGER, UNSIGNED, REAL, TEXT };

    Kind kind = Kind::NOTHING;
    std::int64_t integer = 0;
    std::uint64_t natural = 0;
    double real = 0;     // of every number
    std::string text;    // of texts, ranges and the names of handles

    bool isNumber() const { return kind != Kind::NOTHING && kind != Kind::TEXT; }
};

// Null, and what is not set or not valid, is nothing.
Reading readValue(const pwr::Data* value);

// The digits of a number, the text of a text, nothing for nothing.
void appendReading(std::string& out, const Reading& reading);

std::string nameOf(const pwr::DataHandle* handle);               // empty for null
std::string qualifiedNameOf(const pwr::EntityHandle* entity);    // empty for null
std::string columnNameOf(const pwr::DataHandle* handle);         // the name; of an attribute with its unit

// "Name (unit)"; a name that bears the unit already, and one without a unit, stays.
std::string titleWithUnit(const std::string& name, const std::string& unit);

// How the values of a metric are told: those of residencies are milliseconds, although the metric counts ticks.
struct ValueInfo {
    std::string name;    // "Power", "Residency", "Value"
    std::string unit;    // "mW"; may be empty
    bool isResidency = false;

    std::string title() const { return titleWithUnit(name, unit); }
};
ValueInfo valueInfoOf(const pwr::Metric& metric);
const char* typeNameOf(pwr::Metric::MetricType type);

// Something that a writer keeps for each pair of entity and descriptor of a metric, so that the rows of a timeline cost
// one look-up. Values stay where they are.
template <typename T>
class BySeries {
public:
    // `make()` gives the value of a pair that is new.
    template <typename Make>
    T& get(const pwr::DataElement& element, Make make)
    {
        const Pair pair{element.getEntity(), element.getDescriptor()};
        const auto found = m_values.find(pair);
        return found != m_values.end() ? found->second : m_values.emplace(pair, make()).first->second;
    }

private:
    using Pair = std::pair<const pwr::EntityHandle*, const pwr::DataDescriptor*>;
    struct Hash {
        std::size_t operator()(const Pair& pair) const
        {
            return std::hash<const void*>()(pair.first) * 31 + std::hash<const void*>()(pair.second);
        }
    };
    std::unordered_map<Pair, T, Hash> m_values;
};

}    // namespace host

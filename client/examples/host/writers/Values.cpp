#include "writers/Values.h"

#include "writers/Text.h"

#include "values/Data.h"
#include "values/EntityHandle.h"
#include "values/Handles.h"
#include "values/Process.h"
#include "values/Quantity.h"

namespace host {

namespace {

// As its formatter gives it; a process with the id that tells it from others of its name.
bool readText(const pwr::Data& value, std::string& text)
{
    if (value.toFormattedString(text) != 0) return false;
    const pwr::DataHandle* handle = nullptr;
    if (value.getType() != pwr::DataType::HANDLE || value.toHandle(handle) != 0) return true;
    if (const auto* process = dynamic_cast<const pwr::Process*>(handle))
        text = process->getName() + " (" + std::to_string(process->getPid()) + ")";
    return true;
}

}    // namespace

Reading readValue(const pwr::Data* value)
{
    Reading reading;
    if (value == nullptr || !value->isSet() || !value->isValid()) return reading;
    if (value->getType() == pwr::DataType::INT) {
        long long number = 0;
        if (value->toInt(number) != 0) return reading;
        reading.kind = Reading::Kind::INTEGER;
        reading.integer = number;
        reading.real = static_cast<double>(number);
    } else if (value->getType() == pwr::DataType::UINT) {
        unsigned long long number = 0;
        if (value->toUInt(number) != 0) return reading;
        reading.kind = Reading::Kind::UNSIGNED;
        reading.natural = number;
        reading.real = static_cast<double>(number);
    } else if (value->getType() == pwr::DataType::REAL) {
        if (value->toReal(reading.real) == 0) reading.kind = Reading::Kind::REAL;
    } else if (readText(*value, reading.text)) {
        reading.kind = Reading::Kind::TEXT;
    }
    return reading;
}

void appendReading(std::string& out, const Reading& reading)
{
    switch (reading.kind) {
    case Reading::Kind::INTEGER:
        appendNumber(out, reading.integer);
        break;
    case Reading::Kind::UNSIGNED:
        appendNumber(out, reading.natural);
        break;
    case Reading::Kind::REAL:
        appendNumber(out, reading.real);
        break;
    case Reading::Kind::TEXT:
        out += reading.text;
        break;
    case Reading::Kind::NOTHING:
        break;
    }
}

std::string nameOf(const pwr::DataHandle* handle)
{
    return handle != nullptr ? handle->getName() : std::string();
}

std::string qualifiedNameOf(const pwr::EntityHandle* entity)
{
    return entity != nullptr ? entity->getQualifiedName() : std::string();
}

std::string columnNameOf(const pwr::DataHandle* handle)
{
    const auto* attribute = dynamic_cast<const pwr::Attribute*>(handle);
    const pwr::Quantity* quantity = attribute != nullptr ? attribute->getQuantity() : nullptr;
    return quantity != nullptr ? titleWithUnit(nameOf(handle), quantity->toUnitsString()) : nameOf(handle);
}

std::string titleWithUnit(const std::string& name, const std::string& unit)
{
    const std::string behind = "(" + unit + ")";
    if (unit.empty() || name.find(behind) != std::string::npos) return name;
    return name.empty() ? behind : name + " " + behind;
}

ValueInfo valueInfoOf(const pwr::Metric& metric)
{
    if (metric.getMetricType() == pwr::Metric::MetricType::SampledResidency) return {"Residency", "ms", true};
    const pwr::Quantity* quantity = metric.getQuantity();
    const pwr::Field* values = metric.getValueGroupInfo();
    if (quantity == nullptr) return {values != nullptr ? values->getName() : "Value", "", false};
    return {quantity->toQuantityString(), quantity->toUnitsString(), false};
}

const char* typeNameOf(pwr::Metric::MetricType type)
{
    using Type = pwr::Metric::MetricType;
    switch (type) {
    case Type::SampledDelta:
        return "SampledDelta";
    case Type::SampledResidency:
        return "SampledResidency";
    case Type::SampledValue:
        return "SampledValue";
    case Type::TracedValueTransition:
        return "TracedValueTransition";
    case Type::TracedEvent:
        return "TracedEvent";
    }
    return "";
}

}    // namespace host

#include "values/AttributeManagers.h"

#include "runtime/Log.h"
#include "values/Description.h"
#include "values/Handles.h"

namespace pwr {

namespace {

bool isGiven(const Attribute* attribute)
{
    if (attribute == nullptr) QV_LOG_WARNING("WARNING: Please provide a valid non-null attribute to set.\n");
    return attribute != nullptr;
}

}    // namespace

AttributeValueManager::AttributeValueManager(const EventDescription& description)
    : AttributeValueManager(static_cast<const AttributeValueManager&>(description))
{
}

AttributeValueManager::AttributeValueManager(const StateDescription& description)
    : AttributeValueManager(static_cast<const AttributeValueManager&>(description))
{
}

int AttributeValueManager::addAttributeValue(const Attribute* attribute, const Data& value)
{
    m_values.emplace(attribute, value);
    m_list.emplace_back(attribute, value);
    return 0;
}

const Data* AttributeValueManager::getAttributeValue(const Attribute* attribute) const
{
    if (!isGiven(attribute)) return nullptr;
    const auto found = m_values.find(attribute);
    return found != m_values.end() ? &found->second : nullptr;
}

std::size_t AttributeValueManager::getAttributeCount() const
{
    if (m_values.size() != m_list.size()) QV_LOG_WARNING("WARNING: Attribute map and list size mismatch.\n");
    return m_values.size();
}

bool AttributeValueManager::hasEqualValues_i(const AttributeValueManager& other) const
{
    if (getAttributeCount() != other.getAttributeCount()) return false;
    for (const auto& [attribute, value] : m_list) {
        const Data* otherValue = other.getAttributeValue(attribute);    // warns of a null attribute
        if (otherValue == nullptr || !(value == *otherValue)) return false;
    }
    return true;
}

void AttributeValueManager::appendKey_i(std::string& key) const
{
    for (const auto& [attribute, value] : m_list) {
        std::string text;
        value.toFormattedString(text);
        key += '-';
        if (attribute != nullptr) key += std::to_string(attribute->getId());
        key += '-';
        key += text;
    }
}

int DynamicAttributeValueManager::setAttributeValue(const Attribute* attribute, const Data& value)
{
    if (!isGiven(attribute)) return 1;
    m_values.insert_or_assign(attribute->getId(), value);
    return 0;
}

const Data* DynamicAttributeValueManager::getAttributeValue(const Attribute* attribute) const
{
    if (!isGiven(attribute)) return nullptr;
    const auto found = m_values.find(attribute->getId());
    return found != m_values.end() ? &found->second : nullptr;
}

}    // namespace pwr

#include "values/Description.h"

namespace pwr {

Description::Description(const std::string& name, const std::string& shortName)
    : Description(DescriptionType::GENERIC, name, shortName.empty() ? name : shortName)
{
}

Description::Description(DescriptionType type, const std::string& name, const std::string& shortName)
    : m_name(name), m_fieldName(name), m_shortName(shortName), m_type(type)
{
}

Description::~Description() = default;

void Description::setFieldName(const std::string& fieldName)
{
    m_fieldName = fieldName;
}

void Description::setDescription(const std::string& description)
{
    m_description = description;
}

void Description::setHeader(const std::string& header)
{
    m_header = header;
}

FieldDescription::FieldDescription(const std::string& name, const std::string& shortName)
    : Description(DescriptionType::FIELD, name, shortName)
{
}

int FieldDescription::addAttribute(const Attribute* attribute)
{
    m_attributes.push_back(attribute);
    return 0;
}

StateDescription::StateDescription(const std::string& name, const std::string& shortName)
    : Description(DescriptionType::STATE, name, shortName)
{
}

int StateDescription::addAttributeValue(const Attribute* attribute, const Data& value, bool useAsFieldName)
{
    AttributeValueManager::addAttributeValue(attribute, value);
    if (!useAsFieldName) return 0;
    std::string text;
    value.toFormattedString(text);
    setFieldName(text);
    return 0;
}

EventDescription::EventDescription(const std::string& name, const std::string& shortName)
    : Description(DescriptionType::EVENT, name, shortName)
{
}

int EventDescription::addAttributeValue(const Attribute* attribute, const Data& value)
{
    return AttributeValueManager::addAttributeValue(attribute, value);
}

std::string EventDescription::getKey() const
{
    std::string key = getName() + "-" + getShortName();
    appendKey_i(key);
    return key;
}

DataDescriptorBuilder::DataDescriptorBuilder(const std::string& name, const std::string& shortName)
    : Description(DescriptionType::DATA_DESCRIPTOR, name, shortName)
{
}

std::string DataDescriptorBuilder::getKey() const
{
    std::string key = getName() + "-" + getShortName();
    appendKey_i(key);
    return key;
}

}    // namespace pwr

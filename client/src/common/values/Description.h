#pragma once

#include "runtime/Export.h"
#include "values/AttributeManagers.h"

#include <cstdint>
#include <string>

namespace pwr {

enum class DescriptionType : std::uint32_t { GENERIC = 0, STATE = 1, EVENT = 2, FIELD = 3, DATA_DESCRIPTOR = 5 };

// The texts of a named thing before it exists: fill it in and hand it to a create() operation, which copies from it. A
// plain value of the caller's, reusable.
//
//   FieldDescription field("Core", "");
//   field.addAttribute(Attribute::get(AttributeType::FREQUENCY));
//   const Field* column = Field::create(field);
class QUORVANE_API Description {
public:
    // An empty short name becomes the name.
    Description(const std::string& name, const std::string& shortName);
    virtual ~Description();
    Description(const Description&) = default;
    Description& operator=(const Description&) = default;

    void setFieldName(const std::string& fieldName);    // the column title; the name unless set
    void setDescription(const std::string& description);
    void setHeader(const std::string& header);

    const std::string& getName() const { return m_name; }
    const std::string& getFieldName() const { return m_fieldName; }
    const std::string& getShortName() const { return m_shortName; }
    const std::string& getDescription() const { return m_description; }
    const std::string& getHeader() const { return m_header; }
    DescriptionType getType() const { return m_type; }

protected:
    // The short name is kept as it is, even when empty.
    Description(DescriptionType type, const std::string& name, const std::string& shortName);

private:
    std::string m_name;
    std::string m_fieldName;
    std::string m_shortName;
    std::string m_description;
    std::string m_header;
    DescriptionType m_type;
};

// A table column, with the attributes that its rows will carry.
class QUORVANE_API FieldDescription : public Description, public ExpectedAttributeManager {
public:
    FieldDescription(const std::string& name, const std::string& shortName);
    int addAttribute(const Attribute* attribute);    // not owned; returns 0
};

// One state of a state machine, with its attribute values.
class QUORVANE_API StateDescription : public Description, public AttributeValueManager {
public:
    StateDescription(const std::string& name, const std::string& shortName);

    // With `useAsFieldName` the value's formatted text becomes the column title. Returns 0.
    int addAttributeValue(const Attribute* attribute, const Data& value, bool useAsFieldName);
};

// An event, with its attribute values.
class QUORVANE_API EventDescription : public Description, public AttributeValueManager {
public:
    EventDescription(const std::string& name, const std::string& shortName);
    int addAttributeValue(const Attribute* attribute, const Data& value);    // returns 0

    // Name, short name and attribute values in one text. Different descriptions may share a key.
    std::string getKey() const;
};

// What a value describes beside its entity, for instance the C-state of a residency.
class QUORVANE_API DataDescriptorBuilder : public Description, public AttributeValueManager {
public:
    DataDescriptorBuilder(const std::string& name, const std::string& shortName);
    std::string getKey() const;    // as EventDescription::getKey
};

}    // namespace pwr

#pragma once

#include "runtime/Export.h"
#include "values/AttributeManagers.h"
#include "values/DataHandle.h"

#include <cstdint>
#include <string>

// The handles made from descriptions. All are owned by the registry; create() gives null, with a warning, without one.

namespace pwr {

class DataDescriptorBuilder;
class Quantity;

// 1 to 4, 6 and 7 are the attributes that the registry offers; other numbers are their maker's.
enum class AttributeType : std::uint8_t { FREQUENCY = 1, IRQ = 2, PROCESS = 3, THREAD = 4, SOURCE = 6, TARGET = 7 };

// A kind of extra value that a state, an event, an entity, a descriptor or a data point can carry.
class QUORVANE_API Attribute : public DataHandle {
public:
    // With a quantity its title is the column title. `quantity` may be null and is not owned. Does not change what
    // get() answers for the type.
    static const Attribute* create(const std::string& name, const Quantity* quantity, AttributeType type);

    // The default attribute of the type; null with a warning when there is none.
    static const Attribute* get(AttributeType type);

    const Quantity* getQuantity() const { return m_quantity; }
    AttributeType getAttributeType() const { return m_attributeType; }

private:
    friend class IdManager;
    Attribute(const std::string& name, const Quantity* quantity, AttributeType type);

    const Quantity* m_quantity;
    AttributeType m_attributeType;
};

// A table column.
class QUORVANE_API Field : public DataHandle, public ExpectedAttributeManager {
public:
    // A FieldDescription hands on its attributes; any other description makes a field without.
    static const Field* create(const Description& description);

private:
    explicit Field(const Description& description);
};

// One state of a state machine.
class QUORVANE_API State : public DataHandle, public AttributeValueManager {
public:
    static const State* create(const StateDescription& description);

    // Replaces the value of an attribute, or adds it. Returns 0.
    int addAttributeValue(const Attribute* attribute, const Data& value);

private:
    explicit State(const StateDescription& description);
};

// An event. Equal descriptions give the same object anywhere in the process, so its address stands for the event.
class QUORVANE_API Event : public DataHandle, public AttributeValueManager {
public:
    static const Event* create(const EventDescription& description);

    // Same name, and the same attributes with equal values.
    bool equal(const EventDescription& description) const;

private:
    explicit Event(const EventDescription& description);
};

// What a value describes beside its entity. Equal builders give the same object, as with events.
class QUORVANE_API DataDescriptor : public DataHandle, public AttributeValueManager {
public:
    static const DataDescriptor* create(const DataDescriptorBuilder& builder);
    bool equal(const DataDescriptorBuilder& builder) const;

private:
    explicit DataDescriptor(const DataDescriptorBuilder& builder);
};

// A numeric code with its meaning, for finite sets of values.
class QUORVANE_API NameValuePair : public DataHandle {
public:
    // `infoName` is the handle's name.
    static const NameValuePair* create(unsigned int value, const std::string& valueDesc, const std::string& infoName);

    unsigned int getValue() const { return m_value; }
    const std::string& getValueDesc() const { return m_valueDesc; }
    const std::string& getInfoName() const { return m_infoName; }

private:
    NameValuePair(unsigned int value, const std::string& valueDesc, const std::string& infoName);

    unsigned int m_value;
    std::string m_valueDesc;
    std::string m_infoName;
};

}    // namespace pwr

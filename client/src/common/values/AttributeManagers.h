#pragma once

#include "runtime/Export.h"
#include "values/Data.h"

#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace pwr {

class Attribute;
class EventDescription;
class StateDescription;

// The attributes that the rows of a field will carry. Attributes are not owned.
class QUORVANE_API ExpectedAttributeManager {
public:
    using const_iterator = std::vector<const Attribute*>::const_iterator;

    const_iterator begin() const { return m_attributes.begin(); }
    const_iterator end() const { return m_attributes.end(); }
    std::size_t getAttributeCount() const { return m_attributes.size(); }

protected:
    std::vector<const Attribute*> m_attributes;
};

// Extra typed values of a state, an event, an entity or a descriptor: kept once by attribute for look-ups and once in
// the order of adding, which is the order of iteration, of keys and of comparison. Attributes are not owned.
class QUORVANE_API AttributeValueManager {
public:
    using Values = std::vector<std::pair<const Attribute*, Data>>;
    using const_iterator = Values::const_iterator;

    // An attribute that is there already keeps its first value for look-ups; the pair joins the iteration all the
    // same. Returns 0.
    int addAttributeValue(const Attribute* attribute, const Data& value);

    // The value, valid while this object lives unchanged; null when there is none, and with a warning for null.
    const Data* getAttributeValue(const Attribute* attribute) const;

    // The number of distinct attributes; warns when an attribute was added twice.
    std::size_t getAttributeCount() const;

    const_iterator begin() const { return m_list.begin(); }
    const_iterator end() const { return m_list.end(); }

protected:
    AttributeValueManager() = default;
    explicit AttributeValueManager(const EventDescription& description);
    explicit AttributeValueManager(const StateDescription& description);

    // Whether `other` has as many attributes and the same value for each of this object's.
    bool hasEqualValues_i(const AttributeValueManager& other) const;

    // Appends "-number-text" for each pair in order.
    void appendKey_i(std::string& key) const;

    std::map<const Attribute*, Data> m_values;
    Values m_list;
};

// Extra values that change with each data point. A later value replaces an earlier one, whatever its type.
//
//   DynamicAttributeValueManager info;
//   info.setAttributeValue(Attribute::get(AttributeType::IRQ), Data(17LL));
//   element.setAdditionalInfo(&info);    // keep `info` alive as long as the element
class QUORVANE_API DynamicAttributeValueManager {
public:
    using const_iterator = std::map<unsigned long long, Data>::const_iterator;

    // Keyed by the attribute's number. Null gives a warning and 1, or null.
    int setAttributeValue(const Attribute* attribute, const Data& value);
    const Data* getAttributeValue(const Attribute* attribute) const;

    const_iterator begin() const { return m_values.begin(); }
    const_iterator end() const { return m_values.end(); }
    std::size_t getAttributeCount() const { return m_values.size(); }

private:
    std::map<unsigned long long, Data> m_values;
};

}    // namespace pwr

#include "values/Handles.h"

#include "runtime/Log.h"
#include "values/Description.h"
#include "values/IdManager.h"
#include "values/Quantity.h"

#include <memory>
#include <utility>

namespace pwr {

namespace {

Description describeAttribute(const std::string& name, const Quantity* quantity)
{
    Description description(name, "");
    if (quantity == nullptr) return description;
    std::string title;
    quantity->toTitleString(title);
    description.setFieldName(title);
    return description;
}

ExpectedAttributeManager expectedAttributesOf(const Description& description)
{
    if (description.getType() != DescriptionType::FIELD) return {};
    const auto* field = dynamic_cast<const FieldDescription*>(&description);
    if (field == nullptr) return {};
    return *field;
}

// The first object in the bucket that equals the description; null: none.
template <typename Handle, typename Described>
const Handle* findEqual(const std::vector<const Handle*>& bucket, const Described& description)
{
    for (const Handle* handle : bucket) {
        if (handle->equal(description)) return handle;
    }
    return nullptr;
}

}    // namespace

Attribute::Attribute(const std::string& name, const Quantity* quantity, AttributeType type)
    : DataHandle(DataHandleType::ATTRIBUTE, describeAttribute(name, quantity)), m_quantity(quantity),
      m_attributeType(type)
{
}

const Attribute* Attribute::create(const std::string& name, const Quantity* quantity, AttributeType type)
{
    IdManager* registry = IdManager::instance();
    if (registry == nullptr) return nullptr;
    return registry->add(std::unique_ptr<Attribute>(new Attribute(name, quantity, type)));
}

const Attribute* Attribute::get(AttributeType type)
{
    IdManager* registry = IdManager::instance();
    if (registry == nullptr) return nullptr;
    registry->makeDefaultAttributes();
    const Attribute* attribute = registry->findDefaultAttribute(type);
    if (attribute == nullptr) QV_LOG_WARNING("WARNING: No attribute of type %d found\n", static_cast<int>(type));
    return attribute;
}

Field::Field(const Description& description)
    : DataHandle(DataHandleType::FIELD, description), ExpectedAttributeManager(expectedAttributesOf(description))
{
}

const Field* Field::create(const Description& description)
{
    IdManager* registry = IdManager::instance();
    if (registry == nullptr) return nullptr;
    return registry->add(std::unique_ptr<Field>(new Field(description)));
}

State::State(const StateDescription& description)
    : DataHandle(DataHandleType::STATE, description), AttributeValueManager(description)
{
}

const State* State::create(const StateDescription& description)
{
    IdManager* registry = IdManager::instance();
    if (registry == nullptr) return nullptr;
    return registry->add(std::unique_ptr<State>(new State(description)));
}

int State::addAttributeValue(const Attribute* attribute, const Data& value)
{
    const auto found = m_values.find(attribute);
    if (found == m_values.end()) return AttributeValueManager::addAttributeValue(attribute, value);
    found->second = value;
    for (auto& pair : m_list) {
        if (pair.first == attribute) pair.second = value;
    }
    return 0;
}

Event::Event(const EventDescription& description)
    : DataHandle(DataHandleType::EVENT, description), AttributeValueManager(description)
{
}

const Event* Event::create(const EventDescription& description)
{
    IdManager* registry = IdManager::instance();
    if (registry == nullptr) return nullptr;
    std::vector<const Event*>& bucket = registry->eventsOf(description.getKey());
    if (const Event* event = findEqual(bucket, description)) return event;
    std::unique_ptr<Event> event(new Event(description));
    bucket.push_back(event.get());
    return registry->add(std::move(event));
}

bool Event::equal(const EventDescription& description) const
{
    return getName() == description.getName() && hasEqualValues_i(description);
}

DataDescriptor::DataDescriptor(const DataDescriptorBuilder& builder)
    : DataHandle(DataHandleType::DATA_DESCRIPTOR, builder),
      AttributeValueManager(static_cast<const AttributeValueManager&>(builder))
{
}

const DataDescriptor* DataDescriptor::create(const DataDescriptorBuilder& builder)
{
    IdManager* registry = IdManager::instance();
    if (registry == nullptr) return nullptr;
    std::vector<const DataDescriptor*>& bucket = registry->descriptorsOf(builder.getKey());
    if (const DataDescriptor* descriptor = findEqual(bucket, builder)) return descriptor;
    std::unique_ptr<DataDescriptor> descriptor(new DataDescriptor(builder));
    bucket.push_back(descriptor.get());
    return registry->add(std::move(descriptor));
}

bool DataDescriptor::equal(const DataDescriptorBuilder& builder) const
{
    return getName() == builder.getName() && hasEqualValues_i(builder);
}

NameValuePair::NameValuePair(unsigned int value, const std::string& valueDesc, const std::string& infoName)
    : DataHandle(DataHandleType::NAME_VALUE_PAIR, Description(infoName, "")), m_value(value), m_valueDesc(valueDesc),
      m_infoName(infoName)
{
}

const NameValuePair* NameValuePair::create(unsigned int value, const std::string& valueDesc,
                                           const std::string& infoName)
{
    IdManager* registry = IdManager::instance();
    if (registry == nullptr) return nullptr;
    return registry->add(std::unique_ptr<NameValuePair>(new NameValuePair(value, valueDesc, infoName)));
}

}    // namespace pwr

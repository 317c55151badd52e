#include "metrics/DataElement.h"

#include "runtime/Log.h"

namespace pwr {

DataElement::DataElement(const EntityHandle* entity, const DataDescriptor* descriptor)
    : m_entity(entity), m_descriptor(descriptor), m_scopraDescriptor(descriptor)
{
}

DataElement::DataElement(const DataElement& other) = default;
DataElement& DataElement::operator=(const DataElement& other) = default;
DataElement::~DataElement() = default;

int DataElement::setEntity(const EntityHandle* entity)
{
    if (entity == nullptr) {
        QV_LOG_WARNING("WARNING: Please provide a valid entity.\n");
        return 1;
    }
    m_entity = entity;
    return 0;
}

int DataElement::setDescriptor(const DataDescriptor* descriptor)
{
    if (descriptor == nullptr) {
        QV_LOG_WARNING("WARNING: Please provide a valid descriptor.\n");
        return 1;
    }
    m_descriptor = descriptor;
    m_scopraDescriptor = descriptor;
    return 0;
}

int DataElement::setAdditionalInfo(const DynamicAttributeValueManager* info)
{
    if (info == nullptr) {
        QV_LOG_WARNING("WARNING: Please provide a valid DynamicAttributeValueManager.\n");
        return 1;
    }
    m_additionalInfo = info;
    return 0;
}

const Data* DataElement::getValue() const
{
    if (!m_hasValue) {
        QV_LOG_WARNING("WARNING: Value is not set in the DataElement object. Returning an invalid Data object.\n");
        return nullptr;
    }
    return &m_value;
}

const DataDescriptor* DataElement::getScopraDescriptor() const
{
    if (m_scopraDescriptor == nullptr) {
        QV_LOG_WARNING("WARNING: Scopra descriptor is not set. Was this DataElement objectever added to Metric before "
                       "calling getScopraDescriptor?\n");
    }
    return m_scopraDescriptor;
}

}    // namespace pwr

#pragma once

#include "runtime/Export.h"
#include "values/Data.h"

namespace pwr {

class DataDescriptor;
class DynamicAttributeValueManager;
class EntityHandle;
class Metric;

// One value of one entity, on its way into a Metric. The caller keeps it and may use it again for the next sample; the
// metric copies it. Entity, descriptor and additional info are not owned and outlive it.
//
//   DataElement element(core0, c6);
//   element.setValue(residencyTicks);
//   metric.setData(timestamp, element, 0);
class QUORVANE_API DataElement {
public:
    DataElement(const EntityHandle* entity, const DataDescriptor* descriptor);    // the descriptor may be null

    // Deep copies. The value of the source should be set; a copy of one without has none either.
    DataElement(const DataElement& other);
    DataElement& operator=(const DataElement& other);
    ~DataElement();

    // Null is refused with a warning and 1.
    int setEntity(const EntityHandle* entity);
    int setDescriptor(const DataDescriptor* descriptor);
    int setAdditionalInfo(const DynamicAttributeValueManager* info);

    // The first call fixes the type by the kind of `value` (unsigned integers give UINT); later ones must fit it.
    // Returns 0, or 1 with a warning.
    template <typename T>
    int setValue(const T& value)
    {
        if (m_hasValue) return m_value.setValue(value);
        m_value = Data(value);
        m_hasValue = true;
        return 0;
    }

    const EntityHandle* getEntity() const { return m_entity; }
    const DataDescriptor* getDescriptor() const { return m_descriptor; }
    const DynamicAttributeValueManager* getAdditionalInfo() const { return m_additionalInfo; }

    // Clock ticks that the value stands for; written by Metric::setData().
    unsigned long long getDuration() const { return m_durationTicks; }

    // Null with a warning until a value is set.
    const Data* getValue() const;

    // The descriptor; one made of the metric's name for an element without. Null with a warning until then.
    const DataDescriptor* getScopraDescriptor() const;

private:
    friend class Metric;

    const EntityHandle* m_entity;
    const DataDescriptor* m_descriptor;
    Data m_value;
    bool m_hasValue = false;
    const DynamicAttributeValueManager* m_additionalInfo = nullptr;
    unsigned long long m_durationTicks = 0;
    const DataDescriptor* m_scopraDescriptor;
};

}    // namespace pwr

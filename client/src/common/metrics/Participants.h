#pragma once

#include "metrics/ElementKey.h"
#include "metrics/Metric.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <set>

namespace pwr {

// The entities and descriptors that the tables of a metric speak of: those of its samples, later joined by those of its
// combinations.
class Participants {
public:
    void addSampled(const DataElement& element)
    {
        add_i(element.getEntity(), element.getDescriptor());
        if (element.getDescriptor() != nullptr) m_sampledDescriptors.insert(idOf(element.getDescriptor()));
    }

    void addCombinations(const Metric& metric)
    {
        for (const Metric::EntityDescCombo& combo : metric.getEntityDescriptorCombinations())
            add_i(combo.entity, combo.descriptor);
    }

    const std::map<std::uint64_t, const EntityHandle*>& entities() const { return m_entities; }
    const std::map<std::uint64_t, const DataDescriptor*>& descriptors() const { return m_descriptors; }
    std::size_t sampledDescriptorCount() const { return m_sampledDescriptors.size(); }    // whatever the combinations

private:
    void add_i(const EntityHandle* entity, const DataDescriptor* descriptor)
    {
        m_entities[idOf(entity)] = entity;
        if (descriptor != nullptr) m_descriptors[idOf(descriptor)] = descriptor;
    }

    std::map<std::uint64_t, const EntityHandle*> m_entities;         // by id: the order of columns, or rows
    std::map<std::uint64_t, const DataDescriptor*> m_descriptors;    // by id: the order of tables
    std::set<std::uint64_t> m_sampledDescriptors;
};

}    // namespace pwr

#pragma once

#include "metrics/DataElement.h"
#include "values/EntityHandle.h"
#include "values/Handles.h"

#include <algorithm>
#include <cstdint>
#include <unordered_map>
#include <utility>
#include <vector>

namespace pwr {

inline std::uint64_t idOf(const UniqueId* object)
{
    return object != nullptr ? object->getId() : 0;
}

// What accumulators address their records by: ascending keys are ascending entities and, within one, descriptors.
inline std::uint64_t elementKey(std::uint64_t entityId, std::uint64_t descriptorId)
{
    return descriptorId != 0 ? (entityId << 32) + descriptorId : entityId;
}

inline std::uint64_t elementKey(const EntityHandle* entity, const DataDescriptor* descriptor)
{
    return elementKey(idOf(entity), idOf(descriptor));
}

inline std::uint64_t elementKey(const DataElement& element)
{
    return elementKey(element.getEntity(), element.getDescriptor());
}

// One record per element key: found in constant time while samples come in, walked in key order at the end. Records
// keep their address.
template <typename Record>
class RecordsByKey {
public:
    // The record, and whether it was made just now.
    std::pair<Record*, bool> at(std::uint64_t key)
    {
        const auto entry = m_records.try_emplace(key);
        return {&entry.first->second, entry.second};
    }

    const Record* find(std::uint64_t key) const    // null: none
    {
        const auto found = m_records.find(key);
        return found != m_records.end() ? &found->second : nullptr;
    }

    std::vector<const Record*> inKeyOrder() const
    {
        std::vector<std::pair<std::uint64_t, const Record*>> entries;
        entries.reserve(m_records.size());
        for (const auto& entry : m_records)
            entries.emplace_back(entry.first, &entry.second);
        std::sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) { return a.first < b.first; });

        std::vector<const Record*> records;
        records.reserve(entries.size());
        for (const auto& entry : entries)
            records.push_back(entry.second);
        return records;
    }

private:
    std::unordered_map<std::uint64_t, Record> m_records;
};

}    // namespace pwr

#pragma once

#include "runtime/Export.h"
#include "values/UniqueId.h"

#include <cstdint>
#include <string>

namespace pwr {

class Description;

enum class DataHandleType : std::uint32_t {
    ATTRIBUTE = 0,
    FIELD = 1,
    STATE = 2,
    PROCESS = 3,
    THREAD = 4,
    NAME_VALUE_PAIR = 5,
    EVENT = 6,
    ENTITY = 7,
    DATA_DESCRIPTOR = 9,
};

// An identified, named thing that the system measures or reports. Made by the create() operation of its class, owned by
// the registry until UniqueId::destroy(), announced to the writers when made. A table cell holds its number only:
//
//   const DataHandle* handle = nullptr;
//   if (DataHandle::get(number, handle) == 0) show(handle->getQualifiedName());
class QUORVANE_API DataHandle : public UniqueId {
public:
    // Finds a handle by its number. Returns 0; 1 with a warning when no object has the number (`handle` stays) or the
    // object is no handle (`handle` becomes null); 1 without a registry.
    static int get(unsigned long long id, const DataHandle*& handle);

    UniqueIdType getIdType() const override;

    // The name; for an entity with the names of those above it, separated by "/".
    virtual std::string getQualifiedName() const;

    const std::string& getName() const { return m_name; }
    const std::string& getFieldName() const { return m_fieldName; }    // the column title
    const std::string& getShortName() const { return m_shortName; }
    const std::string& getDescription() const { return m_description; }
    const std::string& getHeader() const { return m_header; }
    DataHandleType getHandleType() const { return m_handleType; }

protected:
    DataHandle(DataHandleType type, const Description& description);
    DataHandle(const DataHandle&) = default;
    DataHandle& operator=(const DataHandle&) = default;

private:
    std::string m_name;
    std::string m_fieldName;
    std::string m_shortName;
    std::string m_description;
    std::string m_header;
    DataHandleType m_handleType;
};

}    // namespace pwr

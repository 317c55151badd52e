#include "values/DataHandle.h"

#include "values/Description.h"

namespace pwr {

DataHandle::DataHandle(DataHandleType type, const Description& description)
    : m_name(description.getName()), m_fieldName(description.getFieldName()), m_shortName(description.getShortName()),
      m_description(description.getDescription()), m_header(description.getHeader()), m_handleType(type)
{
}

UniqueIdType DataHandle::getIdType() const
{
    return UniqueIdType::DATA_HANDLE;
}

std::string DataHandle::getQualifiedName() const
{
    return m_name;
}

}    // namespace pwr

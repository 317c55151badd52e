#include "config/ConfigCap.h"

namespace pwr {

void ConfigCap::setName(const std::string& name)
{
    m_name = name;
}

void ConfigCap::setDescription(const std::string& description)
{
    m_description = description;
}

void ConfigCap::setConfigfilePrefix(const std::string& prefix)
{
    m_configfilePrefix = prefix;
}

void ConfigCap::addGroup(const std::string& group)
{
    m_groups.insert(group);
}

void ConfigCap::setHidden()
{
    m_hidden = true;
}

}    // namespace pwr

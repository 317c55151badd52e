#include "plugins/Plugin.h"

Plugin::Plugin(const std::string& uuid) : m_uuid(uuid) {}

Plugin::~Plugin() = default;

void Plugin::setSID(int sid)
{
    m_sid = sid;
}

int Plugin::getSID() const
{
    return m_sid;
}

const std::string& Plugin::getUUID() const
{
    return m_uuid;
}

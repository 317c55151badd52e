#include "plugins/PluginEnvironment.h"

#include <algorithm>
#include <cstdint>

namespace {

// What the map holds for the key, or the type's zero.
template <typename Map, typename Key>
typename Map::mapped_type valueOf(const Map& map, const Key& key)
{
    const auto found = map.find(key);
    return found != map.end() ? found->second : typename Map::mapped_type{};
}

unsigned short countOf(const std::vector<_qv_aggregator_info>& endpoints)
{
    return static_cast<unsigned short>(std::min<std::size_t>(endpoints.size(), UINT16_MAX));
}

}    // namespace

void PluginEnvironment::addLoadedPMT(_qv_aggregator_info endpoint)
{
    const unsigned int guid = endpoint.guid;    // copies: no reference may point into the packed record
    const unsigned short deviceKey = endpoint.deviceKey;
    m_pmtEndpoints[guid].push_back(endpoint);
    m_loadedPMTGuids.insert(guid);
    m_pmtDeviceGuids[deviceKey] = guid;
}

std::set<unsigned int> PluginEnvironment::getLoadedPMTGUIDs()
{
    return m_loadedPMTGuids;
}

unsigned short PluginEnvironment::getLoadedPMTCollectionType(unsigned int guid)
{
    const auto found = m_pmtEndpoints.find(guid);
    return found != m_pmtEndpoints.end() ? found->second.front().collectionType : 0;
}

unsigned short PluginEnvironment::getLoadedPMTNumberEndpoints(unsigned int guid)
{
    const auto found = m_pmtEndpoints.find(guid);
    return found != m_pmtEndpoints.end() ? countOf(found->second) : 0;
}

unsigned short PluginEnvironment::getLoadedPMTNumberEndpoints(const std::string& name)
{
    const auto named = m_pmtPlatformGuids.find(name);
    return named != m_pmtPlatformGuids.end() ? getLoadedPMTNumberEndpoints(named->second) : 0;
}

std::vector<_qv_aggregator_info> PluginEnvironment::getLoadedPMTEndpoints(unsigned int guid)
{
    return valueOf(m_pmtEndpoints, guid);
}

std::vector<_qv_aggregator_info> PluginEnvironment::getLoadedPMTEndpoints(const std::string& name)
{
    const auto named = m_pmtPlatformGuids.find(name);
    if (named == m_pmtPlatformGuids.end()) return {};
    return getLoadedPMTEndpoints(named->second);
}

void PluginEnvironment::addPMTPlatformGUID(std::string& name, unsigned int guid)
{
    m_pmtPlatformGuids[name] = guid;
    m_pmtPlatformNames[guid] = name;
}

unsigned int PluginEnvironment::getPMTPlatformGUID(const std::string& name)
{
    return valueOf(m_pmtPlatformGuids, name);
}

unsigned int PluginEnvironment::getPMTPlatformGUID(unsigned short deviceKey)
{
    return valueOf(m_pmtDeviceGuids, deviceKey);
}

unsigned int PluginEnvironment::getPMTPlatformGUID(_qv_aggregator_info* endpoint)
{
    return endpoint != nullptr ? endpoint->guid : 0;
}

std::string PluginEnvironment::getPMTPlatformName(unsigned int guid)
{
    return m_pmtPlatformNames[guid];
}

void PluginEnvironment::setPMTXMLParser(unsigned int guid, XMLParser* parser)
{
    if (parser != nullptr) m_pmtParsers[guid] = parser;
}

XMLParser* PluginEnvironment::getPMTXMLParser(unsigned int guid)
{
    return valueOf(m_pmtParsers, guid);
}

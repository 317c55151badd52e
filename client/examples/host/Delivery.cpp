#include "Delivery.h"

#include "writers/PointCounter.h"

#include "plugins/QuorvaneHost.h"
#include "record/SystemMetadata.h"

#include <algorithm>

namespace host {

Delivery::Delivery(pwr::SystemMetadata& record, const std::vector<FeaturePlugin*>& plugins)
    : m_record(record), m_plugins(plugins)
{
}

Delivery::~Delivery() = default;

FeaturePlugin* Delivery::findPlugin_i(int sid) const
{
    const auto isMeant = [sid](const Plugin* plugin) { return plugin->getSID() == sid; };
    const auto plugin = std::find_if(m_plugins.begin(), m_plugins.end(), isMeant);
    return plugin != m_plugins.end() ? *plugin : nullptr;
}

void Delivery::deliver_i(const qv_driver_msg* message)
{
    FeaturePlugin* plugin = findPlugin_i(message->plugin_id);
    if (plugin == nullptr ||
        QuorvaneHost::processMessage(*plugin, m_record, message) == MetricPlugin::ProcessMessageCode::FAILED) {
        ++m_failedRecords;
    }
}

std::vector<const FeaturePlugin*> Delivery::end()
{
    finishRecords_i();
    std::vector<const FeaturePlugin*> failed;
    for (FeaturePlugin* plugin : m_plugins) {
        const bool isSent = plugin->finalizeCollection(plugin->getName(), m_params, m_record) == 0;
        if (plugin->finalize(m_record) != 0 || !isSent) failed.push_back(plugin);
    }
    m_record.samplesProduced = getSamples();
    return failed;
}

std::uint64_t Delivery::getSamples() const
{
    std::uint64_t samples = 0;
    for (const FeaturePlugin* plugin : m_plugins)
        samples += plugin->getSamples();
    return samples;
}

std::uint64_t Delivery::getDroppedPoints(const PointCounter& counter) const
{
    std::uint64_t dropped = 0;
    for (const FeaturePlugin* plugin : m_plugins) {
        const std::uint64_t arrived = counter.getPoints(plugin->getSwitchTag());
        dropped += plugin->getPoints() - std::min(plugin->getPoints(), arrived);
    }
    return dropped;
}

}    // namespace host

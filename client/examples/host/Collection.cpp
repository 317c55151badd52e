#include "Collection.h"

#include "Progress.h"
#include "system/System.h"
#include "writers/PointCounter.h"

#include "plugins/QuorvaneHost.h"
#include "record/CollectionData.h"
#include "record/Metadata.h"
#include "record/SystemMetadata.h"

#include <algorithm>
#include <chrono>
#include <cstddef>

namespace host {

Collection::Collection(pwr::SystemMetadata& record, CollectorPlugin& collector,
                       const std::vector<FeaturePlugin*>& plugins)
    : m_record(record), m_collector(collector), m_plugins(plugins)
{
}

Collection::~Collection() = default;

const Plugin* Collection::begin(const Params& params)
{
    m_params = params;
    for (FeaturePlugin* plugin : m_plugins) {
        if (!prepare_i(*plugin)) return plugin;
    }
    std::erase_if(m_messages, [this](const pwr::InputMsg* message) { return !m_collector.canCollectMessage(message); });
    if (m_collector.startCollection(m_messages, m_record) != 0) return &m_collector;
    m_collector.getCollectionResults(m_buffer);
    deliver_i();
    return nullptr;
}

bool Collection::prepare_i(FeaturePlugin& plugin)
{
    MetricPlugin::MetadataList metadata;
    if (plugin.initialize(m_record) != 0) return false;
    const int result = plugin.initializeCollection(m_messages, metadata, plugin.getName(), m_params, m_record);
    for (const pwr::Metadata* record : metadata) {
        m_metadata.emplace_back(record);
        plugin.processMetadata(record);
    }
    return result == 0;
}

void Collection::run(double seconds, unsigned int intervalMs, StopSignal& stop, Progress& progress,
                     const std::function<void()>& afterRound)
{
    using std::chrono::duration;
    using std::chrono::steady_clock;
    const steady_clock::time_point start = steady_clock::now();
    const steady_clock::time_point end =
        start + std::chrono::duration_cast<steady_clock::duration>(duration<double>(seconds));
    const std::chrono::milliseconds interval(intervalMs);
    steady_clock::time_point next = start;
    bool isOver = false;
    while (!isOver) {
        const steady_clock::time_point now = steady_clock::now();
        // Moments that passed during a long round are left out.
        next += interval * ((now - next) / interval + 1);
        next = std::min(next, end);
        isOver = stop.waitUntil(next) || next == end;
        takeRound();
        if (afterRound) afterRound();
        progress.show(duration<double>(steady_clock::now() - start).count(), seconds, getSamples());
    }
    progress.wipe();
}

bool Collection::takeRound()
{
    CollectionData summary;
    if (m_collector.continuousCollectionTick() != 0) return false;
    m_collector.getContinuousResult(m_buffer, summary);
    m_record.stopTSC = summary.getStopTimestamp();
    m_record.stopTimeval = summary.getStopTimeval();
    deliver_i();
    return true;
}

// Each record to the plugin of its number.
void Collection::deliver_i()
{
    std::size_t offset = 0;
    while (const qv_driver_msg* message = m_buffer.next(offset)) {
        const auto isReceiver = [message](const Plugin* plugin) { return plugin->getSID() == message->plugin_id; };
        const auto plugin = std::find_if(m_plugins.begin(), m_plugins.end(), isReceiver);
        if (plugin == m_plugins.end() ||
            QuorvaneHost::processMessage(**plugin, m_record, message) == MetricPlugin::ProcessMessageCode::FAILED) {
            ++m_failedRecords;
        }
    }
    if (!m_buffer.isAtEnd(offset)) ++m_failedRecords;
}

std::vector<const FeaturePlugin*> Collection::end()
{
    CollectionData summary;
    if (m_collector.stopCollection(summary) == 0) {
        m_record.stopTSC = summary.getStopTimestamp();
        m_record.stopTimeval = summary.getStopTimeval();
    }
    m_collector.getCollectionResults(m_buffer);
    deliver_i();
    std::vector<const FeaturePlugin*> failed;
    for (FeaturePlugin* plugin : m_plugins) {
        const bool isSent = plugin->finalizeCollection(plugin->getName(), m_params, m_record) == 0;
        if (plugin->finalize(m_record) != 0 || !isSent) failed.push_back(plugin);
    }
    m_record.samplesProduced = getSamples();
    return failed;
}

std::uint64_t Collection::getSamples() const
{
    std::uint64_t samples = 0;
    for (const FeaturePlugin* plugin : m_plugins)
        samples += plugin->getSamples();
    return samples;
}

std::uint64_t Collection::getDroppedPoints(const PointCounter& counter) const
{
    std::uint64_t dropped = 0;
    for (const FeaturePlugin* plugin : m_plugins) {
        const std::uint64_t arrived = counter.getPoints(plugin->getSwitchTag());
        dropped += plugin->getPoints() - std::min(plugin->getPoints(), arrived);
    }
    return dropped;
}

}    // namespace host

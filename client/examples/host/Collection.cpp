#include "Collection.h"

#include "Progress.h"
#include "sessions/SessionWriter.h"
#include "system/System.h"

#include "plugins/PluginEnvironment.h"
#include "record/Clocks.h"
#include "record/CollectionData.h"
#include "record/Metadata.h"
#include "record/SystemMetadata.h"

#include <algorithm>
#include <chrono>
#include <cstddef>

namespace host {

Collection::Collection(pwr::SystemMetadata& record, CollectorPlugin& collector,
                       const std::vector<FeaturePlugin*>& plugins)
    : Delivery(record, plugins), m_collector(collector)
{
}

Collection::~Collection()
{
    CollectionData ignored;
    if (m_isRunning) m_collector.stopCollection(ignored);
}

const Plugin* Collection::begin(const Params& params)
{
    m_params = params;
    for (FeaturePlugin* plugin : m_plugins) {
        if (!prepare_i(*plugin)) return plugin;
    }
    std::erase_if(m_messages, [this](const pwr::InputMsg* message) { return !m_collector.canCollectMessage(message); });
    if (m_collector.startCollection(m_messages, m_record) != 0) return &m_collector;
    m_isRunning = true;
    beginSession_i();
    m_collector.getCollectionResults(m_buffer);
    takeBuffer_i();
    return nullptr;
}

// The record tells the start by now.
void Collection::beginSession_i()
{
    if (m_session == nullptr) return;
    m_session->begin(m_record);
    for (const auto& record : m_metadata)
        m_session->addMetadata(*record);
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
        seconds > 0 ? start + std::chrono::duration_cast<steady_clock::duration>(duration<double>(seconds))
                    : steady_clock::time_point::max();
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
        progress.show(duration<double>(steady_clock::now() - start).count(), seconds,
                      m_isSavedOnly && m_session != nullptr ? m_session->getRecords() : getSamples());
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
    takeBuffer_i();
    return true;
}

void Collection::takeBuffer_i()
{
    save_i();
    if (m_isSavedOnly) return;
    std::size_t offset = 0;
    while (const qv_driver_msg* message = m_buffer.next(offset))
        deliver_i(message);
    if (!m_buffer.isAtEnd(offset)) ++m_failedRecords;
}

// States stand in front of the records that tell of them.
void Collection::save_i()
{
    if (m_session == nullptr) return;
    if (g_pluginEnvironment != nullptr) m_session->addStates(g_pluginEnvironment->getSystemStateEvents());
    m_session->addRecords(m_buffer);
    m_session->flush();
}

void Collection::stop()
{
    if (!m_isRunning) return;
    m_isRunning = false;
    CollectionData summary;
    if (m_collector.stopCollection(summary) == 0) {
        m_record.stopTSC = summary.getStopTimestamp();
        m_record.stopTimeval = summary.getStopTimeval();
    }
    m_collector.getCollectionResults(m_buffer);
    takeBuffer_i();
    m_record.programStopTimeval = pwr::QVNanoClock().getTimestamp();
    if (m_session != nullptr) m_session->end(m_record);
}

}    // namespace host

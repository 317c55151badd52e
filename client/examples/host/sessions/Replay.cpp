#include "sessions/Replay.h"

#include "sessions/SessionReader.h"

#include "plugins/PluginEnvironment.h"
#include "record/Metadata.h"
#include "record/SystemMetadata.h"

#include <algorithm>
#include <memory>

namespace host {

namespace {

// The wall clock's.
std::uint64_t nanosecondsOf(unsigned long long ticks, float clockMHz)
{
    constexpr double LONGEST = 1e18;
    return static_cast<std::uint64_t>(
        std::min(static_cast<double>(ticks) * 1000.0 / static_cast<double>(clockMHz), LONGEST));
}

}    // namespace

Replay::Replay(pwr::SystemMetadata& record, SessionReader& session)
    : Delivery(record, {}), m_session(session), m_lastTick(record.startTSC)
{
}

Replay::~Replay() = default;

std::vector<FeaturePlugin*> Replay::choose(const std::vector<FeaturePlugin*>& plugins)
{
    for (m_hasEntry = m_session.next(); m_hasEntry && m_session.getKind() == SessionEntry::METADATA;
         m_hasEntry = m_session.next()) {
        const std::unique_ptr<pwr::Metadata> record = m_session.takeMetadata();
        meet_i(record->getPluginID(), plugins);
        learn_i(*record);
    }
    return m_plugins;
}

// A record of a plugin that was not met before.
void Replay::meet_i(int sid, const std::vector<FeaturePlugin*>& plugins)
{
    const auto uuid = m_record.sidToUuid.find(sid);
    if (uuid == m_record.sidToUuid.end() || findPlugin_i(sid) != nullptr) return;
    const auto isMeant = [&uuid](const Plugin* plugin) { return plugin->getUUID() == uuid->second; };
    const auto plugin = std::find_if(plugins.begin(), plugins.end(), isMeant);
    if (plugin == plugins.end()) {
        m_missing.insert(uuid->second);
    } else if (std::find(m_plugins.begin(), m_plugins.end(), *plugin) == m_plugins.end()) {
        (*plugin)->setSID(sid);
        (*plugin)->initialize(m_record);
        m_plugins.push_back(*plugin);
    }
}

void Replay::run()
{
    for (; m_hasEntry; m_hasEntry = m_session.next())
        take_i();
    if (!m_session.isWhole()) closeWithoutEnd_i();
}

void Replay::take_i()
{
    switch (m_session.getKind()) {
    case SessionEntry::METADATA:
        learn_i(*m_session.takeMetadata());
        break;
    case SessionEntry::STATE:
        if (g_pluginEnvironment != nullptr)
            g_pluginEnvironment->addSystemStateEvent(m_session.getTick(), m_session.getState());
        break;
    case SessionEntry::CLOSING:
        m_session.takeStopTimes(m_record);
        break;
    default:
        process_i(m_session.getRecord());
    }
}

void Replay::learn_i(const pwr::Metadata& record)
{
    if (FeaturePlugin* plugin = findPlugin_i(record.getPluginID())) plugin->processMetadata(&record);
}

// As the collector did, and then the collection.
void Replay::process_i(const qv_driver_msg* message)
{
    m_lastTick = std::max<unsigned long long>(m_lastTick, message->tsc);
    if (findPlugin_i(message->plugin_id) == nullptr) {
        ++m_leftOutRecords;
        return;
    }
    const id_config_t id = {message->plugin_id, message->metric_id, message->msg_id};
    if (g_pluginEnvironment != nullptr) g_pluginEnvironment->checkAndRecordReset(id, message->tsc);
    deliver_i(message);
}

void Replay::closeWithoutEnd_i()
{
    m_record.stopTSC = m_lastTick;
    m_record.stopTimeval =
        m_record.startTimeval + nanosecondsOf(m_lastTick - m_record.startTSC, m_record.qvaClockFreqMHz);
    m_record.programStopTimeval = m_record.stopTimeval;
}

}    // namespace host

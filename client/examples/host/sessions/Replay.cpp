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
    std::vector<int> numbers;               // in the order of the file
    std::map<int, std::string> features;    // of each number; empty where no message tells
    for (m_hasEntry = m_session.next(); m_hasEntry && m_session.getKind() == SessionEntry::METADATA;
         m_hasEntry = m_session.next()) {
        m_front.push_back(m_session.takeMetadata());
        const auto [feature, isNew] = features.try_emplace(m_front.back()->getPluginID());
        if (isNew) numbers.push_back(feature->first);
        const auto* message = dynamic_cast<const pwr::MsgMetadata*>(m_front.back().get());
        if (message != nullptr && feature->second.empty()) feature->second = message->getCapName();
    }
    for (const int sid : numbers)
        meet_i(sid, features[sid], plugins);
    return m_plugins;
}

// A plugin of a module may have several features, each with a number of its own.
void Replay::meet_i(int sid, const std::string& feature, const std::vector<FeaturePlugin*>& plugins)
{
    const auto uuid = m_record.sidToUuid.find(sid);
    if (uuid == m_record.sidToUuid.end()) return;
    const auto plugin = std::find_if(plugins.begin(), plugins.end(), [&](const FeaturePlugin* one) {
        return one->getUUID() == uuid->second && (feature.empty() || one->getName() == feature) &&
               std::find(m_plugins.begin(), m_plugins.end(), one) == m_plugins.end();
    });
    if (plugin == plugins.end()) {
        m_missing.insert(uuid->second);
    } else {
        (*plugin)->setSID(sid);
        m_plugins.push_back(*plugin);
    }
}

const Plugin* Replay::begin()
{
    for (FeaturePlugin* plugin : m_plugins) {
        if (plugin->initialize(m_record) != 0) return plugin;
        for (const auto& record : m_front) {
            if (record->getPluginID() == plugin->getSID()) plugin->processMetadata(record.get());
        }
    }
    m_front.clear();
    return nullptr;
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
    const bool isReset = g_pluginEnvironment != nullptr && g_pluginEnvironment->checkAndRecordReset(id, message->tsc);
    if (isReset && ++m_resets > MOST_RESETS) {    // the environment keeps them all
        m_session.refuse("tells of more than " + std::to_string(MOST_RESETS) + " resets");
        return;
    }
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

#include "plugins/PluginEnvironment.h"

#include "runtime/Logger.h"

#include <cstdint>
#include <iterator>

PluginEnvironment* g_pluginEnvironment = nullptr;

namespace {

constexpr unsigned char CSTRACE_REGISTERED = 1U << 0;
constexpr unsigned char CS_FEATURE_ENABLED = 1U << 1;

// System states that the library itself knows; in the last two every message counts as a reset.
constexpr unsigned int STATE_NORMAL = 1;
constexpr unsigned int STATE_SUSPENDED = 4;
constexpr unsigned int STATE_HIBERNATED = 5;

void* closedHandle()
{
    return reinterpret_cast<void*>(static_cast<std::intptr_t>(-1));
}

unsigned char withFlag(unsigned char flags, unsigned char flag, bool enabled)
{
    return static_cast<unsigned char>(enabled ? flags | flag : flags & ~flag);
}

}    // namespace

PluginEnvironment::PluginEnvironment() : m_driverHandle(closedHandle()), m_cstraceDriverHandle(closedHandle()) {}

PluginEnvironment::~PluginEnvironment() = default;

void PluginEnvironment::setVerbosity(unsigned short verbosity)
{
    m_verbosity = verbosity;
}

Logger* PluginEnvironment::getErrorLogger() const
{
    return m_errorLogger;
}

void PluginEnvironment::setErrorLogger(Logger* logger)
{
    m_errorLogger = logger;
}

Logger* PluginEnvironment::getDebugLogger() const
{
    return m_debugLogger;
}

void PluginEnvironment::setDebugLogger(Logger* logger)
{
    m_debugLogger = logger;
}

Logger* PluginEnvironment::getNullLogger() const
{
    return m_nullLogger;
}

void PluginEnvironment::setNullLogger(Logger* logger)
{
    m_nullLogger = logger;
}

Logger* PluginEnvironment::getDataOutputHandle() const
{
    return m_dataOutputHandle;
}

void PluginEnvironment::setDataOutputHandle(Logger* logger)
{
    m_dataOutputHandle = logger;
}

Logger* PluginEnvironment::getFileOutputHandle(const char* path) const
{
    if (path == nullptr) return nullptr;
    if (m_fileOutputHandle != nullptr) return m_fileOutputHandle;
    return new FileLogger(path);
}

void PluginEnvironment::setFileOutputHandle(Logger* logger)
{
    m_fileOutputHandle = logger;
}

pwr::QVClockSource* PluginEnvironment::getDefaultClock() const
{
    return m_defaultClock;
}

void PluginEnvironment::setDefaultClock(pwr::QVClockSource* clock)
{
    m_defaultClock = clock;
}

void PluginEnvironment::setDefaultClockToTSCRatio(float clockMHz, float tscMHz)
{
    m_defaultClockMHz = clockMHz;
    m_defaultClockToTSCRatio = clockMHz / tscMHz;
}

float PluginEnvironment::getDefaultClockToTSCRatio() const
{
    return m_defaultClockToTSCRatio;
}

float PluginEnvironment::getDefaultClockMHz() const
{
    return m_defaultClockMHz;
}

float PluginEnvironment::getSecFromTimestamp(unsigned long long timestamp) const
{
    return static_cast<float>(timestamp) / m_defaultClockMHz / 1e6F;
}

void* PluginEnvironment::getWriterStream() const
{
    return m_writerStream;
}

void PluginEnvironment::setWriterStream(void* stream)
{
    m_writerStream = stream;
}

void* PluginEnvironment::getTopologyManager() const
{
    return m_topologyManager;
}

void PluginEnvironment::setTopologyManager(void* manager)
{
    m_topologyManager = manager;
}

void* PluginEnvironment::getPreCollectionTopology() const
{
    return m_preCollectionTopology;
}

void PluginEnvironment::setPreCollectionTopology(void* topology)
{
    m_preCollectionTopology = topology;
}

void* PluginEnvironment::getQuorvaneDrvHandle() const
{
    return m_driverHandle;
}

void PluginEnvironment::setQuorvaneDrvHandle(void* handle)
{
    m_driverHandle = handle;
}

void* PluginEnvironment::getCstraceDrvHandle() const
{
    return m_cstraceDriverHandle;
}

void PluginEnvironment::setCstraceDrvHandle(void* handle)
{
    m_cstraceDriverHandle = handle;
}

unsigned int PluginEnvironment::getQuorvaneDrvVersion() const
{
    return m_driverVersion;
}

void PluginEnvironment::setQuorvaneDrvVersion(unsigned int version)
{
    m_driverVersion = version;
}

bool PluginEnvironment::isCstraceRegister() const
{
    return (m_flags & CSTRACE_REGISTERED) != 0;
}

void PluginEnvironment::setCsTraceEnable(bool enabled)
{
    m_flags = withFlag(m_flags, CSTRACE_REGISTERED, enabled);
}

bool PluginEnvironment::isCsFeatureEnabled() const
{
    return (m_flags & CS_FEATURE_ENABLED) != 0;
}

void PluginEnvironment::setCsFeatureEnabled(bool enabled)
{
    m_flags = withFlag(m_flags, CS_FEATURE_ENABLED, enabled);
}

const std::string& PluginEnvironment::getQuorvaneDirectory() const
{
    return m_toolDirectory;
}

const std::string& PluginEnvironment::getResultFilePrefix() const
{
    return m_resultFilePrefix;
}

void PluginEnvironment::setResultFilePrefix(const std::string& prefix)
{
    m_resultFilePrefix = prefix;
}

bool PluginEnvironment::getHybernationEventDetected() const
{
    return m_hibernationDetected;
}

void PluginEnvironment::setHybernationEventDetected()
{
    m_hibernationDetected = true;
}

void PluginEnvironment::insertMetricSwitch(const std::string& metricSwitch)
{
    m_metricSwitches.insert(metricSwitch);
}

bool PluginEnvironment::hasMetricSwitch(const std::string& metricSwitch) const
{
    return m_metricSwitches.count(metricSwitch) != 0;
}

void PluginEnvironment::addPrefixForDebugLogging(const std::string& prefix)
{
    m_debugPrefixes.insert(prefix);
}

bool PluginEnvironment::isDebugLoggingEnabledFor(const std::string& prefix) const
{
    return m_debugPrefixes.count(prefix) != 0;
}

bool PluginEnvironment::isDebugLoggingEnabledFor(const char* prefix) const
{
    return prefix != nullptr && m_debugPrefixes.count(prefix) != 0;
}

void PluginEnvironment::queueMessage(const char* message)
{
    if (message != nullptr) m_queuedMessages.emplace_back(message);
}

std::deque<std::string>& PluginEnvironment::getQueuedMessages()
{
    return m_queuedMessages;
}

void PluginEnvironment::addSystemStateEvent(unsigned long long tsc, unsigned int state)
{
    m_systemStateEvents[tsc] = state;
}

void PluginEnvironment::removeLastSystemStateEvent()
{
    if (!m_systemStateEvents.empty()) m_systemStateEvents.erase(std::prev(m_systemStateEvents.end()));
}

const std::map<unsigned long long, unsigned int>& PluginEnvironment::getSystemStateEvents() const
{
    return m_systemStateEvents;
}

bool PluginEnvironment::checkAndRecordReset(id_config_t id, unsigned long long tsc)
{
    const auto [last, isFirst] = m_lastTimestamps.try_emplace(id, tsc);
    if (isFirst) return false;

    const unsigned int state = getCurrentSystemState(tsc);
    const bool isReset =
        checkPendingSystemStateEvent(last->second, tsc) || state == STATE_SUSPENDED || state == STATE_HIBERNATED;
    if (isReset) m_resetEvents[{id, tsc}] = state;
    last->second = tsc;
    return isReset;
}

bool PluginEnvironment::checkResetOccurred() const
{
    return !m_resetEvents.empty();
}

unsigned long long PluginEnvironment::isSystemReset(unsigned char pluginId, unsigned char metricId, unsigned char msgId,
                                                    unsigned long long tsc) const
{
    const auto found = m_resetEvents.find({id_config_t{pluginId, metricId, msgId}, tsc});
    return found != m_resetEvents.end() ? found->second : 0;
}

std::pair<unsigned long long, unsigned long long> PluginEnvironment::getLastResetEvent(unsigned long long tsc) const
{
    if (m_systemStateEvents.empty()) return {0, 0};
    const auto oldest = m_systemStateEvents.begin();
    auto event = m_systemStateEvents.upper_bound(tsc);
    if (event == m_systemStateEvents.end()) --event;
    while (event != oldest && event->second != STATE_NORMAL)
        --event;
    if (event == oldest) return {0, 0};
    return {std::prev(event)->first, event->first};
}

// The newest event below `tsc`: one exactly there has not taken effect yet.
unsigned int PluginEnvironment::getCurrentSystemState(unsigned long long tsc) const
{
    const auto next = m_systemStateEvents.lower_bound(tsc);
    return next != m_systemStateEvents.begin() ? std::prev(next)->second : STATE_NORMAL;
}

bool PluginEnvironment::checkPendingSystemStateEvent(unsigned long long first, unsigned long long last) const
{
    const auto event = m_systemStateEvents.lower_bound(first);
    return event != m_systemStateEvents.end() && event->first <= last;
}

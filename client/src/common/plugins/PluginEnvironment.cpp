#include "plugins/PluginEnvironment.h"

#include "runtime/Logger.h"

#include <cstdint>

PluginEnvironment* g_pluginEnvironment = nullptr;

namespace {

constexpr unsigned char CSTRACE_REGISTERED = 1U << 0;
constexpr unsigned char CS_FEATURE_ENABLED = 1U << 1;

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

#pragma once

#include "plugins/DriverTypes.h"
#include "runtime/Export.h"

#include <deque>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

class Logger;
class PluginEnvironment;
class XMLParser;
namespace pwr {
class QVClockSource;
}

// The host publishes its environment here before anything else of the library runs; the library only reads it. While
// it is null, log lines are swallowed.
extern QUORVANE_API PluginEnvironment* g_pluginEnvironment;

// What all plugins of a run share: verbosity and loggers, the writer stream, the default clock, the topology manager,
// driver handles, texts for the user. The host creates it, fills it and deletes it; it owns none of what its pointers
// point at. No lock: a host with several threads serialises access itself.
//
//   PluginEnvironment environment;
//   g_pluginEnvironment = &environment;
//   environment.setErrorLogger(&logger);
class QUORVANE_API PluginEnvironment {
public:
    PluginEnvironment();
    ~PluginEnvironment();
    PluginEnvironment(const PluginEnvironment&) = delete;
    PluginEnvironment& operator=(const PluginEnvironment&) = delete;

    // 0 plain, 1 errors (default), 2 warnings, 3 debug, 4 info: a message goes out when its level is reached.
    unsigned short getVerbosity() const { return m_verbosity; }
    void setVerbosity(unsigned short verbosity);

    // Loggers belong to the host; any may be null. The debug logger also takes warnings and info, the null logger takes
    // streamed text below the verbosity.
    Logger* getErrorLogger() const;
    void setErrorLogger(Logger* logger);
    Logger* getDebugLogger() const;
    void setDebugLogger(Logger* logger);
    Logger* getNullLogger() const;
    void setNullLogger(Logger* logger);
    Logger* getDataOutputHandle() const;
    void setDataOutputHandle(Logger* logger);

    // The stored handle, whatever the path; else a new FileLogger on `path`, which is not stored and is the caller's to
    // delete. Null for a null path.
    Logger* getFileOutputHandle(const char* path) const;
    void setFileOutputHandle(Logger* logger);

    pwr::QVClockSource* getDefaultClock() const;
    void setDefaultClock(pwr::QVClockSource* clock);

    // Sets the default clock's frequency and its ratio to the time stamp counter (clockMHz / tscMHz), both in MHz.
    void setDefaultClockToTSCRatio(float clockMHz, float tscMHz);
    float getDefaultClockToTSCRatio() const;
    float getDefaultClockMHz() const;

    // `timestamp` in ticks of the default clock. Without a clock frequency the result is infinite, or NaN for 0.
    float getSecFromTimestamp(unsigned long long timestamp) const;

    // The one WriterStream of the process, as WriterStream*; null while there is none.
    void* getWriterStream() const;
    void setWriterStream(void* stream);

    // The DataHandleProvider, as DataHandleProvider*; null while there is none.
    void* getTopologyManager() const;
    void setTopologyManager(void* manager);

    void* getPreCollectionTopology() const;
    void setPreCollectionTopology(void* topology);

    // Driver handles are -1 while not open.
    void* getQuorvaneDrvHandle() const;
    void setQuorvaneDrvHandle(void* handle);
    void* getCstraceDrvHandle() const;
    void setCstraceDrvHandle(void* handle);
    unsigned int getQuorvaneDrvVersion() const;
    void setQuorvaneDrvVersion(unsigned int version);

    bool isCstraceRegister() const;
    void setCsTraceEnable(bool enabled);
    bool isCsFeatureEnabled() const;
    void setCsFeatureEnabled(bool enabled);

    // The directory of the running program with a separator behind it; empty until it is set. Setting it also makes the
    // system look there, and in its subfolder "plugins", for libraries that are loaded by name. When the program's path
    // can't be told or has more than 259 bytes an error is logged and all stays as it was. The argument is not used.
    const std::string& getQuorvaneDirectory() const;
    void setQuorvaneDirectory(const std::string& unused);

    const std::string& getResultFilePrefix() const;
    void setResultFilePrefix(const std::string& prefix);

    // Once detected, a hibernation stays detected.
    bool getHybernationEventDetected() const;
    void setHybernationEventDetected();

    // Exact names; there is no match by prefix.
    void insertMetricSwitch(const std::string& metricSwitch);
    bool hasMetricSwitch(const std::string& metricSwitch) const;

    // Families of messages that go out below their level.
    void addPrefixForDebugLogging(const std::string& prefix);
    bool isDebugLoggingEnabledFor(const std::string& prefix) const;
    bool isDebugLoggingEnabledFor(const char* prefix) const;

    // Texts for the user; the host reads the queue and may empty it. Null queues nothing.
    void queueMessage(const char* message);
    std::deque<std::string>& getQueuedMessages();

    // System states, by the tick they began at: 1 is normal; in 4 and 5 every message counts as a reset; the collector
    // that reports them gives the other numbers their meaning.
    void addSystemStateEvent(unsigned long long tsc, unsigned int state);    // a repeated tick overwrites
    void removeLastSystemStateEvent();                                       // the latest tick; nothing without events
    const std::map<unsigned long long, unsigned int>& getSystemStateEvents() const;

    // The collector shows each message as it arrives. True, and recorded, when it follows a reset: a state event lies
    // between it and the identity's message before (both ticks included), or the system is in state 4 or 5. The first
    // message of an identity never does.
    bool checkAndRecordReset(id_config_t id, unsigned long long tsc);
    bool checkResetOccurred() const;    // any reset was recorded

    // The state recorded for exactly this message; 0 for no reset.
    unsigned long long isSystemReset(unsigned char pluginId, unsigned char metricId, unsigned char msgId,
                                     unsigned long long tsc) const;

    // The last change to the normal state around `tsc`: tick of the event before it, and its own; (0, 0) for none.
    std::pair<unsigned long long, unsigned long long> getLastResetEvent(unsigned long long tsc) const;

    // PMT endpoints and the platform names of their GUIDs. What is not known gives 0, null or nothing.
    void addLoadedPMT(_qv_aggregator_info endpoint);
    std::set<unsigned int> getLoadedPMTGUIDs();
    unsigned short getLoadedPMTCollectionType(unsigned int guid);    // of its first endpoint
    unsigned short getLoadedPMTNumberEndpoints(unsigned int guid);
    unsigned short getLoadedPMTNumberEndpoints(const std::string& name);
    std::vector<_qv_aggregator_info> getLoadedPMTEndpoints(unsigned int guid);
    std::vector<_qv_aggregator_info> getLoadedPMTEndpoints(const std::string& name);

    void addPMTPlatformGUID(std::string& name, unsigned int guid);
    unsigned int getPMTPlatformGUID(const std::string& name);
    unsigned int getPMTPlatformGUID(unsigned short deviceKey);
    unsigned int getPMTPlatformGUID(_qv_aggregator_info* endpoint);
    std::string getPMTPlatformName(unsigned int guid);    // an unknown GUID is remembered with an empty name

    // The parsers belong to the host. A null one is ignored.
    void setPMTXMLParser(unsigned int guid, XMLParser* parser);
    XMLParser* getPMTXMLParser(unsigned int guid);

    // The external performance library, Meridx. The host loads it and hands its handle over; it is in use while the
    // configuration file's name is not empty. Each operation is false when it is not in use, lacks the function or
    // answers other than 0.
    void setMeridxDllHandle(void* handle);
    void setMeridxConfigFileName(const std::string& fileName);

    bool configureMeridx();    // a refused file is logged and takes the library out of use
    bool getMeridxVersion(unsigned int* a, unsigned int* b, unsigned int* c);    // none is null
    bool startMeridx();
    bool stopMeridx();    // unloads the library whatever it answers: the next start needs a new handle

private:
    unsigned int getCurrentSystemState(unsigned long long tsc) const;
    bool checkPendingSystemStateEvent(unsigned long long first, unsigned long long last) const;

    unsigned short m_verbosity = 1;
    Logger* m_errorLogger = nullptr;
    Logger* m_debugLogger = nullptr;
    Logger* m_nullLogger = nullptr;
    Logger* m_dataOutputHandle = nullptr;
    Logger* m_fileOutputHandle = nullptr;
    pwr::QVClockSource* m_defaultClock = nullptr;
    void* m_writerStream = nullptr;
    std::set<std::string> m_metricSwitches;
    std::string m_toolDirectory;    // with a separator behind it
    void* m_driverHandle;
    void* m_cstraceDriverHandle;
    void* m_performanceLibrary = nullptr;
    unsigned int m_driverVersion = 0;
    unsigned char m_flags = 0;    // bit 0: cstrace registered; bit 1: cs feature enabled
    std::string m_resultFilePrefix;
    std::string m_performanceConfigFile;
    bool m_hibernationDetected = false;
    float m_defaultClockToTSCRatio = 1.0F;
    float m_defaultClockMHz = 0.0F;
    std::map<unsigned long long, unsigned int> m_systemStateEvents;    // TSC to state
    std::map<std::pair<id_config_t, unsigned long long>, unsigned int> m_resetEvents;
    std::map<id_config_t, unsigned long long> m_lastTimestamps;
    void* m_topologyManager = nullptr;
    void* m_preCollectionTopology = nullptr;
    std::set<std::string, std::less<>> m_debugPrefixes;
    std::deque<std::string> m_queuedMessages;
    std::set<unsigned int> m_loadedPMTGuids;
    std::map<unsigned int, std::vector<_qv_aggregator_info>> m_pmtEndpoints;
    std::map<std::string, unsigned int> m_pmtPlatformGuids;
    std::map<unsigned short, unsigned int> m_pmtDeviceGuids;
    std::map<unsigned int, std::string> m_pmtPlatformNames;
    std::map<unsigned int, XMLParser*> m_pmtParsers;
};

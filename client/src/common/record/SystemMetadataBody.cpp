#include "record/SystemMetadata.h"
#include "record/WireFields.h"
#include "runtime/Log.h"
#include "values/DataHandleProvider.h"

// The body of a SystemMetadata. Its fields stand in the walks below in wire order, one line each, and the same walks
// write and read them. The format has grown: up to the command line every field is required; behind it a record of an
// older release may end in front of any field.

namespace pwr {

namespace {

constexpr std::uint32_t FIRST_VERSION_WITH_WIDE_QUANTUM = 0x07E40300;
constexpr std::uint32_t NARROW_QUANTUM_UNIT = 1000;
constexpr char DEBUG_PREFIX[] = "SystemMeta::deserialize";

enum class Warning { PLAIN, ALSO_FOR_PREFIX };

}    // namespace

static void putField(Serializer& out, const FMS& fms)
{
    putField(out, fms.family);
    putField(out, fms.model);
    putField(out, fms.stepping);
}

static bool getField(Serializer& in, FMS& fms)
{
    return getField(in, fms.family) && getField(in, fms.model) && getField(in, fms.stepping);
}

static void putField(Serializer& out, const std::pair<const int, std::string>& sidAndUuid)
{
    putField(out, sidAndUuid.first);
    putField(out, sidAndUuid.second);
}

// The first UUID of a SID stays.
static bool getField(Serializer& in, std::map<int, std::string>& sidToUuid)
{
    std::uint16_t count = 0;
    if (!getField(in, count)) return false;
    for (; count > 0; --count) {
        int sid = 0;
        std::string uuid;
        if (!getField(in, sid) || !getField(in, uuid)) return false;
        sidToUuid.emplace_hint(sidToUuid.end(), sid, std::move(uuid));
    }
    return true;
}

static void putField(Serializer& out, const TopTree& tree)
{
    tree.serializeTree(out);
}

// A short tree is a tree; what follows it then fails.
static bool getField(Serializer& in, TopTree& tree)
{
    tree.deserializeTree(in);
    return true;
}

static void putField(Serializer& out, const TopologyChange& change)
{
    change.serialize(out);
}

static bool getField(Serializer& in, TopologyChange& change)
{
    return change.deserialize(in) == 0;
}

static void putField(Serializer& out, const QVClockSync& sync)
{
    putField(out, sync.clockUUID);
    putField(out, sync.clockName);
    putField(out, sync.clockFreqMHz);
    putField(out, sync.clockValue);
    putField(out, sync.defaultClockUUID);
    putField(out, sync.defaultClockName);
    putField(out, sync.defaultClockFreqMHz);
    putField(out, sync.defaultClockValue);
}

static bool getField(Serializer& in, QVClockSync& sync)
{
    return getField(in, sync.clockUUID) && getField(in, sync.clockName) && getField(in, sync.clockFreqMHz) &&
           getField(in, sync.clockValue) && getField(in, sync.defaultClockUUID) &&
           getField(in, sync.defaultClockName) && getField(in, sync.defaultClockFreqMHz) &&
           getField(in, sync.defaultClockValue);
}

namespace {

// What reading does beside filling fields, each behind the field it tells of.

void logVersion(const char* what, std::uint32_t word)
{
    QV_LOG_INFO("INFO: OK, read %s version = %u (%u.%u.%u)\n", what, word, word >> 16, word >> 8 & 0xFF, word & 0xFF);
}

void logFrequency(const char* what, float megahertz)
{
    QV_LOG_INFO("INFO: OK: read %s freq = %.2f\n", what, static_cast<double>(megahertz));
}

void logSpan(const char* what, std::uint64_t start, std::uint64_t stop)
{
    QV_LOG_INFO("INFO: OK: read start, stop %s = %llu, %llu\n", what, static_cast<unsigned long long>(start),
                static_cast<unsigned long long>(stop));
}

void logCommandLine(const std::vector<std::string>& commandLine)
{
    LogLine line(LogLevel::INFO, isLogged(LogLevel::INFO));
    line << "OK: read command line: ";
    for (const std::string& argument : commandLine) {
        line << argument << " ";
    }
}

void setClockOfEnvironment(const SystemMetadata& system)
{
    if (g_pluginEnvironment == nullptr) return;
    g_pluginEnvironment->setDefaultClockToTSCRatio(system.qvaClockFreqMHz, system.cpuFreqMHz);
}

class BodyWriter {
public:
    explicit BodyWriter(Serializer& out) : m_out(out) {}

    template <typename T>
    void required(const T& field)
    {
        putField(m_out, field);
    }
    template <typename T>
    void optional(const T& field, const char*, Warning = Warning::PLAIN)
    {
        putField(m_out, field);
    }
    template <typename T>
    void optionalList(const T& list, const char*)
    {
        putField(m_out, list);
    }
    void optionalAnew(const std::string& text, const char*, Warning) { putField(m_out, text); }
    void quantum(const SystemMetadata& system, const char*) { putField(m_out, system.continuousCollectionQuantum); }
    void clockSyncs(const std::vector<QVClockSync>& syncs) { putField(m_out, syncs); }

    template <typename Act>
    void afterRead(Act)
    {
    }

private:
    Serializer& m_out;
};

// Once the read has ended, every further field keeps its value.
class BodyReader {
public:
    explicit BodyReader(Serializer& in) : m_in(in) {}

    int result() const { return m_result; }    // 0; -1 when a required field is missing

    template <typename T>
    void required(T& field)
    {
        if (!m_isEnded && !getField(m_in, field)) fail_i();
    }

    template <typename T>
    void optional(T& field, const char* what, Warning warning = Warning::PLAIN)
    {
        if (!m_isEnded && !getField(m_in, field)) endOlder_i(what, warning);
    }

    // The count may be missing, an element may not.
    template <typename T>
    void optionalList(std::vector<T>& list, const char* what)
    {
        std::uint16_t count = 0;
        optional(count, what);
        if (!m_isEnded && !getElements(m_in, list, count)) fail_i();
    }

    // Reading appends, so the text's default goes first.
    void optionalAnew(std::string& text, const char* what, Warning warning)
    {
        if (!m_isEnded) text.clear();
        optional(text, what, warning);
    }

    void quantum(SystemMetadata& system, const char* what)
    {
        if (system.appVersion >= FIRST_VERSION_WITH_WIDE_QUANTUM) {
            optional(system.continuousCollectionQuantum, what);
            return;
        }
        std::uint16_t narrow = 0;
        optional(narrow, what);
        if (!m_isEnded) system.continuousCollectionQuantum = narrow * NARROW_QUANTUM_UNIT;
    }

    void clockSyncs(std::vector<QVClockSync>& syncs)
    {
        if (m_isEnded) return;
        std::uint16_t count = 0;
        if (!getField(m_in, count)) {
            warnOfClockSyncs_i();
            m_isEnded = true;
        }
        for (; count > 0 && !m_isEnded; --count) {
            QVClockSync sync;
            if (getField(m_in, sync)) {
                syncs.push_back(std::move(sync));
            } else {
                warnOfClockSyncs_i();
                fail_i();
            }
        }
    }

    template <typename Act>
    void afterRead(Act act)
    {
        if (!m_isEnded) act();
    }

private:
    void fail_i()
    {
        m_isEnded = true;
        m_result = -1;
    }

    void endOlder_i(const char* what, Warning warning)
    {
        m_isEnded = true;
        static constexpr char TEXT[] = "WARNING: couldn't extract %s -- older file?!\n";
        if (warning == Warning::ALSO_FOR_PREFIX) {
            QV_LOG_WARNING_FOR(DEBUG_PREFIX, TEXT, what);
        } else {
            QV_LOG_WARNING(TEXT, what);
        }
    }

    static void warnOfClockSyncs_i() { QV_LOG_WARNING("WARNING: Couldn't extract clock sync data\n"); }

    Serializer& m_in;
    bool m_isEnded = false;
    int m_result = 0;
};

template <typename Body, typename Record>
void walkIdentity(Body& body, Record& system)
{
    body.required(system.sidToUuid);
    body.required(system.fms);
    body.required(system.appVersion);
    body.afterRead([&] { logVersion("app", system.appVersion); });
    body.required(system.driverVersion);
    body.afterRead([&] { logVersion("driver", system.driverVersion); });
    body.required(system.scuVersion);
    body.required(system.platformName);
    body.required(system.hostName);
    body.required(system.osName);
    body.required(system.osType);
    body.required(system.osVersion);
    body.required(system.cpuTopology);
    body.afterRead([&] { DataHandleProvider::resetTopology(system); });
}

template <typename Body, typename Record>
void walkFrequencies(Body& body, Record& system)
{
    body.required(system.busFreqMHz);
    body.afterRead([&] { logFrequency("bus", system.busFreqMHz); });
    body.required(system.qvaClockFreqMHz);
    body.afterRead([&] { logFrequency("qva clock", system.qvaClockFreqMHz); });
    body.required(system.lfmFreqMHz);
    body.afterRead([&] { logFrequency("lfm", system.lfmFreqMHz); });
    body.required(system.hfmFreqMHz);
    body.afterRead([&] { logFrequency("hfm", system.hfmFreqMHz); });
    body.required(system.cpuFreqMHz);
    body.afterRead([&] { logFrequency("CPU", system.cpuFreqMHz); });
    body.afterRead([&] { setClockOfEnvironment(system); });
}

template <typename Body, typename Record>
void walkCollection(Body& body, Record& system)
{
    body.required(system.startTSC);
    body.required(system.stopTSC);
    body.afterRead([&] { logSpan("TSC", system.startTSC, system.stopTSC); });
    body.required(system.startTimeval);
    body.required(system.stopTimeval);
    body.afterRead([&] { logSpan("Timeval", system.startTimeval, system.stopTimeval); });
    body.required(system.pollingIntervalMsecs);
    body.afterRead([&] { QV_LOG_INFO("INFO: OK: read polling interval msecs = %d\n", system.pollingIntervalMsecs); });
    body.required(system.maxDetail);
    body.afterRead([&] { QV_LOG_INFO("INFO: OK: read max detail = %u\n", unsigned{system.maxDetail}); });
    body.required(system.commandLine);
    body.afterRead([&] { logCommandLine(system.commandLine); });
}

template <typename Body, typename Record>
void walkTail(Body& body, Record& system)
{
    static constexpr char PROGRAM_SPAN[] = "program start/stop timeval";
    body.optional(system.samplesProduced, "# produced samples");
    body.optional(system.samplesDropped, "# dropped samples");
    body.optional(system.lowOverheadMode, "low overhead mode information");
    body.optionalList(system.platformSpecifiers, "platform specifiers");
    body.optionalList(system.topologyChanges, "topology changes");
    body.optional(system.hyperVEnabled, "HyperV enable information");
    body.optional(system.vsmEnabled, "VSM enable information");
    body.optionalList(system.cpuNativeModelIds, "cpu native model IDs");
    body.optional(system.platformId, "Platform Id information");
    body.optional(system.edramCap, "Edram Cap information");
    body.optional(system.iGfxId, "iGfx Id information");
    body.optionalAnew(system.driverBuildDate, "driver build date information", Warning::ALSO_FOR_PREFIX);
    body.optional(system.programStartTimeval, PROGRAM_SPAN, Warning::ALSO_FOR_PREFIX);
    body.optional(system.programStopTimeval, PROGRAM_SPAN, Warning::ALSO_FOR_PREFIX);
    body.optional(system.exeBuildDate, ".exe build date information");
    body.quantum(system, "continuous collection quantum information");
    body.clockSyncs(system.clockSyncs);
    body.optional(system.hvciEnabled, "Hypervisor Enforced Code Integrity enable information",
                  Warning::ALSO_FOR_PREFIX);
    body.optional(system.nonNumericVersion, "non-numeric version number", Warning::ALSO_FOR_PREFIX);
    body.optional(system.buildRef, "build ref information");
    body.optional(system.packageType, "package type information");
}

template <typename Body, typename Record>
void walk(Body& body, Record& system)
{
    walkIdentity(body, system);
    walkFrequencies(body, system);
    walkCollection(body, system);
    walkTail(body, system);
}

}    // namespace

void SystemMetadata::serialize_i(Serializer& out) const
{
    BodyWriter body(out);
    walk(body, *this);
}

int SystemMetadata::deserialize_i(Serializer& in, unsigned int)
{
    BodyReader body(in);
    walk(body, *this);
    return body.result();
}

}    // namespace pwr

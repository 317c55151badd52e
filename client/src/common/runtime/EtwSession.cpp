#include "runtime/EtwSession.h"

#include "runtime/Log.h"
#include "runtime/OsInfo.h"
#include "runtime/os/Os.h"
#include "runtime/os/ProviderNames.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <new>
#include <stdexcept>

unsigned long EtwSession::s_userSessionBufferSize = 1024;
unsigned long EtwSession::s_userSessionMinBuffers = 2;
unsigned long EtwSession::s_userSessionMaxBuffers = 400;
unsigned long EtwSession::s_kernelSessionBufferSize = 1024;
unsigned long EtwSession::s_kernelSessionMinBuffers = 2;
unsigned long EtwSession::s_kernelSessionMaxBuffers = 2048;
std::string EtwSession::s_etwSessionStr = "etw-session";

namespace {

constexpr unsigned long SUCCESS = 0;
constexpr unsigned long NOT_ENOUGH_MEMORY = 8;
constexpr unsigned long DISK_FULL = 112;
constexpr unsigned long INSUFFICIENT_BUFFER = 122;
constexpr unsigned long ALREADY_EXISTS = 183;

constexpr unsigned long NOT_KNOWN = 0xFFFFFFFF;
constexpr ULONG PERFORMANCE_COUNTER_CLOCK = 1;

using pwr::os::INVALID_TRACE;

pwr::os::Tracing& tracing()
{
    return *pwr::os::current().tracing;
}

bool isSame(const GUID& left, const GUID& right)
{
    return std::memcmp(&left, &right, sizeof left) == 0;
}

std::string guidText(const GUID& guid)
{
    char text[37];
    const UCHAR* rest = guid.Data4;
    std::snprintf(
        text, sizeof text, "%08x-%04x-%04x-%02x%02x-%02x%02x%02x%02x%02x%02x", static_cast<unsigned int>(guid.Data1),
        static_cast<unsigned int>(guid.Data2), static_cast<unsigned int>(guid.Data3),
        static_cast<unsigned int>(rest[0]), static_cast<unsigned int>(rest[1]), static_cast<unsigned int>(rest[2]),
        static_cast<unsigned int>(rest[3]), static_cast<unsigned int>(rest[4]), static_cast<unsigned int>(rest[5]),
        static_cast<unsigned int>(rest[6]), static_cast<unsigned int>(rest[7]));
    return text;
}

std::map<std::string, std::string> knownProviders()
{
    std::map<std::string, std::string> names;
    for (const pwr::os::ProviderName& each : pwr::os::PROVIDER_NAMES) {
        names[each.guid] = each.name;
    }
    return names;
}

// The name of the log file of a session; see the constructor.
std::string logFileName(std::string resultFile, const std::string& suffix)
{
    const std::size_t dot = resultFile.rfind('.');
    const std::size_t ending = dot != std::string::npos ? resultFile.find(".etl", dot) : dot;
    if (ending == std::string::npos) throw std::runtime_error("Issue with result file name");
    return resultFile.insert(ending, suffix);
}

}    // namespace

std::map<std::string, std::string> EtwSession::s_guidToProviderNameMap = knownProviders();

EtwSession::EtwSession() = default;

EtwSession::EtwSession(std::string resultFile, const std::string& suffix, const std::string& sessionName,
                       const std::string& displayName)
    : m_sessionName(sessionName), m_displayName(displayName), m_logFile(logFileName(std::move(resultFile), suffix))
{
}

EtwSession::~EtwSession() = default;

void EtwSession::setUserBuffer(unsigned long size, unsigned long min, unsigned long max)
{
    s_userSessionBufferSize = size;
    s_userSessionMinBuffers = min;
    s_userSessionMaxBuffers = max;
}

void EtwSession::setKernelBuffer(unsigned long size, unsigned long min, unsigned long max)
{
    s_kernelSessionBufferSize = size;
    s_kernelSessionMinBuffers = min;
    s_kernelSessionMaxBuffers = max;
}

void EtwSession::addProvider(GUID guid, unsigned long long keywords)
{
    const auto found = std::find_if(m_providers.begin(), m_providers.end(),
                                    [&guid](const GUID& provider) { return isSame(provider, guid); });
    if (found != m_providers.end()) {
        m_keywords[static_cast<std::size_t>(found - m_providers.begin())] |= keywords;
        return;
    }
    m_providers.push_back(guid);
    m_keywords.push_back(keywords);
}

bool EtwSession::hasAnyProvider()
{
    return !m_providers.empty();
}

bool EtwSession::setEventTraceProperties()
{
    return setEventTraceProperties(s_userSessionBufferSize, s_userSessionMaxBuffers, s_userSessionMinBuffers);
}

bool EtwSession::setEventTraceProperties(unsigned long bufferSize, unsigned long maxBuffers, unsigned long minBuffers)
{
    Block block = makeBlock_i();
    block->Wnode.Flags = WNODE_FLAG_TRACED_GUID;
    block->Wnode.ClientContext = PERFORMANCE_COUNTER_CLOCK;
    block->BufferSize = static_cast<ULONG>(bufferSize);
    block->MaximumBuffers = static_cast<ULONG>(maxBuffers);
    block->MinimumBuffers = static_cast<ULONG>(minBuffers);
    std::memcpy(reinterpret_cast<char*>(block.get()) + block->LogFileNameOffset, m_logFile.c_str(), m_logFile.size());
    freeProperties_i();
    m_properties = block.release();
    return true;
}

// The structure with room for both names behind it, session first, each with its terminator.
EtwSession::Block EtwSession::makeBlock_i() const
{
    const std::size_t size = sizeof(EVENT_TRACE_PROPERTIES) + m_sessionName.size() + 1 + m_logFile.size() + 1;
    Block block(static_cast<EVENT_TRACE_PROPERTIES*>(pwr::os::current().memory->allocate(size)));
    if (!block) throw std::bad_alloc();
    std::memset(static_cast<void*>(block.get()), 0, size);
    block->Wnode.BufferSize = static_cast<ULONG>(size);
    if (!m_providers.empty()) block->Wnode.Guid = m_providers.front();
    block->LogFileMode = EVENT_TRACE_FILE_MODE_SEQUENTIAL;
    block->LoggerNameOffset = sizeof(EVENT_TRACE_PROPERTIES);
    block->LogFileNameOffset = static_cast<ULONG>(sizeof(EVENT_TRACE_PROPERTIES) + m_sessionName.size() + 1);
    return block;
}

void EtwSession::freeProperties_i()
{
    std::free(m_properties);
    m_properties = nullptr;
}

unsigned long EtwSession::control_i(EVENT_TRACE_PROPERTIES* block, unsigned long code) const
{
    return tracing().control(m_handle, m_sessionName.c_str(), block, code);
}

bool EtwSession::begin()
{
    if (!setEventTraceProperties()) {
        freeProperties_i();
        return false;
    }
    const unsigned long status = startInPlaceOfLeftover_i();
    if (status != SUCCESS) {
        tellStartFailure_i(status);
        freeProperties_i();
        return false;
    }
    for (std::size_t i = 0; i < m_providers.size(); ++i) {
        if (enableProvider_i(m_providers[i], m_keywords[i])) continue;
        control_i(m_properties, EVENT_TRACE_CONTROL_STOP);
        freeProperties_i();
        return false;
    }
    return true;
}

unsigned long EtwSession::start_i()
{
    TRACEHANDLE handle = 0;
    const unsigned long status = tracing().start(handle, m_sessionName.c_str(), m_properties);
    m_handle = handle;
    return status;
}

// The system describes the session that it stops in the block it is given: a block of its own keeps the properties, and
// the file that they name, ours.
unsigned long EtwSession::startInPlaceOfLeftover_i()
{
    const unsigned long status = start_i();
    if (status != ALREADY_EXISTS) return status;
    control_i(makeBlock_i().get(), EVENT_TRACE_CONTROL_STOP);
    return start_i();
}

void EtwSession::tellStartFailure_i(unsigned long status) const
{
    std::string text = "Cannot start the trace " + m_logFile + ". " + formatErrorMessage(status);
    if (status == DISK_FULL) text += " ETW requires at least 200MB disk space to start a trace.\n";
    if (status == NOT_ENOUGH_MEMORY) {
        text += " Try to use smaller buffer size using --etw-user[kernel]-buffers [size] [min] [max] option.\n";
    }
    QV_LOG_WARNING("WARNING: %s", text.c_str());
}

bool EtwSession::enableProvider_i(const GUID& provider, unsigned long long keywords)
{
    logProvider_i(provider);
    unsigned long status =
        tracing().enable(m_handle, provider, EVENT_CONTROL_CODE_ENABLE_PROVIDER, TRACE_LEVEL_INFORMATION, keywords);
    if (status != SUCCESS) {
        const std::string text =
            "Cannot enable ETW event provider in the trace file " + m_logFile + ". " + formatErrorMessage(status);
        QV_LOG_PLAIN("%s\n", text.c_str());
        if (g_pluginEnvironment != nullptr) g_pluginEnvironment->queueMessage(text.c_str());
        return false;
    }
    status = tracing().enable(m_handle, provider, EVENT_CONTROL_CODE_CAPTURE_STATE, TRACE_LEVEL_INFORMATION, keywords);
    if (status == SUCCESS) return true;
    QV_LOG_WARNING("WARNING: Cannot capture state of provider in the trace file %s. %s", m_logFile.c_str(),
                   formatErrorMessage(status).c_str());
    return false;
}

void EtwSession::logProvider_i(const GUID& provider) const
{
    if (!pwr::isLoggedFor(pwr::LogLevel::INFO, s_etwSessionStr.c_str())) return;
    const std::string guid = guidText(provider);
    const auto name = s_guidToProviderNameMap.find(guid);
    if (name != s_guidToProviderNameMap.end()) {
        pwr::writeLog(pwr::LogLevel::INFO, "INFO: Starting trace for provider %s (%s).\n", name->second.c_str(),
                      guid.c_str());
        return;
    }
    const std::string advice = "(" + guid + "). Use \"xperf -providers I\" to look up the provider name from the guid.";
    pwr::writeLog(pwr::LogLevel::INFO, "INFO: Starting trace for unknown provider %s\n", advice.c_str());
}

bool EtwSession::flush()
{
    if (control_i(m_properties, EVENT_TRACE_CONTROL_FLUSH) == SUCCESS) return true;
    QV_LOG_WARNING("WARNING: Unable verify that %s is buffering events properly.", m_displayName.c_str());
    return false;
}

bool EtwSession::end()
{
    if (m_handle == 0 || m_properties == nullptr) return false;
    if (!flush()) return false;
    for (const GUID& provider : m_providers) {
        const unsigned long status =
            tracing().enable(m_handle, provider, EVENT_CONTROL_CODE_DISABLE_PROVIDER, TRACE_LEVEL_INFORMATION, 0);
        if (status == SUCCESS) continue;
        QV_LOG_WARNING("WARNING: Cannot disable the trace. %s", formatErrorMessage(status).c_str());
        return false;
    }
    const unsigned long status = control_i(m_properties, EVENT_TRACE_CONTROL_STOP);
    if (status == SUCCESS) {
        freeProperties_i();
        return true;
    }
    QV_LOG_WARNING("WARNING: Cannot stop the trace. %s", formatErrorMessage(status).c_str());
    return false;
}

unsigned long EtwSession::queryLostEvents()
{
    const Block block = makeBlock_i();
    return control_i(block.get(), EVENT_TRACE_CONTROL_QUERY) == SUCCESS ? block->EventsLost : NOT_KNOWN;
}

EVENT_TRACE_LOGFILEA EtwSession::setLogfileCallback()
{
    EVENT_TRACE_LOGFILEA logfile{};
    logfile.LogFileName = m_logFile.data();
    logfile.ProcessTraceMode = PROCESS_TRACE_MODE_EVENT_RECORD | PROCESS_TRACE_MODE_RAW_TIMESTAMP;
    return logfile;
}

unsigned long long EtwSession::preparepostProcessLog()
{
    QV_LOG_PLAIN(" Processing ETW data for %s.\n", m_displayName.c_str());
    EVENT_TRACE_LOGFILEA logfile = setLogfileCallback();
    unsigned long lastError = 0;
    m_handle = tracing().open(logfile, lastError);
    if (m_handle == INVALID_TRACE) {
        QV_LOG_FATAL("FATAL: Cannot open the ETW data file for %s: %s. %s", m_displayName.c_str(), m_logFile.c_str(),
                     formatErrorMessage(lastError).c_str());
        return INVALID_TRACE;
    }
    const TRACE_LOGFILE_HEADER& header = logfile.LogfileHeader;
    if (header.EventsLost != 0) {
        QV_LOG_FATAL("FATAL: Warning: Lost events detected (%llu) in %s.\n",
                     static_cast<unsigned long long>(header.EventsLost), m_logFile.c_str());
    }
    if (header.PointerSize == 8) return m_handle;
    QV_LOG_WARNING(
        "WARNING: Using -i option on a 64-bit version for logs collected using a 32-bit version might result "
        "in unpredictable behavior.\n");
    tracing().close(m_handle);    // nobody else could
    return INVALID_TRACE;
}

bool EtwSession::postProcessLog()
{
    const unsigned long long handle = preparepostProcessLog();
    if (handle == INVALID_TRACE) return false;
    const unsigned long status = tracing().process(handle);
    tracing().close(handle);
    if (status == SUCCESS) return true;
    QV_LOG_WARNING("WARNING: Cannot process the trace file %s. %s", m_displayName.c_str(),
                   formatErrorMessage(status).c_str());
    return false;
}

namespace {

// The system's list of providers, as large as it asks for.
class ProviderList {
public:
    // False, and logged, when there is none.
    bool load()
    {
        unsigned long status = tracing().enumerateProviders(nullptr, m_size);
        while (status == INSUFFICIENT_BUFFER) {
            if (!grow_i()) return false;
            status = tracing().enumerateProviders(list_i(), m_size);
        }
        if (status != SUCCESS) {
            QV_LOG_WARNING("WARNING: TdhEnumerateProviders failed with %lu.\n", status);
            return false;
        }
        if (m_bytes) return true;
        QV_LOG_WARNING("WARNING: TdhEnumerateProvider PROVIDER_ENUMERATION_INFO is NULL.\n");
        return false;
    }

    const TRACE_PROVIDER_INFO* find(const wchar_t* name) const
    {
        const PROVIDER_ENUMERATION_INFO* list = list_i();
        for (ULONG i = 0; i < list->NumberOfProviders; ++i) {
            const TRACE_PROVIDER_INFO& provider = list->TraceProviderInfoArray[i];
            const auto* text = reinterpret_cast<const wchar_t*>(m_bytes.get() + provider.ProviderNameOffset);
            if (std::wcscmp(text, name) == 0) return &provider;
        }
        return nullptr;
    }

private:
    struct Free {
        void operator()(char* bytes) const { std::free(bytes); }
    };

    bool grow_i()
    {
        m_bytes.reset();
        m_bytes.reset(static_cast<char*>(pwr::os::current().memory->allocate(m_size)));
        if (m_bytes) return true;
        QV_LOG_WARNING("WARNING: Allocation failed (size=%lu).\n", static_cast<unsigned long>(m_size));
        return false;
    }

    PROVIDER_ENUMERATION_INFO* list_i() const { return reinterpret_cast<PROVIDER_ENUMERATION_INFO*>(m_bytes.get()); }

    std::unique_ptr<char, Free> m_bytes;
    ULONG m_size = 0;
};

}    // namespace

bool EtwSession::getGuidForProvider(wchar_t* name, GUID* guid)
{
    if (name == nullptr || guid == nullptr) return false;
    ProviderList providers;
    if (!providers.load()) return false;
    const TRACE_PROVIDER_INFO* provider = providers.find(name);
    if (provider == nullptr) return false;
    *guid = provider->ProviderGuid;
    return true;
}

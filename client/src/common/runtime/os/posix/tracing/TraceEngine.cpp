#include "runtime/os/posix/tracing/TraceEngine.h"

#include "runtime/os/Clocks.h"

#include <algorithm>
#include <cstring>

#include <sys/syscall.h>
#include <unistd.h>

namespace pwr::os::trace {

namespace {

constexpr unsigned long INVALID_HANDLE = 6;
constexpr unsigned long BAD_LENGTH = 24;
constexpr unsigned long BAD_PATHNAME = 161;
constexpr unsigned long ALREADY_EXISTS = 183;
constexpr unsigned long NOT_FOUND = 4201;    // no such session

std::uint32_t currentThreadId()
{
    static thread_local const auto s_id = static_cast<std::uint32_t>(syscall(SYS_gettid));
    return s_id;
}

// The log file's path out of the caller's block: 0 when the block holds one.
unsigned long readPath(const EVENT_TRACE_PROPERTIES& block, std::string& path)
{
    const ULONG size = block.Wnode.BufferSize;
    const ULONG offset = block.LogFileNameOffset;
    if (size < sizeof block) return BAD_LENGTH;
    if (offset < sizeof block || offset >= size) return INVALID_PARAMETER;
    const char* text = reinterpret_cast<const char*>(&block) + offset;
    path.assign(text, strnlen(text, size - offset));
    if (path.size() == size - offset) return INVALID_PARAMETER;    // no end mark
    return path.empty() ? BAD_PATHNAME : 0;
}

bool addPieces(Payload& payload)
{
    if (payload.count > MAX_EVENT_DATA_DESCRIPTORS || (payload.count > 0 && payload.pieces == nullptr)) return false;
    for (unsigned long i = 0; i < payload.count; ++i) {
        if (payload.pieces[i].Size != 0 && payload.pieces[i].Ptr == 0) return false;
        payload.bytes += payload.pieces[i].Size;
    }
    return true;
}

}    // namespace

TraceEngine::TraceEngine() : m_processId(static_cast<std::uint32_t>(getpid()))
{
    systemClocks();    // the last sessions need them: they go after the engine
}

TraceEngine::~TraceEngine()
{
    for (const auto& session : m_sessions) {
        session->stop();
    }
}

TraceEngine::Sessions::iterator TraceEngine::findSession_i(TRACEHANDLE handle, const std::string& name)
{
    return std::find_if(m_sessions.begin(), m_sessions.end(), [handle, &name](const auto& session) {
        return handle != 0 ? session->handle() == handle : session->name() == name;
    });
}

unsigned long TraceEngine::start(TRACEHANDLE& handle, const char* name, EVENT_TRACE_PROPERTIES* properties)
{
    handle = 0;
    if (name == nullptr || *name == '\0' || properties == nullptr) return INVALID_PARAMETER;
    std::string path;
    const unsigned long badPath = readPath(*properties, path);
    if (badPath != 0) return badPath;

    const std::lock_guard<std::mutex> lock(m_mutex);
    if (findSession_i(0, name) != m_sessions.end()) return ALREADY_EXISTS;
    auto session = std::make_unique<TraceSession>(m_lastHandle + 1, name);
    const unsigned long status = session->start(path, *properties);
    if (status != 0) return status;
    session->describe(*properties);
    handle = ++m_lastHandle;
    m_sessions.push_back(std::move(session));
    return 0;
}

unsigned long TraceEngine::control(TRACEHANDLE handle, const char* name, EVENT_TRACE_PROPERTIES* properties,
                                   unsigned long code)
{
    if (properties == nullptr) return INVALID_PARAMETER;
    if (properties->Wnode.BufferSize < sizeof *properties) return BAD_LENGTH;

    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto session = findSession_i(handle, name != nullptr ? name : "");
    if (session == m_sessions.end()) return NOT_FOUND;
    if (code == EVENT_TRACE_CONTROL_STOP) return stop_i(session, *properties);
    if (code != EVENT_TRACE_CONTROL_QUERY && code != EVENT_TRACE_CONTROL_FLUSH) return INVALID_PARAMETER;
    const unsigned long status = code == EVENT_TRACE_CONTROL_FLUSH ? (*session)->flush() : 0;
    (*session)->describe(*properties);
    return status;
}

// The session is gone afterwards, also when its last events could not be written.
unsigned long TraceEngine::stop_i(Sessions::iterator session, EVENT_TRACE_PROPERTIES& properties)
{
    const unsigned long status = (*session)->stop();
    (*session)->describe(properties);
    m_sessions.erase(session);
    routeAll_i();
    return status;
}

unsigned long TraceEngine::enable(TRACEHANDLE handle, const GUID& provider, unsigned long code, UCHAR level,
                                  unsigned long long keywords)
{
    if (handle == 0 || code > EVENT_CONTROL_CODE_CAPTURE_STATE) return INVALID_PARAMETER;

    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto session = findSession_i(handle, "");
    if (session == m_sessions.end()) return NOT_FOUND;
    std::vector<EnabledProvider>& providers = (*session)->providers();
    const auto found = std::find_if(providers.begin(), providers.end(),
                                    [&provider](const EnabledProvider& each) { return each.provider == provider; });
    // Our providers have no state of their own to write when asked.
    if (code == EVENT_CONTROL_CODE_CAPTURE_STATE) return found != providers.end() ? 0 : INVALID_PARAMETER;
    if (found != providers.end()) providers.erase(found);
    if (code == EVENT_CONTROL_CODE_ENABLE_PROVIDER) providers.push_back({provider, level, keywords});
    routeAll_i();
    return 0;
}

void TraceEngine::routeAll_i()
{
    for (Registration& registration : m_registrations) {
        route_i(registration);
    }
}

void TraceEngine::route_i(Registration& registration) const
{
    registration.routes.clear();
    if (!registration.inUse) return;
    for (const auto& session : m_sessions) {
        for (const EnabledProvider& enabled : session->providers()) {
            if (enabled.provider == registration.provider) registration.routes.push_back({session.get(), enabled});
        }
    }
}

TraceEngine::Registration* TraceEngine::findRegistration_i(REGHANDLE handle)
{
    const std::uint64_t place = (handle & 0xFFFFFFFFU) - 1;    // 0 wraps to none
    if (place >= m_registrations.size()) return nullptr;
    Registration& found = m_registrations[static_cast<std::size_t>(place)];
    return found.inUse && found.generation == handle >> 32 ? &found : nullptr;
}

unsigned long TraceEngine::registerProvider(const GUID& provider, REGHANDLE& handle)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_free.empty()) {
        m_free.push_back(m_registrations.size());
        m_registrations.emplace_back();
    }
    const std::size_t place = m_free.back();
    m_free.pop_back();
    Registration& registration = m_registrations[place];
    registration.provider = provider;
    registration.inUse = true;
    ++registration.generation;
    route_i(registration);
    handle = (static_cast<REGHANDLE>(registration.generation) << 32) | (place + 1);
    return 0;
}

unsigned long TraceEngine::unregisterProvider(REGHANDLE handle)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    Registration* registration = findRegistration_i(handle);
    if (registration == nullptr) return INVALID_HANDLE;
    registration->inUse = false;
    route_i(*registration);
    m_free.push_back(static_cast<std::size_t>(registration - m_registrations.data()));
    return 0;
}

unsigned long TraceEngine::write(REGHANDLE handle, const EVENT_DESCRIPTOR& event, unsigned long count,
                                 const EVENT_DATA_DESCRIPTOR* data)
{
    Payload payload{data, count, 0};
    if (!addPieces(payload)) return INVALID_PARAMETER;

    const std::lock_guard<std::mutex> lock(m_mutex);
    const Registration* registration = findRegistration_i(handle);
    if (registration == nullptr) return INVALID_HANDLE;
    EventHead head{m_processId, currentThreadId(), 0, registration->provider, event};
    unsigned long status = 0;
    for (const Route& route : registration->routes) {
        if (!route.enabled.takes(event)) continue;
        const unsigned long result = route.session->add(head, payload);
        if (status == 0) status = result;
    }
    return status;
}

}    // namespace pwr::os::trace

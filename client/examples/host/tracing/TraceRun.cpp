#include "tracing/TraceRun.h"

#include "tracing/LogCatcher.h"
#include "tracing/TracePrinter.h"

#include "config/pw_utils.h"
#include "runtime/pw_functions.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <ostream>
#include <system_error>
#include <utility>

namespace host {

namespace {

namespace fs = std::filesystem;

const std::string ENDING = ".etl";
const std::string CAPTURE = "_Capture";    // what the library calls the merged file

struct Kind {
    const char* suffix;
    const char* session;
    const char* displayName;
    unsigned long long keyword;
};
const Kind KINDS[] = {
    {"_Phases", "QuorvaneHostPhases", "the host's phases", PHASE_KEYWORD},
    {"_Rounds", "QuorvaneHostRounds", "the host's rounds", ROUND_KEYWORD},
};

// The first host that traces has the plain names.
std::string sessionName(const Kind& kind, const TraceSlot& slot)
{
    const unsigned int number = slot.getNumber();
    return kind.session + (number == 0 ? std::string() : "-" + std::to_string(number + 1));
}

std::string pathWith(std::string file, const std::string& suffix)
{
    return file.insert(file.size() - ENDING.size(), suffix);
}

bool isFolder(const std::string& path)
{
    std::error_code ignored;
    return fs::is_directory(path, ignored);
}

bool isFile(const std::string& path)
{
    std::error_code ignored;
    return fs::is_regular_file(path, ignored);
}

}    // namespace

TraceRun::TraceRun(const std::string& file, std::ostream& out, Say say)
    : m_file(file), m_out(out), m_say(std::move(say))
{
}

TraceRun::~TraceRun() = default;

// The sessions look for the last ".etl", the merge for the first.
bool TraceRun::isFileName(const std::string& file)
{
    return file.ends_with(ENDING) && file.find(ENDING) == file.size() - ENDING.size();
}

bool TraceRun::begin()
{
    if (m_file.empty()) return true;
    if (isFolder(m_file)) return fail_i(m_file + " is a folder: give --trace a file");
    std::vector<std::string> suffixes{CAPTURE};
    for (const Kind& kind : KINDS)
        suffixes.emplace_back(kind.suffix);
    for (const std::string& suffix : suffixes) {
        if (!makeRoom_i(pathWith(m_file, suffix))) return false;
    }
    if (!startSessions_i()) return false;
    if (m_sessions.empty()) return true;
    m_marks.emplace();
    m_marks->markPhase(Phase::START, "the trace runs");
    return true;
}

// A file that exists afterwards was written by the trace.
bool TraceRun::makeRoom_i(const std::string& path) const
{
    std::FILE* file = nullptr;
    errno = 0;
    if (pwr::openFileHandle(&file, path.c_str(), "wb")) {
        std::fclose(file);
        std::error_code ignored;
        fs::remove(path, ignored);
        return true;
    }
    char reason[256] = "";
    if (errno != 0) pwr::pw_strerror(errno, reason, sizeof reason);
    return fail_i(path + " can't be written" + (*reason != '\0' ? std::string(": ") + reason : std::string()) +
                  ": give --trace a file in a folder that can be written");
}

bool TraceRun::startSessions_i()
{
    const LogCatcher log;
    m_slot.emplace();
    for (const Kind& kind : KINDS) {
        const std::string name = sessionName(kind, *m_slot);
        MarkSession& session = m_sessions.emplace_back(m_file, kind.suffix, name, kind.displayName);
        session.addProvider(TRACE_PROVIDER, kind.keyword);
        const bool runs = session.begin();
        if (runs && isFile(session.getFile())) continue;
        m_sessions.clear();
        if (!runs) return fail_i("the trace could not begin: " + log.getReason());
        m_say("this system starts tracing sessions that write no file: there will be no trace");
        break;
    }
    return true;
}

CollectorPlugin& TraceRun::watch(CollectorPlugin& collector)
{
    if (m_sessions.empty()) return collector;
    m_collector = std::make_unique<TracingCollector>(collector, *m_marks);
    return *m_collector;
}

bool TraceRun::end()
{
    if (m_sessions.empty()) return true;
    if (!stopSessions_i()) return false;
    const bool isGood = merge_i() ? printMerged_i() : printEach_i();
    m_sessions.clear();
    m_out.flush();
    if (!m_out) return fail_i("the trace could not be printed");
    const std::size_t lost = m_marks->getFailures();
    return lost == 0 ? isGood : fail_i(std::to_string(lost) + " events of the trace could not be written");
}

bool TraceRun::stopSessions_i()
{
    bool isGood = true;
    for (MarkSession& session : m_sessions) {
        const LogCatcher log;
        if (!session.end()) isGood = fail_i(session.getFile() + " could not be completed: " + log.getReason());
    }
    if (!isGood) m_sessions.clear();
    return isGood;
}

bool TraceRun::merge_i() const
{
    const LogCatcher log;
    std::vector<std::string> suffixes;
    for (const Kind& kind : KINDS)
        suffixes.emplace_back(kind.suffix);
    MarkSession::merge(m_file, suffixes);
    std::string reason = log.getReason();
    if (reason.empty() && isFile(pathWith(m_file, CAPTURE))) return true;
    if (reason.empty()) reason = "no file was made";
    if (reason.find("LoadLibrary()") != std::string::npos) {
        reason =
            "the merge library KernelTraceControl can't be loaded from " + g_pluginEnvironment->getQuorvaneDirectory();
    }
    return fail_i("the trace files are not merged: " + reason);
}

bool TraceRun::printMerged_i() const
{
    MarkSession capture(m_file, CAPTURE, "", "the merged trace");
    return print_i(capture);
}

// The next best thing to the merged file.
bool TraceRun::printEach_i()
{
    for (MarkSession& session : m_sessions)
        print_i(session);
    return false;
}

bool TraceRun::print_i(MarkSession& session) const
{
    const LogCatcher log;
    m_out << "\nTrace " << session.getFile() << ":\n";
    TracePrinter printer(m_out);
    if (session.replayTo(printer)) return true;
    return fail_i(session.getFile() + " can't be read: " + log.getReason());
}

bool TraceRun::fail_i(const std::string& text) const
{
    m_say(text);
    return false;
}

}    // namespace host

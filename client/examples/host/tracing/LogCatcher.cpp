#include "tracing/LogCatcher.h"

#include "runtime/Log.h"

namespace host {

LogCatcher::LogCatcher()
    : m_environment(*g_pluginEnvironment), m_errorLogger(m_environment.getErrorLogger()),
      m_debugLogger(m_environment.getDebugLogger()), m_verbosity(m_environment.getVerbosity())
{
    m_environment.setErrorLogger(&m_keeper);
    m_environment.setDebugLogger(&m_keeper);
    m_environment.setVerbosity(static_cast<unsigned short>(pwr::LogLevel::WARNING));
}

LogCatcher::~LogCatcher()
{
    m_environment.setErrorLogger(m_errorLogger);
    m_environment.setDebugLogger(m_debugLogger);
    m_environment.setVerbosity(m_verbosity);
}

// Lines without a level tell what is going on, but for one that tells of a failure.
void LogCatcher::Keeper::log(int level, const char* text)
{
    const std::string line(text != nullptr ? text : "");
    if (level == static_cast<int>(pwr::LogLevel::PLAIN) && !line.starts_with("Cannot ")) return;
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_reason = line;
}

std::string LogCatcher::Keeper::getReason() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    std::string line = m_reason.substr(0, m_reason.find_first_of("\r\n"));
    for (const std::string prefix : {"WARNING: ", "FATAL: "}) {
        if (line.starts_with(prefix)) line.erase(0, prefix.size());
    }
    return line.erase(line.find_last_not_of(". ") + 1);
}

}    // namespace host

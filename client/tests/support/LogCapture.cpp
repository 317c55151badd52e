#include "support/LogCapture.h"

#include <algorithm>

namespace test {

namespace {

std::size_t occurrences(const std::string& text, const std::string& part)
{
    const std::size_t step = std::max<std::size_t>(part.size(), 1);
    std::size_t found = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + step))
        ++found;
    return found;
}

}    // namespace

LogCapture::LogCapture(unsigned short verbosity) : m_previous(g_pluginEnvironment)
{
    m_environment.setVerbosity(verbosity);
    m_environment.setErrorLogger(&m_error);
    m_environment.setDebugLogger(&m_debug);
    m_environment.setNullLogger(&m_null);
    g_pluginEnvironment = &m_environment;
}

LogCapture::~LogCapture()
{
    g_pluginEnvironment = m_previous;
}

bool LogCapture::contains(const std::string& text) const
{
    return count(text) > 0;
}

std::size_t LogCapture::count(const std::string& text) const
{
    return occurrences(errors(), text) + occurrences(debug(), text);
}

void LogCapture::clear()
{
    m_error.clear();
    m_debug.clear();
    m_null.clear();
}

}    // namespace test

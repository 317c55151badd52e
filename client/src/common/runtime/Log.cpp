#include "runtime/Log.h"

#include "runtime/pw_functions.h"

#include <cstdarg>
#include <vector>

namespace pwr {

namespace {

const char* prefixOf(LogLevel level)
{
    switch (level) {
    case LogLevel::ERROR_:
        return "ERROR: ";
    case LogLevel::WARNING:
        return "WARNING: ";
    case LogLevel::DEBUG_:
        return "DEBUG: ";
    case LogLevel::INFO:
        return "INFO: ";
    case LogLevel::FATAL:
        return "FATAL: ";
    default:
        return "";
    }
}

Logger* loggerOf(LogLevel level)
{
    if (g_pluginEnvironment == nullptr) return nullptr;
    const bool isError = level == LogLevel::ERROR_ || level == LogLevel::FATAL;
    return isError ? g_pluginEnvironment->getErrorLogger() : g_pluginEnvironment->getDebugLogger();
}

// What a logger is told.
int numberOf(LogLevel level)
{
    return level == LogLevel::FATAL ? 0 : static_cast<int>(level);
}

}    // namespace

void writeLog(LogLevel level, const char* format, ...)
{
    Logger* logger = loggerOf(level);
    if (logger == nullptr) return;

    char shortText[512];
    va_list args;
    va_start(args, format);
    const int length = pw_vsnprintf(shortText, sizeof shortText, format, args);
    va_end(args);

    std::vector<char> longText;
    const char* text = shortText;
    if (length < 0) {
        text = "";
    } else if (static_cast<std::size_t>(length) >= sizeof shortText) {
        longText.resize(static_cast<std::size_t>(length) + 1);
        va_start(args, format);
        pw_vsnprintf(longText.data(), longText.size(), format, args);
        va_end(args);
        text = longText.data();
    }
    logger->log(numberOf(level), text);
}

LogLine::LogLine(LogLevel level, bool wanted)
{
    if (g_pluginEnvironment == nullptr) return;
    begin_i(wanted ? loggerOf(level) : g_pluginEnvironment->getNullLogger());
    if (wanted && m_out != nullptr) *m_out << numberOf(level) << prefixOf(level);
}

LogLine::LogLine(Fatal) : LogLine(LogLevel::FATAL, true) {}

LogLine::~LogLine()
{
    if (m_out == nullptr) return;
    m_out->clear();
    *m_out << std::endl;
    m_out->flags(m_flags);
    m_out->precision(m_precision);
    m_out->fill(m_fill);
}

// The line reads the same whatever formats the stream was left with, and leaves them as it found them. The stream's
// state is made good: a piece that could not be written must not silence the lines after it.
void LogLine::begin_i(std::ostream* out)
{
    m_out = out;
    if (m_out == nullptr) return;
    m_out->clear();
    m_flags = m_out->flags(std::ios_base::skipws | std::ios_base::dec);
    m_precision = m_out->precision(6);
    m_fill = m_out->fill(' ');
    m_out->width(0);
}

}    // namespace pwr

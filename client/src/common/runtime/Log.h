#pragma once

#include "plugins/PluginEnvironment.h"
#include "runtime/Logger.h"

#include <ostream>

// How the library writes a log line. Texts given whole, with their own prefix and line end, are the format form:
//
//   QV_LOG_WARNING("WARNING: Handle id %llu not found in UniqueId map\n", id);
//
// Below the verbosity it costs one comparison and evaluates nothing. Texts given in pieces are the stream form, which
// puts the level digit and the prefix in front and the line end behind:
//
//   QV_STREAM_ERROR << "could NOT open file " << path << "!";    // 1ERROR: could NOT open file x!
//
// It always streams its pieces: into the null logger below the verbosity. The forms that end in _FOR also go out when
// debug logging is enabled for their prefix. Errors go to the error logger, all else to the debug logger; a null
// environment or a null logger swallows the text. A fatal text goes to the error logger whatever the verbosity, and
// tells it level 0.

namespace pwr {

// The numbers are those of the verbosity; FATAL stands outside them.
enum class LogLevel : unsigned short { PLAIN = 0, ERROR_ = 1, WARNING = 2, DEBUG_ = 3, INFO = 4, FATAL = 5 };

inline bool isLogged(LogLevel level)
{
    return g_pluginEnvironment != nullptr && g_pluginEnvironment->getVerbosity() >= static_cast<unsigned short>(level);
}

// As above, or debug logging is enabled for `prefix`.
inline bool isLoggedFor(LogLevel level, const char* prefix)
{
    return isLogged(level) || (g_pluginEnvironment != nullptr && g_pluginEnvironment->isDebugLoggingEnabledFor(prefix));
}

// clang knows the standard's formats by their plain name on every system, gcc on Windows by this one only.
#if defined(__clang__)
#define QV_PRINTF_LIKE(text, first) __attribute__((format(printf, text, first)))
#else
#define QV_PRINTF_LIKE(text, first) __attribute__((format(gnu_printf, text, first)))
#endif

// Prints the text and hands it to the logger of the level, whatever the verbosity.
QUORVANE_API void writeLog(LogLevel level, const char* format, ...) QV_PRINTF_LIKE(2, 3);

// One line of the stream form; the line ends with the full expression. It starts with the stream's default formats and
// leaves the logger's as they were.
class QUORVANE_API LogLine {
public:
    // A line that is not `wanted` goes to the null logger, without digit and prefix.
    LogLine(LogLevel level, bool wanted);
    struct Fatal {};
    explicit LogLine(Fatal);    // a fatal line
    ~LogLine();
    LogLine(const LogLine&) = delete;
    LogLine& operator=(const LogLine&) = delete;

    template <typename T>
    LogLine& operator<<(const T& piece)
    {
        if (m_out != nullptr) *m_out << piece;
        return *this;
    }

    // A null text is an empty piece.
    LogLine& operator<<(const char* piece)
    {
        if (m_out != nullptr && piece != nullptr) *m_out << piece;
        return *this;
    }

private:
    void begin_i(std::ostream* out);

    std::ostream* m_out = nullptr;        // null: swallowed
    std::ios_base::fmtflags m_flags{};    // the stream's formats outside the line
    std::streamsize m_precision = 0;
    char m_fill = ' ';
};

}    // namespace pwr

#define QV_LOG_IF_(wanted, level, ...)                                                                                 \
    do {                                                                                                               \
        if (wanted) ::pwr::writeLog(level, __VA_ARGS__);                                                               \
    } while (false)

#define QV_LOG_PLAIN(...) ::pwr::writeLog(::pwr::LogLevel::PLAIN, __VA_ARGS__)
#define QV_LOG_FATAL(...) ::pwr::writeLog(::pwr::LogLevel::FATAL, __VA_ARGS__)
#define QV_LOG_ERROR(...) QV_LOG_AT_(ERROR_, __VA_ARGS__)
#define QV_LOG_WARNING(...) QV_LOG_AT_(WARNING, __VA_ARGS__)
#define QV_LOG_DEBUG(...) QV_LOG_AT_(DEBUG_, __VA_ARGS__)
#define QV_LOG_INFO(...) QV_LOG_AT_(INFO, __VA_ARGS__)

#define QV_LOG_ERROR_FOR(prefix, ...) QV_LOG_AT_FOR_(prefix, ERROR_, __VA_ARGS__)
#define QV_LOG_WARNING_FOR(prefix, ...) QV_LOG_AT_FOR_(prefix, WARNING, __VA_ARGS__)
#define QV_LOG_DEBUG_FOR(prefix, ...) QV_LOG_AT_FOR_(prefix, DEBUG_, __VA_ARGS__)
#define QV_LOG_INFO_FOR(prefix, ...) QV_LOG_AT_FOR_(prefix, INFO, __VA_ARGS__)

#define QV_LOG_AT_(level, ...) QV_LOG_IF_(::pwr::isLogged(::pwr::LogLevel::level), ::pwr::LogLevel::level, __VA_ARGS__)
#define QV_LOG_AT_FOR_(prefix, level, ...)                                                                             \
    QV_LOG_IF_(::pwr::isLoggedFor(::pwr::LogLevel::level, prefix), ::pwr::LogLevel::level, __VA_ARGS__)

#define QV_STREAM_AT_(level) ::pwr::LogLine(::pwr::LogLevel::level, ::pwr::isLogged(::pwr::LogLevel::level))
#define QV_STREAM_AT_FOR_(prefix, level)                                                                               \
    ::pwr::LogLine(::pwr::LogLevel::level, ::pwr::isLoggedFor(::pwr::LogLevel::level, prefix))

#define QV_STREAM_PLAIN ::pwr::LogLine(::pwr::LogLevel::PLAIN, true)
#define QV_STREAM_ERROR QV_STREAM_AT_(ERROR_)
#define QV_STREAM_WARNING QV_STREAM_AT_(WARNING)
#define QV_STREAM_DEBUG QV_STREAM_AT_(DEBUG_)
#define QV_STREAM_INFO QV_STREAM_AT_(INFO)

#define QV_STREAM_ERROR_FOR(prefix) QV_STREAM_AT_FOR_(prefix, ERROR_)
#define QV_STREAM_WARNING_FOR(prefix) QV_STREAM_AT_FOR_(prefix, WARNING)
#define QV_STREAM_DEBUG_FOR(prefix) QV_STREAM_AT_FOR_(prefix, DEBUG_)
#define QV_STREAM_INFO_FOR(prefix) QV_STREAM_AT_FOR_(prefix, INFO)

// Reads "0FATAL: " and the pieces.
#define QV_STREAM_FATAL ::pwr::LogLine(::pwr::LogLine::Fatal{})

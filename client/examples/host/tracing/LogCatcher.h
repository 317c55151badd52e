#pragma once

#include "plugins/PluginEnvironment.h"
#include "runtime/Logger.h"

#include <mutex>
#include <string>

namespace host {

// Keeps what the library logs from the user while it lives, and the last warning among it: why something failed.
//
//   LogCatcher log;
//   if (!session.begin()) say(log.getReason());
class LogCatcher {
public:
    LogCatcher();    // needs the environment
    ~LogCatcher();
    LogCatcher(const LogCatcher&) = delete;
    LogCatcher& operator=(const LogCatcher&) = delete;

    // Its first line, without the prefix; empty when there was none.
    std::string getReason() const { return m_keeper.getReason(); }

private:
    // Of any thread: the merge has one of its own.
    class Keeper : public Logger {
    public:
        void log(int level, const char* text) override;
        using Logger::log;
        void writeOut() override {}
        std::string getReason() const;

    private:
        mutable std::mutex m_mutex;
        std::string m_reason;
    };

    PluginEnvironment& m_environment;
    Logger* m_errorLogger;
    Logger* m_debugLogger;
    unsigned short m_verbosity;
    Keeper m_keeper;
};

}    // namespace host

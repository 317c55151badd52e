#pragma once

#include "plugins/PluginEnvironment.h"
#include "runtime/Logger.h"

#include <string>
#include <vector>

namespace test {

// A logger that keeps what it is given.
class RecordingLogger : public Logger {
public:
    void writeOut() override { m_text.append(m_buffer.begin(), m_buffer.end()); }
    const std::string& text() const { return m_text; }
    void clear() { m_text.clear(); }

private:
    std::string m_text;
};

// Publishes an environment of its own with recording loggers, and puts the old one back at the end.
//
//   LogCapture log;
//   act();
//   EXPECT_TRUE(log.contains("WARNING: No such entity"));
class LogCapture {
public:
    explicit LogCapture(unsigned short verbosity = 4);
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    PluginEnvironment& environment() { return m_environment; }

    const std::string& errors() const { return m_error.text(); }      // the error logger's text
    const std::string& debug() const { return m_debug.text(); }       // warnings, debug and info
    const std::string& discarded() const { return m_null.text(); }    // the null logger's text

    // In the text of the error or the debug logger.
    bool contains(const std::string& text) const;
    std::size_t count(const std::string& text) const;
    void clear();

private:
    RecordingLogger m_error;
    RecordingLogger m_debug;
    RecordingLogger m_null;
    PluginEnvironment m_environment;
    PluginEnvironment* m_previous;
};

}    // namespace test

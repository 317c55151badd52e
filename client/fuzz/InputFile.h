#pragma once

#include "plugins/PluginEnvironment.h"
#include "runtime/Logger.h"
#include "runtime/os/Os.h"

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

// What fuzz targets that read a file put behind the operating system's door.

// One file, whatever its path: the input.
class InputFile : public pwr::os::Files {
public:
    InputFile(const std::uint8_t* data, std::size_t size) : m_bytes(data, data + size) {}

    char pathSeparator() const override { return '/'; }
    bool createDirectory(const std::string&, int&) override { return false; }
    int queryDirectory(const std::string&, bool&) override { return ENOENT; }
    int openStream(FILE** stream, const char*, const char*) override
    {
        *stream = fmemopen(m_bytes.data(), m_bytes.size(), "rb");
        return *stream != nullptr ? 0 : errno;
    }
    int reopenStream(FILE**, const char*, const char*, FILE*) override { return ENOENT; }
    int openDescriptor(int&, const char*, int) override { return ENOENT; }
    int duplicateDescriptor(FILE*, FILE*) override { return -1; }

private:
    std::vector<std::uint8_t> m_bytes;
};

class SilentConsole : public pwr::os::Console {
public:
    void writeError(const char*) override {}
};

class TextLogger : public Logger {
public:
    void writeOut() override { text.append(m_buffer.begin(), m_buffer.end()); }
    std::string text;
};

// Published while it lives; keeps what is logged.
class LoggedEnvironment {
public:
    explicit LoggedEnvironment(unsigned short verbosity)
    {
        m_environment.setVerbosity(verbosity);
        m_environment.setErrorLogger(&errors);
        m_environment.setDebugLogger(&debug);
        g_pluginEnvironment = &m_environment;
    }
    ~LoggedEnvironment() { g_pluginEnvironment = nullptr; }
    LoggedEnvironment(const LoggedEnvironment&) = delete;
    LoggedEnvironment& operator=(const LoggedEnvironment&) = delete;

    TextLogger errors;
    TextLogger debug;

private:
    PluginEnvironment m_environment;
};

#pragma once

#include "system/MachineClock.h"

#include "output/WriterPlugin.h"
#include "output/WriterStream.h"
#include "plugins/PluginEnvironment.h"
#include "runtime/Logger.h"

#include <iosfwd>
#include <memory>
#include <set>

namespace pwr {
class SystemMetadata;
}

namespace host {

// A logger that writes to a stream of the host's.
class StreamLogger : public Logger {
public:
    explicit StreamLogger(std::ostream& target) : m_target(target) {}
    void writeOut() override;

private:
    std::ostream& m_target;
};

// A logger that forgets what it is given.
class SilentLogger : public Logger {
public:
    void writeOut() override {}
};

// The library's state for one run: the environment with loggers and clock, and the registry; all ended in the right
// order. Make it before the record, so that it outlives metrics and writers.
class Session {
public:
    // Errors of the library go to `errors`.
    explicit Session(std::ostream& errors);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    PluginEnvironment& getEnvironment() { return m_environment; }
    MachineClock& getClock() { return m_clock; }

    // Mirrors the record's topology as entities, and stamps samples in the clock that it names. False when the library
    // refuses.
    bool useRecord(pwr::SystemMetadata& record);
    // The same for a saved record, which keeps its own clock and has brought its topology.
    void useSavedRecord(const pwr::SystemMetadata& record);

private:
    StreamLogger m_errorLogger;
    SilentLogger m_silentLogger;
    SystemClock m_clock;
    PluginEnvironment m_environment;
    PluginEnvironment* m_previous;
};

// The stream over the host's writers, published in the environment. Its end closes the writers' outputs; the shared
// temperature metric, which no plugin owns, ends with it.
class OutputStream {
public:
    OutputStream() = default;
    ~OutputStream() { close(); }
    OutputStream(const OutputStream&) = delete;
    OutputStream& operator=(const OutputStream&) = delete;

    void addWriter(WriterPlugin& writer);    // before open()

    // Announces all that is known so far, and the record, to the writers, and the tables that they want to producers.
    bool open(PluginEnvironment& environment, pwr::SystemMetadata& record);

    // Tells the writers that a round is over, so that those which show results while they come may do so.
    void flush(const pwr::SystemMetadata& record) const;
    void close();

private:
    void tellTableClasses_i();

    std::set<WriterPlugin*> m_writers;
    WriterStream* m_stream = nullptr;    // owned
};

}    // namespace host

#include "runtime/Log.h"

#include <benchmark/benchmark.h>

// A log line below the verbosity in the format form costs at most three times an empty loop step, or 2 ns: one
// comparison, nothing is evaluated. The stream form always streams its pieces, into the null logger; what that costs is
// shown, not promised.

namespace {

class NullLogger : public Logger {
public:
    void writeOut() override {}
};

// An environment at the default verbosity, published while a benchmark runs.
class QuietEnvironment {
public:
    QuietEnvironment()
    {
        m_environment.setNullLogger(&m_null);
        m_environment.setErrorLogger(&m_null);
        m_environment.setDebugLogger(&m_null);
        g_pluginEnvironment = &m_environment;
    }
    ~QuietEnvironment() { g_pluginEnvironment = nullptr; }
    QuietEnvironment(const QuietEnvironment&) = delete;
    QuietEnvironment& operator=(const QuietEnvironment&) = delete;

private:
    NullLogger m_null;
    PluginEnvironment m_environment;
};

void BM_LogFloor(benchmark::State& state)
{
    const QuietEnvironment environment;
    unsigned long long count = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(++count);
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_LogFloor);

void BM_LogSuppressedFormat(benchmark::State& state)
{
    const QuietEnvironment environment;
    unsigned long long count = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(++count);
        QV_LOG_WARNING("WARNING: sample %llu of entity %s is late\n", count, "core 0");
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_LogSuppressedFormat);

void BM_LogSuppressedStream(benchmark::State& state)
{
    const QuietEnvironment environment;
    unsigned long long count = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(++count);
        QV_STREAM_WARNING << "sample " << count << " of entity "
                          << "core 0"
                          << " is late";
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_LogSuppressedStream);

}    // namespace

#include "runtime/QVThread.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <mutex>
#include <thread>
#include <vector>

#include <pthread.h>
#include <sched.h>

// A blocking signal, without a payload and with one of 4 KiB, costs at most 1.5 times a ping-pong between two threads
// over one plain mutex and condition variable that copies the same payload in and out (medians; both mostly wait for
// the system to switch threads). One-way signals to an actor that drains them: messages/s.

namespace {

// Two threads take turns; whoever has the turn works on the buffer.
class PingPong {
public:
    explicit PingPong(std::size_t payloadBytes) : m_buffer(payloadBytes), m_worker([this] { serve_i(); }) {}
    ~PingPong()
    {
        pass_i(Turn::END);
        m_worker.join();
    }
    PingPong(const PingPong&) = delete;
    PingPong& operator=(const PingPong&) = delete;

    void roundTrip(const std::vector<char>& payload)
    {
        if (!payload.empty()) std::memcpy(m_buffer.data(), payload.data(), payload.size());
        pass_i(Turn::WORKER);
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return m_turn == Turn::CALLER; });
    }

private:
    enum class Turn { CALLER, WORKER, END };

    void pass_i(Turn turn)
    {
        {
            const std::lock_guard lock(m_mutex);
            m_turn = turn;
        }
        m_changed.notify_all();
    }

    void serve_i()
    {
        std::vector<char> received(m_buffer.size());
        for (;;) {
            {
                std::unique_lock lock(m_mutex);
                m_changed.wait(lock, [this] { return m_turn != Turn::CALLER; });
                if (m_turn == Turn::END) return;
            }
            if (!received.empty()) std::memcpy(received.data(), m_buffer.data(), received.size());
            benchmark::DoNotOptimize(received.data());
            pass_i(Turn::CALLER);
        }
    }

    std::vector<char> m_buffer;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    Turn m_turn = Turn::CALLER;
    std::thread m_worker;
};

class CountingActor : public pwr::QVThreadActor {
public:
    int handleCommand(int, unsigned payloadSize, const void* payload, int* result) override
    {
        benchmark::DoNotOptimize(payload);
        *result = static_cast<int>(payloadSize);
        return 0;
    }
    int handleKill() override { return 0; }
    int initActor() override { return 0; }
};

// The nanoseconds of round trips, one by one: their median stands above what else the machine does.
class RoundTrips {
public:
    static constexpr int BATCH = 100;

    // Returns the batch's seconds.
    template <typename RoundTrip>
    double measure(RoundTrip roundTrip)
    {
        using Clock = std::chrono::steady_clock;
        const Clock::time_point begin = Clock::now();
        Clock::time_point last = begin;
        for (int i = 0; i < BATCH; ++i) {
            roundTrip();
            const Clock::time_point now = Clock::now();
            m_nanoseconds.push_back(std::chrono::duration<double, std::nano>(now - last).count());
            last = now;
        }
        return std::chrono::duration<double>(last - begin).count();
    }

    double median()
    {
        const auto middle = m_nanoseconds.begin() + static_cast<std::ptrdiff_t>(m_nanoseconds.size() / 2);
        std::nth_element(m_nanoseconds.begin(), middle, m_nanoseconds.end());
        return *middle;
    }

private:
    std::vector<double> m_nanoseconds;
};

// Keeps this thread, and those that it starts, on the processor that it runs on.
class OneProcessor {
public:
    OneProcessor()
    {
        pthread_getaffinity_np(pthread_self(), sizeof m_previous, &m_previous);
        cpu_set_t here;
        CPU_ZERO(&here);
        CPU_SET(sched_getcpu(), &here);
        pthread_setaffinity_np(pthread_self(), sizeof here, &here);
    }
    ~OneProcessor() { pthread_setaffinity_np(pthread_self(), sizeof m_previous, &m_previous); }
    OneProcessor(const OneProcessor&) = delete;
    OneProcessor& operator=(const OneProcessor&) = delete;

private:
    cpu_set_t m_previous{};
};

// Signals and floor take turns, so that both meet the same machine, on one processor: the system leaves each thread
// where it once put it, and waking one on an idle processor costs twenty times the switch. The time is that of a batch
// of signals.
void BM_ThreadBlockingSignal(benchmark::State& state)
{
    const OneProcessor here;
    const std::vector<char> payload(static_cast<std::size_t>(state.range(0)), 'x');
    PingPong floor(payload.size());
    CountingActor actor;
    pwr::QVThread thread(actor, nullptr);
    if (thread.init() != 0 || thread.start() != 0) {
        state.SkipWithError("no thread");
        return;
    }
    RoundTrips floorTrips;
    RoundTrips signalTrips;
    for (auto _ : state) {
        floorTrips.measure([&] { floor.roundTrip(payload); });
        state.SetIterationTime(signalTrips.measure([&] {
            const int result = thread.signal(1, payload.size(), payload.data(), true, true);
            if (result != static_cast<int>(payload.size())) state.SkipWithError("wrong answer");
        }));
    }
    thread.kill();
    state.SetItemsProcessed(state.iterations() * RoundTrips::BATCH);
    state.counters["floor_ns"] = floorTrips.median();
    state.counters["signal_ns"] = signalTrips.median();
    state.counters["times_floor"] = signalTrips.median() / floorTrips.median();
}

// A batch of one-way signals, and one blocking signal behind them that tells when all are served.
void BM_ThreadOneWaySignals(benchmark::State& state)
{
    constexpr int BATCH = 1000;
    const std::vector<char> payload(static_cast<std::size_t>(state.range(0)), 'x');
    CountingActor actor;
    pwr::QVThread thread(actor, nullptr);
    if (thread.init() != 0 || thread.start() != 0) {
        state.SkipWithError("no thread");
        return;
    }
    for (auto _ : state) {
        for (int i = 0; i < BATCH; ++i)
            thread.signal(1, payload.size(), payload.data(), false, false);
        if (thread.signal(2, true, true) != 0) state.SkipWithError("wrong answer");
    }
    thread.kill();
    state.SetItemsProcessed(state.iterations() * BATCH);
}

BENCHMARK(BM_ThreadBlockingSignal)->Arg(0)->Arg(4096)->UseManualTime();
BENCHMARK(BM_ThreadOneWaySignals)->Arg(0)->Arg(4096)->UseRealTime();

}    // namespace

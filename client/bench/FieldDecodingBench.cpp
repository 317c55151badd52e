#include "record/FieldDecoding.h"

#include "FieldDecodingFloor.h"

#include <benchmark/benchmark.h>

#include <array>
#include <random>

// Cutting a field out of a register and scaling it: each costs at most twice the same arithmetic in a function of
// another source file. Time is per value.

namespace {

struct Register {
    unsigned long long value;
    unsigned char msb;
    unsigned char lsb;
    unsigned long long raw;    // the field
    qv_qformat format;
};

constexpr std::size_t COUNT = 1024;

// Fields of every width and place, always the same ones.
std::array<Register, COUNT> makeRegisters()
{
    std::mt19937_64 random(42);
    std::array<Register, COUNT> registers;
    for (Register& r : registers) {
        const auto msb = static_cast<unsigned char>(random() % 64);
        const auto lsb = static_cast<unsigned char>(random() % (msb + 1U));
        const unsigned long long value = random();
        const auto fractionBits = static_cast<std::uint8_t>(random() % 32);
        r = {value, msb, lsb, floors::bitRange(value, msb, lsb), {'U', 8, fractionBits}};
    }
    return registers;
}

template <typename Work>
void measure(benchmark::State& state, Work work)
{
    const auto registers = makeRegisters();
    for (auto _ : state) {
        for (const Register& r : registers)
            benchmark::DoNotOptimize(work(r));
    }
    state.counters["time/value"] = benchmark::Counter(static_cast<double>(state.iterations()) * COUNT,
                                                      benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void BM_BitRangeFloor(benchmark::State& state)
{
    measure(state, [](const Register& r) { return floors::bitRange(r.value, r.msb, r.lsb); });
}

void BM_BitRange(benchmark::State& state)
{
    measure(state, [](const Register& r) { return pwr::extractBitRangeValue(r.value, r.msb, r.lsb); });
}

void BM_FixedPointFloor(benchmark::State& state)
{
    measure(state, [](const Register& r) { return floors::fixedPoint(r.raw, r.format.fractionBits); });
}

void BM_FixedPoint(benchmark::State& state)
{
    measure(state, [](const Register& r) { return pwr::convertToFloatPoint(r.raw, r.format); });
}

BENCHMARK(BM_BitRangeFloor);
BENCHMARK(BM_BitRange);
BENCHMARK(BM_FixedPointFloor);
BENCHMARK(BM_FixedPoint);

}    // namespace

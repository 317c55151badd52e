#include "usage/UsageText.h"

#include <benchmark/benchmark.h>

#include <map>
#include <string>

// Writing all options as JSON takes microseconds: a small multiple of copying the same texts into ordered maps.

namespace {

using Attributes = std::map<std::string, std::string>;
using Categories = std::map<std::string, std::map<std::string, Attributes>>;

void BM_UsageJson(benchmark::State& state)
{
    for (auto _ : state) {
        nlohmann::json usage;
        pwr::usage::UsageText::formatJson(usage);
        benchmark::DoNotOptimize(usage);
    }
}

void BM_UsageJsonFloor(benchmark::State& state)
{
    nlohmann::json usage;
    pwr::usage::UsageText::formatJson(usage);
    const auto categories = usage.get<Categories>();
    for (auto _ : state) {
        Categories copy(categories);
        benchmark::DoNotOptimize(copy);
    }
}

BENCHMARK(BM_UsageJsonFloor)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_UsageJson)->Unit(benchmark::kMicrosecond);

}    // namespace

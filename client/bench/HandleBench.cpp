#include "values/DataHandle.h"
#include "values/EntityHandle.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <map>
#include <random>
#include <utility>
#include <vector>

// Resolving a number, as every cell that holds a handle does, costs about one look-up in an ordered map.

namespace {

using Ids = std::vector<unsigned long long>;

Ids makeEntities(std::int64_t count)
{
    Ids ids;
    for (std::int64_t i = 0; i < count; ++i)
        ids.push_back(pwr::EntityHandle::create("entity", nullptr)->getId());
    return ids;
}

// The order of asking is random and always the same.
void shuffle(Ids& ids)
{
    std::mt19937 random(42);
    for (std::size_t i = ids.size(); i > 1; --i)
        std::swap(ids[i - 1], ids[random() % i]);
}

void BM_HandleGet(benchmark::State& state)
{
    pwr::UniqueId::initialize();
    Ids ids = makeEntities(state.range(0));
    shuffle(ids);
    std::size_t next = 0;
    for (auto _ : state) {
        const pwr::DataHandle* handle = nullptr;
        benchmark::DoNotOptimize(pwr::DataHandle::get(ids[next], handle));
        benchmark::DoNotOptimize(handle);
        if (++next == ids.size()) next = 0;
    }
    state.SetItemsProcessed(state.iterations());
    pwr::UniqueId::destroy();
}

void BM_HandleGetFloor(benchmark::State& state)
{
    pwr::UniqueId::initialize();
    Ids ids = makeEntities(state.range(0));
    std::map<unsigned long long, const void*> map;    // filled in ascending order, as the library's
    for (const unsigned long long id : ids)
        map.emplace(id, &map);
    shuffle(ids);
    std::size_t next = 0;
    for (auto _ : state) {
        const auto found = map.find(ids[next]);
        benchmark::DoNotOptimize(found->second);
        if (++next == ids.size()) next = 0;
    }
    state.SetItemsProcessed(state.iterations());
    pwr::UniqueId::destroy();
}

BENCHMARK(BM_HandleGetFloor)->Arg(1000)->Arg(100000);
BENCHMARK(BM_HandleGet)->Arg(1000)->Arg(100000);

}    // namespace

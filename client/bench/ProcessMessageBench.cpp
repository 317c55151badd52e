#include "plugins/PluginEnvironment.h"
#include "plugins/QuorvaneHost.h"
#include "record/SystemMetadata.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <vector>

// Delivering a message to a plugin that does nothing costs, beside the call of the plugin alone, one look-up among the
// recorded resets: about logarithmic in their number, and next to nothing when there are none.

namespace {

constexpr id_config_t ID{1, 2, 3};

class IdlePlugin : public MetricPlugin {
public:
    IdlePlugin() : MetricPlugin("idle") {}
    ~IdlePlugin() override = default;
    int initialize(const pwr::SystemMetadata&) override { return 0; }
    int finalize(const pwr::SystemMetadata&) override { return 0; }
    int processMessage_i(const pwr::SystemMetadata&, const qv_driver_msg* message) override
    {
        benchmark::DoNotOptimize(message);
        return 0;
    }
};

// One message between each two of `resets` resets, in order of time; at least 1024.
std::vector<qv_driver_msg> makeMessages(std::int64_t resets)
{
    std::vector<qv_driver_msg> messages;
    for (std::uint64_t tsc = 1; messages.size() < 1024 || messages.size() < static_cast<std::size_t>(resets); tsc += 2)
        messages.push_back({tsc, 0, ID.plugin_id, ID.metric_id, ID.msg_id});
    return messages;
}

// Every message at an even tick follows a reset.
void recordResets(PluginEnvironment& environment, std::int64_t resets)
{
    environment.addSystemStateEvent(0, 4);
    environment.checkAndRecordReset(ID, 0);
    for (std::int64_t i = 1; i <= resets; ++i)
        environment.checkAndRecordReset(ID, static_cast<std::uint64_t>(i) * 2);
}

void BM_ProcessMessageFloor(benchmark::State& state)
{
    const std::vector<qv_driver_msg> messages = makeMessages(0);
    const pwr::SystemMetadata system;
    IdlePlugin idle;
    MetricPlugin* plugin = &idle;
    std::size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(plugin);
        benchmark::DoNotOptimize(plugin->processMessage_i(system, &messages[next]));
        if (++next == messages.size()) next = 0;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_ProcessMessageFloor);

void BM_ProcessMessage(benchmark::State& state)
{
    PluginEnvironment environment;
    g_pluginEnvironment = &environment;
    recordResets(environment, state.range(0));
    const std::vector<qv_driver_msg> messages = makeMessages(state.range(0));
    const pwr::SystemMetadata system;
    IdlePlugin plugin;
    std::size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(QuorvaneHost::processMessage(plugin, system, &messages[next]));
        if (++next == messages.size()) next = 0;
    }
    state.SetItemsProcessed(state.iterations());
    g_pluginEnvironment = nullptr;
}
BENCHMARK(BM_ProcessMessage)->ArgName("resets")->Arg(0)->Arg(100)->Arg(10000);

}    // namespace

// One module for each fault that the host is to survive; QUORVANE_FAULT names it.

#include "modules/PluginModule.h"

#include "output/WriterPlugin.h"
#include "plugins/MetricPlugin.h"
#include "plugins/PluginCapability.h"

#include <exception>
#include <stdexcept>
#include <string>

#define NO_ENTRY 1
#define OTHER_ABI 2
#define FAILS 3
#define THROWS 4
#define THROWS_OWN 5
#define GIVES_NULL 6
#define SAME_UUID 7
#define SAME_NAME 8
#define OWN_NAME 9
#define NO_NAME 10

namespace {

// Named like the metric plugin of the examples.
class Copy : public MetricPlugin {
public:
    Copy() : MetricPlugin("8a1f6c0e-7d3b-4c52-9f10-3b5f1f2d7a02") {}
    int initialize(const pwr::SystemMetadata&) override { return 0; }
    int finalize(const pwr::SystemMetadata&) override { return 0; }
    int processMessage_i(const pwr::SystemMetadata&, const qv_driver_msg*) override { return 0; }
};

// Named like the writer of the examples, like one of the host's own, or not at all.
class Namesake : public WriterPlugin {
public:
    Namesake() : WriterPlugin("8a1f6c0e-7d3b-4c52-9f10-3b5f1f2d7a99")
    {
        const char* const name = QUORVANE_FAULT == SAME_NAME ? "Lines" : QUORVANE_FAULT == OWN_NAME ? "csv" : "*";
        addCapability(new pwr::WriterPluginCapability({}, name, "", "", false));
    }
    int openOutput() override { return 0; }
    int closeOutput() override { return 0; }
};

// An exception that only this module knows.
class OwnTrouble : public std::exception {
public:
    const char* what() const noexcept override { return "a trouble\nof its own"; }
};

[[maybe_unused]] int enter(std::uint32_t hostAbi, QuorvaneModule* module)
{
    static Plugin* const nothing[] = {nullptr};
    switch (QUORVANE_FAULT) {
    case OTHER_ABI:
        module->abi = QUORVANE_ABI + 1;
        return 0;
    case FAILS:
        return 7;
    case THROWS:
        throw std::runtime_error("no wish to go on");
    case THROWS_OWN:
        throw OwnTrouble();
    case GIVES_NULL:
        module->abi = QUORVANE_ABI;
        module->pluginCount = 1;
        module->plugins = nothing;
        return 0;
    case SAME_NAME:
    case OWN_NAME:
    case NO_NAME:
        return host::ModulePlugins<Namesake>::enter(hostAbi, module);
    default:
        return host::ModulePlugins<Copy>::enter(hostAbi, module);
    }
}

}    // namespace

#if QUORVANE_FAULT == NO_ENTRY
extern "C" QUORVANE_MODULE_EXPORT int some_other_function();
extern "C" int some_other_function()
{
    return enter(0, nullptr);
}
#else
extern "C" QUORVANE_MODULE_EXPORT int quorvane_module(std::uint32_t hostAbi, QuorvaneModule* module);
extern "C" int quorvane_module(std::uint32_t hostAbi, QuorvaneModule* module)
{
    return enter(hostAbi, module);
}
#endif

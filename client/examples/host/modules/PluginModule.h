#pragma once

#include "plugins/Plugin.h"
#include "runtime/Abi.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <type_traits>

// A module is a loadable file with plugins for the host, dropped into one of its plugin folders. It exports one C
// function, quorvane_module, which QUORVANE_MODULE writes:
//
//   #include "modules/PluginModule.h"
//
//   class FanPlugin : public MetricPlugin { ... };
//   QUORVANE_MODULE(FanPlugin)    // or several plugins, once in a module
//
// The plugins stay the module's: the host drives them, and has the module destroy them before it ends its session. All
// on one thread. The environment and the registry stand from before the entry is called until after destroy().
//
// Where the host processes a saved session, collectors stand idle and metric plugins get no initializeCollection():
// initialize(), the metadata records and the driver records are all that there is.

#if defined(_WIN32)
#define QUORVANE_MODULE_EXPORT __declspec(dllexport)
#else
#define QUORVANE_MODULE_EXPORT __attribute__((visibility("default")))
#endif

// What the entry fills. The host makes it, with zeros.
struct QuorvaneModule {
    std::uint32_t abi;                          // QUORVANE_ABI of the headers that the module was built with
    std::uint32_t pluginCount;                  // 1 or more
    Plugin* const* plugins;                     // none is null; each has a UUID of its own
    void (*destroy)(QuorvaneModule* module);    // deletes the plugins; called once, must not throw
    void* state;                                // the module's own
};

// `hostAbi` is the number of the host. A module of another one sets `abi`, makes nothing and returns 0; nothing else of
// the structure is looked at then. Returns 0; anything else, or an exception, for a failure that leaves nothing behind.
using QuorvaneModuleEntry = int (*)(std::uint32_t hostAbi, QuorvaneModule* module);

#define QUORVANE_MODULE_ENTRY "quorvane_module"

// The parameter of a metric plugin's operations that holds the platforms of this machine, as
// QVConfigFileParser::getMessagesFor() takes them.
#define QUORVANE_MODULE_PLATFORMS "platforms"

namespace host {

// The plugins of one module, made in this order and deleted the other way round.
template <typename... Plugins>
class ModulePlugins {
public:
    static int enter(std::uint32_t hostAbi, QuorvaneModule* module)
    {
        static_assert(sizeof...(Plugins) > 0 && (std::is_base_of_v<Plugin, Plugins> && ...));
        module->abi = QUORVANE_ABI;
        if (hostAbi != QUORVANE_ABI) return 0;
        auto made = std::make_unique<ModulePlugins>();
        module->pluginCount = sizeof...(Plugins);
        module->plugins = made->m_plugins;
        module->destroy = [](QuorvaneModule* ended) { delete static_cast<ModulePlugins*>(ended->state); };
        module->state = made.release();
        return 0;
    }

    ModulePlugins()
    {
        for (std::size_t i = 0; i < sizeof...(Plugins); ++i)
            m_plugins[i] = m_owned[i].get();
    }

private:
    std::unique_ptr<Plugin> m_owned[sizeof...(Plugins)] = {std::make_unique<Plugins>()...};
    Plugin* m_plugins[sizeof...(Plugins)] = {};
};

}    // namespace host

#define QUORVANE_MODULE(...)                                                                                           \
    extern "C" QUORVANE_MODULE_EXPORT int quorvane_module(std::uint32_t hostAbi, QuorvaneModule* module);              \
    extern "C" int quorvane_module(std::uint32_t hostAbi, QuorvaneModule* module)                                      \
    {                                                                                                                  \
        return host::ModulePlugins<__VA_ARGS__>::enter(hostAbi, module);                                               \
    }

#pragma once

#include "output/TableTypes.h"
#include "plugins/MetricPlugin.h"
#include "runtime/Export.h"

#include <set>
#include <string>

class WriterPlugin;
class WriterStream;
namespace pwr {
class EntityHandle;
}

// The host's door: what only the owner of the plugins may do. Static operations only.
//
//   std::set<WriterPlugin*> writers{&csv, &console};
//   WriterStream* stream = QuorvaneHost::createWriterStream(writers);
//   g_pluginEnvironment->setWriterStream(stream);
//   ...
//   QuorvaneHost::destroyWriterStream(stream);    // closes each writer
class QUORVANE_API QuorvaneHost {
public:
    QuorvaneHost() = delete;

    // Makes a stream over `plugins`, which stays the host's and outlives the stream.
    static WriterStream* createWriterStream(const std::set<WriterPlugin*>& plugins);

    // Calls closeOutput() on each writer and deletes the stream; the registry and the environment forget it. Null does
    // nothing.
    static void destroyWriterStream(WriterStream* stream);

    // Tells producers that some writer wants tables of this class.
    static void addSupportedTableClass(WriterStream& stream, pwr::TableClass tableClass);

    // Delivers one driver message: one that follows a reset goes to the plugin's reset() first, which decides whether
    // it is processed too. A null message goes straight to the plugin.
    static MetricPlugin::ProcessMessageCode processMessage(MetricPlugin& plugin, const pwr::SystemMetadata& system,
                                                           const qv_driver_msg* message);

    // Makes `child` a child of `parent`. Returns 0; 1 for null, and with a warning when it would make a cycle.
    static int addChild(pwr::EntityHandle* parent, pwr::EntityHandle* child);

    // Ends the shared temperature metric, if any plugin used it, before the next run's get(), which may have another
    // stream and record. What was not released is not finalised. UniqueId::destroy() does it too.
    static void destroyThermalSampleHandler();

    // Puts a number where Registry::RegReadDword() finds it, in place of one of the same name, on a system without a
    // registry. False, with nothing changed, where the system has one. Before other threads read.
    static bool setRegistryNumber(const std::string& key, const std::string& value, unsigned int number);
};

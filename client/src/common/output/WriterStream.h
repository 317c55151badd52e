#pragma once

#include "output/TableTypes.h"
#include "runtime/Export.h"

#include <set>
#include <string>

class QuorvaneHost;
class WriterPlugin;
namespace pwr {
class Metric;
class WriterMessage;
}    // namespace pwr

// The one way out: every message and every data point goes through it to each writer plugin, on the caller's thread,
// in the set's order. Plugins don't subscribe; each takes what it overrides an overload for. The owner of the plugins
// makes the stream through QuorvaneHost, publishes it in the PluginEnvironment and ends it; ending it closes each
// plugin's output. One thread at a time.
//
//   TableMessage table("Power", nullptr);
//   ...
//   stream->pushMessage(table);    // delivered, then emptied of its row
class QUORVANE_API WriterStream {
public:
    WriterStream(const WriterStream&) = default;
    WriterStream& operator=(const WriterStream&) = default;

    // Delivers a text through the environment's stream, whichever stream this is. Throws the text "ERROR: Writer stream
    // is not initialized" (const char*) when the environment holds none. Returns what the push returns.
    int pushTextMessage(const std::string& text);

    // Delivers a message; what the plugins answer is not looked at. A table is emptied of its values afterwards.
    // Returns 0; -1 with a warning without a plugin set, a table then keeps its values.
    int pushMessage(pwr::WriterMessage& message);

    // Delivers the metric's data point. Returns 0; 1 with a warning for null, without a plugin set, or when a plugin
    // failed (the others get it all the same).
    int pushMessage(const pwr::Metric* metric);

    // Whether a writer wants tables of this class.
    bool isSupportedTableClass(pwr::TableClass tableClass) const;

private:
    friend class QuorvaneHost;

    explicit WriterStream(const std::set<WriterPlugin*>& plugins);
    ~WriterStream();
    void pushMessageToPlugin_i(pwr::WriterMessage& message, WriterPlugin* plugin);

    const std::set<WriterPlugin*>* m_plugins;    // the owner's; address order is the order of delivery
    std::set<pwr::TableClass> m_supportedTableClasses;
};

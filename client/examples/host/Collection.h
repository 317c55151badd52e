#pragma once

#include "features/FeaturePlugin.h"
#include "records/QVBuffer.h"

#include "plugins/CollectorPlugin.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace host {

class PointCounter;
class Progress;
class StopSignal;

// The run loop: the plugins say which messages they need, the collector reads them at the start and then round after
// round under one time stamp, each record goes to the plugin that its id names, and in the end the tables go out.
// Record, collector and plugins are not owned; the plugins are numbered.
//
//   Collection collection(record, *collector, plugins);
//   if (collection.begin(params) != nullptr) return fail();
//   collection.run(3.0, 100, stop, progress);
//   collection.end();
class Collection {
public:
    using Params = Plugin::Params;

    Collection(pwr::SystemMetadata& record, CollectorPlugin& collector, const std::vector<FeaturePlugin*>& plugins);
    ~Collection();

    // Begins the collection in the record and takes the baselines. Returns null, or what refused; then nothing runs.
    const Plugin* begin(const Params& params);

    // Takes a round each `intervalMs` until the time is over or a signal came, and one more at that moment. A round
    // that comes too late for its moment makes the next one not come sooner. Calls `afterRound` (may be empty) behind
    // each.
    void run(double seconds, unsigned int intervalMs, StopSignal& stop, Progress& progress,
             const std::function<void()>& afterRound = {});

    // One round now. False without one, when the clock has not moved on since the last.
    bool takeRound();

    // Sends the tables, in the order of the plugins. Returns the plugins that took no sample or whose tables failed.
    std::vector<const FeaturePlugin*> end();

    std::uint64_t getSamples() const;
    // Records that found no plugin, or one that could not read them.
    std::uint64_t getFailedRecords() const { return m_failedRecords; }
    // The data points handed in to the metrics less those that reached the writers; after end().
    std::uint64_t getDroppedPoints(const PointCounter& counter) const;

private:
    bool prepare_i(FeaturePlugin& plugin);
    void deliver_i();

    pwr::SystemMetadata& m_record;
    CollectorPlugin& m_collector;
    std::vector<FeaturePlugin*> m_plugins;
    Params m_params;
    std::vector<pwr::InputMsg*> m_messages;
    std::vector<std::unique_ptr<const pwr::Metadata>> m_metadata;
    QVBuffer m_buffer;
    std::uint64_t m_failedRecords = 0;
};

}    // namespace host

#pragma once

#include "Delivery.h"
#include "records/QVBuffer.h"

#include "plugins/CollectorPlugin.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace host {

class Progress;
class SessionWriter;
class StopSignal;

// The run loop: the plugins say which messages they need, the collector reads them at the start and then round after
// round under one time stamp, each record is saved where somebody wants that and goes to the plugin that its id names,
// and in the end the tables go out. Record, collector, plugins and the saved session are not owned.
//
//   Collection collection(record, *collector, plugins);
//   if (collection.begin(params) != nullptr) return fail();
//   collection.run(3.0, 100, stop, progress);
//   collection.end();
class Collection : public Delivery {
public:
    Collection(pwr::SystemMetadata& record, CollectorPlugin& collector, const std::vector<FeaturePlugin*>& plugins);
    ~Collection() override;    // stops the collector where nobody did

    // Both before begin(): where all that is collected is saved; and that this is all, no plugin gets a record.
    void saveTo(SessionWriter& session) { m_session = &session; }
    void saveOnly() { m_isSavedOnly = true; }

    // Begins the collection in the record and takes the baselines. Returns null, or what refused; then nothing runs.
    const Plugin* begin(const Params& params);

    // Takes a round each `intervalMs` until the time is over (0: never) or a signal came, and one more at that moment.
    // A round that comes too late for its moment makes the next one not come sooner. Calls `afterRound` (may be empty)
    // behind each.
    void run(double seconds, unsigned int intervalMs, StopSignal& stop, Progress& progress,
             const std::function<void()>& afterRound = {});

    // One round now. False without one, when the clock has not moved on since the last.
    bool takeRound();

    // Ends the collecting that has begun, with the stop times in the record and in the saved session. end() does it
    // too, before the tables go out.
    void stop();

private:
    void finishRecords_i() override { stop(); }
    bool prepare_i(FeaturePlugin& plugin);
    void beginSession_i();
    void takeBuffer_i();
    void save_i();

    CollectorPlugin& m_collector;
    SessionWriter* m_session = nullptr;    // null: nothing is saved
    bool m_isSavedOnly = false;
    bool m_isRunning = false;    // the collector is
    std::vector<pwr::InputMsg*> m_messages;
    std::vector<std::unique_ptr<const pwr::Metadata>> m_metadata;
    QVBuffer m_buffer;
};

}    // namespace host

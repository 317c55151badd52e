#pragma once

#include "records/QVBuffer.h"
#include "system/MachineClock.h"

#include "plugins/CollectorPlugin.h"
#include "plugins/PluginRequirement.h"

#include <cstdint>
#include <memory>

namespace host {

class SourceOperation;
class SourceReader;

// The part that the host's collectors share: it reads the messages at their triggers ("INIT" and "BEGIN" at the start,
// "POLL" at each interval, "END" and "FINI" at the stop), makes one record of each, all with the same time stamp, and
// shows each to the environment. The layout of the records is told in records/QVBuffer.h.
//
// Between two intervals it looks whether the system slept. A suspend is two events in front of the next records: state
// 4 at the last tick before it and state 1 at the first one after it, just below the records' own. A pause of the
// collection is told alike, with state 2.
//
// A derived collector offers the kinds of its machine; the kinds of other machines are known here too, as unavailable
// ones, so that the same configuration files load everywhere.
class Collector : public CollectorPlugin {
public:
    ~Collector() override;

    // Opens the sources. 1, with an error line and nothing begun, for ids that don't fit into a record.
    int startCollection(const std::vector<pwr::InputMsg*>& messages, pwr::SystemMetadata& system) override;
    int stopCollection(CollectionData& summary) override;    // ends a pause too. 1 outside a collection
    int pauseCollection() override;                          // 1 when there is nothing to pause
    int resumeCollection() override;                         // 1 when there was no pause

    // Reads what is polled. 1, with nothing read, outside a collection, in a pause, and while the clock has not moved
    // on since the last records.
    int continuousCollectionTick() override;

    // Both replace what the buffer holds by the records since the last call of either.
    bool getContinuousResult(QVBuffer& buffer, CollectionData& summary) override;
    int getCollectionResults(QVBuffer& buffer) override;

    // Whether it reads something: what holds constants only, or nothing that can be read here, makes no records.
    bool canCollectMessage(const pwr::InputMsg* message) override;

    // A pair of source and text for each source that can be read. -1 for null, and for a message that reads nothing.
    int doImmediateRead(const pwr::InputMsg* message, Results& results) override;
    using CollectorPlugin::doImmediateRead;

protected:
    Collector(const std::string& uuid, MachineClock& clock);    // `clock` outlives the collector

    // Takes ownership of both; a null requirement is none.
    void offer_i(SourceOperation* operation, std::unique_ptr<pwr::PluginRequirement> requirement);
    void addUnavailableKinds_i();    // the last call of a derived constructor

private:
    struct Task {
        id_config_t id{};
        bool isRead[3] = {};                                   // by Moment
        std::vector<std::unique_ptr<SourceReader>> readers;    // null: the operation holds no source
    };
    enum Moment { AT_START, AT_INTERVAL, AT_STOP };

    bool open_i(const pwr::InputMsg& message);
    bool takeTick_i();
    bool isPastSuspend_i(const MachineClock::Reading& now) const;
    void reportBreak_i(unsigned int state, unsigned long long tick);
    void read_i(Moment moment);
    void produce_i(Task& task);
    CollectionData summarize_i() const;

    MachineClock& m_clock;
    std::vector<std::unique_ptr<pwr::PluginRequirement>> m_requirements;    // the operations share them
    std::vector<Task> m_tasks;    // those that are read once at the start stand in front
    std::ptrdiff_t m_initCount = 0;
    bool m_isRunning = false;
    bool m_isPaused = false;
    bool m_wasPaused = false;    // and no record was made since
    MachineClock::Reading m_start;
    MachineClock::Reading m_last;    // of the last records
    std::uint64_t m_startTimeval = 0;
    std::uint64_t m_lastTimeval = 0;
    std::uint64_t m_produced = 0;
    QVBuffer m_buffer;
};

}    // namespace host

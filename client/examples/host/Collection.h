#pragma once

#include "features/Feature.h"

#include <cstdint>
#include <vector>

namespace pwr {
class QVClockSource;
}

namespace host {

class PointCounter;
class Progress;
class StopSignal;

// The run loop: a baseline, then round after round in which every feature reads its sources under one timestamp, then
// the tables. Record, clock and features are not owned.
//
//   Collection collection(record, clock, features);
//   collection.begin();
//   collection.run(3.0, 100, stop, progress);
//   collection.end();
class Collection {
public:
    Collection(pwr::SystemMetadata& record, pwr::QVClockSource& clock, const std::vector<Feature*>& features);

    // Reads the baseline, which begins the collection in the record, and makes the metrics.
    void begin();

    // Takes a round each `intervalMs` until the time is over or a signal came, and one more at that moment. A round
    // that comes too late for its moment makes the next one not come sooner.
    void run(double seconds, unsigned int intervalMs, StopSignal& stop, Progress& progress);

    // One round now. False without one, when the clock has not moved on since the last.
    bool takeRound();

    // Sends the tables, in the order of the features. Returns the features that took no sample or whose tables failed.
    std::vector<const Feature*> end();

    std::uint64_t getSamples() const;
    // The rounds handed in to the metrics less the data points that reached the writers; after end().
    std::uint64_t getDroppedPoints(const PointCounter& counter) const;

private:
    pwr::SystemMetadata& m_record;
    pwr::QVClockSource& m_clock;
    std::vector<Feature*> m_features;
    unsigned long long m_lastTimestamp = 0;
};

}    // namespace host

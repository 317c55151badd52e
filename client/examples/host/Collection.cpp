#include "Collection.h"

#include "Progress.h"
#include "system/System.h"
#include "writers/PointCounter.h"

#include "record/Clocks.h"
#include "record/SystemMetadata.h"

#include <algorithm>
#include <chrono>

namespace host {

Collection::Collection(pwr::SystemMetadata& record, pwr::QVClockSource& clock, const std::vector<Feature*>& features)
    : m_record(record), m_clock(clock), m_features(features)
{
}

void Collection::begin()
{
    m_lastTimestamp = m_clock.getTimestamp();
    for (Feature* feature : m_features)
        feature->readBaseline(m_lastTimestamp);
    m_record.startTSC = m_record.stopTSC = m_lastTimestamp;
    m_record.startTimeval = m_record.stopTimeval = pwr::QVNanoClock().getTimestamp();
    for (Feature* feature : m_features)
        feature->makeMetric(m_record);
}

void Collection::run(double seconds, unsigned int intervalMs, StopSignal& stop, Progress& progress)
{
    using std::chrono::duration;
    using std::chrono::steady_clock;
    const steady_clock::time_point start = steady_clock::now();
    const steady_clock::time_point end =
        start + std::chrono::duration_cast<steady_clock::duration>(duration<double>(seconds));
    const std::chrono::milliseconds interval(intervalMs);
    steady_clock::time_point next = start;
    bool isOver = false;
    while (!isOver) {
        const steady_clock::time_point now = steady_clock::now();
        // Moments that passed during a long round are left out.
        next += interval * ((now - next) / interval + 1);
        next = std::min(next, end);
        isOver = stop.waitUntil(next) || next == end;
        takeRound();
        progress.show(duration<double>(steady_clock::now() - start).count(), seconds, getSamples());
    }
    progress.wipe();
}

bool Collection::takeRound()
{
    const unsigned long long timestamp = m_clock.getTimestamp();
    if (timestamp <= m_lastTimestamp) return false;
    for (Feature* feature : m_features)
        feature->takeRound(timestamp);
    m_lastTimestamp = timestamp;
    m_record.stopTSC = timestamp;
    m_record.stopTimeval = pwr::QVNanoClock().getTimestamp();
    return true;
}

std::vector<const Feature*> Collection::end()
{
    std::vector<const Feature*> failed;
    m_record.samplesProduced = getSamples();
    for (Feature* feature : m_features) {
        if (!feature->finish()) failed.push_back(feature);
    }
    return failed;
}

std::uint64_t Collection::getSamples() const
{
    std::uint64_t samples = 0;
    for (const Feature* feature : m_features)
        samples += feature->getSamples();
    return samples;
}

std::uint64_t Collection::getDroppedPoints(const PointCounter& counter) const
{
    std::uint64_t dropped = 0;
    for (const Feature* feature : m_features) {
        const std::uint64_t arrived = counter.getPoints(feature->getMetricId());
        dropped += feature->getRounds() - std::min(feature->getRounds(), arrived);
    }
    return dropped;
}

}    // namespace host

#pragma once

#include "tracing/TraceEvents.h"

#include "plugins/CollectorPlugin.h"

#include <cstddef>

namespace host {

// Stands in front of the collector that a collection drives, and marks phases and rounds as they go by. Neither the
// collector nor the marks are owned.
class TracingCollector : public CollectorPlugin {
public:
    TracingCollector(CollectorPlugin& collector, TraceMarks& marks);

    int startCollection(const std::vector<pwr::InputMsg*>& messages, pwr::SystemMetadata& system) override;
    int stopCollection(CollectionData& summary) override;
    int pauseCollection() override;
    int resumeCollection() override;
    int continuousCollectionTick() override;
    bool getContinuousResult(QVBuffer& buffer, CollectionData& summary) override;
    int getCollectionResults(QVBuffer& buffer) override;
    bool canCollectMessage(const pwr::InputMsg* message) override;
    int doImmediateRead(const pwr::InputMsg* message, Results& results) override;
    using CollectorPlugin::doImmediateRead;

private:
    std::size_t count_i(const QVBuffer& buffer);

    CollectorPlugin& m_collector;
    TraceMarks& m_marks;
    Phase m_phase = Phase::START;
    RoundCounts m_counts;
};

}    // namespace host

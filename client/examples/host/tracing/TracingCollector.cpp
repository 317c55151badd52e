#include "tracing/TracingCollector.h"

#include "records/QVBuffer.h"

namespace host {

TracingCollector::TracingCollector(CollectorPlugin& collector, TraceMarks& marks)
    : CollectorPlugin(collector.getUUID()), m_collector(collector), m_marks(marks)
{
    m_clockSource = collector.getClockSource();
}

int TracingCollector::startCollection(const std::vector<pwr::InputMsg*>& messages, pwr::SystemMetadata& system)
{
    m_phase = Phase::BASELINE;
    m_counts = {};
    m_marks.markPhase(m_phase, "messages: " + std::to_string(messages.size()));
    return m_collector.startCollection(messages, system);
}

int TracingCollector::stopCollection(CollectionData& summary)
{
    m_phase = Phase::STOP;
    m_marks.markPhase(m_phase, "rounds: " + std::to_string(m_counts.round));
    return m_collector.stopCollection(summary);
}

int TracingCollector::pauseCollection()
{
    return m_collector.pauseCollection();
}

int TracingCollector::resumeCollection()
{
    return m_collector.resumeCollection();
}

int TracingCollector::continuousCollectionTick()
{
    return m_collector.continuousCollectionTick();
}

bool TracingCollector::getContinuousResult(QVBuffer& buffer, CollectionData& summary)
{
    const bool hasRecords = m_collector.getContinuousResult(buffer, summary);
    m_counts.records = static_cast<std::uint32_t>(count_i(buffer));
    ++m_counts.round;
    m_marks.markRound(m_counts);
    return hasRecords;
}

// The records of the baseline are taken out before the rounds begin, those of the stop before the tables are made.
int TracingCollector::getCollectionResults(QVBuffer& buffer)
{
    const int result = m_collector.getCollectionResults(buffer);
    count_i(buffer);
    if (m_phase == Phase::BASELINE) {
        m_phase = Phase::COLLECT;
        m_marks.markPhase(m_phase, "records of the baseline: " + std::to_string(m_counts.total));
    } else if (m_phase == Phase::STOP) {
        m_phase = Phase::FINALIZE;
        m_marks.markPhase(m_phase, "records in all: " + std::to_string(m_counts.total));
    }
    return result;
}

bool TracingCollector::canCollectMessage(const pwr::InputMsg* message)
{
    return m_collector.canCollectMessage(message);
}

int TracingCollector::doImmediateRead(const pwr::InputMsg* message, Results& results)
{
    return m_collector.doImmediateRead(message, results);
}

std::size_t TracingCollector::count_i(const QVBuffer& buffer)
{
    std::size_t records = 0;
    for (std::size_t offset = 0; buffer.next(offset) != nullptr;)
        ++records;
    m_counts.total += records;
    return records;
}

}    // namespace host

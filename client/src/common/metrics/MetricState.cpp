#include "metrics/MetricState.h"

#include "config/OutputConfig.h"
#include "metrics/ElementKey.h"
#include "metrics/SampledDeltaAccumulator.h"
#include "metrics/SampledResidencyAccumulator.h"
#include "metrics/SampledValueAccumulator.h"
#include "metrics/SummaryChoice.h"
#include "metrics/TracedEventAccumulator.h"
#include "metrics/TracedTransitionAccumulator.h"
#include "record/SystemMetadata.h"
#include "runtime/Log.h"
#include "values/Description.h"

#include <algorithm>
#include <limits>

namespace pwr {

namespace {

using LogNumber = unsigned long long;

std::string entityName(const DataElement& element)
{
    return element.getEntity()->getQualifiedName();
}

std::string descriptorName(const DataElement& element)
{
    return element.getDescriptor() != nullptr ? element.getDescriptor()->getName() : " ";
}

std::uint64_t ticksOf(const DataElement& element)
{
    unsigned long long ticks = 0;
    element.getValue()->toUInt(ticks);
    return ticks;
}

std::uint64_t saturatingSum(std::uint64_t a, std::uint64_t b)
{
    const std::uint64_t sum = a + b;
    return sum >= a ? sum : std::numeric_limits<std::uint64_t>::max();
}

}    // namespace

Metric::State::State(const std::string& metricName, MetricType metricType, const std::string& containerTag,
                     const std::string& switchTag, const SystemMetadata& measuredSystem,
                     const Quantity* measuredQuantity)
    : name(metricName), type(metricType), metricContainerTag(containerTag), featureSwitchTag(switchTag),
      system(measuredSystem), quantity(measuredQuantity)
{
}

Metric::State::~State()
{
    emptyBuffer();
}

bool Metric::State::isComplete(std::uint64_t timestamp, const DataElement& element) const
{
    if (timestamp == 0) {
        QV_LOG_WARNING("WARNING: %s: Please provide a valid non-zero timestamp.\n", name.c_str());
        return false;
    }
    if (element.getEntity() == nullptr) {
        QV_LOG_WARNING("WARNING: %s: Please provide an entity in the DataElement object.\n", name.c_str());
        return false;
    }
    const Data* value = element.getValue();
    if (value == nullptr) {
        QV_LOG_WARNING("WARNING: %s: Please set the value aka measurement in the DataElement object.\n", name.c_str());
        return false;
    }
    if (!isResidency()) return true;
    if (element.getDescriptor() == nullptr) {
        QV_LOG_WARNING("WARNING: %s: Descriptor is required for MetricType::SampledResidency type. Please provide "
                       "one.\n",
                       name.c_str());
        return false;
    }
    if (value->getType() != DataType::UINT) {
        QV_LOG_WARNING("WARNING: %s: MetricType::SampledResidency type requires values to be given in clock ticks as "
                       "pw_u64_t data type.\n",
                       name.c_str());
        return false;
    }
    return true;
}

// The first sample of a pair counts from the start of the collection, and so does its entity from then on: a descriptor
// that shows up late puts its entity's last sampling point back.
Metric::State::Sample Metric::State::openSample(std::uint64_t timestamp, DataElement& element,
                                                std::uint64_t durationTicks)
{
    PairTimes& pair = timesOf_i(element);
    if (pair.listedEntity != element.getEntity()) {
        entities.add(element.getEntity());
        pair.listedEntity = element.getEntity();
    }
    const bool isFirst = pair.previous == 0;
    if (isFirst) {
        pair.previous = system.startTSC;
        pair.entity->lastSamplingPoint = system.startTSC;
    }
    if (isEmpty) samplingPoint = timestamp;
    const bool isReset = durationTicks == RESET_DURATION;
    return {timestamp, element, isReset ? 0 : durationTicks, isReset, pair, isFirst, timestamp - pair.previous};
}

Metric::State::PairTimes& Metric::State::timesOf_i(const DataElement& element)
{
    const std::uint64_t entityId = idOf(element.getEntity());
    PairTimes& pair = m_pairs[PairId(entityId, idOf(element.getDescriptor()))];
    if (pair.entity == nullptr) pair.entity = &m_entityTimes[entityId];
    return pair;
}

bool Metric::State::isTimely(const Sample& sample) const
{
    const std::uint64_t previous = sample.pair.previous;
    if (sample.timestamp < previous || (sample.timestamp == previous && !sample.isFirst)) {
        QV_LOG_WARNING("WARNING: %s: Timestamps must be monotonically increasing. Previous=%llu, current=%llu for "
                       "%s/%s. Data discarded.\n",
                       name.c_str(), LogNumber{previous}, LogNumber{sample.timestamp},
                       entityName(sample.element).c_str(), descriptorName(sample.element).c_str());
        return false;
    }
    if (sample.givenTicks > sample.elapsedTicks) {
        QV_LOG_WARNING("WARNING: %s: Duration cannot be more than the elapsed time since last sampling/transition "
                       "point. duration=%llu, elapsed time=%llu for %s+%s. Data discarded.\n",
                       name.c_str(), LogNumber{sample.givenTicks}, LogNumber{sample.elapsedTicks},
                       entityName(sample.element).c_str(), descriptorName(sample.element).c_str());
        return false;
    }
    return true;
}

void Metric::State::noteAccepted(const Sample& sample)
{
    QV_LOG_INFO("INFO: setData: Received valid data with timestamp=%llu, Entity=%s, Descriptor=%s, duration=%llu, "
                "previous timestamp=%llu \n",
                LogNumber{sample.timestamp}, entityName(sample.element).c_str(), descriptorName(sample.element).c_str(),
                LogNumber{sample.givenTicks}, LogNumber{sample.pair.previous});
    lastTimestamp = sample.timestamp;
}

bool Metric::State::opensSamplingPoint(const Sample& sample) const
{
    return !isEmpty && samplingPoint != sample.timestamp;
}

void Metric::State::bufferTraced(const Sample& sample)
{
    const std::uint64_t duration = sample.givenTicks != 0 ? sample.givenTicks : sample.elapsedTicks;
    QV_LOG_INFO("INFO: %s: Valid duration since the last transition point for entity=%s descriptor=%s is set as "
                "%llu \n",
                name.c_str(), entityName(sample.element).c_str(), descriptorName(sample.element).c_str(),
                LogNumber{duration});
    buffer_i(sample, duration);
}

void Metric::State::bufferSampled(const Sample& sample)
{
    QV_LOG_DEBUG("DEBUG: %s: Saving data to the buffered data vector.\n", name.c_str());
    const std::uint64_t duration = sampledDuration_i(sample);
    QV_LOG_DEBUG("DEBUG: %s: Valid duration since last sampling point for entity=%sdescriptor=%s is set as %llu \n",
                 name.c_str(), entityName(sample.element).c_str(), descriptorName(sample.element).c_str(),
                 LogNumber{duration});
    if (isResidency()) checkTicks_i(sample, duration);
    buffer_i(sample, duration);
}

std::uint64_t Metric::State::sampledDuration_i(const Sample& sample) const
{
    if (sample.isReset) {
        QV_LOG_INFO("INFO: setting duration to zero due to reset!\n");
        return 0;
    }
    if (!isResidency()) return sample.givenTicks != 0 ? sample.givenTicks : sample.elapsedTicks;

    const std::uint64_t sinceSampling = sinceSamplingPoint_i(*sample.pair.entity, sample.timestamp);
    if (sample.givenTicks == 0) return sinceSampling;
    if (sample.givenTicks <= sinceSampling) return sample.givenTicks;
    QV_LOG_WARNING("WARNING: %s: Duration provided for MetricType::SampledResidency is greater than the time elapsed "
                   "since last sampling point for entity=%s. Resetting duration to be the time since the last sampling "
                   "point for %s.\n",
                   name.c_str(), entityName(sample.element).c_str(), entityName(sample.element).c_str());
    return sinceSampling;
}

// Descriptors of one entity each keep their own order of time: a sample may lie before its entity's last sampling
// point.
std::uint64_t Metric::State::sinceSamplingPoint_i(const EntityTimes& entity, std::uint64_t timestamp) const
{
    return timestamp > entity.lastSamplingPoint ? timestamp - entity.lastSamplingPoint : 0;
}

// Too many ticks are told at once; the sampling point is dropped when it is complete.
void Metric::State::checkTicks_i(const Sample& sample, std::uint64_t durationTicks) const
{
    const std::uint64_t ticks = ticksOf(sample.element);
    if (ticks <= durationTicks) return;
    QV_LOG_WARNING("WARNING: %s: Clock ticks spent by %s in state %s=%llu is greater than the duration=%llu since the "
                   "last sampling point. Note this sample at timestamp=%llu will be discarded.\n",
                   name.c_str(), entityName(sample.element).c_str(), descriptorName(sample.element).c_str(),
                   LogNumber{ticks}, LogNumber{durationTicks}, LogNumber{sample.timestamp});
}

void Metric::State::buffer_i(const Sample& sample, std::uint64_t durationTicks)
{
    sample.element.m_durationTicks = durationTicks;
    fillScopraDescriptor_i(sample.element);
    if (m_pool.empty()) {
        m_pool.push_back(std::make_unique<DataElement>(sample.element));
    } else {
        *m_pool.back() = sample.element;
    }
    point.elements.push_back(m_pool.back().get());
    m_pool.back().release();
    m_pool.pop_back();
    m_bufferedTimes.push_back(sample.pair.entity);
}

void Metric::State::fillScopraDescriptor_i(DataElement& element)
{
    if (element.m_descriptor != nullptr) {
        element.m_scopraDescriptor = element.m_descriptor;
        return;
    }
    QV_LOG_DEBUG("DEBUG: %s: No descriptor provided. Creating one with the metric name for Scopra.\n", name.c_str());
    if (m_nameDescriptor == nullptr) m_nameDescriptor = DataDescriptor::create(DataDescriptorBuilder(name, ""));
    element.m_scopraDescriptor = m_nameDescriptor;
}

void Metric::State::closeSample(const Sample& sample)
{
    sample.pair.previous = sample.timestamp;
    samplingPoint = sample.timestamp;
    isEmpty = false;
}

// A sampling point of residencies counts when each entity's elements agree on its duration and fit into it.
bool Metric::State::isSamplingPointValid()
{
    ++m_round;
    for (std::size_t i = 0; i < point.elements.size(); ++i) {
        if (!sumUpElement_i(*point.elements[i], *m_bufferedTimes[i])) return false;
    }
    return areSumsWithinDuration_i();
}

bool Metric::State::sumUpElement_i(const DataElement& element, EntityTimes& entity)
{
    if (entity.round != m_round) {
        entity.round = m_round;
        entity.ticks = 0;
        entity.durationTicks = element.getDuration();
    } else if (entity.durationTicks != element.getDuration()) {
        const std::string entityText = entityName(element);
        QV_LOG_WARNING("WARNING: %s: valid duration since the last sampling point for %s = %llu, but that provided for "
                       "%s in state %s= %llu. All data provided for the previous sampling point will be discarded.\n",
                       name.c_str(), entityText.c_str(), LogNumber{entity.durationTicks}, entityText.c_str(),
                       descriptorName(element).c_str(), LogNumber{element.getDuration()});
        return false;
    }
    entity.ticks = saturatingSum(entity.ticks, ticksOf(element));
    entity.lastSamplingPoint = samplingPoint;
    return true;
}

// Warns of every entity beyond its duration, in the order of their ids.
bool Metric::State::areSumsWithinDuration_i() const
{
    std::vector<const EntityHandle*> exceeding;
    for (std::size_t i = 0; i < point.elements.size(); ++i) {
        const EntityTimes& times = *m_bufferedTimes[i];
        if (times.ticks > times.durationTicks) exceeding.push_back(point.elements[i]->getEntity());
    }
    const auto idIsBelow = [](const EntityHandle* a, const EntityHandle* b) { return a->getId() < b->getId(); };
    const auto sameId = [](const EntityHandle* a, const EntityHandle* b) { return a->getId() == b->getId(); };
    std::sort(exceeding.begin(), exceeding.end(), idIsBelow);
    exceeding.erase(std::unique(exceeding.begin(), exceeding.end(), sameId), exceeding.end());
    for (const EntityHandle* entity : exceeding) {
        QV_LOG_WARNING("WARNING: %s: For %s, sum of residencies in various states exceeds the sample duration. Data "
                       "provided for the previous sampling point=%llu will be discarded.\n",
                       name.c_str(), entity->getQualifiedName().c_str(), LogNumber{samplingPoint});
    }
    return exceeding.empty();
}

int Metric::State::initializeAccumulators(const Metric& metric)
{
    if (!accumulatorsPending) return 0;
    for (Accumulator* accumulator : accumulators) {
        if (accumulator->initialize(metric, system) == 0) continue;
        QV_LOG_WARNING("WARNING: Metric container %s couldn't initialize an accumulator!\n", name.c_str());
        return 1;
    }
    accumulatorsPending = false;
    return 0;
}

int Metric::State::feedAccumulators(const Metric& metric)
{
    for (Accumulator* accumulator : accumulators) {
        if (accumulator->processMessage(metric) == 0) continue;
        QV_LOG_WARNING("WARNING: Metric container %s reports an accumulator processMessage error!\n", name.c_str());
        return 1;
    }
    return 0;
}

void Metric::State::emptyBuffer()
{
    for (DataElement* element : point.elements)
        m_pool.emplace_back(element);
    point.elements.clear();
    m_bufferedTimes.clear();
}

std::unique_ptr<Accumulator> Metric::State::makeAccumulator(const std::deque<std::string>& tableOrder) const
{
    const auto isDisplayed = [this](const std::string& tableType) {
        TableInfo info;
        return !outputConfig->getTableInfoFor(info, metricContainerTag, featureSwitchTag, tableType) ||
               info.isTableDisplayed();
    };
    const auto summaries = [&](auto kind) { return chooseSummaries<decltype(kind)>(tableOrder, isDisplayed); };
    switch (type) {
    case MetricType::SampledValue:
        return std::make_unique<SampledValueAccumulator>(summaries(SampledValueAccumulator::Summary{}));
    case MetricType::SampledResidency:
        return std::make_unique<SampledResidencyAccumulator>(summaries(SampledResidencyAccumulator::Summary{}));
    case MetricType::TracedValueTransition:
        return std::make_unique<TracedTransitionAccumulator>(summaries(TracedTransitionAccumulator::Summary{}));
    case MetricType::SampledDelta:
        return std::make_unique<SampledDeltaAccumulator>(summaries(SampledDeltaAccumulator::Summary{}));
    case MetricType::TracedEvent:
        return std::make_unique<TracedEventAccumulator>(summaries(TracedEventAccumulator::Summary{}));
    }
    QV_LOG_WARNING("WARNING: %s: Unrecognized metric type\n", name.c_str());
    return nullptr;
}

TextNotes& Metric::State::notes()
{
    if (textInfo == nullptr) textInfo = std::make_unique<TextNotes>();
    return *textInfo;
}

}    // namespace pwr

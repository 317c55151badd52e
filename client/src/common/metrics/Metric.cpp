#include "metrics/Metric.h"

#include "config/OutputConfig.h"
#include "metrics/MetricState.h"
#include "output/TableMessage.h"
#include "output/WriterMessage.h"
#include "output/WriterStream.h"
#include "runtime/Log.h"
#include "values/Description.h"
#include "values/Handles.h"
#include "values/Quantity.h"

namespace pwr {

const unsigned long long Metric::RESET_DURATION = 0xFFFFFFFFFFFFFFFFULL;

Metric::Metric(const std::string& name, MetricType type, const std::string& metricContainerTag,
               const std::string& featureSwitchTag, const SystemMetadata& system, const Quantity* quantity)
    : m_state(std::make_unique<State>(name, type, metricContainerTag, featureSwitchTag, system, quantity))
{
    init();
}

Metric::~Metric() = default;

void Metric::init()
{
    State& state = *m_state;
    state.id = WriterMessage::drawId_i();
    if (g_pluginEnvironment != nullptr) {
        state.stream = static_cast<WriterStream*>(g_pluginEnvironment->getWriterStream());
    }
    if (state.stream == nullptr) throw "Writer stream is not initialized";
    state.outputConfig = WriterInterfaceConfigFileParser::instance();

    std::deque<std::string> tableOrder;
    if (!state.outputConfig->getTableOrderForMetric(tableOrder, state.metricContainerTag, state.featureSwitchTag)) {
        QV_LOG_WARNING("WARNING: Output config table entries not present for the feature-switch-tag and "
                       "metric-container-tag combo: '%s_%s'. Add table entries specific to Metric container type.\n",
                       state.featureSwitchTag.c_str(), state.metricContainerTag.c_str());
    }
    if (state.isResidency() && state.quantity != Quantity::time()) {
        throw "Quantity for MetricType::SampledResidency metric must be pwr::Quantity::time()";
    }
    state.ownAccumulator = state.makeAccumulator(tableOrder);
    if (state.ownAccumulator != nullptr) state.accumulators.push_back(state.ownAccumulator.get());
}

int Metric::setFiniteSetValues(const std::vector<const DataDescriptor*>& descriptors)
{
    State& state = *m_state;
    for (const DataDescriptor* descriptor : descriptors) {
        if (descriptor != nullptr) continue;
        QV_LOG_WARNING("WARNING: %s: Please provide a valid pointer to DataDescriptor object.\n", state.name.c_str());
        return 1;
    }
    if (descriptors.empty()) return 0;
    if (!state.mayHaveFiniteSet()) {
        QV_LOG_WARNING("WARNING: %s: Finite set of possible values can be provided only for MetricType::SampledValue "
                       "or MetricType::TracedValueTransition metric types.\n",
                       state.name.c_str());
        return 1;
    }
    std::vector<Data>& values = state.finiteSetValues;
    if (!values.empty() && values.front().getType() != DataType::HANDLE) {
        QV_LOG_WARNING("WARNING: The data type of the finite set of possible valuesdoes not match what was provided "
                       "previously\n");
        return 1;
    }
    for (const DataDescriptor* descriptor : descriptors)
        values.emplace_back(*descriptor);
    return 0;
}

int Metric::setValueGroupInfo(const FieldDescription& description)
{
    m_state->valueGroupInfo = Field::create(description);
    return 0;
}

int Metric::setEntityGroupInfo(const FieldDescription& description)
{
    m_state->entityGroupInfo = Field::create(description);
    return 0;
}

int Metric::setDescriptorGroupInfo(const FieldDescription& description)
{
    m_state->descriptorGroupInfo = Field::create(description);
    return 0;
}

int Metric::setLegacyMetricType(RealTableClass type)
{
    constexpr RealTableClass FIRST_UNKNOWN{18};
    if (type >= FIRST_UNKNOWN) return 1;
    m_state->legacyMetricType = type;
    return 0;
}

int Metric::setEntityDescriptorCombinations(const std::vector<EntityDescCombo>& combinations)
{
    State& state = *m_state;
    for (const EntityDescCombo& combination : combinations) {
        if (combination.entity == nullptr) {
            QV_LOG_WARNING("WARNING: %s: Entity is required when setting entity-descriptor combinations.\n",
                           state.name.c_str());
            return 1;
        }
        state.entities.add(combination.entity);
        state.descriptors.add(combination.descriptor);
    }
    state.combinations = combinations;
    return 0;
}

int Metric::setPreMetricTextInfo(const std::string& text)
{
    return m_state->notes().addPreTableNote(text);
}

int Metric::setPostMetricTextInfo(const std::string& text)
{
    return m_state->notes().addPostTableNote(text);
}

int Metric::addAccumulator(Accumulator* accumulator)
{
    State& state = *m_state;
    if (accumulator == nullptr) {
        QV_LOG_WARNING("WARNING: trying to add a NULL accumulator to Metric container %s?!\n", state.name.c_str());
        return 1;
    }
    if (!state.isEmpty) {
        QV_LOG_WARNING("WARNING: trying to add an accumulator to Metric container %s after setting data?!\n",
                       state.name.c_str());
        return 1;
    }
    state.accumulators.push_back(accumulator);
    return 0;
}

int Metric::addStaticTableRowInfo(TableMessage* table)
{
    if (table == nullptr) return 1;
    table->setMetricContainerId(m_state->id);
    MetricContainerInfoMessage message;
    message.setMetricContainerId(m_state->id);
    message.addStaticTableRowInfo(table);
    m_state->stream->pushMessage(message);
    return 0;
}

int Metric::setTimelineTableToDisplay(TimelineTableType type)
{
    if (!m_state->isResidency()) {
        QV_LOG_WARNING("WARNING: Warning: Timeline output table selection is only valid for "
                       "MetricType::SampledResidency type metrics.\nThis request will be ignored.");
        return 0;
    }
    MetricContainerInfoMessage message;
    message.setMetricContainerId(m_state->id);
    message.setTimelineTableToDisplay(type);
    m_state->stream->pushMessage(message);
    return 0;
}

void Metric::setSuppressEntityInfoInSummary(bool suppress)
{
    m_state->suppressEntityInfo = suppress;
}

void Metric::setTraceSampleEntityAttr(bool trace)
{
    m_state->traceSampleEntityAttribute = trace;
}

int Metric::setData(unsigned long long timestamp, DataElement& element, unsigned long long duration)
{
    State& state = *m_state;
    if (!state.isComplete(timestamp, element)) return 1;
    const State::Sample sample = state.openSample(timestamp, element, duration);
    if (!state.isTimely(sample)) return 1;
    state.noteAccepted(sample);
    if (state.isTraced()) {
        state.bufferTraced(sample);
        pushToStream();
    } else {
        if (state.opensSamplingPoint(sample)) {
            QV_LOG_DEBUG("DEBUG: %s: New timestamp provided for sampled metric. Pushing buffered data to the writer "
                         "stream.\n",
                         state.name.c_str());
            pushToStream();
        }
        state.bufferSampled(sample);
    }
    state.closeSample(sample);
    return 0;
}

// A sampling point of residencies that doesn't add up is dropped. Returns 1 when an accumulator couldn't be
// initialised.
int Metric::pushToStream()
{
    State& state = *m_state;
    int result = 0;
    if (!state.isResidency() || state.isSamplingPointValid()) {
        state.point.timestamp = state.isTraced() ? state.lastTimestamp : state.samplingPoint;
        QV_LOG_DEBUG("DEBUG: %s: Pushing buffered data to writer stream\n", state.name.c_str());
        state.stream->pushMessage(this);
        result = state.initializeAccumulators(*this);
        // What an accumulator failed on stays buffered.
        if (result == 0 && state.feedAccumulators(*this) != 0) return 0;
    }
    state.emptyBuffer();
    return result;
}

int Metric::finalize()
{
    State& state = *m_state;
    if (state.isEmpty) {
        QV_LOG_WARNING("WARNING: No data was provided for metric %s\n", state.name.c_str());
        return 1;
    }
    if (!state.isTraced()) {
        QV_LOG_DEBUG("DEBUG: Pushing data to writer stream\n");
        pushToStream();
    }

    MetricContainerInfoMessage message;
    message.setMetricContainerId(state.id);
    message.setTextInfo(state.textInfo.get());
    message.setContainerHeader(state.name);
    message.setMetricContainerTag(state.metricContainerTag);
    state.stream->pushMessage(message);

    int result = 0;
    for (Accumulator* accumulator : state.accumulators) {
        if (accumulator->finalize(*this) == 0) continue;
        QV_LOG_WARNING("WARNING: Metric container %s couldn't finalize an accumulator!\n", state.name.c_str());
        result = 1;
    }
    return result;
}

std::string Metric::getName() const
{
    return m_state->name;
}

unsigned int Metric::getId() const
{
    return m_state->id;
}

const Quantity* Metric::getQuantity() const
{
    return m_state->quantity;
}

Metric::MetricType Metric::getMetricType() const
{
    return m_state->type;
}

RealTableClass Metric::getLegacyMetricType() const
{
    return m_state->legacyMetricType;
}

const Field* Metric::getValueGroupInfo() const
{
    return m_state->valueGroupInfo;
}

const Field* Metric::getEntityGroupInfo() const
{
    return m_state->entityGroupInfo;
}

const Field* Metric::getDescriptorGroupInfo() const
{
    return m_state->descriptorGroupInfo;
}

const std::vector<Data>& Metric::getFiniteSetValues() const
{
    return m_state->finiteSetValues;
}

const std::vector<Metric::EntityDescCombo>& Metric::getEntityDescriptorCombinations() const
{
    return m_state->combinations;
}

const TextNotes* Metric::getTextInfo() const
{
    return m_state->textInfo.get();
}

const std::string& Metric::getMetricContainerTag() const
{
    return m_state->metricContainerTag;
}

const std::string& Metric::getFeatureSwitchTag() const
{
    return m_state->featureSwitchTag;
}

const std::vector<const EntityHandle*>& Metric::getEntityList() const
{
    return m_state->entities.items();
}

const std::list<const DataDescriptor*>& Metric::getDescriptorList() const
{
    return m_state->descriptors.items();
}

bool Metric::getTraceSampleEntityAttr() const
{
    return m_state->traceSampleEntityAttribute;
}

bool Metric::getSuppressEntityInfoInSummary() const
{
    return m_state->suppressEntityInfo;
}

bool Metric::isEmpty() const
{
    return m_state->isEmpty;
}

const Metric::DataPoint& Metric::getData() const
{
    return m_state->point;
}

}    // namespace pwr

#include "metrics/ThermalSampleHandler.h"

#include "metrics/Metric.h"
#include "record/SystemMetadata.h"
#include "runtime/Log.h"
#include "values/EntityHandle.h"
#include "values/Quantity.h"

namespace pwr {

constinit ThermalSampleHandler* ThermalSampleHandler::s_instance = nullptr;

ThermalSampleHandler::ThermalSampleHandler(const SystemMetadata& system)
    : m_metric(std::make_unique<Metric>("Temperature Metrics", Metric::MetricType::SampledValue, "ALL-THERMAL-DATA",
                                        "TEMP", system, Quantity::temperature())),
      m_isLowOverhead(system.lowOverheadMode != 0)
{
    m_metric->setLegacyMetricType(RealTableClass{5});
}

ThermalSampleHandler::~ThermalSampleHandler() = default;

ThermalSampleHandler* ThermalSampleHandler::get(const SystemMetadata& system, const MetricPlugin* plugin)
{
    if (s_instance == nullptr) s_instance = new ThermalSampleHandler(system);
    s_instance->registerMetric(plugin);
    return s_instance;
}

int ThermalSampleHandler::release(const MetricPlugin* plugin)
{
    if (s_instance == nullptr) {
        QV_LOG_WARNING("WARNING: Attempt to unregister a plugin from a non-existant ThermalSampleHandler\n");
        return 1;
    }
    return s_instance->unregisterMetric(plugin);
}

void ThermalSampleHandler::destroy_i()
{
    delete s_instance;
    s_instance = nullptr;
}

int ThermalSampleHandler::registerMetric(const MetricPlugin* plugin)
{
    m_plugins.insert(plugin);
    return 0;
}

int ThermalSampleHandler::unregisterMetric(const MetricPlugin* plugin)
{
    const auto found = m_plugins.find(plugin);
    if (found == m_plugins.end()) {
        QV_LOG_WARNING("WARNING: ThermalSampleHandler: Attempt to unregister a plugin that has not been registered or "
                       "it may have already been unregistered.\n");
        return 1;
    }
    m_plugins.erase(found);
    if (!m_plugins.empty() || m_metric->isEmpty()) return 0;
    return m_metric->finalize() != 0 ? 1 : 0;
}

int ThermalSampleHandler::addEntity(const EntityHandle* entity)
{
    if (entity == nullptr) {
        QV_LOG_WARNING("WARNING: ThermalSampleHandler: please provide a valid entity.\n");
        return 1;
    }
    const auto [reader, isNew] = m_readers.try_emplace(entity->getId());
    if (!isNew) {
        QV_LOG_WARNING("WARNING: ThermalSampleHandler: Entity %s already added\n", entity->getQualifiedName().c_str());
        return 1;
    }
    reader->second.element = std::make_unique<DataElement>(entity, nullptr);
    return 0;
}

int ThermalSampleHandler::setTemperature(const EntityHandle* entity, unsigned long long timestamp,
                                         unsigned short temperature, bool isReset)
{
    Reader* reader = readerOf_i(entity);
    if (reader == nullptr) return 1;
    reader->element->setValue(temperature);
    if (!m_isLowOverhead) {
        if (m_temperaturesSet == 0 || reader->sweep == m_sweep) beginSweep_i(timestamp);
        timestamp = m_sweepTimestamp;
        reader->sweep = m_sweep;
    }
    ++m_temperaturesSet;
    return setData_i(*reader, timestamp, isReset);
}

// Null, with a warning, for an entity that was not added.
ThermalSampleHandler::Reader* ThermalSampleHandler::readerOf_i(const EntityHandle* entity)
{
    if (entity == nullptr) {
        QV_LOG_WARNING("WARNING: ThermalSampleHandler: Please provide a valid entity when setting temperature.\n");
        return nullptr;
    }
    const auto found = m_readers.find(entity->getId());
    if (found == m_readers.end()) {
        QV_LOG_WARNING("WARNING: ThermalSampleHandler: cannot set temperature for an entity that has not been added "
                       "yet.\n");
        return nullptr;
    }
    return &found->second;
}

// Only called for an entity that was added.
void ThermalSampleHandler::beginSweep_i(unsigned long long timestamp)
{
    if (m_temperaturesSet % m_readers.size() != 0) {
        QV_LOG_WARNING("WARNING: Temperature values were not set for all the entities at %llu.\n",
                       static_cast<unsigned long long>(m_sweepTimestamp));
        m_temperaturesSet = 0;
    }
    m_sweepTimestamp = timestamp;
    ++m_sweep;
}

int ThermalSampleHandler::setData_i(Reader& reader, unsigned long long timestamp, bool isReset)
{
    return m_metric->setData(timestamp, *reader.element, isReset ? Metric::RESET_DURATION : 0);
}

int ThermalSampleHandler::resetTemperatures(std::vector<const EntityHandle*>& entities, unsigned long long timestamp,
                                            unsigned short temperature)
{
    m_sweepTimestamp = timestamp;
    if (!m_isLowOverhead) m_temperaturesSet = 0;    // the next reading opens a sweep
    for (const EntityHandle* entity : entities) {
        Reader* reader = readerOf_i(entity);
        if (reader == nullptr) return 1;
        reader->element->setValue(temperature);
        if (setData_i(*reader, timestamp, true) != 0) return 1;
    }
    return 0;
}

}    // namespace pwr

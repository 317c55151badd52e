#pragma once

#include "runtime/Export.h"

#include <cstdint>
#include <memory>
#include <set>
#include <unordered_map>
#include <vector>

class MetricPlugin;
class QuorvaneHost;

namespace pwr {

class DataElement;
class EntityHandle;
class Metric;
class SystemMetadata;
class UniqueId;

// The one temperature metric of the process, shared by all plugins that read temperatures. It puts the readings of a
// sampling sweep on the timestamp of the sweep's first, so that the metric sees them as one sampling point. A sweep
// ends when an entity reports for the second time. Made by the first get(); its metric sends its tables when the last
// plugin has called release(), and both live on until QuorvaneHost::destroyThermalSampleHandler() or
// UniqueId::destroy(). One thread at a time, the first get() included.
//
//   ThermalSampleHandler* temperatures = ThermalSampleHandler::get(system, this);
//   temperatures->addEntity(core0);
//   temperatures->setTemperature(core0, timestamp, 41, false);    // for each sample
//   ...
//   ThermalSampleHandler::release(this);
//
// Operations that return int give 0, or 1 with a line in the log. Timestamps are ticks of the default clock,
// temperatures degrees Celsius.
class QUORVANE_API ThermalSampleHandler {
public:
    // Joins `plugin`, once more each time. The handler stays the process's; valid until it is destroyed. The first
    // caller's `system` and the writer stream of that moment serve it all its life. The first call throws a const char*
    // text without a writer stream in the environment, and joins nobody.
    static ThermalSampleHandler* get(const SystemMetadata& system, const MetricPlugin* plugin);

    // Takes back one get(). The last one finalises the metric if it has samples, and gives 1 if that failed. Refuses a
    // plugin that is not there.
    static int release(const MetricPlugin* plugin);

    // Refuses null and an entity that is there already.
    int addEntity(const EntityHandle* entity);

    // One reading. With `isReset` it stands for no time. Refuses an entity that was not added; otherwise gives what
    // Metric::setData() does. A reading that the metric refuses has reported in its sweep all the same. In low overhead
    // mode each reading keeps its own timestamp.
    int setTemperature(const EntityHandle* entity, unsigned long long timestamp, unsigned short temperature,
                       bool isReset);

    // Reports `temperature` of all `entities` at a reset and ends the sweep. Stops with 1 at the first that is refused;
    // those before it stay done.
    int resetTemperatures(std::vector<const EntityHandle*>& entities, unsigned long long timestamp,
                          unsigned short temperature);

    ThermalSampleHandler(const ThermalSampleHandler&) = delete;
    ThermalSampleHandler& operator=(const ThermalSampleHandler&) = delete;

private:
    friend class ::QuorvaneHost;
    friend class UniqueId;

    struct Reader {
        std::unique_ptr<DataElement> element;
        std::uint64_t sweep = 0;    // the last one that it reported in
    };

    explicit ThermalSampleHandler(const SystemMetadata& system);
    ~ThermalSampleHandler();

    int registerMetric(const MetricPlugin* plugin);
    int unregisterMetric(const MetricPlugin* plugin);
    static void destroy_i();

    Reader* readerOf_i(const EntityHandle* entity);
    void beginSweep_i(unsigned long long timestamp);
    int setData_i(Reader& reader, unsigned long long timestamp, bool isReset);

    static ThermalSampleHandler* s_instance;    // owned; null before the first get()

    std::multiset<const MetricPlugin*> m_plugins;    // not owned
    std::unique_ptr<Metric> m_metric;
    std::uint64_t m_temperaturesSet = 0;
    std::uint64_t m_sweepTimestamp = 0;    // ticks
    std::uint64_t m_sweep = 1;             // number of the sweep under way
    bool m_isLowOverhead;
    std::unordered_map<unsigned long long, Reader> m_readers;    // by entity id
};

}    // namespace pwr

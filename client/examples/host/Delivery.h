#pragma once

#include "features/FeaturePlugin.h"

#include <cstdint>
#include <vector>

namespace host {

class PointCounter;

// What a collection and the processing of a saved one have in common: each record goes to the plugin that its id names,
// and in the end the tables go out. Record and plugins are not owned; the plugins are numbered.
class Delivery {
public:
    using Params = Plugin::Params;

    Delivery(pwr::SystemMetadata& record, const std::vector<FeaturePlugin*>& plugins);
    virtual ~Delivery();
    Delivery(const Delivery&) = delete;
    Delivery& operator=(const Delivery&) = delete;

    // Sends the tables, in the order of the plugins. Returns the plugins that took no sample or whose tables failed.
    std::vector<const FeaturePlugin*> end();

    std::uint64_t getSamples() const;
    // Records that found no plugin, or one that could not read them.
    std::uint64_t getFailedRecords() const { return m_failedRecords; }
    // The data points handed in to the metrics less those that reached the writers; after end().
    std::uint64_t getDroppedPoints(const PointCounter& counter) const;

protected:
    virtual void finishRecords_i() {}    // the last ones, and the stop times, before the tables go out
    FeaturePlugin* findPlugin_i(int sid) const;
    void deliver_i(const qv_driver_msg* message);

    pwr::SystemMetadata& m_record;
    std::vector<FeaturePlugin*> m_plugins;
    Params m_params;
    std::uint64_t m_failedRecords = 0;
};

}    // namespace host

#pragma once

#include "metrics/Metric.h"
#include "output/WriterPlugin.h"
#include "plugins/PluginCapability.h"

#include <cstdint>
#include <map>
#include <string>

namespace host {

// Counts the data points of each feature that reach the writers.
class PointCounter : public WriterPlugin {
public:
    PointCounter() : WriterPlugin("quorvane-host-point-counter")
    {
        addCapability(new pwr::WriterPluginCapability({}, "point-counter", "counts data points", "", false));
    }
    int openOutput() override { return 0; }
    int closeOutput() override { return 0; }

    std::uint64_t getPoints(const std::string& featureSwitchTag) const
    {
        const auto entry = m_points.find(featureSwitchTag);
        return entry != m_points.end() ? entry->second : 0;
    }

private:
    int writeMessage(const pwr::Metric& metric) override
    {
        ++m_points[metric.getFeatureSwitchTag()];
        return 0;
    }

    std::map<std::string, std::uint64_t> m_points;
};

}    // namespace host

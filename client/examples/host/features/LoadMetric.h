#pragma once

#include <memory>
#include <string>

namespace pwr {
class Metric;
class SystemMetadata;
}    // namespace pwr

namespace host {

// What all sources of processor load share: the metric, and the rounding.

std::unique_ptr<pwr::Metric> makeLoadMetric(const std::string& featureSwitchTag, const pwr::SystemMetadata& system);

// The nearest whole percent, 0 to 100. `total` is above 0.
unsigned long long wholePercent(double busy, double total);

}    // namespace host

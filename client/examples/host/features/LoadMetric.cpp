#include "features/LoadMetric.h"

#include "metrics/Metric.h"
#include "values/Description.h"
#include "values/Quantity.h"

#include <algorithm>
#include <cmath>

namespace host {

namespace {

constexpr auto LOAD_QUANTITY = static_cast<pwr::QuantityType>(8);    // the first number that is free for hosts

}    // namespace

std::unique_ptr<pwr::Metric> makeLoadMetric(const std::string& featureSwitchTag, const pwr::SystemMetadata& system)
{
    const pwr::Quantity* load = pwr::Quantity::create(LOAD_QUANTITY, "Load", "%", nullptr, 1.0);
    auto metric = std::make_unique<pwr::Metric>("CPU load", pwr::Metric::MetricType::SampledValue, "LOAD",
                                                featureSwitchTag, system, load);
    metric->setEntityGroupInfo(pwr::FieldDescription("Processor", ""));
    metric->setValueGroupInfo(pwr::FieldDescription("Load (%)", ""));
    return metric;
}

unsigned long long wholePercent(double busy, double total)
{
    return static_cast<unsigned long long>(std::lround(std::clamp(100.0 * busy / total, 0.0, 100.0)));
}

}    // namespace host

#include "features/Feature.h"

#include "config/pw_utils.h"

namespace host {

Feature::Feature(const std::string& name, const std::string& description) : m_name(name), m_description(description) {}

Feature::~Feature() = default;

std::string Feature::getSwitchTag() const
{
    return pwr::getMetricTag(m_name);
}

bool Feature::find(std::string& reason)
{
    m_remarks.clear();
    return find_i(reason);
}

void Feature::readBaseline(unsigned long long timestamp)
{
    readBaseline_i(timestamp);
}

void Feature::makeMetric(const pwr::SystemMetadata& system)
{
    m_metric = makeMetric_i(system);
    for (const std::string& remark : m_remarks)
        m_metric->setPostMetricTextInfo(remark);
}

void Feature::takeRound(unsigned long long timestamp)
{
    const std::uint64_t before = m_samples;
    readRound_i(timestamp);
    if (m_samples > before) ++m_rounds;
}

bool Feature::finish()
{
    return m_metric && !m_metric->isEmpty() && m_metric->finalize() == 0;
}

unsigned int Feature::getMetricId() const
{
    return m_metric ? m_metric->getId() : 0;
}

}    // namespace host

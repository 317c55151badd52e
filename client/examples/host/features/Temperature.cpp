#include "features/Temperature.h"

#include "metrics/Metric.h"
#include "values/Description.h"
#include "values/EntityHandle.h"
#include "values/Quantity.h"

#include <algorithm>
#include <cstdint>

namespace host {

namespace {

const std::string THERMAL_FOLDER = "/sys/class/thermal";

}    // namespace

Temperature::Temperature(const SystemTree& tree) : Feature("temperature", "degrees of each thermal zone"), m_tree(tree)
{
}

bool Temperature::find_i(std::string& reason)
{
    m_zones.clear();
    const std::vector<int> zones = m_tree.numberedEntries(THERMAL_FOLDER, "thermal_zone");
    for (const int zone : zones)
        addZone_i(zone);
    if (!m_zones.empty()) return true;
    reason = (zones.empty() ? "there is no thermal zone below " : "no thermal zone can be read below ") +
             m_tree.realPath(THERMAL_FOLDER);
    return false;
}

void Temperature::addZone_i(int number)
{
    const std::string folder = THERMAL_FOLDER + "/thermal_zone" + std::to_string(number);
    Zone zone;
    zone.file = folder + "/temp";
    std::int64_t ignored = 0;
    if (!m_tree.readNumber(zone.file, ignored)) {
        remark_i("thermal zone " + std::to_string(number) + " is left out, since " + m_tree.realPath(zone.file) +
                 " can't be read");
        return;
    }
    const std::string plainName = "thermal_zone" + std::to_string(number);
    if (!m_tree.readText(folder + "/type", zone.name) || zone.name.empty()) zone.name = plainName;
    const auto hasName = [&zone](const Zone& other) { return other.name == zone.name; };
    if (std::any_of(m_zones.begin(), m_zones.end(), hasName)) zone.name += " (" + plainName + ")";
    m_zones.push_back(zone);
}

std::unique_ptr<pwr::Metric> Temperature::makeMetric_i(const pwr::SystemMetadata& system)
{
    auto metric = std::make_unique<pwr::Metric>("Temperature", pwr::Metric::MetricType::SampledValue, "ZONES",
                                                getSwitchTag(), system, pwr::Quantity::temperature());
    metric->setEntityGroupInfo(pwr::FieldDescription("Thermal zone", ""));
    metric->setValueGroupInfo(pwr::FieldDescription("Temperature", ""));
    for (Zone& zone : m_zones) {
        zone.entity = pwr::EntityHandle::create(zone.name, pwr::EntityHandle::getSystemHandle());
    }
    return metric;
}

// A temperature is what it is at the moment: nothing accrues.
void Temperature::readBaseline_i(unsigned long long) {}

void Temperature::readRound_i(unsigned long long timestamp)
{
    for (const Zone& zone : m_zones) {
        std::int64_t thousandths = 0;
        if (!m_tree.readNumber(zone.file, thousandths)) continue;
        handIn_i(timestamp, zone.entity, nullptr, static_cast<double>(thousandths) / 1000.0);
    }
}

}    // namespace host

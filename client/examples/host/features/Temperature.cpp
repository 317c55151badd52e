#include "features/Temperature.h"

#include "collector/NumberPattern.h"
#include "machine/SystemTree.h"

#include "values/Description.h"
#include "values/EntityHandle.h"
#include "values/Quantity.h"

namespace host {

namespace {

FeatureCapability* makeCapability()
{
    auto* capability = new FeatureCapability("temperature", "degrees of each thermal zone", "TEMPERATURE", 1);
    capability->require(new SourceRequirement("TEMPERATURE", "thermal zones"));
    return capability;
}

}    // namespace

Temperature::Temperature() : FeaturePlugin("quorvane-host-temperature", makeCapability()) {}

void Temperature::takeBaseline_i(const Source& source, const Items& items, unsigned long long)
{
    std::uint64_t perDegree = 0;
    if (SystemTree::parseNumber(constant_i("UNITS_PER-DEGREE", ""), perDegree) && perDegree > 0)
        m_perDegree = static_cast<double>(perDegree);
    for (const RecordItem& item : items) {
        if (item.isRead) {
            m_zones[{source.tag, item.indices}].name = uniqueName_i(source, item);
        } else {
            const bool isZone = item.indices.count == 1;
            remarkLeftOut_i(isZone ? fillPattern("thermal zone *", item.indices) : plainName_i(source, item), source,
                            item);
        }
    }
}

std::string Temperature::uniqueName_i(const Source& source, const RecordItem& item)
{
    const std::string text = textOf_i(source, item);
    const std::string plain = plainName_i(source, item);
    const std::string name = text.empty() ? plain : text;
    for (const std::string& choice : {name, name + " (" + plain + ")"}) {
        if (m_names.insert(choice).second) return choice;
    }
    return fillPattern(source.pattern, item.indices);
}

std::unique_ptr<pwr::Metric> Temperature::makeMetric_i(const pwr::SystemMetadata& system)
{
    auto metric = std::make_unique<pwr::Metric>("Temperature", pwr::Metric::MetricType::SampledValue, "ZONES",
                                                getSwitchTag(), system, pwr::Quantity::temperature());
    metric->setEntityGroupInfo(pwr::FieldDescription("Thermal zone", ""));
    metric->setValueGroupInfo(pwr::FieldDescription("Temperature", ""));
    for (auto& [place, zone] : m_zones)
        openZone_i(zone);
    return metric;
}

void Temperature::takeRound_i(const Source& source, const Items& items, unsigned long long tsc)
{
    const unsigned long long duration = tsc == m_resetTsc ? pwr::Metric::RESET_DURATION : 0;
    for (const RecordItem& item : items) {
        const auto zone = m_zones.find({source.tag, item.indices});
        if (zone == m_zones.end() || !item.isRead) continue;
        openZone_i(zone->second);
        handIn_i(tsc, zone->second.entity, nullptr, item.toReal() / m_perDegree, duration);
    }
}

// The order of the first calls is the order of the rows.
void Temperature::openZone_i(Zone& zone)
{
    if (zone.entity == nullptr) {
        zone.entity = pwr::EntityHandle::create(zone.name, pwr::EntityHandle::getSystemHandle());
    }
}

void Temperature::forgetBaselines_i(unsigned long long tsc)
{
    m_resetTsc = tsc;
}

}    // namespace host

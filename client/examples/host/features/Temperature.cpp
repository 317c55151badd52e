#include "features/Temperature.h"

#include "collector/NumberPattern.h"
#include "machine/SystemTree.h"

#include "metrics/ThermalSampleHandler.h"
#include "output/WriterMessage.h"
#include "values/EntityHandle.h"

#include <cmath>
#include <limits>

namespace host {

namespace {

FeatureCapability* makeCapability()
{
    auto* capability = new FeatureCapability("temperature", "degrees of each thermal zone", "TEMPERATURE", 1);
    capability->require(new SourceRequirement("TEMPERATURE", "thermal zones"));
    return capability;
}

// What the shared metric takes, in whole degrees.
bool isTellable(double degrees)
{
    return std::round(degrees) >= 0 && std::round(degrees) <= std::numeric_limits<unsigned short>::max();
}

}    // namespace

Temperature::Temperature() : FeaturePlugin("quorvane-host-temperature", makeCapability()) {}

Temperature::~Temperature()
{
    if (m_handler != nullptr) pwr::ThermalSampleHandler::release(this);
}

std::string Temperature::getSwitchTag() const
{
    return "TEMP";
}

void Temperature::takeBaseline_i(const Source& source, const Items& items, unsigned long long)
{
    std::uint64_t perDegree = 0;
    if (SystemTree::parseNumber(constant_i("UNITS_PER-DEGREE", ""), perDegree) && perDegree > 0)
        m_perDegree = static_cast<double>(perDegree);
    for (const RecordItem& item : items) {
        if (item.isRead) {
            const std::string name = uniqueName_i(source, item);
            Zone& zone = m_zones[{source.tag, item.indices}];
            zone.name = name;
            if (m_handler != nullptr) join_i(zone);
            if (!isTellable(item.toReal() / m_perDegree))
                remark_i(name + " has no samples while it tells less than 0 degrees, or more than 65535");
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

// The zones join in the order of their places.
std::unique_ptr<pwr::Metric> Temperature::makeMetric_i(const pwr::SystemMetadata& system)
{
    m_handler = pwr::ThermalSampleHandler::get(system, this);
    for (auto& [place, zone] : m_zones)
        join_i(zone);
    return nullptr;
}

void Temperature::join_i(Zone& zone) const
{
    zone.entity = pwr::EntityHandle::create(zone.name, pwr::EntityHandle::getSystemHandle());
    m_handler->addEntity(zone.entity);
}

void Temperature::takeRound_i(const Source& source, const Items& items, unsigned long long tsc)
{
    for (const RecordItem& item : items) {
        const auto zone = m_zones.find({source.tag, item.indices});
        if (zone == m_zones.end() || !item.isRead) continue;
        const double degrees = item.toReal() / m_perDegree;
        if (isTellable(degrees))
            handInDegrees_i(zone->second.entity, static_cast<unsigned short>(std::lround(degrees)), tsc);
    }
}

void Temperature::handInDegrees_i(const pwr::EntityHandle* entity, unsigned short degrees, unsigned long long tsc)
{
    beginSweep_i(tsc);
    ++m_sweepReadings;
    if (m_handler->setTemperature(entity, tsc, degrees, tsc == m_resetTsc) == 0) countSample_i(tsc);
}

// A round that lacked a reading left its sweep open: what is read now would be told with that one's time.
void Temperature::beginSweep_i(unsigned long long tsc)
{
    if (tsc == m_sweepTsc) return;
    std::vector<const pwr::EntityHandle*> none;
    if (m_sweepReadings < m_zones.size()) m_handler->resetTemperatures(none, tsc, 0);
    m_sweepTsc = tsc;
    m_sweepReadings = 0;
}

// The metric's own notes are out of reach.
bool Temperature::sendTables_i()
{
    const bool isSent = pwr::ThermalSampleHandler::release(this) == 0;
    m_handler = nullptr;
    for (const std::string& remark : getRemarks())
        pwr::TextMessage().setMessage(remark);
    return isSent;
}

void Temperature::forgetBaselines_i(unsigned long long tsc)
{
    m_resetTsc = tsc;
}

}    // namespace host

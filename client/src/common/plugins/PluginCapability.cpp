#include "plugins/PluginCapability.h"

#include "record/SystemMetadata.h"
#include "runtime/Log.h"

#include <limits>

namespace pwr {

namespace {

// Bits of the attribute word. The base class has those below FIRST_DERIVED_BIT.
constexpr unsigned char HIDDEN = 1;
constexpr unsigned char CONTINUOUS = 2;
constexpr unsigned char FIRST_DERIVED_BIT = 8;
constexpr unsigned char NO_COLLECT = 8;
constexpr unsigned char DEPENDENT = 9;
constexpr unsigned char NO_DYNAMIC_CHECK = 10;
constexpr unsigned char BIT_COUNT = std::numeric_limits<unsigned long long>::digits;

constexpr FMS HIGHEST_FMS{0xFF, 0xFF, 0xFF};

unsigned long long maskOf(unsigned char bit)
{
    return 1ULL << (bit % BIT_COUNT);
}

unsigned int packed(const FMS& fms)
{
    return fms.family * 65536U + fms.model * 256U + fms.stepping;
}

}    // namespace

PluginCapability::PluginCapability(const std::string& name, const std::string& description, bool continuous)
    : m_name(name), m_description(description)
{
    setOrResetContinuousCollectionSupport(continuous);
}

PluginCapability::~PluginCapability()
{
    for (const PluginRequirement* requirement : m_requirements)
        delete requirement;
}

void PluginCapability::setOwner(Plugin* owner)
{
    m_owner = owner;
}

bool PluginCapability::operator==(const std::string& name) const
{
    return m_name == name;
}

bool PluginCapability::equals(const std::string& name) const
{
    return m_name == name || m_groups.count(name) != 0;
}

void PluginCapability::addGroupName(const std::string& group)
{
    m_groups.insert(group);
}

bool PluginCapability::isHidden() const
{
    return isAttributeSet_i(HIDDEN);
}

void PluginCapability::setHidden()
{
    setAttributeUnchecked_i(HIDDEN);
}

bool PluginCapability::doesSupportContinuousCollection() const
{
    return isAttributeSet_i(CONTINUOUS);
}

void PluginCapability::setOrResetContinuousCollectionSupport(bool supported)
{
    if (supported) {
        setAttributeUnchecked_i(CONTINUOUS);
    } else {
        unsetAttributeUnchecked_i(CONTINUOUS);
    }
}

void PluginCapability::addPluginRequirement(PluginRequirement* requirement)
{
    if (requirement != nullptr) m_requirements.push_back(requirement);
}

PluginRequirementResult PluginCapability::isCapabilitySuitableFor(const SystemMetadata& system,
                                                                  const Params& params) const
{
    if (system.continuousCollectionQuantum > 0 && !doesSupportContinuousCollection()) {
        return PluginRequirementResult::NOT_SUITABLE;
    }
    PluginRequirementResult result = PluginRequirementResult::SUITABLE_UNTESTED;
    for (const PluginRequirement* requirement : m_requirements) {
        if (!requirement->isPluginRequirementSatisfied(system, params)) {
            result = PluginRequirementResult::NOT_SUITABLE;
            break;
        }
        QV_LOG_DEBUG("DEBUG: set PASSED for  %s, %s\n", m_name.c_str(), m_description.c_str());
        result = PluginRequirementResult::SUITABLE;
    }
    QV_LOG_DEBUG("DEBUG: %s has result = %d\n", m_description.c_str(), static_cast<int>(result));
    return result;
}

bool PluginCapability::setAttribute_i(unsigned char bit)
{
    if (bit < FIRST_DERIVED_BIT || bit >= BIT_COUNT) return false;
    setAttributeUnchecked_i(bit);
    return true;
}

bool PluginCapability::isAttributeSet_i(unsigned char bit) const
{
    return bit < BIT_COUNT && (m_attributes & maskOf(bit)) != 0;
}

void PluginCapability::setAttributeUnchecked_i(unsigned char bit)
{
    m_attributes |= maskOf(bit);
}

void PluginCapability::unsetAttributeUnchecked_i(unsigned char bit)
{
    m_attributes &= ~maskOf(bit);
}

MetricPluginCapability::MetricPluginCapability(const std::string& name, const std::string& description,
                                               const std::string& prefix, unsigned char metricId)
    : PluginCapability(name, description, true)
{
    init_i(prefix, metricId, FMS{}, "");
}

MetricPluginCapability::MetricPluginCapability(const std::string& name, const std::string& description,
                                               const std::string& prefix, unsigned char metricId, const FMS& fms)
    : PluginCapability(name, description, true)
{
    init_i(prefix, metricId, fms, "");
}

MetricPluginCapability::MetricPluginCapability(const std::string& name, const std::string& description,
                                               const std::string& prefix, unsigned char metricId,
                                               const std::string& group)
    : PluginCapability(name, description, true)
{
    init_i(prefix, metricId, FMS{}, group);
}

MetricPluginCapability::MetricPluginCapability(const std::string& name, const std::string& description,
                                               const std::string& prefix, unsigned char metricId, const FMS& fms,
                                               const std::string& group)
    : PluginCapability(name, description, true)
{
    init_i(prefix, metricId, fms, group);
}

void MetricPluginCapability::init_i(const std::string& prefix, unsigned char metricId, const FMS& fms,
                                    const std::string& group)
{
    m_configFilePrefix = prefix;
    m_metricId = metricId;
    setFMS(fms);
    if (!group.empty()) addGroupName(group);
}

void MetricPluginCapability::setFMS(const FMS& fms)
{
    const bool isAny = fms.family == 0 && fms.model == 0;
    setFMSRange(fms, isAny ? HIGHEST_FMS : fms);
}

void MetricPluginCapability::setFMSRange(const FMS& low, const FMS& high)
{
    m_fmsRange = {low, high};
}

bool MetricPluginCapability::doesRangeInclude(const FMS& fms) const
{
    // An end may have a stepping of 0, which matches more than the number that it packs to.
    if (fms == m_fmsRange.first || fms == m_fmsRange.second) return true;
    return packed(m_fmsRange.first) < packed(fms) && packed(fms) <= packed(m_fmsRange.second);
}

void MetricPluginCapability::setMetricID(unsigned char metricId)
{
    m_metricId = metricId;
}

MetricPluginCapability& MetricPluginCapability::addReadTrigger(const qv_when_type& trigger)
{
    QV_LOG_WARNING("WARNING: DEPRECATED API!\n");
    m_readTriggers |= static_cast<unsigned int>(trigger);
    return *this;
}

unsigned int MetricPluginCapability::getReadTriggers() const
{
    QV_LOG_WARNING("WARNING: DEPRECATED API!\n");
    return m_readTriggers;
}

void MetricPluginCapability::setNoCollect()
{
    setAttribute_i(NO_COLLECT);
}

bool MetricPluginCapability::isNoCollect() const
{
    return isAttributeSet_i(NO_COLLECT);
}

void MetricPluginCapability::setDependent()
{
    setAttribute_i(DEPENDENT);
}

bool MetricPluginCapability::isDependent() const
{
    return isAttributeSet_i(DEPENDENT);
}

void MetricPluginCapability::disableDynamicCheck()
{
    setAttribute_i(NO_DYNAMIC_CHECK);
}

bool MetricPluginCapability::shouldCheckBeforeDisplaying() const
{
    return !isAttributeSet_i(NO_DYNAMIC_CHECK);
}

ResultFilePluginCapability::ResultFilePluginCapability(const std::string& name, unsigned char a, unsigned char b,
                                                       unsigned char c)
    : ResultFilePluginCapability(name, (unsigned{a} << 16) + (unsigned{b} << 8) + c)
{
}

ResultFilePluginCapability::ResultFilePluginCapability(const std::string& name, unsigned int version)
    : PluginCapability(name, "", false), m_version(version)
{
}

WriterPluginCapability::WriterPluginCapability(const std::set<TableClass>& tables, const std::string& name,
                                               const std::string& description, const std::string& fileSuffix,
                                               bool continuous)
    : PluginCapability(name, description, continuous), m_tables(tables), m_fileSuffix(fileSuffix)
{
}

}    // namespace pwr

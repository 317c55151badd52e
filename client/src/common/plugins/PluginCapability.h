#pragma once

#include "config/Triggers.h"
#include "output/TableTypes.h"
#include "plugins/PluginRequirement.h"
#include "runtime/Export.h"

#include <deque>
#include <set>
#include <string>
#include <utility>
#include <vector>

class Plugin;

namespace pwr {

// One feature that a plugin offers: named, described, with the conditions under which it is available. The plugin that
// it is added to owns it; it owns its requirements.
//
//   auto* capability = new MetricPluginCapability("cpu-load", "Busy share of each processor", "CPU-LOAD", 1);
//   capability->addPluginRequirement(new OSNamePluginRequirement("Linux", false));
//   addCapability(capability);    // in the plugin's constructor
class QUORVANE_API PluginCapability {
public:
    using Params = std::vector<std::pair<std::string, std::string>>;

    PluginCapability(const std::string& name, const std::string& description, bool continuous);
    virtual ~PluginCapability();
    PluginCapability(const PluginCapability&) = delete;
    PluginCapability& operator=(const PluginCapability&) = delete;

    const std::string& getName() const { return m_name; }
    const std::string& getDescription() const { return m_description; }
    Plugin* getOwner() const { return m_owner; }
    void setOwner(Plugin* owner);

    bool operator==(const std::string& name) const;    // the name, exactly
    bool equals(const std::string& name) const;        // the name or a group

    void addGroupName(const std::string& group);
    const PWSet<std::string>& getGroupNames() const { return m_groups; }

    // Hidden from listings; there is no way back.
    bool isHidden() const;
    void setHidden();
    bool doesSupportContinuousCollection() const;
    void setOrResetContinuousCollectionSupport(bool supported);

    void addPluginRequirement(PluginRequirement* requirement);    // takes ownership; null is left out

    // Not suitable when the record asks for a continuous collection that this doesn't support, or at the first
    // requirement that isn't met; the later ones are not evaluated.
    PluginRequirementResult isCapabilitySuitableFor(const SystemMetadata& system, const Params& params) const;

protected:
    // Bits 8 to 63 are the derived class's own; another is refused. There is no bit from 64 up.
    bool setAttribute_i(unsigned char bit);
    bool isAttributeSet_i(unsigned char bit) const;
    unsigned long long getAttributes_i() const { return m_attributes; }

private:
    void setAttributeUnchecked_i(unsigned char bit);
    void unsetAttributeUnchecked_i(unsigned char bit);

    std::string m_name;
    std::string m_description;
    Plugin* m_owner = nullptr;    // not owned
    PWSet<std::string> m_groups;
    unsigned long long m_attributes = 0;
    std::deque<PluginRequirement*> m_requirements;    // owned, in the order of evaluation
};

// A metric that a MetricPlugin offers. All support continuous collection unless told otherwise.
class QUORVANE_API MetricPluginCapability : public PluginCapability {
public:
    // `prefix` is the short name of the feature in the collector configuration. Without an FMS every processor is in
    // range; an empty group is none.
    MetricPluginCapability(const std::string& name, const std::string& description, const std::string& prefix,
                           unsigned char metricId);
    MetricPluginCapability(const std::string& name, const std::string& description, const std::string& prefix,
                           unsigned char metricId, const FMS& fms);
    MetricPluginCapability(const std::string& name, const std::string& description, const std::string& prefix,
                           unsigned char metricId, const std::string& group);
    MetricPluginCapability(const std::string& name, const std::string& description, const std::string& prefix,
                           unsigned char metricId, const FMS& fms, const std::string& group);

    const std::string& getConfigFilePrefix() const { return m_configFilePrefix; }

    // This processor only; with family and model 0 from it up to any. The range is as given, unchecked.
    void setFMS(const FMS& fms);
    void setFMSRange(const FMS& low, const FMS& high);
    const std::pair<FMS, FMS>& getFMSRange() const { return m_fmsRange; }
    bool doesRangeInclude(const FMS& fms) const;

    unsigned char getMetricID() const { return m_metricId; }
    void setMetricID(unsigned char metricId);

    // Deprecated: both warn at each call.
    MetricPluginCapability& addReadTrigger(const qv_when_type& trigger);
    unsigned int getReadTriggers() const;

    void setNoCollect();    // needs no collection
    bool isNoCollect() const;
    void setDependent();    // depends on another capability
    bool isDependent() const;
    void disableDynamicCheck();
    bool shouldCheckBeforeDisplaying() const;

private:
    void init_i(const std::string& prefix, unsigned char metricId, const FMS& fms, const std::string& group);

    std::string m_configFilePrefix;
    std::pair<FMS, FMS> m_fmsRange;
    unsigned char m_metricId = 0;
    unsigned int m_readTriggers = 0;
};

// A version of the result file format.
class QUORVANE_API ResultFilePluginCapability : public PluginCapability {
public:
    ResultFilePluginCapability(const std::string& name, unsigned char a, unsigned char b, unsigned char c);
    ResultFilePluginCapability(const std::string& name, unsigned int version);
    unsigned int getVersion() const { return m_version; }    // a << 16 | b << 8 | c

private:
    unsigned int m_version;
};

// What a writer plugin writes.
class QUORVANE_API WriterPluginCapability : public PluginCapability {
public:
    WriterPluginCapability(const std::set<TableClass>& tables, const std::string& name, const std::string& description,
                           const std::string& fileSuffix, bool continuous);
    const std::set<TableClass>& getSupportedTables() const { return m_tables; }
    const std::string& getFileSuffix() const { return m_fileSuffix; }

private:
    std::set<TableClass> m_tables;
    std::string m_fileSuffix;
};

}    // namespace pwr

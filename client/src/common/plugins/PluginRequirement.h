#pragma once

#include "plugins/FMS.h"
#include "runtime/Export.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace pwr {

class SystemMetadata;

// The result of a suitability test.
enum class PluginRequirementResult : std::uint32_t {
    NOT_SUITABLE = 0,
    SUITABLE_UNTESTED = 1,    // no requirement was evaluated
    SUITABLE = 2,             // every requirement passed
};

// What a requirement asks of a driver. The collector's side implements it.
struct QUORVANE_API DriverInterface {
    virtual ~DriverInterface();
    virtual void reserved();    // keeps the place of the driver's own first operation

    // Major number in bits 32 to 39, minor in bits 16 to 23, third in bits 0 to 7.
    virtual unsigned long long getVersion() = 0;
};

// One small test of the measured system, for capabilities and operations to depend on. It reads the record and nothing
// else, and never fails: what can't be established is not met.
//
//   capability->addPluginRequirement(new OSNamePluginRequirement("Linux", false));
class QUORVANE_API PluginRequirement {
public:
    using Params = std::vector<std::pair<std::string, std::string>>;

    // A negative requirement is met when its test is not.
    PluginRequirement(const std::string& name, bool negative);
    virtual ~PluginRequirement();
    PluginRequirement(const PluginRequirement&) = delete;
    PluginRequirement& operator=(const PluginRequirement&) = delete;

    const std::string& getName() const { return m_name; }

    // The test with the negative sense applied.
    bool isPluginRequirementSatisfied(const SystemMetadata& system, const Params& params) const;

protected:
    // The raw test, without the negative sense.
    virtual bool isPluginRequirementSatisfied_i(const SystemMetadata& system, const Params& params) const = 0;

private:
    std::string m_name;
    bool m_negative;
};

// The processor is this one; a stepping of 0 matches any.
class QUORVANE_API FMSPluginRequirement : public PluginRequirement {
public:
    FMSPluginRequirement(const FMS& fms, bool negative);

protected:
    bool isPluginRequirementSatisfied_i(const SystemMetadata& system, const Params& params) const override;

private:
    FMS m_fms;
};

// The SCU has this version.
class QUORVANE_API SCUPluginRequirement : public PluginRequirement {
public:
    SCUPluginRequirement(const unsigned int& scu, bool negative);

protected:
    bool isPluginRequirementSatisfied_i(const SystemMetadata& system, const Params& params) const override;

private:
    unsigned int m_scu;
};

// The operating system has exactly this name.
class QUORVANE_API OSNamePluginRequirement : public PluginRequirement {
public:
    OSNamePluginRequirement(const std::string& name, bool negative);

protected:
    bool isPluginRequirementSatisfied_i(const SystemMetadata& system, const Params& params) const override;

private:
    std::string m_osName;
};

// There is an integrated graphics device. The first absence that any of these finds is reported to the user, once in
// the life of the process.
class QUORVANE_API IGFXPresentPluginRequirement : public PluginRequirement {
public:
    explicit IGFXPresentPluginRequirement(bool negative = false);

protected:
    bool isPluginRequirementSatisfied_i(const SystemMetadata& system, const Params& params) const override;
};

// The text occurs in the platform's name.
class QUORVANE_API PCHPluginRequirement : public PluginRequirement {
public:
    PCHPluginRequirement(const std::string& name, bool negative);

protected:
    bool isPluginRequirementSatisfied_i(const SystemMetadata& system, const Params& params) const override;

private:
    std::string m_part;
};

// HyperV is enabled.
class QUORVANE_API HyperVEnablePluginRequirement : public PluginRequirement {
public:
    explicit HyperVEnablePluginRequirement(bool negative = false);

protected:
    bool isPluginRequirementSatisfied_i(const SystemMetadata& system, const Params& params) const override;
};

// VSM is disabled.
class QUORVANE_API VSMDisablePluginRequirement : public PluginRequirement {
public:
    explicit VSMDisablePluginRequirement(bool negative = false);

protected:
    bool isPluginRequirementSatisfied_i(const SystemMetadata& system, const Params& params) const override;
};

// All members are met, or any one; an empty group is met. Owns its members.
class QUORVANE_API PluginRequirementGroup : public PluginRequirement {
public:
    explicit PluginRequirementGroup(bool all = true);
    ~PluginRequirementGroup() override;

    bool addPluginRequirement(PluginRequirement* requirement);    // takes ownership; true. Null is left out

protected:
    bool isPluginRequirementSatisfied_i(const SystemMetadata& system, const Params& params) const override;

private:
    std::vector<PluginRequirement*> m_members;    // owned
    bool m_all;
};

// The driver is at least this version, compared as a whole number. Without a driver it isn't met.
class QUORVANE_API DriverRequirement : public PluginRequirement {
public:
    DriverRequirement(unsigned long long minimum, DriverInterface* driver);    // `driver` is not owned

protected:
    bool isPluginRequirementSatisfied_i(const SystemMetadata& system, const Params& params) const override;

private:
    DriverInterface* m_driver;
    unsigned long long m_minimum;
};

}    // namespace pwr

#pragma once

#include "plugins/DriverTypes.h"
#include "plugins/Plugin.h"
#include "runtime/Export.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

class QuorvaneHost;
namespace pwr {
class InputMsg;
class Metadata;
}    // namespace pwr

// How help shows a feature.
enum class QVDynamicHelpType : std::uint32_t {
    MESSAGES = 0,       // it can be set up and has messages
    NO_MESSAGES = 1,    // it can be set up and has none
    FAILED = 2,
};

// Turns driver messages into metrics. The host calls, in this order: initialize() once, initializeCollection() for each
// chosen feature, processMetadata() and then one processMessage_i() per driver message (through
// QuorvaneHost::processMessage, which sorts out resets), finalizeCollection() for each feature, finalize() once. All on
// one thread; 0 is success.
class QUORVANE_API MetricPlugin : public Plugin {
public:
    using Messages = std::vector<pwr::InputMsg*>;
    using MetadataList = std::vector<pwr::Metadata*>;

    enum class ProcessMessageCode : std::uint32_t {
        PROCESSED = 0,
        RESET = 1,    // consumed by a reset
        FAILED = 4,
    };

    virtual int initialize(const pwr::SystemMetadata& system) = 0;
    virtual int finalize(const pwr::SystemMetadata& system) = 0;

    // One message of the driver; null is handed on as it is.
    virtual int processMessage_i(const pwr::SystemMetadata& system, const qv_driver_msg* message) = 0;

    // A record that belongs to this plugin's messages or metrics. The default logs it; -1 for another kind of record,
    // and for null.
    virtual int processMetadata(const pwr::Metadata* metadata);

    // Appends the messages that the feature needs (they stay their owner's) and the records to keep with them (new, the
    // caller's). The default logs the parameters and adds nothing.
    virtual int initializeCollection(Messages& messages, MetadataList& metadata, const std::string& feature,
                                     const Params& params, const pwr::SystemMetadata& system);

    // Tries initializeCollection() with empty lists. What it adds to them is not deleted: a feature that makes new
    // records overrides this too.
    virtual QVDynamicHelpType getDynamicHelpDisplayType(const std::string& feature, const Params& params,
                                                        const pwr::SystemMetadata& system);

    // The feature's metrics send their tables. The default logs the parameters.
    virtual int finalizeCollection(const std::string& feature, const Params& params, const pwr::SystemMetadata& system);

    // The tag and the payload of the original message in a driver message, for writers of raw data. Defaults: none.
    virtual void getOrgMsgTag(const qv_driver_msg* message, std::string& tag) const;
    virtual void getOrgMsgPayload(const qv_driver_msg* message, std::string& payload) const;

    const std::string& getConfigFileName() const { return m_configFileName; }

protected:
    explicit MetricPlugin(const std::string& uuid);
    ~MetricPlugin() override;
    void setConfigFileName(const std::string& name);

private:
    friend class ::QuorvaneHost;

    ProcessMessageCode processMessage(const pwr::SystemMetadata& system, const qv_driver_msg* message);

    std::string m_configFileName;
};

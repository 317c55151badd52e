#include "plugins/MetricPlugin.h"

#include "record/Metadata.h"
#include "runtime/Log.h"

namespace {

const char* labelOf(const pwr::Metadata& metadata)
{
    switch (metadata.getType()) {
    case pwr::Metadata::__metadata_data_type::MSG:
        return "MSG";
    case pwr::Metadata::__metadata_data_type::METRIC:
        return "METRIC";
    case pwr::Metadata::__metadata_data_type::SYSTEM:
        return "SYSTEM";
    default:
        return "";
    }
}

Plugin::ResetReason reasonFor(unsigned long long state)
{
    switch (state) {
    case 1:
        return Plugin::ResetReason::STATE_NORMAL;
    case 4:
        return Plugin::ResetReason::STATE_SUSPENDED;
    case 5:
        return Plugin::ResetReason::STATE_HIBERNATED;
    default:
        return Plugin::ResetReason::OTHER;
    }
}

// The system state recorded when this message followed a reset; 0 for no reset.
unsigned long long resetStateOf(const qv_driver_msg* message)
{
    if (message == nullptr || g_pluginEnvironment == nullptr) return 0;
    return g_pluginEnvironment->isSystemReset(message->plugin_id, message->metric_id, message->msg_id, message->tsc);
}

void logValues(const pwr::MsgMetadata& record)
{
    for (const pwr::OperationMetadata* value : record.getMetaValues())
        QV_STREAM_DEBUG << "\tValue: " << *value;
}

void logValues(const pwr::MetricMetadata& record)
{
    for (const auto& [key, value] : record.getValues())
        QV_STREAM_DEBUG << "\tValue: " << key << "=" << value;
}

}    // namespace

MetricPlugin::MetricPlugin(const std::string& uuid) : Plugin(uuid) {}

MetricPlugin::~MetricPlugin() = default;

int MetricPlugin::processMetadata(const pwr::Metadata* metadata)
{
    if (metadata == nullptr) return -1;
    QV_STREAM_DEBUG << "Metric plugin " << getSID() << " received a metadata msg of type " << labelOf(*metadata);
    switch (metadata->getType()) {
    case pwr::Metadata::__metadata_data_type::MSG:
        logValues(static_cast<const pwr::MsgMetadata&>(*metadata));
        return 0;
    case pwr::Metadata::__metadata_data_type::METRIC:
        logValues(static_cast<const pwr::MetricMetadata&>(*metadata));
        return 0;
    default:
        QV_LOG_WARNING("WARNING: ERROR: unsupported metadata type %d received in metric plugin %d!\n",
                       static_cast<int>(metadata->getType()), getSID());
        return -1;
    }
}

int MetricPlugin::initializeCollection(Messages&, MetadataList&, const std::string&, const Params& params,
                                       const pwr::SystemMetadata&)
{
    for (const auto& [key, value] : params)
        QV_STREAM_DEBUG << "INIT collection: " << key << " :=> " << value;
    return 0;
}

QVDynamicHelpType MetricPlugin::getDynamicHelpDisplayType(const std::string& feature, const Params& params,
                                                          const pwr::SystemMetadata& system)
{
    Messages messages;
    MetadataList metadata;
    if (initializeCollection(messages, metadata, feature, params, system) != 0) return QVDynamicHelpType::FAILED;
    return messages.empty() ? QVDynamicHelpType::NO_MESSAGES : QVDynamicHelpType::MESSAGES;
}

int MetricPlugin::finalizeCollection(const std::string& feature, const Params& params, const pwr::SystemMetadata&)
{
    QV_STREAM_DEBUG << "FINI collection for " << feature;
    for (const auto& [key, value] : params)
        QV_STREAM_DEBUG << key << " :=> " << value;
    return 0;
}

void MetricPlugin::getOrgMsgTag(const qv_driver_msg*, std::string&) const {}

void MetricPlugin::getOrgMsgPayload(const qv_driver_msg*, std::string&) const {}

void MetricPlugin::setConfigFileName(const std::string& name)
{
    m_configFileName = name;
}

MetricPlugin::ProcessMessageCode MetricPlugin::processMessage(const pwr::SystemMetadata& system,
                                                              const qv_driver_msg* message)
{
    if (const unsigned long long state = resetStateOf(message); state != 0) {
        const unsigned long long tsc = message->tsc;
        QV_LOG_INFO("INFO: %llu is a reset TSC (%llu)!\n", tsc, state);
        if (reset(reasonFor(state), tsc, system) != ResetReturnCode::PROCESS) return ProcessMessageCode::RESET;
    }
    return processMessage_i(system, message) != 0 ? ProcessMessageCode::FAILED : ProcessMessageCode::PROCESSED;
}

// A metric plugin as a module: the feature "wave".

#include "modules/PluginModule.h"
#include "records/QVBuffer.h"

#include "config/InputMsg.h"
#include "config/qv_configfile_parser.h"
#include "metrics/Metric.h"
#include "plugins/MetricPlugin.h"
#include "plugins/PluginCapability.h"
#include "record/Metadata.h"
#include "values/EntityHandle.h"

#include <memory>
#include <string>

namespace {

const char* const FEATURE = "wave";
const char* const PREFIX = "WAVE";    // in the configuration
constexpr unsigned char METRIC_ID = 1;

class WavePlugin : public MetricPlugin {
public:
    WavePlugin() : MetricPlugin("8a1f6c0e-7d3b-4c52-9f10-3b5f1f2d7a02")
    {
        addCapability(new pwr::MetricPluginCapability(FEATURE, "A wave", PREFIX, METRIC_ID));
    }

    // In front of a collection as of the processing of a saved one, which has no initializeCollection().
    int initialize(const pwr::SystemMetadata& system) override
    {
        m_metric = std::make_unique<pwr::Metric>("Wave", pwr::Metric::MetricType::SampledValue, "LEVEL", PREFIX, system,
                                                 nullptr);
        return 0;
    }
    int finalize(const pwr::SystemMetadata&) override { return 0; }

    int initializeCollection(Messages& messages, MetadataList& metadata, const std::string&, const Params& params,
                             const pwr::SystemMetadata&) override
    {
        std::string platforms;
        for (const auto& [name, value] : params) {
            if (name == QUORVANE_MODULE_PLATFORMS) platforms = value;
        }
        Messages found;
        pwr::QVConfigFileParser::instance()->getMessagesFor(found, platforms, PREFIX, {"POLL"},
                                                            pwr::CollectionType::NORMAL);
        for (pwr::InputMsg* message : found) {
            message->setPluginID(getSID());
            message->setMetricID(METRIC_ID);
            messages.push_back(message);
            pwr::MsgMetadata* record = message->getMetadata();
            record->setCapName(FEATURE);
            metadata.push_back(record);
        }
        return found.empty() ? -1 : 0;
    }

    int processMessage_i(const pwr::SystemMetadata&, const qv_driver_msg* message) override
    {
        if (message == nullptr) return 1;
        host::PayloadReader payload(message);
        host::RecordItem item;
        while (payload.nextBlock()) {
            while (payload.getKind() == host::BlockKind::NUMBERS && payload.nextItem(item)) {
                pwr::DataElement element(pwr::EntityHandle::getSystemHandle(), nullptr);
                element.setValue(item.number);
                if (m_metric->setData(message->tsc, element, 0) != 0) return 1;
            }
        }
        return payload.isDamaged() ? 1 : 0;
    }

    int finalizeCollection(const std::string&, const Params&, const pwr::SystemMetadata&) override
    {
        const int result = m_metric->finalize();
        m_metric.reset();
        return result;
    }

private:
    std::unique_ptr<pwr::Metric> m_metric;
};

}    // namespace

QUORVANE_MODULE(WavePlugin)

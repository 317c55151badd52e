// A collector as a module: offers the kind of access "WAVE", which needs no machine.

#include "modules/PluginModule.h"
#include "records/QVBuffer.h"

#include "config/InputMsg.h"
#include "config/Operation.h"
#include "plugins/CollectorPlugin.h"
#include "plugins/PluginEnvironment.h"
#include "record/Clocks.h"
#include "record/CollectionData.h"
#include "record/Metadata.h"

#include <charconv>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace {

// The settings of one wave, from the configuration.
class WaveOperation : public pwr::Operation {
public:
    WaveOperation() : Operation("WAVE")
    {
        for (const auto& setting : m_settings)
            addCategory(setting.first);
    }
    int set(const std::string& category, const std::string& value) override
    {
        const char* end = value.data() + value.size();
        const auto [stop, code] = std::from_chars(value.data(), end, m_settings[category]);
        return code == std::errc() && stop == end && m_settings["STEP"] > 0 ? 0 : -1;
    }
    pwr::OperationMetadata* getOperationMetadata() const override
    {
        return new pwr::OperationMetadata(getName(), getOperation(), sizeof(std::uint64_t));
    }
    pwr::Operation* clone() const override { return new WaveOperation(*this); }

    std::uint64_t valueAfter(std::uint64_t value) const
    {
        const std::uint64_t step = m_settings.at("STEP");
        const std::uint64_t high = m_settings.at("HIGH");
        return value > high || high - value < step ? getLow() : value + step;
    }
    std::uint64_t getLow() const { return m_settings.at("LOW"); }

private:
    std::map<std::string, std::uint64_t> m_settings{{"HIGH", 100}, {"LOW", 0}, {"STEP", 1}};
};

class WaveCollector : public CollectorPlugin {
public:
    WaveCollector() : CollectorPlugin("8a1f6c0e-7d3b-4c52-9f10-3b5f1f2d7a01") { addOperation(new WaveOperation); }

    int startCollection(const std::vector<pwr::InputMsg*>& messages, pwr::SystemMetadata&) override
    {
        m_waves.clear();
        for (const pwr::InputMsg* message : messages) {
            const auto* operation = dynamic_cast<const WaveOperation*>(message->getOperations().front());
            if (operation == nullptr || message->getOperationCount() != 1) return 1;
            m_waves.push_back({idOf(*message), operation, operation->getLow()});
        }
        return 0;
    }
    int stopCollection(CollectionData&) override { return 0; }
    int pauseCollection() override { return 0; }
    int resumeCollection() override { return 0; }

    // The host stamps in the default clock, and so do we.
    int continuousCollectionTick() override
    {
        const unsigned long long now = pwr::getQVATimestamp();
        for (Wave& wave : m_waves) {
            m_buffer.beginRecord(now, wave.id);
            m_buffer.beginBlock(host::BlockKind::NUMBERS);
            host::RecordItem item;
            item.number = wave.value;
            m_buffer.addItem(item);
            m_buffer.endRecord();
            wave.value = wave.operation->valueAfter(wave.value);
            g_pluginEnvironment->checkAndRecordReset(wave.id, now);
        }
        return 0;
    }
    bool getContinuousResult(QVBuffer& buffer, CollectionData&) override
    {
        getCollectionResults(buffer);
        return !buffer.isEmpty();
    }
    int getCollectionResults(QVBuffer& buffer) override
    {
        buffer.clear();
        std::swap(buffer, m_buffer);
        return 0;
    }
    bool canCollectMessage(const pwr::InputMsg* message) override { return message->getTriggers().count("POLL") != 0; }
    int doImmediateRead(const pwr::InputMsg*, Results&) override { return -1; }
    using CollectorPlugin::doImmediateRead;

private:
    struct Wave {
        id_config_t id;
        const WaveOperation* operation;    // the configuration's
        std::uint64_t value;
    };

    static id_config_t idOf(const pwr::InputMsg& message)
    {
        return {static_cast<std::uint8_t>(message.getPluginID()), static_cast<std::uint8_t>(message.getMetricID()),
                static_cast<std::uint8_t>(message.getMsgID())};
    }

    std::vector<Wave> m_waves;
    QVBuffer m_buffer;
};

}    // namespace

QUORVANE_MODULE(WaveCollector)

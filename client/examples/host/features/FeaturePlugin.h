#pragma once

#include "features/FeatureCapability.h"
#include "records/QVBuffer.h"

#include "metrics/DataElement.h"
#include "metrics/Metric.h"
#include "plugins/MetricPlugin.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace pwr {
class DataDescriptor;
class EntityHandle;
class MsgMetadata;
class SystemMetadata;
}    // namespace pwr

namespace host {

// The base of the host's metric plugins, each with one feature, one metric and one collection in its life. It takes the
// feature's messages from the configuration, decodes their records and hands the blocks to the derived plugin: the
// first block of a source is its baseline, each later one is a round.
//
// What a source is for tells the tag of its message. TEXTS that are read once at the start name things: those of the
// tags that begin with the source's own tag and "-" ("TIMES-NAME" for "TIMES"). What stands under the tag and "-ELSE"
// is read only where nothing under the tag can be ("SPEED-ELSE" for "SPEED").
//
// Behind a reset the counters of the sources speak of a time of which nobody knows what happened: the derived plugin
// takes new baselines from the record that follows it, which is processed all the same.
class FeaturePlugin : public MetricPlugin {
public:
    ~FeaturePlugin() override;

    const FeatureCapability& getCapability() const { return m_capability; }
    const std::string& getName() const { return m_capability.getName(); }
    virtual std::string getSwitchTag() const;    // how the output configuration and the metric call the feature

    int initialize(const pwr::SystemMetadata&) override { return 0; }
    int finalize(const pwr::SystemMetadata&) override { return 0; }

    // Appends the messages of the feature's prefix, with the ids by which their records find the way back. -1 for
    // another feature, and when the configuration has none for the platforms, the parameter
    // SourceRequirement::PLATFORMS, or too many.
    int initializeCollection(Messages& messages, MetadataList& metadata, const std::string& feature,
                             const Params& params, const pwr::SystemMetadata& system) override;
    QVDynamicHelpType getDynamicHelpDisplayType(const std::string& feature, const Params& params,
                                                const pwr::SystemMetadata& system) override;

    // Learns constants from metric records, and from message records what the blocks of each message are.
    int processMetadata(const pwr::Metadata* metadata) override;

    // 1, with nothing taken, for null and for a record that doesn't fit its message or is damaged.
    int processMessage_i(const pwr::SystemMetadata& system, const qv_driver_msg* message) override;

    ResetReturnCode reset(ResetReason reason, unsigned long long tsc, const pwr::SystemMetadata& system) override;

    // Sends the tables. 1 when no sample was taken, or some table failed.
    int finalizeCollection(const std::string& feature, const Params& params,
                           const pwr::SystemMetadata& system) override;

    // What the metric accepted: samples, and the data points that they make.
    std::uint64_t getSamples() const { return m_samples; }
    std::uint64_t getPoints() const { return m_points; }

    // What the user should know: what is left out, and why. The results carry it as a note.
    const std::vector<std::string>& getRemarks() const { return m_remarks; }

protected:
    // What one operation reads.
    struct Source {
        std::string tag;        // of the message in the configuration that the operation was written for
        std::string pattern;    // of its places; a "*" for each number
        bool hasBaseline = false;
    };
    using Items = std::vector<RecordItem>;

    FeaturePlugin(const std::string& uuid, FeatureCapability* capability);    // takes ownership

    virtual void takeBaseline_i(const Source& source, const Items& items, unsigned long long tsc) = 0;
    // Before the first round. Null when the plugin hands in to a metric that it shares; it sends the tables itself
    // then.
    virtual std::unique_ptr<pwr::Metric> makeMetric_i(const pwr::SystemMetadata& system) = 0;
    virtual void takeRound_i(const Source& source, const Items& items, unsigned long long tsc) = 0;
    // The record at `tsc` follows a reset; takeRound_i() comes next, or takeBaseline_i() when there was none yet.
    virtual void forgetBaselines_i(unsigned long long tsc) = 0;
    // The collection stopped at `tsc`: the last chance to hand in. Not called without a round.
    virtual void closeSamples_i(unsigned long long) {}
    virtual bool sendTables_i();    // false when some table failed

    // The constant of the feature's messages under <tag>_<key>.
    std::string constant_i(const std::string& tagAndKey, const std::string& fallback) const;

    // The texts that name the place, and its plain name.
    std::string textOf_i(const Source& source, const RecordItem& item) const;
    static std::string plainName_i(const Source& source, const RecordItem& item);

    void remark_i(const std::string& text);
    void remarkLeftOut_i(const std::string& what, const Source& source, const RecordItem& item);

    void countForeignSample_i() { ++m_samples; }    // one that was handed in to a metric of someone else

    // `duration` in ticks, see pwr::Metric::setData.
    template <typename T>
    void handIn_i(unsigned long long tsc, const pwr::EntityHandle* entity, const pwr::DataDescriptor* descriptor,
                  const T& value, unsigned long long duration = 0)
    {
        pwr::DataElement element(entity, descriptor);
        element.setValue(value);
        if (m_metric->setData(tsc, element, duration) == 0) countSample_i(tsc);
    }
    // The metric accepted a sample of this moment.
    void countSample_i(unsigned long long tsc);

private:
    using Tags = std::map<std::string, std::map<Indices, std::string>>;

    static void leaveOutSubstitutes_i(Messages& found);
    bool adoptMessages_i(const Messages& found, const std::string& feature);
    pwr::MsgMetadata* describe_i(const pwr::InputMsg& message) const;
    void learnMessage_i(const pwr::MsgMetadata& record);
    bool decode_i(const qv_driver_msg* message, std::size_t blockCount);
    void take_i(Source& source, BlockKind kind, const Items& items, unsigned long long tsc,
                const pwr::SystemMetadata& system);
    void openMetric_i(const pwr::SystemMetadata& system);

    FeatureCapability& m_capability;    // the base class owns it
    std::map<std::string, std::string> m_constants;
    std::map<int, std::vector<Source>> m_sources;    // of each message, by its id
    Tags m_texts;
    std::vector<std::pair<BlockKind, Items>> m_blocks;    // of the record in progress
    unsigned long long m_lastReset = 0;
    bool m_hasRound = false;
    std::unique_ptr<pwr::Metric> m_metric;    // made for the first round
    unsigned long long m_lastPoint = 0;
    std::uint64_t m_samples = 0;
    std::uint64_t m_points = 0;
    std::vector<std::string> m_remarks;
};

}    // namespace host

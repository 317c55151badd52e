#include "features/FeaturePlugin.h"

#include "collector/NumberPattern.h"

#include "config/InputMsg.h"
#include "config/pw_utils.h"
#include "config/qv_configfile_parser.h"
#include "record/Metadata.h"
#include "record/SystemMetadata.h"

#include <algorithm>
#include <limits>
#include <set>

namespace host {

namespace {

// The triggers at which the host's collectors read.
const std::vector<std::string> TRIGGERS = {"INIT", "BEGIN", "POLL", "END", "FINI"};

// The tag in the name of an operation: <prefix>_<tag>_<kind>.
std::string tagOf(const std::string& operationName)
{
    const std::size_t start = operationName.find('_') + 1;
    return operationName.substr(start, operationName.rfind('_') - start);
}

// The lowest id that is free; 0 when there is none.
int freeId(const std::set<int>& taken)
{
    int id = 1;
    while (taken.count(id) != 0)
        ++id;
    return id <= std::numeric_limits<std::uint8_t>::max() ? id : 0;
}

// An empty text can't be kept, and says no more than a missing one.
void addConstants(const pwr::MsgMetadata& message, pwr::MetricMetadata& constants)
{
    for (const pwr::OperationMetadata* operation : message.getMetaValues()) {
        const auto* told = dynamic_cast<const pwr::CONSTANTOperationMetadata*>(operation);
        if (told == nullptr) continue;
        for (const auto& [key, value] : *told) {
            if (!key.empty() && !value.empty()) constants.addValue(key, value);
        }
    }
}

}    // namespace

FeaturePlugin::FeaturePlugin(const std::string& uuid, FeatureCapability* capability)
    : MetricPlugin(uuid), m_capability(*capability)
{
    addCapability(capability);
}

FeaturePlugin::~FeaturePlugin() = default;

std::string FeaturePlugin::getSwitchTag() const
{
    return pwr::getMetricTag(getName());
}

int FeaturePlugin::initializeCollection(Messages& messages, MetadataList& metadata, const std::string& feature,
                                        const Params& params, const pwr::SystemMetadata& system)
{
    MetricPlugin::initializeCollection(messages, metadata, feature, params, system);
    if (feature != getName()) return -1;
    Messages found;
    const std::string platforms = parameter(params, SourceRequirement::PLATFORMS);
    pwr::QVConfigFileParser::instance()->getMessagesFor(found, platforms, m_capability.getConfigFilePrefix(), TRIGGERS,
                                                        pwr::CollectionType::NORMAL);
    leaveOutSubstitutes_i(found);
    if (found.empty() || !adoptMessages_i(found, feature)) return -1;
    // A message's record keeps no values of constants.
    auto constants = std::make_unique<pwr::MetricMetadata>(getSID(), m_capability.getMetricID());
    for (pwr::InputMsg* message : found) {
        messages.push_back(message);
        pwr::MsgMetadata* record = describe_i(*message);
        metadata.push_back(record);
        addConstants(*record, *constants);
    }
    if (!constants->getValues().empty()) metadata.push_back(constants.release());
    return 0;
}

void FeaturePlugin::leaveOutSubstitutes_i(Messages& found)
{
    const std::string suffix = "-ELSE";
    std::set<std::string> wanted;
    for (const pwr::InputMsg* message : found) {
        if (findFault(*message).empty()) wanted.insert(message->getName() + suffix);
    }
    std::erase_if(found, [&wanted](const pwr::InputMsg* message) { return wanted.count(message->getName()) != 0; });
}

// Message ids count anew on each platform of the configuration: where several contribute, later ones get others.
bool FeaturePlugin::adoptMessages_i(const Messages& found, const std::string& feature)
{
    std::set<int> taken;
    for (pwr::InputMsg* message : found) {
        int id = message->getMsgID();
        if (id < 1 || id > std::numeric_limits<std::uint8_t>::max() || taken.count(id) != 0) id = freeId(taken);
        if (id == 0) return false;
        taken.insert(id);
        message->setPluginID(getSID());
        message->setMetricID(m_capability.getMetricID());
        message->setMsgID(id);
        message->setFeatureName(feature);
    }
    return true;
}

pwr::MsgMetadata* FeaturePlugin::describe_i(const pwr::InputMsg& message) const
{
    pwr::MsgMetadata* record = message.getMetadata();
    record->setCapName(getName());
    record->setCapGroups(m_capability.getGroupNames());
    record->setTriggers(message.getTriggers());
    return record;
}

// The base class would not delete the records.
QVDynamicHelpType FeaturePlugin::getDynamicHelpDisplayType(const std::string& feature, const Params& params,
                                                           const pwr::SystemMetadata& system)
{
    Messages messages;
    MetadataList metadata;
    const int result = initializeCollection(messages, metadata, feature, params, system);
    for (const pwr::Metadata* record : metadata)
        delete record;
    if (result != 0) return QVDynamicHelpType::FAILED;
    return messages.empty() ? QVDynamicHelpType::NO_MESSAGES : QVDynamicHelpType::MESSAGES;
}

int FeaturePlugin::processMetadata(const pwr::Metadata* metadata)
{
    if (const auto* message = dynamic_cast<const pwr::MsgMetadata*>(metadata)) learnMessage_i(*message);
    if (const auto* constants = dynamic_cast<const pwr::MetricMetadata*>(metadata))
        m_constants.insert(constants->getValues().begin(), constants->getValues().end());
    return MetricPlugin::processMetadata(metadata);
}

void FeaturePlugin::learnMessage_i(const pwr::MsgMetadata& record)
{
    std::vector<Source>& sources = m_sources[record.getMsgID()];
    sources.clear();
    for (const pwr::OperationMetadata* operation : record.getMetaValues()) {
        sources.push_back({tagOf(operation->getName()), operation->getOrgMsgTag(), false});
    }
}

int FeaturePlugin::processMessage_i(const pwr::SystemMetadata& system, const qv_driver_msg* message)
{
    if (message == nullptr) return 1;
    const auto sources = m_sources.find(message->msg_id);
    if (sources == m_sources.end() || !decode_i(message, sources->second.size())) return 1;
    for (std::size_t i = 0; i < sources->second.size(); ++i)
        take_i(sources->second[i], m_blocks[i].first, m_blocks[i].second, message->tsc, system);
    return 0;
}

// All of the record, before anything is taken from it.
bool FeaturePlugin::decode_i(const qv_driver_msg* message, std::size_t blockCount)
{
    m_blocks.resize(blockCount);
    PayloadReader payload(message);
    std::size_t count = 0;
    for (; payload.nextBlock(); ++count) {
        if (count == blockCount) return false;
        auto& [kind, items] = m_blocks[count];
        kind = payload.getKind();
        items.clear();
        RecordItem item;
        while (payload.nextItem(item))
            items.push_back(item);
    }
    return !payload.isDamaged() && count == blockCount;
}

void FeaturePlugin::take_i(Source& source, BlockKind kind, const Items& items, unsigned long long tsc,
                           const pwr::SystemMetadata& system)
{
    if (kind == BlockKind::NOTHING) return;
    if (kind == BlockKind::TEXTS) {
        for (const RecordItem& item : items) {
            if (item.isRead && !item.text.empty()) m_texts[source.tag][item.indices] = item.text;
        }
    } else if (!source.hasBaseline) {
        source.hasBaseline = true;
        takeBaseline_i(source, items, tsc);
    } else {
        openMetric_i(system);
        takeRound_i(source, items, tsc);
    }
}

void FeaturePlugin::openMetric_i(const pwr::SystemMetadata& system)
{
    if (m_hasRound) return;
    m_hasRound = true;
    m_metric = makeMetric_i(system);
    if (!m_metric) return;
    for (const std::string& remark : m_remarks)
        m_metric->setPostMetricTextInfo(remark);
}

// Each sample of a traced metric is a data point; those of a sampled one are one for each moment, whatever messages
// they come from.
void FeaturePlugin::countSample_i(unsigned long long tsc)
{
    ++m_samples;
    const bool isTraced = m_metric && m_metric->getMetricType() >= pwr::Metric::MetricType::TracedValueTransition;
    if (isTraced || tsc != m_lastPoint) ++m_points;
    m_lastPoint = tsc;
}

// Several messages may follow the same reset: only the first one of a moment finds old baselines.
Plugin::ResetReturnCode FeaturePlugin::reset(ResetReason, unsigned long long tsc, const pwr::SystemMetadata&)
{
    if (tsc != m_lastReset) forgetBaselines_i(tsc);
    m_lastReset = tsc;
    return ResetReturnCode::PROCESS;
}

int FeaturePlugin::finalizeCollection(const std::string& feature, const Params& params,
                                      const pwr::SystemMetadata& system)
{
    MetricPlugin::finalizeCollection(feature, params, system);
    if (m_hasRound) closeSamples_i(system.stopTSC);
    const bool isSent = m_hasRound && sendTables_i();
    return isSent && m_samples > 0 ? 0 : 1;
}

bool FeaturePlugin::sendTables_i()
{
    return !m_metric->isEmpty() && m_metric->finalize() == 0;
}

std::string FeaturePlugin::constant_i(const std::string& tagAndKey, const std::string& fallback) const
{
    const auto found = m_constants.find(m_capability.getConfigFilePrefix() + "_" + tagAndKey);
    return found != m_constants.end() ? found->second : fallback;
}

// A text may belong to several places: one of a chip to all its sensors.
std::string FeaturePlugin::textOf_i(const Source& source, const RecordItem& item) const
{
    std::string name;
    const std::string head = source.tag + "-";
    for (auto tag = m_texts.lower_bound(head); tag != m_texts.end() && tag->first.starts_with(head); ++tag) {
        Indices first;
        auto found = tag->second.find(first);
        for (std::size_t i = 0; i < item.indices.count && found == tag->second.end(); ++i) {
            first.add(item.indices.values.at(i));
            found = tag->second.find(first);
        }
        if (found != tag->second.end()) name += (name.empty() ? "" : " ") + found->second;
    }
    return name;
}

std::string FeaturePlugin::plainName_i(const Source& source, const RecordItem& item)
{
    return numberedName(source.pattern, item.indices);
}

void FeaturePlugin::remark_i(const std::string& text)
{
    m_remarks.push_back(text);
    if (m_metric) m_metric->setPostMetricTextInfo(text);    // else it gets all when it is made
}

void FeaturePlugin::remarkLeftOut_i(const std::string& what, const Source& source, const RecordItem& item)
{
    remark_i(what + " is left out, since " + fillPattern(source.pattern, item.indices) + " can't be read");
}

}    // namespace host

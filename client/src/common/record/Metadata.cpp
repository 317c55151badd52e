#include "record/Metadata.h"

#include "record/Serializer.h"
#include "record/SystemMetadata.h"
#include "record/WireFields.h"
#include "runtime/Log.h"

#include <iostream>
#include <memory>

namespace pwr {

namespace {

using Pairs = std::vector<std::pair<std::string, std::string>>;

int lacks(const char* field, const char* record)
{
    QV_LOG_WARNING("WARNING: ERROR reading %s while deserializing %s message!\n", field, record);
    return -1;
}

int readPairs(Serializer& in, Pairs& pairs, const char* record)
{
    std::uint16_t count = 0;
    if (!getField(in, count)) return lacks("map size", record);
    for (; count > 0; --count) {
        std::pair<std::string, std::string> pair;
        if (!getField(in, pair.first)) return lacks("key", record);
        if (!getField(in, pair.second)) return lacks("value", record);
        pairs.push_back(std::move(pair));
    }
    return 0;
}

void printPairs(std::ostream& out, const Pairs& pairs, const char* record)
{
    std::size_t index = 0;
    for (const auto& [key, value] : pairs) {
        out << "\t" << record << " payload[" << index++ << "]: key = " << key << ", value = " << value << std::endl;
    }
}

}    // namespace

Metadata::Metadata(__metadata_data_type type) : m_type(type) {}

Metadata::~Metadata() = default;

int Metadata::getPluginID() const
{
    return -1;
}

void Metadata::serialize(Serializer& out) const
{
    out.write_value(m_type);
    serialize_i(out);
}

Metadata* Metadata::deserialize(Serializer& in, unsigned int version)
{
    std::unique_ptr<Metadata> record = makeForTag_i(in);
    if (!record || record->deserialize_i(in, version) != 0) return nullptr;
    return record.release();
}

std::unique_ptr<Metadata> Metadata::makeForTag_i(Serializer& in)
{
    __metadata_data_type tag{};
    if (in.read_value(tag) == 0) return nullptr;
    switch (tag) {
    case __metadata_data_type::MSG:
        return std::make_unique<MsgMetadata>();
    case __metadata_data_type::METRIC:
        return std::make_unique<MetricMetadata>();
    case __metadata_data_type::SYSTEM:
        return std::make_unique<SystemMetadata>();
    case __metadata_data_type::OPERATION:
        return std::make_unique<OperationMetadata>();
    case __metadata_data_type::COLLECTOR:
        return std::make_unique<CollectorMetadata>();
    }
    std::cerr << "ERROR: unsupported Metadata Data Type " << static_cast<std::uint32_t>(tag) << std::endl;
    return nullptr;
}

OperationMetadata::OperationMetadata() : Metadata(__metadata_data_type::OPERATION) {}

OperationMetadata::OperationMetadata(const std::string& name, const std::string& operation, unsigned int size)
    : Metadata(__metadata_data_type::OPERATION), m_name(name), m_operation(operation), m_size(size)
{
}

void OperationMetadata::setOrgMsgTag(const std::string& tag)
{
    m_orgMsgTag = tag;
}

void OperationMetadata::serialize_i(Serializer& out) const
{
    putField(out, m_name);
    putField(out, m_operation);
    putField(out, m_size);
    putField(out, m_orgMsgTag);
}

int OperationMetadata::deserialize_i(Serializer& in, unsigned int)
{
    if (!getField(in, m_name) || !getField(in, m_operation) || !getField(in, m_size)) return -1;
    if (getField(in, m_orgMsgTag)) {
        QV_STREAM_DEBUG << "OK, read org msg tag = " << m_orgMsgTag;
    } else {
        QV_LOG_WARNING("WARNING: couldn't extract org msg tag!\n");
    }
    return 0;
}

CONSTANTOperationMetadata::CONSTANTOperationMetadata(const std::string& name) : OperationMetadata(name, "CONSTANT", 0)
{
}

CONSTANTOperationMetadata::CONSTANTOperationMetadata(const std::string& name, const Values& values)
    : OperationMetadata(name, "CONSTANT", 0), m_values(values)
{
}

MsgMetadata::MsgMetadata(int plugin, int metric, int msg)
    : Metadata(__metadata_data_type::MSG), m_pluginId(plugin), m_metricId(metric), m_msgId(msg)
{
}

MsgMetadata::~MsgMetadata()
{
    for (const OperationMetadata* value : m_metaValues) {
        delete value;
    }
}

int MsgMetadata::getPluginID() const
{
    return m_pluginId;
}

void MsgMetadata::setCapName(const std::string& name)
{
    m_capName = name;
}

void MsgMetadata::setCapGroups(const PWSet<std::string>& groups)
{
    m_capGroups = groups;
}

void MsgMetadata::setMsgName(const std::string& name)
{
    m_msgName = name;
}

void MsgMetadata::addMetaValue(const OperationMetadata* value)
{
    if (value != nullptr) m_metaValues.push_back(value);
}

void MsgMetadata::setTriggers(const PWSet<std::string>& triggers)
{
    m_triggers = triggers;
}

void MsgMetadata::setTracepointNames(const PWSet<std::string>& names)
{
    m_tracepointNames = names;
}

void MsgMetadata::serialize_i(Serializer& out) const
{
    putField(out, m_pluginId);
    putField(out, m_metricId);
    putField(out, m_msgId);
    putField(out, m_capName);
    putField(out, m_capGroups);
    putField(out, m_msgName);
    putList(out, m_metaValues, [](Serializer& to, const OperationMetadata* value) { value->serialize(to); });
    putField(out, m_triggers);
    putField(out, m_tracepointNames);
}

int MsgMetadata::deserialize_i(Serializer& in, unsigned int version)
{
    const bool isRead = getField(in, m_pluginId) && getField(in, m_metricId) && getField(in, m_msgId) &&
                        getField(in, m_capName) && getField(in, m_capGroups) && getField(in, m_msgName) &&
                        readMetaValues_i(in, version) && getField(in, m_triggers) && getField(in, m_tracepointNames);
    return isRead ? 0 : -1;
}

bool MsgMetadata::readMetaValues_i(Serializer& in, unsigned int version)
{
    std::uint16_t count = 0;
    if (!getField(in, count)) return false;
    for (; count > 0; --count) {
        std::unique_ptr<Metadata> record = makeForTag_i(in);
        // No other kind is read at all: nothing nests deeper, and no system record inside touches the topology.
        if (!record || record->getType() != __metadata_data_type::OPERATION) return false;
        if (record->deserialize_i(in, version) != 0) return false;
        addMetaValue(static_cast<const OperationMetadata*>(record.release()));
    }
    return true;
}

MetricMetadata::MetricMetadata(int plugin, int metric)
    : Metadata(__metadata_data_type::METRIC), m_pluginId(plugin), m_metricId(metric)
{
}

int MetricMetadata::getPluginID() const
{
    return m_pluginId;
}

void MetricMetadata::addValue(const std::string& key, const std::string& value)
{
    m_values.emplace_back(key, value);
}

void MetricMetadata::serialize_i(Serializer& out) const
{
    putField(out, m_pluginId);
    putField(out, m_metricId);
    putField(out, m_values);
}

int MetricMetadata::deserialize_i(Serializer& in, unsigned int)
{
    static constexpr char RECORD[] = "metric metadata";
    if (!getField(in, m_pluginId)) return lacks("plugin ID", RECORD);
    if (!getField(in, m_metricId)) return lacks("metric ID", RECORD);
    return readPairs(in, m_values, RECORD);
}

CollectorMetadata::CollectorMetadata(std::string name)
    : Metadata(__metadata_data_type::COLLECTOR), m_name(std::move(name))
{
}

void CollectorMetadata::addValue(const std::string& key, const std::string& value)
{
    m_values.emplace_back(key, value);
}

void CollectorMetadata::serialize_i(Serializer& out) const
{
    putField(out, m_name);
    putField(out, m_values);
}

int CollectorMetadata::deserialize_i(Serializer& in, unsigned int)
{
    static constexpr char RECORD[] = "collector metadata";
    if (!getField(in, m_name)) return lacks("name", RECORD);
    return readPairs(in, m_values, RECORD);
}

std::ostream& operator<<(std::ostream& out, const MsgMetadata& record)
{
    out << "Msg Metadata Plugin ID: " << record.getPluginID() << std::endl;
    out << "Msg Metadata Metric ID: " << record.getMetricID() << std::endl;
    out << "Msg Metadata MSG ID: " << record.getMsgID() << std::endl;
    out << "Msg Metadata Switch name: " << record.getCapName() << std::endl;
    out << "Msg Metadata group names: ";
    for (const std::string& group : record.getCapGroups()) {
        out << group << " ";
    }
    out << std::endl;
    out << "Msg Metadata Msg name: " << record.getMsgName() << std::endl;
    for (const OperationMetadata* value : record.getMetaValues()) {
        out << "\t" << *value << std::endl;
    }
    out << "Msg Metadata triggers: ";
    for (const std::string& trigger : record.getTriggers()) {
        out << "\t" << trigger;
    }
    return out << std::endl;
}

std::ostream& operator<<(std::ostream& out, const MetricMetadata& record)
{
    out << "Metric Metadata plugin ID: " << record.getPluginID() << std::endl;
    out << "Metric Metadata metric ID: " << record.getMetricID() << std::endl;
    printPairs(out, record.getValues(), "Metric Metadata");
    return out;
}

std::ostream& operator<<(std::ostream& out, const OperationMetadata& record)
{
    out << "Operation Meta: Name = " << record.getName() << ", Operation = " << record.getOperation()
        << ", Size = " << record.getSize();
    if (!record.getOrgMsgTag().empty()) out << ", Org msg tag = " << record.getOrgMsgTag();
    return out;
}

std::ostream& operator<<(std::ostream& out, const CollectorMetadata& record)
{
    out << "Collector Meta: Name = " << record.getName() << std::endl;
    printPairs(out, record.getValues(), "Collector Metadata");
    return out;
}

}    // namespace pwr

#pragma once

#include "runtime/Export.h"
#include "values/PWSet.h"

#include <cstdint>
#include <deque>
#include <memory>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace pwr {

class Serializer;

// A record that is kept between collection and later processing: a 32-bit tag, then the body of its kind. Records have
// no length and no version: a reader that fails can't go on with a following record. Integers are little-endian, see
// Serializer.
//
//   record.serialize(out);
//   std::unique_ptr<Metadata> record(Metadata::deserialize(in, 1));
//   if (!record) fail();
class QUORVANE_API Metadata {
public:
    enum class __metadata_data_type : std::uint32_t { MSG = 0, METRIC = 1, SYSTEM = 2, OPERATION = 3, COLLECTOR = 4 };

    virtual ~Metadata();

    virtual int getPluginID() const;    // -1: none

    __metadata_data_type getType() const { return m_type; }

    // Writes the tag and the body. Texts and lists above 65535 are cut.
    void serialize(Serializer& out) const;

    // Reads one record; the caller owns the result. Null when the bytes are no record: silently when even the tag is
    // missing, with a line on the standard error stream for an unknown tag. `version` is handed to nested records.
    static Metadata* deserialize(Serializer& in, unsigned int version);

protected:
    explicit Metadata(__metadata_data_type type);
    Metadata(const Metadata&) = default;
    Metadata& operator=(const Metadata&) = default;

    virtual void serialize_i(Serializer& out) const = 0;
    virtual int deserialize_i(Serializer& in, unsigned int version) = 0;    // 0; -1 when a required field is missing

private:
    friend class MsgMetadata;    // holds records of its own

    // Takes the tag and makes the record that it names, unread; null for no tag or an unknown one.
    static std::unique_ptr<Metadata> makeForTag_i(Serializer& in);

    __metadata_data_type m_type;
};

// One operation of a message.
class QUORVANE_API OperationMetadata : public Metadata {
public:
    OperationMetadata();
    OperationMetadata(const std::string& name, const std::string& operation, unsigned int size);

    const std::string& getName() const { return m_name; }
    const std::string& getOperation() const { return m_operation; }
    unsigned int getSize() const { return m_size; }
    void setOrgMsgTag(const std::string& tag);
    const std::string& getOrgMsgTag() const { return m_orgMsgTag; }

protected:
    void serialize_i(Serializer& out) const override;
    int deserialize_i(Serializer& in, unsigned int version) override;

private:
    std::string m_name;
    std::string m_operation;
    unsigned int m_size = 0;
    std::string m_orgMsgTag;    // an empty one reads back with a warning
};

// A constant of a message. Its values are not kept: it reads back as a plain OperationMetadata.
class QUORVANE_API CONSTANTOperationMetadata : public OperationMetadata {
public:
    using Values = std::vector<std::pair<std::string, std::string>>;

    explicit CONSTANTOperationMetadata(const std::string& name);
    CONSTANTOperationMetadata(const std::string& name, const Values& values);

    Values::const_iterator begin() const { return m_values.begin(); }
    Values::const_iterator end() const { return m_values.end(); }

private:
    Values m_values;
};

// One configured message. Owns its meta values. Empty texts in it can't be read back.
class QUORVANE_API MsgMetadata : public Metadata {
public:
    MsgMetadata(int plugin = -1, int metric = -1, int msg = -1);
    ~MsgMetadata() override;
    MsgMetadata(const MsgMetadata&) = delete;
    MsgMetadata& operator=(const MsgMetadata&) = delete;

    int getPluginID() const override;
    int getMetricID() const { return m_metricId; }
    int getMsgID() const { return m_msgId; }

    void setCapName(const std::string& name);
    const std::string& getCapName() const { return m_capName; }
    void setCapGroups(const PWSet<std::string>& groups);
    const PWSet<std::string>& getCapGroups() const { return m_capGroups; }
    void setMsgName(const std::string& name);
    const std::string& getMsgName() const { return m_msgName; }
    void addMetaValue(const OperationMetadata* value);    // takes ownership; null is left out
    const std::deque<const OperationMetadata*>& getMetaValues() const { return m_metaValues; }
    void setTriggers(const PWSet<std::string>& triggers);
    const PWSet<std::string>& getTriggers() const { return m_triggers; }
    void setTracepointNames(const PWSet<std::string>& names);
    const PWSet<std::string>& getTracepointNames() const { return m_tracepointNames; }

protected:
    void serialize_i(Serializer& out) const override;
    int deserialize_i(Serializer& in, unsigned int version) override;

private:
    bool readMetaValues_i(Serializer& in, unsigned int version);

    int m_pluginId;
    int m_metricId;
    int m_msgId;
    std::string m_capName;
    PWSet<std::string> m_capGroups;
    std::string m_msgName;
    std::deque<const OperationMetadata*> m_metaValues;    // owned
    PWSet<std::string> m_triggers;
    PWSet<std::string> m_tracepointNames;
};

// Keys and values of one metric.
class QUORVANE_API MetricMetadata : public Metadata {
public:
    using Values = std::vector<std::pair<std::string, std::string>>;

    MetricMetadata(int plugin = -1, int metric = -1);

    int getPluginID() const override;
    int getMetricID() const { return m_metricId; }
    void addValue(const std::string& key, const std::string& value);
    const Values& getValues() const { return m_values; }

protected:
    void serialize_i(Serializer& out) const override;
    int deserialize_i(Serializer& in, unsigned int version) override;

private:
    int m_pluginId;
    int m_metricId;
    Values m_values;
};

// Keys and values of one collector.
class QUORVANE_API CollectorMetadata : public Metadata {
public:
    using Values = std::vector<std::pair<std::string, std::string>>;

    CollectorMetadata(std::string name = "");

    void addValue(const std::string& key, const std::string& value);
    const std::string& getName() const { return m_name; }
    const Values& getValues() const { return m_values; }

protected:
    void serialize_i(Serializer& out) const override;
    int deserialize_i(Serializer& in, unsigned int version) override;

private:
    std::string m_name;
    Values m_values;
};

// For diagnostics, one item a line.
QUORVANE_API std::ostream& operator<<(std::ostream& out, const MsgMetadata& record);
QUORVANE_API std::ostream& operator<<(std::ostream& out, const MetricMetadata& record);
QUORVANE_API std::ostream& operator<<(std::ostream& out, const OperationMetadata& record);    // no line end
QUORVANE_API std::ostream& operator<<(std::ostream& out, const CollectorMetadata& record);

}    // namespace pwr

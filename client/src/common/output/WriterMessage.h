#pragma once

#include "output/TableTypes.h"
#include "runtime/Export.h"

#include <set>
#include <string>
#include <vector>

class WriterStream;

namespace pwr {

class SystemMetadata;
class TableMessage;
class TextNotes;
class UniqueId;

// What travels from producers to the writer plugins. Each message draws a number at construction from one counter of
// the process, which starts at 1 and which metrics draw their ids from too; a copy keeps the number of its source.
// Messages are created on one thread at a time.
class QUORVANE_API WriterMessage {
public:
    virtual ~WriterMessage();
    virtual MessageType getMessageType() const = 0;

    unsigned int getMessageId() const { return m_messageId; }

    // The id of the metric that the message belongs to; 0 for none. The setter returns 0.
    unsigned int getMetricContainerId() const { return m_metricContainerId; }
    int setMetricContainerId(unsigned int id);

    // Links for the writers; the stream doesn't look at them.
    void addParentMessage(unsigned int messageId);
    bool isChildOf(unsigned int messageId) const;

protected:
    WriterMessage();
    WriterMessage(const WriterMessage&) = default;
    WriterMessage& operator=(const WriterMessage&) = default;

private:
    friend class Metric;
    static unsigned int drawId_i();

    unsigned int m_messageId;
    std::set<unsigned int> m_parents;
    unsigned int m_metricContainerId = 0;
};

// A text for the result files. Setting the text sends it: there is no separate push.
//
//   TextMessage message;             // throws the text "ERROR: Writer stream is not initialized" (const char*)
//   message.setMessage("Hello\n");   //   when the environment holds no stream
class QUORVANE_API TextMessage : public WriterMessage {
public:
    TextMessage();
    MessageType getMessageType() const override;

    const std::string& getMessage() const { return m_message; }

    // Stores the text and pushes the message, again and under the same number when called again. Returns what the push
    // returns.
    int setMessage(const std::string& message);

private:
    std::string m_message;
    WriterStream* m_stream;    // the environment's at construction; not owned
};

// A text for the head of the result files. It arrives at the same overload as a TextMessage; the type tells them apart.
class QUORVANE_API HeaderTextMessage : public TextMessage {
public:
    MessageType getMessageType() const override;
};

// Tells the writers about the measured system. The record stays its owner's and outlives the message.
class QUORVANE_API SystemMessage : public WriterMessage {
public:
    explicit SystemMessage(SystemMetadata& system);
    MessageType getMessageType() const override;

    SystemMetadata* getSystemMetadata() const { return m_system; }

private:
    SystemMetadata* m_system;
};

// Announces identified objects, before any table refers to their numbers. The objects stay the registry's.
class QUORVANE_API IdMessage : public WriterMessage {
public:
    using const_iterator = std::vector<const UniqueId*>::const_iterator;

    MessageType getMessageType() const override;

    void addUniqueId(const UniqueId* object);
    const_iterator begin() const { return m_objects.begin(); }    // in the order added
    const_iterator end() const { return m_objects.end(); }

private:
    std::vector<const UniqueId*> m_objects;
};

// Says how the tables of one metric are headed and shown. What its pointers point at is not owned and outlives the
// message. All setters return 0.
class QUORVANE_API MetricContainerInfoMessage : public WriterMessage {
public:
    MessageType getMessageType() const override;

    int setTextInfo(const TextNotes* notes);
    const TextNotes* getTextInfo() const { return m_textInfo; }

    // Keeps the text as a banner of three lines, between two lines of "=" of its length.
    int setContainerHeader(const std::string& header);
    const std::string& getContainerHeader() const { return m_containerHeader; }

    int addStaticTableRowInfo(const TableMessage* table);    // replaces an earlier one
    const TableMessage* getStaticTableRowInfo() const { return m_staticTableRowInfo; }

    int setTimelineTableToDisplay(TimelineTableType type);
    TimelineTableType getTimelineTableToDisplay() const { return m_timelineTable; }

    int setMetricContainerTag(const std::string& tag);
    const std::string& getMetricContainerTag() const { return m_metricContainerTag; }

private:
    const TextNotes* m_textInfo = nullptr;
    std::string m_containerHeader;
    const TableMessage* m_staticTableRowInfo = nullptr;
    TimelineTableType m_timelineTable{};
    std::string m_metricContainerTag;
};

}    // namespace pwr

#include "output/WriterMessage.h"

#include "output/WriterStream.h"
#include "plugins/PluginEnvironment.h"

namespace pwr {

WriterMessage::WriterMessage() : m_messageId(drawId_i()) {}

WriterMessage::~WriterMessage() = default;

int WriterMessage::setMetricContainerId(unsigned int id)
{
    m_metricContainerId = id;
    return 0;
}

void WriterMessage::addParentMessage(unsigned int messageId)
{
    m_parents.insert(messageId);
}

bool WriterMessage::isChildOf(unsigned int messageId) const
{
    return m_parents.count(messageId) != 0;
}

unsigned int WriterMessage::drawId_i()
{
    static unsigned int s_nextId = 1;    // of the process; never reset
    return s_nextId++;
}

TextMessage::TextMessage()
    : m_stream(g_pluginEnvironment != nullptr ? static_cast<WriterStream*>(g_pluginEnvironment->getWriterStream())
                                              : nullptr)
{
    if (m_stream == nullptr) throw "ERROR: Writer stream is not initialized";
}

MessageType TextMessage::getMessageType() const
{
    return MessageType::TEXT;
}

int TextMessage::setMessage(const std::string& message)
{
    m_message = message;
    return m_stream->pushMessage(*this);
}

MessageType HeaderTextMessage::getMessageType() const
{
    return MessageType::HEADER_TEXT;
}

SystemMessage::SystemMessage(SystemMetadata& system) : m_system(&system) {}

MessageType SystemMessage::getMessageType() const
{
    return MessageType::SYSTEM;
}

MessageType IdMessage::getMessageType() const
{
    return MessageType::ID;
}

void IdMessage::addUniqueId(const UniqueId* object)
{
    m_objects.push_back(object);
}

MessageType MetricContainerInfoMessage::getMessageType() const
{
    return MessageType::METRIC_CONTAINER_INFO;
}

int MetricContainerInfoMessage::setTextInfo(const TextNotes* notes)
{
    m_textInfo = notes;
    return 0;
}

int MetricContainerInfoMessage::setContainerHeader(const std::string& header)
{
    const std::string rule(header.size(), '=');
    m_containerHeader = rule + '\n' + header + '\n' + rule;
    return 0;
}

int MetricContainerInfoMessage::addStaticTableRowInfo(const TableMessage* table)
{
    m_staticTableRowInfo = table;
    return 0;
}

int MetricContainerInfoMessage::setTimelineTableToDisplay(TimelineTableType type)
{
    m_timelineTable = type;
    return 0;
}

int MetricContainerInfoMessage::setMetricContainerTag(const std::string& tag)
{
    m_metricContainerTag = tag;
    return 0;
}

}    // namespace pwr

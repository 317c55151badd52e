#include "output/WriterStream.h"

#include "metrics/Metric.h"
#include "output/TableMessage.h"
#include "output/WriterPlugin.h"
#include "runtime/Log.h"
#include "values/IdManager.h"

WriterStream::WriterStream(const std::set<WriterPlugin*>& plugins) : m_plugins(&plugins) {}

WriterStream::~WriterStream()
{
    if (m_plugins != nullptr) {
        for (WriterPlugin* plugin : *m_plugins) {
            if (plugin != nullptr) plugin->closeOutput();
        }
    }
    // Whoever announces or pushes later must not find a dead stream.
    pwr::IdManager* registry = pwr::IdManager::instanceIfAny();
    if (registry != nullptr && registry->getStream() == this) registry->setStream(nullptr);
    if (g_pluginEnvironment != nullptr && g_pluginEnvironment->getWriterStream() == this) {
        g_pluginEnvironment->setWriterStream(nullptr);
    }
}

int WriterStream::pushTextMessage(const std::string& text)
{
    pwr::TextMessage message;
    return message.setMessage(text);
}

int WriterStream::pushMessage(pwr::WriterMessage& message)
{
    if (m_plugins == nullptr) {
        QV_LOG_WARNING("WARNING: No plugins setup for stream\n");
        return -1;
    }
    for (WriterPlugin* plugin : *m_plugins) {
        if (plugin != nullptr) pushMessageToPlugin_i(message, plugin);
    }
    if (message.getMessageType() != pwr::MessageType::TABLE) return 0;

    auto* table = dynamic_cast<pwr::TableMessage*>(&message);
    if (table == nullptr) return 1;
    table->resetData();
    return 0;
}

int WriterStream::pushMessage(const pwr::Metric* metric)
{
    if (metric == nullptr) {
        QV_LOG_WARNING("WARNING: Error pushing null Metric object to Writer stream.\n");
        return 1;
    }
    if (m_plugins == nullptr) {
        QV_LOG_WARNING("WARNING: No plugins setup for writer stream.\n");
        return 1;
    }
    int result = 0;
    for (WriterPlugin* plugin : *m_plugins) {
        if (plugin == nullptr || plugin->writeMessage(*metric) == 0) continue;
        QV_LOG_WARNING("WARNING: Error pushing Metric object to writer plugin\n");
        result = 1;
    }
    return result;
}

bool WriterStream::isSupportedTableClass(pwr::TableClass tableClass) const
{
    return m_supportedTableClasses.count(tableClass) != 0;
}

// A message that is not of the class its type names is not delivered; a type of no known number is ignored.
void WriterStream::pushMessageToPlugin_i(pwr::WriterMessage& message, WriterPlugin* plugin)
{
    const auto deliver = [plugin](const auto* typed) {
        if (typed != nullptr) plugin->writeMessage(*typed);
    };
    switch (message.getMessageType()) {
    case pwr::MessageType::TABLE:
        deliver(dynamic_cast<const pwr::TableMessage*>(&message));
        break;
    case pwr::MessageType::ID:
        deliver(dynamic_cast<const pwr::IdMessage*>(&message));
        break;
    case pwr::MessageType::TEXT:
    case pwr::MessageType::HEADER_TEXT:
        deliver(dynamic_cast<const pwr::TextMessage*>(&message));
        break;
    case pwr::MessageType::SYSTEM:
        deliver(dynamic_cast<const pwr::SystemMessage*>(&message));
        break;
    case pwr::MessageType::METRIC_CONTAINER_INFO:
        deliver(dynamic_cast<const pwr::MetricContainerInfoMessage*>(&message));
        break;
    }
}

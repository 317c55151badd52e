#include "writers/TableWriter.h"

#include "output/TableMessage.h"
#include "output/TextNotes.h"
#include "output/WriterMessage.h"
#include "plugins/PluginCapability.h"
#include "values/EntityHandle.h"

#include <deque>

namespace host {

namespace {

std::string nameOf(const pwr::DataHandle* handle)
{
    return handle != nullptr ? handle->getName() : std::string();
}

}    // namespace

TableWriter::TableWriter(const std::string& uuid, const std::string& name, const std::string& description,
                         const std::string& fileSuffix)
    : WriterPlugin(uuid)
{
    addCapability(new pwr::WriterPluginCapability({SUMMARIES}, name, description, fileSuffix, false));
}

void TableWriter::finishTables_i()
{
    endTableInProgress_i();
    if (!m_metricPostNotes.empty()) writeNotes_i(m_metricPostNotes);
    m_metricPostNotes.clear();
}

int TableWriter::writeMessage(const pwr::MetricContainerInfoMessage& message)
{
    if (message.getContainerHeader().empty()) return 0;    // no end of a metric: some detail about one
    finishTables_i();
    beginMetric_i(message.getContainerHeader());
    if (message.getTextInfo() != nullptr) {
        std::vector<std::string> preNotes;
        if (message.getTextInfo()->getPreTableNotes(preNotes)) writeNotes_i(preNotes);
        message.getTextInfo()->getPostTableNotes(m_metricPostNotes);
    }
    return 0;
}

int TableWriter::writeMessage(const pwr::TextMessage& message)
{
    endTableInProgress_i();
    writeNotes_i({message.getMessage()});
    return 0;
}

// The first message of a table is its layout, or a row at once for a table without an announcement.
int TableWriter::writeMessage(const pwr::TableMessage& message)
{
    if (message.getMessageId() != m_messageId) {
        endTableInProgress_i();
        m_messageId = message.getMessageId();
        m_head = headOf_i(message);
        beginTable_i(m_head);
    }
    if (message.getTableMessageType() == pwr::TableMessageType::TABLE_LAYOUT) return 0;
    std::deque<std::string> cells;
    getRowValues(message, cells);
    writeRow_i({cells.begin(), cells.end()});
    return 0;
}

void TableWriter::endTableInProgress_i()
{
    if (m_messageId == 0) return;
    m_messageId = 0;
    endTable_i(m_head);
}

// The columns in the order of getRowValues(). Each column of an entity names it: titles of getColumnTitles() would
// repeat from entity to entity, or lack the units.
TableHead TableWriter::headOf_i(const pwr::TableMessage& message)
{
    TableHead head;
    head.title = message.getTitle();
    for (auto shared = message.sharedHandleBegin(); shared != message.sharedHandleEnd(); ++shared) {
        head.columns.push_back({"", nameOf(*shared)});
    }
    const auto addHandles = [&message, &head](const std::string& entity) {
        for (auto handle = message.handleBegin(); handle != message.handleEnd(); ++handle) {
            head.columns.push_back({entity, nameOf(*handle)});
        }
    };
    if (message.getEntityCount() == 0) addHandles("");
    for (auto entity = message.entityBegin(); entity != message.entityEnd(); ++entity) {
        addHandles(*entity != nullptr ? (*entity)->getQualifiedName() : std::string());
    }
    if (message.getTextNotes() != nullptr) {
        message.getTextNotes()->getPreTableNotes(head.preNotes);
        message.getTextNotes()->getPostTableNotes(head.postNotes);
    }
    return head;
}

}    // namespace host

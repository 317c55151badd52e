#include "writers/TableWriter.h"

#include "writers/Values.h"

#include "output/TableMessage.h"
#include "output/TextNotes.h"
#include "output/WriterMessage.h"
#include "plugins/PluginCapability.h"
#include "values/EntityHandle.h"

#include <deque>
#include <locale>

namespace host {

namespace {

// The library renders numbers as the global locale wants them. This is the classic one while it lives.
class ClassicNumbers {
public:
    ClassicNumbers() : m_isOther(m_kept != std::locale::classic())
    {
        if (m_isOther) std::locale::global(std::locale::classic());
    }
    ~ClassicNumbers()
    {
        if (m_isOther) std::locale::global(m_kept);
    }
    ClassicNumbers(const ClassicNumbers&) = delete;
    ClassicNumbers& operator=(const ClassicNumbers&) = delete;

private:
    const std::locale m_kept;
    bool m_isOther;
};

// The cells of a row in the order of getRowValues(), as values.
template <typename Take>
void forEachValue(const pwr::TableMessage& message, Take take)
{
    const auto valueOf = [&message](const pwr::EntityHandle* entity, const pwr::DataHandle* handle) {
        const pwr::Data* value = nullptr;
        bool isValid = false;
        const int result = entity != nullptr ? message.getFieldValue(entity, handle, value, isValid)
                                             : message.getFieldValue(handle, value, isValid);
        return result == 0 && isValid ? value : nullptr;
    };
    for (auto shared = message.sharedHandleBegin(); shared != message.sharedHandleEnd(); ++shared)
        take(valueOf(nullptr, *shared));
    const auto takeHandles = [&](const pwr::EntityHandle* entity) {
        for (auto handle = message.handleBegin(); handle != message.handleEnd(); ++handle)
            take(valueOf(entity, *handle));
    };
    if (message.getEntityCount() == 0) takeHandles(nullptr);
    for (auto entity = message.entityBegin(); entity != message.entityEnd(); ++entity)
        takeHandles(*entity);
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
    takeRow_i(message);
    writeRow_i(m_cells);
    return 0;
}

void TableWriter::takeRow_i(const pwr::TableMessage& message)
{
    const ClassicNumbers classic;
    std::deque<std::string> texts;
    getRowValues(message, texts);
    m_cells.clear();
    for (std::string& text : texts)
        m_cells.push_back({std::move(text), nullptr});
    std::size_t column = 0;
    forEachValue(message, [this, &column](const pwr::Data* value) {
        if (column < m_cells.size()) m_cells[column++].value = value;
    });
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
    head.messageId = message.getMessageId();
    head.metricId = message.getMetricContainerId();
    head.title = message.getTitle();
    for (auto shared = message.sharedHandleBegin(); shared != message.sharedHandleEnd(); ++shared) {
        head.columns.push_back({"", columnNameOf(*shared)});
    }
    const auto addHandles = [&message, &head](const std::string& entity) {
        for (auto handle = message.handleBegin(); handle != message.handleEnd(); ++handle) {
            head.columns.push_back({entity, columnNameOf(*handle)});
        }
    };
    if (message.getEntityCount() == 0) addHandles("");
    for (auto entity = message.entityBegin(); entity != message.entityEnd(); ++entity) {
        addHandles(qualifiedNameOf(*entity));
    }
    if (message.getTextNotes() != nullptr) {
        message.getTextNotes()->getPreTableNotes(head.preNotes);
        message.getTextNotes()->getPostTableNotes(head.postNotes);
    }
    return head;
}

}    // namespace host

#pragma once

#include "output/TableTypes.h"
#include "output/WriterPlugin.h"

#include <string>
#include <vector>

namespace pwr {
class Data;
}

namespace host {

// What stands above the rows of a table, and behind them.
struct TableHead {
    struct Column {
        std::string entity;    // qualified name; empty for a column of the whole row
        std::string name;      // with its units

        std::string title() const { return entity + (entity.empty() || name.empty() ? "" : " ") + name; }
    };
    unsigned int messageId = 0;
    unsigned int metricId = 0;    // 0: none
    std::string title;
    std::vector<Column> columns;
    std::vector<std::string> preNotes;
    std::vector<std::string> postNotes;
};

struct TableCell {
    std::string text;                    // rounded as the table wants it; empty for a cell that is not set
    const pwr::Data* value = nullptr;    // the table's; null for a cell that is not set or can't be read
};

// The part that writers of tables share: it puts the messages of a table (a layout, then row after row) together again,
// and the notes of a metric around its tables. closeOutput() of a derived class begins with finishTables_i().
class TableWriter : public WriterPlugin {
public:
    // The class of all tables that this host's producers make.
    static constexpr pwr::TableClass SUMMARIES{};

protected:
    // What the writer is for, and the end of its files' names; empty without files.
    TableWriter(const std::string& uuid, const std::string& name, const std::string& description,
                const std::string& fileSuffix);

    virtual void beginMetric_i(const std::string& banner) = 0;
    virtual void writeNotes_i(const std::vector<std::string>& notes) = 0;
    virtual void beginTable_i(const TableHead& head) = 0;
    virtual void writeRow_i(const std::vector<TableCell>& cells) = 0;
    virtual void endTable_i(const TableHead& head) = 0;

    void finishTables_i();

    // A derived class that overrides others of these brings them in with a using declaration.
    int writeMessage(const pwr::MetricContainerInfoMessage& message) override;
    int writeMessage(const pwr::TextMessage& message) override;
    int writeMessage(const pwr::TableMessage& message) override;

private:
    void endTableInProgress_i();
    static TableHead headOf_i(const pwr::TableMessage& message);
    void takeRow_i(const pwr::TableMessage& message);

    unsigned int m_messageId = 0;    // of the table in progress; 0: none
    TableHead m_head;
    std::vector<TableCell> m_cells;                // of the row in progress
    std::vector<std::string> m_metricPostNotes;    // wait for the metric's last table
};

}    // namespace host

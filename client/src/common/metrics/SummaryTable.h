#pragma once

#include "config/OutputConfig.h"
#include "output/TableMessage.h"

#include <string>

class WriterStream;

namespace pwr {

class DataDescriptor;
class Metric;
class TextNotes;

// How the output configuration wants one of a metric's tables presented. Without an entry the defaults stand, and the
// log says so.
struct TableRequest {
    TableRequest(const Metric& requester, const std::string& tableType, const WriterInterfaceConfigFileParser& config);

    const Metric& metric;
    TableInfo info;
    std::string title;    // the configured one or the metric's name; the fixed text of the table follows
};

// A summary table on its way to the writers, in the form that all have in common: columns first, then the header, then
// row after row.
//
//   SummaryTable table(stream, metric, "Power Summary", notes);
//   const unsigned int mean = table.addRealColumn("Avg (mW)");
//   table.pushHeader();
//   table.set(mean, 41.5);
//   table.pushRow();
class SummaryTable {
public:
    // `notes` may be null; they are not owned and outlive the table's messages.
    SummaryTable(WriterStream& stream, const Metric& metric, const std::string& title, const TextNotes* notes);

    // Each gives the id of its field. Columns are not shared unless said. A group info that the metric lacks (null)
    // gets a column without a name.
    unsigned int addGroupColumn(const Field* group, DataType type);
    unsigned int addSharedGroupColumn(const Field* group, DataType type);
    unsigned int addSharedColumn(const std::string& name, DataType type);
    unsigned int addColumn(const std::string& name, DataType type);
    unsigned int addRealColumn(const std::string& name);    // two digits behind the point

    // For a number in a column of texts: as a real column shows it. Empty for what is no number.
    static std::string realText(const Data& value);

    // What leads the rows of entities or, `withDescriptors`, of pairs. First of all columns.
    void addPairColumns(const Metric& metric, bool withDescriptors);

    void addEntity(const EntityHandle* entity) { m_table.addEntity(entity); }
    void create();        // alone: for a table without a header
    void pushHeader();    // creates the table and sends it without values
    void pushRow();       // sends what was set; the cells are empty again afterwards

    template <typename T>
    void set(unsigned int field, const T& value)
    {
        m_table.setField(field, value);
    }

    template <typename T>
    void set(const EntityHandle* entity, unsigned int field, const T& value)
    {
        m_table.setField(entity, field, value);
    }

    void setHandle(unsigned int field, const DataHandle* handle);    // null leaves the cell empty

    // Fills the pair columns and gives the column behind them. Null leaves a cell empty.
    unsigned int setPair(const EntityHandle* entity, const DataDescriptor* descriptor);

private:
    WriterStream& m_stream;
    TableMessage m_table;
    unsigned int m_fieldCount = 0;
    unsigned int m_pairColumnCount = 0;
};

}    // namespace pwr

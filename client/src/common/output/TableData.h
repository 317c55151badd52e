#pragma once

#include "output/TableTypes.h"
#include "values/Data.h"
#include "values/Formatter.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace pwr {

class DataHandle;
class EntityHandle;
class ExpectedAttributeManager;
class Quantity;

// The storage behind a TableMessage and its copies and views: the layout and the cells. The cells stand in one row of
// memory: S shared ones, then F for each entity in address order (F for one row when there are no entities). They are
// made once and only overwritten afterwards. Logs nothing: the messages are its message's.
class TableData {
public:
    using ValidSet = std::set<std::pair<const EntityHandle*, const DataHandle*>>;

    // A field, by its id.
    struct Column {
        const DataHandle* handle;
        std::unique_ptr<Formatter> formatter;    // null: the default of the type
        unsigned int position;                   // among the fields of its kind
        unsigned int pairPosition;               // of the per-entity field that stands for it in the valid pairs
        DataType type;
        bool shared;
    };

    static constexpr std::size_t NO_ROW = SIZE_MAX;
    static constexpr unsigned int NO_POSITION = UINT32_MAX;

    TableData(const std::string& title, const Quantity* quantity) : m_title(title), m_quantity(quantity) {}
    TableData(const TableData&) = delete;
    TableData& operator=(const TableData&) = delete;

    // The layout. `attributes` may be null. A handle that comes in twice belongs to the last field that brings it.
    void addField(const DataHandle* field, const ExpectedAttributeManager* attributes, DataType type,
                  std::unique_ptr<Formatter> formatter, bool shared);
    void addEntity(const EntityHandle* entity) { m_entities.insert(entity); }

    // Numbers the rows and makes the cells. False without any field, after numbering the rows.
    bool create();
    bool isCreated() const { return !m_cells.empty(); }

    const Column* findColumn(unsigned int fieldId) const    // null: unknown id
    {
        return fieldId < m_columns.size() ? &m_columns[fieldId] : nullptr;
    }
    const Column* findColumn(const DataHandle* handle) const;    // the field of a field or attribute; null: unknown
    std::size_t findRow(const EntityHandle* entity)              // NO_ROW before create() and for a stranger
    {
        return m_lastRow < m_rows.size() && m_rows[m_lastRow] == entity ? m_lastRow : searchRow_i(entity);
    }
    const Data& getCell(std::size_t row, const Column& column) const { return m_cells[index_i(row, column)]; }
    Data& getCellToSet(std::size_t row, const Column& column)
    {
        m_lastPosition = column.pairPosition;
        return m_cells[index_i(row, column)];
    }

    // Notes that the cell of an entity and a per-entity field was set.
    void enterValid(const EntityHandle* entity, const DataHandle* field);
    const ValidSet& getValid();

    // Makes every cell read as not valid, and forgets which were set.
    void reset();

    const std::string& getTitle() const { return m_title; }
    const Quantity* getQuantity() const { return m_quantity; }
    bool hasFieldHeaders() const { return m_hasFieldHeaders; }
    TableMessageType getType() const { return m_type; }
    void setHasData() { m_type = TableMessageType::TABLE_DATA; }

    // Each field is followed by its expected attributes in the lists of handles.
    const std::vector<const DataHandle*>& getSharedFields() const { return m_sharedFields; }
    const std::vector<const DataHandle*>& getFields() const { return m_fields; }
    const std::vector<const DataHandle*>& getSharedHandles() const { return m_sharedHandles; }
    const std::vector<const DataHandle*>& getHandles() const { return m_handles; }
    const std::set<const EntityHandle*>& getEntities() const { return m_entities; }

private:
    // Of a cell: whether it was set for its entity since the last reset, and whether it stands in the set of valid
    // cells, which follows when somebody looks at it. A table that is filled alike each time keeps the set as it is.
    static constexpr std::uint8_t IS_VALID = 1;
    static constexpr std::uint8_t IS_IN_SET = 2;

    std::size_t index_i(std::size_t row, const Column& column) const
    {
        const std::size_t shared = m_sharedFields.size();
        return column.shared ? column.position : shared + m_fields.size() * row + column.position;
    }
    unsigned int pairPositionOf_i(const DataHandle* field, bool shared) const;
    std::size_t searchRow_i(const EntityHandle* entity);
    void insertValid_i(const EntityHandle* entity, const DataHandle* field);
    void removeValid_i(const EntityHandle* entity, const DataHandle* field);

    std::string m_title;
    const Quantity* m_quantity;    // not owned; may be null
    TableMessageType m_type = TableMessageType::TABLE_LAYOUT;
    bool m_hasFieldHeaders = false;

    std::vector<Column> m_columns;                                     // by field id
    std::unordered_map<const DataHandle*, unsigned int> m_fieldIds;    // of fields and attributes; never walked
    std::vector<const DataHandle*> m_sharedFields;
    std::vector<const DataHandle*> m_fields;
    std::vector<const DataHandle*> m_sharedHandles;
    std::vector<const DataHandle*> m_handles;

    std::set<const EntityHandle*> m_entities;    // address order is the order of the rows
    std::vector<const EntityHandle*> m_rows;     // the entities by row, once numbered
    std::size_t m_lastRow = 0;                   // found last: producers fill row by row
    std::size_t m_lastPosition = 0;              // set last

    std::vector<Data> m_cells;            // empty: not created
    std::vector<std::uint8_t> m_marks;    // of the per-entity cells, row by row
    bool m_marksChanged = false;          // since the set of valid cells was brought up to date
    ValidSet m_valid;
    std::vector<ValidSet::node_type> m_spareNodes;    // of m_valid: a refilled table allocates nothing
};

}    // namespace pwr

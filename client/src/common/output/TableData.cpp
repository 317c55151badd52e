#include "output/TableData.h"

#include "values/AttributeManagers.h"
#include "values/Handles.h"

#include <algorithm>
#include <functional>

namespace pwr {

void TableData::addField(const DataHandle* field, const ExpectedAttributeManager* attributes, DataType type,
                         std::unique_ptr<Formatter> formatter, bool shared)
{
    std::vector<const DataHandle*>& fields = shared ? m_sharedFields : m_fields;
    std::vector<const DataHandle*>& handles = shared ? m_sharedHandles : m_handles;
    const auto fieldId = static_cast<unsigned int>(m_columns.size());
    const auto position = static_cast<unsigned int>(fields.size());
    m_columns.push_back({field, std::move(formatter), position, pairPositionOf_i(field, shared), type, shared});
    fields.push_back(field);
    handles.push_back(field);
    m_fieldIds[field] = fieldId;
    if (!field->getHeader().empty()) m_hasFieldHeaders = true;

    if (attributes == nullptr) return;
    for (const Attribute* attribute : *attributes) {
        handles.push_back(attribute);
        m_fieldIds[attribute] = fieldId;
    }
}

// A field that is added again enters the pairs of its first per-entity column.
unsigned int TableData::pairPositionOf_i(const DataHandle* field, bool shared) const
{
    const Column* earlier = findColumn(field);
    if (earlier != nullptr && earlier->pairPosition != NO_POSITION) return earlier->pairPosition;
    return shared ? NO_POSITION : static_cast<unsigned int>(m_fields.size());
}

bool TableData::create()
{
    m_rows.assign(m_entities.begin(), m_entities.end());
    if (m_columns.empty()) return false;

    const std::size_t rows = std::max<std::size_t>(m_rows.size(), 1);
    m_cells.reserve(m_sharedFields.size() + m_fields.size() * rows);
    const auto makeCells = [this](bool shared) {
        for (const Column& column : m_columns) {
            if (column.shared != shared) continue;
            m_cells.emplace_back(column.type);
            if (column.formatter != nullptr) m_cells.back().setCustomFormatter(*column.formatter);
        }
    };
    makeCells(true);
    for (std::size_t row = 0; row < rows; ++row)
        makeCells(false);
    m_marks.assign(m_fields.size() * rows, 0);
    return true;
}

const TableData::Column* TableData::findColumn(const DataHandle* handle) const
{
    const auto found = m_fieldIds.find(handle);
    return found != m_fieldIds.end() ? &m_columns[found->second] : nullptr;
}

std::size_t TableData::searchRow_i(const EntityHandle* entity)
{
    const std::size_t next = m_lastRow + 1;
    if (next < m_rows.size() && m_rows[next] == entity) return m_lastRow = next;
    const auto found = std::lower_bound(m_rows.begin(), m_rows.end(), entity, std::less<const EntityHandle*>());
    if (found == m_rows.end() || *found != entity) return NO_ROW;
    return m_lastRow = static_cast<std::size_t>(found - m_rows.begin());
}

void TableData::enterValid(const EntityHandle* entity, const DataHandle* field)
{
    const std::size_t row = findRow(entity);
    std::size_t position = m_lastPosition;
    if (position >= m_fields.size() || m_fields[position] != field) {
        position = static_cast<std::size_t>(std::find(m_fields.begin(), m_fields.end(), field) - m_fields.begin());
    }
    if (row == NO_ROW || position == m_fields.size()) return;
    m_marks[m_fields.size() * row + position] |= IS_VALID;
    m_marksChanged = true;
}

const TableData::ValidSet& TableData::getValid()
{
    if (!m_marksChanged) return m_valid;
    auto mark = m_marks.begin();
    for (const EntityHandle* entity : m_rows) {
        for (const DataHandle* field : m_fields) {
            if (*mark == IS_VALID) insertValid_i(entity, field);
            if (*mark == IS_IN_SET) removeValid_i(entity, field);
            *mark = (*mark & IS_VALID) != 0 ? IS_VALID | IS_IN_SET : 0;
            ++mark;
        }
    }
    m_marksChanged = false;
    return m_valid;
}

void TableData::insertValid_i(const EntityHandle* entity, const DataHandle* field)
{
    if (m_spareNodes.empty()) {
        m_valid.emplace_hint(m_valid.end(), entity, field);
        return;
    }
    m_spareNodes.back().value() = {entity, field};
    m_valid.insert(m_valid.end(), std::move(m_spareNodes.back()));
    m_spareNodes.pop_back();
}

void TableData::removeValid_i(const EntityHandle* entity, const DataHandle* field)
{
    m_spareNodes.push_back(m_valid.extract({entity, field}));
}

void TableData::reset()
{
    for (Data& cell : m_cells)
        cell.invalidate();
    for (std::uint8_t& mark : m_marks)
        mark &= IS_IN_SET;
    m_marksChanged = true;
    m_type = TableMessageType::TABLE_DATA;
}

}    // namespace pwr

#pragma once

#include "output/WriterMessage.h"
#include "runtime/Export.h"
#include "values/Data.h"

#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace pwr {

class Description;
class EntityHandle;
class ExpectedAttributeManager;
class Field;
class Formatter;
class Quantity;
class TableData;

// The one container in which results reach the writers. Declare the columns (shared ones, and ones that each entity
// has of its own), name the entities, create the table once; then fill and push it row after row: each push empties
// the cells and keeps the layout. Fields are addressed by ids that count from 0 in the order of adding, shared and
// per-entity fields together. A table belongs to the thread that fills it. Copies and views share one storage, which
// lives as long as the last of them.
//
//   TableMessage table("Temperature", nullptr);
//   table.addField("State", DataType::STRING, true);    // id 0, one cell a row
//   table.addField("Mean", DataType::REAL, false);      // id 1, one cell for each entity
//   table.addEntity(core0);
//   table.createTable();
//   table.setField(0, "C6");
//   table.setField(core0, 1, 41.5);
//   stream->pushMessage(table);
//
// Operations that return int give 0, or 1 with a line in the log; the table stays usable.
class QUORVANE_API TableMessage : public WriterMessage {
public:
    using HandleIterator = std::vector<const DataHandle*>::const_iterator;
    using EntityIterator = std::set<const EntityHandle*>::const_iterator;
    using ValidIterator = std::set<std::pair<const EntityHandle*, const DataHandle*>>::const_iterator;

    TableMessage(const std::string& title, const Quantity* quantity);    // `quantity` may be null
    TableMessage(const TableMessage&);
    TableMessage& operator=(const TableMessage&);
    ~TableMessage() override;

    MessageType getMessageType() const override;
    virtual TableClass getTableClass() const;

    // The layout, before createTable(). A field takes over the expected attributes of its Field; a StateDescription
    // makes a State the field. A formatter is cloned. A handle that comes in twice is read from the last field that
    // brings it.
    int addEntity(const EntityHandle* entity);
    int addField(const Description& description, DataType type, bool shared);
    int addField(const Description& description, DataType type, const Formatter& formatter, bool shared);
    int addField(const std::string& name, DataType type, bool shared);
    int addField(const std::string& name, DataType type, const Formatter& formatter, bool shared);
    int addField(const Field* field, DataType type, bool shared);
    int addField(const Field* field, DataType type, const Formatter& formatter, bool shared);

    // Makes the cells: rows follow the entities in address order, one row when there are none. 1 without any field, and
    // for a table that is created already, which stays as it is.
    int createTable();

    // Sets a shared cell, or a cell of the first row. Numbers go in by their kind (signed as INT, unsigned as UINT,
    // floating point as REAL); a value of another type than the field's fails and makes the cell read as not valid.
    template <typename T>
    int setField(unsigned int fieldId, const T& value)
    {
        Data* data = getDataToSet_i(fieldId);
        return data != nullptr ? data->setValue(value) : 1;
    }

    // Sets the cell of an entity. With the id of a shared field it sets the shared cell.
    template <typename T>
    int setField(const EntityHandle* entity, unsigned int fieldId, const T& value)
    {
        const DataHandle* field = nullptr;
        Data* data = getDataToSet_i(entity, fieldId, field);
        if (data == nullptr || data->setValue(value) != 0) return 1;
        return addValidValue_i(entity, field);
    }

    // Makes all cells read as not valid. The stream calls it after delivery. A view does nothing.
    int resetData();

    // Reads a cell: `out` is the value, not owned, valid until the next change of the table; `valid` tells whether it
    // may be used. The handle is a field, or an attribute of a field, which is read from what the field's cell
    // describes. Fails before the first set or reset. Without an entity it reads a shared cell or the first row.
    int getFieldValue(const DataHandle* handle, const Data*& out, bool& valid) const;
    int getFieldValue(const EntityHandle* entity, const DataHandle* handle, const Data*& out, bool& valid) const;

    // The same as formatted text. A cell that is not valid leaves `out` as it is, with result 0; so does a failure, but
    // an entity that the table doesn't know empties it.
    int getFieldAsString(const DataHandle* handle, std::string& out, bool& valid) const;
    int getFieldAsString(const EntityHandle* entity, const DataHandle* handle, std::string& out, bool& valid) const;

    // Fields alone, and handles: each field followed by its expected attributes.
    std::size_t getSharedFieldCount() const;
    std::size_t getFieldCount() const;
    std::size_t getSharedHandleCount() const;
    std::size_t getHandleCount() const;
    std::size_t getEntityCount() const;

    const std::string& getTitle() const;
    const Quantity* getQuantity() const;
    TableMessageType getTableMessageType() const;
    bool hasFieldHeaders() const;                // some field has a header text
    const EntityHandle* getRowEntity() const;    // null unless a derived class gives it a meaning
    const TextNotes* getTextNotes() const { return m_textNotes; }
    int setTextNotes(const TextNotes* notes);    // not owned, outlives the message; returns 0

    virtual HandleIterator sharedFieldBegin() const;
    virtual HandleIterator sharedFieldEnd() const;
    virtual HandleIterator fieldBegin() const;
    virtual HandleIterator fieldEnd() const;
    virtual HandleIterator sharedHandleBegin() const;
    virtual HandleIterator sharedHandleEnd() const;
    virtual HandleIterator handleBegin() const;
    virtual HandleIterator handleEnd() const;
    virtual EntityIterator entityBegin() const;
    virtual EntityIterator entityEnd() const;
    virtual ValidIterator validBegin() const;    // the cells set for an entity since the last reset
    virtual ValidIterator validEnd() const;

    // The units text behind a column title: prefix, units, suffix. False, with `out` empty, for null.
    static bool quantityToUnits(const Quantity* quantity, std::string& out, const std::string& prefix,
                                const std::string& suffix);

protected:
    // A new message that views the storage of another (not null) and has it as a parent message. It keeps its notes.
    explicit TableMessage(const TableMessage* source);

private:
    bool canAddField_i() const;
    int addDescribedField_i(const Description& description, DataType type, const Formatter* formatter, bool shared);
    int addField_i(const DataHandle* field, const ExpectedAttributeManager* attributes, DataType type,
                   const Formatter* formatter, bool shared);

    // The cell to overwrite; null with a line in the log. `field` becomes the per-entity field, if it is one.
    Data* getDataToSet_i(unsigned int fieldId);
    Data* getDataToSet_i(const EntityHandle* entity, unsigned int fieldId, const DataHandle*& field);
    Data* getRowDataToSet_i(std::size_t row, unsigned int fieldId, const DataHandle*& field);
    int addValidValue_i(const EntityHandle* entity, const DataHandle* field);

    std::size_t findRow_i(const EntityHandle* entity) const;
    int getFieldValue_i(std::size_t row, const DataHandle* handle, const Data*& out, bool& valid) const;
    int getAttributeValue_i(const DataHandle* handle, const Data*& out, bool& valid) const;
    int getFieldAsString_i(std::size_t row, const DataHandle* handle, std::string& out, bool& valid) const;

    std::shared_ptr<TableData> m_storage;    // null in a view
    std::shared_ptr<TableData> m_view;       // what all operations read
    const TextNotes* m_textNotes = nullptr;
};

}    // namespace pwr

#include "output/TableMessage.h"

#include "output/TableData.h"
#include "runtime/Log.h"
#include "values/Description.h"
#include "values/EntityHandle.h"
#include "values/Handles.h"
#include "values/Quantity.h"

namespace pwr {

namespace {

const char* nameOf(const DataHandle* handle)
{
    return handle != nullptr ? handle->getName().c_str() : "NULL";
}

std::unique_ptr<Formatter> cloneOf(const Formatter& formatter)
{
    return std::unique_ptr<Formatter>(formatter.clone());
}

}    // namespace

TableMessage::TableMessage(const std::string& title, const Quantity* quantity)
    : m_storage(std::make_shared<TableData>(title, quantity)), m_view(m_storage)
{
}

TableMessage::TableMessage(const TableMessage* source) : m_view(source->m_view), m_textNotes(source->m_textNotes)
{
    addParentMessage(source->getMessageId());
}

TableMessage::TableMessage(const TableMessage&) = default;
TableMessage& TableMessage::operator=(const TableMessage&) = default;
TableMessage::~TableMessage() = default;

MessageType TableMessage::getMessageType() const
{
    return MessageType::TABLE;
}

TableClass TableMessage::getTableClass() const
{
    return TableClass{};
}

int TableMessage::addEntity(const EntityHandle* entity)
{
    if (entity == nullptr) return 1;
    if (m_view->isCreated()) {
        QV_LOG_WARNING("WARNING: Can't add new EntityHandle to table after table is created\n");
        return 1;
    }
    m_view->addEntity(entity);
    return 0;
}

int TableMessage::addField(const Description& description, DataType type, bool shared)
{
    return addDescribedField_i(description, type, nullptr, shared);
}

int TableMessage::addField(const Description& description, DataType type, const Formatter& formatter, bool shared)
{
    return addDescribedField_i(description, type, &formatter, shared);
}

int TableMessage::addField(const std::string& name, DataType type, bool shared)
{
    return addDescribedField_i(Description(name, ""), type, nullptr, shared);
}

int TableMessage::addField(const std::string& name, DataType type, const Formatter& formatter, bool shared)
{
    return addDescribedField_i(Description(name, ""), type, &formatter, shared);
}

int TableMessage::addField(const Field* field, DataType type, bool shared)
{
    return canAddField_i() ? addField_i(field, field, type, nullptr, shared) : 1;
}

int TableMessage::addField(const Field* field, DataType type, const Formatter& formatter, bool shared)
{
    return canAddField_i() ? addField_i(field, field, type, &formatter, shared) : 1;
}

bool TableMessage::canAddField_i() const
{
    if (!m_view->isCreated()) return true;
    QV_LOG_WARNING("WARNING: May not add field once table %s is created\n", getTitle().c_str());
    return false;
}

// Looks before it makes a handle: a refused field costs no identity.
int TableMessage::addDescribedField_i(const Description& description, DataType type, const Formatter* formatter,
                                      bool shared)
{
    if (!canAddField_i()) return 1;
    if (description.getType() != DescriptionType::STATE) {
        const Field* field = Field::create(description);
        return addField_i(field, field, type, formatter, shared);
    }
    const auto* state = dynamic_cast<const StateDescription*>(&description);
    if (state == nullptr) {
        QV_LOG_WARNING("WARNING: Could not get state description\n");
        return 0;
    }
    return addField_i(State::create(*state), nullptr, type, formatter, shared);
}

int TableMessage::addField_i(const DataHandle* field, const ExpectedAttributeManager* attributes, DataType type,
                             const Formatter* formatter, bool shared)
{
    if (field == nullptr) {
        QV_LOG_WARNING("WARNING: Can't add a null field to table %s\n", getTitle().c_str());
        return 1;
    }
    m_view->addField(field, attributes, type, formatter != nullptr ? cloneOf(*formatter) : nullptr, shared);
    return 0;
}

int TableMessage::createTable()
{
    if (m_view->isCreated()) {
        QV_LOG_WARNING("WARNING: Table %s is created already\n", getTitle().c_str());
        return 1;
    }
    if (!m_view->create()) {
        QV_LOG_WARNING("WARNING: Can't create empty table %s\n", getTitle().c_str());
        return 1;
    }
    return 0;
}

Data* TableMessage::getDataToSet_i(unsigned int fieldId)
{
    const DataHandle* field = nullptr;
    return getRowDataToSet_i(0, fieldId, field);
}

Data* TableMessage::getDataToSet_i(const EntityHandle* entity, unsigned int fieldId, const DataHandle*& field)
{
    const std::size_t row = m_view->findRow(entity);
    if (row == TableData::NO_ROW) {
        QV_LOG_WARNING("WARNING: No such entity %s found in table %s\n", nameOf(entity), getTitle().c_str());
        return nullptr;
    }
    return getRowDataToSet_i(row, fieldId, field);
}

Data* TableMessage::getRowDataToSet_i(std::size_t row, unsigned int fieldId, const DataHandle*& field)
{
    if (!m_view->isCreated()) {
        QV_LOG_WARNING("WARNING: Can't set table field before table is created\n");
        return nullptr;
    }
    const TableData::Column* column = m_view->findColumn(fieldId);
    if (column == nullptr) {
        QV_LOG_WARNING("WARNING: Could not find field %u in table %s\n", fieldId, getTitle().c_str());
        return nullptr;
    }
    if (!column->shared) field = column->handle;
    m_view->setHasData();
    return &m_view->getCellToSet(row, *column);
}

int TableMessage::addValidValue_i(const EntityHandle* entity, const DataHandle* field)
{
    if (field != nullptr) m_view->enterValid(entity, field);
    return 0;
}

int TableMessage::resetData()
{
    if (m_storage == nullptr) return 0;
    if (!m_storage->isCreated()) {
        QV_LOG_WARNING("WARNING: Can't reset table data before table is created\n");
        return 1;
    }
    m_storage->reset();
    return 0;
}

int TableMessage::getFieldValue(const DataHandle* handle, const Data*& out, bool& valid) const
{
    return getFieldValue_i(0, handle, out, valid);
}

int TableMessage::getFieldValue(const EntityHandle* entity, const DataHandle* handle, const Data*& out,
                                bool& valid) const
{
    const std::size_t row = findRow_i(entity);
    if (row == TableData::NO_ROW) {
        out = nullptr;
        valid = false;
        return 1;
    }
    return getFieldValue_i(row, handle, out, valid);
}

int TableMessage::getFieldAsString(const DataHandle* handle, std::string& out, bool& valid) const
{
    return getFieldAsString_i(0, handle, out, valid);
}

int TableMessage::getFieldAsString(const EntityHandle* entity, const DataHandle* handle, std::string& out,
                                   bool& valid) const
{
    const std::size_t row = findRow_i(entity);
    if (row == TableData::NO_ROW) {
        out.clear();
        valid = false;
        return 1;
    }
    return getFieldAsString_i(row, handle, out, valid);
}

std::size_t TableMessage::findRow_i(const EntityHandle* entity) const
{
    if (getEntityCount() == 0) {
        QV_LOG_WARNING("WARNING: Entity specified in request for field where not relevant %s\n", getTitle().c_str());
        return TableData::NO_ROW;
    }
    const std::size_t row = m_view->findRow(entity);
    if (row == TableData::NO_ROW) {
        QV_LOG_WARNING("WARNING: Entity %s not found in table %s\n", nameOf(entity), getTitle().c_str());
    }
    return row;
}

int TableMessage::getFieldValue_i(std::size_t row, const DataHandle* handle, const Data*& out, bool& valid) const
{
    out = nullptr;
    valid = false;
    if (!m_view->isCreated()) {
        QV_LOG_WARNING("WARNING: Attempt to retrieve value from uncreated table %s", getTitle().c_str());
        return 1;
    }
    if (getTableMessageType() == TableMessageType::TABLE_LAYOUT) {
        QV_LOG_WARNING("WARNING: No data in table yet %s\n", getTitle().c_str());
        return 1;
    }
    const TableData::Column* column = m_view->findColumn(handle);
    if (column == nullptr) {
        QV_LOG_WARNING("WARNING: Unknown field %s in table %s\n", nameOf(handle), getTitle().c_str());
        return 1;
    }
    out = &m_view->getCell(row, *column);
    valid = out->isValid();
    return handle == column->handle ? 0 : getAttributeValue_i(handle, out, valid);
}

// From the cell of an attribute's field to the attribute's value of the object that the cell names.
int TableMessage::getAttributeValue_i(const DataHandle* handle, const Data*& out, bool& valid) const
{
    valid = false;
    if (out->getType() != DataType::HANDLE) {
        QV_LOG_WARNING("WARNING: Attempt to retrieve an attribute from a simple type in %s\n", getTitle().c_str());
        return 1;
    }
    const DataHandle* object = nullptr;
    if (out->toHandle(object) != 0) {
        QV_LOG_WARNING("WARNING: Could not convert to handle type in %s\n", getTitle().c_str());
        return 1;
    }
    const auto* state = dynamic_cast<const State*>(object);
    const auto* event = dynamic_cast<const Event*>(object);
    const auto* entity = dynamic_cast<const EntityHandle*>(object);
    const auto* descriptor = dynamic_cast<const DataDescriptor*>(object);
    const auto* attribute = dynamic_cast<const Attribute*>(handle);

    const AttributeValueManager* values = state;
    if (values == nullptr) values = event;
    if (values == nullptr) values = entity;
    if (values == nullptr) values = descriptor;
    if (values == nullptr || attribute == nullptr) {
        QV_LOG_WARNING("WARNING: Error getting state/event/entity/dataDescriptor and attribute (%p %p %p %p %p) from "
                       "table %s\n",
                       static_cast<const void*>(state), static_cast<const void*>(event),
                       static_cast<const void*>(entity), static_cast<const void*>(descriptor),
                       static_cast<const void*>(attribute), getTitle().c_str());
        return 1;
    }
    out = values->getAttributeValue(attribute);
    valid = out != nullptr;
    return 0;
}

// A value that can't be formatted leaves `out` as it was.
int TableMessage::getFieldAsString_i(std::size_t row, const DataHandle* handle, std::string& out, bool& valid) const
{
    const Data* value = nullptr;
    if (getFieldValue_i(row, handle, value, valid) != 0) return 1;
    if (!valid) return 0;
    std::string text;
    const int result = value->toFormattedString(text);
    if (result == 0) out = std::move(text);
    return result;
}

std::size_t TableMessage::getSharedFieldCount() const
{
    return m_view->getSharedFields().size();
}

std::size_t TableMessage::getFieldCount() const
{
    return m_view->getFields().size();
}

std::size_t TableMessage::getSharedHandleCount() const
{
    return m_view->getSharedHandles().size();
}

std::size_t TableMessage::getHandleCount() const
{
    return m_view->getHandles().size();
}

std::size_t TableMessage::getEntityCount() const
{
    return m_view->getEntities().size();
}

const std::string& TableMessage::getTitle() const
{
    return m_view->getTitle();
}

const Quantity* TableMessage::getQuantity() const
{
    return m_view->getQuantity();
}

TableMessageType TableMessage::getTableMessageType() const
{
    return m_view->getType();
}

bool TableMessage::hasFieldHeaders() const
{
    return m_view->hasFieldHeaders();
}

const EntityHandle* TableMessage::getRowEntity() const
{
    return nullptr;
}

int TableMessage::setTextNotes(const TextNotes* notes)
{
    m_textNotes = notes;
    return 0;
}

TableMessage::HandleIterator TableMessage::sharedFieldBegin() const
{
    return m_view->getSharedFields().begin();
}

TableMessage::HandleIterator TableMessage::sharedFieldEnd() const
{
    return m_view->getSharedFields().end();
}

TableMessage::HandleIterator TableMessage::fieldBegin() const
{
    return m_view->getFields().begin();
}

TableMessage::HandleIterator TableMessage::fieldEnd() const
{
    return m_view->getFields().end();
}

TableMessage::HandleIterator TableMessage::sharedHandleBegin() const
{
    return m_view->getSharedHandles().begin();
}

TableMessage::HandleIterator TableMessage::sharedHandleEnd() const
{
    return m_view->getSharedHandles().end();
}

TableMessage::HandleIterator TableMessage::handleBegin() const
{
    return m_view->getHandles().begin();
}

TableMessage::HandleIterator TableMessage::handleEnd() const
{
    return m_view->getHandles().end();
}

TableMessage::EntityIterator TableMessage::entityBegin() const
{
    return m_view->getEntities().begin();
}

TableMessage::EntityIterator TableMessage::entityEnd() const
{
    return m_view->getEntities().end();
}

TableMessage::ValidIterator TableMessage::validBegin() const
{
    return m_view->getValid().begin();
}

TableMessage::ValidIterator TableMessage::validEnd() const
{
    return m_view->getValid().end();
}

bool TableMessage::quantityToUnits(const Quantity* quantity, std::string& out, const std::string& prefix,
                                   const std::string& suffix)
{
    out.clear();
    if (quantity == nullptr) return false;
    out = prefix + quantity->toUnitsString() + suffix;
    return true;
}

}    // namespace pwr

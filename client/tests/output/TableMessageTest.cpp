#include "output/TableMessage.h"

#include "output/TextNotes.h"
#include "output/WriterStream.h"
#include "support/TestSession.h"
#include "values/Description.h"
#include "values/EntityHandle.h"
#include "values/Formatter.h"
#include "values/Handles.h"
#include "values/Quantity.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

using namespace pwr;

namespace {

// Presents the storage of a table a second time.
class TableView : public TableMessage {
public:
    explicit TableView(const TableMessage& source) : TableMessage(&source) {}
};

// Says that it describes a state, and does not.
class FalseStateDescription : public Description {
public:
    FalseStateDescription() : Description(DescriptionType::STATE, "False", "") {}
};

class TableMessageTest : public testing::Test {
protected:
    TableMessageTest() : m_table("Cores", nullptr)
    {
        for (const char* name : {"Core_0", "Core_1", "Core_2"})
            m_cores.push_back(EntityHandle::create(name, nullptr));
    }

    void addCores()
    {
        for (const EntityHandle* core : {m_cores[2], m_cores[0], m_cores[1], m_cores[0]}) {
            EXPECT_EQ(0, m_table.addEntity(core));
        }
    }

    // The text of a cell, or "not valid", or "failed".
    std::string text(const EntityHandle* entity, const DataHandle* handle) const
    {
        std::string out = "untouched";
        bool valid = true;
        const int result = entity != nullptr ? m_table.getFieldAsString(entity, handle, out, valid)
                                             : m_table.getFieldAsString(handle, out, valid);
        if (result != 0) return "failed";
        EXPECT_TRUE(valid || out == "untouched");
        return valid ? out : "not valid";
    }

    // What reading the cell logs; the read fails.
    std::string refusal(const EntityHandle* entity, const DataHandle* handle)
    {
        m_session.log.clear();
        const Data* value = nullptr;
        bool valid = true;
        const int result = entity != nullptr ? m_table.getFieldValue(entity, handle, value, valid)
                                             : m_table.getFieldValue(handle, value, valid);
        EXPECT_EQ(1, result);
        EXPECT_FALSE(valid);
        return m_session.log.debug();
    }

    using Pairs = std::vector<std::pair<const EntityHandle*, const DataHandle*>>;
    static Pairs validPairs(const TableMessage& table) { return {table.validBegin(), table.validEnd()}; }

    test::TestSession m_session;
    std::vector<const EntityHandle*> m_cores;
    TableMessage m_table;
};

}    // namespace

TEST_F(TableMessageTest, EveryCellStandsOnItsOwn)
{
    addCores();
    m_table.addField("A", DataType::INT, false);    // id 0
    m_table.addField("B", DataType::INT, false);    // id 1
    m_table.addField("S", DataType::INT, true);     // id 2
    m_table.addField("T", DataType::INT, true);     // id 3
    ASSERT_EQ(0, m_table.createTable());
    EXPECT_EQ(TableMessageType::TABLE_LAYOUT, m_table.getTableMessageType());
    for (int core = 2; core >= 0; --core) {
        EXPECT_EQ(0, m_table.setField(m_cores[static_cast<std::size_t>(core)], 0, 10 + core));
        EXPECT_EQ(0, m_table.setField(m_cores[static_cast<std::size_t>(core)], 1, 20 + core));
    }
    EXPECT_EQ(0, m_table.setField(2, 30));
    EXPECT_EQ(0, m_table.setField(3, 31));
    EXPECT_EQ(TableMessageType::TABLE_DATA, m_table.getTableMessageType());

    EXPECT_EQ(2u, m_table.getFieldCount());
    EXPECT_EQ(2u, m_table.getSharedFieldCount());
    EXPECT_EQ(3u, m_table.getEntityCount());
    const DataHandle* a = m_table.fieldBegin()[0];
    const DataHandle* b = m_table.fieldBegin()[1];
    const DataHandle* s = m_table.sharedFieldBegin()[0];
    const DataHandle* t = m_table.sharedFieldBegin()[1];
    for (const EntityHandle* core : m_cores) {
        const std::string number(1, core->getName().back());
        EXPECT_EQ("1" + number, text(core, a));
        EXPECT_EQ("2" + number, text(core, b));
        EXPECT_EQ("30", text(core, s)) << "the shared cell, whatever the row";
        EXPECT_EQ("31", text(core, t));
    }
    EXPECT_EQ("10", text(nullptr, a)) << "the first row in address order";
    EXPECT_EQ("31", text(nullptr, t));
    EXPECT_EQ(m_cores, (std::vector<const EntityHandle*>{m_table.entityBegin(), m_table.entityEnd()}));
}

TEST_F(TableMessageTest, NumbersGoInByTheirKind)
{
    m_table.addField("Int", DataType::INT, true);
    m_table.addField("UInt", DataType::UINT, true);
    m_table.addField("Real", DataType::REAL, RealFormatter(0, 2), true);
    m_table.addField("Text", DataType::STRING, true);
    m_table.addField("Range", DataType::INT_RANGE, true);
    m_table.addField("Any", DataType::NONE, true);
    m_table.createTable();
    const auto shared = m_table.sharedFieldBegin();

    EXPECT_EQ(0, m_table.setField(0, short{-3}));
    EXPECT_EQ(0, m_table.setField(1, uint64_t{0xFFFFFFFFFFFFFFFF}));
    EXPECT_EQ(0, m_table.setField(2, 1.25F));
    EXPECT_EQ(0, m_table.setField(3, std::string("text")));
    EXPECT_EQ(0, m_table.setField(4, std::pair<long long, long long>(1, 5)));
    EXPECT_EQ(0, m_table.setField(5, "any"));
    const char* expected[] = {"-3", "18446744073709551615", "1.25", "text", "1 -- 5", "any"};
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(expected[i], text(nullptr, shared[i]));

    EXPECT_EQ(1, m_table.setField(0, 3u));
    EXPECT_EQ(1, m_table.setField(2, 3));
    EXPECT_EQ("not valid", text(nullptr, shared[0])) << "the wrong type spoils the cell";
    EXPECT_EQ("not valid", text(nullptr, shared[2]));
    EXPECT_EQ("18446744073709551615", text(nullptr, shared[1]));
    EXPECT_EQ(0, m_table.setField(3, static_cast<const char*>(nullptr)));
    EXPECT_EQ("", text(nullptr, shared[3]));
    EXPECT_EQ(0, m_table.setField(2, Data(4.0)));
    EXPECT_EQ("4.0", text(nullptr, shared[2])) << "a Data brings its own formatter, here none";
}

TEST_F(TableMessageTest, LayoutIsRefusedOnceCreatedAndValuesBefore)
{
    const auto logged = [this](int expected, int result) {
        EXPECT_EQ(expected, result);
        const std::string lines = m_session.log.debug();
        m_session.log.clear();
        return lines;
    };
    EXPECT_EQ("", logged(1, m_table.addEntity(nullptr)));
    EXPECT_EQ(1, m_table.addField(static_cast<const Field*>(nullptr), DataType::INT, true));
    EXPECT_EQ(0u, m_table.getSharedHandleCount());
    m_session.log.clear();
    EXPECT_EQ("WARNING: Can't create empty table Cores\n", logged(1, m_table.createTable()));
    EXPECT_EQ("WARNING: Can't set table field before table is created\n", logged(1, m_table.setField(0, 1)));
    EXPECT_EQ("WARNING: Can't reset table data before table is created\n", logged(1, m_table.resetData()));
    EXPECT_EQ(0, m_table.addField("A", DataType::INT, false)) << "still in layout";
    EXPECT_EQ("WARNING: No such entity Core_0 found in table Cores\n", logged(1, m_table.setField(m_cores[0], 0, 1)));
    EXPECT_EQ(TableMessageType::TABLE_LAYOUT, m_table.getTableMessageType());

    addCores();
    EXPECT_EQ("", logged(0, m_table.createTable()));
    m_table.setField(m_cores[1], 0, 5);
    const std::string noField = "WARNING: May not add field once table Cores is created\n";
    EXPECT_EQ(noField, logged(1, m_table.addField("B", DataType::INT, true)));
    EXPECT_EQ(noField, logged(1, m_table.addField(Description("B", ""), DataType::INT, IntFormatter(), true)));
    EXPECT_EQ(noField, logged(1, m_table.addField(static_cast<const Field*>(nullptr), DataType::INT, false)));
    EXPECT_EQ("WARNING: Can't add new EntityHandle to table after table is created\n",
              logged(1, m_table.addEntity(EntityHandle::create("Core_3", nullptr))));
    EXPECT_NE("", logged(1, m_table.createTable()));
    EXPECT_EQ("5", text(m_cores[1], *m_table.fieldBegin())) << "the second creation changes nothing";
    EXPECT_EQ("WARNING: Could not find field 1 in table Cores\n", logged(1, m_table.setField(1, 1)));
    EXPECT_EQ("WARNING: Could not find field 4294967295 in table Cores\n",
              logged(1, m_table.setField(m_cores[0], 0xFFFFFFFF, 1)));
    EXPECT_EQ("WARNING: No such entity NULL found in table Cores\n",
              logged(1, m_table.setField(static_cast<const EntityHandle*>(nullptr), 0, 1)));
}

TEST_F(TableMessageTest, ReadingNeedsDataOnce)
{
    m_table.addEntity(m_cores[0]);
    m_table.addField("A", DataType::INT, true);
    const DataHandle* a = *m_table.sharedFieldBegin();
    EXPECT_EQ("WARNING: Attempt to retrieve value from uncreated table Cores", refusal(nullptr, a));
    m_table.createTable();
    EXPECT_EQ("WARNING: No data in table yet Cores\n", refusal(nullptr, a));
    EXPECT_EQ("WARNING: No data in table yet Cores\n", refusal(m_cores[0], a));
    EXPECT_EQ(0, m_table.resetData());
    EXPECT_EQ("not valid", text(nullptr, a));
    EXPECT_EQ(TableMessageType::TABLE_DATA, m_table.getTableMessageType());
    EXPECT_EQ("WARNING: Unknown field NULL in table Cores\n", refusal(nullptr, nullptr));
    EXPECT_EQ("WARNING: Unknown field Core_1 in table Cores\n", refusal(m_cores[0], m_cores[1]));
    EXPECT_EQ("WARNING: Entity Core_1 not found in table Cores\n", refusal(m_cores[1], a));
}

TEST_F(TableMessageTest, StrangeEntityEmptiesTheTextAndOtherFailuresLeaveIt)
{
    m_table.addField("A", DataType::INT, StringFormatter(), true);
    const DataHandle* a = *m_table.sharedFieldBegin();
    m_table.createTable();
    m_table.setField(0, 1);
    EXPECT_EQ("WARNING: Entity specified in request for field where not relevant Cores\n", refusal(m_cores[0], a));

    std::string out = "kept";
    bool valid = false;
    EXPECT_EQ(1, m_table.getFieldAsString(nullptr, out, valid));
    EXPECT_EQ("kept", out);
    EXPECT_EQ(1, m_table.getFieldAsString(a, out, valid)) << "a formatter for texts";
    EXPECT_TRUE(valid);
    EXPECT_EQ("kept", out);
    EXPECT_EQ(1, m_table.getFieldAsString(m_cores[0], a, out, valid));
    EXPECT_FALSE(valid);
    EXPECT_EQ("", out);
}

TEST_F(TableMessageTest, AttributesReadFromTheObjectInTheFieldsCell)
{
    const Attribute* frequency = Attribute::get(AttributeType::FREQUENCY);
    FieldDescription column("State", "");
    column.addAttribute(frequency);
    column.addAttribute(Attribute::get(AttributeType::IRQ));
    const Attribute* thread = Attribute::get(AttributeType::THREAD);
    FieldDescription simple("Number", "");
    simple.addAttribute(thread);
    m_table.addField(column, DataType::HANDLE, false);
    m_table.addField(simple, DataType::INT, true);
    m_table.createTable();
    ASSERT_EQ(1u, m_table.getFieldCount());
    ASSERT_EQ(3u, m_table.getHandleCount());
    EXPECT_EQ(2u, m_table.getSharedHandleCount());
    EXPECT_EQ(frequency, m_table.handleBegin()[1]);

    StateDescription state("C1", "");
    EventDescription event("Wake", "");
    DataDescriptorBuilder builder("P0", "");
    state.addAttributeValue(frequency, Data(1LL), false);
    event.addAttributeValue(frequency, Data(2LL));
    builder.addAttributeValue(frequency, Data(3LL));
    EntityHandle* entity = EntityHandle::create("Disk", nullptr);
    entity->addAttributeValue(frequency, Data(4LL));
    const DataHandle* objects[] = {State::create(state), Event::create(event), DataDescriptor::create(builder), entity};
    int number = 1;
    for (const DataHandle* object : objects) {
        EXPECT_EQ(0, m_table.setField(0, *object));
        EXPECT_EQ(object->getName(), text(nullptr, m_table.handleBegin()[0]));
        EXPECT_EQ(std::to_string(number++), text(nullptr, frequency));
        EXPECT_EQ("not valid", text(nullptr, m_table.handleBegin()[2])) << "it has no such attribute";
    }

    m_table.setField(0, *NameValuePair::create(1, "one", "Pair"));
    EXPECT_NE(
        std::string::npos,
        refusal(nullptr, frequency).find("WARNING: Error getting state/event/entity/dataDescriptor and attribute ("));
    m_table.resetData();
    EXPECT_EQ("WARNING: Could not convert to handle type in Cores\n", refusal(nullptr, frequency));
    EXPECT_EQ("WARNING: Attempt to retrieve an attribute from a simple type in Cores\n", refusal(nullptr, thread));
}

TEST_F(TableMessageTest, FieldsComeFromAllKindsOfDescription)
{
    StateDescription state("C1", "");
    state.addAttributeValue(Attribute::get(AttributeType::IRQ), Data(1LL), false);
    EXPECT_EQ(0, m_table.addField(state, DataType::UINT, false));
    EXPECT_EQ(DataHandleType::STATE, m_table.fieldBegin()[0]->getHandleType());
    EXPECT_EQ(1u, m_table.getHandleCount()) << "a state's attribute values are no columns";

    EXPECT_EQ(0, m_table.addField(FalseStateDescription(), DataType::UINT, false));
    EXPECT_EQ("WARNING: Could not get state description\n", m_session.log.debug());
    EXPECT_EQ(1u, m_table.getFieldCount());

    FieldDescription described("Core", "");
    described.addAttribute(Attribute::get(AttributeType::IRQ));
    const Field* field = Field::create(described);
    EXPECT_FALSE(m_table.hasFieldHeaders());
    EXPECT_EQ(0, m_table.addField(field, DataType::UINT, IntFormatter("s", 0, false), false));
    EXPECT_EQ(field, m_table.fieldBegin()[1]);
    EXPECT_EQ(3u, m_table.getHandleCount());
    EXPECT_FALSE(m_table.hasFieldHeaders());

    Description headed("Headed", "");
    headed.setHeader("Header");
    EXPECT_EQ(0, m_table.addField(headed, DataType::UINT, UIntFormatter("s", 0, false), true));    // id 2
    EXPECT_TRUE(m_table.hasFieldHeaders());
    m_table.createTable();
    EXPECT_EQ(0, m_table.setField(2, 12u));
    EXPECT_EQ("12s", text(nullptr, *m_table.sharedFieldBegin()));
}

TEST_F(TableMessageTest, OneFieldInTwoColumnsReadsFromTheLast)
{
    const Field* field = Field::create(Description("Twice", ""));
    addCores();
    m_table.addField(field, DataType::INT, false);
    m_table.addField("Next", DataType::INT, true);
    m_table.addField(field, DataType::INT, true);
    m_table.addField(field, DataType::INT, false);
    m_table.createTable();
    EXPECT_EQ(0, m_table.setField(m_cores[1], 0, 10));
    EXPECT_EQ(0, m_table.setField(1, 11));
    EXPECT_EQ(0, m_table.setField(2, 12));
    EXPECT_EQ("not valid", text(m_cores[1], field));
    EXPECT_EQ(0, m_table.setField(m_cores[1], 3, 13));
    EXPECT_EQ("13", text(m_cores[1], field));
    EXPECT_EQ("11", text(nullptr, m_table.sharedFieldBegin()[0]));
    EXPECT_EQ((Pairs{{m_cores[1], field}}), validPairs(m_table));
    m_table.resetData();
    EXPECT_EQ(0, m_table.setField(m_cores[1], 0, 10));
    EXPECT_EQ((Pairs{{m_cores[1], field}}), validPairs(m_table));
}

TEST_F(TableMessageTest, ValidCellsAreThoseSetForAnEntitySinceTheLastReset)
{
    addCores();
    m_table.addField("Shared", DataType::INT, true);    // id 0
    m_table.addField("A", DataType::INT, false);        // id 1
    m_table.addField("B", DataType::INT, false);        // id 2
    m_table.createTable();
    const DataHandle* a = m_table.fieldBegin()[0];
    const DataHandle* b = m_table.fieldBegin()[1];

    EXPECT_EQ(0, m_table.setField(m_cores[2], 0, 7)) << "a shared field has no pair";
    EXPECT_EQ("7", text(nullptr, *m_table.sharedFieldBegin()));
    EXPECT_EQ(0, m_table.setField(1, 1)) << "nor has a cell set without an entity";
    EXPECT_EQ(1, m_table.setField(m_cores[0], 1, "wrong type"));
    EXPECT_EQ(Pairs{}, validPairs(m_table));

    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(0, m_table.setField(m_cores[2], 1, 1));
        EXPECT_EQ(0, m_table.setField(m_cores[0], 2, 2));
        EXPECT_EQ((Pairs{{m_cores[0], b}, {m_cores[2], a}}), validPairs(m_table));
        const auto first = m_table.validBegin();
        EXPECT_EQ(0, m_table.setField(m_cores[0], 1, round));
        EXPECT_EQ(0, m_table.setField(m_cores[0], 1, round + 1));
        EXPECT_EQ(0, m_table.setField(m_cores[1], 2, 4));
        EXPECT_EQ((Pairs{{m_cores[0], a}, {m_cores[0], b}, {m_cores[1], b}, {m_cores[2], a}}), validPairs(m_table));
        EXPECT_EQ(b, first->second) << "a walk survives further cells";
        m_session.stream->pushMessage(m_table);
        EXPECT_EQ(Pairs{}, validPairs(m_table));
    }
    for (const EntityHandle* core : m_cores) {
        EXPECT_EQ(0, m_table.setField(core, 1, 1));
        EXPECT_EQ((Pairs{{core, a}}), validPairs(m_table));
        m_table.resetData();
        EXPECT_EQ(0, m_table.setField(core, 2, 1));
        m_table.resetData();    // nobody looked
    }
    EXPECT_EQ(Pairs{}, validPairs(m_table));
}

TEST_F(TableMessageTest, RowsAreFoundInAnyOrder)
{
    std::vector<const EntityHandle*> disks;
    for (int i = 0; i < 100; ++i)
        disks.push_back(EntityHandle::create("Disk_" + std::to_string(i), nullptr));
    for (std::size_t i = 0; i < 100; ++i)
        m_table.addEntity(disks[i * 37 % 100]);
    m_table.addField("A", DataType::UINT, false);
    m_table.createTable();
    for (std::size_t i = 0; i < 100; ++i)
        EXPECT_EQ(0, m_table.setField(disks[i * 61 % 100], 0, i * 61 % 100));
    for (std::size_t i = 100; i-- > 0;)
        EXPECT_EQ(std::to_string(i), text(disks[i], *m_table.fieldBegin()));
    EXPECT_EQ(100u, validPairs(m_table).size());
    EXPECT_EQ("WARNING: Entity Core_0 not found in table Cores\n", refusal(m_cores[0], *m_table.fieldBegin()));
}

TEST_F(TableMessageTest, CopiesShareTheStorage)
{
    m_table.addField("A", DataType::STRING, StringFormatter(), true);
    m_table.createTable();
    auto copy = std::make_unique<TableMessage>(m_table);
    TableMessage assigned("Other", Quantity::power());
    assigned.addField("X", DataType::INT, false);
    assigned = *copy;
    EXPECT_EQ("Cores", assigned.getTitle());
    EXPECT_EQ(m_table.getMessageId(), assigned.getMessageId());
    EXPECT_EQ(0, copy->setField(0, "a text that needs an allocation of its own"));
    EXPECT_EQ("a text that needs an allocation of its own", text(nullptr, *assigned.sharedFieldBegin()));
    copy.reset();
    EXPECT_EQ(0, assigned.resetData());
    EXPECT_EQ("not valid", text(nullptr, *m_table.sharedFieldBegin()));
}

TEST_F(TableMessageTest, ViewPresentsTheStorageWithoutEmptyingIt)
{
    const TextNotes notes;
    auto source = std::make_unique<TableMessage>("Source", Quantity::power());
    EXPECT_EQ(0, source->setTextNotes(&notes));
    source->addField("A", DataType::INT, true);
    source->createTable();
    TableView view(*source);
    EXPECT_NE(source->getMessageId(), view.getMessageId());
    EXPECT_TRUE(view.isChildOf(source->getMessageId()));
    EXPECT_EQ(&notes, view.getTextNotes());
    EXPECT_EQ(Quantity::power(), view.getQuantity());
    EXPECT_EQ(nullptr, view.getRowEntity());

    source->setField(0, 5);
    m_session.stream->pushMessage(view);
    m_session.stream->pushMessage(*source);
    source.reset();
    ASSERT_EQ(2u, m_session.writer.tables.size());
    EXPECT_EQ(std::vector<std::string>{"5"}, m_session.writer.tables[0].cells);
    EXPECT_EQ(std::vector<std::string>{"5"}, m_session.writer.tables[1].cells);
    EXPECT_EQ(0, view.resetData());
    EXPECT_EQ("Source", view.getTitle()) << "outlives its source";
    EXPECT_EQ(0, view.setField(0, 6));
}

TEST_F(TableMessageTest, UnitsTextStandsBetweenItsPrefixAndSuffix)
{
    std::string out = "old";
    EXPECT_TRUE(TableMessage::quantityToUnits(Quantity::power(), out, " (", ")"));
    EXPECT_EQ(" (mW)", out);
    EXPECT_FALSE(TableMessage::quantityToUnits(nullptr, out, " (", ")"));
    EXPECT_EQ("", out);
}

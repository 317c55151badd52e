#include "output/WriterPlugin.h"

#include "output/TableMessage.h"
#include "support/TestSession.h"
#include "values/Description.h"
#include "values/EntityHandle.h"
#include "values/Formatter.h"
#include "values/Handles.h"

#include <gtest/gtest.h>

#include <deque>
#include <string>

using namespace pwr;

namespace {

using Texts = std::deque<std::string>;

// A writer that overrides nothing it need not, and lets the tests at what it inherits.
class PlainWriter : public WriterPlugin {
public:
    PlainWriter() : WriterPlugin("plain") {}
    ~PlainWriter() override = default;
    int openOutput() override { return 0; }
    int closeOutput() override { return 0; }
    using WriterPlugin::getFieldNameFromHandle;
    using WriterPlugin::getFieldValueFromHandle;

    Texts titles(const TableMessage& table) const
    {
        Texts out;
        getColumnTitles(table, out);
        return out;
    }
    Texts cells(const TableMessage& table) const
    {
        Texts out = {"before"};
        getRowValues(table, out);
        EXPECT_EQ("before", out.front());
        out.pop_front();
        return out;
    }
};

class WriterPluginTest : public testing::Test {
protected:
    WriterPluginTest()
        : m_core0(EntityHandle::create("Core_0", nullptr)), m_core1(EntityHandle::create("Core_1", nullptr)),
          m_table("Table", nullptr)
    {
    }

    PlainWriter m_writer;    // outlives the stream
    test::TestSession m_session;
    const EntityHandle* m_core0;
    const EntityHandle* m_core1;
    TableMessage m_table;
};

}    // namespace

TEST_F(WriterPluginTest, SingleColumnOfAnEntityIsTitledByTheEntity)
{
    m_table.addEntity(m_core1);
    m_table.addEntity(m_core0);
    m_table.addField("A", DataType::INT, false);
    EXPECT_EQ((Texts{"Core_0", "Core_1"}), m_writer.titles(m_table));
    m_table.addField("B", DataType::INT, false);
    m_table.addField("S", DataType::STRING, true);
    m_table.createTable();
    EXPECT_EQ((Texts{"S", "A", "B", "A", "B"}), m_writer.titles(m_table));

    m_table.setField(2, "text");
    m_table.setField(m_core0, 0, 1);
    m_table.setField(m_core0, 1, 2);
    m_table.setField(m_core1, 1, 3);
    EXPECT_EQ((Texts{"text", "1", "2", "", "3"}), m_writer.cells(m_table));
    m_session.stream->pushMessage(m_table);
    EXPECT_EQ((Texts{"", "", "", "", ""}), m_writer.cells(m_table)) << "not set since the reset";
}

TEST_F(WriterPluginTest, TableWithoutEntitiesIsOneRow)
{
    m_table.addField("A", DataType::REAL, RealFormatter("W", 6, 2), true);
    m_table.addField("B", DataType::INT, false);
    m_table.createTable();
    m_table.setField(0, 1.5);
    m_table.setField(1, -4);
    EXPECT_EQ((Texts{"A", "B"}), m_writer.titles(m_table));
    EXPECT_EQ((Texts{" 1.50W", "-4"}), m_writer.cells(m_table));
}

TEST_F(WriterPluginTest, AttributeColumnsReadFromWhatTheCellDescribes)
{
    const Attribute* frequency = Attribute::get(AttributeType::FREQUENCY);
    FieldDescription field("State", "");
    field.addAttribute(frequency);
    field.addAttribute(Attribute::get(AttributeType::IRQ));
    StateDescription state("C6", "");
    state.addAttributeValue(frequency, Data(1200LL), false);
    m_table.addField(field, DataType::HANDLE, true);
    m_table.createTable();
    m_table.setField(0, *State::create(state));
    EXPECT_EQ((Texts{"State", "Frequency", "IRQ"}), m_writer.titles(m_table));
    EXPECT_EQ((Texts{"C6", "1200", ""}), m_writer.cells(m_table)) << "the state has no IRQ";
}

TEST_F(WriterPluginTest, WhatCanNotBeReadIsInvalid)
{
    m_table.addField("A", DataType::INT, true);
    m_table.addField("B", DataType::INT, StringFormatter(), true);
    const DataHandle* a = m_table.sharedFieldBegin()[0];
    const DataHandle* b = m_table.sharedFieldBegin()[1];
    const DataHandle* stranger = Field::create(Description("C", ""));
    EXPECT_EQ("Invalid", m_writer.getFieldValueFromHandle(m_table, nullptr, a)) << "not created";
    EXPECT_EQ("", m_writer.getFieldValueFromHandle(m_table, m_core0, a)) << "an entity that the table does not know";
    m_table.createTable();
    m_table.setField(0, 5);
    m_table.setField(1, 6);

    EXPECT_EQ("5", m_writer.getFieldValueFromHandle(m_table, nullptr, a));
    EXPECT_EQ("5", m_writer.getFieldValueFromHandle(m_table, m_core0, a)) << "falls back to the first row";
    EXPECT_EQ("Invalid", m_writer.getFieldValueFromHandle(m_table, nullptr, b)) << "its formatter is for texts";
    EXPECT_EQ("Invalid", m_writer.getFieldValueFromHandle(m_table, nullptr, stranger));
    EXPECT_EQ("", m_writer.getFieldValueFromHandle(m_table, m_core0, stranger));
    EXPECT_EQ("Invalid", m_writer.getFieldValueFromHandle(m_table, nullptr, nullptr));
    EXPECT_EQ("", m_writer.getFieldValueFromHandle(m_table, m_core0, nullptr));
    EXPECT_EQ("", m_writer.getFieldNameFromHandle(m_table, m_core0, nullptr));
}

TEST_F(WriterPluginTest, KnownEntityWithUnreadableCellFallsBackToTheFirstRow)
{
    m_table.addEntity(m_core0);
    m_table.addEntity(m_core1);
    m_table.addField("Text", DataType::STRING, IntFormatter(), false);
    m_table.createTable();
    const DataHandle* field = *m_table.fieldBegin();
    m_table.setField(m_core1, 0, "x");
    EXPECT_EQ("", m_writer.getFieldValueFromHandle(m_table, m_core1, field)) << "the first row is not set";
    m_table.setField(m_core0, 0, "y");
    EXPECT_EQ("Invalid", m_writer.getFieldValueFromHandle(m_table, m_core1, field));
    EXPECT_EQ("Invalid", m_writer.getFieldValueFromHandle(m_table, m_core1, nullptr));
}

#include "output/TableMessage.h"

#include "output/WriterStream.h"
#include "plugins/QuorvaneHost.h"
#include "support/AllocationCount.h"
#include "support/TestSession.h"
#include "values/EntityHandle.h"
#include "values/Handles.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace pwr;

namespace {

// Looks at every set cell, as a writer of sparse tables does.
class WalkingWriter : public WriterPlugin {
public:
    WalkingWriter() : WriterPlugin("walking") {}
    ~WalkingWriter() override = default;
    int openOutput() override { return 0; }
    int closeOutput() override { return 0; }
    std::size_t cells = 0;

private:
    int writeMessage(const TableMessage& table) override
    {
        for (auto pair = table.validBegin(); pair != table.validEnd(); ++pair)
            ++cells;
        return 0;
    }
};

// A table of two shared and two per-entity fields over 16 entities.
class TableAllocationTest : public testing::Test {
protected:
    TableAllocationTest() : m_table("Table", nullptr)
    {
        m_session.writers = {&m_writer};
        for (int i = 0; i < 16; ++i) {
            m_entities.push_back(EntityHandle::create("Core_" + std::to_string(i), nullptr));
            m_table.addEntity(m_entities.back());
        }
        m_table.addField("Text", DataType::STRING, true);
        m_table.addField("Handle", DataType::HANDLE, true);
        m_table.addField("Real", DataType::REAL, false);
        m_table.addField("Count", DataType::UINT, false);
        m_table.createTable();
    }

    // Fills and pushes a row, without every `skip`-th entity, another one each round.
    void pushRow(std::size_t round, std::size_t skip)
    {
        m_table.setField(0, "short text");
        m_table.setField(1, *m_entities[0]);
        for (std::size_t i = 0; i < m_entities.size(); ++i) {
            if (skip != 0 && (i + round) % skip == 0) continue;
            m_table.setField(m_entities[i], 2, static_cast<double>(round));
            m_table.setField(m_entities[i], 3, round);
        }
        m_session.stream->pushMessage(m_table);
    }

    std::size_t allocationsOfRows(std::size_t from, std::size_t to, std::size_t skip)
    {
        const std::size_t before = test::allocationCount();
        for (std::size_t round = from; round < to; ++round)
            pushRow(round, skip);
        return test::allocationCount() - before;
    }

    WalkingWriter m_writer;    // outlives the stream
    test::TestSession m_session;
    std::vector<const EntityHandle*> m_entities;
    TableMessage m_table;
};

}    // namespace

TEST_F(TableAllocationTest, RefilledTableAllocatesNothing)
{
    EXPECT_GT(allocationsOfRows(0, 1, 0), 0u) << "the count counts: the first row makes the nodes of the set";
    EXPECT_EQ(32u, m_writer.cells);
    EXPECT_EQ(0u, allocationsOfRows(1, 101, 0));
    EXPECT_EQ(101u * 32u, m_writer.cells);
}

TEST_F(TableAllocationTest, RowsThatDifferRecycleTheNodesOfTheirValidCells)
{
    allocationsOfRows(0, 4, 4);    // once with each gap
    EXPECT_EQ(0u, allocationsOfRows(4, 100, 4));
    EXPECT_EQ(100u * 24u, m_writer.cells);
}

#include "support/CollectorConfig.h"

#include <string>

using namespace pwr;
using test::FakeOperation;
using test::Names;

namespace {

class ImmediateExecutionTest : public test::CollectorConfig {
protected:
    ImmediateExecutionTest() { m_log.environment().setVerbosity(4); }

    CollectorPlugin::Results m_results;
};

TEST_F(ImmediateExecutionTest, AnOperationGoesToTheCollectorOfItsKind)
{
    ASSERT_EQ(0, load("ALL_FEAT_RESID_OPKIND_CATEG=x\n"));
    FakeOperation operation("OTHER");
    operation.setName("NAME");
    m_other.result = 7;
    EXPECT_EQ(7, Operation::dispatchRead(&operation, "text"));
    EXPECT_EQ(7, Operation::dispatchWrite(&operation, "text"));
    EXPECT_EQ(Names({"read NAME text", "write NAME text"}), m_other.calls);
    EXPECT_EQ(2u, m_log.count("INFO: OK, found collector for operation NAME; now dispatching!\n"));
    EXPECT_TRUE(m_collector.calls.empty());
}

TEST_F(ImmediateExecutionTest, TellsWhyAnOperationCannotBeDispatched)
{
    FakeOperation operation("NONE");
    FakeOperation empty("");
    empty.setName("E");
    EXPECT_EQ(-1, Operation::dispatchRead(&operation, "x"));
    EXPECT_EQ(-1, Operation::dispatchWrite(&empty, "x"));
    ASSERT_EQ(0, load(""));
    EXPECT_EQ(-1, Operation::dispatchWrite(&operation, "x"));
    EXPECT_EQ(-1, Operation::dispatchRead(nullptr, "x"));
    EXPECT_EQ("1ERROR: Trying to do immediate read of operation NONE without a valid parser?!\n"
              "1ERROR: Trying to do immediate write of operation E without a valid packet?!\n"
              "1ERROR: Trying to do immediate write of operation NONE with invalid type NONE?!\n"
              "1ERROR: Trying to do immediate read of operation  without a valid packet?!\n",
              m_log.errors());
}

TEST_F(ImmediateExecutionTest, EntitiesAreNotServed)
{
    FakeOperation operation("OPKIND");
    const EntityHandle* entity = nullptr;
    EXPECT_EQ(-1, Operation::dispatchWrite(&operation, entity));
    try {
        Operation::dispatchRead(&operation, entity);
        FAIL();
    } catch (const std::string& text) {
        EXPECT_EQ("", text);
    }
    EXPECT_EQ("WARNING: pwr::Operation::dispatchWrite functionality is TODO!\n"
              "WARNING: pwr::Operation::dispatchRead functionality is TODO!\n",
              m_log.debug());
}

TEST_F(ImmediateExecutionTest, AMessageIsReadUnlessItWrites)
{
    ASSERT_EQ(0, load("ALL_FEAT_RESID_OPKIND_CATEG=x\nALL_FEAT_RESID_MSG_READ-WHEN=POLL\n"));
    InputMsg& configured = message("ALL", "FEAT");
    EXPECT_EQ(0, configured.execute(m_results));
    EXPECT_EQ(CollectorPlugin::Results({{"read", "RESID"}}), m_results);
    EXPECT_TRUE(m_log.contains("INFO: doing a READ (cmd = 0)\n"));

    InputMsg undecided("M");
    undecided.addOperation(new FakeOperation("OPKIND"));
    EXPECT_EQ(0, undecided.execute(m_results));
    EXPECT_TRUE(m_log.contains("INFO: doing a READ (cmd = 2)\n"));

    undecided.setCommand(QVOpCommand::WRITE);
    m_collector.result = 3;
    EXPECT_EQ(3, undecided.execute(m_results));
    EXPECT_TRUE(m_log.contains("INFO: doing a WRITE (cmd = 1)\n"));
    EXPECT_EQ(Names({"read RESID", "read M", "write M"}), m_collector.calls);
}

TEST_F(ImmediateExecutionTest, TellsWhyAMessageCannotBeExecuted)
{
    InputMsg message("M");
    EXPECT_EQ(-1, message.execute(m_results));
    message.addOperation(new FakeOperation("OPKIND"));
    EXPECT_EQ(-1, message.execute(m_results));
    EXPECT_EQ("WARNING: Message M has no operations defined!\n", m_log.debug());
    EXPECT_EQ("1ERROR: Trying to do immediate read/write of operation OPKIND without a valid parser?!\n",
              m_log.errors());
}

}    // namespace

#include "config/InputMsg.h"

#include "record/Metadata.h"
#include "support/FakeCollector.h"
#include "support/LogCapture.h"
#include "values/EntityHandle.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

using namespace pwr;
using test::FakeOperation;
using test::LogCapture;

namespace {

constexpr const char* AFTER_EXCLUSIVE = "1ERROR: Trying to add Trigger POLL to message M which already has an \"INIT\" "
                                        "or \"REQUIREMENTS\" Trigger; \"INIT\" "
                                        "and \"REQUIREMENTS\" messages cannot be mixed with other messages!\n";
constexpr const char* AFTER_OTHERS =
    "1ERROR: Trying to add Trigger INIT to message M which already has other triggers; \"INIT\", \"FINI\" and "
    "\"REQUIREMENTS\" messages CANNOT be mixed with other messages!\n";

TEST(InputMsgTest, NamesComeFromThePlatformPrefix)
{
    InputMsg message("RESID", 1, 2, 3);
    EXPECT_EQ("_RESID", message.getFullName());
    EXPECT_EQ("", message.getPlatformName());
    EXPECT_EQ("<N/A>", message.getConfigfilePrefix());
    EXPECT_EQ("ANY", message.getCPUString());
    EXPECT_EQ(QVOpCommand::UNDECIDED, message.getCommand());

    message.setPlatformPrefix("PLATA_FEAT");
    EXPECT_EQ("PLATA_FEAT_RESID", message.getFullName());
    EXPECT_EQ("PLATA", message.getPlatformName());
    EXPECT_EQ("FEAT", message.getConfigfilePrefix());

    message.setName("OTHER");
    EXPECT_EQ("PLATA_FEAT_RESID", message.getFullName());
    message.setPlatformPrefix("A_B_C");
    EXPECT_EQ("A_B_C_OTHER", message.getFullName());
    EXPECT_EQ("PLATA", message.getPlatformName());    // not two parts: the old one stays
    EXPECT_EQ("<N/A>", message.getConfigfilePrefix());
}

TEST(InputMsgTest, RefusesWhatItCannotTake)
{
    InputMsg message("M");
    EXPECT_EQ(-1, message.setCPUString("abc"));
    EXPECT_EQ("ANY", message.getCPUString());
    EXPECT_EQ(0, message.setCPUString("0x1F"));
    EXPECT_EQ("0x1F", message.getCPUString());

    const auto* first = reinterpret_cast<const EntityHandle*>(0x10);
    const auto* second = reinterpret_cast<const EntityHandle*>(0x20);
    EXPECT_EQ(0, message.setEntityHandle(first));
    EXPECT_EQ(-1, message.setEntityHandle(second));
    EXPECT_EQ(first, message.getEntityHandle());
}

TEST(InputMsgTest, AnExclusiveTriggerStandsAlone)
{
    LogCapture log;
    InputMsg message("M");
    EXPECT_EQ(0, message.addReadTrigger("POLL"));
    EXPECT_EQ(0, message.addReadTrigger("END"));
    EXPECT_EQ(-1, message.addReadTrigger("INIT"));
    EXPECT_EQ(AFTER_OTHERS, log.errors());
    EXPECT_EQ(PWSet<std::string>({"END", "POLL"}), message.getTriggers());

    log.clear();
    InputMsg exclusive("M");
    EXPECT_EQ(0, exclusive.addReadTrigger("INIT"));
    EXPECT_EQ(0, exclusive.addReadTrigger("INIT"));
    EXPECT_EQ("", log.errors());
    EXPECT_EQ(-1, exclusive.addReadTrigger("POLL"));
    EXPECT_EQ(AFTER_EXCLUSIVE, log.errors());
    EXPECT_EQ(-1, exclusive.addReadTrigger("FINI"));
    EXPECT_EQ(PWSet<std::string>({"INIT"}), exclusive.getTriggers());
}

TEST(InputMsgTest, AMessageHasOneDirectionThatItsOperationsCanDo)
{
    LogCapture log;
    InputMsg message("M");
    EXPECT_EQ(0, message.addWriteTrigger("INIT"));
    EXPECT_EQ(QVOpCommand::WRITE, message.getCommand());
    EXPECT_EQ(-1, message.addReadTrigger("INIT"));

    InputMsg withOperation("M");
    withOperation.addOperation(new FakeOperation("OPKIND"));
    EXPECT_EQ(-1, withOperation.addWriteTrigger("INIT"));
    EXPECT_EQ(QVOpCommand::UNDECIDED, withOperation.getCommand());
    EXPECT_EQ(0, withOperation.addReadTrigger("INIT"));
    EXPECT_EQ(-1, withOperation.addTrigger(QVOpCommand::WRITE, "INIT"));
    EXPECT_FALSE(log.contains("Commands"));
}

TEST(InputMsgTest, OwnsItsOperationsUnlessItForgetsThem)
{
    const int before = FakeOperation::alive();
    auto* kept = new FakeOperation("OPKIND");
    {
        InputMsg message("M");
        message.addOperation(nullptr);
        message.addOperation(kept);
        message.resetOperations();
        message.addOperation(new FakeOperation("OPKIND"));
        EXPECT_EQ(1u, message.getOperationCount());
    }
    EXPECT_EQ(before + 1, FakeOperation::alive());
    delete kept;
}

TEST(InputMsgTest, ACopyHasClonesAndATriggerGroupOfItsOwn)
{
    const int before = FakeOperation::alive();
    {
        InputMsg message("M", "PLATA_FEAT");
        message.addOperation(new FakeOperation("OPKIND"));
        message.addOperation(new FakeOperation("OTHER"));
        message.addReadTrigger("POLL");
        InputMsg copy(message);
        copy.addReadTrigger("END");
        EXPECT_EQ(PWSet<std::string>({"POLL"}), message.getTriggers());
        EXPECT_EQ(PWSet<std::string>({"END", "POLL"}), copy.getTriggers());
        EXPECT_EQ(before + 4, FakeOperation::alive());
        EXPECT_NE(*message.begin(), *copy.begin());
        EXPECT_EQ("OTHER", copy.getOperations().back()->getOperation());

        InputMsg assigned("X");
        assigned.addOperation(new FakeOperation("OPKIND"));
        assigned = copy;
        assigned = *&assigned;
        EXPECT_EQ("PLATA_FEAT_M", assigned.getFullName());
        EXPECT_EQ(QVOpCommand::READ, assigned.getCommand());
        EXPECT_EQ(before + 6, FakeOperation::alive());
    }
    EXPECT_EQ(before, FakeOperation::alive());
}

TEST(InputMsgTest, ARecordCarriesTheOperationsInOrder)
{
    InputMsg message("M", 1, 2, 3);
    message.addOperation(new FakeOperation("OPKIND"));
    auto* constant = new CONSTANTOperation("C");
    constant->set("key", "value");
    message.addOperation(constant);

    const std::unique_ptr<MsgMetadata> record(message.getMetadata());
    EXPECT_EQ(1, record->getPluginID());
    EXPECT_EQ(2, record->getMetricID());
    EXPECT_EQ(3, record->getMsgID());
    EXPECT_EQ("M", record->getMsgName());
    EXPECT_EQ("", record->getCapName());
    ASSERT_EQ(2u, record->getMetaValues().size());
    EXPECT_EQ("OPKIND", record->getMetaValues().front()->getName());
    EXPECT_EQ("CONSTANT", record->getMetaValues().back()->getOperation());
}

}    // namespace

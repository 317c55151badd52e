#include "config/Platform.h"

#include "config/ConfigCap.h"
#include "config/InputMsg.h"
#include "support/FakeCollector.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace pwr;
using test::FakeCollector;
using test::FakeOperation;
using test::LogCapture;

namespace {

using Names = std::vector<std::string>;

class PlatformTest : public testing::Test {
protected:
    // A listed message with one operation.
    InputMsg* message(Platform& platform, const std::string& tag, const std::string& prefix = "FEAT")
    {
        const std::string prefixKey = platform.getName() + "_" + prefix;
        platform.addMessageKey(prefixKey, prefixKey + "_" + tag);
        InputMsg* made = platform.getOrCreateMessage(tag, prefixKey);
        made->addOperation(new FakeOperation("OPKIND"));
        return made;
    }

    Names listed(const Platform& platform, const std::string& prefix = "FEAT") const
    {
        std::vector<InputMsg*> found;
        const int result = platform.getMessagesFor(found, prefix);
        EXPECT_EQ(found.empty() ? -1 : 0, result);
        Names names;
        for (const InputMsg* one : found)
            names.push_back(one->getName());
        return names;
    }

    LogCapture m_log{2};
    Platform m_root{"ALL", nullptr};
    Platform m_platform{"PLATA", &m_root};
};

TEST_F(PlatformTest, MessagesAreMadeOnceAndNumberedWithinTheirPrefix)
{
    InputMsg* first = message(m_platform, "A");
    InputMsg* second = message(m_platform, "B");
    InputMsg* other = message(m_platform, "A", "OTHER");
    EXPECT_EQ(first, m_platform.getOrCreateMessage("A", "PLATA_FEAT"));
    EXPECT_EQ(1, first->getMsgID());
    EXPECT_EQ(2, second->getMsgID());
    EXPECT_EQ(1, other->getMsgID());
    EXPECT_EQ("PLATA_FEAT_B", second->getFullName());
    EXPECT_EQ("PLATA", second->getPlatformName());
}

TEST_F(PlatformTest, AQueryGivesListedMessagesWithOperationsInTheirOrder)
{
    m_log.environment().setVerbosity(4);
    message(m_platform, "Z");
    message(m_platform, "A");
    message(m_platform, "Z");
    m_platform.addMessageKey("PLATA_FEAT", "PLATA_FEAT_BARE");
    m_platform.getOrCreateMessage("BARE", "PLATA_FEAT");
    m_platform.addMessageKey("PLATA_FEAT", "PLATA_FEAT_NEVER-MADE");
    m_platform.getOrCreateMessage("UNLISTED", "PLATA_FEAT")->addOperation(new FakeOperation("OPKIND"));
    EXPECT_EQ(Names({"Z", "A"}), listed(m_platform));
    EXPECT_EQ("3DEBUG: pwr::Platform::getMessagesFor called for prefix FEAT on platform PLATA\n"
              "INFO: not adding message PLATA_FEAT_BARE because it doesn't have any operations!\n",
              m_log.debug());
    m_log.clear();
    EXPECT_EQ(Names(), listed(m_platform, "NONE"));
    EXPECT_TRUE(m_log.contains("3DEBUG: combination of name PLATA prefix NONE was NOT specified in config file!\n"));
}

TEST_F(PlatformTest, FindsAMessageOnTheNearestPlatform)
{
    Platform child("PLATA-B", &m_platform);
    InputMsg* atRoot = message(m_root, "A");
    EXPECT_EQ(atRoot, child.findMessage("FEAT_A"));
    InputMsg* atParent = message(m_platform, "A");
    EXPECT_EQ(atParent, child.findMessage("FEAT_A"));
    child.addMessageKey("PLATA-B_FEAT", "PLATA-B_FEAT_A");
    EXPECT_EQ(atParent, child.findMessage("FEAT_A"));    // named here, but never made
    EXPECT_EQ(nullptr, child.findMessage("FEAT_B"));
}

TEST_F(PlatformTest, HasOneCapabilityForEachPrefix)
{
    ConfigCap* cap = m_platform.getOrCreateCap("FEAT", "PLATA_FEAT");
    EXPECT_EQ("FEAT", cap->getConfigfilePrefix());
    EXPECT_EQ(cap, m_platform.getOrCreateCap("FEAT", "PLATA_FEAT"));
    ASSERT_EQ(1u, m_platform.getCapabilities().size());
    EXPECT_EQ("PLATA_FEAT_FEAT", m_platform.getCapabilities().begin()->first);
}

TEST_F(PlatformTest, AMergedMessageIsReturnedOnceAsTheGroup)
{
    const int before = FakeOperation::alive();
    InputMsg* group = message(m_platform, "GROUP");
    InputMsg* member = message(m_platform, "MEMBER");
    member->addReadTrigger("POLL");
    member->addTracepointName("tp");
    EXPECT_EQ(0, m_platform.appendMessage(group, nullptr, member, nullptr));
    EXPECT_EQ(2u, group->getOperationCount());
    EXPECT_EQ(0u, member->getOperationCount());
    EXPECT_EQ(PWSet<std::string>({"POLL"}), group->getTriggers());
    EXPECT_TRUE(group->getTracepointNames().empty());    // names stay where they are
    EXPECT_EQ(Names({"GROUP"}), listed(m_platform));
    EXPECT_EQ(group, m_platform.getOrCreateMessage("MEMBER", "PLATA_FEAT"));
    EXPECT_EQ(group, m_platform.findMessage("FEAT_MEMBER"));
    EXPECT_EQ(before + 2, FakeOperation::alive());
}

TEST_F(PlatformTest, WhatDoesNotGoTogetherIsNotMerged)
{
    FakeCollector one;
    FakeCollector two;
    InputMsg* group = message(m_platform, "GROUP");
    InputMsg* member = message(m_platform, "MEMBER");
    EXPECT_EQ(-1, m_platform.appendMessage(nullptr, nullptr, member, nullptr));
    EXPECT_EQ(-1, m_platform.appendMessage(group, nullptr, nullptr, nullptr));
    EXPECT_EQ(-1, m_platform.appendMessage(group, &one, member, &two));
    EXPECT_EQ("1ERROR: ERROR appending messages PLATA_FEAT_GROUP and PLATA_FEAT_MEMBER; CANNOT append messages if "
              "collectors are different!\n",
              m_log.errors());

    group->addReadTrigger("POLL");
    member->addReadTrigger("INIT");
    EXPECT_EQ(-1, m_platform.appendMessage(group, &one, member, nullptr));
    EXPECT_TRUE(
        m_log.contains("1ERROR: Msg PLATA_FEAT_GROUP and PLATA_FEAT_MEMBER have incompatible read capabilities!\n"));
    EXPECT_EQ(1u, member->getOperationCount());
    EXPECT_EQ(Names({"GROUP", "MEMBER"}), listed(m_platform));
}

}    // namespace

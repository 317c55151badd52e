#include "values/EntityHandle.h"

#include "plugins/QuorvaneHost.h"
#include "support/TestSession.h"
#include "values/DataHandleProvider.h"
#include "values/Description.h"
#include "values/Quantity.h"

#include <gtest/gtest.h>

#include <utility>
#include <string>
#include <vector>

namespace pwr {
namespace {

const std::string NO_HANDLE = "WARNING: Cannot retrieve a CPU Entity handle until it has been initialized\n";
const std::string NO_COUNT = "WARNING: Cannot retrieve a CPU Entity count until it has been initialized\n";

class EntityHandleTest : public testing::Test {
protected:
    static SystemMetadata systemOf(const std::string& topology, unsigned long long coresPerModule = 0)
    {
        SystemMetadata system = test::makeSystem();
        system.buildTopology(topology, coresPerModule);
        return system;
    }

    static std::string name(const EntityHandle* entity) { return entity ? entity->getQualifiedName() : "(null)"; }

    test::TestSession session;
};

TEST_F(EntityHandleTest, QualifiedNamesEndAtTheSystemOrAtANamelessEntity)
{
    DataHandleProvider::initTopology(systemOf(test::topologyText(1, 1, 1)));
    const EntityHandle* system = EntityHandle::getSystemHandle();
    EXPECT_EQ("SYSTEM", name(system));
    EXPECT_EQ("disk", name(EntityHandle::create("disk", system)));

    const EntityHandle* root = EntityHandle::create("x", nullptr);
    EXPECT_EQ("x", name(root));
    EXPECT_EQ(nullptr, root->getParent());
    EXPECT_EQ("x", root->getShortName());
    EXPECT_EQ("Y", EntityHandle::create("y", "Y", root)->getShortName());
    EXPECT_EQ("x/y", name(EntityHandle::create(Description("y", ""), root)));
    const EntityHandle* nameless = EntityHandle::create("", root);
    EXPECT_EQ("z", name(EntityHandle::create("z", nameless)));
}

TEST_F(EntityHandleTest, CyclesAreRefused)
{
    EntityHandle* top = EntityHandle::create("top", nullptr);
    EntityHandle* middle = EntityHandle::create("middle", top);
    EntityHandle* leaf = EntityHandle::create("leaf", middle);
    EntityHandle* other = EntityHandle::create("other", nullptr);
    const std::pair<EntityHandle*, EntityHandle*> refused[] = {{leaf, top}, {leaf, middle}, {leaf, leaf}, {top, top}};
    for (const auto& [parent, child] : refused) {
        session.log.clear();
        EXPECT_EQ(1, QuorvaneHost::addChild(parent, child));
        EXPECT_EQ("WARNING: Could not add relationship because cycle detected\n", session.log.debug());
    }
    EXPECT_EQ("top/middle/leaf", name(leaf));
    EXPECT_EQ(nullptr, top->getParent());

    session.log.clear();
    EXPECT_EQ(0, QuorvaneHost::addChild(other, top));
    EXPECT_EQ("other/top/middle/leaf", name(leaf));
    EXPECT_EQ(1, QuorvaneHost::addChild(leaf, other));
    EXPECT_EQ(1, QuorvaneHost::addChild(nullptr, leaf));
    EXPECT_EQ(1, QuorvaneHost::addChild(leaf, nullptr));
}

TEST_F(EntityHandleTest, BeforeInitTopologyThereIsNothingButAWarning)
{
    const EntityHandle* (*const byProcessor[])(int) = {EntityHandle::getCPUPackageHandle,
                                                       EntityHandle::getCPUModuleHandle, EntityHandle::getCPUCoreHandle,
                                                       EntityHandle::getCPUThreadHandle};
    int (*const counts[])() = {EntityHandle::getCPUPackageCount, EntityHandle::getCPUModuleCount,
                               EntityHandle::getCPUCoreCount, EntityHandle::getCPUThreadCount};
    const TNode node(0, top_node_type::CORE);
    for (const auto& handle : byProcessor)
        EXPECT_EQ(nullptr, handle(0));
    EXPECT_EQ(nullptr, EntityHandle::getSystemHandle());
    EXPECT_EQ(nullptr, EntityHandle::getCPUEntityHandle(nullptr));
    EXPECT_EQ(nullptr, EntityHandle::getCPUEntityHandle(&node));
    EXPECT_EQ(7u, session.log.count(NO_HANDLE));
    for (const auto& count : counts)
        EXPECT_EQ(-1, count());
    EXPECT_EQ(4u, session.log.count(NO_COUNT));
}

TEST_F(EntityHandleTest, TheTreeMirrorsCoresAndThreads)
{
    const SystemMetadata system = systemOf(test::topologyText(1, 2, 2));
    EXPECT_EQ(0, DataHandleProvider::initTopology(system));
    EXPECT_EQ("CPU/Package_0/Core_0/Thread_0", name(EntityHandle::getCPUThreadHandle(0)));
    EXPECT_EQ("CPU/Package_0/Core_1/Thread_3", name(EntityHandle::getCPUThreadHandle(3)));
    EXPECT_EQ("CPU/Package_0/Core_1", name(EntityHandle::getCPUCoreHandle(3)));
    EXPECT_EQ(EntityHandle::getCPUCoreHandle(2), EntityHandle::getCPUCoreHandle(3));
    EXPECT_EQ("CPU/Package_0", name(EntityHandle::getCPUPackageHandle(3)));
    for (const int none : {-1, 4}) {
        EXPECT_EQ(nullptr, EntityHandle::getCPUThreadHandle(none));
        EXPECT_EQ(nullptr, EntityHandle::getCPUPackageHandle(none));
    }
    EXPECT_EQ(nullptr, EntityHandle::getCPUModuleHandle(0));

    std::vector<const TNode*> cores;
    system.getCPUTopology().getAllCores(cores);
    ASSERT_EQ(2u, cores.size());
    EXPECT_EQ(EntityHandle::getCPUCoreHandle(3), EntityHandle::getCPUEntityHandle(cores[1]));
    EXPECT_EQ("CPU", name(EntityHandle::getCPUEntityHandle(nullptr)));
    TNode stranger(0, top_node_type::CORE);
    int number = 1000;
    stranger.setUniqueID(number);
    EXPECT_EQ(nullptr, EntityHandle::getCPUEntityHandle(&stranger));
    EXPECT_EQ("", session.log.debug());

    EXPECT_EQ(1, EntityHandle::getCPUPackageCount());
    EXPECT_EQ(0, EntityHandle::getCPUModuleCount());
    EXPECT_EQ(2, EntityHandle::getCPUCoreCount());
    EXPECT_EQ(4, EntityHandle::getCPUThreadCount());
}

TEST_F(EntityHandleTest, EntitiesAreMadeInTheOrderOfTheTree)
{
    DataHandleProvider::addStream(session.stream);
    session.writer.clear();
    session.log.environment().setVerbosity(4);
    session.log.clear();
    DataHandleProvider::initTopology(systemOf(test::topologyText(2, 1, 2)));
    std::string names;
    for (const auto& ids : session.writer.ids) {
        const DataHandle* handle = nullptr;
        ASSERT_EQ(1u, ids.size());
        ASSERT_EQ(0, DataHandle::get(ids[0], handle));
        names += handle->getName() + " ";
    }
    EXPECT_EQ("SYSTEM CPU Package_0 Core_0 Thread_0 Thread_1 Package_1 Core_0 Thread_2 Thread_3 ", names);
    EXPECT_TRUE(session.log.contains("INFO: node name = Thread_3\n"));
    EXPECT_EQ(8u, session.log.count(" maps to ENTITY "));
}

TEST_F(EntityHandleTest, ModulesAndDiesStandBetweenPackageAndCore)
{
    // Two packages of four cores, cores in modules of two.
    std::string cores;
    for (int i = 0; i < 8; ++i) {
        cores += std::to_string(i) + ' ' + std::to_string(i / 4) + ' ' + std::to_string(i % 4) + " -1 ";
    }
    DataHandleProvider::initTopology(systemOf(cores, 2));
    EXPECT_EQ("CPU/Package_1/Module_1/Core_3/Thread_7", name(EntityHandle::getCPUThreadHandle(7)));
    EXPECT_EQ("CPU/Package_1/Module_0", name(EntityHandle::getCPUModuleHandle(5)));
    EXPECT_EQ(2, EntityHandle::getCPUPackageCount());
    EXPECT_EQ(4, EntityHandle::getCPUModuleCount());
    EXPECT_EQ(8, EntityHandle::getCPUCoreCount());

    // The same cores, one die each pair.
    DataHandleProvider::resetTopology(systemOf("0 0 0 0 1 0 1 0 2 0 2 1 3 0 3 1"));
    EXPECT_EQ("CPU/Package_0/Die_1/Core_2/Thread_2", name(EntityHandle::getCPUThreadHandle(2)));
    EXPECT_EQ(nullptr, EntityHandle::getCPUModuleHandle(2));
    EXPECT_EQ(0, EntityHandle::getCPUModuleCount());
    EXPECT_EQ(4, EntityHandle::getCPUCoreCount());
    EXPECT_EQ(4, EntityHandle::getCPUThreadCount());
}

TEST_F(EntityHandleTest, ResetMakesNewEntitiesAndKeepsTheOldOnes)
{
    const SystemMetadata system = systemOf(test::topologyText(1, 1, 1));
    DataHandleProvider::initTopology(system);
    const EntityHandle* old = EntityHandle::getCPUThreadHandle(0);
    EXPECT_EQ(0, DataHandleProvider::initTopology(systemOf(test::topologyText(2, 2, 2))));
    EXPECT_EQ(old, EntityHandle::getCPUThreadHandle(0));
    EXPECT_EQ(1, EntityHandle::getCPUThreadCount());

    DataHandleProvider::addStream(session.stream);
    session.writer.clear();
    EXPECT_EQ(0, DataHandleProvider::resetTopology(system));
    EXPECT_EQ(5u, session.writer.ids.size());
    const EntityHandle* fresh = EntityHandle::getCPUThreadHandle(0);
    EXPECT_LT(old->getId(), fresh->getId());
    EXPECT_EQ(1, EntityHandle::getCPUThreadCount());
    const DataHandle* handle = nullptr;
    EXPECT_EQ(0, DataHandle::get(old->getId(), handle));
    EXPECT_EQ("CPU/Package_0/Core_0/Thread_0", handle->getQualifiedName());
    EXPECT_EQ("CPU/Package_0/Core_0/Thread_0", name(fresh));
}

TEST_F(EntityHandleTest, AnUnnumberedTreeDoesNotTakeThePlaceOfTheCpu)
{
    SystemMetadata system = test::makeSystem();
    ASSERT_TRUE(system.cpuTopology.addNode(0, 0, -1, 0));
    EXPECT_EQ(0, DataHandleProvider::initTopology(system));
    EXPECT_EQ("CPU", name(EntityHandle::getCPUEntityHandle(nullptr)));
    EXPECT_EQ(1, EntityHandle::getCPUThreadCount());

    system.buildTopology("", 0);    // numbers what is there
    DataHandleProvider::resetTopology(system);
    EXPECT_EQ("CPU/Package_0/Core_0/Thread_0", name(EntityHandle::getCPUThreadHandle(0)));
}

TEST_F(EntityHandleTest, ALogicalProcessorListedTwiceKeepsItsFirstCore)
{
    DataHandleProvider::initTopology(systemOf("0 0 0 -1 0 0 1 -1"));
    EXPECT_EQ("CPU/Package_0/Core_0", name(EntityHandle::getCPUCoreHandle(0)));
    EXPECT_EQ(2, EntityHandle::getCPUCoreCount());
    EXPECT_EQ(2, EntityHandle::getCPUThreadCount());
}

TEST_F(EntityHandleTest, WithoutEnvironmentTheProviderReturnsOne)
{
    const SystemMetadata system = systemOf(test::topologyText(1, 1, 1));
    PluginEnvironment* environment = g_pluginEnvironment;
    g_pluginEnvironment = nullptr;
    EXPECT_EQ(1, DataHandleProvider::initTopology(system));
    EXPECT_EQ(1, DataHandleProvider::resetTopology(system));
    EXPECT_EQ(1, DataHandleProvider::addStream(session.stream));
    EXPECT_EQ(nullptr, EntityHandle::getSystemHandle());
    EXPECT_EQ(-1, EntityHandle::getCPUThreadCount());
    EXPECT_EQ("x", name(EntityHandle::create("x", nullptr)));
    g_pluginEnvironment = environment;
    EXPECT_TRUE(session.writer.ids.empty());
}

TEST_F(EntityHandleTest, AnotherEnvironmentsProviderIsNotTakenForThisOnes)
{
    const SystemMetadata system = systemOf(test::topologyText(1, 1, 1));
    DataHandleProvider::initTopology(system);
    {
        test::LogCapture other;
        EXPECT_EQ(nullptr, EntityHandle::getSystemHandle());
        DataHandleProvider::initTopology(system);
        EXPECT_NE(nullptr, EntityHandle::getSystemHandle());
    }
    EXPECT_EQ(nullptr, EntityHandle::getSystemHandle());    // the newer provider took its place
    EXPECT_EQ(0, DataHandleProvider::initTopology(system));
    EXPECT_NE(nullptr, EntityHandle::getSystemHandle());
}

TEST_F(EntityHandleTest, ThousandsOfEntitiesInOneChain)
{
    EntityHandle* const first = EntityHandle::create("", nullptr);
    EntityHandle* last = first;
    for (int i = 0; i < 20000; ++i)
        last = EntityHandle::create("e", last);
    EXPECT_EQ(1, QuorvaneHost::addChild(last, first));
    EXPECT_EQ(20000u * 2 - 1, name(last).size());
}

}    // namespace
}    // namespace pwr

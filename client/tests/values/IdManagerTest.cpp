#include "values/IdManager.h"

#include "runtime/os/Os.h"
#include "support/LogCapture.h"
#include "values/EntityHandle.h"
#include "values/Quantity.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace pwr {
namespace {

class IdManagerTest : public testing::Test {
protected:
    // The system gives ranges of addresses, but not where the address sanitizer watches each object.
    static bool hasRanges() { return os::current().memory->reserve(1 << 20) != nullptr; }

    test::LogCapture log;
};

TEST_F(IdManagerTest, AddressOrderIsCreationOrderInEveryCycle)
{
    if (!hasRanges()) GTEST_SKIP() << "no address ranges here";
    const Quantity* first = nullptr;
    for (int cycle = 0; cycle < 3; ++cycle) {
        UniqueId::initialize();
        if (cycle == 0) first = Quantity::frequency();
        EXPECT_EQ(first, Quantity::frequency());
        std::less<const UniqueId*> before;
        const UniqueId* previous = Quantity::current();
        for (int i = 0; i < 20000; ++i) {    // more than one piece of the range
            const UniqueId* next = i % 3 != 0 ? static_cast<const UniqueId*>(EntityHandle::create("e", nullptr))
                                              : NameValuePair::create(1, "v", "i");
            ASSERT_TRUE(before(previous, next));
            previous = next;
        }
        UniqueId::destroy();
    }
}

class StingyMemory : public os::Memory {
public:
    void* reserve(std::size_t) override { return nullptr; }
    bool commit(void*, std::size_t) override { return false; }
};

TEST_F(IdManagerTest, WithoutMoreRangeMemoryTheHeapServes)
{
    StingyMemory stingy;
    os::Memory* real = os::current().memory;
    UniqueId::initialize();
    os::current().memory = &stingy;
    std::vector<const EntityHandle*> entities;
    for (int i = 0; i < 100000; ++i)
        entities.push_back(EntityHandle::create(std::to_string(i), nullptr));
    os::current().memory = real;
    for (std::size_t i = 0; i < entities.size(); ++i)
        ASSERT_EQ(std::to_string(i), entities[i]->getName());
    UniqueId::destroy();
}

TEST_F(IdManagerTest, ANumberThatIsTakenKeepsItsFirstObject)
{
    UniqueId::initialize();
    IdManager* registry = IdManager::instance();
    ASSERT_NE(nullptr, registry);
    registry->add(std::make_unique<Quantity>(*Quantity::power()));
    EXPECT_EQ(Quantity::power(), registry->find(Quantity::power()->getId()));
    UniqueId::destroy();
    EXPECT_EQ(nullptr, IdManager::instanceIfAny());
    EXPECT_EQ("", log.debug());
    EXPECT_EQ(nullptr, IdManager::instance());
    EXPECT_EQ("WARNING: ID Manager wasn't initialized!", log.debug());
}

}    // namespace
}    // namespace pwr

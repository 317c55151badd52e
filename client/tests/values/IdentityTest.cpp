#include "output/WriterMessage.h"
#include "plugins/QuorvaneHost.h"
#include "support/TestSession.h"
#include "values/DataHandleProvider.h"
#include "values/Description.h"
#include "values/EntityHandle.h"
#include "values/Handles.h"
#include "values/Process.h"
#include "values/Quantity.h"

#include <gtest/gtest.h>

#include <functional>
#include <iterator>
#include <string>
#include <vector>

namespace pwr {
namespace {

using Ids = std::vector<unsigned long long>;

const std::string NO_REGISTRY = "WARNING: ID Manager wasn't initialized!";

class IdentityTest : public testing::Test {
protected:
    test::TestSession session;
};

TEST_F(IdentityTest, DefaultQuantitiesAreNumberedInTheirOrder)
{
    const struct {
        const Quantity* quantity;
        QuantityType type;
        const char* title;
        const Quantity* rate;
        double multiplier;
    } cases[] = {
        {Quantity::frequency(), QuantityType{2}, "Frequency (MHz)", nullptr, 1.0},
        {Quantity::time(), QuantityType{1}, "Time (ticks)", Quantity::frequency(), 1e-6},
        {Quantity::bandwidth(), QuantityType{4}, "Bandwidth (MB/s)", nullptr, 1.0},
        {Quantity::data(), QuantityType{3}, "Data (bytes)", Quantity::bandwidth(), 1e-6},
        {Quantity::power(), QuantityType{5}, "Power (mW)", nullptr, 1.0},
        {Quantity::energy(), QuantityType{6}, "Energy (mJ)", Quantity::power(), 1.0},
        {Quantity::throughput(), QuantityType{13}, "Throughput (Ops/sec)", nullptr, 1.0},
        {Quantity::operations(), QuantityType{12}, "Operations (OpsCount)", Quantity::throughput(), 1.0},
        {Quantity::temperature(), QuantityType{7}, "Temperature (oC)", nullptr, 1.0},
        {Quantity::voltage(), QuantityType{10}, "Voltage (mV)", nullptr, 1.0},
        {Quantity::current(), QuantityType{11}, "Current (mA)", nullptr, 1.0},
        {Quantity::create(QuantityType::DUMMY, "x", "x", nullptr, 1.0), QuantityType{0}, "ERROR (ERROR)", nullptr, 1.0},
    };
    unsigned long long expectedId = Quantity::frequency()->getId();
    for (const auto& c : cases) {
        std::string title;
        c.quantity->toTitleString(title);
        EXPECT_EQ(c.title, title);
        EXPECT_EQ(c.type, c.quantity->toQuantity()) << title;
        EXPECT_EQ(expectedId++, c.quantity->getId()) << title;
        EXPECT_EQ(UniqueIdType::QUANTITY, c.quantity->getIdType());

        const Quantity* rate = c.quantity;
        double multiplier = 7;
        EXPECT_EQ(c.rate != nullptr ? 0 : 1, c.quantity->getRateConversion(rate, multiplier)) << title;
        EXPECT_EQ(c.rate, rate) << title;
        EXPECT_EQ(c.multiplier, multiplier) << title;
    }
}

TEST_F(IdentityTest, CustomQuantitiesStartAtTypeEight)
{
    for (unsigned int type = 0; type < 8; ++type) {
        session.log.clear();
        const Quantity* refused = Quantity::create(QuantityType{type}, "Fan", "rpm", nullptr, 1.0);
        EXPECT_EQ("ERROR", refused->toQuantityString()) << type;
        EXPECT_EQ("WARNING: Can't create a custom quantity of specified type\n", session.log.debug()) << type;
    }
    const Quantity* speed = Quantity::create(QuantityType{8}, "Speed", "", nullptr, 1.0);
    const Quantity* volts = Quantity::create(QuantityType::VOLTAGE, "Volts", "V", speed, 2.5);
    EXPECT_NE(Quantity::voltage(), volts);
    EXPECT_EQ(speed->getId() + 1, volts->getId());
    std::string title = "before";
    speed->toTitleString(title);
    EXPECT_EQ("Speed", title);
    const Quantity* rate = nullptr;
    double multiplier = 0;
    EXPECT_EQ(0, volts->getRateConversion(rate, multiplier));
    EXPECT_EQ(speed, rate);
    EXPECT_EQ(2.5, multiplier);
}

TEST_F(IdentityTest, ACopyAnswersToTheNumberOfItsSourceAndTakesNone)
{
    const Quantity* first = Quantity::create(QuantityType{8}, "a", "", nullptr, 1.0);
    Quantity copy = *first;
    EXPECT_EQ(first->getId(), copy.getId());
    copy = *Quantity::power();
    EXPECT_EQ(Quantity::power()->getId(), copy.getId());
    EXPECT_EQ("mW", copy.toUnitsString());
    EXPECT_EQ(first->getId() + 1, Quantity::create(QuantityType{8}, "b", "", nullptr, 1.0)->getId());
}

TEST_F(IdentityTest, LookUpsTellHandlesFromOthers)
{
    const EntityHandle* entity = EntityHandle::create("x", nullptr);
    const DataHandle* handle = nullptr;
    EXPECT_EQ(0, DataHandle::get(entity->getId(), handle));
    EXPECT_EQ(entity, handle);
    EXPECT_EQ("", session.log.debug());

    EXPECT_EQ(1, DataHandle::get(~0ULL, handle));
    EXPECT_EQ(entity, handle);
    EXPECT_EQ("WARNING: Handle id 18446744073709551615 not found in UniqueId map\n", session.log.debug());

    session.log.clear();
    EXPECT_EQ(1, DataHandle::get(Quantity::power()->getId(), handle));
    EXPECT_EQ(nullptr, handle);
    EXPECT_EQ("WARNING: UniqueId isn't a DataHandle type\n", session.log.debug());
}

TEST_F(IdentityTest, ASecondInitializeKeepsTheRegistryAndDestroyNeverRewindsTheNumbers)
{
    const Quantity* power = Quantity::power();
    const unsigned long long last = EntityHandle::create("x", nullptr)->getId();
    UniqueId::initialize();
    EXPECT_EQ(power, Quantity::power());
    const DataHandle* handle = nullptr;
    EXPECT_EQ(0, DataHandle::get(last, handle));

    UniqueId::destroy();
    UniqueId::destroy();
    UniqueId::initialize();
    EXPECT_EQ(last + 1, Quantity::frequency()->getId());
    EXPECT_EQ(1, DataHandle::get(last, handle));
}

TEST_F(IdentityTest, NothingDanglesAfterDestroy)
{
    DataHandleProvider::initTopology(test::makeSystem());
    ProcessManager::create(ProcessDescription(7, 1, 1, "pending"));
    ProcessManager::create(ProcessDescription(8, 1, 1, "made"));
    Process::get(8);
    EXPECT_NE(nullptr, session.log.environment().getTopologyManager());

    UniqueId::destroy();
    EXPECT_EQ(nullptr, session.log.environment().getTopologyManager());
    EXPECT_EQ(nullptr, Quantity::power());
    EXPECT_EQ(nullptr, EntityHandle::getSystemHandle());

    UniqueId::initialize();
    EXPECT_EQ("unknown", Process::get(7)->getPath());
    EXPECT_EQ("unknown", Process::get(8)->getPath());
}

TEST_F(IdentityTest, WithoutRegistryFactoriesWarnAndGiveNull)
{
    UniqueId::destroy();
    const std::function<const void*()> factories[] = {
        [] { return Quantity::create(QuantityType{8}, "x", "", nullptr, 1.0); },
        [] { return Attribute::create("x", nullptr, AttributeType{9}); },
        [] { return Attribute::get(AttributeType::IRQ); },
        [] { return Field::create(FieldDescription("x", "")); },
        [] { return State::create(StateDescription("x", "")); },
        [] { return Event::create(EventDescription("x", "")); },
        [] { return DataDescriptor::create(DataDescriptorBuilder("x", "")); },
        [] { return NameValuePair::create(1, "x", "y"); },
        [] { return EntityHandle::create("x", nullptr); },
        [] { return Process::get(1); },
        [] { return Thread::get(1); },
    };
    for (std::size_t i = 0; i < std::size(factories); ++i) {
        session.log.clear();
        EXPECT_EQ(nullptr, factories[i]()) << i;
        EXPECT_EQ(NO_REGISTRY, session.log.debug()) << i;
    }
}

TEST_F(IdentityTest, WithoutRegistryLookUpsAndStreamReturnOne)
{
    UniqueId::destroy();
    const DataHandle* handle = nullptr;
    EXPECT_EQ(1, DataHandle::get(0, handle));
    EXPECT_EQ(1, DataHandleProvider::addStream(session.stream));
    EXPECT_EQ(1, DataHandleProvider::initTopology(test::makeSystem()));
    EXPECT_EQ(1, DataHandleProvider::resetTopology(test::makeSystem()));
    EXPECT_EQ(nullptr, session.log.environment().getTopologyManager());
    EXPECT_EQ("", session.log.debug());
}

TEST_F(IdentityTest, WritersHearOfAllObjectsAtOnceAndThenOfEachNewOne)
{
    const unsigned long long first = Quantity::frequency()->getId();
    const unsigned long long entity = EntityHandle::create("x", nullptr)->getId();
    EXPECT_EQ(1, DataHandleProvider::addStream(nullptr));
    EntityHandle::create("y", nullptr);
    EXPECT_TRUE(session.writer.ids.empty());

    EXPECT_EQ(0, DataHandleProvider::addStream(session.stream));
    Ids all;
    for (unsigned long long id = first; id <= entity + 1; ++id)
        all.push_back(id);
    EXPECT_EQ(std::vector<Ids>{all}, session.writer.ids);

    session.writer.clear();
    const Ids made{EntityHandle::create("z", nullptr)->getId(),
                   Quantity::create(QuantityType{8}, "q", "", nullptr, 1.0)->getId(),
                   Field::create(FieldDescription("f", ""))->getId()};
    EXPECT_EQ((std::vector<Ids>{{made[0]}, {made[1]}, {made[2]}}), session.writer.ids);
}

// A writer that makes an object of its own when it first hears of others.
class CuriousWriter : public test::RecordingWriter {
public:
    const EntityHandle* own = nullptr;

private:
    int writeMessage(const IdMessage& message) override
    {
        std::vector<unsigned long long> announced;
        for (const UniqueId* object : message)
            announced.push_back(object->getId());
        ids.push_back(announced);
        if (own == nullptr) own = EntityHandle::create("writer", nullptr);
        return 0;
    }
};

TEST_F(IdentityTest, AnObjectMadeWhileTheStreamIsAddedIsAnnouncedOnce)
{
    CuriousWriter curious;
    session.writers.insert(&curious);
    DataHandleProvider::addStream(session.stream);
    ASSERT_NE(nullptr, curious.own);
    EXPECT_EQ(2u, session.writer.ids.size());
    EXPECT_EQ(Ids{curious.own->getId()}, curious.ids.back());
    EXPECT_EQ(Ids{curious.own->getId()}, session.writer.ids.back());
    QuorvaneHost::destroyWriterStream(session.stream);
    session.writers.erase(&curious);
    session.stream = QuorvaneHost::createWriterStream(session.writers);
}

}    // namespace
}    // namespace pwr

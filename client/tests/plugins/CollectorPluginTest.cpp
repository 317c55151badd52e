#include "plugins/CollectorPlugin.h"

#include "config/Operation.h"
#include "record/CollectionData.h"
#include "record/Clocks.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

class QVBuffer {};    // the host's

using namespace pwr;

namespace {

using Names = std::vector<std::string>;

// Writes its kind down when it is deleted.
class TracedOperation : public Operation {
public:
    TracedOperation(const std::string& kind, Names& deleted) : Operation(kind), m_deleted(deleted) {}
    ~TracedOperation() override { m_deleted.push_back(getOperation()); }
    int set(const std::string&, const std::string&) override { return 0; }
    OperationMetadata* getOperationMetadata() const override { return nullptr; }
    Operation* clone() const override { return nullptr; }

private:
    Names& m_deleted;
};

// Gathers nothing, and overrides nothing it need not.
class FakeCollector : public CollectorPlugin {
public:
    explicit FakeCollector(QVClockSource* clock = nullptr) : CollectorPlugin("collector") { m_clockSource = clock; }
    ~FakeCollector() override = default;
    int startCollection(const std::vector<InputMsg*>&, SystemMetadata&) override { return 0; }
    int stopCollection(CollectionData&) override { return 0; }
    int pauseCollection() override { return 0; }
    int resumeCollection() override { return 0; }
    int getCollectionResults(QVBuffer&) override { return 0; }
    using CollectorPlugin::addOperation;
    using CollectorPlugin::doImmediateRead;
    int doImmediateRead(const InputMsg*, Results&) override { return 0; }
};

TEST(CollectorPluginTest, OffersNothingUnlessOverridden)
{
    FakeCollector collector;
    CollectorPlugin& plugin = collector;
    QVBuffer buffer;
    CollectionData summary;
    EXPECT_EQ(1, plugin.continuousCollectionTick());
    EXPECT_FALSE(plugin.getContinuousResult(buffer, summary));
    EXPECT_TRUE(plugin.canCollectMessage(nullptr));
    EXPECT_EQ(-1, plugin.doImmediateRead(nullptr, static_cast<const EntityHandle*>(nullptr)));
    EXPECT_EQ(-1, plugin.doImmediateRead(nullptr, "text"));
    EXPECT_EQ(-1, plugin.doImmediateWrite(nullptr));
    EXPECT_EQ(-1, plugin.doImmediateWrite(nullptr, "text"));
    EXPECT_FALSE(plugin.doesSupportLowOverhead());
    EXPECT_EQ(nullptr, plugin.getClockSource());
    EXPECT_TRUE(plugin.getSupportedOperations().empty());
}

TEST(CollectorPluginTest, OwnsItsOperationsAndDeletesThemBackToFront)
{
    Names deleted;
    {
        FakeCollector collector;
        const auto* first = new TracedOperation("FIRST", deleted);
        const auto* second = new TracedOperation("SECOND", deleted);
        collector.addOperation(first);
        collector.addOperation(nullptr);
        collector.addOperation(second);
        EXPECT_EQ((std::vector<const Operation*>{first, second}), collector.getSupportedOperations());
        EXPECT_TRUE(deleted.empty());
    }
    EXPECT_EQ((Names{"SECOND", "FIRST"}), deleted);
}

}    // namespace

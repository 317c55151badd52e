#include "plugins/MetricPlugin.h"

#include "plugins/QuorvaneHost.h"
#include "record/SystemMetadata.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <utility>
#include <vector>

using namespace pwr;
using Code = MetricPlugin::ProcessMessageCode;
using Reason = Plugin::ResetReason;

namespace {

class FakeMetricPlugin : public MetricPlugin {
public:
    FakeMetricPlugin() : MetricPlugin("uuid") { setSID(7); }
    ~FakeMetricPlugin() override = default;
    int initialize(const SystemMetadata&) override { return 0; }
    int finalize(const SystemMetadata&) override { return 0; }
    int processMessage_i(const SystemMetadata&, const qv_driver_msg* message) override
    {
        processed.push_back(message);
        return result;
    }

    int result = 0;
    std::vector<const qv_driver_msg*> processed;
};

// Deals with resets itself.
class CountingPlugin : public FakeMetricPlugin {
public:
    ~CountingPlugin() override = default;
    ResetReturnCode reset(ResetReason reason, unsigned long long tsc, const SystemMetadata& system) override
    {
        reasons.push_back(reason);
        lastTsc = tsc;
        lastSystem = &system;
        return answer;
    }

    ResetReturnCode answer = ResetReturnCode::PROCESS;
    std::vector<ResetReason> reasons;
    unsigned long long lastTsc = 0;
    const SystemMetadata* lastSystem = nullptr;
};

qv_driver_msg makeMessage(unsigned long long tsc)
{
    return {tsc, 0xFFFF, 1, 2, 3};
}

// An environment in which the message of tick 100 follows a reset that was recorded in `state`.
class ResetTest : public testing::Test {
protected:
    void recordReset(unsigned int state)
    {
        m_log.environment().addSystemStateEvent(50, state);
        m_log.environment().checkAndRecordReset({1, 2, 3}, 50);
        m_log.environment().checkAndRecordReset({1, 2, 3}, 100);
    }
    Code process(MetricPlugin& plugin) { return QuorvaneHost::processMessage(plugin, m_system, &m_message); }

    test::LogCapture m_log{4};
    SystemMetadata m_system;
    qv_driver_msg m_message = makeMessage(100);
};

TEST_F(ResetTest, WithoutOneTheMessageIsProcessed)
{
    CountingPlugin plugin;
    EXPECT_EQ(Code::PROCESSED, process(plugin));
    plugin.result = -1;
    EXPECT_EQ(Code::FAILED, process(plugin));
    plugin.result = 1;
    EXPECT_EQ(Code::FAILED, process(plugin));
    EXPECT_EQ(std::vector<const qv_driver_msg*>(3, &m_message), plugin.processed);
    EXPECT_TRUE(plugin.reasons.empty());
    EXPECT_EQ("", m_log.debug());
}

TEST_F(ResetTest, DropsTheMessageByDefault)
{
    recordReset(4);
    FakeMetricPlugin plugin;
    plugin.result = -1;
    EXPECT_EQ(Code::RESET, process(plugin));
    EXPECT_TRUE(plugin.processed.empty());
    EXPECT_EQ("INFO: 100 is a reset TSC (4)!\n", m_log.debug());
}

TEST_F(ResetTest, StateBecomesTheReason)
{
    const std::pair<unsigned int, unsigned int> cases[] = {{1, 0}, {4, 1}, {5, 2}, {2, 5}, {3, 5}, {6, 5}, {~0U, 5}};
    CountingPlugin plugin;
    for (const auto& c : cases) {
        recordReset(c.first);
        EXPECT_EQ(Code::PROCESSED, process(plugin));
        EXPECT_EQ(c.second, static_cast<unsigned int>(plugin.reasons.back())) << c.first;
    }
    EXPECT_EQ(100u, plugin.lastTsc);
    EXPECT_EQ(&m_system, plugin.lastSystem);
    EXPECT_EQ(std::size(cases), plugin.processed.size());
}

TEST_F(ResetTest, PluginDecidesAboutTheMessage)
{
    recordReset(5);
    CountingPlugin plugin;
    plugin.result = 3;
    EXPECT_EQ(Code::FAILED, process(plugin));
    plugin.answer = static_cast<Plugin::ResetReturnCode>(9);
    EXPECT_EQ(Code::RESET, process(plugin));
    EXPECT_EQ(1u, plugin.processed.size());
}

TEST_F(ResetTest, IsOfExactlyThisMessage)
{
    recordReset(4);
    CountingPlugin plugin;
    const qv_driver_msg others[] = {{101, 0, 1, 2, 3}, {100, 0, 0, 2, 3}, {100, 0, 1, 0, 3}, {100, 0, 1, 2, 0}};
    for (const qv_driver_msg& message : others)
        EXPECT_EQ(Code::PROCESSED, QuorvaneHost::processMessage(plugin, m_system, &message));
    EXPECT_TRUE(plugin.reasons.empty());
}

TEST_F(ResetTest, MessageIsReadAtItsOffsetsAnywhereInABuffer)
{
    recordReset(4);
    CountingPlugin plugin;
    const char bytes[] = "?\x64\0\0\0\0\0\0\0\xEE\xEE\x01\x02\x03payload";
    EXPECT_EQ(Code::PROCESSED,
              QuorvaneHost::processMessage(plugin, m_system, reinterpret_cast<const qv_driver_msg*>(bytes + 1)));
    EXPECT_EQ(std::vector<Reason>{Reason::STATE_SUSPENDED}, plugin.reasons);
}

TEST_F(ResetTest, NullMessageAndNullEnvironmentKnowNoReset)
{
    recordReset(4);
    CountingPlugin plugin;
    EXPECT_EQ(Code::PROCESSED, QuorvaneHost::processMessage(plugin, m_system, nullptr));
    g_pluginEnvironment = nullptr;
    EXPECT_EQ(Code::PROCESSED, process(plugin));
    EXPECT_TRUE(plugin.reasons.empty());
    EXPECT_EQ((std::vector<const qv_driver_msg*>{nullptr, &m_message}), plugin.processed);
}

TEST(MetricPluginTest, MetadataIsLoggedByItsKind)
{
    MsgMetadata message(1, 2, 3);
    message.addMetaValue(new OperationMetadata("freq", "SYSFS", 8));
    message.addMetaValue(new OperationMetadata("temp", "PROCFS", 0));
    MetricMetadata metric(1, 2);
    metric.addValue("unit", "mW");
    metric.addValue("", "");
    const SystemMetadata system;
    const CollectorMetadata collector("c");
    const std::string head = "3DEBUG: Metric plugin 7 received a metadata msg of type ";
    const std::string warning = "WARNING: ERROR: unsupported metadata type ";
    const struct {
        const Metadata& metadata;
        int result;
        std::string text;
    } cases[] = {
        {message, 0,
         head + "MSG\n3DEBUG: \tValue: Operation Meta: Name = freq, Operation = SYSFS, Size = 8\n"
                "3DEBUG: \tValue: Operation Meta: Name = temp, Operation = PROCFS, Size = 0\n"},
        {metric, 0, head + "METRIC\n3DEBUG: \tValue: unit=mW\n3DEBUG: \tValue: =\n"},
        {system, -1, head + "SYSTEM\n" + warning + "2 received in metric plugin 7!\n"},
        {collector, -1, head + "\n" + warning + "4 received in metric plugin 7!\n"},
    };
    FakeMetricPlugin plugin;
    for (const auto& c : cases) {
        test::LogCapture log(3);
        EXPECT_EQ(c.result, plugin.processMetadata(&c.metadata));
        EXPECT_EQ(c.text, log.debug());
    }
    EXPECT_EQ(-1, plugin.processMetadata(nullptr));

    test::LogCapture quiet(2);
    EXPECT_EQ(0, plugin.processMetadata(&metric));
    EXPECT_EQ("", quiet.debug());
    EXPECT_EQ("Metric plugin 7 received a metadata msg of type METRIC\n\tValue: unit=mW\n\tValue: =\n",
              quiet.discarded());
}

TEST(MetricPluginTest, CollectionLogsItsParameters)
{
    test::LogCapture log(3);
    FakeMetricPlugin plugin;
    const Plugin::Params params{{"interval", "5"}, {"x", ""}};
    MetricPlugin::Messages messages;
    MetricPlugin::MetadataList metadata;
    EXPECT_EQ(0, plugin.initializeCollection(messages, metadata, "load", params, SystemMetadata()));
    EXPECT_EQ("3DEBUG: INIT collection: interval :=> 5\n3DEBUG: INIT collection: x :=> \n", log.debug());
    EXPECT_TRUE(messages.empty());
    EXPECT_TRUE(metadata.empty());
    log.clear();
    EXPECT_EQ(0, plugin.finalizeCollection("load", params, SystemMetadata()));
    EXPECT_EQ("3DEBUG: FINI collection for load\n3DEBUG: interval :=> 5\n3DEBUG: x :=> \n", log.debug());
}

TEST(MetricPluginTest, HelpShowsWhatACollectionWouldGive)
{
    class Helper : public FakeMetricPlugin {
    public:
        ~Helper() override = default;
        int initializeCollection(Messages& messages, MetadataList& metadata, const std::string& feature, const Params&,
                                 const SystemMetadata&) override
        {
            EXPECT_TRUE(messages.empty());
            EXPECT_TRUE(metadata.empty());
            if (feature.find('m') != std::string::npos) messages.push_back(nullptr);
            if (feature.find('d') != std::string::npos) metadata.push_back(&m_kept);
            return feature.find('f') != std::string::npos ? 1 : 0;
        }

    private:
        MetricMetadata m_kept;    // would not stand being deleted
    };
    const std::pair<const char*, QVDynamicHelpType> cases[] = {
        {"", QVDynamicHelpType::NO_MESSAGES}, {"d", QVDynamicHelpType::NO_MESSAGES}, {"m", QVDynamicHelpType::MESSAGES},
        {"md", QVDynamicHelpType::MESSAGES},  {"f", QVDynamicHelpType::FAILED},      {"fm", QVDynamicHelpType::FAILED},
    };
    Helper plugin;
    for (const auto& c : cases)
        EXPECT_EQ(c.second, plugin.getDynamicHelpDisplayType(c.first, {}, SystemMetadata())) << c.first;
}

}    // namespace

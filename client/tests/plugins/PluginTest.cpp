#include "plugins/Plugin.h"

#include "output/WriterPlugin.h"
#include "plugins/FakeRequirement.h"
#include "plugins/PluginCapability.h"
#include "record/SystemMetadata.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

using namespace pwr;
using test::FakeRequirement;

namespace {

using Names = std::vector<std::string>;

class FakePlugin : public Plugin {
public:
    FakePlugin() : Plugin("uuid-1") {}
    using Plugin::addCapability;

    Names notified;    // the parameters at each notification

protected:
    void notifyCommandlineParamsSet_i() override { notified.push_back(getCommandlineParams()); }
};

class PlainWriter : public WriterPlugin {
public:
    PlainWriter() : WriterPlugin("writer") {}
    ~PlainWriter() override = default;
    int openOutput() override { return 0; }
    int closeOutput() override { return 0; }
};

// Writes its name down when it is deleted.
class TracedCapability : public PluginCapability {
public:
    TracedCapability(const std::string& name, Names& deleted) : PluginCapability(name, "", false), m_deleted(deleted) {}
    ~TracedCapability() override { m_deleted.push_back(getName()); }

private:
    Names& m_deleted;
};

Names namesOf(const Plugin::Capabilities& capabilities)
{
    Names names;
    for (const PluginCapability* capability : capabilities)
        names.push_back(capability->getName());
    return names;
}

// A plugin with "b" in the group "all-cpu", "a" that doesn't suit a system, and "c" in the group "a".
class PluginCapabilitiesTest : public testing::Test {
protected:
    PluginCapabilitiesTest()
    {
        add_i("b", "all-cpu", true);
        add_i("a", "all-cpu", false);
        add_i("c", "a", true);
    }

    Names found(const std::string& name) const
    {
        Plugin::Capabilities out;
        m_plugin.getCapabilitiesFor(out, name, m_system);
        return namesOf(out);
    }

    test::RequirementCounts m_counts;
    FakePlugin m_plugin;
    SystemMetadata m_system;

private:
    void add_i(const std::string& name, const std::string& group, bool isSuitable)
    {
        auto capability = std::make_unique<PluginCapability>(name, "", false);
        capability->addGroupName(group);
        if (!isSuitable) capability->addPluginRequirement(new FakeRequirement(m_counts, false));
        m_plugin.addCapability(capability.release());
    }
};

TEST(PluginTest, DerivedClassLearnsOfParametersThatAreInPlace)
{
    FakePlugin plugin;
    plugin.setCommandlineParams("-t 5");
    plugin.setCommandlineParams("");
    EXPECT_EQ((Names{"-t 5", ""}), plugin.notified);
}

TEST(PluginTest, OwnsItsCapabilitiesAndDeletesThemFrontToBack)
{
    Names deleted;
    {
        FakePlugin plugin;
        auto* first = new TracedCapability("first", deleted);
        plugin.addCapability(first);
        plugin.addCapability(nullptr);
        plugin.addCapability(new TracedCapability("second", deleted));
        EXPECT_EQ(&plugin, first->getOwner());
        EXPECT_TRUE(deleted.empty());
    }
    EXPECT_EQ((Names{"first", "second"}), deleted);
}

TEST_F(PluginCapabilitiesTest, SuitableOnesAreFoundByNameGroupOrAll)
{
    const struct {
        const char* name;
        Names found;
    } cases[] = {
        {"b", {"b"}}, {"all-cpu", {"b"}}, {"a", {"c"}}, {"", {"b", "c"}}, {"A", {}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(c.found, found(c.name)) << c.name;

    Plugin::Capabilities out;
    m_plugin.getAllCapabilities(out, m_system);
    m_plugin.getCapabilitiesFor(out, "b", m_system);
    EXPECT_EQ((Names{"b", "c", "b"}), namesOf(out)) << "appends";
    EXPECT_TRUE(m_counts.params.empty());
    const Plugin::Params params{{"switch", "on"}};
    m_plugin.getCapabilitiesFor(out, "a", m_system, params);
    EXPECT_EQ(params, m_counts.params) << "they reach the requirements";
}

TEST_F(PluginCapabilitiesTest, WithoutASystemTheNameAloneDecides)
{
    Plugin::Capabilities out;
    m_plugin.getAllCapabilities(out, "a");
    EXPECT_EQ((Names{"a", "c"}), namesOf(out));
    m_plugin.getAllCapabilities(out);
    EXPECT_EQ((Names{"a", "c", "b", "a", "c"}), namesOf(out)) << "appends";
    EXPECT_EQ(0, m_counts.asked);
}

TEST_F(PluginCapabilitiesTest, EachSuitableOneIsReportedAtInfo)
{
    test::LogCapture log(4);
    found("all-cpu");
    EXPECT_EQ(1u, log.count("INFO: "));
    EXPECT_TRUE(log.contains("INFO: uuid-1 is reporting a suitable capability for all-cpu!\n"));
    log.clear();
    log.environment().setVerbosity(3);
    found("all-cpu");
    EXPECT_FALSE(log.contains("INFO: "));
}

TEST(WriterPluginCapabilitiesTest, SecondCapabilityIsRefusedAndUntouched)
{
    test::LogCapture log(2);
    Names deleted;
    TracedCapability second("second", deleted);
    {
        PlainWriter writer;
        auto* first = new TracedCapability("first", deleted);
        writer.addCapability(first);
        EXPECT_EQ("", log.debug());
        writer.addCapability(&second);
        EXPECT_EQ("WARNING: Illegal attempt to register a second capabliity for a writer plugin...ignored\n",
                  log.debug());
        EXPECT_EQ(&writer, first->getOwner());
        EXPECT_EQ(nullptr, second.getOwner());
        Plugin::Capabilities all;
        writer.getAllCapabilities(all);
        EXPECT_EQ(Names{"first"}, namesOf(all));
    }
    EXPECT_EQ(Names{"first"}, deleted);
}

}    // namespace

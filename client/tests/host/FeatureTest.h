#pragma once

#include "Collection.h"
#include "ConfigFiles.h"
#include "HandClock.h"
#include "Platforms.h"
#include "ProgramRecord.h"
#include "TreeCopy.h"
#include "collector/Collector.h"
#include "features/FeaturePlugin.h"
#include "machine/Machine.h"
#include "support/TestSession.h"
#include "system/ProgramFolder.h"

#include "config/qv_configfile_parser.h"
#include "plugins/QuorvaneHost.h"
#include "record/SystemMetadata.h"
#include "values/DataHandleProvider.h"

#include <gtest/gtest.h>
#include <memory>

namespace test {

constexpr unsigned long long START = 1'000'000'000;
constexpr unsigned long long MS = 1'000'000;    // ticks

// A recorded machine with its collector and the host's own configuration, loaded.
class MachineFixture {
public:
    explicit MachineFixture(const std::string& treeName) : tree(treeName), clock(START)
    {
        collector = host::openMachine(tree.root())->makeCollector(clock);
        host::enroll(*collector, record);
    }
    ~MachineFixture() { pwr::QVConfigFileParser::instance()->destroy(); }
    MachineFixture(const MachineFixture&) = delete;
    MachineFixture& operator=(const MachineFixture&) = delete;

    // To be called when the tree is as the test wants it.
    void load()
    {
        std::vector<std::string> remarks;
        ASSERT_TRUE(host::openMachine(tree.root())->describe(record, remarks));
        record.qvaClockFreqMHz = 1000;
        const auto files = host::listCollectorConfig(host::findCollectorConfig(host::programFolder()), "");
        ASSERT_EQ(0, pwr::QVConfigFileParser::instance()->parse(files, {collector.get()}, record));
        params = {{host::SourceRequirement::PLATFORMS, host::choosePlatforms(record)}};
    }

    TreeCopy tree;
    HandClock clock;
    pwr::SystemMetadata record;
    std::unique_ptr<host::Collector> collector;
    Plugin::Params params;
};

// A plugin behind the collector of an editable tree, driven round by round; the test sees what reaches a writer.
class FeatureTest : public testing::Test {
protected:
    explicit FeatureTest(const std::string& treeName) : machine(treeName), tree(machine.tree) {}
    ~FeatureTest() override { QuorvaneHost::destroyThermalSampleHandler(); }

    // On the machine's own platforms, or those given.
    template <typename F>
    void start(const std::string& platforms = "")
    {
        feature = std::make_unique<F>();
        host::enroll(*feature, machine.record);
        machine.load();
        if (!platforms.empty()) machine.params = {{host::SourceRequirement::PLATFORMS, platforms}};
        ASSERT_EQ("", feature->getCapability().explain(machine.record, machine.params));
        ASSERT_EQ(0, pwr::DataHandleProvider::initTopology(machine.record));
        collection = std::make_unique<host::Collection>(machine.record, *machine.collector,
                                                        std::vector<host::FeaturePlugin*>{feature.get()});
        ASSERT_EQ(nullptr, collection->begin(machine.params));
    }

    // Why the loaded machine doesn't offer the feature.
    template <typename F>
    std::string explain() const
    {
        return F().getCapability().explain(machine.record, machine.params);
    }

    // `ms`: since the start.
    void round(unsigned long long ms)
    {
        machine.clock.advance(START + ms * MS - machine.clock.now.tick);
        EXPECT_TRUE(collection->takeRound());
    }
    void sleepUntil(unsigned long long ms) { machine.clock.sleep(START + ms * MS - machine.clock.now.tick); }
    bool finish() { return collection->end().empty(); }

    // Samples of a point as "entity/descriptor=value", for entities that end in `entity`, in milliseconds for ticks.
    std::vector<std::string> samples(std::size_t point, const std::string& entity = "") const
    {
        std::vector<std::string> texts;
        for (const RecordedElement& element : session.writer.points.at(point).elements) {
            if (!element.entity.ends_with(entity)) continue;
            std::string value;
            element.value.toFormattedString(value);
            const std::string name = element.entity.substr(element.entity.find_last_of('/') + 1);
            texts.push_back(name + (element.descriptor.empty() ? "" : "/" + element.descriptor) + "=" + value);
        }
        return texts;
    }
    // The cell in the first column whose title holds the text: the columns of entities stand in no order of ours.
    static std::string cellUnder(const RecordedTable& row, const std::string& title)
    {
        for (std::size_t i = 0; i < row.columns.size(); ++i) {
            if (row.columns[i].find(title) != std::string::npos) return row.cells.at(i);
        }
        return "no column " + title;
    }
    // In milliseconds, of the first element.
    unsigned long long duration(std::size_t point) const
    {
        return session.writer.points.at(point).elements.at(0).duration / MS;
    }

    TestSession session;    // ends last
    MachineFixture machine;
    const TreeCopy& tree;
    std::unique_ptr<host::FeaturePlugin> feature;
    std::unique_ptr<host::Collection> collection;
};

using Texts = std::vector<std::string>;

}    // namespace test

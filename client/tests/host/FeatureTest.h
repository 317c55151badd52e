#pragma once

#include "TreeCopy.h"
#include "features/Feature.h"
#include "machine/Machine.h"
#include "machine/SystemTree.h"
#include "support/TestSession.h"

#include "record/SystemMetadata.h"
#include "values/DataHandleProvider.h"

#include <gtest/gtest.h>
#include <memory>

namespace test {

constexpr unsigned long long START = 1'000'000'000;
constexpr unsigned long long MS = 1'000'000;    // ticks

// A feature over an editable tree, driven round by round; the test sees what reaches a writer.
class FeatureTest : public testing::Test {
protected:
    explicit FeatureTest(const std::string& treeName) : tree(treeName) {}

    template <typename F>
    void start()
    {
        feature = std::make_unique<F>(host::SystemTree(tree.root()));
        std::string reason;
        ASSERT_TRUE(feature->find(reason)) << reason;
        std::vector<std::string> remarks;
        ASSERT_TRUE(host::openMachine(tree.root())->describe(record, remarks));
        record.qvaClockFreqMHz = 1000;
        record.startTSC = START;
        ASSERT_EQ(0, pwr::DataHandleProvider::initTopology(record));
        feature->readBaseline(START);
        feature->makeMetric(record);
    }

    // `ms`: since the start.
    void round(unsigned long long ms) { feature->takeRound(START + ms * MS); }

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

    TestSession session;
    TreeCopy tree;
    pwr::SystemMetadata record;
    std::unique_ptr<host::Feature> feature;    // ends before the session
};

using Texts = std::vector<std::string>;

}    // namespace test

#include "config/Operation.h"

#include "record/Metadata.h"
#include "record/SystemMetadata.h"
#include "support/FakeCollector.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

using namespace pwr;
using test::FakeOperation;
using test::FixedRequirement;
using test::LogCapture;

namespace {

CONSTANTOperation::Values valuesOf(const CONSTANTOperation& constant)
{
    return {constant.begin(), constant.end()};
}

TEST(OperationTest, ACategoryMustBeKnownAndFree)
{
    FakeOperation operation("OPKIND", {"PATH", "FIELD"});
    operation.lockedCategory = "FIELD";
    EXPECT_EQ("OPKIND", operation.getName());
    EXPECT_TRUE(operation.isValidCategory("PATH"));
    EXPECT_FALSE(operation.isValidCategory("FIELD"));
    EXPECT_FALSE(operation.isValidCategory("path"));
    EXPECT_FALSE(CONSTANTOperation("C").isValidCategory("PATH"));
}

TEST(OperationTest, ReadsUnlessTheKindSaysOtherwise)
{
    FakeOperation operation("OPKIND");
    EXPECT_TRUE(operation.isValidCommand(QVOpCommand::READ));
    EXPECT_FALSE(operation.isValidCommand(QVOpCommand::WRITE));
    EXPECT_FALSE(CONSTANTOperation("C").isValidCommand(QVOpCommand::WRITE));
    EXPECT_FALSE(CONSTANTOperation("C").isValidCommand(QVOpCommand::UNDECIDED));
    operation.canWrite = true;
    EXPECT_TRUE(operation.isValidCommand(QVOpCommand::WRITE));
}

TEST(OperationTest, SuitsASystemThatMeetsAllItsRequirements)
{
    LogCapture log(3);
    const SystemMetadata system;
    FixedRequirement met(true);
    FixedRequirement unmet(false);
    FixedRequirement negative(false, true);
    FakeOperation operation("OPKIND");
    operation.addRequirement(nullptr);
    EXPECT_EQ(PluginRequirementResult::SUITABLE_UNTESTED, operation.isOperationSuitableFor(system));
    operation.addRequirement(&met);
    operation.addRequirement(&negative);
    EXPECT_EQ(PluginRequirementResult::SUITABLE, operation.isOperationSuitableFor(system));
    EXPECT_EQ("DEBUG: Requirement met: 1\nDEBUG: Negative Requirement met: 1\n", log.debug());

    log.clear();
    FakeOperation other("OPKIND");
    other.addRequirement(&unmet);
    other.addRequirement(&met);
    EXPECT_EQ(PluginRequirementResult::NOT_SUITABLE, other.isOperationSuitableFor(system));
    EXPECT_EQ("DEBUG: Requirement met: 0\n", log.debug());    // the first that fails ends it
}

TEST(OperationTest, WhatACloneAddsIsItsOwn)
{
    FixedRequirement unmet(false);
    FakeOperation prototype("OPKIND", {"PATH"});
    FakeOperation clone(prototype);
    EXPECT_TRUE(clone.isValidCategory("PATH"));
    clone.addRequirement(&unmet);
    clone.setName("renamed");
    EXPECT_EQ("OPKIND", prototype.getName());
    EXPECT_EQ(PluginRequirementResult::SUITABLE_UNTESTED, prototype.isOperationSuitableFor({}));
    EXPECT_EQ(PluginRequirementResult::NOT_SUITABLE, clone.isOperationSuitableFor({}));
}

TEST(OperationTest, AConstantKeepsTheFirstValueOfAKey)
{
    LogCapture log;
    CONSTANTOperation constant("FEAT_RESID_CONSTANT");
    EXPECT_EQ("CONSTANT", constant.getOperation());
    EXPECT_EQ(0, constant.set("b", "1"));
    EXPECT_EQ(0, constant.set("a", "2"));
    EXPECT_EQ(-1, constant.set("b", "3"));
    EXPECT_EQ("ERROR: key b already set!\n", log.errors());
    EXPECT_EQ(CONSTANTOperation::Values({{"b", "1"}, {"a", "2"}}), valuesOf(constant));

    const std::unique_ptr<Operation> clone(constant.clone());
    EXPECT_EQ(0, clone->set("c", "4"));
    EXPECT_EQ(-1, clone->set("a", "4"));
    EXPECT_EQ(2u, valuesOf(constant).size());

    const std::unique_ptr<OperationMetadata> record(constant.getOperationMetadata());
    const auto* values = dynamic_cast<const CONSTANTOperationMetadata*>(record.get());
    ASSERT_NE(nullptr, values);
    EXPECT_EQ("FEAT_RESID_CONSTANT", values->getName());
    EXPECT_EQ(valuesOf(constant), CONSTANTOperation::Values(values->begin(), values->end()));
}

TEST(OperationTest, KeysStayUniqueInALongList)
{
    const LogCapture log;
    CONSTANTOperation constant("many");
    for (int i = 99; i >= 0; --i)
        EXPECT_EQ(0, constant.set(std::to_string(i), "")) << i;
    for (int i = 0; i < 100; ++i)
        EXPECT_EQ(-1, constant.set(std::to_string(i), "")) << i;
    ASSERT_EQ(100u, valuesOf(constant).size());
    EXPECT_EQ("99", valuesOf(constant).front().first);
    EXPECT_EQ("0", valuesOf(constant).back().first);
}

}    // namespace

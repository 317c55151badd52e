#include "config/Triggers.h"

#include <gtest/gtest.h>

using namespace pwr;

namespace {

TEST(TriggersTest, TheDriverKnowsFiveTriggersAndTakesOthersForTheLast)
{
    const struct {
        const char* trigger;
        int when;
    } cases[] = {
        {"BEGIN", 0}, {"POLL", 1}, {"NOTIFIER", 2}, {"TRACEPOINT", 3},   {"END", 4},
        {"", 4},      {"INIT", 4}, {"FINI", 4},     {"REQUIREMENTS", 4}, {"begin", 4},
    };
    for (const auto& c : cases)
        EXPECT_EQ(c.when, getWhenTypeForTrigger(c.trigger)) << c.trigger;
}

TEST(TriggersTest, AMaskHasOneBitForEachTrigger)
{
    EXPECT_EQ(0, getTriggerMask({}));
    EXPECT_EQ(3, getTriggerMask({"BEGIN", "POLL"}));
    EXPECT_EQ(12, getTriggerMask({"NOTIFIER", "TRACEPOINT"}));
    EXPECT_EQ(16, getTriggerMask({"INIT"}));
    EXPECT_EQ(16, getTriggerMask({"END", "INIT"}));
}

TEST(TriggersTest, ACpuIsAWordOrANumber)
{
    const struct {
        const char* text;
        int mask;
    } cases[] = {
        {"ALL", -2}, {"ANY", -1}, {"7", 7}, {"0x10", 16}, {"010", 16}, {"-5", -5}, {"abc", -3}, {"any", -3}, {"", -3},
    };
    for (const auto& c : cases)
        EXPECT_EQ(c.mask, getCPUMaskFromString(c.text)) << c.text;
}

}    // namespace

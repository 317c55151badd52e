#include "record/Clocks.h"

#include "record/SystemMetadata.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <chrono>
#include <deque>
#include <limits>
#include <string>
#include <vector>

namespace {

using namespace pwr;

QVClockSync makeSync(const std::string& uuid, float freqMHz, unsigned long long value, float defaultFreqMHz,
                     unsigned long long defaultValue)
{
    return {uuid, "clock", freqMHz, value, "default-uuid", "default", defaultFreqMHz, defaultValue};
}

TEST(ClocksTest, SystemClocksComeInOrderWithTheirIdentities)
{
    const struct {
        const char* uuid;
        const char* name;
        const char* description;
    } expected[] = {
        {"d3ad8390-29cc-11e6-bdf4-0800200c9a66", "QPC", "A QPC based clock source"},
        {"8ad42930-517d-11e5-b970-0800200c9a66", "NANO",
         "A clock_gettime based clock source returning time in nanoseconds since the Epoch"},
        {"5138ffc0-517d-11e5-b970-0800200c9a66", "TSC", "A TSC based clock source"},
    };
    SystemMetadata system;
    std::vector<QVClockSource*> clocks;
    getQVSystemClockSources(system, clocks);
    getQVSystemClockSources(system, clocks);
    ASSERT_EQ(6U, clocks.size());
    for (std::size_t i = 0; i < clocks.size(); ++i) {
        EXPECT_EQ(expected[i % 3].uuid, clocks[i]->getUUID());
        EXPECT_EQ(expected[i % 3].name, clocks[i]->getName());
        EXPECT_EQ(expected[i % 3].description, clocks[i]->getDescription());
        EXPECT_NE(0U, clocks[i]->getTimestamp());
    }
    delete clocks[1];
    clocks[1] = nullptr;
    freeQVSystemClockSources(clocks);
    EXPECT_EQ(6U, clocks.size());
}

TEST(ClocksTest, NanoClockCountsFromTheUnixEpoch)
{
    QVNanoClock clock;
    EXPECT_FLOAT_EQ(1000.0F, clock.getFreqMHz());
    const auto now =
        std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::system_clock::now().time_since_epoch());
    const unsigned long long seen = clock.getTimestamp();
    EXPECT_NEAR(static_cast<double>(now.count()), static_cast<double>(seen), 5e9);
    EXPECT_EQ(0U, seen % 100);
}

TEST(ClocksTest, FrequenciesAreInMHz)
{
    QVQPCClock qpc;
    const auto begin = std::chrono::steady_clock::now();
    const unsigned long long first = qpc.getTimestamp();
    while (std::chrono::steady_clock::now() - begin < std::chrono::milliseconds(20)) {
    }
    const double usecs = static_cast<double>(qpc.getTimestamp() - first) / static_cast<double>(qpc.getFreqMHz());
    EXPECT_GT(usecs, 18e3);
    EXPECT_FLOAT_EQ(0.0F, QVTSCClock().getFreqMHz());
}

class FixedClock : public QVClockSource {
public:
    FixedClock() : QVClockSource("fixed-uuid", "FIXED", "stands still") {}
    float getFreqMHz() override { return 1; }
    unsigned long long getTimestamp() override { return 77; }
};

TEST(ClocksTest, DefaultClockIsTheEnvironments)
{
    FixedClock clock;
    test::LogCapture log;
    EXPECT_EQ(0U, getQVATimestamp());
    EXPECT_EQ("", getQVAClockUUID());
    log.environment().setDefaultClock(&clock);
    EXPECT_EQ(77U, getQVATimestamp());
    EXPECT_EQ("fixed-uuid", getQVAClockUUID());

    PluginEnvironment* const previous = g_pluginEnvironment;
    g_pluginEnvironment = nullptr;
    EXPECT_EQ(0U, getQVATimestamp());
    EXPECT_EQ("", getQVAClockUUID());
    g_pluginEnvironment = previous;
}

TEST(ClocksTest, SynchronizedClockIsFoundByItsExactUUID)
{
    const std::deque<QVClockSync> syncs{makeSync("a", 1, 10, 2, 20), makeSync("b", 2.5F, 11, 3, 21),
                                        makeSync("c", 3, 12, 4, 22)};
    test::LogCapture log(3);
    QVClockSync found;
    EXPECT_TRUE(wasClockSynchronized("b", syncs, found));
    EXPECT_EQ(11U, found.clockValue);
    EXPECT_EQ("DEBUG: Looking at sync clock a\n"
              "DEBUG: Looking at sync clock b\n"
              "DEBUG: Found clock UUID b with freq 2.50 and val 11 (Default = default-uuid, 3.00, 21)\n",
              log.debug());

    EXPECT_FALSE(wasClockSynchronized("B", syncs, found));
    EXPECT_EQ("c", found.clockUUID);
    EXPECT_FALSE(wasClockSynchronized("b", {}, found));
    EXPECT_EQ("c", found.clockUUID);
    EXPECT_TRUE(wasClockSynchronized("a", std::vector<QVClockSync>(syncs.begin(), syncs.end()), found));
    EXPECT_EQ("a", found.clockUUID);
}

TEST(ClocksTest, ReadingsConvertToTheDefaultClock)
{
    constexpr unsigned long long most = std::numeric_limits<unsigned long long>::max();
    const struct {
        QVClockSync sync;
        unsigned long long reading;
        unsigned long long result;
    } cases[] = {
        {makeSync("", 1000, 100, 1000, 500), 100, 500},
        {makeSync("", 1000, 100, 1000, 500), 1100, 1500},
        {makeSync("", 1000, 100, 2000, 500), 105, 510},
        {makeSync("", 3000, 0, 1000, 500), 5, 501},                      // truncated
        {makeSync("", 2000, 0, 1000, 0), 1ULL << 63, 1ULL << 62},        // an unsigned difference
        {makeSync("", 2000, 100, 1000, 500), 99, (1ULL << 63) + 500},    // wrapped
        {makeSync("", 1000, 0, 2000, 0), most, most},                    // does not fit
        {makeSync("", 0, 100, 1000, 500), 101, most},
        {makeSync("", 0, 100, 0, 500), 101, most},
        {makeSync("", 0, 100, 1000, 500), 100, 500},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.result, convertTimestamp(c.sync, c.reading))
            << c.sync.clockFreqMHz << " to " << c.sync.defaultClockFreqMHz << " MHz, " << c.reading;
    }
    test::LogCapture log(4);
    convertTimestamp(makeSync("", 1000, 100, 2000, 500), 105);
    EXPECT_EQ("INFO: input TSC = 105, output TSC = 510\n", log.debug());
}

}    // namespace

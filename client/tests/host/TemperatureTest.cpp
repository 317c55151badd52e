#include "FeatureTest.h"
#include "features/Temperature.h"

#include <algorithm>

namespace {

using test::Texts;

class TemperatureTest : public test::FeatureTest {
protected:
    TemperatureTest() : FeatureTest("four-cores") {}
};

TEST_F(TemperatureTest, ThousandthsBecomeWholeDegreesAndAGapIsNoSample)
{
    const std::string zones = "sys/class/thermal/thermal_zone";
    start<host::Temperature>();
    round(100);
    tree.write(zones + "0/temp", "-5300\n");    // the metric knows none below 0
    round(200);
    tree.write(zones + "0/temp", "30499\n");
    round(300);
    tree.makeUnreadable(zones + "1/temp");
    round(400);
    ASSERT_TRUE(finish());
    ASSERT_EQ(4u, session.writer.points.size());
    EXPECT_EQ((Texts{"board=28", "package=42"}), samples(0));
    EXPECT_EQ((Texts{"package=42"}), samples(1));
    EXPECT_EQ((Texts{"board=30", "package=42"}), samples(2));    // each at its own time, whoever was missing before
    EXPECT_EQ((Texts{"board=30"}), samples(3));
    EXPECT_EQ(test::START + 300 * test::MS, session.writer.points[2].timestamp);
    EXPECT_EQ(6u, feature->getSamples());
    EXPECT_EQ(4u, feature->getPoints());
    const auto rows = session.writer.tablesNamed("Temperature Metrics Summary - Sampled: Min/Max/Avg");
    ASSERT_EQ(3u, rows.size());
    EXPECT_EQ((Texts{"board", "28", "30", "29.33", "29.50"}), rows[1].cells);
}

class TemperatureOfUnreadableTest : public test::FeatureTest {
protected:
    TemperatureOfUnreadableTest() : FeatureTest("unreadable") {}
};

TEST_F(TemperatureOfUnreadableTest, OnlyReadableZonesAreMeasuredUnderNamesOfTheirOwn)
{
    start<host::Temperature>();
    EXPECT_EQ((Texts{"thermal zone 1 is left out, since " + tree.root() +
                     "/sys/class/thermal/thermal_zone1/temp can't be read"}),
              feature->getRemarks());
    round(100);
    ASSERT_TRUE(finish());
    EXPECT_EQ((Texts{"board=30", "board (thermal_zone2)=32"}), samples(0));
}

TEST_F(TemperatureOfUnreadableTest, TheRequirementTellsWhetherThereAreZones)
{
    machine.load();
    const std::string path = tree.root() + "/sys/class/thermal/thermal_zone*/temp";
    EXPECT_EQ("", explain<host::Temperature>());
    for (const char* zone : {"0", "2"})
        tree.write(std::string("sys/class/thermal/thermal_zone") + zone + "/temp", "hot\n");
    EXPECT_EQ("requires thermal zones: " + path + " can't be read", explain<host::Temperature>());
    tree.remove("sys/class/thermal");
    EXPECT_EQ("requires thermal zones: there is no " + path, explain<host::Temperature>());
}

TEST_F(TemperatureTest, ASampleBehindASuspendStandsForNoTime)
{
    start<host::Temperature>();
    round(100);
    sleepUntil(3'600'000);
    round(3'600'100);
    round(3'600'200);
    ASSERT_TRUE(finish());
    ASSERT_EQ(3u, session.writer.points.size());
    EXPECT_EQ((Texts{"board=28", "package=42"}), samples(1));
    EXPECT_EQ(0u, duration(1));
    EXPECT_EQ(100u, duration(2));
}

// The processor of this tree is one whose sensors are read beside its zones.
TEST_F(TemperatureTest, SensorsAreCalledAfterTheirChipAndTheirLabel)
{
    const std::string hwmon = "sys/class/hwmon/hwmon";
    tree.write(hwmon + "1/name", "cores\n");
    tree.write(hwmon + "1/temp1_input", "50000\n");
    tree.write(hwmon + "1/temp1_label", "Core 0\n");
    tree.write(hwmon + "1/temp2_input", "51000\n");
    tree.write(hwmon + "1/temp2_label", "Core 0\n");
    tree.write(hwmon + "10/temp3_input", "1000\n");
    tree.write(hwmon + "10/temp3_max", "9\n");
    tree.makeUnreadable(hwmon + "1/temp4_input");
    start<host::Temperature>();
    round(100);
    ASSERT_TRUE(finish());
    ASSERT_EQ(1u, session.writer.points.size());
    Texts found = samples(0);
    std::sort(found.begin(), found.end());
    EXPECT_EQ((Texts{"board=28", "cores Core 0 (temp2_input)=51", "cores Core 0=50", "package=42", "temp3_input=1"}),
              found);
    EXPECT_EQ((Texts{"temp4_input is left out, since " + tree.root() + "/" + hwmon + "1/temp4_input can't be read"}),
              feature->getRemarks());
    EXPECT_EQ(1u, feature->getPoints());    // two messages, one sampling point
}

}    // namespace

#include "FeatureTest.h"
#include "features/Temperature.h"

namespace {

using test::Texts;

class TemperatureTest : public test::FeatureTest {
protected:
    TemperatureTest() : FeatureTest("four-cores") {}
};

TEST_F(TemperatureTest, ThousandthsBecomeDegreesAndAGapIsNoSample)
{
    start<host::Temperature>();
    round(100);
    tree.write("sys/class/thermal/thermal_zone0/temp", "-5300\n");
    tree.makeUnreadable("sys/class/thermal/thermal_zone1/temp");
    round(200);
    ASSERT_TRUE(feature->finish());
    ASSERT_EQ(2u, session.writer.points.size());
    EXPECT_EQ((Texts{"board=27.8", "package=41.5"}), samples(0));
    EXPECT_EQ((Texts{"board=-5.3"}), samples(1));
    const auto rows = session.writer.tablesNamed("Temperature Summary - Sampled: Min/Max/Avg");
    ASSERT_EQ(3u, rows.size());
    EXPECT_EQ((Texts{"board", "-5.3", "27.8", "11.25", "11.25"}), rows[1].cells);
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
    ASSERT_TRUE(feature->finish());
    EXPECT_EQ((Texts{"board=30.0", "board (thermal_zone2)=32.0"}), samples(0));
}

TEST(TemperatureFindTest, TheReasonTellsWhetherThereAreZones)
{
    const test::TreeCopy tree("unreadable");
    host::Temperature feature{host::SystemTree(tree.root())};
    for (const char* zone : {"0", "2"}) {
        tree.write(std::string("sys/class/thermal/thermal_zone") + zone + "/temp", "hot\n");
    }
    std::string reason;
    EXPECT_FALSE(feature.find(reason));
    EXPECT_EQ("no thermal zone can be read below " + tree.root() + "/sys/class/thermal", reason);
    tree.remove("sys/class/thermal");
    EXPECT_FALSE(feature.find(reason));
    EXPECT_EQ("there is no thermal zone below " + tree.root() + "/sys/class/thermal", reason);
}

}    // namespace

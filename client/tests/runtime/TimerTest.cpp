#include "runtime/Timer.h"

#include "support/DoorGuard.h"
#include "support/HandClocks.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

namespace {

using pwr::Timer;

class TimerTest : public testing::Test {
protected:
    TimerTest()
    {
        m_clocks.wallTime = pwr::os::UNIX_EPOCH_100NS + 1000000;
        m_door->clocks = &m_clocks;
    }

    void passUsecs(unsigned long long usecs) { m_clocks.wallTime += usecs * 10; }

    test::HandClocks m_clocks;
    test::DoorGuard m_door;
    test::LogCapture m_log{4};
};

TEST_F(TimerTest, NamedTimerReportsAtInfoLevel)
{
    {
        Timer timer("load %s");
        passUsecs(2500000);
    }
    EXPECT_EQ("INFO: Total time elapsed during load %s = 2500000.00 usecs or 2.50 secs\n", m_log.debug());
    m_log.clear();
    m_log.environment().setVerbosity(3);
    {
        Timer timer("load");
    }
    EXPECT_EQ("", m_log.debug());
}

TEST_F(TimerTest, UnnamedTimerOnlyStores)
{
    double usecs = -1;
    {
        Timer timer(&usecs);
        passUsecs(125);
        EXPECT_EQ(-1, usecs);
    }
    EXPECT_DOUBLE_EQ(125, usecs);
    {
        Timer nowhere(static_cast<double*>(nullptr));
    }
    {
        Timer silent{std::string()};
    }
    EXPECT_EQ("", m_log.debug());
}

TEST_F(TimerTest, ACopyMeasuresFromTheSameBeginning)
{
    double usecs = 0;
    Timer first(&usecs);
    {
        passUsecs(100);
        Timer second(first);
        passUsecs(100);
    }
    EXPECT_DOUBLE_EQ(200, usecs);
}

}    // namespace

#include "runtime/os/Os.h"

#include "runtime/pw_functions.h"
#include "support/DoorGuard.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <string>

namespace {

using namespace pwr::os;
using std::chrono::steady_clock;

TEST(ClocksTest, PerformanceCounterRunsAtItsFrequency)
{
    Clocks& clocks = *current().clocks;
    const steady_clock::time_point begin = steady_clock::now();
    const unsigned long long first = clocks.performanceCounter();
    while (steady_clock::now() - begin < std::chrono::milliseconds(50)) {
    }
    const unsigned long long second = clocks.performanceCounter();
    const double limitSecs = std::chrono::duration<double>(steady_clock::now() - begin).count();
    const double secs = static_cast<double>(second - first) / static_cast<double>(clocks.performanceFrequencyHz());
    EXPECT_GT(secs, 0.045);
    EXPECT_LT(secs, limitSecs + 0.005);
}

TEST(ClocksTest, SystemTimeCountsFrom1601)
{
    using namespace std::chrono;
    const auto now = duration_cast<seconds>(system_clock::now().time_since_epoch()).count();
    const auto seen = static_cast<long long>((current().clocks->systemTime100ns() - UNIX_EPOCH_100NS) / 10000000ULL);
    EXPECT_LE(now - 1, seen);
    EXPECT_GE(now + 5, seen);
}

#if defined(__x86_64__)
TEST(ClocksTest, TimeStampCounterAdvances)
{
    const unsigned long long first = current().clocks->timeStampCounter();
    const unsigned long long second = current().clocks->timeStampCounter();
    EXPECT_NE(0U, first);
    EXPECT_LT(first, second);
}

TEST(ProcessorTest, LeafZeroNamesTheVendor)
{
    const CpuidRegisters registers = current().processor->cpuid(0, 0);
    EXPECT_GE(registers.eax, 1U);
    std::string vendor(12, '\0');
    std::memcpy(&vendor[0], &registers.ebx, 4);
    std::memcpy(&vendor[4], &registers.edx, 4);
    std::memcpy(&vendor[8], &registers.ecx, 4);
    for (char c : vendor)
        EXPECT_TRUE(c >= ' ' && c <= '~') << vendor;
}
#endif

TEST(MemoryTest, ReservedRangeIsUsableWhereItIsCommitted)
{
    constexpr std::size_t range = std::size_t{1} << 36;
    constexpr std::size_t piece = std::size_t{1} << 16;
    Memory& memory = *current().memory;
    char* start = static_cast<char*>(memory.reserve(range));
    if (start == nullptr) GTEST_SKIP() << "no range: the address sanitizer runs";
    for (std::size_t offset : {std::size_t{0}, piece, range - piece}) {
        ASSERT_TRUE(memory.commit(start + offset, piece)) << offset;
        std::memset(start + offset, 0x5A, piece);
        EXPECT_EQ(0x5A, start[offset + piece - 1]);
    }
}

class SpeechlessErrorTexts : public ErrorTexts {
public:
    bool describeErrno(int, char*, std::size_t) override { return false; }
    std::string describeCode(std::uint32_t) override { return ""; }
};

TEST(ErrorTextsTest, CodeWithoutTextIsTheEmptyTextAndAWarning)
{
    SpeechlessErrorTexts speechless;
    test::DoorGuard door;
    door->errorTexts = &speechless;
    test::LogCapture log(2);
    char words[16] = "before";
    pwr::pw_strerror(EACCES, words, sizeof words);
    EXPECT_STREQ("", words);
    EXPECT_EQ("WARNING: strerror_s failed to get description of previous error\n", log.debug());
}

TEST(ConsoleTest, ErrorTextStandsThereAtOnce)
{
    testing::internal::CaptureStderr();
    current().console->writeError("no good: %s");
    EXPECT_EQ("no good: %s", testing::internal::GetCapturedStderr());
}

}    // namespace

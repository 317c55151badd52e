#include "record/Serializer.h"

#include "support/Bytes.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <memory>

using pwr::Serializer;
using test::bytes;

namespace {

enum class Wide : std::uint32_t { LAST = 0x80000001 };

TEST(SerializerTest, EveryKindHasItsBytes)
{
    Serializer out;
    out.write_value(std::uint8_t{0xFE});
    out.write_value(std::uint16_t{0x1234});
    out.write_value(std::uint32_t{0x89ABCDEF});
    out.write_value(-2);
    out.write_value(std::uint64_t{0x0102030405060708});
    out.write_value(1.5F);
    out.write_value(Wide::LAST);
    out.write_text("ab");
    out.write_text("");
    const std::vector<char> expected = bytes("FE  34 12  EF CD AB 89  FE FF FF FF  08 07 06 05 04 03 02 01"
                                             "  00 00 C0 3F  01 00 00 80  02 00 'ab'  00 00");
    EXPECT_EQ(expected.size(), out.size());
    EXPECT_EQ(expected, out.get_buffer());
}

TEST(SerializerTest, ValuesComeBackWithTheNumberOfBytesTaken)
{
    Serializer in = test::stored("80  FE FF  FE FF FF FF  08 07 06 05 04 03 02 81  00 00 C0 BF  01 00 00 80");
    std::int8_t i8 = 0;
    std::uint16_t u16 = 0;
    int i32 = 0;
    std::uint64_t u64 = 0;
    float f32 = 0;
    Wide wide{};
    EXPECT_EQ(1u, in.read_value(i8));
    EXPECT_EQ(2u, in.read_value(u16));
    EXPECT_EQ(4u, in.read_value(i32));
    EXPECT_EQ(8u, in.read_value(u64));
    EXPECT_EQ(4u, in.read_value(f32));
    EXPECT_EQ(4u, in.read_value(wide));
    EXPECT_EQ(-128, i8);
    EXPECT_EQ(0xFFFEu, u16);
    EXPECT_EQ(-2, i32);
    EXPECT_EQ(0x8102030405060708u, u64);
    EXPECT_EQ(-1.5F, f32);
    EXPECT_EQ(Wide::LAST, wide);
    EXPECT_EQ(0u, in.read_value(i8));
    EXPECT_EQ(-128, i8);
}

TEST(SerializerTest, TheBufferDoublesUntilAWriteFits)
{
    const struct {
        std::size_t initial;
        std::size_t written;
        std::size_t space;
    } cases[] = {{0, 1, 128}, {0, 128, 128}, {0, 129, 256}, {0, 300, 512}, {64, 4, 64}, {64, 65, 128}, {3, 10, 12}};
    for (const auto& c : cases) {
        Serializer out(c.initial);
        const std::vector<char> data(c.written, 'x');
        out.write_to(data.data(), data.size());
        EXPECT_EQ(c.written, out.size());
        EXPECT_EQ(c.space, out.remaining()) << c.initial << " " << c.written;
        EXPECT_EQ(data, out.get_buffer());
        EXPECT_EQ(c.written, out.remaining());
    }
}

TEST(SerializerTest, SpareBytesReadAsZeros)
{
    Serializer both;
    both.write_value(std::uint16_t{7});
    std::uint32_t value = 1;
    EXPECT_EQ(4u, both.read_value(value));
    EXPECT_EQ(7u, value);
}

TEST(SerializerTest, NullAndNothingWriteNothing)
{
    Serializer out;
    out.write_to(nullptr, 4);
    out.write_to("x", 0);
    out.write_value(static_cast<const int*>(nullptr));
    EXPECT_TRUE(out.empty());
    EXPECT_EQ(0u, out.remaining());
    const std::uint16_t one = 1;
    out.write_value(&one);
    EXPECT_EQ(bytes("01 00"), out.get_buffer());
    EXPECT_FALSE(out.empty());
}

TEST(SerializerTest, StoredBytesAreReadOnceAndGoWithGetBuffer)
{
    Serializer in = test::stored("01 02 03");
    EXPECT_TRUE(in.empty());
    char two[2] = {};
    EXPECT_EQ(2u, in.read_from(two, 2));
    EXPECT_EQ(2, two[1]);
    EXPECT_EQ(0u, in.read_from(two, 2));
    EXPECT_EQ(1u, in.remaining());
    EXPECT_EQ(1, two[0]);

    EXPECT_TRUE(in.get_buffer().empty());
    EXPECT_EQ(0u, in.remaining());    // the read offset stands behind the end now
    EXPECT_EQ(0u, in.read_from(two, 1));
}

TEST(SerializerTest, ACopyKeepsBothOffsets)
{
    Serializer first;
    first.write_value(std::uint32_t{0x04030201});
    std::uint8_t byte = 0;
    first.read_value(byte);
    Serializer second(first);
    EXPECT_EQ(1u, second.read_value(byte));
    EXPECT_EQ(2, byte);
    second.write_value(std::uint8_t{5});
    EXPECT_EQ(bytes("01 02 03 04 05"), second.get_buffer());
    EXPECT_EQ(4u, first.size());
}

TEST(SerializerTest, RewindStepsBackOverWhatWasRead)
{
    test::LogCapture log(2);
    Serializer in = test::stored("01 02 03");
    std::uint16_t value = 0;
    in.read_value(value);
    in.rewind_read(1);
    EXPECT_EQ(2u, in.remaining());
    in.rewind_read(2);
    EXPECT_EQ(2u, in.remaining());
    EXPECT_EQ("WARNING: trying to rewind 2 bytes, but only 1 bytes actually read!\n", log.debug());
}

TEST(SerializerTest, ReadTextAppendsOrLeavesTheTarget)
{
    const struct {
        const char* stored;
        std::size_t result;
        const char* target;
        std::size_t remaining;
    } cases[] = {
        {"02 00 'ab' 'c'", 2, "oldab", 1}, {"", 0, "old", 0},      {"02", 0, "old", 1},
        {"00 00 'ab'", 0, "old", 2},       {"02 00", 0, "old", 0}, {"02 00 'a'", 0, "old", 1},
    };
    for (const auto& c : cases) {
        Serializer in = test::stored(c.stored);
        std::string target = "old";
        EXPECT_EQ(c.result, in.read_text(target)) << c.stored;
        EXPECT_EQ(c.target, target) << c.stored;
        EXPECT_EQ(c.remaining, in.remaining()) << c.stored;
    }
}

TEST(SerializerTest, ATextThatIsTooLongIsCut)
{
    Serializer out;
    out.write_text(std::string(65536, 'x'));
    out.write_value(std::uint8_t{1});
    EXPECT_EQ(2u + 65535 + 1, out.size());
    Serializer in(out.get_buffer());
    std::string text;
    EXPECT_EQ(65535u, in.read_text(text));
    EXPECT_EQ(1u, in.remaining());
}

TEST(SerializerTest, ReadStringCopiesAndTerminates)
{
    EXPECT_EQ(nullptr, Serializer::read_string(nullptr, 3));
    const std::unique_ptr<char[]> copy(Serializer::read_string("abcdef", 3));
    EXPECT_STREQ("abc", copy.get());
}

}    // namespace

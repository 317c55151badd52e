#include "record/Serializer.h"

#include "support/Bytes.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <memory>

using pwr::Serializer;
using test::bytes;

namespace {

enum class Wide : std::uint32_t { LAST = 0x80000001 };

template <typename T>
void expectBytes(const T& value, const char* picture)
{
    Serializer out;
    out.write_value(value);
    EXPECT_EQ(bytes(picture), out.get_buffer());
    T read{};
    EXPECT_EQ(sizeof(T), out.read_value(read));
    EXPECT_EQ(value, read);
    EXPECT_EQ(0u, out.read_value(read));
    EXPECT_EQ(value, read);
}

TEST(SerializerTest, EveryKindHasItsBytes)
{
    expectBytes(std::uint8_t{0xFE}, "FE");
    expectBytes(std::int8_t{-128}, "80");
    expectBytes(std::uint16_t{0xFE34}, "34 FE");
    expectBytes(std::uint32_t{0x89ABCDEF}, "EF CD AB 89");
    expectBytes(-2, "FE FF FF FF");
    expectBytes(std::uint64_t{0x8102030405060708}, "08 07 06 05 04 03 02 81");
    expectBytes(-1.5F, "00 00 C0 BF");
    expectBytes(Wide::LAST, "01 00 00 80");

    Serializer out;
    out.write_text("ab");
    out.write_text("");
    EXPECT_EQ(bytes("02 00 'ab'  00 00"), out.get_buffer());
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
    out.write_value<std::uint8_t>(0);    // a number, no null
    EXPECT_EQ(bytes("01 00 00"), out.get_buffer());
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

TEST(SerializerTest, ACopyOrAMoveKeepsBothOffsets)
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

    Serializer third(std::move(first));
    EXPECT_EQ(1u, third.read_value(byte));
    EXPECT_EQ(2, byte);
    first.write_value(std::uint8_t{6});    // the one moved from is as new
    EXPECT_EQ(bytes("06"), first.get_buffer());
    first = std::move(third);
    EXPECT_EQ(bytes("01 02 03 04"), first.get_buffer());
}

TEST(SerializerTest, AValueOfTheBufferItselfIsWritten)
{
    Serializer out;
    out.write_value(std::uint8_t{0x7F});
    const char& inside = out.get_buffer()[0];
    out.write_value(inside);    // the buffer grows
    EXPECT_EQ(bytes("7F 7F"), out.get_buffer());
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

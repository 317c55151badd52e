#include "runtime/Channel.h"

#include "support/LogCapture.h"

#include <gtest/gtest.h>

namespace {

using pwr::Channel;
using pwr::MessageHeader;

TEST(MessageHeaderTest, AnIdIsTheLow31BitsSignExtended)
{
    const struct {
        std::uint32_t word;
        int id;
        bool needsResponse;
    } cases[] = {
        {0, 0, false},
        {0x80000000, 0, true},
        {0xBFFFFFFF, 0x3FFFFFFF, true},
        {0x3FFFFFFF, 0x3FFFFFFF, false},
        {0xC0000000, -0x40000000, true},
        {0xFFFFFFFF, -1, true},
        {0x7FFFFFFF, -1, false},
    };
    for (const auto& c : cases) {
        const MessageHeader header{c.word, 0, 0, 0};
        EXPECT_EQ(c.id, header.id()) << c.word;
        EXPECT_EQ(c.needsResponse, header.needsResponse()) << c.word;
    }
}

class ChannelTest : public testing::Test {
protected:
    ChannelTest() { EXPECT_TRUE(m_channel.create()); }

    test::LogCapture m_log{2};
    Channel m_channel;
    std::vector<char> m_message;
};

TEST_F(ChannelTest, AMessageIsAHeaderEntryAndAPayloadEntry)
{
    ASSERT_TRUE(m_channel.writeRequestMessage_i({0x80000005, -1, 7, 3}, "abc", 3));
    const char expected[] = "\x05\0\0\x80\xFF\xFF\xFF\xFF\x07\0\0\0\x03\0\0\0";    // little-endian, as the machine
    char bytes[16] = {};
    ASSERT_TRUE(m_channel.readRequest_i(bytes, 16));
    EXPECT_EQ(std::string(expected, 16), std::string(bytes, 16));
    ASSERT_TRUE(m_channel.readRequest_i(bytes, 3));
    EXPECT_EQ("abc", std::string(bytes, 3));
}

TEST_F(ChannelTest, ResponsesMayHavePayloads)
{
    ASSERT_TRUE(m_channel.writeResponseMessage_i({1, 0, 2, 4}, nullptr));
    ASSERT_TRUE(m_channel.readResponseMessage_i(m_message));
    EXPECT_EQ(2, MessageHeader::of(m_message).command);
    EXPECT_EQ(std::string(4, '\0'), std::string(m_message.begin() + 16, m_message.end()));
}

// A reader never takes bytes that an entry does not have.
TEST_F(ChannelTest, EntryOfAnotherSizeIsNotRead)
{
    m_channel.writeRequest_i("short", 5);
    EXPECT_FALSE(m_channel.readRequestMessage_i(m_message));
    const MessageHeader header{0, 0, 0, 100};
    m_channel.writeRequest_i(&header, sizeof header);
    m_channel.writeRequest_i("short", 5);
    EXPECT_FALSE(m_channel.readRequestMessage_i(m_message));
    m_channel.writeResponse_i(&header, sizeof header);
    m_channel.writeResponse_i("short", 5);
    EXPECT_FALSE(m_channel.readResponseMessage_i(m_message));
    EXPECT_EQ("WARNING: couldn't read request message header!\n"
              "WARNING: couldn't read request message payload!\n"
              "WARNING: couldn't read response message payload!\n",
              m_log.debug());
}

}    // namespace

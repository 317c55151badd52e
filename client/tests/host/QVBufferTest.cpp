#include "records/QVBuffer.h"

#include <algorithm>
#include <cstddef>
#include <gtest/gtest.h>
#include <string>

namespace {

using host::BlockKind;
using host::PayloadReader;
using host::RecordItem;
using Bytes = std::vector<std::uint8_t>;

RecordItem itemAt(std::initializer_list<std::uint32_t> indices)
{
    RecordItem item;
    for (const std::uint32_t index : indices)
        item.indices.add(index);
    return item;
}

// A record with a block of each kind.
QVBuffer sample()
{
    QVBuffer buffer;
    buffer.beginRecord(0x1122334455667788, {7, 2, 3});
    buffer.beginBlock(BlockKind::NUMBERS);
    RecordItem number = itemAt({1, 0x0203});
    number.number = 0xFF00;
    buffer.addItem(number);
    number = itemAt({});
    number.isSigned = true;
    number.number = static_cast<std::uint64_t>(-2);
    buffer.addItem(number);
    number.isRead = false;
    buffer.addItem(number);
    buffer.beginBlock(BlockKind::NOTHING);
    buffer.beginBlock(BlockKind::TEXTS);
    RecordItem text = itemAt({9});
    text.text = "C1";
    buffer.addItem(text);
    buffer.beginBlock(BlockKind::ROWS);
    RecordItem row;
    row.numbers = {5, 6};
    row.numberCount = 2;
    buffer.addItem(row);
    buffer.beginBlock(BlockKind::NAMED_ROWS);
    row = itemAt({4});
    row.text = "vda";
    row.numbers = {7};
    row.numberCount = 1;
    buffer.addItem(row);
    buffer.endRecord();
    return buffer;
}

const Bytes SAMPLE = {
    0x7B, 0,    0,    0,                                                                            // length
    0x88, 0x77, 0x66, 0x55, 0x44, 0x33, 0x22, 0x11, 0,    0,    7,    2,    3,                      // head
    1,    3,    0,    0,    0,                                                                      // NUMBERS
    2,    1,    0,    0,    0,    3,    2,    0,    0,    1,    0x00, 0xFF, 0, 0, 0, 0, 0, 0,       //
    0,    2,    0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,                                     //
    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,                                        //
    0,    0,    0,    0,    0,                                                                      // NOTHING
    2,    1,    0,    0,    0,                                                                      // TEXTS
    1,    9,    0,    0,    0,    1,    2,    0,    'C',  '1',                                      //
    3,    1,    0,    0,    0,                                                                      // ROWS
    0,    2,    5,    0,    0,    0,    0,    0,    0,    0,    6,    0,    0, 0, 0, 0, 0, 0,       //
    4,    1,    0,    0,    0,                                                                      // NAMED_ROWS
    1,    4,    0,    0,    0,    3,    0,    'v',  'd',  'a',  1,    7,    0, 0, 0, 0, 0, 0, 0,    //
};

// Walks through all that is there; false for damage.
bool readAll(const qv_driver_msg* message, std::string& text)
{
    PayloadReader payload(message);
    while (payload.nextBlock()) {
        text += "[" + std::to_string(static_cast<int>(payload.getKind()));
        RecordItem item;
        while (payload.nextItem(item)) {
            text += " ";
            for (std::size_t i = 0; i < item.indices.count; ++i)
                text += std::to_string(item.indices.values.at(i)) + ".";
            text += item.isRead ? std::to_string(static_cast<std::int64_t>(item.number)) + std::string(item.text)
                                : "unread";
            for (std::size_t i = 0; i < item.numberCount; ++i)
                text += "," + std::to_string(item.numbers.at(i));
        }
        text += "]";
    }
    return !payload.isDamaged();
}

TEST(QVBufferTest, TheLayoutIsStable)
{
    const QVBuffer buffer = sample();
    EXPECT_EQ(SAMPLE, buffer.getBytes());

    std::size_t offset = 0;
    const qv_driver_msg* message = buffer.next(offset);
    ASSERT_NE(nullptr, message);
    const std::uint64_t tsc = message->tsc;
    EXPECT_EQ(0x1122334455667788u, tsc);
    EXPECT_EQ(7, message->plugin_id);
    EXPECT_EQ(2, message->metric_id);
    EXPECT_EQ(3, message->msg_id);
    std::string text;
    EXPECT_TRUE(readAll(message, text));
    EXPECT_EQ("[1 1.515.65280 -2 unread][0][2 9.0C1][3 0,5,6][4 4.0vda,7]", text);
    PayloadReader payload(message);    // items that are not taken are passed over
    int blocks = 0;
    while (payload.nextBlock())
        ++blocks;
    EXPECT_TRUE(blocks == 5 && !payload.isDamaged());
    EXPECT_EQ(nullptr, buffer.next(offset));
    EXPECT_TRUE(buffer.isAtEnd(offset));
}

// Every shorter beginning: of the buffer, then of the payload of a record whose length is told right.
TEST(QVBufferTest, ACutRecordIsNoneAndACutPayloadIsDamaged)
{
    const QVBuffer whole = sample();
    for (std::size_t size = 0; size < SAMPLE.size(); ++size) {
        const QVBuffer cut(Bytes(SAMPLE.begin(), SAMPLE.begin() + static_cast<std::ptrdiff_t>(size)));
        std::size_t offset = 0;
        EXPECT_EQ(nullptr, cut.next(offset)) << size;
        EXPECT_EQ(size == 0, cut.isAtEnd(offset)) << size;
    }
    const std::size_t boundaries[] = {17, 60, 65, 80, 103};    // between two blocks
    for (std::size_t size = 17; size < SAMPLE.size(); ++size) {
        Bytes bytes(SAMPLE.begin(), SAMPLE.begin() + static_cast<std::ptrdiff_t>(size));
        bytes[0] = static_cast<std::uint8_t>(size - 4);
        const QVBuffer cut(bytes);
        std::size_t offset = 0;
        const qv_driver_msg* message = cut.next(offset);
        ASSERT_NE(nullptr, message) << size;
        std::string ignored;
        const bool isBoundary = std::find(std::begin(boundaries), std::end(boundaries), size) != std::end(boundaries);
        EXPECT_EQ(isBoundary, readAll(message, ignored)) << size;
    }
}

TEST(QVBufferTest, LengthsCountsAndKindsOfNonsenseAreDamage)
{
    const struct {
        std::size_t at;
        std::uint8_t value;
        bool isRecord;
    } cases[] = {
        {0, 12, false},      // shorter than the head
        {3, 0x80, false},    // longer than the buffer
        {17, 5, true},       // an unknown kind
        {17, 0, true},       // items of nothing
        {18, 4, true},       // one item more than there are
        {21, 0x80, true},    // far more
        {22, 5, true},       // five indices
        {31, 3, true},       // an unknown state
        {75, 2, true},       // and of a text
        {76, 30, true},      // a text beyond the end
        {86, 17, true},      // a row beyond the end
        {113, 20, true},     // and a name
    };
    for (const auto& c : cases) {
        Bytes bytes = SAMPLE;
        bytes[c.at] = c.value;
        const QVBuffer buffer(bytes);
        std::size_t offset = 0;
        const qv_driver_msg* message = buffer.next(offset);
        EXPECT_EQ(c.isRecord, message != nullptr) << c.at;
        std::string ignored;
        if (message == nullptr) continue;
        EXPECT_FALSE(readAll(message, ignored)) << c.at;
    }
}

TEST(QVBufferTest, TextsAreCutAtTheirLongest)
{
    const std::string longText(70'000, 'x');
    RecordItem text;
    text.text = longText;
    QVBuffer buffer;
    buffer.beginRecord(1, {});
    buffer.beginBlock(BlockKind::TEXTS);
    buffer.addItem(text);
    buffer.endRecord();
    std::size_t offset = 0;
    PayloadReader payload(buffer.next(offset));
    RecordItem read;
    ASSERT_TRUE(payload.nextBlock() && payload.nextItem(read));
    EXPECT_EQ(65'535u, read.text.size());
    EXPECT_FALSE(payload.nextBlock());
    EXPECT_FALSE(payload.isDamaged());
}

}    // namespace

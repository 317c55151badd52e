#pragma once

#include "plugins/DriverTypes.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

// The records that the host's collectors produce and metric plugins read. The layout is stable: fields are never moved,
// kinds of blocks never change their meaning; new kinds may come. All integers are little-endian, nothing is aligned.
//
// One record, one message read once:
//
//   u32    length       of what follows: head and payload, 13 bytes at least
//   head   13 bytes     qv_driver_msg: u64 tsc (ticks of the default clock), u16 reserved (0), u8 plugin_id (the SID of
//                       the metric plugin), u8 metric_id, u8 msg_id (both as the plugin set them in its InputMsg)
//   payload             one block for each operation of the message, in the order of its MsgMetadata
//
// One block:
//
//   u8     kind         BlockKind
//   u32    count        of the items that follow
//   items, each:
//     u8   n            0 to 4
//     n *  u32 index    the numbers that stood for the "*" of the operation's pattern, from left to right
//     then, by the kind:
//       NUMBERS     u8 state (0 not read, 1 unsigned, 2 signed), u64 value (two's complement; 0 when not read)
//       TEXTS       u8 state (0 not read, 1 read), u16 length, the bytes
//       ROWS        u8 n (0 to 16), n * u64 numbers
//       NAMED_ROWS  u16 length, the bytes of the name; u8 n (0 to 16), n * u64 numbers
//
// Which kind an operation gives:
//
//   SYSFS         an item for each file that the pattern PATH met at the start, in the order of its numbers, whether or
//                 not it can be read now: NUMBERS with FIELD=NUMBER, TEXTS with FIELD=TEXT
//   PROCFS        an item for each line of the file that fits, in their order; none when the file can't be read. ROWS:
//                 the numbers behind the word FIELD. With NAME NAMED_ROWS: the name, and the numbers behind it. With
//                 SECTION NUMBERS: the index is the section's, the value that of FIELD
//   PROCESSES     NAMED_ROWS, an item for each process, its id as index, with three numbers: the id of its parent; its
//                 start, in a unit of the system's own that tells processes of one id apart, 0 when unknown; 1 when it
//                 has ended and is only still listed, else 0. No item when they can't be listed
//   SYSTEM-TIMES  ROWS, one item without index, in 100 ns of all processors together: kernel without idle, user, idle;
//                 no item when the system doesn't tell them
//   INTERFACES    NAMED_ROWS, an item for each network interface: bytes received, bytes sent
//   PROCESSORS    NUMBERS, an item for each logical processor, its number as index: its frequency in kHz
//   CONSTANT      NOTHING: the values stand in the MsgMetadata
//
// Names are the system's bytes as they are, whatever their encoding.

static_assert(std::endian::native == std::endian::little, "the head is read where it stands");

namespace host {

enum class BlockKind : std::uint8_t { NOTHING = 0, NUMBERS = 1, TEXTS = 2, ROWS = 3, NAMED_ROWS = 4 };

// The numbers that tell one source of an operation from the others.
struct Indices {
    static constexpr std::size_t MAX_COUNT = 4;
    std::array<std::uint32_t, MAX_COUNT> values{};
    std::size_t count = 0;    // those behind are 0

    void add(std::uint32_t value) { values.at(count++) = value; }
    auto operator<=>(const Indices&) const = default;
};

// One item of a block. What its kind doesn't have is left as it was made.
struct RecordItem {
    static constexpr std::size_t MAX_NUMBERS = 16;

    Indices indices;
    bool isRead = true;
    bool isSigned = false;                               // NUMBERS: `number` is an int64_t
    std::uint64_t number = 0;                            // NUMBERS
    std::string_view text;                               // TEXTS, NAMED_ROWS; in a read item it stands in the record
    std::array<std::uint64_t, MAX_NUMBERS> numbers{};    // ROWS, NAMED_ROWS
    std::size_t numberCount = 0;

    double toReal() const;    // `number`, whatever its sign
};

}    // namespace host

// A row of records. A collector writes them one after the other; the host takes them out and hands the heads to metric
// plugins. What is handed out is valid until the buffer changes.
//
//   buffer.beginRecord(tick, {pluginId, metricId, msgId});
//   buffer.beginBlock(host::BlockKind::NUMBERS);
//   buffer.addItem(item);
//   buffer.endRecord();
//
//   std::size_t offset = 0;
//   while (const qv_driver_msg* message = buffer.next(offset)) deliver(message);
//   if (!buffer.isAtEnd(offset)) complain();
class QVBuffer {
public:
    QVBuffer() = default;
    explicit QVBuffer(const std::vector<std::uint8_t>& bytes) : m_bytes(bytes) {}    // records from elsewhere

    void clear();
    bool isEmpty() const { return m_bytes.empty(); }
    const std::vector<std::uint8_t>& getBytes() const { return m_bytes; }

    void beginRecord(unsigned long long tsc, const id_config_t& id);
    void beginBlock(host::BlockKind kind);         // ends the block before
    void addItem(const host::RecordItem& item);    // of the block's kind; texts are cut at 65535 bytes
    void endRecord();
    void append(const QVBuffer& more);    // its records behind these

    // The record at `offset`, which moves behind it. Null at the end and for a record that is cut or shorter than its
    // head; `offset` then stays.
    const qv_driver_msg* next(std::size_t& offset) const;
    bool isAtEnd(std::size_t offset) const { return offset == m_bytes.size(); }

private:
    template <typename T>
    void put_i(T value);
    template <typename T>
    void replace_i(std::size_t at, T value);
    void putText_i(std::string_view text);
    void putRow_i(const host::RecordItem& item);

    std::vector<std::uint8_t> m_bytes;
    std::size_t m_recordStart = 0;
    std::size_t m_countAt = 0;    // of the block in progress
    std::uint32_t m_count = 0;
    host::BlockKind m_kind = host::BlockKind::NOTHING;
};

namespace host {

// Walks through the payload of one record, never beyond it. A plugin is handed the head; the record's length stands in
// front of that, so the message must stand in a QVBuffer.
//
//   PayloadReader payload(message);
//   while (payload.nextBlock()) {
//       while (payload.nextItem(item)) use(payload.getKind(), item);
//   }
//   if (payload.isDamaged()) return 1;
class PayloadReader {
public:
    explicit PayloadReader(const qv_driver_msg* message);

    // Items of the block before that were not taken are passed over. False at the end, and for what makes no sense.
    bool nextBlock();
    BlockKind getKind() const { return m_kind; }
    bool nextItem(RecordItem& item);    // false behind the last one of the block

    bool isDamaged() const { return m_isDamaged; }

private:
    template <typename T>
    bool take_i(T& value);
    bool takeItem_i(RecordItem& item);
    bool takeIndices_i(Indices& indices);
    bool takeNumber_i(RecordItem& item);
    bool takeText_i(RecordItem& item);
    bool takeBytes_i(std::string_view& text);
    bool takeRow_i(RecordItem& item);
    bool fail_i();

    const std::uint8_t* m_at;
    const std::uint8_t* m_end;
    BlockKind m_kind = BlockKind::NOTHING;
    std::uint32_t m_left = 0;    // items of the block
    bool m_isDamaged = false;
};

}    // namespace host

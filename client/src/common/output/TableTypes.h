#pragma once

#include <cstdint>

namespace pwr {

// Three enumerations that writer plugins and producers of tables agree on: the library stores and compares their values
// and names none of them.
enum class TableClass : std::uint32_t {};
enum class RealTableClass : std::uint8_t {};    // 0 to 17
enum class TimelineTableType : std::uint8_t {};

// Whether a table message announces its layout or brings values.
enum class TableMessageType : std::uint8_t { TABLE_LAYOUT = 0, TABLE_DATA = 1 };

enum class TextLocation : std::uint8_t { PRE_TABLE = 0, POST_TABLE = 1 };

enum class MessageType : std::uint8_t {
    TABLE = 0,
    ID = 1,
    TEXT = 2,
    SYSTEM = 3,
    METRIC_CONTAINER_INFO = 4,
    HEADER_TEXT = 5,
};

}    // namespace pwr

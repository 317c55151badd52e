#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace host {

// The layout of session files; docs/session-files.md tells it byte by byte.

constexpr std::array<unsigned char, 8> SESSION_MAGIC = {'Q', 'V', 'S', '\r', '\n', 0x1A, '\n', 0};
constexpr std::uint32_t SESSION_VERSION = 1;

enum class SessionEntry : std::uint8_t { SYSTEM = 1, METADATA = 2, DRIVER = 3, STATE = 4, CLOSING = 5 };

constexpr std::size_t ENTRY_HEAD_BYTES = 5;    // u8 kind, u32 length of what follows
constexpr std::uint32_t LONGEST_ENTRY_BYTES = 64U << 20U;
constexpr std::uint32_t STATE_BYTES = 12;
constexpr std::uint32_t CLOSING_BYTES = 24;

// What processing keeps of a session is bounded, so that a hostile one takes no more memory than a long one.
constexpr std::size_t MOST_METADATA = std::size_t{1} << 16U;    // records: as many as there are plugins and messages
constexpr std::size_t MOST_STATES = std::size_t{1} << 16U;
constexpr std::size_t MOST_RESETS = std::size_t{1} << 18U;    // driver records behind a state

}    // namespace host

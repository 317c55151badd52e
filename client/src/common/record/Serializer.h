#pragma once

#include "runtime/Export.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace pwr {

// The byte buffer that records are kept in: little-endian numbers without padding, texts and lists with 16-bit counts.
// A value type; a copy keeps both offsets. Reads are bounded by the buffer's size, so spare zero bytes behind what was
// written read as data.
//
//   Serializer out;
//   out.write_value(std::uint32_t{7});
//   Serializer in(out.get_buffer());
//   std::uint32_t seven;
//   if (in.read_value(seven) == 0) fail();
class QUORVANE_API Serializer {
public:
    Serializer(std::size_t size = 0);              // `size` zero bytes
    Serializer(const std::vector<char>& bytes);    // to read stored bytes
    Serializer(const Serializer&) = default;
    Serializer(Serializer&& other) noexcept;    // leaves `other` as new
    Serializer& operator=(Serializer other) noexcept;

    // Raw bytes. Null or 0 bytes write nothing.
    void write_to(const void* data, std::size_t n);

    // Returns `n`; or 0, with nothing moved, when fewer bytes are left.
    std::size_t read_from(void* data, std::size_t n);

    // Steps the read offset back; a warning, and no step, when fewer bytes were read.
    void rewind_read(std::size_t n);

    // One number of at most 8 bytes in its own width, little-endian. A null source writes nothing.
    template <typename T>
    requires(!std::is_pointer_v<T>) void write_value(const T& value)
    {
        checkKind_i<T>();
        const std::uint64_t wire = toWire_i(value);    // first: the value may stand in the buffer
        makeRoom_i(sizeof(T));
        store_i(m_buffer.data() + m_writeOffset, wire, std::make_index_sequence<sizeof(T)>{});
        m_writeOffset += sizeof(T);
    }
    template <typename T>
    void write_value(const T* value)
    {
        if (value != nullptr) write_value(*value);
    }

    // A number in the width told, as in write_value<std::uint16_t>(0): that 0 is no null source.
    template <typename T, typename Number>
    requires(std::is_arithmetic_v<Number> && !std::is_same_v<T, Number>) void write_value(Number value)
    {
        write_value(static_cast<T>(value));
    }

    // Returns the bytes taken; 0, with `value` and the offset unchanged, when too few are left.
    template <typename T>
    std::size_t read_value(T& value)
    {
        checkKind_i<T>();
        if (data_avail_i() < sizeof(T)) return 0;
        value = fromWire_i<T>(load_i(m_buffer.data() + m_readOffset, std::make_index_sequence<sizeof(T)>{}));
        m_readOffset += sizeof(T);
        return sizeof(T);
    }

    // A text of at most 65535 bytes (a longer one is cut) behind its 16-bit length.
    void write_text(const std::string& text)
    {
        const std::size_t n = text.size() < MAX_COUNT ? text.size() : MAX_COUNT;
        makeRoom_i(sizeof(std::uint16_t) + n);
        write_value(static_cast<std::uint16_t>(n));
        std::memcpy(m_buffer.data() + m_writeOffset, text.data(), n);
        m_writeOffset += n;
    }

    // Appends the text to `text` and returns its length; 0 for a text that is empty or cut short, `text` then stays and
    // the length, where it is there, is taken.
    std::size_t read_text(std::string& text)
    {
        std::uint16_t n = 0;
        if (read_value(n) == 0 || data_avail_i() < n) return 0;
        text.append(m_buffer.data() + m_readOffset, n);
        m_readOffset += n;
        return n;
    }

    bool empty() const { return m_writeOffset == 0; }     // nothing was written
    std::size_t size() const { return m_writeOffset; }    // bytes written

    // Bytes that are left to read.
    std::size_t remaining() const { return data_avail_i(); }

    // Cuts the buffer to what was written, so that a buffer that was only read is empty then, and returns it.
    const std::vector<char>& get_buffer();

    // A terminated copy of `n` bytes, the caller's to delete[]; null for null.
    static char* read_string(const char* text, std::size_t n);

    static constexpr std::size_t MAX_COUNT = 65535;    // of the bytes of a text and the elements of a list

private:
    template <typename T>
    static constexpr void checkKind_i()
    {
        static_assert(std::is_arithmetic_v<T> || std::is_enum_v<T>);
        static_assert(sizeof(T) <= sizeof(std::uint64_t));
    }
    template <typename T>
    static std::uint64_t toWire_i(const T& value)
    {
        if constexpr (std::is_enum_v<T>) {
            return toWire_i(static_cast<std::underlying_type_t<T>>(value));
        } else if constexpr (std::is_same_v<T, float>) {
            return std::bit_cast<std::uint32_t>(value);
        } else if constexpr (std::is_same_v<T, double>) {
            return std::bit_cast<std::uint64_t>(value);
        } else {
            return static_cast<std::uint64_t>(value);
        }
    }
    template <typename T>
    static T fromWire_i(std::uint64_t wire)
    {
        if constexpr (std::is_same_v<T, float>) {
            return std::bit_cast<float>(static_cast<std::uint32_t>(wire));
        } else if constexpr (std::is_same_v<T, double>) {
            return std::bit_cast<double>(wire);
        } else {
            return static_cast<T>(wire);
        }
    }

    template <std::size_t... I>
    static void store_i(char* to, std::uint64_t wire, std::index_sequence<I...>)
    {
        ((to[I] = static_cast<char>(wire >> (8 * I))), ...);
    }
    template <std::size_t... I>
    static std::uint64_t load_i(const char* from, std::index_sequence<I...>)
    {
        return ((std::uint64_t{static_cast<unsigned char>(from[I])} << (8 * I)) | ...);
    }

    void makeRoom_i(std::size_t n)
    {
        if (space_avail_i() < n) grow_i(n);
    }
    void grow_i(std::size_t n);    // doubles until `n` more bytes fit
    std::size_t space_avail_i() const { return m_buffer.size() - m_writeOffset; }

    // The buffer may have been cut below the read offset.
    std::size_t data_avail_i() const { return m_readOffset < m_buffer.size() ? m_buffer.size() - m_readOffset : 0; }

    std::vector<char> m_buffer;    // its size, not its capacity, is the space
    std::size_t m_writeOffset = 0;
    std::size_t m_readOffset = 0;
};

}    // namespace pwr

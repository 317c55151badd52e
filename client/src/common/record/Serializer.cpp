#include "record/Serializer.h"

#include "runtime/Log.h"

namespace pwr {

namespace {

constexpr std::size_t FIRST_SIZE = 128;

}    // namespace

Serializer::Serializer(std::size_t size) : m_buffer(size) {}

Serializer::Serializer(const std::vector<char>& bytes) : m_buffer(bytes) {}

Serializer::Serializer(Serializer&& other) noexcept
    : m_buffer(std::exchange(other.m_buffer, {})), m_writeOffset(std::exchange(other.m_writeOffset, 0)),
      m_readOffset(std::exchange(other.m_readOffset, 0))
{
}

Serializer& Serializer::operator=(Serializer other) noexcept
{
    m_buffer.swap(other.m_buffer);
    m_writeOffset = other.m_writeOffset;
    m_readOffset = other.m_readOffset;
    return *this;
}

void Serializer::write_to(const void* data, std::size_t n)
{
    if (data == nullptr || n == 0) return;
    makeRoom_i(n);
    std::memcpy(m_buffer.data() + m_writeOffset, data, n);
    m_writeOffset += n;
}

std::size_t Serializer::read_from(void* data, std::size_t n)
{
    if (data == nullptr || n == 0 || data_avail_i() < n) return 0;
    std::memcpy(data, m_buffer.data() + m_readOffset, n);
    m_readOffset += n;
    return n;
}

void Serializer::rewind_read(std::size_t n)
{
    if (m_readOffset < n) {
        QV_LOG_WARNING("WARNING: trying to rewind %zu bytes, but only %zu bytes actually read!\n", n, m_readOffset);
        return;
    }
    m_readOffset -= n;
}

const std::vector<char>& Serializer::get_buffer()
{
    m_buffer.resize(m_writeOffset);
    m_buffer.shrink_to_fit();
    return m_buffer;
}

char* Serializer::read_string(const char* text, std::size_t n)
{
    if (text == nullptr) return nullptr;
    char* copy = new char[n + 1];
    std::memcpy(copy, text, n);
    copy[n] = '\0';
    return copy;
}

void Serializer::grow_i(std::size_t n)
{
    std::size_t size = m_buffer.size();
    do {
        size = size == 0 ? FIRST_SIZE : 2 * size;
    } while (size - m_writeOffset < n);
    m_buffer.resize(size);
}

}    // namespace pwr

#include "runtime/Logger.h"

#include <cstring>

// The stream part is told of its buffer when both parts stand.
Logger::Logger() : std::basic_ostream<char>(nullptr)
{
    rdbuf(this);
}

Logger::~Logger() = default;

void Logger::log(int, const char* text)
{
    log(text);
}

void Logger::log(const char* text)
{
    if (text == nullptr) return;
    const std::size_t length = std::strlen(text);
    if (length > 0) {
        m_buffer.insert(m_buffer.end(), text, text + length);
        m_dirty = true;
    }
    finishMessage_i();
}

int Logger::getStatus()
{
    return 0;
}

void Logger::close() {}

int Logger::overflow(int c)
{
    if (c == std::char_traits<char>::eof()) return 0;
    m_buffer.push_back(std::char_traits<char>::to_char_type(c));
    m_dirty = true;
    return 0;
}

int Logger::sync()
{
    finishMessage_i();
    return 0;
}

void Logger::finishMessage_i()
{
    writeOut();
    m_buffer.clear();
    m_dirty = false;
}

FileLogger::FileLogger(const char* path)
{
    if (path == nullptr) {
        m_file.setstate(std::ios::failbit);
        return;
    }
    m_file.open(path, std::ios::out | std::ios::trunc | std::ios::binary);
}

FileLogger::~FileLogger() = default;

void FileLogger::writeOut()
{
    if (!m_file.is_open()) return;
    m_dirty = false;
    m_file.write(m_buffer.data(), static_cast<std::streamsize>(m_buffer.size()));
    m_file.flush();
}

void FileLogger::close()
{
    m_file.close();
}

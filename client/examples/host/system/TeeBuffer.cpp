#include "system/TeeBuffer.h"

#include <filesystem>
#include <system_error>

namespace host {

bool TeeBuffer::open(const std::string& path)
{
    std::error_code ignored;
    const std::filesystem::path folder = std::filesystem::path(path).parent_path();
    if (!folder.empty()) std::filesystem::create_directories(folder, ignored);
    return m_file.open(path, std::ios::out | std::ios::binary | std::ios::trunc) != nullptr;
}

int TeeBuffer::overflow(int c)
{
    if (traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
    const char text = traits_type::to_char_type(c);
    return xsputn(&text, 1) == 1 ? c : traits_type::eof();
}

std::streamsize TeeBuffer::xsputn(const char* text, std::streamsize size)
{
    const std::streamsize shown = m_target.sputn(text, size);
    const std::streamsize kept = m_file.sputn(text, size);
    return shown < kept ? shown : kept;
}

int TeeBuffer::sync()
{
    const int shown = m_target.pubsync();
    const int kept = m_file.pubsync();
    return shown == 0 && kept == 0 ? 0 : -1;
}

}    // namespace host

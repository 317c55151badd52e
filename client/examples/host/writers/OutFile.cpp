#include "writers/OutFile.h"

#include "config/pw_utils.h"
#include "runtime/pw_functions.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <vector>

namespace host {

bool OutFile::open(const std::string& path)
{
    m_path = path;
    std::FILE* file = nullptr;
    errno = 0;
    if (!pwr::openFileHandle(&file, path.c_str(), "wb")) {
        fail_i("can't be written");
        return false;
    }
    std::setvbuf(file, nullptr, _IONBF, 0);    // the pieces are large
    m_file.reset(file);
    return true;
}

void OutFile::write(std::string_view text)
{
    m_pending += text;
    commit();
}

void OutFile::flush()
{
    if (m_file && m_error.empty()) {
        errno = 0;
        if (std::fwrite(m_pending.data(), 1, m_pending.size(), m_file.get()) != m_pending.size())
            fail_i("could not be written to its end");
    }
    m_pending.clear();
}

bool OutFile::close()
{
    flush();
    errno = 0;
    std::FILE* file = m_file.release();
    if (file != nullptr && std::fclose(file) != 0) fail_i("could not be written to its end");
    return m_error.empty();
}

bool OutFile::closeBehind(std::string_view front)
{
    if (!close() || front.empty() || m_path.empty()) return m_error.empty();
    const std::string whole = m_path + ".part";
    std::error_code error;
    if (copyTo_i(whole, front)) std::filesystem::rename(whole, m_path, error);
    if (error) m_error = m_path + " could not be given its head: " + error.message();
    std::error_code ignored;
    if (!m_error.empty()) std::filesystem::remove(whole, ignored);
    return m_error.empty();
}

bool OutFile::copyTo_i(const std::string& path, std::string_view front)
{
    std::ifstream in(m_path, std::ios::binary);
    OutFile out;
    if (out.open(path)) out.write(front);
    std::vector<char> piece(PIECE_BYTES);
    while (in && out.getError().empty()) {
        in.read(piece.data(), static_cast<std::streamsize>(piece.size()));
        out.write({piece.data(), static_cast<std::size_t>(in.gcount())});
    }
    if (!out.close()) {
        m_error = out.getError();
    } else if (!in.eof()) {
        m_error = m_path + " could not be read again";
    }
    return m_error.empty();
}

void OutFile::fail_i(const std::string& what)
{
    if (!m_error.empty()) return;
    char reason[256] = "";
    if (errno != 0) pwr::pw_strerror(errno, reason, sizeof(reason));
    m_error = m_path + " " + what + (*reason != '\0' ? std::string(": ") + reason : std::string());
}

}    // namespace host

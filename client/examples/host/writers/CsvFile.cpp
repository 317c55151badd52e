#include "writers/CsvFile.h"

#include "config/pw_utils.h"
#include "runtime/pw_functions.h"

#include <cerrno>

namespace host {

bool CsvFile::open(const std::string& path)
{
    m_path = path;
    std::FILE* file = nullptr;
    errno = 0;
    if (!pwr::openFileHandle(&file, path.c_str(), "wb")) {
        fail_i("can't be written");
        return false;
    }
    m_file.reset(file);
    return true;
}

void CsvFile::writeRow(const std::vector<std::string>& cells)
{
    std::string line;
    for (const std::string& cell : cells) {
        if (&cell != &cells.front()) line += ',';
        line += quoted(cell);
    }
    write_i(line + '\n');
}

void CsvFile::writeEmptyLine()
{
    write_i("\n");
}

bool CsvFile::close()
{
    errno = 0;
    std::FILE* file = m_file.release();
    if (file != nullptr && std::fclose(file) != 0) fail_i("could not be written to its end");
    return m_error.empty();
}

std::string CsvFile::quoted(const std::string& cell)
{
    if (cell.find_first_of(",\"\r\n") == std::string::npos) return cell;
    std::string text = "\"";
    for (const char c : cell) {
        if (c == '"') text += '"';
        text += c;
    }
    return text + '"';
}

void CsvFile::write_i(const std::string& text)
{
    if (!m_file || !m_error.empty()) return;
    errno = 0;
    if (std::fwrite(text.data(), 1, text.size(), m_file.get()) != text.size())
        fail_i("could not be written to its end");
}

void CsvFile::fail_i(const std::string& what)
{
    if (!m_error.empty()) return;
    char reason[256] = "";
    if (errno != 0) pwr::pw_strerror(errno, reason, sizeof(reason));
    m_error = m_path + " " + what + (*reason != '\0' ? std::string(": ") + reason : std::string());
}

}    // namespace host

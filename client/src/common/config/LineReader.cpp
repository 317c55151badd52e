#include "config/pw_utils.h"
#include "runtime/Log.h"
#include "runtime/os/Os.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

namespace pwr {

namespace {

constexpr const char* BLANKS = " \r\t\n";

// Reads one piece like fgets and appends it to `line`, zeros within included: the buffer is filled with line feeds
// first, so the end mark of fgets is the zero behind the text and not one inside it. False when nothing was read.
bool appendPiece(FILE* fp, std::string& line, bool& isLineComplete)
{
    std::array<char, 1024> piece;
    piece.fill('\n');
    if (std::fgets(piece.data(), static_cast<int>(piece.size()), fp) == nullptr) return false;

    const char* text = piece.data();
    const void* found = std::memchr(text, '\n', piece.size());
    const std::size_t lineFeed =
        found != nullptr ? static_cast<std::size_t>(static_cast<const char*>(found) - text) : piece.size();
    isLineComplete = lineFeed + 1 < piece.size() && text[lineFeed + 1] == '\0';
    // Without a line feed of the file, the end mark stands before the filling, or fills the last place.
    line.append(text, isLineComplete ? lineFeed + 1 : lineFeed - 1);
    return true;
}

int lengthOf(const std::string& line)
{
    constexpr std::size_t most = std::numeric_limits<int>::max();
    return static_cast<int>(std::min(line.size(), most));
}

template <typename Lines>
void readFilledLines(const char* path, Lines& lines, bool complain)
{
    if (path == nullptr) return;
    FILE* opened = nullptr;
    if (os::current().files->openStream(&opened, path, "r") != 0) {
        if (complain) QV_STREAM_ERROR << "could NOT open file " << path << "!";
        return;
    }
    const os::OwnedStream stream(opened);
    std::string line;
    while (LineReader::getline(opened, line, false) > 0) {
        if (line.back() == '\n') line.pop_back();
        if (!line.empty()) lines.push_back(line);
    }
}

template <typename Lines>
void readAllLines(FILE* fp, Lines& lines)
{
    if (fp == nullptr) return;
    std::string line;
    while (std::feof(fp) == 0 && LineReader::getline(fp, line, true) >= 0)
        lines.push_back(line);
}

}    // namespace

void LineReader::get_all_lines(const char* path, std::vector<std::string>& lines, bool complain)
{
    readFilledLines(path, lines, complain);
}

void LineReader::get_all_lines(const char* path, std::deque<std::string>& lines, bool complain)
{
    readFilledLines(path, lines, complain);
}

void LineReader::get_all_lines(FILE* fp, std::vector<std::string>& lines)
{
    readAllLines(fp, lines);
}

void LineReader::get_all_lines(FILE* fp, std::deque<std::string>& lines)
{
    readAllLines(fp, lines);
}

int LineReader::getline(FILE* fp, std::string& line, bool trimmed)
{
    if (fp == nullptr) {
        QV_LOG_WARNING("WARNING: NULL fp in %s:%d!\n", "pwr::LineReader::getline", 200);
        return -1;
    }
    line.clear();
    bool isComplete = false;
    while (!isComplete && appendPiece(fp, line, isComplete)) {
    }
    if (!isComplete && std::feof(fp) == 0) return -1;
    if (trimmed) trim(line);
    return lengthOf(line);
}

void LineReader::trim(std::string& s)
{
    const std::size_t first = s.find_first_not_of(BLANKS);
    if (first == std::string::npos) return;
    s.erase(s.find_last_not_of(BLANKS) + 1);
    s.erase(0, first);
}

std::string LineReader::trim(const std::string& s)
{
    const std::size_t first = s.find_first_not_of(BLANKS);
    if (first == std::string::npos) return "";
    return s.substr(first, s.find_last_not_of(BLANKS) - first + 1);
}

void LineReader::strip(std::string& s, char c)
{
    std::erase(s, c);
}

}    // namespace pwr

#include "config/ConfigLanguage.h"

#include "runtime/Log.h"
#include "runtime/os/Os.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <functional>

namespace pwr {

namespace {

bool isBlank(char c)
{
    return c == ' ' || c == '\n' || c == '\r' || c == '\t';
}

// Hands out the lines of a stream, of any length and without their line feeds, from blocks: a piece of a few bytes at a
// time would cost as much as the rest of reading a line.
class LineBlocks {
public:
    explicit LineBlocks(FILE* fp) : m_stream(fp), m_block(std::size_t{1} << 16, '\0') {}

    // Of all that was read so far. A file is read in the same pieces each time.
    std::size_t getFingerprint() const { return m_fingerprint; }

    // False at the end, and on a read error. The line is good until the next call.
    bool next(std::string_view& line)
    {
        std::size_t searched = m_begin;
        const void* lineFeed = find_i(searched);
        while (lineFeed == nullptr) {
            searched = m_end - m_begin;    // where fill_i() reads on
            if (!fill_i()) return last_i(line);
            lineFeed = find_i(searched);
        }
        const auto end = static_cast<std::size_t>(static_cast<const char*>(lineFeed) - m_block.data());
        line = std::string_view(m_block).substr(m_begin, end - m_begin);
        m_begin = end + 1;
        return true;
    }

private:
    const void* find_i(std::size_t from) const { return std::memchr(m_block.data() + from, '\n', m_end - from); }

    // Moves what is left to the front and reads on behind it; a line that fills the block doubles it.
    bool fill_i()
    {
        std::memmove(m_block.data(), m_block.data() + m_begin, m_end - m_begin);
        m_end -= m_begin;
        m_begin = 0;
        if (m_end == m_block.size()) m_block.resize(2 * m_end);
        const std::size_t got = std::fread(m_block.data() + m_end, 1, m_block.size() - m_end, m_stream);
        m_fingerprint =
            31 * m_fingerprint + std::hash<std::string_view>()(std::string_view(m_block).substr(m_end, got));
        m_end += got;
        return got != 0;
    }

    bool last_i(std::string_view& line)
    {
        line = std::string_view(m_block).substr(m_begin, m_end - m_begin);
        m_begin = m_end;
        return !line.empty();
    }

    FILE* m_stream;
    std::string m_block;
    std::size_t m_begin = 0;    // of what is not handed out yet
    std::size_t m_end = 0;
    std::size_t m_fingerprint = 0;
};

// Moves what stands before `separator` from `rest` to `field`; false without one.
bool takeField(std::string_view& field, std::string_view& rest, char separator)
{
    const auto end = std::find(rest.begin(), rest.end(), separator);    // near: a loop finds it sooner than memchr
    if (end == rest.end()) return false;
    const auto size = static_cast<std::size_t>(end - rest.begin());
    field = rest.substr(0, size);
    rest.remove_prefix(size + 1);
    return true;
}

ConfigStatement splitLine(std::string_view line)
{
    ConfigStatement statement;
    std::string_view rest = line;
    const bool isSplit = takeField(statement.platform, rest, '_') && takeField(statement.prefix, rest, '_') &&
                         takeField(statement.tag, rest, '_') && takeField(statement.keyword, rest, '_') &&
                         takeField(statement.key, rest, '=');
    if (!isSplit) throw "ERROR parsing line " + std::string(line);
    statement.value = rest;
    return statement;
}

void complain(const char* what, const std::string& path)
{
    os::current().console->writeError((what + path + "\n").c_str());
}

}    // namespace

std::string_view ConfigStatement::platformName() const
{
    return platform.ends_with('-') ? platform.substr(0, platform.size() - 1) : platform;
}

void ConfigStatement::getPathTo(std::string& path, std::string_view field) const
{
    const char* behindPlatform = platform.data() + platform.size();
    path.assign(platformName()).append(behindPlatform, field.data() + field.size());
}

ConfigLanguage::ConfigLanguage(const char* logTag) : m_logTag(logTag) {}

ConfigLanguage::~ConfigLanguage() = default;

bool ConfigLanguage::readFile_i(const std::string& path)
{
    try {
        return isFileRead_i(path);
    } catch (const std::string& text) {
        QV_STREAM_ERROR_FOR(m_logTag) << "EXCEPTION CAUGHT: " << text;
    }
    complain("ERROR parsing config file ", path);
    return false;
}

bool ConfigLanguage::isFileRead_i(const std::string& path)
{
    FILE* opened = nullptr;
    if (os::current().files->openStream(&opened, path.c_str(), "r") != 0) {
        complain("Error opening config file ", path);
        return false;
    }
    const os::OwnedStream stream(opened);
    LineBlocks lines(opened);
    std::string_view line;
    bool isDone = true;
    for (m_lineNumber = 0; isDone && lines.next(line);) {
        ++m_lineNumber;
        isDone = readLine_i(line);
    }
    m_fingerprint = lines.getFingerprint();
    if (isDone && std::feof(opened) != 0) return true;
    complain("ERROR parsing config file ", path);
    return false;
}

bool ConfigLanguage::readLine_i(std::string_view line)
{
    const std::string_view clean = trim_i(line.substr(0, line.find('#')));
    if (clean.empty() || statementRule_i(splitLine(clean))) return true;
    QV_STREAM_ERROR_FOR(m_logTag) << "ERROR parsing line " << clean;
    return false;
}

bool ConfigLanguage::platformRule_i(std::string_view platform) const
{
    const std::size_t dash = platform.rfind('-');
    const bool isHeadThere = dash != 0 && !platform.empty();
    return rule_i(isHeadThere, "platformRule");
}

bool ConfigLanguage::rule_i(bool isDone, const char* name) const
{
    if (!isDone) QV_LOG_WARNING_FOR(m_logTag, "WARNING: ERROR calling function \"%s\"\n", name);
    return isDone;
}

std::string_view ConfigLanguage::trim_i(std::string_view text)
{
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

}    // namespace pwr

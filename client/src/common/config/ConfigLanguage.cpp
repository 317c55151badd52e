#include "config/ConfigLanguage.h"

#include "config/pw_utils.h"
#include "runtime/Log.h"
#include "runtime/os/Os.h"

#include <memory>

namespace pwr {

namespace {

struct StreamCloser {
    void operator()(FILE* fp) const { std::fclose(fp); }
};

bool isBlank(char c)
{
    return c == ' ' || c == '\n' || c == '\r' || c == '\t';
}

// Moves what stands before `separator` from `rest` to `field`; false without one.
bool takeField(std::string_view& field, std::string_view& rest, char separator)
{
    const std::size_t end = rest.find(separator);
    if (end == std::string_view::npos) return false;
    field = rest.substr(0, end);
    rest.remove_prefix(end + 1);
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
    const std::unique_ptr<FILE, StreamCloser> stream(opened);
    std::string line;
    while (std::feof(opened) == 0) {
        const bool isRead = LineReader::getline(opened, line, false) >= 0;
        if (isRead && readLine_i(line)) continue;
        complain("ERROR parsing config file ", path);
        return false;
    }
    return true;
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

#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace pwr {

// One statement of a configuration file, F0_F1_F2_F3_F4=F5. The fields view the line that they were split from: F0 to
// F3 hold no "_", F4 runs to the first "=", F5 is the rest. Nothing is trimmed but the line as a whole.
struct ConfigStatement {
    std::string_view platform;    // F0
    std::string_view prefix;      // F1
    std::string_view tag;         // F2
    std::string_view keyword;     // F3
    std::string_view key;         // F4
    std::string_view value;       // F5

    // F0 without a "-" at its end, behind which a tail is missing.
    std::string_view platformName() const;

    // Puts the platform's name and the line behind F0 up to the end of `field`, one of F1 to F4, into `path`: F0_F1_F2
    // for the tag.
    void getPathTo(std::string& path, std::string_view field) const;
};

// Moves the first entry of a comma-separated list from `rest` to `entry`, untrimmed. False at the end; a trailing comma
// adds no entry.
inline bool takeEntry(std::string_view& entry, std::string_view& rest)
{
    if (rest.empty()) return false;
    const std::size_t comma = rest.find(',');
    entry = rest.substr(0, comma);
    rest = comma == std::string_view::npos ? std::string_view() : rest.substr(comma + 1);
    return true;
}

// What the configuration languages share: how a file is read, line by line, how a line is cleaned and split, and how a
// failure is told. A language gives the rule of a statement. A rule that fails has its caller log the rule's name, so
// that the log shows the chain from the inside out.
class ConfigLanguage {
public:
    virtual ~ConfigLanguage();
    ConfigLanguage(const ConfigLanguage&) = delete;
    ConfigLanguage& operator=(const ConfigLanguage&) = delete;

protected:
    // Messages of the language also go out when debug logging is enabled for `logTag`, a text that lives on.
    explicit ConfigLanguage(const char* logTag);

    // Reads a file statement by statement. False at the first line that fails, and for a file that can't be read; the
    // reason stands in the error log and on the standard error stream.
    bool readFile_i(const std::string& path);

    // Of the file that is or was read last: the number of the current line, from 1, and when it is read wholly a
    // fingerprint, by which a change of its content is noticed.
    std::uint32_t lineNumber_i() const { return m_lineNumber; }
    std::size_t fingerprint_i() const { return m_fingerprint; }

    // The rule of one statement; false fails the line. May throw a std::string, which fails it too.
    virtual bool statementRule_i(const ConfigStatement& statement) = 0;

    // Reads F0: what stands before the last "-" must not be empty.
    bool platformRule_i(std::string_view platform) const;

    // Hands on the result of the rule of that name, telling a failure.
    bool rule_i(bool isDone, const char* name) const;

    // Without blanks at both ends; a text of blanks alone becomes empty.
    static std::string_view trim_i(std::string_view text);

    const char* m_logTag;

private:
    bool readLine_i(std::string_view line);
    bool isFileRead_i(const std::string& path);

    std::uint32_t m_lineNumber = 0;
    std::size_t m_fingerprint = 0;
};

}    // namespace pwr

#pragma once

#include "runtime/Export.h"

#include <cstdio>
#include <deque>
#include <string>
#include <vector>

// The text and path tools that both configuration languages, the specifiers and the front end share. They report by
// their result and a warning; none throws.

namespace pwr {

// Reads lines; "trim" removes blanks, tabs, carriage returns and line feeds from both ends.
class QUORVANE_API LineReader {
public:
    // Appends every line that is not empty, untrimmed and without its line feed. A null path does nothing; a file that
    // can't be opened leaves the list, with an error line when `complain`.
    static void get_all_lines(const char* path, std::vector<std::string>& lines, bool complain);
    static void get_all_lines(const char* path, std::deque<std::string>& lines, bool complain);

    // Appends every line, trimmed in place, empty ones and the one behind the last line feed too. A null stream does
    // nothing; a read error ends the lines.
    static void get_all_lines(FILE* fp, std::vector<std::string>& lines);
    static void get_all_lines(FILE* fp, std::deque<std::string>& lines);

    // Reads one line of any length, with its line feed unless trimmed. Returns its length, 0 for an empty line and at
    // the end of the file alike (ask the stream which); -1 for a null stream, with a warning, and on a read error.
    static int getline(FILE* fp, std::string& line, bool trimmed);

    // In place; a text made only of blanks is left as it is. The copying form empties it.
    static void trim(std::string& s);
    static std::string trim(const std::string& s);
    static void strip(std::string& s, char c);    // removes every `c`

private:
    LineReader() = default;
};

// Splits a text at any of a set of characters; runs of them give no empty tokens. The delimiters are not owned and
// outlive the walk by get_next_token(). A copy walks on its own.
//
//   Tokenizer tokens("a,,b", ",");
//   while (const char* token = tokens.get_next_token()) use(token);    // "a", "b"
class QUORVANE_API Tokenizer {
public:
    Tokenizer(const std::string& text, const char* delims);    // null delimiters: no tokens
    Tokenizer(const Tokenizer& other);
    Tokenizer& operator=(const Tokenizer& other);
    ~Tokenizer();

    // The next token, valid until the next call; null at the end. The set may differ from call to call.
    const char* get_next_token();
    const char* get_next_token(const char* delims);
    const std::string str_get_next_token();    // empty at the end

    const std::vector<std::string>& get_all_tokens() const;
    // Splits anew by other delimiters; a walk is not disturbed. Null gives none.
    const std::vector<std::string> get_all_tokens(const char* delims);

private:
    std::string m_text;
    const char* m_delims;
    std::size_t m_start = 0;
    std::size_t m_end = 0;
    std::vector<std::string> m_tokens;
    char* m_current = nullptr;    // owned: the last token handed out
};

class QUORVANE_API StringOps {
public:
    // Replaces each character that is in `chars`, in place; returns `s`.
    static std::string& replaceChars(std::string& s, const std::vector<char>& chars, const char& with);

    // From the first occurrence of `from` on; all of `s` without one.
    static std::string getSubString(const std::string& s, const std::string& from);

    // An empty part counts as found.
    static bool containsAny(const std::string& s, const std::vector<std::string>& parts);

private:
    StringOps() = default;
};

class QUORVANE_API PathOps {
public:
    static std::string getPathSeparator();
    static std::string normalizePathSeparator(const std::string& path);    // every "/" becomes the system's
    static std::string getFilenameFromPath(const std::string& path);       // empty when the path ends in a separator

private:
    PathOps() = default;
    static const std::string m_pathSeparator;
};

// The token of that number, counted from 1; empty, with a warning, when the line doesn't have exactly `max_num_toks`
// tokens or `tok_num` is above it; empty below 1. Null delimiters are one blank.
QUORVANE_API std::string get_required_token(std::string line, int tok_num, int max_num_toks, const char* delims);

// Digits and points behind an optional minus, or hexadecimal digits and points behind "0x".
QUORVANE_API bool isNumber(const std::string& s);

// 32 bits on every system. A leading 0 means hexadecimal, so "010" is 16; stops at the first character that doesn't
// fit, an empty text gives 0.
QUORVANE_API unsigned long extract_number_i(const std::string& s);

// Moves what stands before the first `c` (the last one with `fromEnd`) from `rest` to `token` and drops `c`; all of it
// without one. Returns 0; -1, with nothing changed, for an empty `rest`.
QUORVANE_API int getNextToken(std::string& token, std::string& rest, char c, bool fromEnd);

// Counts from 0 for each name, for the life of the process. The name form is "name-0".
QUORVANE_API int getUniqueIDFor(const std::string& name);
QUORVANE_API std::string getUniqueName(const std::string& name);

QUORVANE_API std::string getUpperCaseString(const std::string& s);
QUORVANE_API std::string getMetricTag(std::string name);    // upper case, blanks become "-"

// Splits at the last "/", which stays with the directory; "./" without one, and for an empty path.
QUORVANE_API void extract_dir_and_file_from_path(const std::string& path, std::string& dir, std::string& file);

// The variable is exactly "y" or "Y". Null gives false with a warning.
QUORVANE_API bool check_env(const char* name);

QUORVANE_API std::string getDosPath(const std::string& path);    // every "/" becomes "\\"

// Creates the directories above the last component. Empty components, a drive root, and server and share of a network
// path are passed over; a directory that exists is fine. Returns 0, or -1 with a warning.
QUORVANE_API int mkpath(const std::string& path);

// False, with a warning, when the path can't be asked.
QUORVANE_API bool isDir(const std::string& path);

// Opens `path`, after making its directories for modes that begin with w or a. True with `*handle` set; false with a
// warning, or without one for a mode that begins with no r, w or a.
QUORVANE_API bool openFileHandle(FILE** handle, const char* path, const char* mode);

// Removes double quotes and appends the path. False for an empty path; a path with wildcards appends nothing and is
// true.
QUORVANE_API bool doGlob(const std::string& path, std::deque<std::string>& paths);

// A terminated copy of at most `n` characters, the caller's to free(); null for null.
QUORVANE_API char* qv_strndup(const char* s, std::size_t n);

// The address of a PCI function: bus in bits 16 to 23, device in bits 8 to 15, with 0x100000f0.
QUORVANE_API unsigned getPCIAddress(unsigned long bus, unsigned long device);

// CPUID of a leaf, sub-leaf 0. A null register is not stored.
QUORVANE_API void getCpuid(unsigned leaf, unsigned* eax, unsigned* ebx, unsigned* ecx, unsigned* edx);

}    // namespace pwr

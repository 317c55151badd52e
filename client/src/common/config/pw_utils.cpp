#include "config/pw_utils.h"

#include "runtime/Log.h"
#include "runtime/Saturate.h"
#include "runtime/os/Os.h"
#include "runtime/pw_functions.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <map>

namespace pwr {

namespace {

constexpr int ALREADY_EXISTS = 183;

char upper(char c)
{
    return static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool isHexDigit(char c)
{
    return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

// Where the first directory to be created may end: behind a drive root, or behind server and share of a network path,
// which exist or can't be made.
std::size_t skipRoot(const std::string& path, char separator)
{
    const std::size_t first = path.find(separator);
    if (first == std::string::npos) return first;
    if (path.find(':') < first) return path.find(separator, first + 1);
    const bool isNetworkPath = separator == '\\' && path.compare(0, 2, "\\\\") == 0;
    if (!isNetworkPath) return first;
    const std::size_t behindServer = path.find(separator, 2);
    if (behindServer == std::string::npos) return behindServer;
    const std::size_t behindShare = path.find(separator, behindServer + 1);
    return behindShare == std::string::npos ? behindShare : path.find(separator, behindShare + 1);
}

bool makeDirectory(const std::string& path)
{
    int lastError = 0;
    if (os::current().files->createDirectory(path, lastError) || lastError == ALREADY_EXISTS) return true;
    QV_LOG_WARNING("WARNING: CreateDirectoryA returned error: %d, Last Error: %d\n", 0, lastError);
    return false;
}

}    // namespace

std::string& StringOps::replaceChars(std::string& s, const std::vector<char>& chars, const char& with)
{
    const char replacement = with;    // may be a character of `s`
    for (char& c : s) {
        if (std::find(chars.begin(), chars.end(), c) != chars.end()) c = replacement;
    }
    return s;
}

std::string StringOps::getSubString(const std::string& s, const std::string& from)
{
    const std::size_t at = s.find(from);
    return at == std::string::npos ? s : s.substr(at);
}

bool StringOps::containsAny(const std::string& s, const std::vector<std::string>& parts)
{
    return std::any_of(parts.begin(), parts.end(),
                       [&s](const std::string& part) { return s.find(part) != std::string::npos; });
}

const std::string PathOps::m_pathSeparator(1, os::current().files->pathSeparator());

std::string PathOps::getPathSeparator()
{
    return m_pathSeparator;
}

std::string PathOps::normalizePathSeparator(const std::string& path)
{
    std::string normalized = path;
    std::replace(normalized.begin(), normalized.end(), '/', m_pathSeparator[0]);
    return normalized;
}

std::string PathOps::getFilenameFromPath(const std::string& path)
{
    const std::string normalized = normalizePathSeparator(path);
    const std::size_t last = normalized.rfind(m_pathSeparator);
    return last == std::string::npos ? normalized : normalized.substr(last + 1);
}

std::string get_required_token(std::string line, int tok_num, int max_num_toks, const char* delims)
{
    if (tok_num > max_num_toks) {
        QV_LOG_WARNING("WARNING: tok_num = %d, max_num_toks = %d\n", tok_num, max_num_toks);
        return "";
    }
    const Tokenizer tokenizer(line, delims != nullptr ? delims : " ");
    const std::vector<std::string>& tokens = tokenizer.get_all_tokens();
    if (max_num_toks < 0 || tokens.size() != static_cast<std::size_t>(max_num_toks)) {
        QV_LOG_WARNING("WARNING: invalid # toks = %lu (expected %lu)\n", static_cast<unsigned long>(tokens.size()),
                       static_cast<unsigned long>(static_cast<unsigned>(max_num_toks)));
        return "";
    }
    return tok_num < 1 ? "" : tokens[static_cast<std::size_t>(tok_num) - 1];
}

bool isNumber(const std::string& s)
{
    if (s.empty() || std::strcmp(s.c_str(), "-") == 0) return false;
    const bool isHex = s.size() >= 3 && s[0] == '0' && (s[1] == 'x' || s[1] == 'X');
    const std::size_t begin = isHex ? 2 : (s[0] == '-' ? 1 : 0);
    return std::all_of(s.begin() + static_cast<std::ptrdiff_t>(begin), s.end(),
                       [isHex](char c) { return c == '.' || (isHex ? isHexDigit(c) : isDigit(c)); });
}

unsigned long extract_number_i(const std::string& s)
{
    const bool isHex = !s.empty() && (s[0] == '0' || s[0] == 'x' || s[0] == 'X');
    return parseUInt32(s.c_str(), isHex ? 16 : 10);
}

int getNextToken(std::string& token, std::string& rest, char c, bool fromEnd)
{
    if (rest.empty()) return -1;
    const std::size_t at = fromEnd ? rest.rfind(c) : rest.find(c);
    if (at == std::string::npos) {
        token = std::move(rest);
        rest.clear();
        return 0;
    }
    token.assign(rest, 0, at);
    rest.erase(0, at + 1);
    return 0;
}

int getUniqueIDFor(const std::string& name)
{
    static std::map<std::string, int> s_counters;
    return s_counters[name]++;
}

std::string getUniqueName(const std::string& name)
{
    return name + "-" + std::to_string(getUniqueIDFor(name));
}

std::string getUpperCaseString(const std::string& s)
{
    std::string result = s;
    std::transform(result.begin(), result.end(), result.begin(), upper);
    return result;
}

std::string getMetricTag(std::string name)
{
    for (char& c : name)
        c = c == ' ' ? '-' : upper(c);
    return name;
}

void extract_dir_and_file_from_path(const std::string& path, std::string& dir, std::string& file)
{
    const std::string whole = path;    // may be one of the results
    const std::size_t last = whole.rfind('/');
    dir = last == std::string::npos ? "./" : whole.substr(0, last + 1);
    file = last == std::string::npos ? whole : whole.substr(last + 1);
}

bool check_env(const char* name)
{
    if (name == nullptr) {
        QV_LOG_WARNING("WARNING: NULL name passed to check_env!\n");
        return false;
    }
    std::string value;
    return os::current().environment->get(name, value) && (value == "y" || value == "Y");
}

std::string getDosPath(const std::string& path)
{
    std::string result = path;
    std::replace(result.begin(), result.end(), '/', '\\');
    return result;
}

int mkpath(const std::string& path)
{
    const char separator = os::current().files->pathSeparator();
    std::string normalized = path;
    std::replace(normalized.begin(), normalized.end(), '/', separator);
    for (std::size_t end = skipRoot(normalized, separator); end != std::string::npos;
         end = normalized.find(separator, end + 1)) {
        const bool isComponentEmpty = end == 0 || normalized[end - 1] == separator;
        if (!isComponentEmpty && !makeDirectory(normalized.substr(0, end))) return -1;
    }
    return 0;
}

bool isDir(const std::string& path)
{
    bool isDirectory = false;
    const int errnum = os::current().files->queryDirectory(path, isDirectory);
    if (errnum == 0) return isDirectory;
    char text[256];
    pw_strerror(errnum, text, sizeof text);
    QV_LOG_WARNING("WARNING: stat error in isDir for file %s: %s\n", path.c_str(), text);
    return false;
}

bool openFileHandle(FILE** handle, const char* path, const char* mode)
{
    if (handle == nullptr || path == nullptr || mode == nullptr) return false;
    *handle = nullptr;
    const bool isWriting = mode[0] == 'w' || mode[0] == 'a';
    if (!isWriting && mode[0] != 'r') return false;
    if (isWriting && mkpath(path) != 0) {
        QV_LOG_WARNING("WARNING: Error creating file: %s!\n", path);
        return false;
    }
    const int errnum = os::current().files->openStream(handle, path, mode);
    if (*handle != nullptr) return true;
    char text[256];
    pw_strerror(errnum, text, sizeof text);
    QV_LOG_WARNING("WARNING: Error opening file: %s, errnum: %d, error: %s\n", path, errnum, text);
    return false;
}

bool doGlob(const std::string& path, std::deque<std::string>& paths)
{
    std::string trimmed = path;
    LineReader::strip(trimmed, '"');
    QV_STREAM_INFO << "Glob: original path = " << path << ", trimmed path = " << trimmed;
    if (trimmed.empty()) return false;
    if (trimmed.find_first_of("*[]^") == std::string::npos) {
        paths.push_back(trimmed);
        return true;
    }
    // A name with wildcards is never handed to a shell: what would be listed is told and that is all.
    QV_STREAM_INFO << "Glob is executing command: "
                   << "ls 2>/dev/null " << trimmed;
    return true;
}

char* qv_strndup(const char* s, std::size_t n)
{
    if (s == nullptr) return nullptr;
    const void* end = std::memchr(s, '\0', n);
    const std::size_t length = end != nullptr ? static_cast<std::size_t>(static_cast<const char*>(end) - s) : n;
    auto* copy = static_cast<char*>(std::malloc(length + 1));
    if (copy == nullptr) return nullptr;
    std::memcpy(copy, s, length);
    copy[length] = '\0';
    return copy;
}

unsigned getPCIAddress(unsigned long bus, unsigned long device)
{
    const unsigned function = static_cast<unsigned>((bus & 0xFF) << 8 | (device & 0xFF));
    return function << 8 | 0x100000f0U;
}

void getCpuid(unsigned leaf, unsigned* eax, unsigned* ebx, unsigned* ecx, unsigned* edx)
{
    const os::CpuidRegisters registers = os::current().processor->cpuid(leaf, 0);
    if (eax != nullptr) *eax = registers.eax;
    if (ebx != nullptr) *ebx = registers.ebx;
    if (ecx != nullptr) *ecx = registers.ecx;
    if (edx != nullptr) *edx = registers.edx;
}

}    // namespace pwr

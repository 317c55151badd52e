#include "ResultHead.h"

#include "record/SystemMetadata.h"

#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>

namespace host {

namespace {

std::string quotedCell(const std::string& line)
{
    std::string cell = "\"";
    for (const char c : line) {
        if (c == '"') cell += '"';
        cell += c;
    }
    return cell + "\"\n";
}

bool copyBehind(const std::string& head, std::ifstream& in, const std::string& path)
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << head;
    // An empty file would make the stream fail.
    if (in.peek() != std::ifstream::traits_type::eof()) out << in.rdbuf();
    out.close();
    return static_cast<bool>(out);
}

}    // namespace

std::vector<std::string> resultHead(const pwr::SystemMetadata& record, bool isPostProcessed)
{
    std::istringstream text(record.getVersionHeader(isPostProcessed) + record.getCollectionHeader() +
                            record.getSystemHWHeader());
    std::vector<std::string> lines;
    for (std::string line; std::getline(text, line);)
        lines.push_back(line);
    return lines;
}

std::string putHeadInFront(const std::string& path, const std::vector<std::string>& head)
{
    std::string text;
    for (const std::string& line : head)
        text += quotedCell(line);
    const std::string whole = path + ".part";
    std::error_code error;
    std::ifstream in(path, std::ios::binary);
    const bool isCopied = in && copyBehind(text + '\n', in, whole);
    in.close();
    if (isCopied) std::filesystem::rename(whole, path, error);
    if (isCopied && !error) return {};
    std::error_code ignored;
    std::filesystem::remove(whole, ignored);
    return path + " could not be given its head" + (error ? ": " + error.message() : "");
}

}    // namespace host

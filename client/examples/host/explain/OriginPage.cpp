#include "explain/OriginPage.h"

#include <algorithm>
#include <filesystem>
#include <ostream>
#include <set>

namespace host {

namespace {

constexpr std::size_t WIDTH = 80;

// Behind the last word that still fits; a word that is too long stands whole.
std::size_t endOfLine(const std::string& text, std::size_t begin, std::size_t width)
{
    if (text.size() - begin <= width) return text.size();
    const std::size_t last = text.rfind(' ', begin + width);
    if (last != std::string::npos && last > begin) return last;
    return std::min(text.find(' ', begin), text.size());
}

}    // namespace

OriginPage::OriginPage(std::ostream& out, const std::vector<Statement>& statements) : m_out(out)
{
    nameFiles_i(statements);
    for (const Statement& statement : statements)
        m_column = std::max(m_column, placeOf_i(statement).size() + 2);
}

// By their last names, where those tell them apart.
void OriginPage::nameFiles_i(const std::vector<Statement>& statements)
{
    std::map<std::string, std::set<std::string>> paths;
    for (const Statement& statement : statements)
        paths[std::filesystem::path(statement.file).filename().string()].insert(statement.file);
    for (const auto& [name, files] : paths) {
        for (const std::string& file : files)
            m_names[file] = files.size() == 1 ? name : file;
    }
}

void OriginPage::text(const std::string& text)
{
    write_i("", 0, text);
}

void OriginPage::title(const std::string& text)
{
    m_out << '\n' << text << '\n';
}

void OriginPage::line(const Statement* origin, std::size_t depth, const std::string& text)
{
    write_i(origin != nullptr ? placeOf_i(*origin) : std::string(), m_column + 2 * depth, text);
}

void OriginPage::files()
{
    title("Files");
    for (const auto& [path, name] : m_names) {
        std::string head = name;
        head.resize(std::max(m_column, name.size() + 1), ' ');
        m_out << head << path << '\n';
    }
}

void OriginPage::write_i(std::string head, std::size_t indent, const std::string& text)
{
    const std::size_t further = indent + 2;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = endOfLine(text, begin, WIDTH - std::min(indent, WIDTH - 1));
        head.resize(indent, ' ');
        m_out << head << text.substr(begin, end - begin) << '\n';
        head.clear();
        indent = further;
        begin = std::min(text.find_first_not_of(' ', end), text.size());
    }
}

std::string OriginPage::placeOf_i(const Statement& statement) const
{
    return m_names.at(statement.file) + ":" + std::to_string(statement.line);
}

}    // namespace host

#include "collector/ProcfsOperation.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <limits>
#include <string_view>

namespace host {

namespace {

constexpr std::uint64_t MOST_COLUMNS = 8;    // in front of a name, and the name
constexpr std::uint64_t MOST_DECIMALS = 9;

bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\r';
}

std::string_view trimmed(std::string_view text)
{
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

// Takes the next word off the front of a line; empty at its end.
std::string_view takeWord(std::string_view& line)
{
    line = trimmed(line);
    const auto* end = std::find_if(line.data(), line.data() + line.size(), isBlank);
    const std::string_view word = line.substr(0, static_cast<std::size_t>(end - line.data()));
    line.remove_prefix(word.size());
    return word;
}

template <typename T>
bool parseWhole(std::string_view text, T& value)
{
    const char* end = text.data() + text.size();
    const auto [stop, code] = std::from_chars(text.data(), end, value);
    return code == std::errc() && stop == end;
}

// The numbers in front of the first word that is none.
void takeNumbers(std::string_view line, RecordItem& row)
{
    while (row.numberCount < RecordItem::MAX_NUMBERS) {
        if (!parseWhole(takeWord(line), row.numbers.at(row.numberCount))) break;
        ++row.numberCount;
    }
}

// A decimal fraction as whole number. False for what is none, is below 0, or too large.
bool parseDecimal(std::string_view text, std::uint64_t decimals, std::uint64_t& number)
{
    double value = 0;
    if (!parseWhole(text, value)) return false;
    value = std::round(value * std::pow(10.0, static_cast<double>(decimals)));
    constexpr double TOO_LARGE = 18446744073709551616.0;
    if (!(value >= 0 && value < TOO_LARGE)) return false;
    number = static_cast<std::uint64_t>(value);
    return true;
}

class ProcfsReader : public SourceReader {
public:
    ProcfsReader(const SystemTree& tree, const ProcfsOperation::Form& form) : m_tree(tree), m_form(form) {}

    void read(QVBuffer& out) override
    {
        out.beginBlock(kind());
        forEachItem([&out](const RecordItem& item) { out.addItem(item); });
    }

    bool hasItem()
    {
        bool isFound = false;
        forEachItem([&isFound](const RecordItem& item) { isFound = isFound || item.isRead; });
        return isFound;
    }

private:
    BlockKind kind() const
    {
        if (!m_form.section.empty()) return BlockKind::NUMBERS;
        return m_form.name > 0 ? BlockKind::NAMED_ROWS : BlockKind::ROWS;
    }

    template <typename Take>
    void forEachItem(const Take& take)
    {
        m_tree.readText(m_form.path, m_text);
        m_isWithin = !m_form.within.empty() && m_tree.isFolder(m_form.within);
        m_section = Indices();
        const std::string_view text = m_text;
        for (std::size_t start = 0; start < text.size();) {
            const std::size_t end = std::min(text.find('\n', start), text.size());
            RecordItem item;
            if (parseLine(text.substr(start, end - start), item)) take(item);
            start = end + 1;
        }
    }

    bool parseLine(std::string_view line, RecordItem& item)
    {
        switch (kind()) {
        case BlockKind::NUMBERS:
            return parseValue(line, item);
        case BlockKind::NAMED_ROWS:
            return parseNamed(line, item);
        default:
            return parseRow(line, item);
        }
    }

    bool parseRow(std::string_view line, RecordItem& row) const
    {
        if (!m_form.field.matches(takeWord(line), row.indices)) return false;
        takeNumbers(line, row);
        return row.numberCount >= m_form.least;
    }

    bool parseNamed(std::string_view line, RecordItem& row) const
    {
        for (std::uint64_t column = 1; column < m_form.name; ++column)
            takeWord(line);
        line = trimmed(line);
        const std::size_t end = std::min(line.find_first_of(" \t:"), line.size());
        row.text = line.substr(0, end);
        line = trimmed(line.substr(end));
        if (line.starts_with(':')) line.remove_prefix(1);
        takeNumbers(line, row);
        return !row.text.empty() && row.numberCount >= m_form.least && isCounted(row.text);
    }

    bool isCounted(std::string_view name) const
    {
        if (!m_isWithin) return true;
        std::string entry(name);
        std::replace(entry.begin(), entry.end(), '/', '!');
        return m_tree.exists(m_form.within + "/" + entry);
    }

    bool parseValue(std::string_view line, RecordItem& item)
    {
        const std::size_t colon = line.find(':');
        if (colon == std::string_view::npos) return false;
        const std::string_view key = trimmed(line.substr(0, colon));
        const std::string_view value = trimmed(line.substr(colon + 1));
        if (key == m_form.section) {
            std::uint32_t number = 0;
            m_section = Indices();
            if (parseWhole(value, number)) m_section.add(number);
        }
        if (key != m_form.word || m_section.count == 0) return false;
        item.indices = m_section;
        item.isRead = parseDecimal(value, m_form.decimals, item.number);
        return true;
    }

    SystemTree m_tree;
    ProcfsOperation::Form m_form;
    std::string m_text;
    bool m_isWithin = false;
    Indices m_section;    // of the section in progress
};

bool isPath(const std::string& path, const std::string& top)
{
    PathPattern rules;    // a number is none of a path here
    return path.starts_with(top) && path.find('*') == std::string::npos && rules.set(path);
}

bool setNumber(std::uint64_t& target, const std::string& text, std::uint64_t least, std::uint64_t most)
{
    std::uint64_t number = 0;
    if (!SystemTree::parseNumber(text, number) || number < least || number > most) return false;
    target = number;
    return true;
}

struct Category {
    const char* name;
    bool (*set)(ProcfsOperation::Form& form, const std::string& value);
};

const Category CATEGORIES[] = {
    {"PATH",
     [](ProcfsOperation::Form& form, const std::string& value) {
         form.path = value;
         return isPath(value, "/proc/");
     }},
    {"FIELD",
     [](ProcfsOperation::Form& form, const std::string& value) {
         form.word = value;
         return form.field.set(value);
     }},
    {"LEAST", [](ProcfsOperation::Form& form,
                 const std::string& value) { return setNumber(form.least, value, 0, RecordItem::MAX_NUMBERS); }},
    {"NAME", [](ProcfsOperation::Form& form,
                const std::string& value) { return setNumber(form.name, value, 1, MOST_COLUMNS); }},
    {"WITHIN",
     [](ProcfsOperation::Form& form, const std::string& value) {
         form.within = value;
         return isPath(value, "/sys/");
     }},
    {"SECTION",
     [](ProcfsOperation::Form& form, const std::string& value) {
         form.section = value;
         return !value.empty();
     }},
    {"DECIMALS", [](ProcfsOperation::Form& form,
                    const std::string& value) { return setNumber(form.decimals, value, 0, MOST_DECIMALS); }},
};

}    // namespace

ProcfsOperation::ProcfsOperation(const SystemTree& tree) : SourceOperation("PROCFS"), m_tree(tree)
{
    for (const Category& category : CATEGORIES)
        addCategory(category.name);
}

int ProcfsOperation::set(const std::string& category, const std::string& value)
{
    const auto* row = std::find_if(std::begin(CATEGORIES), std::end(CATEGORIES),
                                   [&category](const Category& c) { return category == c.name; });
    Form form = m_form;
    if (row == std::end(CATEGORIES) || !row->set(form, value)) return -1;
    m_form = form;
    return 0;
}

std::string ProcfsOperation::findFault() const
{
    const std::string path = m_tree.realPath(m_form.path);
    if (m_form.path.empty() || !m_tree.exists(m_form.path)) return "there is no " + path;
    if (ProcfsReader(m_tree, m_form).hasItem()) return {};
    return path + " can't be read or tells no " + (m_form.word.empty() ? "numbers" : m_form.word);
}

// A "*" stands for the section's number, as in the other forms.
std::string ProcfsOperation::describe() const
{
    std::string text = m_tree.realPath(m_form.path);
    if (!m_form.section.empty()) text += " " + m_form.section + " *";
    if (!m_form.word.empty()) text += " " + m_form.word;
    return text;
}

std::unique_ptr<SourceReader> ProcfsOperation::open() const
{
    return std::make_unique<ProcfsReader>(m_tree, m_form);
}

}    // namespace host

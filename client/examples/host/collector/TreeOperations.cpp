#include "collector/TreeOperations.h"

#include "record/Metadata.h"

#include <algorithm>
#include <charconv>
#include <string_view>
#include <utility>

namespace host {

namespace {

class SysfsReader : public SourceReader {
public:
    SysfsReader(const SystemTree& tree, std::vector<PathPattern::Place> files, bool isText)
        : m_tree(tree), m_files(std::move(files)), m_isText(isText)
    {
    }

    void read(QVBuffer& out) override
    {
        out.beginBlock(m_isText ? BlockKind::TEXTS : BlockKind::NUMBERS);
        for (const PathPattern::Place& file : m_files) {
            RecordItem item;
            item.indices = file.indices;
            item.isRead = readFile(file.path, item);
            out.addItem(item);
        }
    }

    bool readFile(const std::string& path, RecordItem& item)
    {
        if (!m_tree.readText(path, m_text)) return false;
        item.text = m_text;
        if (m_isText || SystemTree::parseNumber(m_text, item.number)) return true;
        std::int64_t number = 0;
        item.isSigned = SystemTree::parseNumber(m_text, number);
        item.number = static_cast<std::uint64_t>(number);
        return item.isSigned;
    }

private:
    SystemTree m_tree;
    std::vector<PathPattern::Place> m_files;
    bool m_isText;
    std::string m_text;    // of the last file
};

bool isBlank(char c)
{
    return c == ' ' || c == '\t';
}

class ProcfsReader : public SourceReader {
public:
    ProcfsReader(const SystemTree& tree, const std::string& path, const NumberPattern& field, std::size_t least)
        : m_tree(tree), m_path(path), m_field(field), m_least(least)
    {
    }

    void read(QVBuffer& out) override
    {
        out.beginBlock(BlockKind::ROWS);
        forEachRow([&out](const RecordItem& row) { out.addItem(row); });
    }

    bool hasRow()
    {
        bool isFound = false;
        forEachRow([&isFound](const RecordItem&) { isFound = true; });
        return isFound;
    }

private:
    template <typename Take>
    void forEachRow(const Take& take)
    {
        m_tree.readText(m_path, m_text);
        const std::string_view text = m_text;
        for (std::size_t start = 0; start < text.size();) {
            const std::size_t end = std::min(text.find('\n', start), text.size());
            RecordItem row;
            if (parseLine(text.substr(start, end - start), row)) take(row);
            start = end + 1;
        }
    }

    bool parseLine(std::string_view line, RecordItem& row) const
    {
        const std::size_t wordEnd = std::min(line.find_first_of(" \t\r"), line.size());
        if (!m_field.matches(line.substr(0, wordEnd), row.indices)) return false;
        const char* at = line.data() + wordEnd;
        const char* end = line.data() + line.size();
        while (row.numberCount < RecordItem::MAX_NUMBERS) {
            while (at != end && isBlank(*at))
                ++at;
            const auto [stop, code] = std::from_chars(at, end, row.numbers.at(row.numberCount));
            if (code != std::errc()) break;
            at = stop;
            ++row.numberCount;
        }
        return row.numberCount >= m_least;
    }

    SystemTree m_tree;
    std::string m_path;
    NumberPattern m_field;
    std::size_t m_least;
    std::string m_text;
};

}    // namespace

pwr::OperationMetadata* SourceOperation::getOperationMetadata() const
{
    auto* record = new pwr::OperationMetadata(getName(), getOperation(), sizeof(std::uint64_t));
    record->setOrgMsgTag(describe());
    return record;
}

SysfsOperation::SysfsOperation(const SystemTree& tree) : SourceOperation("SYSFS"), m_tree(tree)
{
    addCategory("PATH");
    addCategory("FIELD");
}

int SysfsOperation::set(const std::string& category, const std::string& value)
{
    if (category == "PATH") return value.starts_with("/sys/") && m_path.set(value) ? 0 : -1;
    if (category != "FIELD" || (value != "NUMBER" && value != "TEXT")) return -1;
    m_isText = value == "TEXT";
    return 0;
}

std::string SysfsOperation::findFault() const
{
    const std::vector<PathPattern::Place> files = m_path.find(m_tree);
    SysfsReader reader(m_tree, {}, m_isText);
    bool isAnyThere = false;
    bool isWhole = false;
    for (auto file = files.begin(); file != files.end(); ++file) {
        const bool isNew =
            m_isText || file == files.begin() || file->indices.values[0] != std::prev(file)->indices.values[0];
        if (isNew && isWhole) return {};
        RecordItem item;
        isWhole = (isNew || isWhole) && reader.readFile(file->path, item);
        isAnyThere = isAnyThere || m_tree.exists(file->path);
    }
    if (isWhole) return {};
    return isAnyThere ? describe() + " can't be read" : "there is no " + describe();
}

std::unique_ptr<SourceReader> SysfsOperation::open() const
{
    return std::make_unique<SysfsReader>(m_tree, m_path.find(m_tree), m_isText);
}

ProcfsOperation::ProcfsOperation(const SystemTree& tree) : SourceOperation("PROCFS"), m_tree(tree)
{
    addCategory("PATH");
    addCategory("FIELD");
    addCategory("LEAST");
}

int ProcfsOperation::set(const std::string& category, const std::string& value)
{
    if (category == "PATH") {
        PathPattern path;    // for its rules; a number is none of a file here
        if (!value.starts_with("/proc/") || value.find('*') != std::string::npos || !path.set(value)) return -1;
        m_path = value;
        return 0;
    }
    if (category == "FIELD") {
        if (!m_field.set(value)) return -1;
        m_word = value;
        return 0;
    }
    std::uint64_t least = 0;
    if (category != "LEAST" || !SystemTree::parseNumber(value, least) || least > RecordItem::MAX_NUMBERS) return -1;
    m_least = static_cast<std::size_t>(least);
    return 0;
}

std::string ProcfsOperation::findFault() const
{
    const std::string path = m_tree.realPath(m_path);
    if (m_path.empty() || !m_tree.exists(m_path)) return "there is no " + path;
    if (ProcfsReader(m_tree, m_path, m_field, m_least).hasRow()) return {};
    return path + " can't be read or tells no " + m_word;
}

std::unique_ptr<SourceReader> ProcfsOperation::open() const
{
    return std::make_unique<ProcfsReader>(m_tree, m_path, m_field, m_least);
}

}    // namespace host

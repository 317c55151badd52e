#include "collector/SysfsOperation.h"

#include <iterator>
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

}    // namespace

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

}    // namespace host

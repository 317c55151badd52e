#include "collector/ProcessesOperation.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <string_view>

namespace host {

namespace {

// Where the words behind the name stand, the state being the first.
constexpr std::size_t STATE = 0;
constexpr std::size_t PARENT = 1;
constexpr std::size_t START = 19;

// A name may hold anything, blanks and parentheses too, but what follows it does not.
bool parseStat(std::string_view text, RecordItem& item)
{
    const std::size_t open = text.find('(');
    const std::size_t close = text.rfind(')');
    if (open == std::string_view::npos || close == std::string_view::npos || close < open) return false;
    item.text = text.substr(open + 1, close - open - 1);
    std::string_view rest = text.substr(close + 1);
    for (std::size_t i = 0; i <= START; ++i) {
        rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size()));
        const std::string_view word = rest.substr(0, rest.find(' '));
        if (word.empty()) return false;
        rest.remove_prefix(word.size());
        if (i == STATE) item.numbers[2] = word == "Z" || word == "X" || word == "x" ? 1 : 0;
        if (i == PARENT) std::from_chars(word.data(), word.data() + word.size(), item.numbers[0]);
        if (i == START) std::from_chars(word.data(), word.data() + word.size(), item.numbers[1]);
    }
    item.numberCount = 3;
    return true;
}

class ProcessesReader : public SourceReader {
public:
    explicit ProcessesReader(const SystemTree& tree) : m_tree(tree) {}

    void read(QVBuffer& out) override
    {
        out.beginBlock(BlockKind::NAMED_ROWS);
        for (const int id : m_tree.numberedEntries("/proc", "")) {
            RecordItem item;
            if (readProcess(id, item)) out.addItem(item);
        }
    }

    // False for one that ended a moment ago.
    bool readProcess(int id, RecordItem& item)
    {
        item.indices.add(static_cast<std::uint32_t>(id));
        return m_tree.readText("/proc/" + std::to_string(id) + "/stat", m_text) && parseStat(m_text, item);
    }

private:
    SystemTree m_tree;
    std::string m_text;    // of the last file
};

}    // namespace

ProcessesOperation::ProcessesOperation(const SystemTree& tree) : SourceOperation("PROCESSES"), m_tree(tree)
{
    addCategory("FIELD");
}

int ProcessesOperation::set(const std::string&, const std::string& value)
{
    return value == "ALL" ? 0 : -1;
}

std::string ProcessesOperation::findFault() const
{
    ProcessesReader reader(m_tree);
    bool isAnyThere = false;
    for (const int id : m_tree.numberedEntries("/proc", "")) {
        RecordItem item;
        if (reader.readProcess(id, item)) return {};
        isAnyThere = true;
    }
    return isAnyThere ? describe() + " can't be read" : "there is no " + describe();
}

std::unique_ptr<SourceReader> ProcessesOperation::open() const
{
    return std::make_unique<ProcessesReader>(m_tree);
}

}    // namespace host

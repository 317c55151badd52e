#include "writers/ConsoleWriter.h"

#include "config/pw_utils.h"

#include <algorithm>
#include <cstddef>
#include <ostream>

namespace host {

namespace {

struct Layout {
    std::size_t width = 0;
    bool isNumeric = true;    // nothing but numbers and gaps
};

// In characters, not bytes: those that go on a UTF-8 character do not count.
std::size_t widthOf(const std::string& text)
{
    return static_cast<std::size_t>(std::count_if(
        text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; }));
}

std::string aligned(const std::string& text, const Layout& layout)
{
    const std::string gap(layout.width - std::min(layout.width, widthOf(text)), ' ');
    return layout.isNumeric ? gap + text : text + gap;
}

std::vector<Layout> layOut(const TableHead& head, const std::vector<std::vector<std::string>>& rows)
{
    std::vector<Layout> columns;
    for (const TableHead::Column& column : head.columns) {
        columns.push_back({std::max(widthOf(column.entity), widthOf(column.name)), true});
    }
    for (const std::vector<std::string>& row : rows) {
        for (std::size_t i = 0; i < columns.size() && i < row.size(); ++i) {
            columns[i].width = std::max(columns[i].width, widthOf(row[i]));
            if (!row[i].empty() && !pwr::isNumber(row[i])) columns[i].isNumeric = false;
        }
    }
    return columns;
}

void printLine(std::ostream& out, const std::vector<std::string>& cells, const std::vector<Layout>& columns)
{
    std::string line;
    for (std::size_t i = 0; i < columns.size() && i < cells.size(); ++i)
        line += "  " + aligned(cells[i], columns[i]);
    line.erase(line.find_last_not_of(' ') + 1);
    out << line << '\n';
}

}    // namespace

ConsoleWriter::ConsoleWriter(std::ostream& out)
    : TableWriter("quorvane-host-console-writer", "console", "summary tables with aligned columns", ""), m_out(out)
{
}

int ConsoleWriter::closeOutput()
{
    finishTables_i();
    m_out.flush();
    return m_out ? 0 : 1;
}

void ConsoleWriter::beginMetric_i(const std::string& banner)
{
    m_out << '\n' << banner << "\n";
}

void ConsoleWriter::writeNotes_i(const std::vector<std::string>& notes)
{
    m_out << '\n';
    for (const std::string& note : notes)
        m_out << note << '\n';
}

void ConsoleWriter::beginTable_i(const TableHead&)
{
    m_rows.clear();
}

void ConsoleWriter::writeRow_i(const std::vector<TableCell>& cells)
{
    std::vector<std::string>& row = m_rows.emplace_back();
    for (const TableCell& cell : cells)
        row.push_back(cell.text);
}

void ConsoleWriter::endTable_i(const TableHead& head)
{
    m_out << '\n' << head.title << '\n';
    for (const std::string& note : head.preNotes)
        m_out << note << '\n';
    m_out << '\n';

    std::vector<std::string> entities;
    std::vector<std::string> names;
    for (const TableHead::Column& column : head.columns) {
        entities.push_back(column.entity);
        names.push_back(column.name);
    }
    const std::vector<Layout> columns = layOut(head, m_rows);
    const auto isEmpty = [](const std::string& text) { return text.empty(); };
    if (!std::all_of(entities.begin(), entities.end(), isEmpty)) printLine(m_out, entities, columns);
    printLine(m_out, names, columns);
    for (const std::vector<std::string>& row : m_rows)
        printLine(m_out, row, columns);

    if (!head.postNotes.empty()) m_out << '\n';
    for (const std::string& note : head.postNotes)
        m_out << note << '\n';
    m_rows.clear();
}

}    // namespace host

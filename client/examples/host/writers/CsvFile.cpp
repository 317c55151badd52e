#include "writers/CsvFile.h"

#include "writers/Text.h"

namespace host {

std::string CsvFile::headText(const std::vector<std::string>& lines)
{
    std::string text;
    for (const std::string& line : lines) {
        std::string cell;
        appendCsv(cell, line);
        text += cell.starts_with('"') ? cell + "\n" : '"' + cell + "\"\n";
    }
    return text.empty() ? text : text + '\n';
}

void CsvFile::writeRow(const std::vector<std::string>& cells)
{
    std::string& line = pending();
    for (const std::string& cell : cells) {
        if (&cell != &cells.front()) line += ',';
        appendCsv(line, cell);
    }
    writeEmptyLine();
}

void CsvFile::writeEmptyLine()
{
    pending() += '\n';
    commit();
}

}    // namespace host

#include "writers/CsvFile.h"

#include "writers/Text.h"

namespace host {

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

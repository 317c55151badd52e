#pragma once

#include "writers/OutFile.h"

#include <string>
#include <vector>

namespace host {

// A file of comma-separated values, see appendCsv(). Lines end in a line feed on every system.
//
//   CsvFile file;
//   file.open("results/run_summary.csv");
//   file.writeRow({"Processor", "Max (%)"});
//   if (!file.close()) complain(file.getError());
class CsvFile : public OutFile {
public:
    // Lines as they stand in front of a file, each as one quoted cell, with an empty line behind them.
    static std::string headText(const std::vector<std::string>& lines);

    void writeRow(const std::vector<std::string>& cells);
    void writeEmptyLine();
};

}    // namespace host

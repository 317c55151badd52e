#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace host {

// A file of comma-separated values. A cell with a comma, a quote or a line end stands in quotes, quotes in it doubled
// (RFC 4180); lines end in a line feed on every system. The first failure is kept, later calls then do nothing.
//
//   CsvFile file;
//   file.open("results/run_summary.csv");
//   file.writeRow({"Processor", "Max (%)"});
//   if (!file.close()) complain(file.getError());
class CsvFile {
public:
    // Makes the folders above it where they are missing, and empties a file that is there.
    bool open(const std::string& path);
    void writeRow(const std::vector<std::string>& cells);
    void writeEmptyLine();

    // False when anything failed since the construction. A file that is not open is closed already.
    bool close();

    const std::string& getPath() const { return m_path; }
    const std::string& getError() const { return m_error; }    // with the path; empty: none

    static std::string quoted(const std::string& cell);

private:
    struct Closer {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    void write_i(const std::string& text);
    void fail_i(const std::string& what);

    std::string m_path;
    std::unique_ptr<std::FILE, Closer> m_file;
    std::string m_error;
};

}    // namespace host

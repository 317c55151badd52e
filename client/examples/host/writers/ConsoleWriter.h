#pragma once

#include "writers/TableWriter.h"

#include <iosfwd>

namespace host {

// Prints tables with aligned columns: texts to the left, numbers to the right. The rows of a table wait until it is
// complete. The stream is not owned; its owner looks at its state in the end.
class ConsoleWriter : public TableWriter {
public:
    explicit ConsoleWriter(std::ostream& out);
    int openOutput() override { return 0; }
    int closeOutput() override;

protected:
    void beginMetric_i(const std::string& banner) override;
    void writeNotes_i(const std::vector<std::string>& notes) override;
    void beginTable_i(const TableHead& head) override;
    void writeRow_i(const std::vector<TableCell>& cells) override;
    void endTable_i(const TableHead& head) override;

private:
    std::ostream& m_out;
    std::vector<std::vector<std::string>> m_rows;    // of the table in progress
};

}    // namespace host

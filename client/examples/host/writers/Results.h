#pragma once

#include "writers/ResultWriter.h"

#include <memory>
#include <string>
#include <vector>

namespace host {

// What --result names.
struct ResultFormat {
    const char* name;
    const char* description;
};

// In the order of help texts; the first is what is written unless another is asked for.
std::vector<ResultFormat> resultFormats();

// The writers of the result files of one run.
//
//   Results results;
//   results.add({"csv", "html"}, "out/run");
//   if (!results.open()) complain(results.getError());
class Results {
public:
    explicit Results(bool isPostProcessed = false) : m_isPostProcessed(isPostProcessed) {}

    // One writer for each name, once, for files that begin with `prefix`; "csv" contains "sum". Names that none of
    // these has are others' business.
    void add(const std::vector<std::string>& names, const std::string& prefix);
    bool open();

    const std::vector<std::unique_ptr<ResultWriter>>& getWriters() const { return m_writers; }
    std::vector<std::string> getFiles() const;
    std::string getError() const;    // the first failure; empty: none

private:
    std::vector<std::unique_ptr<ResultWriter>> m_writers;
    bool m_isPostProcessed;
};

}    // namespace host

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
//   if (!results.add({"csv", "html"}, "out/run")) complain(results.getUnknown());
//   if (!results.open()) complain(results.getError());
class Results {
public:
    // One writer for each name, once, for files that begin with `prefix`; "csv" contains "sum". False at a name that
    // nobody has.
    bool add(const std::vector<std::string>& names, const std::string& prefix);
    bool open();

    const std::vector<std::unique_ptr<ResultWriter>>& getWriters() const { return m_writers; }
    std::vector<std::string> getFiles() const;
    std::string getError() const;                                  // the first failure; empty: none
    const std::string& getUnknown() const { return m_unknown; }    // the name that add() refused

private:
    std::vector<std::unique_ptr<ResultWriter>> m_writers;
    std::string m_unknown;
};

}    // namespace host

#pragma once

#include "writers/RunTime.h"
#include "writers/TableWriter.h"

#include <string>
#include <vector>

namespace host {

class OutFile;

// The base of the writers that make result files. It keeps the files and the first failure, and the time of the run.
// What a writer of these remembers does not grow with the number of data points.
class ResultWriter : public TableWriter {
public:
    const std::vector<std::string>& getFiles() const { return m_files; }    // those opened
    const std::string& getError() const { return m_error; }                 // the first failure; empty: none

protected:
    using TableWriter::TableWriter;
    using TableWriter::writeMessage;

    // A derived class that overrides it calls this one first.
    int writeMessage(const pwr::SystemMessage& message) override;

    RunTime& time_i() { return m_time; }
    bool openFile_i(OutFile& file, const std::string& path);
    int closeFile_i(OutFile& file);    // 0, or 1 when anything failed since openOutput()
    void fail_i(const std::string& error);

private:
    RunTime m_time;
    std::vector<std::string> m_files;
    std::string m_error;
};

}    // namespace host

#pragma once

#include <fstream>
#include <streambuf>
#include <string>

namespace host {

// Writes what it is given to a stream and to a file. What fails for one of them fails for the writer.
//
//   TeeBuffer both(*std::cout.rdbuf());
//   if (both.open("console.log")) std::ostream(&both) << "twice";
class TeeBuffer : public std::streambuf {
public:
    explicit TeeBuffer(std::streambuf& target) : m_target(target) {}
    bool open(const std::string& path);    // makes the folders above it where they are missing

protected:
    int overflow(int c) override;
    std::streamsize xsputn(const char* text, std::streamsize size) override;
    int sync() override;

private:
    std::streambuf& m_target;
    std::filebuf m_file;
};

}    // namespace host

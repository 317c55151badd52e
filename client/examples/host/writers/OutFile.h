#pragma once

#include <cstddef>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace host {

// A result file, written in large pieces. Bytes are not translated. The first failure is kept, later calls then do
// nothing.
//
//   OutFile file;
//   file.open("results/run.jsonl");
//   file.pending() += "{}\n";
//   file.commit();
//   if (!file.close()) complain(file.getError());
class OutFile {
public:
    // Makes the folders above it where they are missing, and empties a file that is there.
    bool open(const std::string& path);

    // What is still to be written: append to it, then commit().
    std::string& pending() { return m_pending; }
    void commit()
    {
        if (m_pending.size() >= PIECE_BYTES) flush();
    }
    void write(std::string_view text);
    void flush();

    // False when anything failed since the construction. A file that is not open is closed already.
    bool close();

    // The same, with a text in front of all that was written: what is known in the end only. When that fails, the file
    // stays without it.
    bool closeBehind(std::string_view front);

    const std::string& getPath() const { return m_path; }
    const std::string& getError() const { return m_error; }    // with the path; empty: none

private:
    static constexpr std::size_t PIECE_BYTES = 64 * 1024;
    struct Closer {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    bool copyTo_i(const std::string& path, std::string_view front);
    void fail_i(const std::string& what);

    std::string m_path;
    std::unique_ptr<std::FILE, Closer> m_file;
    std::string m_pending;
    std::string m_error;
};

}    // namespace host

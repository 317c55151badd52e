#pragma once

#include "runtime/Export.h"

#include <fstream>
#include <ostream>
#include <streambuf>
#include <vector>

// A place that log text goes to: at once a stream to write to and the buffer behind that stream. Text gathers
// until a message ends (a flush such as std::endl, or log()), and then goes out as one piece through writeOut().
// The host makes loggers, hands them to the PluginEnvironment and deletes them; text of an unfinished message is
// lost with its logger. One thread at a time.
//
//   FileLogger log("run.log");
//   log << "samples: " << count << std::endl;    // streamed
//   log.log("done\n");                           // whole
class QUORVANE_API Logger : public std::basic_ostream<char>, public std::basic_streambuf<char> {
public:
    Logger();
    ~Logger() override;
    Logger(const Logger&) = delete;
    Logger& operator=(const Logger&) = delete;

    // The level plays no part here: which logger gets a message, and whether at all, is the caller's choice.
    virtual void log(int level, const char* text);

    // Appends `text` to what was streamed before it and writes all of it out. An empty text writes out what is
    // there; null does nothing.
    virtual void log(const char* text);

    virtual int getStatus();    // 0

    // Sends the gathered text to its place. The caller empties the buffer afterwards.
    virtual void writeOut() = 0;

    virtual void close();

protected:
    int overflow(int c) override;
    int sync() override;

    std::vector<char> m_buffer;    // the message under way
    bool m_dirty = false;          // characters came since the buffer was last written out

private:
    void finishMessage_i();
};

// A logger whose text goes to a file, each message flushed at once, bytes as they are on every system. A file that
// can't be opened is reported by nobody: the logger stays usable and drops what it is given.
class QUORVANE_API FileLogger : public Logger {
public:
    explicit FileLogger(const char* path);    // empties an existing file; null is a file that can't be opened
    ~FileLogger() override;

    void writeOut() override;
    void close() override;

private:
    std::ofstream m_file;
};

#pragma once

#include <string>
#include <vector>

namespace host {

// What the command line asks for.
struct Options {
    std::vector<std::string> features;    // each name once, in the order given; empty: all that are offered
    double seconds = 3;
    unsigned int intervalMs = 100;
    std::string output;                  // prefix of the result files; empty: no files
    std::vector<std::string> results;    // what to write there, each name once; empty: csv
    std::string config;                  // folder of the collector configuration; empty: the host's own
    std::string outputConfig;            // empty: the host's own
    std::string sysroot;                 // empty: this machine
    std::string pluginDir;               // folder with more modules than those beside the program; empty: none
    bool quiet = false;
    bool list = false;
    bool help = false;
};

// Reads the arguments behind the program's name. False, with one line that says what to do in `error`, for arguments
// that make no sense; `options` then is not to be used. Names of features and files are not looked at here.
bool parseOptions(const std::vector<std::string>& arguments, Options& options, std::string& error);

std::string helpText();

}    // namespace host

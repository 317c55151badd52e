#pragma once

#include "usage/Option.h"

#include <string>
#include <vector>

namespace host {

// What the command line asks for.
struct Options {
    std::vector<std::string> features;    // each name once, in the order given; empty: all that are offered
    double seconds = 0;                   // 0: until Ctrl-C
    unsigned int intervalMs = 100;
    double startDelaySeconds = 0;
    double programDelaySeconds = 0;
    std::vector<std::string> program;    // to be started before the collection, with its arguments; empty: none
    bool maxDetail = false;
    std::string input;                        // a saved session to be processed; empty: collect
    std::string output = "QuorvaneOutput";    // prefix of the files
    std::vector<std::string> results;         // what to write there, each name once; empty: sum
    bool noPostProcessing = false;            // the session is saved, and that is all
    std::string log;                          // a file that gets a copy of the console output; empty: none
    std::string config;                       // folder of the collector configuration; empty: the host's own
    std::string outputConfig;                 // empty: the host's own
    std::string sysroot;                      // empty: this machine
    std::string pluginDir;                    // folder with more modules than those beside the program; empty: none
    std::string explain;                      // a feature to explain; empty: none
    std::string trace;                        // ends in ".etl"; empty: no trace
    bool quiet = false;
    bool list = false;
    bool help = false;
    bool version = false;
    bool printFms = false;
    bool usageJson = false;
};

// Reads the arguments behind the program's name. False, with one line that says what to do in `error`, for arguments
// that make no sense; `options` then is not to be used. Names of features and files are not looked at here.
bool parseOptions(const std::vector<std::string>& arguments, Options& options, std::string& error);

// The options that only this host has.
std::vector<pwr::usage::Option> hostOptions();

}    // namespace host

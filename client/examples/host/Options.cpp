#include "Options.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>

namespace host {

namespace {

constexpr double MAX_SECONDS = 1'000'000;
constexpr unsigned int MAX_INTERVAL_MS = 60'000;

// The whole text is one number; a sign is none.
template <typename T>
bool parseNumber(const std::string& text, T& value)
{
    const char* end = text.data() + text.size();
    const auto [stop, code] = std::from_chars(text.data(), end, value);
    return code == std::errc() && stop == end;
}

bool addFeature(Options& options, const std::string& value)
{
    std::vector<std::string>& names = options.features;
    if (std::find(names.begin(), names.end(), value) == names.end()) names.push_back(value);
    return !value.empty();
}

bool addResults(Options& options, const std::string& value)
{
    std::vector<std::string>& names = options.results;
    for (std::size_t begin = 0; begin <= value.size();) {
        const std::size_t end = std::min(value.find(',', begin), value.size());
        const std::string name = value.substr(begin, end - begin);
        if (name.empty()) return false;
        if (std::find(names.begin(), names.end(), name) == names.end()) names.push_back(name);
        begin = end + 1;
    }
    return true;
}

bool setTime(Options& options, const std::string& value)
{
    return parseNumber(value, options.seconds) && std::isfinite(options.seconds) && options.seconds > 0 &&
           options.seconds <= MAX_SECONDS;
}

bool setInterval(Options& options, const std::string& value)
{
    return parseNumber(value, options.intervalMs) && options.intervalMs >= 1 && options.intervalMs <= MAX_INTERVAL_MS;
}

template <std::string Options::*text>
bool setText(Options& options, const std::string& value)
{
    options.*text = value;
    return !value.empty();
}

template <bool Options::*flag>
bool setFlag(Options& options, const std::string&)
{
    options.*flag = true;
    return true;
}

struct Row {
    const char* name;
    const char* argument;    // null: none
    const char* wants;       // of the argument, for the error line
    const char* help;
    bool (*apply)(Options&, const std::string&);    // false: the value is no good
};

const Row ROWS[] = {
    {"--feature", "NAME", "the name of a feature",
     "measure this feature or group of them (may be given several times); default: all found", addFeature},
    {"--time", "SECONDS", "a number of seconds above 0 and up to 1000000", "how long to collect; default: 3", setTime},
    {"--interval", "MS", "a whole number of milliseconds from 1 to 60000", "time between two samples; default: 100",
     setInterval},
    {"--output", "PREFIX", "the beginning of the files' names",
     "write result files: PREFIX_summary.csv and one timeline PREFIX_<metric>.csv for each metric, or what --result "
     "names",
     setText<&Options::output>},
    {"--result", "NAME[,NAME]...", "csv, jsonl, trace, html or prom, with a comma between two",
     "what --output writes: csv, jsonl, trace, html, prom; default: csv", addResults},
    {"--config", "DIR", "a folder",
     "what is collected, and how: all *.conf files of the folder, instead of the host's own",
     setText<&Options::config>},
    {"--output-config", "FILE", "a file", "titles, notes and order of the tables, instead of the host's own",
     setText<&Options::outputConfig>},
    {"--sysroot", "DIR", "a folder", "measure the machine whose files stand below DIR; default: this machine",
     setText<&Options::sysroot>},
    {"--plugin-dir", "DIR", "a folder",
     "load the plugin modules of DIR, beside those of the folder plugins at the program", setText<&Options::pluginDir>},
    {"--quiet", nullptr, nullptr, "show no progress on the terminal", setFlag<&Options::quiet>},
    {"--list", nullptr, nullptr, "say which features this machine offers, and why others are not",
     setFlag<&Options::list>},
    {"--help", nullptr, nullptr, "print this", setFlag<&Options::help>},
};

const Row* findRow(const std::string& name)
{
    const Row* end = std::end(ROWS);
    const Row* row = std::find_if(std::begin(ROWS), end, [&name](const Row& r) { return name == r.name; });
    return row != end ? row : nullptr;
}

}    // namespace

bool parseOptions(const std::vector<std::string>& arguments, Options& options, std::string& error)
{
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& name = arguments[i];
        const Row* row = findRow(name);
        if (row == nullptr) {
            error = (name.starts_with("-") ? "unknown option '" : "unexpected argument '") + name +
                    "': --help lists the options";
            return false;
        }
        if (row->argument != nullptr && i + 1 == arguments.size()) {
            error = name + " stands alone: give " + row->wants + " behind it";
            return false;
        }
        const std::string value = row->argument != nullptr ? arguments[++i] : std::string();
        if (!row->apply(options, value)) {
            error = name + " can't take '" + value + "': give " + row->wants;
            return false;
        }
    }
    return true;
}

std::string helpText()
{
    std::string text = "Measures the machine it runs on and prints summary tables.\n\nquorvane_host [OPTION]...\n\n";
    for (const Row& row : ROWS) {
        std::string head = std::string("  ") + row.name;
        if (row.argument != nullptr) head += std::string(" ") + row.argument;
        head.resize(std::max<std::size_t>(head.size() + 2, 26), ' ');
        text += head + row.help + "\n";
    }
    text += "\nCtrl-C ends the collection early; the results so far are written all the same.\n"
            "Exit status: 0, 1 when something went wrong, 2 for arguments that make no sense.\n";
    return text;
}

}    // namespace host

#include "Options.h"

#include "tracing/TraceRun.h"

#include "usage/UsageText.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>

namespace host {

namespace {

using pwr::usage::Option;

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

template <double Options::*seconds>
bool setDelay(Options& options, const std::string& value)
{
    double& delay = options.*seconds;
    return parseNumber(value, delay) && delay >= 0 && !std::signbit(delay) && delay <= MAX_SECONDS;
}

bool setInterval(Options& options, const std::string& value)
{
    return parseNumber(value, options.intervalMs) && options.intervalMs >= 1 && options.intervalMs <= MAX_INTERVAL_MS;
}

// Its arguments follow, see parseOptions().
bool setProgram(Options& options, const std::string& value)
{
    options.program = {value};
    return !value.empty();
}

bool setTrace(Options& options, const std::string& value)
{
    options.trace = value;
    return TraceRun::isFileName(value);
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

// There is nothing to do for it.
bool accept(Options&, const std::string&)
{
    return true;
}

bool refuse(Options&, const std::string&)
{
    return false;
}

struct Row {
    const char* name;
    const char* argument;    // null: none
    const char* wants;       // of the argument, for the error line; what an option that is refused lacks
    const char* help;        // null: the tool's description has the option
    bool (*apply)(Options&, const std::string&);    // false: the value is no good
};

const char* const DELAY = "a number of seconds from 0 to 1000000";

const Row ROWS[] = {
    {"--help", nullptr, nullptr, nullptr, setFlag<&Options::help>},
    {"--version", nullptr, nullptr, nullptr, setFlag<&Options::version>},
    {"--log", "FILE", "a file", nullptr, setText<&Options::log>},
    {"--print-fms", nullptr, nullptr, nullptr, setFlag<&Options::printFms>},
    {"--update-usage-consent", nullptr, "it collects no usage data that one could opt in to", nullptr, refuse},
    {"--skip-usage-collection", nullptr, nullptr, nullptr, accept},
    {"--input", "FILE", "a saved session", nullptr, setText<&Options::input>},
    {"--output", "PREFIX", "the beginning of the files' names", nullptr, setText<&Options::output>},
    {"--result", "NAME[,NAME]...", "names of results, with a comma between two", nullptr, addResults},
    {"--no-post-processing", nullptr, nullptr, nullptr, setFlag<&Options::noPostProcessing>},
    {"--feature", "NAME", "the name of a feature", nullptr, addFeature},
    {"--max-detail", nullptr, nullptr, nullptr, setFlag<&Options::maxDetail>},
    {"--interval", "MS", "a whole number of milliseconds from 1 to 60000", nullptr, setInterval},
    {"--program", "PROGRAM", "a program, with its arguments behind it", nullptr, setProgram},
    {"--startdelay", "SECONDS", DELAY, nullptr, setDelay<&Options::startDelaySeconds>},
    {"--time", "SECONDS", "a number of seconds above 0 and up to 1000000", nullptr, setTime},
    {"--auto-connected-standby", nullptr, "it can't put the system into connected standby", nullptr, refuse},
    {"--program-delay", "SECONDS", DELAY, nullptr, setDelay<&Options::programDelaySeconds>},
    {"--polling", nullptr, nullptr, nullptr, accept},
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
    {"--trace", "FILE.etl", "a file that ends in .etl, which stands nowhere else in its path",
     "trace phases and rounds of the collection, and print them from the merged FILE_Capture.etl", setTrace},
    {"--list", nullptr, nullptr, "say which features this machine offers, and why others are not",
     setFlag<&Options::list>},
    {"--explain", "FEATURE", "the name of a feature",
     "say what a feature resolves to on this machine, with files and lines", setText<&Options::explain>},
    {"--usage-json", nullptr, nullptr, "print the tool's options as JSON", setFlag<&Options::usageJson>},
};

// What has no meaning where a saved session is processed.
const char* const COLLECTING[] = {
    "--no-post-processing", "--feature", "--max-detail", "--interval", "--program", "--startdelay", "--time",
    "--program-delay",      "--config",  "--sysroot",    "--list",     "--trace",   "--explain"};

// The tool's description: which abbreviation stands for which option.
class Described : public pwr::usage::UsageText {
public:
    static std::string fullName(const std::string& name)
    {
        for (const auto& [category, options] : s_usageConstants) {
            for (const Option& option : options) {
                const bool isMeant = option.getAttribute(Option::Attribute::ABBREVIATION) == name && !name.empty();
                if (isMeant) return option.getName();
            }
        }
        return name;
    }
};

const Row* findRow(const std::string& name)
{
    const std::string fullName = Described::fullName(name);
    const Row* end = std::end(ROWS);
    const Row* row = std::find_if(std::begin(ROWS), end, [&fullName](const Row& r) { return fullName == r.name; });
    return row != end ? row : nullptr;
}

std::string faultOf(const Row& row, const std::string& name, const std::string& value)
{
    if (row.apply == refuse) return name + " is not for this host: " + row.wants;
    return name + " can't take '" + value + "': give " + row.wants;
}

// Takes the option at `i`, which moves to the last of its arguments. Empty, or what is wrong.
std::string take(const std::vector<std::string>& arguments, std::size_t& i, Options& options)
{
    const std::string& name = arguments[i];
    const Row* row = findRow(name);
    if (row == nullptr) {
        return (name.starts_with("-") ? "unknown option '" : "unexpected argument '") + name +
               "': --help lists the options";
    }
    if (row->argument != nullptr && i + 1 == arguments.size())
        return name + " stands alone: give " + row->wants + " behind it";
    const std::string value = row->argument != nullptr ? arguments[++i] : std::string();
    if (!row->apply(options, value)) return faultOf(*row, name, value);
    if (row->apply == setProgram) {
        options.program.insert(options.program.end(), arguments.begin() + static_cast<std::ptrdiff_t>(i) + 1,
                               arguments.end());
        i = arguments.size();
    }
    return {};
}

std::string findConflict(const std::vector<std::string>& names, const Options& options)
{
    for (const std::string& name : names) {
        const Row* row = findRow(name);
        const bool isCollecting = std::any_of(std::begin(COLLECTING), std::end(COLLECTING),
                                              [row](const std::string& other) { return other == row->name; });
        if (!options.input.empty() && isCollecting)
            return name + " is about a collection, and --input processes one that was saved: give one of the two";
    }
    return {};
}

}    // namespace

bool parseOptions(const std::vector<std::string>& arguments, Options& options, std::string& error)
{
    std::vector<std::string> names;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        names.push_back(arguments[i]);
        error = take(arguments, i, options);
        if (!error.empty()) return false;
    }
    error = findConflict(names, options);
    return error.empty();
}

std::vector<Option> hostOptions()
{
    std::vector<Option> options;
    for (const Row& row : ROWS) {
        if (row.help == nullptr) continue;
        const std::string argument = row.argument != nullptr ? row.argument : "";
        options.emplace_back(row.name, row.help, "", argument, "", "", "", std::vector<std::string>(), "",
                             pwr::usage::TabLevel::LEVEL_1);
    }
    return options;
}

}    // namespace host

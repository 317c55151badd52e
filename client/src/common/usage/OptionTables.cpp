#include "usage/OptionTables.h"

#include "record/ChipTables.h"

namespace pwr::usage {

namespace {

// One option, as the tables below tell it: what a row leaves out is empty.
struct Row {
    const char* name;
    const char* abbreviation = "";
    const char* arg = "";
    const char* argType = "";
    const char* argUnits = "";
    const char* argDefault = "";
    std::vector<std::string> validArgs = {};
    const char* description;
    const char* notes = "";
};

using Rows = std::vector<Row>;

std::vector<Option> makeOptions(const Rows& rows, TabLevel level)
{
    std::vector<Option> options;
    options.reserve(rows.size());
    for (const Row& row : rows)
        options.emplace_back(row.name, row.description, row.abbreviation, row.arg, row.argType, row.argUnits,
                             row.argDefault, row.validArgs, row.notes, level);
    return options;
}

Rows generalOptions()
{
    return {
        {.name = "--help", .abbreviation = "-h", .description = "Display text describing options and usage"},
        {.name = "--version", .abbreviation = "-v", .description = "Display tool version info"},
        {.name = "--log",
         .abbreviation = "-l",
         .arg = "<filename>",
         .argType = "filename",
         .description = "Save console output to the specified file"},
        {.name = "--print-fms", .description = "Display CPU ID as Family.Model.Stepping"},
        {.name = "--update-usage-consent",
         .description = "Choose to opt-in or opt-out of Tessmar(R) Brightloop Program analytics"},
        {.name = "--skip-usage-collection",
         .description = "Do not send data to the Tessmar(R) Brightloop Program regardless of opt-in status"},
    };
}

Rows postProcessingOptions()
{
    return {
        {.name = "--input",
         .abbreviation = "-i",
         .arg = "<filename>",
         .argType = "filename",
         .description = "Generate result files using prior collection specified by filename"},
        {.name = "--output",
         .abbreviation = "-o",
         .arg = "<filename>",
         .argType = "filename",
         .description = "Specify output filename prefix [default \"QuorvaneOutput\"]"},
        {.name = "--result",
         .abbreviation = "-r",
         .arg = "<format>",
         .argType = "file format",
         .argDefault = "sum",
         .description = "Specify output file format from list below"},
        {.name = "--no-post-processing",
         .description =
             "Do not automatically summarize data and do not generate any reports at the end of collection.  "
             "Use options --input and --result to generate reports from the intermediate files at a later "
             "time."},
    };
}

Rows collectionOptions()
{
    return {
        {.name = "--feature",
         .abbreviation = "-f",
         .arg = "<feature>",
         .description = "Specify data to collect using Individual Feature or Feature Group name listed below"},
        {.name = "--max-detail",
         .abbreviation = "-m",
         .description = "Collect over-time data for every feature specified"},
        {.name = "--interval",
         .abbreviation = "-n",
         .arg = "<milliseconds>",
         .argType = "time",
         .argUnits = "milliseconds",
         .argDefault = "100",
         .description = "Change minimum time between collection points [default 100 ms]"},
        {.name = "--output",
         .abbreviation = "-o",
         .arg = "<filename>",
         .argType = "filename",
         .argDefault = "QuorvaneOutput",
         .description = "Specify output file name prefix [default \"QuorvaneOutput\"]"},
        {.name = "--program",
         .abbreviation = "-p",
         .arg = "<executable>",
         .argType = "executable",
         .description = "Specify executable to be started prior to collection, all characters following executable "
                        "name are given it as arguments"},
        {.name = "--startdelay",
         .abbreviation = "-s",
         .arg = "<seconds>",
         .argType = "time",
         .argUnits = "seconds",
         .description = "Time to wait before starting collection"},
        {.name = "--time",
         .abbreviation = "-t",
         .arg = "<seconds>",
         .argType = "time",
         .argUnits = "seconds",
         .description = "Collection duration (if omitted will collect until Ctrl-C entered)"},
        {.name = "--auto-connected-standby",
         .abbreviation = "-z",
         .description = "Automatically enter Connected Standby for the duration of the collection"},
        {.name = "--program-delay",
         .arg = "<seconds>",
         .argType = "time",
         .argUnits = "seconds",
         .description = "Time to wait before starting a program specified by \"-p\" option"},
        {.name = "--polling", .description = "Collect data at timed intervals rather than context switch points"},
    };
}

Rows pcieLpmOptions()
{
    return {
        {.name = "gbe-int",
         .arg = "<interval>",
         .argType = "time",
         .argUnits = "milliseconds",
         .argDefault = "1000",
         .description = "Wait time (milliseconds) between collecting GbE counters. [default 1000]",
         .notes = "interval values < default may reduce entry to low power states."},
    };
}

Rows pchIpActiveOptions()
{
    return {
        {.name = "pch-lvl",
         .arg = "<arg, arg, ...>",
         .argType = "level",
         .validArgs = {"1", "2", "3a", "3b", "3c", "3d", "4", "5"},
         .description = "Specify additional groups of PCH IPs [default 1]"},
        {.name = "pch-int",
         .arg = "<interval>",
         .argType = "time",
         .argUnits = "milliseconds",
         .argDefault = "5000",
         .description = "Wait time (milliseconds) between collecting PCH activity counters. [default 5000]",
         .notes = "interval values < default may reduce entry to low power states."},
    };
}

Rows pchIpLatLimitOptions()
{
    return {
        {.name = "lat-limit-ip",
         .arg = "<arg, arg, arg>",
         .argType = "IP",
         .validArgs = {"SPA", "SPB", "SPC"},
         .description = "Specify three PCH IPs to monitor [default SPA, SPB, SPC]"},
    };
}

Rows acpiDstateOptions()
{
    return {
        {.name = "no-device-filter", .description = "Display all devices (turn off filtering)"},
    };
}

Rows tcssPmDbgOptions()
{
    return {
        {.name = "tcss-ip",
         .arg = "<arg, arg, arg>",
         .argType = "IP",
         .validArgs = {"PCIE0", "PCIE1", "TBT0"},
         .description = "Specify three IPs to monitor [default PCIE0, PCIE1, TBT0]"},
    };
}

}    // namespace

std::map<std::string, std::vector<Option>> makeCategories()
{
    return {
        {"General Options", makeOptions(generalOptions(), TabLevel::LEVEL_1)},
        {"Post-processing Options", makeOptions(postProcessingOptions(), TabLevel::LEVEL_1)},
        {"Collection Options", makeOptions(collectionOptions(), TabLevel::LEVEL_1)},
    };
}

std::map<std::string, std::vector<Option>> makeFeatureOptions()
{
    return {
        {"pcie-lpm", makeOptions(pcieLpmOptions(), TabLevel::LEVEL_3)},
        {"pch-ip-active", makeOptions(pchIpActiveOptions(), TabLevel::LEVEL_3)},
        {"pch-ip-lat-limit", makeOptions(pchIpLatLimitOptions(), TabLevel::LEVEL_3)},
        {"acpi-dstate", makeOptions(acpiDstateOptions(), TabLevel::LEVEL_3)},
        {"tcss-pm-dbg", makeOptions(tcssPmDbgOptions(), TabLevel::LEVEL_3)},
    };
}

std::map<std::string, std::vector<std::string>> makeTcssIps()
{
    const std::vector<std::string> allIps = {"PCIE0", "PCIE1", "PCIE2", "PCIE3", "TBT0",
                                             "TBT1",  "TBT2",  "XHCI",  "XDCI"};
    return {
        {"DEFAULT", {"PCIE0", "PCIE1", "TBT0"}},
        {CODE_NAME_NARVANE, allIps},
        {CODE_NAME_TAMROW, allIps},
    };
}

}    // namespace pwr::usage

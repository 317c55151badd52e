#include "ProgramRecord.h"

#include "plugins/Plugin.h"
#include "record/SystemMetadata.h"

#include <QuorvaneBuild.h>
#include <algorithm>
#include <cstdint>
#include <limits>

namespace host {

namespace {

// Readers tell by the tool's version (year, release, patch) how wide a record's fields are: 2020.3.0 is the first whose
// records have the form that the library writes. The host's own version is told as text.
constexpr std::uint32_t PRESENT_FORM = 0x07E40300;

}    // namespace

void describeProgram(pwr::SystemMetadata& record, const std::vector<std::string>& arguments, unsigned int intervalMs)
{
    record.appVersion = PRESENT_FORM;
    record.nonNumericVersion = pwr::build::VERSION;
    record.exeBuildDate = pwr::build::DATE;
    record.buildRef = *pwr::build::REF != '\0' ? pwr::build::REF : "N/A";
    record.packageType = "Unknown";
    record.commandLine = {"quorvane_host"};
    for (const std::string& argument : arguments)
        record.commandLine.push_back(argument.empty() ? "\"\"" : argument);
    constexpr unsigned int MAX = std::numeric_limits<std::uint16_t>::max();
    record.pollingIntervalMsecs = static_cast<std::uint16_t>(std::min(intervalMs, MAX));
}

void enroll(Plugin& plugin, pwr::SystemMetadata& record)
{
    plugin.setSID(static_cast<int>(record.sidToUuid.size()));
    record.sidToUuid[plugin.getSID()] = plugin.getUUID();
}

}    // namespace host

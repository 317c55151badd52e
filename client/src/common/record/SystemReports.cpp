#include "record/SystemMetadata.h"

#include "config/pw_utils.h"
#include "record/ChipTables.h"
#include "record/VersionWord.h"
#include "runtime/Saturate.h"

#include <QuorvaneBuild.h>

#include <algorithm>
#include <bitset>
#include <chrono>
#include <ctime>
#include <locale>
#include <sstream>

// The texts that head every result file, and the names of chips in them.

namespace pwr {

namespace {

// The texts read the same whatever locale the host set.
class Report : public std::ostringstream {
public:
    Report() { imbue(std::locale::classic()); }
};

std::string orNotAvailable(const std::string& text)
{
    return text.empty() ? "N/A" : text;
}

bool isWithin(const SteppingRange& range, std::uint8_t stepping)
{
    return stepping >= range.first && stepping <= range.last;
}

bool isPlatform(const SystemMetadata& system, const PlatformRow& row)
{
    return system.fms.family == row.family && system.fms.model == row.model &&
           isWithin(row.steppings, system.fms.stepping) && system.*row.field == row.value;
}

bool isNamedBy(const SystemMetadata& system, const CodeNameRow& row)
{
    return std::find(row.models.begin(), row.models.end(), system.fms.model) != row.models.end() &&
           isWithin(row.steppings, system.fms.stepping) && (row.isPlatform == nullptr || (system.*row.isPlatform)());
}

bool hasNativeModelIds(const FMS& fms)
{
    const auto models = modelsWithNativeIds();
    return std::find(models.begin(), models.end(), ProcessorModel{fms.family, fms.model}) != models.end();
}

// The values of the platform name's tokens "key=value".
std::vector<std::string> valuesOf(const std::string& platform, const std::string& key)
{
    std::vector<std::string> values;
    const Tokenizer tokens(platform, ",");
    for (const std::string& token : tokens.get_all_tokens()) {
        const Tokenizer parts(token, "=");
        const std::vector<std::string>& pair = parts.get_all_tokens();
        if (pair.size() == 2 && pair[0] == key) values.push_back(pair[1]);
    }
    return values;
}

void appendDeviceNames(const std::string& platform, const std::string& key, std::list<std::string>& names)
{
    for (const std::string& token : valuesOf(platform, key))
        names.push_back(Device::deviceStringLookup(token));
}

const char* edramText(std::uint8_t edramCap)
{
    if (edramCap == 0) return "Yes";
    return edramCap == 1 ? "No" : "Unsupported";
}

void printProcessor(std::ostream& out, const SystemMetadata& system)
{
    out << "\nCPU: " << system.getFormattedCPUCodeName();
    out << "\nCPU ID (family.model.stepping): " << system.fms;
    out << std::hex;    // an FMS ends in decimal mode; ids and counts up to the modules are hexadecimal
    out << "\nPlatform ID: 0b" << std::bitset<3>(system.platformId);
    if (system.iGfxId != 0) {
        out << "\nIntegrated GPU Device ID: 0x" << system.iGfxId;
    } else {
        out << "\nIntegrated GPU Device: NA";
    }
}

void printDevices(std::ostream& out, const SystemMetadata& system)
{
    std::list<std::string> names;
    system.getFormattedPMTDeviceNames(system.platformName, names);
    for (const std::string& name : names)
        out << "\nPMT: " << name;
    names.clear();
    system.getFormattedPCIDeviceNames(system.platformName, names);
    for (const std::string& name : names)
        out << "\nPCI: " << name;
    out << "\nPCH: " << system.getFormattedPCHDeviceName(system.platformName);
    out << "\nEDRAM Present: " << edramText(system.edramCap);
}

void printTopology(std::ostream& out, const TopTree& topology)
{
    out << " \nTotal # of packages: " << topology.getNumPackages();
    if (topology.getNumModules() > 0) out << " \nTotal # of modules: " << topology.getNumModules();
    out << std::dec;
    out << " \nTotal # of cores: " << topology.getNumCores();
    out << " \nTotal # of logical processors: " << topology.getNumThreads() << "\n";
}

void printNativeModels(std::ostream& out, const SystemMetadata& system)
{
    if (system.cpuNativeModelIds.empty() || !hasNativeModelIds(system.fms)) return;
    out << "\nCPU native model:";
    std::size_t core = 0;
    for (const unsigned int id : system.cpuNativeModelIds)
        out << "\nCore" << core++ << " = " << system.getCPUNativeModelName(id);
}

}    // namespace

std::string SystemMetadata::getVersionHeader(bool postProcessed) const
{
    const std::string rule = std::string(74, '-') + "\n";
    return rule + getOSVersionString(postProcessed) + build::COPYRIGHT + "\n" +
           "Platform power analysis tool for use with Tessmar processors/chipsets/platforms.\n"
           "*Other names and brands may be claimed as the property of others. \n" +
           rule;
}

std::string SystemMetadata::getOSVersionString(bool postProcessed) const
{
    constexpr const char* OS = "Windows";
    Report out;
    out << "Tessmar(R) Quorvane for " << OS << "* OS Version ";
    if (nonNumericVersion.empty()) {
        out << VersionWord{appVersion};
    } else {
        out << nonNumericVersion;
    }
    out << " [" << orNotAvailable(exeBuildDate) << "]\n";
    out << "Build Ref: " << orNotAvailable(buildRef) << "\n";
    out << "Driver Version " << VersionWord{driverVersion} << " [" << orNotAvailable(driverBuildDate) << "]\n";
    if (postProcessed) {
        out << "Post Processed using Quorvane for " << OS << "* OS Version " << build::VERSION << " [" << build::DATE
            << "]\n";
        out << "Post Processed Build Ref: " << orNotAvailable(build::REF) << "\n";
    }
    return out.str();
}

std::string SystemMetadata::getCollectionHeader() const
{
    Report out;
    out << "Command line options: ";
    for (const std::string& argument : commandLine)
        out << argument << " ";
    out << "\n\nProgram Started: " << getProgramStartTime();
    out << "\nData Collection Started: " << getCollectionStartTime();
    out << " \nTSC Frequency (MHz): " << qvaClockFreqMHz;
    out << "\nCollection duration (sec):" << getCollectionDurationSec();
    return out.str();
}

std::string SystemMetadata::getSystemHWHeader() const
{
    Report out;
    out << "\nSystem Name: " << hostName;
    out << "\nOperating System: " << osName << " [" << osVersion << "]";
    printProcessor(out, *this);
    printDevices(out, *this);
    printTopology(out, cpuTopology);
    printNativeModels(out, *this);
    return out.str();
}

std::string SystemMetadata::formatTimevalAsString(unsigned long long nanoseconds) const
{
    using namespace std::chrono;
    if (nanoseconds == 0) return "N/A";
    const sys_seconds time{seconds(nanoseconds / 1000000000)};
    const sys_days day = floor<days>(time);
    const year_month_day date{day};
    const hh_mm_ss clock{time - day};
    std::tm parts{};
    parts.tm_year = static_cast<int>(date.year()) - 1900;
    parts.tm_mon = static_cast<int>(static_cast<unsigned int>(date.month())) - 1;
    parts.tm_mday = static_cast<int>(static_cast<unsigned int>(date.day()));
    parts.tm_hour = static_cast<int>(clock.hours().count());
    parts.tm_min = static_cast<int>(clock.minutes().count());
    parts.tm_sec = static_cast<int>(clock.seconds().count());
    char text[64];
    return std::string(text, std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S GMT", &parts));
}

std::string SystemMetadata::getCollectionStartTime() const
{
    return formatTimevalAsString(startTimeval);
}

std::string SystemMetadata::getProgramStartTime() const
{
    return formatTimevalAsString(programStartTimeval);
}

std::string SystemMetadata::getFormattedCPUCodeName() const
{
    if (fms.family != 6) return "Unknown";
    for (const CodeNameRow& row : codeNameRows()) {
        if (isNamedBy(*this, row)) return row.name;
    }
    return "Unknown";
}

std::string SystemMetadata::getCPUNativeModelName(unsigned int id) const
{
    const ProcessorModel model{fms.family, fms.model};
    for (const NativeModelRow& row : nativeModelRows()) {
        if (row.id == id && (row.model == ANY_MODEL || row.model == model)) return row.name;
    }
    return "N/A";
}

std::string SystemMetadata::getFormattedPCHDeviceName(const std::string& platform) const
{
    Report text;
    const std::vector<std::string> tokens = valuesOf(platform, "PCH");
    if (!tokens.empty()) {
        const std::string name = Device::deviceStringLookup(tokens.front());
        if (name != "Unsupported") return name;
        text << name;
    }
    for (const auto& [key, value] : platformSpecifiers) {
        if (key == "PCH") text << " (0x" << std::hex << parseUInt32(value.c_str(), 10) << ")";
    }
    return text.str();
}

void SystemMetadata::getFormattedPCIDeviceNames(const std::string& platform, std::list<std::string>& names) const
{
    appendDeviceNames(platform, "PCI", names);
}

void SystemMetadata::getFormattedPMTDeviceNames(const std::string& platform, std::list<std::string>& names) const
{
    appendDeviceNames(platform, "PMT", names);
}

bool SystemMetadata::isPlatformNRV() const
{
    return isPlatform(*this, PLATFORM_NRV);
}

bool SystemMetadata::isPlatformTMR() const
{
    return isPlatform(*this, PLATFORM_TMR);
}

bool SystemMetadata::isPlatformOSK() const
{
    return isPlatform(*this, PLATFORM_OSK);
}

bool SystemMetadata::isPlatformLYD() const
{
    return isPlatform(*this, PLATFORM_LYD);
}

}    // namespace pwr

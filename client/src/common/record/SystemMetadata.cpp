#include "record/SystemMetadata.h"

#include "record/VersionWord.h"

namespace pwr {

namespace {

template <typename T>
void printItem(std::ostream& out, const char* title, const T& value)
{
    out << title << value << std::endl;
}

void printIdentity(std::ostream& out, const SystemMetadata& system)
{
    printItem(out, "FMS: ", system.fms);
    printItem(out, "App version: ", VersionWord{system.appVersion});
    printItem(out, "App build date: ", system.exeBuildDate);
    printItem(out, "Driver version: ", VersionWord{system.driverVersion});
    printItem(out, "Driver build date: ", system.driverBuildDate);
    printItem(out, "SCU version: ", system.scuVersion);
    printItem(out, "Platform name: ", system.platformName);
    printItem(out, "Host name: ", system.hostName);
    printItem(out, "OS name: ", system.osName);
    printItem(out, "OS type: ", system.osType);
    printItem(out, "OS version: ", system.osVersion);
    printItem(out, "Bus freq (MHz): ", system.busFreqMHz);
    printItem(out, "QVA clock freq (MHz): ", system.qvaClockFreqMHz);
    printItem(out, "LFM freq (MHz): ", system.lfmFreqMHz);
    printItem(out, "HFM freq (MHz): ", system.hfmFreqMHz);
    printItem(out, "Base operating freq (MHz): ", system.cpuFreqMHz);
}

void printCollection(std::ostream& out, const SystemMetadata& system)
{
    printItem(out, "Start TSC: ", system.startTSC);
    printItem(out, "Stop TSC: ", system.stopTSC);
    printItem(out, "Start Timeval: ", system.startTimeval);
    printItem(out, "Stop Timeval: ", system.stopTimeval);
    printItem(out, "Polling interval (msecs): ", system.pollingIntervalMsecs);
    out << "Collection command line: ";
    for (const std::string& argument : system.commandLine) {
        out << argument << " ";
    }
    out << std::endl;
    out << "Collected samples : " << system.samplesProduced << ", dropped samples: " << system.samplesDropped
        << std::endl;
    for (const auto& [sid, uuid] : system.sidToUuid) {
        out << "\tsid[" << sid << "] => uuid[" << uuid << "]" << std::endl;
    }
}

void printClockSync(std::ostream& out, const QVClockSync& sync)
{
    printItem(out, "\t\tClock UUID: ", sync.clockUUID);
    printItem(out, "\t\tClock Name: ", sync.clockName);
    printItem(out, "\t\tClock Freq (MHz): ", sync.clockFreqMHz);
    printItem(out, "\t\tClock Value: ", sync.clockValue);
    printItem(out, "\t\tDefault Clock UUID: ", sync.defaultClockUUID);
    printItem(out, "\t\tDefault Clock Name: ", sync.defaultClockName);
    printItem(out, "\t\tDefault Clock Freq (MHz): ", sync.defaultClockFreqMHz);
    printItem(out, "\t\tDefault Clock Value: ", sync.defaultClockValue);
}

void printLists(std::ostream& out, const SystemMetadata& system)
{
    out << "Platform specifiers: " << std::endl;
    for (const auto& [key, value] : system.platformSpecifiers) {
        out << "\t" << key << " => " << value << std::endl;
    }
    out << "Topology changes: " << std::endl;
    for (const TopologyChange& change : system.topologyChanges) {
        out << change;
    }
    out << "Synchronized clocks: " << std::endl;
    std::size_t index = 0;
    for (const QVClockSync& sync : system.clockSyncs) {
        out << "\tClock[" << index++ << "]:" << std::endl;
        printClockSync(out, sync);
    }
}

}    // namespace

SystemMetadata::SystemMetadata() : Metadata(__metadata_data_type::SYSTEM) {}

void SystemMetadata::buildTopology(const std::string& text, unsigned long long coresPerModule)
{
    cpuTopology.buildTopology(text, coresPerModule);
}

double SystemMetadata::getCollectionDurationSec() const
{
    return static_cast<double>(stopTimeval - startTimeval) / 1e9;
}

std::ostream& operator<<(std::ostream& out, const SystemMetadata& system)
{
    printIdentity(out, system);
    printCollection(out, system);
    printLists(out, system);
    printItem(out, "Package Type: ", system.packageType);
    return out;
}

}    // namespace pwr

#pragma once

#include "plugins/FMS.h"
#include "record/Clocks.h"
#include "record/Metadata.h"
#include "record/TopTree.h"
#include "runtime/Export.h"

#include <cstdint>
#include <list>
#include <map>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace pwr {

// One measured system and one collection: processor, operating system, frequencies, time span, command line, topology,
// and what happened during the run. The host and the collectors fill it; it is saved with the samples and read back for
// processing. Required texts (platform, host and OS names) must not be empty, or the record can't be read back; neither
// can what stands behind an empty text of the optional tail, which begins at `samplesProduced`.
//
//   SystemMetadata system;
//   system.buildTopology("0 0 0 -1", 0);
//   system.qvaClockFreqMHz = 1000;
class QUORVANE_API SystemMetadata : public Metadata {
public:
    SystemMetadata();

    std::map<int, std::string> sidToUuid;    // plugin SID to plugin UUID
    FMS fms;
    std::uint32_t appVersion = 0;    // first << 16 | second << 8 | third; so are driverVersion and scuVersion
    std::uint32_t driverVersion = 0;
    std::uint32_t scuVersion = 0;
    std::string platformName;
    std::string hostName;
    std::string osName;
    std::string osType;
    std::string osVersion;
    TopTree cpuTopology;
    float busFreqMHz = 0;
    float qvaClockFreqMHz = 0;     // of the clock that stamps samples: ticks / (MHz * 1000) = ms
    float lfmFreqMHz = 0;          // lowest frequency mode
    float hfmFreqMHz = 0;          // highest frequency mode
    float cpuFreqMHz = 0;          // base operating frequency
    std::uint64_t startTSC = 0;    // ticks
    std::uint64_t stopTSC = 0;
    std::uint64_t startTimeval = 0;    // wall clock, ns since the epoch
    std::uint64_t stopTimeval = 0;
    std::uint16_t pollingIntervalMsecs = 0;
    std::uint8_t maxDetail = 0;
    std::vector<std::string> commandLine;
    std::uint64_t samplesProduced = 0;
    std::uint64_t samplesDropped = 0;
    std::uint8_t lowOverheadMode = 0;
    std::vector<std::pair<std::string, std::string>> platformSpecifiers;
    std::vector<TopologyChange> topologyChanges;
    std::uint8_t hyperVEnabled = 0;
    std::uint8_t vsmEnabled = 0;
    std::vector<unsigned int> cpuNativeModelIds;
    std::uint32_t platformId = 0;
    std::uint8_t edramCap = 0;
    std::uint32_t iGfxId = 0;    // device id of the integrated graphics, 0: none
    std::string driverBuildDate = "N/A";
    std::uint64_t programStartTimeval = 0;    // wall clock, ns since the epoch
    std::uint64_t programStopTimeval = 0;
    std::string exeBuildDate;
    std::uint32_t continuousCollectionQuantum = 0;    // 0: the collection is not continuous
    std::vector<QVClockSync> clockSyncs;
    std::uint8_t hvciEnabled = 0;
    std::string nonNumericVersion;
    std::string buildRef;
    std::string packageType;

    // The body of the record. Reading makes the read topology the process's own (DataHandleProvider::resetTopology) and
    // sets the environment's clock ratio. A required field that is missing gives -1, fields read so far stay; the
    // optional tail may end anywhere between fields with a warning and 0. `version` is not used.
    void serialize_i(Serializer& out) const override;
    int deserialize_i(Serializer& in, unsigned int version) override;

    // See TopTree::buildTopology.
    void buildTopology(const std::string& text, unsigned long long coresPerModule);
    const TopTree& getCPUTopology() const { return cpuTopology; }

    // Wall-clock seconds from start to stop.
    double getCollectionDurationSec() const;

    // The texts at the head of a result file: about the tool, with the version of the running one when the data is
    // `postProcessed`; about the collection, without a line end behind the last line; about the hardware, beginning
    // with a line end. Nothing in them fails: what is unknown reads "N/A", "Unknown" or "Unsupported".
    std::string getVersionHeader(bool postProcessed) const;
    std::string getOSVersionString(bool postProcessed) const;    // the version lines of the header
    std::string getCollectionHeader() const;
    std::string getSystemHWHeader() const;

    // Wall-clock ns since the epoch as "2024-02-29 12:00:00 GMT"; "N/A" for 0.
    std::string formatTimevalAsString(unsigned long long nanoseconds) const;
    std::string getCollectionStartTime() const;
    std::string getProgramStartTime() const;

    // The name of the processor that `fms` tells, "Unknown" for most; the three letters of a core's native model id,
    // "N/A" without a name.
    std::string getFormattedCPUCodeName() const;
    std::string getCPUNativeModelName(unsigned int id) const;

    // The devices that a platform name ("PCH=token,PCI=token,PMT=token") tells, by the names of Device. Only tokens of
    // exactly two parts count. The chipset is the first PCH token's; where that has no name, its text goes on with the
    // ids of `platformSpecifiers`: "Unsupported (0xff)". The others append a name for each token.
    std::string getFormattedPCHDeviceName(const std::string& platform) const;
    void getFormattedPCIDeviceNames(const std::string& platform, std::list<std::string>& names) const;
    void getFormattedPMTDeviceNames(const std::string& platform, std::list<std::string>& names) const;

    // Platforms that share a processor model and differ in stepping, platform id or graphics.
    bool isPlatformNRV() const;
    bool isPlatformTMR() const;
    bool isPlatformOSK() const;
    bool isPlatformLYD() const;
};

// For diagnostics, one item a line.
QUORVANE_API std::ostream& operator<<(std::ostream& out, const SystemMetadata& system);

}    // namespace pwr

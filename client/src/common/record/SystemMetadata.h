#pragma once

#include "plugins/FMS.h"
#include "record/Clocks.h"
#include "record/Metadata.h"
#include "record/TopTree.h"
#include "runtime/Export.h"

#include <cstdint>
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
};

// For diagnostics, one item a line.
QUORVANE_API std::ostream& operator<<(std::ostream& out, const SystemMetadata& system);

}    // namespace pwr

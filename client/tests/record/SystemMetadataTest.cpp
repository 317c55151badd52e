#include "record/SystemMetadata.h"

#include "record/Serializer.h"
#include "support/Bytes.h"
#include "support/LogCapture.h"
#include "support/TestSession.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <tuple>

using namespace pwr;
using test::bytes;
using test::cut;
using test::written;

namespace {

constexpr char REQUIRED[] = "";
constexpr char CHANGE[] = "error extracting topology changes!";
constexpr char CLOCK_SYNC[] = "Couldn't extract clock sync data";
constexpr std::size_t VERSION = 3;
constexpr std::size_t PLATFORM_NAME = 6;
constexpr std::size_t TAIL = 25;
constexpr std::size_t DRIVER_BUILD_DATE = 40;
constexpr std::size_t QUANTUM = 44;
constexpr std::size_t CLOCK_SYNCS = 45;
constexpr std::size_t NON_NUMERIC_VERSION = 49;

std::string older(const std::string& what)
{
    return "couldn't extract " + what + " -- older file?!";
}

// A field of a record as it stands in a file, and what is said where the bytes end in it.
struct Piece {
    std::string picture;
    std::string warning;
    bool isRequired = warning.empty();    // there is no record then
};

const std::vector<Piece> RECORD = {
    {"02 00 00 00", REQUIRED},
    {"02 00  FF FF FF FF 02 00 'u1'  07 00 00 00 02 00 'u7'", REQUIRED},
    {"06 8E 09", REQUIRED},
    {"00 03 E4 07", REQUIRED},    // version 2020.3.0
    {"01 00 02 00", REQUIRED},
    {"05 00 00 00", REQUIRED},
    {"04 00 'plat'", REQUIRED},
    {"04 00 'host'", REQUIRED},
    {"02 00 'os'", REQUIRED},
    {"04 00 'type'", REQUIRED},
    {"03 00 '1.0'", REQUIRED},
    {"01 00  00 00 00 00 01 00 00 00  00 00 00 00 03 00 00 00  00 00 00 00 04 00 00 00", REQUIRED},
    {"FF FF FF FF  FF FF FF FF  FF FF FF FF", REQUIRED},
    {"00 00 C8 42", REQUIRED},    // 100
    {"00 00 FA 44", REQUIRED},    // 2000
    {"00 00 48 44", REQUIRED},    // 800
    {"00 00 7A 45", REQUIRED},    // 4000
    {"00 00 7A 44", REQUIRED},    // 1000
    {"01 00 00 00 00 00 00 00", REQUIRED},
    {"02 00 00 00 00 00 00 00", REQUIRED},
    {"03 00 00 00 00 00 00 00", REQUIRED},
    {"03 2F 68 59 00 00 00 00", REQUIRED},    // 1500000003
    {"64 00", REQUIRED},
    {"02", REQUIRED},
    {"02 00  02 00 '-t'  01 00 '5'", REQUIRED},
    {"0A 00 00 00 00 00 00 00", older("# produced samples")},
    {"0B 00 00 00 00 00 00 00", older("# dropped samples")},
    {"01", older("low overhead mode information")},
    {"01 00", older("platform specifiers")},
    {"01 00 'k'  01 00 'v'", REQUIRED},
    {"01 00", older("topology changes")},
    {"09 00 00 00 00 00 00 00  01 00 00 00  01 00  02 00  03 00", CHANGE, true},
    {"FF FF FF FF", CHANGE, true},
    {"02", older("HyperV enable information")},
    {"03", older("VSM enable information")},
    {"01 00", older("cpu native model IDs")},
    {"01 00 00 20", REQUIRED},
    {"0C 00 00 00", older("Platform Id information")},
    {"04", older("Edram Cap information")},
    {"0D 00 00 00", older("iGfx Id information")},
    {"02 00 'db'", older("driver build date information")},
    {"0E 00 00 00 00 00 00 00", older("program start/stop timeval")},
    {"0F 00 00 00 00 00 00 00", older("program start/stop timeval")},
    {"02 00 'eb'", older(".exe build date information")},
    {"20 A1 07 00", older("continuous collection quantum information")},    // 500000
    {"01 00", CLOCK_SYNC},
    {"02 00 'cu'  02 00 'cn'  00 00 7A 44  10 00 00 00 00 00 00 00", CLOCK_SYNC, true},
    {"02 00 'du'  02 00 'dn'  00 00 FA 44  11 00 00 00 00 00 00 00", CLOCK_SYNC, true},
    {"05", older("Hypervisor Enforced Code Integrity enable information")},
    {"02 00 'nv'", older("non-numeric version number")},
    {"02 00 'br'", older("build ref information")},
    {"02 00 'pt'", older("package type information")},
};

std::string picture(std::size_t first = 0, std::size_t behind = RECORD.size())
{
    std::string text;
    for (std::size_t i = first; i < behind; ++i) {
        text += RECORD[i].picture + " ";
    }
    return text;
}

std::unique_ptr<SystemMetadata> read(const std::vector<char>& stored)
{
    Serializer in(stored);
    return std::unique_ptr<SystemMetadata>(dynamic_cast<SystemMetadata*>(Metadata::deserialize(in, 1)));
}

class SystemMetadataTest : public testing::Test {
protected:
    test::LogCapture m_log{2};
};

TEST_F(SystemMetadataTest, ARecordReadsWritesAndPrints)
{
    const auto record = read(bytes(picture()));
    ASSERT_TRUE(record);
    const SystemMetadata& system = *record;
    EXPECT_EQ("", m_log.debug());
    EXPECT_EQ(bytes(picture()), written(system));
    std::ostringstream out;
    out << system;
    EXPECT_EQ("FMS: 0x6.0x8e.0x9\nApp version: 2020.3.0\nApp build date: eb\nDriver version: 2.0.1\n"
              "Driver build date: db\nSCU version: 5\nPlatform name: plat\nHost name: host\nOS name: os\n"
              "OS type: type\nOS version: 1.0\nBus freq (MHz): 100\nQVA clock freq (MHz): 2000\n"
              "LFM freq (MHz): 800\nHFM freq (MHz): 4000\nBase operating freq (MHz): 1000\nStart TSC: 1\n"
              "Stop TSC: 2\nStart Timeval: 3\nStop Timeval: 1500000003\nPolling interval (msecs): 100\n"
              "Collection command line: -t 5 \nCollected samples : 10, dropped samples: 11\n"
              "\tsid[-1] => uuid[u1]\n\tsid[7] => uuid[u7]\nPlatform specifiers: \n\tk => v\nTopology changes: \n"
              "Top Change:\n\ttsc = 9\n\ttype = OFFLINE\n\tlogicalProcID = 1\n\tcoreID = 2\n\tmoduleID = -1\n"
              "\tpkgID = 3\nSynchronized clocks: \n\tClock[0]:\n\t\tClock UUID: cu\n\t\tClock Name: cn\n"
              "\t\tClock Freq (MHz): 1000\n\t\tClock Value: 16\n\t\tDefault Clock UUID: du\n"
              "\t\tDefault Clock Name: dn\n\t\tDefault Clock Freq (MHz): 2000\n\t\tDefault Clock Value: 17\n"
              "Package Type: pt\n",
              out.str());
    // What isn't printed.
    EXPECT_EQ(std::tuple(2, 1, 2, 3),
              std::tuple(system.maxDetail, system.lowOverheadMode, system.hyperVEnabled, system.vsmEnabled));
    EXPECT_EQ(std::vector<unsigned int>{0x20000001}, system.cpuNativeModelIds);
    EXPECT_EQ(std::tuple(12u, 4, 13u, 14u, 15u, 500000u, 5),
              std::tuple(system.platformId, system.edramCap, system.iGfxId, system.programStartTimeval,
                         system.programStopTimeval, system.continuousCollectionQuantum, system.hvciEnabled));
    EXPECT_EQ("nv", system.nonNumericVersion);
    EXPECT_EQ("br", system.buildRef);
    EXPECT_EQ(1u, system.getCPUTopology().getNumThreads());
}

TEST_F(SystemMetadataTest, ARecordMayBeCutInItsTailOnly)
{
    const std::vector<char> whole = bytes(picture());
    std::size_t start = 0;
    for (const Piece& piece : RECORD) {
        const std::size_t end = start + bytes(piece.picture).size();
        for (std::size_t n = start; n < end; ++n) {
            m_log.clear();
            const auto record = read(cut(whole, n));
            EXPECT_EQ(piece.isRequired, record == nullptr) << n;
            EXPECT_EQ(piece.warning.empty() ? 0u : 1u, m_log.count("WARNING: " + piece.warning + "\n")) << n;
            if (!record) continue;
            EXPECT_EQ("WARNING: " + piece.warning + "\n", m_log.debug()) << n;
            EXPECT_EQ(cut(whole, start), cut(written(*record), start)) << n;
        }
        start = end;
    }
}

TEST_F(SystemMetadataTest, WhatAnOlderRecordLacksKeepsItsDefault)
{
    const auto record = read(bytes(picture(0, TAIL)));
    ASSERT_TRUE(record);
    EXPECT_EQ("WARNING: couldn't extract # produced samples -- older file?!\n", m_log.debug());
    std::vector<char> expected = bytes(picture(0, TAIL));
    const std::vector<char> fresh = written(SystemMetadata());
    const std::vector<char> again = written(*record);
    expected.insert(expected.end(), fresh.end() - static_cast<std::ptrdiff_t>(again.size() - expected.size()),
                    fresh.end());
    EXPECT_EQ(expected, again);
    EXPECT_EQ("N/A", record->driverBuildDate);
    EXPECT_EQ("", read(bytes(picture(0, DRIVER_BUILD_DATE)))->driverBuildDate);
    EXPECT_EQ("N/A", read(bytes(picture(0, DRIVER_BUILD_DATE - 1)))->driverBuildDate);
}

TEST_F(SystemMetadataTest, AnEmptyTextOfTheTailEndsTheRead)
{
    const auto readWithEmpty = [](std::size_t text) {
        return read(bytes(picture(0, text) + "00 00 " + picture(text + 1)));
    };
    const auto record = readWithEmpty(NON_NUMERIC_VERSION);
    ASSERT_TRUE(record);
    EXPECT_EQ("WARNING: couldn't extract non-numeric version number -- older file?!\n", m_log.debug());
    EXPECT_EQ(5u, record->hvciEnabled);
    EXPECT_EQ("", record->buildRef);

    for (std::size_t required = PLATFORM_NAME; required < PLATFORM_NAME + 5; ++required) {
        EXPECT_FALSE(readWithEmpty(required)) << required;
    }
}

TEST_F(SystemMetadataTest, OldRecordsHoldANarrowQuantum)
{
    const std::string between = picture(VERSION + 1, QUANTUM);
    const auto old = read(bytes(picture(0, VERSION) + "FF 02 E4 07 " + between + "05 00 " + picture(QUANTUM + 1)));
    ASSERT_TRUE(old);
    EXPECT_EQ(5000u, old->continuousCollectionQuantum);
    EXPECT_EQ("pt", old->packageType);
    const auto half = read(bytes(picture(0, VERSION) + "FF 02 E4 07 " + between + "05"));
    ASSERT_TRUE(half);
    EXPECT_EQ(0u, half->continuousCollectionQuantum);
    EXPECT_EQ("WARNING: couldn't extract continuous collection quantum information -- older file?!\n", m_log.debug());
}

TEST_F(SystemMetadataTest, EveryCountedElementMustBeThere)
{
    EXPECT_FALSE(read(bytes(picture(0, CLOCK_SYNCS) + "02 00 " + picture(CLOCK_SYNCS + 1, CLOCK_SYNCS + 3))));
    EXPECT_EQ("WARNING: Couldn't extract clock sync data\n", m_log.debug());
    for (const std::size_t list : {TAIL - 1, TAIL + 3, TAIL + 10, CLOCK_SYNCS}) {
        EXPECT_FALSE(read(bytes(picture(0, list) + "FF FF  01 00 'x'  01 00 'y'"))) << list;
    }
}

TEST_F(SystemMetadataTest, TheFirstUuidOfASidStays)
{
    const auto record =
        read(bytes(RECORD[0].picture + "02 00  07 00 00 00 01 00 'a'  07 00 00 00 01 00 'b'" + picture(2)));
    ASSERT_TRUE(record);
    EXPECT_EQ((std::map<int, std::string>{{7, "a"}}), record->sidToUuid);
}

TEST_F(SystemMetadataTest, ReadingIntoAFilledRecordAddsToItsTexts)
{
    SystemMetadata system;
    system.platformName = "old ";
    system.driverBuildDate = "old ";
    system.commandLine = {"old ", "", "third"};
    system.platformSpecifiers = {{"old", "er"}};
    system.clockSyncs.resize(1);
    Serializer in(bytes(picture(1, 28) + "00 00 " + picture(30)));
    EXPECT_EQ(0, system.deserialize_i(in, 1));
    EXPECT_EQ("old plat", system.platformName);
    EXPECT_EQ("db", system.driverBuildDate);
    EXPECT_EQ((std::vector<std::string>{"old -t", "5"}), system.commandLine);
    EXPECT_EQ(1u, system.platformSpecifiers.size());
    EXPECT_EQ(2u, system.clockSyncs.size());
}

TEST_F(SystemMetadataTest, StarredWarningsAlsoGoOutForThePrefix)
{
    m_log.environment().setVerbosity(1);
    m_log.environment().addPrefixForDebugLogging("SystemMeta::deserialize");
    std::string lines;
    for (std::size_t i = TAIL; i < RECORD.size(); ++i) {
        read(bytes(picture(0, i)));
        lines += m_log.debug();
        m_log.clear();
    }
    EXPECT_EQ("WARNING: couldn't extract driver build date information -- older file?!\n"
              "WARNING: couldn't extract program start/stop timeval -- older file?!\n"
              "WARNING: couldn't extract program start/stop timeval -- older file?!\n"
              "WARNING: couldn't extract Hypervisor Enforced Code Integrity enable information -- older file?!\n"
              "WARNING: couldn't extract non-numeric version number -- older file?!\n",
              lines);
}

TEST_F(SystemMetadataTest, ReadingTellsWhatItRead)
{
    m_log.environment().setVerbosity(4);
    ASSERT_TRUE(read(bytes(picture())));
    const char* const lines[] = {
        "INFO: OK, read app version = 132383488 (2020.3.0)\n",
        "INFO: OK, read driver version = 131073 (2.0.1)\n",
        "INFO: OK: read bus freq = 100.00\n",
        "INFO: OK: read qva clock freq = 2000.00\n",
        "INFO: OK: read lfm freq = 800.00\n",
        "INFO: OK: read hfm freq = 4000.00\n",
        "INFO: OK: read CPU freq = 1000.00\n",
        "INFO: OK: read start, stop TSC = 1, 2\n",
        "INFO: OK: read start, stop Timeval = 3, 1500000003\n",
        "INFO: OK: read polling interval msecs = 100\n",
        "INFO: OK: read max detail = 2\n",
        "4INFO: OK: read command line: -t 5 \n",
    };
    std::size_t at = 0;
    for (const char* line : lines) {
        at = m_log.debug().find(line, at);
        ASSERT_NE(std::string::npos, at) << line;
    }
}

TEST_F(SystemMetadataTest, ReadingSetsTheClockAndTheTopologyOfTheProcess)
{
    test::TestSession session;
    PluginEnvironment& environment = session.log.environment();
    EXPECT_FALSE(read(bytes(picture(0, 15))));
    EXPECT_NE(nullptr, environment.getTopologyManager());
    EXPECT_EQ(1.0F, environment.getDefaultClockToTSCRatio());
    EXPECT_FALSE(read(bytes(picture(0, 18))));
    EXPECT_EQ(2.0F, environment.getDefaultClockToTSCRatio());
    EXPECT_EQ(2000.0F, environment.getDefaultClockMHz());
}

TEST_F(SystemMetadataTest, DurationIsWallClockSeconds)
{
    SystemMetadata system;
    EXPECT_EQ(0, system.getCollectionDurationSec());
    system.stopTimeval = 1500000000;
    EXPECT_DOUBLE_EQ(1.5, system.getCollectionDurationSec());
    system.stopTimeval = 0;
    system.startTimeval = 1;    // the difference wraps
    EXPECT_DOUBLE_EQ(18446744073.709551615, system.getCollectionDurationSec());
}

}    // namespace

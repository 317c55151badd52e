#include "runtime/EtwProvider.h"
#include "runtime/EtwSession.h"

#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

namespace {

constexpr GUID PROVIDER{0x7b1f0a52, 0x21c4, 0x4c0e, {0x9d, 0x30, 0x5e, 0x11, 0x20, 0x43, 0x77, 0xa1}};
constexpr EVENT_DESCRIPTOR PHASE{1, 0, 0, 4, 0, 0, 1};
constexpr EVENT_DESCRIPTOR FIGURES{2, 0, 0, 4, 0, 0, 2};

// What a phase's figures are, as the tool writes them.
struct Figures {
    unsigned int samples;
    unsigned int lost;
};

// Keeps what it reads of the tool's own events.
class Recorded : public EtwSession {
public:
    using EtwSession::EtwSession;
    ~Recorded() override { std::free(m_properties); }

    EVENT_TRACE_LOGFILEA setLogfileCallback() override
    {
        EVENT_TRACE_LOGFILEA logfile = EtwSession::setLogfileCallback();
        logfile.EventRecordCallback = [](EVENT_RECORD* record) {
            static_cast<Recorded*>(record->UserContext)->onEvent(record);
        };
        logfile.Context = this;
        return logfile;
    }

    void onEvent(EVENT_RECORD* record)
    {
        if (std::memcmp(&record->EventHeader.ProviderId, &PROVIDER, sizeof PROVIDER) != 0) return;
        if (record->EventHeader.EventDescriptor.Id == FIGURES.Id) {
            Figures figures{};
            std::memcpy(&figures, EtwProvider::ReadStructEvent(record), sizeof figures);
            texts.push_back(std::to_string(figures.samples) + "/" + std::to_string(figures.lost));
        } else {
            const char* data = static_cast<const char*>(record->UserData);
            texts.push_back(std::string(1, data[4]) + std::string(1, data[6]));
        }
    }

    std::vector<std::string> texts;
};

TEST(EtwTraceTest, SessionsRecordReplayAndMergeTheToolsEvents)
{
    test::LogCapture log(2);
    EtwProvider provider(&PROVIDER);
    Recorded phases("run.etl", "_Phases", "QuorvaneTestPhases", "phases");
    Recorded figures("run.etl", "_Figures", "QuorvaneTestFigures", "figures");
    phases.addProvider(PROVIDER, 1);
    figures.addProvider(PROVIDER, 2);
    if (!phases.begin()) GTEST_SKIP() << "No tracing session for this user: " << log.debug();
    ASSERT_TRUE(figures.begin());
    const Figures data{7, 1};
    EXPECT_TRUE(provider.WriteIntStringPairEvent(&PHASE, 1, "up"));
    EXPECT_TRUE(provider.WriteStructEvent(&FIGURES, reinterpret_cast<const char*>(&data), sizeof data));
    EXPECT_TRUE(provider.WriteIntStringPairEvent(&PHASE, 2, "go"));
    ASSERT_TRUE(phases.end());
    ASSERT_TRUE(figures.end());
    if (!std::filesystem::exists("run_Phases.etl")) GTEST_SKIP() << "This system starts sessions that write no file.";

    EXPECT_TRUE(phases.postProcessLog());
    EXPECT_EQ((std::vector<std::string>{"up", "go"}), phases.texts);
    EXPECT_TRUE(figures.postProcessLog());
    EXPECT_EQ((std::vector<std::string>{"7/1"}), figures.texts);

    log.environment().setQuorvaneDirectory("");
    EtwSession::addMergeFile("_Phases");
    EtwSession::addMergeFile("_Figures");
    ASSERT_TRUE(EtwSession::mergeLogs("run.etl"));
    EtwSession::waitForMergeComplete();
    Recorded merged("run.etl", "_Capture", "", "merged");
    if (log.contains("LoadLibrary() failed")) GTEST_SKIP() << "This system comes without the merge library.";
    EXPECT_TRUE(merged.postProcessLog());
    EXPECT_EQ((std::vector<std::string>{"up", "7/1", "go"}), merged.texts);

    wchar_t name[] = L"Microsoft-Windows-Kernel-Power";
    GUID guid{};
    EXPECT_TRUE(EtwSession::getGuidForProvider(name, &guid));
    EXPECT_EQ(0x331c3b3aU, guid.Data1);
}

}    // namespace

#include "HostFixture.h"
#include "Session.h"
#include "system/TraceSlot.h"
#include "tracing/TraceEvents.h"
#include "tracing/TracePrinter.h"
#include "tracing/TraceRun.h"

#include "runtime/EtwSession.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <regex>

namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

// Wine has no tracing; Windows has.
#if defined(_WIN32)
constexpr bool MAY_LACK_TRACING = true;
#else
constexpr bool MAY_LACK_TRACING = false;
#endif
const std::string NO_TRACING =
    "quorvane_host: this system starts tracing sessions that write no file: there will be no trace\n";

// Replays a file without the host's own reader: names of events and their times.
class Replay : public EtwSession {
public:
    using EtwSession::EtwSession;

    EVENT_TRACE_LOGFILEA setLogfileCallback() override
    {
        EVENT_TRACE_LOGFILEA logfile = EtwSession::setLogfileCallback();
        logfile.Context = this;
        logfile.EventRecordCallback = [](EVENT_RECORD* record) {
            Replay& replay = *static_cast<Replay*>(record->UserContext);
            replay.ids.push_back(record->EventHeader.EventDescriptor.Id);
            replay.times.push_back(record->EventHeader.TimeStamp.QuadPart);
        };
        return logfile;
    }

    std::vector<int> ids;
    std::vector<long long> times;
};

class TraceTest : public test::HostFixture {
protected:
    int trace(const std::string& file) { return measure(m_tree, {"--feature", "temperature", "--trace", file}); }

    // The printed part behind the title.
    std::string printed(const std::string& file) const
    {
        const std::string title = "\nTrace " + file + ":\n";
        const std::size_t at = out.str().find(title);
        return at != std::string::npos ? out.str().substr(at + title.size()) : std::string();
    }

private:
    const test::TreeCopy m_tree{"four-cores"};
};

// Each printed line has its place in time, and the parts of the run follow one another.
void checkLines(const std::string& text, std::size_t rounds)
{
    const std::regex form(R"( *(\d+\.\d\d\d) ms  (\w+) +(.*))");
    Names phases;
    std::size_t round = 0;
    double last = 0;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        std::smatch part;
        ASSERT_TRUE(std::regex_match(line, part, form)) << line;
        EXPECT_LE(last, std::stod(part[1])) << line;
        last = std::stod(part[1]);
        if (part[2] == "round") {
            ++round;
            EXPECT_EQ(std::to_string(round) + ", records: 1, so far: " + std::to_string(round + 2), part[3]);
            EXPECT_EQ("collect", phases.back());
        } else {
            phases.push_back(part[2]);
        }
    }
    EXPECT_EQ((Names{"start", "baseline", "collect", "stop", "finalize"}), phases);
    EXPECT_EQ(rounds, round);
}

TEST_F(TraceTest, ARunIsTracedMergedAndPrinted)
{
    // The second run replaces the files and the events of the first.
    for (int attempt = 0; attempt < 2; ++attempt) {
        ASSERT_EQ(0, trace(path("deep/run.etl"))) << errors.str();
        EXPECT_NE(std::string::npos, out.str().find("Temperature Summary"));
        if (MAY_LACK_TRACING && errors.str() == NO_TRACING) {    // told, and that is all
            EXPECT_EQ(std::string::npos, out.str().find("Trace"));
            EXPECT_FALSE(fs::exists(path("deep/run_Capture.etl")));
            GTEST_SKIP() << errors.str();
        }
        EXPECT_EQ("", errors.str());
        Replay phases(path("deep/run.etl"), "_Phases", "", "phases");
        Replay rounds(path("deep/run.etl"), "_Rounds", "", "rounds");
        Replay capture(path("deep/run.etl"), "_Capture", "", "capture");
        EXPECT_TRUE(phases.postProcessLog() && rounds.postProcessLog() && capture.postProcessLog());
        EXPECT_EQ(std::vector<int>(5, 1), phases.ids);
        EXPECT_FALSE(rounds.ids.empty());
        EXPECT_EQ(std::vector<int>(rounds.ids.size(), 2), rounds.ids);
        EXPECT_EQ(phases.ids.size() + rounds.ids.size(), capture.ids.size());
        EXPECT_TRUE(std::is_sorted(capture.times.begin(), capture.times.end()));
        checkLines(printed(path("deep/run_Capture.etl")), rounds.ids.size());
    }
}

TEST_F(TraceTest, WhatCanNotBeTracedIsOneLineAndAStatus)
{
    fs::create_directories(path("folder.etl"));
    fs::create_directories(path("taken_Rounds.etl"));
    write("file", "no folder");
    const std::string name = ": give a file that ends in .etl, which stands nowhere else in its path\n";
    const std::string place = ": give --trace a file in a folder that can be written\n";
    const struct {
        std::string trace;
        int status;
        std::string begin;
        std::string end;
    } cases[] = {
        {"", 2, "--trace can't take ''", name},
        {path("run"), 2, "--trace can't take '" + path("run") + "'", name},
        {path(""), 2, "--trace can't take '" + path("") + "'", name},
        {"run.etl.gz", 2, "--trace can't take 'run.etl.gz'", name},
        {"run.ETL", 2, "--trace can't take 'run.ETL'", name},
        {"old.etl/run.etl", 2, "--trace can't take 'old.etl/run.etl'", name},
        {path("folder.etl"), 1, path("folder.etl") + " is a folder: give --trace a file\n", ""},
        {path("taken.etl"), 1, path("taken_Rounds.etl") + " can't be written", place},
        {path("file/run.etl"), 1, path("file/run_Capture.etl") + " can't be written", place},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.status, trace(c.trace)) << c.begin;
        EXPECT_TRUE(errors.str().starts_with("quorvane_host: " + c.begin)) << errors.str();
        EXPECT_TRUE(errors.str().ends_with(c.end) && hasOneComplaint()) << errors.str();
        EXPECT_EQ("", out.str());
    }
    EXPECT_FALSE(fs::exists(path("taken_Phases.etl")));
}

TEST_F(TraceTest, ASystemThatRefusesEndsTheRun)
{
    EtwSession::setUserBuffer(0xFFFFFFFF, 2, 400);    // KB
    const int status = trace(path("run.etl"));
    EtwSession::setUserBuffer(1024, 2, 400);
    if (MAY_LACK_TRACING && errors.str() == NO_TRACING) GTEST_SKIP() << errors.str();
    EXPECT_EQ(1, status);
    EXPECT_EQ("", out.str());
    EXPECT_TRUE(errors.str().starts_with("quorvane_host: the trace could not begin: Cannot start the trace " +
                                         path("run_Phases.etl") + ". "))
        << errors.str();
    EXPECT_TRUE(hasOneComplaint()) << errors.str();
    EXPECT_EQ(0, trace(path("run.etl"))) << errors.str();    // nothing is left over
}

TEST_F(TraceTest, FilesThatCanNotBeMergedArePrintedOneByOne)
{
    host::Session environment(errors);
    host::TraceRun traced(path("run.etl"), out, [this](const std::string& line) { errors << line << '\n'; });
    ASSERT_TRUE(traced.begin());
    if (MAY_LACK_TRACING && !errors.str().empty()) GTEST_SKIP() << errors.str();
    fs::create_directories(path("run_Capture.etl"));
    EXPECT_FALSE(traced.end());
    EXPECT_TRUE(errors.str().starts_with("the trace files are not merged: Trace merge experienced an unknown error"))
        << errors.str();
    EXPECT_TRUE(hasOneComplaint()) << errors.str();
    EXPECT_EQ("\nTrace " + path("run_Phases.etl") + ":\n       0.000 ms  start     the trace runs\n\nTrace " +
                  path("run_Rounds.etl") + ":\n",
              out.str());
    EXPECT_TRUE(traced.end());    // once only
}

// On Linux sessions live in the process, so that all have the same names.
TEST(TraceSlotTest, HostsAtTheSameTimeHaveNumbersOfTheirOwn)
{
    std::optional<host::TraceSlot> first(std::in_place);
    const host::TraceSlot second;
    EXPECT_EQ(MAY_LACK_TRACING, first->getNumber() != second.getNumber());
    const unsigned int number = first->getNumber();
    first.reset();
    EXPECT_EQ(number, host::TraceSlot().getNumber());
}

// An event as a replay hands it out, its payload of the given bytes.
struct Event {
    Event(unsigned short id, long long time, const std::string& bytes) : payload(bytes)
    {
        record.EventHeader.ProviderId = host::TRACE_PROVIDER;
        record.EventHeader.EventDescriptor.Id = id;
        record.EventHeader.TimeStamp.QuadPart = time;
        record.UserData = payload.data();
        record.UserDataLength = static_cast<unsigned short>(payload.size());
    }
    void printBy(host::TracePrinter& printer) { printer.add(record); }

    std::string payload;
    EVENT_RECORD record{};
};

TEST_F(TraceTest, OnlySoundEventsAndNotTooManyRoundsArePrinted)
{
    using namespace std::string_literals;
    host::TracePrinter printer(out);
    Event foreign(1, 5, "\0\0\0\0"s);
    foreign.record.EventHeader.ProviderId.Data1 ^= 1;
    foreign.printBy(printer);
    const std::string round = "\x10\0\0\0\x09\0\0\0\x08\0\0\0\x07\0\0\0\0\0\0\0"s;
    for (Event event : {Event(1, 6, ""), Event(1, 6, "\0\0\0"s), Event(1, 6, "\5\0\0\0"s), Event(3, 6, round),
                        Event(2, 6, round.substr(0, 19))}) {
        event.printBy(printer);
    }
    EXPECT_EQ("", out.str());
    Event(1, 10'000, "\1\0\0\0a\0\x0a\0\x41\1b"s).printBy(printer);    // no terminator, and half a character
    for (long long i = 0; i < 103; ++i)
        Event(2, 25'000 + i, round).printBy(printer);
    Event(1, 20'010'005, "\3\0\0\0x\0\0\0y\0"s).printBy(printer);
    printer.finish();
    const std::string text = out.str();
    EXPECT_TRUE(text.starts_with("       0.000 ms  baseline  a??\n"
                                 "       1.500 ms  round     9, records: 8, so far: 7\n"))
        << text;
    EXPECT_TRUE(text.ends_with("so far: 7\n"
                               "                 round     and 3 more\n"
                               "    2000.001 ms  stop      x\n"))
        << text;
    EXPECT_EQ(103, std::count(text.begin(), text.end(), '\n'));
}

}    // namespace

#include "runtime/os/posix/tracing/TraceMerger.h"

#include "runtime/os/TraceMerge.h"
#include "TraceFixture.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace {

using pwr::os::trace::mergeTraceFiles;
using Events = std::vector<std::string>;

class TraceMergerTest : public test::TraceFixture {
protected:
    // A file with these times; the events' numbers count on.
    std::string recorded(const std::string& name, const std::vector<unsigned long long>& times)
    {
        const TRACEHANDLE session = running("one", path(name), 1);
        for (const unsigned long long ticks : times) {
            writeAt(ticks, ++m_lastId, name);
        }
        EXPECT_EQ(0U, stop(session));
        return path(name);
    }

    void patch(const std::string& file, std::size_t offset, char byte)
    {
        std::vector<char> bytes = bytesOf(file);
        bytes[offset] = byte;
        store(file, bytes);
    }

    const std::string m_output = path("merged.etl");

private:
    USHORT m_lastId = 0;
};

TEST_F(TraceMergerTest, EventsAreMergedByTimeThenByInput)
{
    const std::string a = recorded("a", {110, 130, 130});
    const std::string b = recorded("b", {});
    const std::string c = recorded("c", {105, 130, 140});
    patch(a, 56, 2);    // events lost
    patch(c, 56, 3);
    EXPECT_EQ(0U, mergeTraceFiles(m_output, {a, b, c}));
    const test::Replayed merged = replay(m_output);
    EXPECT_EQ(0U, merged.status);
    EXPECT_EQ((Events{"4@105 c", "1@110 a", "2@130 a", "3@130 a", "5@130 c", "6@140 c"}), merged.events);
    EXPECT_EQ(5U, merged.logfile.LogfileHeader.EventsLost);
}

TEST_F(TraceMergerTest, CutAndDamagedInputsGiveTheirFirstEvents)
{
    const std::string a = recorded("a", {110, 120});
    const std::string b = recorded("b", {115, 125});
    std::filesystem::resize_file(b, std::filesystem::file_size(b) - 1);
    EXPECT_EQ(0U, mergeTraceFiles(m_output, {a, b}));
    EXPECT_EQ((Events{"1@110 a", "3@115 b", "2@120 a"}), replay(m_output).events);
    patch(a, 71 + 53, 1);    // the second record's size
    EXPECT_EQ(1392U, mergeTraceFiles(m_output, {a, b}));
    EXPECT_EQ((Events{"1@110 a", "3@115 b"}), replay(m_output).events);
}

TEST_F(TraceMergerTest, FailedMergeLeavesInputsAlone)
{
    const std::string a = recorded("a", {110});
    const std::string b = recorded("b", {115});
    const std::string link = path("link");
    std::filesystem::create_symlink(std::filesystem::absolute(a), link);
    EXPECT_EQ(87U, mergeTraceFiles(m_output, {}));
    EXPECT_EQ(87U, mergeTraceFiles(link, {b, a}));
    EXPECT_EQ(2U, mergeTraceFiles(m_output, {a, path("missing")}));
    EXPECT_EQ(3U, mergeTraceFiles(path("missing/merged"), {a}));
    EXPECT_EQ(112U, mergeTraceFiles("/dev/full", {a}));
    patch(b, 24, 1);    // another frequency
    EXPECT_EQ(13U, mergeTraceFiles(m_output, {a, b}));
    EXPECT_FALSE(std::filesystem::exists(m_output));
    EXPECT_TRUE(std::filesystem::exists("/dev/full"));
    EXPECT_EQ(1U, replay(a).events.size());
}

TEST_F(TraceMergerTest, ModuleIsLoadedByItsWindowsName)
{
    pwr::os::Libraries& libraries = *pwr::os::current().libraries;
    std::string program;
    unsigned long lastError = 0;
    ASSERT_TRUE(libraries.executablePath(program, lastError));
    const std::string directory = program.substr(0, program.rfind('/') + 1);
    void* library = libraries.load(directory + pwr::os::MERGE_LIBRARY, lastError);
    ASSERT_NE(nullptr, library);
    auto merge = reinterpret_cast<pwr::os::MergeFunction>(libraries.symbol(library, pwr::os::MERGE_FUNCTION));
    ASSERT_NE(nullptr, merge);
    EXPECT_EQ(nullptr, libraries.symbol(library, "mergeTraceFiles"));

    const std::string input = recorded("\xE9", {110});
    const std::wstring output(m_output.begin(), m_output.end());
    std::wstring wide(input.begin(), input.end());
    wide.back() = L'\xFFE9';    // as the callers widen it
    const wchar_t* inputs[] = {wide.c_str()};
    EXPECT_EQ(0U, merge(output.c_str(), inputs, 1, pwr::os::MERGE_ALL_DATA));
    EXPECT_EQ(1U, replay(m_output).events.size());
    patch(input, 71, 1);    // the record's size
    EXPECT_EQ(1392U, merge(output.c_str(), inputs, 1, pwr::os::MERGE_ALL_DATA));
    EXPECT_EQ(1392U, libraries.lastError());
    EXPECT_EQ(87U, merge(nullptr, inputs, 1, 0));
    EXPECT_EQ(87U, libraries.lastError());
    EXPECT_EQ(87U, merge(output.c_str(), nullptr, 1, 0));
    inputs[0] = L"missing.etl";
    EXPECT_EQ(2U, merge(output.c_str(), inputs, 1, 0));
    EXPECT_EQ(2U, libraries.lastError());
    libraries.unload(library);

    EXPECT_EQ(nullptr, libraries.load(pwr::os::MERGE_LIBRARY, lastError));
    libraries.setSearchDirectory(program.substr(0, program.rfind('/')));
    library = libraries.load(pwr::os::MERGE_LIBRARY, lastError);
    EXPECT_NE(nullptr, library);
    libraries.unload(library);
    libraries.setSearchDirectory("");
}

}    // namespace

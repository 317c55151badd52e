#pragma once

#include "Host.h"
#include "TreeCopy.h"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

namespace test {

// Runs the host as a user does and keeps what it says of the last run. Files go into a folder that ends with the test.
class HostFixture : public testing::Test {
protected:
    using Arguments = std::vector<std::string>;

    HostFixture() { std::filesystem::create_directories(m_folder); }
    ~HostFixture() override { std::filesystem::remove_all(m_folder); }

    int run(const Arguments& arguments)
    {
        out.str("");
        errors.str("");
        return host::runHost(arguments, {out, errors});
    }
    // A short collection over a tree.
    int measure(const TreeCopy& tree, Arguments more)
    {
        const Arguments common{"--sysroot", tree.root(), "--time", "0.15", "--interval", "40"};
        more.insert(more.begin(), common.begin(), common.end());
        return run(more);
    }
    bool hasOneComplaint() const { return countLines(errors.str()) == 1; }
    // The one complaint; the last run printed nothing else.
    void expectOnly(const std::string& complaint) const
    {
        EXPECT_EQ("quorvane_host: " + complaint + "\n", errors.str());
        EXPECT_EQ("", out.str());
    }

    std::string path(const std::string& name) const { return m_folder + "/" + name; }
    void write(const std::string& name, const std::string& bytes) const
    {
        std::ofstream(path(name), std::ios::binary) << bytes;
    }

    static std::ptrdiff_t countLines(const std::string& text) { return std::count(text.begin(), text.end(), '\n'); }

    std::ostringstream out;
    std::ostringstream errors;

private:
    const std::string m_folder = freshPath("results");
};

}    // namespace test

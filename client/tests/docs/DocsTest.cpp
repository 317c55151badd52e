#include "config/OutputConfig.h"
#include "config/qv_configfile_parser.h"
#include "record/SystemMetadata.h"
#include "support/FakeCollector.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

// The examples of the documents on the configuration languages, loaded as they stand there: a block marked `config`
// loads, one marked `config-error` fails and the log tells why in the words behind the mark.

namespace test {
namespace {

struct Example {
    std::string statements;
    std::string error;    // empty: it loads
};

std::vector<Example> examplesOf(const std::string& document)
{
    std::ifstream in(std::string(QUORVANE_TESTS_DIR) + "/../../docs/" + document, std::ios::binary);
    const std::string loads = "```config";
    const std::string fails = "```config-error ";
    std::vector<Example> examples;
    bool isInside = false;
    for (std::string line; std::getline(in, line);) {
        if (isInside && line == "```") {
            isInside = false;
        } else if (isInside) {
            examples.back().statements += line + "\n";
        } else if (line == loads || line.compare(0, fails.size(), fails) == 0) {
            isInside = true;
            examples.push_back({"", line == loads ? "" : line.substr(fails.size())});
        }
    }
    return examples;
}

void checkExamples(const std::string& document, const std::function<int(const std::string&)>& parse)
{
    const std::vector<Example> examples = examplesOf(document);
    ASSERT_GT(examples.size(), 5U) << document;
    for (const Example& example : examples) {
        const std::string path = "example.conf";
        std::ofstream(path, std::ios::binary) << example.statements;
        LogCapture log(2);
        EXPECT_EQ(example.error.empty() ? 0 : -1, parse(path)) << example.statements << log.errors() << log.debug();
        EXPECT_TRUE(example.error.empty() || log.contains(example.error)) << example.error << "\n" << log.errors();
    }
}

TEST(DocsTest, OutputConfigurationExamplesDoWhatTheyAreSaidToDo)
{
    const pwr::SystemMetadata system;
    auto* config = pwr::WriterInterfaceConfigFileParser::instance();
    checkExamples("output-configuration.md", [&](const std::string& path) { return config->parse({path}, system); });
    config->destroy();
}

TEST(DocsTest, CollectorConfigurationExamplesDoWhatTheyAreSaidToDo)
{
    const pwr::SystemMetadata system;
    FakeCollector collector;
    collector.provide("SYSFS", {"PATH", "FIELD"});
    collector.provideConstants();
    auto* config = pwr::QVConfigFileParser::instance();
    checkExamples("collector-configuration.md",
                  [&](const std::string& path) { return config->parse({path}, {&collector}, system); });
    config->destroy();
}

}    // namespace
}    // namespace test

#pragma once

#include "Host.h"
#include "Options.h"
#include "Session.h"
#include "features/Feature.h"
#include "machine/Machine.h"

#include "record/SystemMetadata.h"

#include <cstdint>
#include <memory>

namespace host {

class Collection;
class CsvWriter;
class PointCounter;

// One run of the host: chooses features, describes the machine, collects, and reports. Each step that fails has told
// the user why. Used once.
class Run {
public:
    Run(const Options& options, const std::vector<std::string>& arguments, const Console& console);
    ~Run();

    int execute();    // an exit status

private:
    int list_i();
    int chooseFeatures_i();
    int chooseNamed_i(const std::string& name);
    void chooseFound_i();
    int collect_i();
    bool describe_i();
    bool loadOutputConfig_i();
    void orderFeatures_i();
    int measure_i(CsvWriter& csv);
    int report_i(const std::vector<const Feature*>& failed, const Collection& collection, const PointCounter& counter,
                 const CsvWriter& csv);
    bool remarkOnFailures_i(const std::vector<const Feature*>& failed) const;
    int fail_i(int status, const std::string& text) const;
    void say_i(const std::string& text) const;

    Options m_options;
    std::vector<std::string> m_arguments;
    Console m_console;
    std::uint64_t m_startTimeval = 0;
    std::unique_ptr<Machine> m_machine;
    // The session ends last: record, metrics and writers live in it.
    std::unique_ptr<Session> m_session;
    pwr::SystemMetadata m_record;
    std::vector<std::unique_ptr<Feature>> m_features;
    std::vector<Feature*> m_chosen;
};

}    // namespace host

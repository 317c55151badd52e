#pragma once

#include "Host.h"
#include "Options.h"
#include "Session.h"
#include "collector/Collector.h"
#include "features/Features.h"
#include "machine/Machine.h"
#include "modules/CollectorTeam.h"
#include "modules/Modules.h"
#include "sessions/SessionReader.h"
#include "sessions/SessionWriter.h"
#include "system/System.h"
#include "tracing/TraceRun.h"

#include "record/SystemMetadata.h"

#include <cstdint>
#include <fstream>
#include <memory>

namespace host {

class Collection;
class Delivery;
class PointCounter;
class Replay;
class Results;

// One run of the host: describes the machine, loads the configuration, chooses features, collects, saves the session
// and reports; or takes all of that from a saved session and reports. Each step that fails has told the user why. Used
// once.
class Run {
public:
    Run(const Options& options, const std::vector<std::string>& arguments, const Console& console);
    ~Run();

    int execute();    // an exit status

private:
    bool loadModules_i();
    void makeCollectors_i();
    int process_i();
    bool openSession_i();
    bool chooseSaved_i();
    int printFms_i() const;
    std::string missingPlugins_i() const;
    void describe_i();
    bool loadCollectorConfig_i();
    bool listConfigFiles_i(std::vector<std::string>& files) const;
    bool openFeatures_i();
    int list_i();
    void takeRemarks_i();
    int chooseFeatures_i();
    int chooseNamed_i(const std::string& name);
    bool choose_i(const Feature& feature);
    int collect_i();
    int makeResults_i();
    bool loadOutputConfig_i();
    void orderFeatures_i();
    bool openResults_i(Results& results);
    bool openModuleWriters_i();
    int measure_i(const Results& results);
    int record_i(OutputStream& stream);
    bool startProgram_i();
    bool waitFor_i(double seconds) const;
    bool begin_i(Collection& collection) const;
    int replay_i();
    void printHead_i() const;
    int reportSaved_i() const;
    int report_i(const std::vector<const FeaturePlugin*>& failed, const PointCounter& counter, const Results& results);
    std::string listFiles_i(const Results& results) const;
    bool remarkOnFailures_i(const std::vector<const FeaturePlugin*>& failed) const;
    int fail_i(int status, const std::string& text) const;
    void say_i(const std::string& text) const;

    Options m_options;
    std::vector<std::string> m_arguments;
    Console m_console;
    std::uint64_t m_startTimeval = 0;
    std::unique_ptr<Machine> m_machine;
    // The code of modules stays until the session has ended.
    Modules m_modules;
    // The session ends last: record, plugins, metrics and writers live in it.
    std::unique_ptr<Session> m_session;
    pwr::SystemMetadata m_record;
    bool m_isDescribed = false;
    std::vector<std::string> m_remarks;    // on the machine
    std::unique_ptr<Collector> m_collector;
    std::unique_ptr<CollectorTeam> m_collectors;    // that one and those of modules
    Plugin::Params m_params;                        // for the plugins
    std::vector<Feature> m_features;
    std::vector<FeaturePlugin*> m_chosen;
    std::vector<ModuleWriter> m_moduleWriters;    // those that take part
    TraceRun m_trace;
    std::ifstream m_input;    // a saved session
    std::unique_ptr<SessionReader> m_reader;
    SessionWriter m_saved;
    std::unique_ptr<StopSignal> m_stop;    // until all is written
    Program m_program;
    std::unique_ptr<Delivery> m_delivery;
    Replay* m_replay = nullptr;    // where that is one
};

}    // namespace host

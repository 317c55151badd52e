#include "Run.h"

#include "Collection.h"
#include "ConfigFiles.h"
#include "Platforms.h"
#include "ProgramRecord.h"
#include "Progress.h"
#include "ResultNames.h"
#include "explain/Explain.h"
#include "modules/ModuleFeature.h"
#include "sessions/Replay.h"
#include "system/ProgramFolder.h"
#include "system/System.h"
#include "writers/ConsoleWriter.h"
#include "writers/PointCounter.h"
#include "writers/ResultHead.h"
#include "writers/Results.h"

#include "config/OutputConfig.h"
#include "config/qv_configfile_parser.h"
#include "record/Clocks.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <deque>
#include <filesystem>
#include <limits>
#include <ostream>
#include <system_error>

namespace host {

Run::Run(const Options& options, const std::vector<std::string>& arguments, const Console& console)
    : m_options(options), m_arguments(arguments), m_console(console), m_startTimeval(pwr::QVNanoClock().getTimestamp()),
      m_modules([this](const std::string& line) { say_i(line); }),
      m_trace(options.trace, console.out, [this](const std::string& line) { say_i(line); })
{
}

// The configuration goes before the collectors that serve it, features before the modules that they are of.
Run::~Run()
{
    m_delivery.reset();
    pwr::QVConfigFileParser::instance()->destroy();
    m_features.clear();
    m_modules.destroyPlugins();
}

int Run::execute()
{
    std::error_code ignored;
    if (!m_options.sysroot.empty() && !std::filesystem::is_directory(m_options.sysroot, ignored)) {
        return fail_i(EXIT_RUN,
                      "there is no folder " + m_options.sysroot + ": give --sysroot one that holds sys and proc");
    }
    m_session = std::make_unique<Session>(m_console.errors);
    if (!loadModules_i()) return EXIT_RUN;
    const std::string fault = findResultFault(m_options.results, m_modules.getWriters());
    if (!fault.empty()) return fail_i(EXIT_USAGE, fault);
    if (!m_options.input.empty()) return process_i();
    makeCollectors_i();
    describe_i();
    if (m_options.printFms) return printFms_i();
    if (!loadCollectorConfig_i()) return EXIT_RUN;
    if (!openFeatures_i()) return EXIT_RUN;
    if (m_options.list) return list_i();
    if (!m_options.explain.empty())
        return explainFeatures(m_options.explain, m_features, m_record, m_params, m_console);
    const int status = chooseFeatures_i();
    return status == EXIT_GOOD ? collect_i() : status;
}

bool Run::loadModules_i()
{
    m_session->getEnvironment().setResultFilePrefix(m_options.output);
    const std::string fault = m_modules.loadAll(m_options.pluginDir);
    if (!fault.empty()) fail_i(EXIT_RUN, fault);
    return fault.empty();
}

void Run::makeCollectors_i()
{
    m_machine = openMachine(m_options.sysroot);
    m_collector = m_machine->makeCollector(m_session->getClock());
    enroll(*m_collector, m_record);
    for (CollectorPlugin* collector : m_modules.getCollectors())
        enroll(*collector, m_record);
    m_collectors = std::make_unique<CollectorTeam>(*m_collector, m_modules.getCollectors(), m_record);
}

// The collectors of modules stand idle.
int Run::process_i()
{
    if (!openSession_i()) return EXIT_RUN;
    if (m_options.printFms) return printFms_i();
    return chooseSaved_i() ? makeResults_i() : EXIT_RUN;
}

// Of the machine that the record is about.
int Run::printFms_i() const
{
    m_console.out << m_record.fms << std::endl;
    return m_console.out ? EXIT_GOOD : fail_i(EXIT_RUN, "the processor could not be printed");
}

bool Run::openSession_i()
{
    m_input.open(m_options.input, std::ios::binary);
    if (!m_input) {
        fail_i(EXIT_RUN, m_options.input + " can't be read: give --input a saved session");
        return false;
    }
    m_reader = std::make_unique<SessionReader>(m_input);
    if (!m_reader->begin(m_record)) {
        fail_i(EXIT_RUN, m_options.input + " is no saved session: " + m_reader->getFault());
        return false;
    }
    m_session->useSavedRecord(m_record);
    return true;
}

bool Run::chooseSaved_i()
{
    m_features = makeFeatures("");
    addModuleFeatures(m_features, m_modules, "");
    std::vector<FeaturePlugin*> plugins;
    for (const Feature& feature : m_features)
        plugins.push_back(&feature.getPlugin());
    auto replay = std::make_unique<Replay>(m_record, *m_reader);
    m_chosen = replay->choose(plugins);
    m_replay = replay.get();
    m_delivery = std::move(replay);
    if (!m_chosen.empty()) return true;
    const std::string fault = m_reader->getFault().empty() ? "" : ": it " + m_reader->getFault();
    fail_i(EXIT_RUN, m_options.input + " holds nothing that can be processed" + fault + missingPlugins_i());
    return false;
}

// Behind what was left out for lack of them.
std::string Run::missingPlugins_i() const
{
    std::string uuids;
    for (const std::string& uuid : m_replay->getMissing())
        uuids += (uuids.empty() ? "" : ", ") + uuid;
    if (uuids.empty()) return {};
    return ": these plugins are not here: " + uuids + "; give --plugin-dir the folder of their modules";
}

// A machine without processors may still be listed.
void Run::describe_i()
{
    describeProgram(m_record, m_arguments, m_options.intervalMs);
    m_record.maxDetail = m_options.maxDetail ? 1 : 0;
    m_record.programStartTimeval = m_startTimeval;
    m_isDescribed = m_machine->describe(m_record, m_remarks);
    m_record.platformSpecifiers = platformSpecifiers(m_record);
}

bool Run::loadCollectorConfig_i()
{
    std::vector<std::string> files;
    if (!listConfigFiles_i(files)) return false;
    files.insert(files.end(), m_modules.getConfigFiles().begin(), m_modules.getConfigFiles().end());
    if (pwr::QVConfigFileParser::instance()->parse(files, m_collectors->getMembers(), m_record) == 0) return true;
    fail_i(EXIT_RUN, std::filesystem::path(files.front()).parent_path().string() +
                         " holds no good collector configuration: the lines before say where");
    return false;
}

bool Run::listConfigFiles_i(std::vector<std::string>& files) const
{
    std::error_code ignored;
    const bool isGiven = !m_options.config.empty();
    if (isGiven && !std::filesystem::is_directory(m_options.config, ignored)) {
        fail_i(EXIT_RUN, "there is no folder " + m_options.config + ": give --config one that holds *.conf files");
        return false;
    }
    const std::string folder = isGiven ? m_options.config : findCollectorConfig(programFolder());
    files = listCollectorConfig(folder, m_options.outputConfig);
    if (!files.empty()) return true;
    fail_i(EXIT_RUN, isGiven ? folder + " holds no collector configuration: give --config a folder with *.conf files"
                             : "the host's own configuration was not found: give --config a folder with *.conf files");
    return false;
}

// Driver records tell the number of a plugin in a byte.
bool Run::openFeatures_i()
{
    const std::string platforms = choosePlatforms(m_record);
    m_params = {{SourceRequirement::PLATFORMS, platforms}};
    m_features = makeFeatures(platforms);
    addModuleFeatures(m_features, m_modules, platforms);
    for (const Feature& feature : m_features)
        enroll(feature.getPlugin(), m_record);
    if (m_features.back().getPlugin().getSID() <= std::numeric_limits<std::uint8_t>::max()) return true;
    fail_i(EXIT_RUN, "there are more than 256 plugins: take some of the modules away");
    return false;
}

int Run::list_i()
{
    takeRemarks_i();
    std::size_t width = 0;
    for (const Feature& feature : m_features)
        width = std::max(width, feature.isHidden() ? 0 : feature.getName().size() + 2);
    const std::string indent(width, ' ');
    for (const Feature& feature : m_features) {
        if (feature.isHidden()) continue;
        std::string name = feature.getName();
        name.resize(width, ' ');
        m_console.out << name << feature.getDescription() << '\n';
        if (!feature.isAvailable(m_record, m_params))
            m_console.out << indent << "not offered here: " << feature.explain(m_record, m_params) << '\n';
        for (const std::string& remark : feature.getPlugin().getRemarks())
            m_console.out << indent << remark << '\n';
    }
    m_console.out.flush();
    return m_console.out ? EXIT_GOOD : fail_i(EXIT_RUN, "the list could not be printed");
}

// The baselines of a collection that is not gone on with tell what would be left out.
void Run::takeRemarks_i()
{
    std::vector<FeaturePlugin*> plugins;
    for (const Feature& feature : m_features) {
        FeaturePlugin& plugin = feature.getPlugin();
        const bool isUsable =
            feature.isAvailable(m_record, m_params) &&
            plugin.getDynamicHelpDisplayType(plugin.getName(), m_params, m_record) == QVDynamicHelpType::MESSAGES;
        if (isUsable) plugins.push_back(&plugin);
    }
    Collection(m_record, *m_collectors, plugins).begin(m_params);
}

int Run::chooseFeatures_i()
{
    for (const std::string& name : m_options.features) {
        const int status = chooseNamed_i(name);
        if (status != EXIT_GOOD) return status;
    }
    for (const Feature& feature : m_features) {
        if (m_options.features.empty() && !feature.isHidden()) choose_i(feature);
    }
    if (m_chosen.empty()) return fail_i(EXIT_RUN, "this machine offers no feature: --list tells why");
    return EXIT_GOOD;
}

// Of a group those that are offered.
int Run::chooseNamed_i(const std::string& name)
{
    const Feature* known = nullptr;
    bool isOffered = false;
    for (const Feature& feature : m_features) {
        if (!feature.answersTo(name)) continue;
        if (known == nullptr) known = &feature;
        isOffered = choose_i(feature) || isOffered;
    }
    if (known == nullptr) {
        return fail_i(EXIT_USAGE, "there is no feature '" + name + "' here: --list tells the names");
    }
    if (isOffered) return EXIT_GOOD;
    return fail_i(EXIT_RUN, "this machine does not offer '" + name + "', which " + known->explain(m_record, m_params) +
                                ": --list tells what it offers");
}

// False when it is not offered. Each is chosen once.
bool Run::choose_i(const Feature& feature)
{
    FeaturePlugin* plugin = &feature.getPlugin();
    if (std::find(m_chosen.begin(), m_chosen.end(), plugin) != m_chosen.end()) return true;
    if (!feature.isAvailable(m_record, m_params)) return false;
    m_chosen.push_back(plugin);
    return true;
}

int Run::collect_i()
{
    for (const std::string& remark : m_remarks)
        say_i(remark);
    if (!m_isDescribed) return fail_i(EXIT_RUN, "no processor was found: is --sysroot the root of a system?");
    if (!m_session->useRecord(m_record)) {
        return fail_i(EXIT_RUN, "the machine's topology could not be taken over");
    }
    return makeResults_i();
}

int Run::makeResults_i()
{
    if (!loadOutputConfig_i()) return EXIT_RUN;
    orderFeatures_i();
    Results results(m_replay != nullptr);
    if (!m_options.noPostProcessing && !openResults_i(results)) return EXIT_RUN;
    if (!m_trace.begin()) return EXIT_RUN;
    const int status = measure_i(results);
    return m_trace.end() ? status : EXIT_RUN;
}

// Over-time data need more than summaries.
bool Run::openResults_i(Results& results)
{
    std::vector<std::string> names = m_options.results;
    if (names.empty()) names.emplace_back("sum");
    if (m_record.maxDetail != 0) std::replace(names.begin(), names.end(), std::string("sum"), std::string("csv"));
    results.add(names, m_options.output);
    if (results.open()) return openModuleWriters_i();
    fail_i(EXIT_RUN, results.getError() + ": give --output a prefix that can be written");
    return false;
}

// Those that are named. Where nothing is named, all; one that fails then is left out.
bool Run::openModuleWriters_i()
{
    const std::vector<std::string>& names = m_options.results;
    for (const ModuleWriter& brought : m_modules.getWriters()) {
        const bool isNamed = std::find(names.begin(), names.end(), brought.name) != names.end();
        if (!isNamed && !names.empty()) continue;
        if (brought.writer->openOutput() == 0) {
            m_moduleWriters.push_back(brought);
            continue;
        }
        const std::string fault = "the output of the result '" + brought.name + "' could not be opened: ";
        say_i(fault + (isNamed ? "give --output a prefix that can be written" : "it is left out"));
        if (isNamed) return false;
    }
    return true;
}

bool Run::loadOutputConfig_i()
{
    const bool isGiven = !m_options.outputConfig.empty();
    const std::string path = isGiven ? m_options.outputConfig : findOutputConfig(programFolder());
    if (isGiven && !isReadableFile(path)) {
        fail_i(EXIT_RUN, path + " can't be read: give --output-config a file");
        return false;
    }
    if (path.empty()) say_i("output.conf was not found: the tables are plain; --output-config names another");
    const std::vector<std::string> files(path.empty() ? 0 : 1, path);
    if (pwr::WriterInterfaceConfigFileParser::instance()->parse(files, m_record) == 0) return true;
    fail_i(EXIT_RUN, path + " is no good output configuration: the line before says where");
    return false;
}

// Features that the configuration does not order stand behind those that it does.
void Run::orderFeatures_i()
{
    std::deque<std::string> order;
    pwr::WriterInterfaceConfigFileParser::instance()->getFeatureOrder(order);
    const auto rank = [&order](const FeaturePlugin* plugin) {
        return std::find(order.begin(), order.end(), plugin->getSwitchTag()) - order.begin();
    };
    std::stable_sort(m_chosen.begin(), m_chosen.end(),
                     [&rank](const FeaturePlugin* a, const FeaturePlugin* b) { return rank(a) < rank(b); });
}

int Run::measure_i(const Results& results)
{
    ConsoleWriter tables(m_console.out);
    PointCounter counter;
    OutputStream stream;
    stream.addWriter(counter);
    stream.addWriter(tables);
    std::vector<WriterPlugin*> writers{&counter, &tables};
    for (const auto& writer : results.getWriters()) {
        stream.addWriter(*writer);
        writers.push_back(writer.get());
    }
    for (const ModuleWriter& brought : m_moduleWriters) {
        stream.addWriter(*brought.writer);
        writers.push_back(brought.writer);
    }
    for (WriterPlugin* writer : writers) {
        if (m_replay == nullptr) enroll(*writer, m_record);
    }
    if (!stream.open(m_session->getEnvironment(), m_record))
        return fail_i(EXIT_RUN, "the writers could not be reached");

    const int status = m_replay != nullptr ? replay_i() : record_i(stream);
    if (status != EXIT_GOOD) return status;
    if (m_options.noPostProcessing) return reportSaved_i();
    printHead_i();
    const std::vector<const FeaturePlugin*> failed = m_delivery->end();
    m_record.samplesDropped = m_delivery->getDroppedPoints(counter);
    stream.close();
    return report_i(failed, counter, results);
}

int Run::record_i(OutputStream& stream)
{
    m_stop = std::make_unique<StopSignal>();
    if (!m_saved.open(m_options.output + ".qvs"))
        return fail_i(EXIT_RUN, m_saved.getError() + ": give --output a prefix that can be written");
    auto collection = std::make_unique<Collection>(m_record, m_trace.watch(*m_collectors), m_chosen);
    collection->saveTo(m_saved);
    if (m_options.noPostProcessing) collection->saveOnly();
    if (!startProgram_i()) return EXIT_RUN;
    Progress progress(m_console.errors, m_console.showsProgress && !m_options.quiet, m_console.usesColour);
    if (!begin_i(*collection)) return EXIT_RUN;
    collection->run(m_options.seconds, m_options.intervalMs, *m_stop, progress, [&] { stream.flush(m_record); });
    collection->stop();
    m_saved.close();
    m_delivery = std::move(collection);
    return EXIT_GOOD;
}

// With the delays before it and behind it.
bool Run::startProgram_i()
{
    if (!waitFor_i(m_options.programDelaySeconds)) return false;
    const std::string fault = m_options.program.empty() ? std::string() : m_program.start(m_options.program);
    if (!fault.empty()) {
        fail_i(EXIT_RUN, m_options.program.front() + " could not be started: " + fault);
        return false;
    }
    return waitFor_i(m_options.startDelaySeconds);
}

bool Run::waitFor_i(double seconds) const
{
    using std::chrono::steady_clock;
    if (seconds <= 0) return true;
    const auto delay = std::chrono::duration_cast<steady_clock::duration>(std::chrono::duration<double>(seconds));
    if (!m_stop->waitUntil(steady_clock::now() + delay)) return true;
    fail_i(EXIT_RUN, "interrupted before the collection began");
    return false;
}

bool Run::begin_i(Collection& collection) const
{
    if (const Plugin* refuser = collection.begin(m_params)) {
        fail_i(EXIT_RUN, "the collection could not begin: " + refuser->getUUID() + " refused its messages");
        return false;
    }
    for (const FeaturePlugin* plugin : m_chosen) {
        for (const std::string& remark : plugin->getRemarks())
            say_i(plugin->getName() + ": " + remark);
    }
    return true;
}

int Run::replay_i()
{
    m_replay->use(m_chosen);
    if (const Plugin* refuser = m_replay->begin())
        return fail_i(EXIT_RUN, "the processing could not begin: " + refuser->getUUID() + " refused the session");
    m_replay->run();
    if (!m_reader->isWhole()) {
        say_i(m_options.input + " " + m_reader->getFault() + ": " + std::to_string(m_reader->getRecords()) +
              " records were read up to there");
    }
    if (m_replay->getLeftOutRecords() > 0)
        say_i(std::to_string(m_replay->getLeftOutRecords()) + " records are left out" + missingPlugins_i());
    return EXIT_GOOD;
}

void Run::printHead_i() const
{
    for (const std::string& line : resultHead(m_record, m_replay != nullptr).lines())
        m_console.out << line << '\n';
}

int Run::reportSaved_i() const
{
    if (!m_saved.getError().empty()) return fail_i(EXIT_RUN, m_saved.getError() + ": the session is not complete");
    m_console.out << m_saved.getRecords() << " records are saved in " << m_saved.getPath() << std::endl;
    return m_console.out ? EXIT_GOOD : fail_i(EXIT_RUN, "the end could not be printed");
}

int Run::report_i(const std::vector<const FeaturePlugin*>& failed, const PointCounter& counter, const Results& results)
{
    m_console.out << '\n'
                  << m_delivery->getSamples() << " samples, " << m_delivery->getDroppedPoints(counter)
                  << " dropped points, files: " << listFiles_i(results) << std::endl;

    if (!remarkOnFailures_i(failed)) return EXIT_RUN;
    if (m_delivery->getFailedRecords() > 0) {
        return fail_i(EXIT_RUN, std::to_string(m_delivery->getFailedRecords()) + " records could not be processed");
    }
    if (!results.getError().empty()) return fail_i(EXIT_RUN, results.getError() + ": the files are not complete");
    if (!m_saved.getError().empty()) return fail_i(EXIT_RUN, m_saved.getError() + ": the session is not complete");
    return m_console.out ? EXIT_GOOD : fail_i(EXIT_RUN, "the tables could not be printed");
}

// A module's writer says how its file is named, but not whether it wrote one.
std::string Run::listFiles_i(const Results& results) const
{
    std::vector<std::string> files = results.getFiles();
    std::error_code ignored;
    for (const ModuleWriter& brought : m_moduleWriters) {
        const std::string file = m_options.output + brought.fileSuffix;
        if (!brought.fileSuffix.empty() && std::filesystem::is_regular_file(file, ignored)) files.push_back(file);
    }
    if (m_replay == nullptr) files.push_back(m_saved.getPath());
    std::string text;
    for (const std::string& file : files)
        text += (text.empty() ? "" : ", ") + file;
    return text;
}

// A feature whose sources stood still is nothing bad; it is when all did.
bool Run::remarkOnFailures_i(const std::vector<const FeaturePlugin*>& failed) const
{
    for (const FeaturePlugin* plugin : failed) {
        say_i(plugin->getName() + (plugin->getSamples() == 0 ? ": nothing changed, so there is no sample"
                                                             : ": some of its tables could not be made"));
    }
    const auto hasSamples = [](const FeaturePlugin* plugin) { return plugin->getSamples() != 0; };
    if (std::any_of(failed.begin(), failed.end(), hasSamples)) return false;
    if (failed.size() < m_chosen.size()) return true;
    fail_i(EXIT_RUN, m_replay != nullptr ? "no sample can be made of what was saved"
                                         : "no sample was taken: collect longer with --time");
    return false;
}

int Run::fail_i(int status, const std::string& text) const
{
    say_i(text);
    return status;
}

void Run::say_i(const std::string& text) const
{
    m_console.errors << "quorvane_host: " << text << std::endl;
}

}    // namespace host

#include "Run.h"

#include "Collection.h"
#include "OutputConfigFile.h"
#include "ProgramRecord.h"
#include "Progress.h"
#include "system/System.h"
#include "writers/ConsoleWriter.h"
#include "writers/CsvWriter.h"
#include "writers/PointCounter.h"

#include "config/OutputConfig.h"
#include "record/Clocks.h"

#include <algorithm>
#include <deque>
#include <filesystem>
#include <ostream>
#include <system_error>

namespace host {

Run::Run(const Options& options, const std::vector<std::string>& arguments, const Console& console)
    : m_options(options), m_arguments(arguments), m_console(console), m_startTimeval(pwr::QVNanoClock().getTimestamp())
{
}

Run::~Run() = default;

int Run::execute()
{
    std::error_code ignored;
    if (!m_options.sysroot.empty() && !std::filesystem::is_directory(m_options.sysroot, ignored)) {
        return fail_i(EXIT_RUN,
                      "there is no folder " + m_options.sysroot + ": give --sysroot one that holds sys and proc");
    }
    m_machine = openMachine(m_options.sysroot);
    m_features = m_machine->makeFeatures();
    if (m_options.list) return list_i();
    const int status = chooseFeatures_i();
    return status == EXIT_GOOD ? collect_i() : status;
}

int Run::list_i()
{
    for (const std::unique_ptr<Feature>& feature : m_features) {
        std::string reason;
        const bool isOffered = feature->find(reason);
        std::string name = feature->getName();
        name.resize(std::max<std::size_t>(name.size(), 14), ' ');
        m_console.out << name << feature->getDescription() << '\n';
        if (!isOffered) m_console.out << std::string(14, ' ') << "not offered here: " << reason << '\n';
        for (const std::string& remark : feature->getRemarks())
            m_console.out << std::string(14, ' ') << remark << '\n';
    }
    m_console.out.flush();
    return m_console.out ? EXIT_GOOD : fail_i(EXIT_RUN, "the list could not be printed");
}

int Run::chooseFeatures_i()
{
    for (const std::string& name : m_options.features) {
        const int status = chooseNamed_i(name);
        if (status != EXIT_GOOD) return status;
    }
    if (m_options.features.empty()) chooseFound_i();
    if (m_chosen.empty()) return fail_i(EXIT_RUN, "this machine offers no feature: --list tells why");
    for (const Feature* feature : m_chosen) {
        for (const std::string& remark : feature->getRemarks())
            say_i(feature->getName() + ": " + remark);
    }
    return EXIT_GOOD;
}

int Run::chooseNamed_i(const std::string& name)
{
    const auto hasName = [&name](const std::unique_ptr<Feature>& feature) { return feature->getName() == name; };
    const auto feature = std::find_if(m_features.begin(), m_features.end(), hasName);
    if (feature == m_features.end()) {
        return fail_i(EXIT_USAGE, "there is no feature '" + name + "' here: --list tells the names");
    }
    std::string reason;
    if (!(*feature)->find(reason)) {
        return fail_i(EXIT_RUN,
                      "this machine does not offer '" + name + "', since " + reason + ": --list tells what it offers");
    }
    m_chosen.push_back(feature->get());
    return EXIT_GOOD;
}

void Run::chooseFound_i()
{
    for (const std::unique_ptr<Feature>& feature : m_features) {
        std::string ignored;
        if (feature->find(ignored)) m_chosen.push_back(feature.get());
    }
}

int Run::collect_i()
{
    m_session = std::make_unique<Session>(m_console.errors);
    if (!describe_i() || !loadOutputConfig_i()) return EXIT_RUN;
    orderFeatures_i();
    CsvWriter csv(m_options.output);
    if (!m_options.output.empty() && csv.openOutput() != 0) {
        return fail_i(EXIT_RUN, csv.getError() + ": give --output a prefix that can be written");
    }
    return measure_i(csv);
}

bool Run::describe_i()
{
    describeProgram(m_record, m_arguments, m_options.intervalMs);
    m_record.programStartTimeval = m_startTimeval;
    std::vector<std::string> remarks;
    const bool isDescribed = m_machine->describe(m_record, remarks);
    for (const std::string& remark : remarks)
        say_i(remark);
    if (!isDescribed) {
        fail_i(EXIT_RUN, "no processor was found: is --sysroot the root of a system?");
        return false;
    }
    if (m_session->useRecord(m_record)) return true;
    fail_i(EXIT_RUN, "the machine's topology could not be taken over");
    return false;
}

bool Run::loadOutputConfig_i()
{
    const bool isGiven = !m_options.outputConfig.empty();
    const std::string& folder = m_session->getEnvironment().getQuorvaneDirectory();
    const std::string path = isGiven ? m_options.outputConfig : findOutputConfig(folder);
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
    const auto rank = [&order](const Feature* feature) {
        return std::find(order.begin(), order.end(), feature->getSwitchTag()) - order.begin();
    };
    std::stable_sort(m_chosen.begin(), m_chosen.end(),
                     [&rank](const Feature* a, const Feature* b) { return rank(a) < rank(b); });
}

int Run::measure_i(CsvWriter& csv)
{
    ConsoleWriter tables(m_console.out);
    PointCounter counter;
    OutputStream stream;
    stream.addWriter(counter);
    stream.addWriter(tables);
    if (!m_options.output.empty()) stream.addWriter(csv);
    if (!stream.open(m_session->getEnvironment(), m_record))
        return fail_i(EXIT_RUN, "the writers could not be reached");

    Collection collection(m_record, m_session->getClock(), m_chosen);
    StopSignal stop;    // until all is written
    Progress progress(m_console.errors, m_console.showsProgress);
    collection.begin();
    collection.run(m_options.seconds, m_options.intervalMs, stop, progress);
    const std::vector<const Feature*> failed = collection.end();
    m_record.samplesDropped = collection.getDroppedPoints(counter);
    m_record.programStopTimeval = pwr::QVNanoClock().getTimestamp();
    stream.close();
    return report_i(failed, collection, counter, csv);
}

int Run::report_i(const std::vector<const Feature*>& failed, const Collection& collection, const PointCounter& counter,
                  const CsvWriter& csv)
{
    std::string files;
    for (const std::string& file : csv.getFiles())
        files += (files.empty() ? ", files: " : ", ") + file;
    m_console.out << '\n'
                  << collection.getSamples() << " samples, " << collection.getDroppedPoints(counter)
                  << " dropped points" << (files.empty() ? ", no files (--output PREFIX writes some)" : files)
                  << std::endl;

    if (!remarkOnFailures_i(failed)) return EXIT_RUN;
    if (!csv.getError().empty()) return fail_i(EXIT_RUN, csv.getError() + ": the files are not complete");
    return m_console.out ? EXIT_GOOD : fail_i(EXIT_RUN, "the tables could not be printed");
}

// A feature whose sources stood still is nothing bad; it is when all did.
bool Run::remarkOnFailures_i(const std::vector<const Feature*>& failed) const
{
    for (const Feature* feature : failed) {
        say_i(feature->getName() + (feature->getSamples() == 0 ? ": nothing changed, so there is no sample"
                                                               : ": some of its tables could not be made"));
    }
    const auto hasSamples = [](const Feature* feature) { return feature->getSamples() != 0; };
    if (std::any_of(failed.begin(), failed.end(), hasSamples)) return false;
    if (failed.size() < m_chosen.size()) return true;
    fail_i(EXIT_RUN, "no sample was taken: collect longer with --time");
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

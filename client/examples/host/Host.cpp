#include "Host.h"

#include "HelpText.h"
#include "Options.h"
#include "ResultNames.h"
#include "Run.h"
#include "Session.h"
#include "modules/Modules.h"
#include "system/TeeBuffer.h"

#include "usage/UsageText.h"

#include <QuorvaneBuild.h>
#include <exception>
#include <nlohmann/json.hpp>
#include <ostream>

namespace host {

namespace {

int fail(const Console& console, int status, const std::string& text)
{
    console.errors << "quorvane_host: " << text << std::endl;
    return status;
}

int print(const Console& console, const std::string& text)
{
    console.out << text << std::flush;
    return console.out ? EXIT_GOOD : fail(console, EXIT_RUN, "the text could not be printed");
}

std::string versionText()
{
    const std::string reference = *pwr::build::REF != '\0' ? pwr::build::REF : "N/A";
    return std::string("quorvane_host ") + pwr::build::VERSION + " [" + pwr::build::DATE +
           "]\nBuild Ref: " + reference + "\n" + pwr::build::COPYRIGHT + "\n";
}

// What the processor at hand adds to the description of the options.
void learnProcessor(const Options& options)
{
    pwr::SystemMetadata record;
    std::vector<std::string> remarks;
    openMachine(options.sysroot)->describe(record, remarks);
    const std::string chip = record.getFormattedCPUCodeName();
    pwr::usage::UsageText::updatePchDeviceInfo(chip);
    pwr::usage::UsageText::updateTcssIpInfo(chip);
}

// With the results that modules bring.
int printHelp(const Options& options, const Console& console)
{
    learnProcessor(options);
    Modules modules([&console](const std::string& line) { fail(console, EXIT_RUN, line); });
    const Session session(console.errors);
    const std::string fault = modules.loadAll(options.pluginDir);
    const std::string text = helpText(consoleWidth(), resultOptions(modules.getWriters()));
    modules.destroyPlugins();    // while the session stands
    return fault.empty() ? print(console, text) : fail(console, EXIT_RUN, fault);
}

std::string usageJson()
{
    nlohmann::json usage;
    pwr::usage::UsageText::formatJson(usage);
    return usage.dump(2) + "\n";
}

int serve(const Options& options, const std::vector<std::string>& arguments, const Console& console)
{
    if (options.help) return printHelp(options, console);
    if (options.version) return print(console, versionText());
    if (options.usageJson) {
        learnProcessor(options);
        return print(console, usageJson());
    }
    return Run(options, arguments, console).execute();
}

int serveWithLog(const Options& options, const std::vector<std::string>& arguments, const Console& console)
{
    TeeBuffer both(*console.out.rdbuf());
    if (!both.open(options.log)) return fail(console, EXIT_RUN, options.log + " can't be written: give --log a file");
    std::ostream out(&both);
    return serve(options, arguments, {out, console.errors, console.showsProgress});
}

}    // namespace

int runHost(const std::vector<std::string>& arguments, const Console& console)
{
    Options options;
    std::string error;
    if (!parseOptions(arguments, options, error)) return fail(console, EXIT_USAGE, error);
    try {
        return options.log.empty() ? serve(options, arguments, console) : serveWithLog(options, arguments, console);
    } catch (const std::exception& trouble) {
        return fail(console, EXIT_RUN, trouble.what());
    } catch (const char* trouble) {    // how the library's constructors refuse
        return fail(console, EXIT_RUN, trouble);
    }
}

}    // namespace host

#include "Host.h"

#include "Options.h"
#include "Run.h"

#include <exception>
#include <ostream>

namespace host {

namespace {

int fail(const Console& console, int status, const std::string& text)
{
    console.errors << "quorvane_host: " << text << std::endl;
    return status;
}

}    // namespace

int runHost(const std::vector<std::string>& arguments, const Console& console)
{
    Options options;
    std::string error;
    if (!parseOptions(arguments, options, error)) return fail(console, EXIT_USAGE, error);
    if (options.help) {
        console.out << helpText() << std::flush;
        return console.out ? EXIT_GOOD : fail(console, EXIT_RUN, "the help could not be printed");
    }
    try {
        return Run(options, arguments, console).execute();
    } catch (const std::exception& trouble) {
        return fail(console, EXIT_RUN, trouble.what());
    } catch (const char* trouble) {    // how the library's constructors refuse
        return fail(console, EXIT_RUN, trouble);
    }
}

}    // namespace host

#include "runtime/os/Os.h"

namespace pwr::os {

Door& current()
{
    static Door s_door{.files = &systemFiles(),
                       .environment = &systemEnvironment(),
                       .clocks = &systemClocks(),
                       .processor = &systemProcessor(),
                       .console = &systemConsole(),
                       .errorTexts = &systemErrorTexts(),
                       .memory = &systemMemory(),
                       .threads = &systemThreads(),
                       .libraries = &systemLibraries(),
                       .tracing = &systemTracing(),
                       .registry = &systemRegistry(),
                       .displays = &systemDisplays(),
                       .fileVersions = &systemFileVersions()};
    return s_door;
}

}    // namespace pwr::os

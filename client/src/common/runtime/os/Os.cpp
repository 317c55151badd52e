#include "runtime/os/Os.h"

namespace pwr::os {

Door& current()
{
    static Door s_door{&systemFiles(),   &systemEnvironment(), &systemClocks(), &systemProcessor(),
                       &systemConsole(), &systemErrorTexts(),  &systemMemory(), &systemThreads()};
    return s_door;
}

}    // namespace pwr::os

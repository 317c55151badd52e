#include "machine/TreeMachine.h"
#include "system/System.h"

#include <unistd.h>

namespace host {

std::unique_ptr<Machine> openThisMachine()
{
    return std::make_unique<TreeMachine>("/");
}

bool isErrorStreamTerminal()
{
    return isatty(STDERR_FILENO) == 1;
}

}    // namespace host

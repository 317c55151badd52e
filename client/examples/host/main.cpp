#include "Host.h"

#include "system/System.h"

#include <iostream>

int main(int argc, char** argv)
{
    const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
    return host::runHost(arguments,
                         {std::cout, std::cerr, host::isErrorStreamTerminal(), host::isErrorStreamColoured()});
}

#pragma once

#include "runtime/os/Clocks.h"
#include "runtime/os/Console.h"
#include "runtime/os/Displays.h"
#include "runtime/os/Environment.h"
#include "runtime/os/ErrorTexts.h"
#include "runtime/os/FileVersions.h"
#include "runtime/os/Files.h"
#include "runtime/os/Libraries.h"
#include "runtime/os/Memory.h"
#include "runtime/os/Processor.h"
#include "runtime/os/Registry.h"
#include "runtime/os/Threads.h"
#include "runtime/os/Tracing.h"

namespace pwr::os {

// The library's only door to the operating system, one member per concern. A test replaces one concern for a while, for
// instance to make its n-th call fail, and puts the old one back.
//
//   os::current().clocks->timeStampCounter();
struct Door {
    Files* files;
    Environment* environment;
    Clocks* clocks;
    Processor* processor;
    Console* console;
    ErrorTexts* errorTexts;
    Memory* memory;
    Threads* threads;
    Libraries* libraries;
    Tracing* tracing;
    Registry* registry;
    Displays* displays;
    FileVersions* fileVersions;
};

Door& current();

}    // namespace pwr::os

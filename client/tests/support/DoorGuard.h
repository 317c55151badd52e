#pragma once

#include "runtime/os/Os.h"

namespace test {

// Lets a test replace concerns of the operating system's door, and puts the old ones back at the end.
//
//   DoorGuard door;
//   door->clocks = &fakeClocks;
class DoorGuard {
public:
    DoorGuard() = default;
    ~DoorGuard() { pwr::os::current() = m_previous; }
    DoorGuard(const DoorGuard&) = delete;
    DoorGuard& operator=(const DoorGuard&) = delete;

    pwr::os::Door* operator->() { return &pwr::os::current(); }

private:
    pwr::os::Door m_previous = pwr::os::current();
};

}    // namespace test

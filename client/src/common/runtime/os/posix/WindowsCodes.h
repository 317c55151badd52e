#pragma once

#include <cstdint>

namespace pwr::os {

// The Windows error code for what this system reports as the errno value `errnum`. The door hands out Windows codes on
// every system, since the texts and the rules that callers know are made for those. 31, a general failure, stands for
// what has no counterpart; 0 stays 0.
int windowsCode(int errnum);

// The errno value whose counterpart a Windows error code is, the first one if it has several; 0 if it has none.
int errnoOf(std::uint32_t code);

}    // namespace pwr::os

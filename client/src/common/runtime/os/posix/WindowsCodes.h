#pragma once

namespace pwr::os {

// The Windows error code for what this system reports as the errno value `errnum`. The door hands out Windows codes on
// every system, since the texts and the rules that callers know are made for those. 31, a general failure, stands for
// what has no counterpart; 0 stays 0.
int windowsCode(int errnum);

}    // namespace pwr::os

#pragma once

#include "runtime/os/WindowsTypes.h"

namespace pwr::os {

// The display adapters (one for each output) and their monitors. One thread at a time.
class Displays {
public:
    virtual ~Displays() = default;

    // Tells the adapter `index` for a null `adapter`, else the monitor `index` of the adapter of that device name.
    // False when there is none: `display` keeps its size field and is zero otherwise. The adapter index 0 looks anew;
    // the caller has set the size field.
    virtual bool enumerate(const char* adapter, unsigned int index, DISPLAY_DEVICEA& display) = 0;
};

Displays& systemDisplays();

}    // namespace pwr::os

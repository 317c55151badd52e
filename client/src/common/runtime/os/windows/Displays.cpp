#include "runtime/os/Displays.h"

#include <windows.h>

namespace pwr::os {

namespace {

class WindowsDisplays : public Displays {
public:
    bool enumerate(const char* adapter, unsigned int index, DISPLAY_DEVICEA& display) override
    {
        if (EnumDisplayDevicesA(adapter, index, &display, 0) != 0) return true;
        const DWORD size = display.cb;
        display = {};
        display.cb = size;
        return false;
    }
};

}    // namespace

Displays& systemDisplays()
{
    static WindowsDisplays s_displays;
    return s_displays;
}

}    // namespace pwr::os

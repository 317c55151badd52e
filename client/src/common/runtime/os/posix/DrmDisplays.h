#pragma once

#include "runtime/os/Displays.h"

#include <string>
#include <vector>

namespace pwr::os {

// The outputs of the graphics cards as the kernel shows them in its folder class/drm. An output stands for an adapter:
// its device name is the kernel's ("card0-DP-1"), its text the driver, its id the card's vendor and device. A connected
// monitor is named and numbered as its EDID says, and active when the output is enabled. The keys are the paths that
// tell it.
class DrmDisplays : public Displays {
public:
    explicit DrmDisplays(const std::string& root);    // in place of /sys

    bool enumerate(const char* adapter, unsigned int index, DISPLAY_DEVICEA& display) override;

private:
    struct Output {
        unsigned long card;    // number of the card, the first key of the order
        std::string name;
    };

    void look_i();
    void describeOutput_i(const Output& output, DISPLAY_DEVICEA& display) const;
    void describeMonitor_i(const Output& output, DISPLAY_DEVICEA& display) const;
    std::uint32_t monitorState_i(const Output& output) const;
    std::string line_i(const std::string& path) const;

    std::string m_folder;
    std::vector<Output> m_outputs;    // as last looked
};

}    // namespace pwr::os

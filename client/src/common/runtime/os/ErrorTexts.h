#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace pwr::os {

// The system's words for its error numbers.
class ErrorTexts {
public:
    virtual ~ErrorTexts() = default;

    // Describes an errno value in `buffer`, cut to `size` and terminated. False, with the empty text, when there is
    // none.
    virtual bool describeErrno(int errnum, char* buffer, std::size_t size) = 0;

    // The words for a Windows error code, with the line end that the system puts behind them; empty when there are
    // none.
    virtual std::string describeCode(std::uint32_t code) = 0;
};

ErrorTexts& systemErrorTexts();

}    // namespace pwr::os

#pragma once

#include <cstddef>

namespace pwr::os {

// The system's words for its error numbers.
class ErrorTexts {
public:
    virtual ~ErrorTexts() = default;

    // Describes an errno value in `buffer`, cut to `size` and terminated. False, with the empty text, when there is
    // none.
    virtual bool describeErrno(int errnum, char* buffer, std::size_t size) = 0;
};

ErrorTexts& systemErrorTexts();

}    // namespace pwr::os

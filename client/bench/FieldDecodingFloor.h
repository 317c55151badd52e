#pragma once

#include <cstdint>

// The arithmetic of field decoding and nothing else, in a source file of its own as the library's is.
namespace floors {

unsigned long long bitRange(unsigned long long value, unsigned char msb, unsigned char lsb);
double fixedPoint(unsigned long long raw, std::uint8_t fractionBits);

}    // namespace floors

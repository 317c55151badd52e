#include "FieldDecodingFloor.h"

#include <bit>

namespace floors {

unsigned long long bitRange(unsigned long long value, unsigned char msb, unsigned char lsb)
{
    const unsigned long long shifted = value >> lsb;
    return msb == 63 ? shifted : shifted & ((1ULL << (msb - lsb + 1)) - 1);
}

double fixedPoint(unsigned long long raw, std::uint8_t fractionBits)
{
    return static_cast<double>(raw) * std::bit_cast<double>((std::uint64_t{1023} - fractionBits) << 52);
}

}    // namespace floors

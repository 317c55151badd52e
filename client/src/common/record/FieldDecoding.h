#pragma once

#include "runtime/Export.h"

#include <cstdint>
#include <string>

// Tools of a collector plugin: from texts of a collector configuration to the value of a field of a raw register.
//
//   const std::string mask = "15:8";
//   const auto raw = pwr::extractBitRangeValue(0xABCD, pwr::retrieveMsbFromMask(mask), pwr::retrieveLsbFromMask(mask));
//   pwr::convertToFloatPoint(raw, pwr::retrieveQFormat("U4.4"));    // 0xAB / 16.0
//
// No operation throws or keeps state: bad text gives an empty text, 0, false or the default format.

// A fixed-point format UX.Y or SX.Y.
struct qv_qformat {
    char type = 'U';    // U: unsigned, S: signed
    std::uint8_t integerBits = 0;
    std::uint8_t fractionBits = 0;
};

// Where a PCI function is: bus in bits 0 to 7, device in bits 8 to 12, function in bits 13 to 15.
union _qv_pmt_pci_location {
    std::uint16_t value;
    struct {
        std::uint16_t bus : 8;
        std::uint16_t device : 5;
        std::uint16_t function : 3;
    } fields;
};

static_assert(sizeof(qv_qformat) == 3);
static_assert(sizeof(_qv_pmt_pci_location) == 2);

namespace pwr {

// Also named where the operations on them are.
using ::_qv_pmt_pci_location;
using ::qv_qformat;

// "bus:device:function" in decimal.
QUORVANE_API std::string getFormatedPCIBDF(_qv_pmt_pci_location location);

// The second of the tag's parts between "_"; empty without one.
QUORVANE_API std::string getCounterNameFromMsgTag(const std::string& tag);

// From the first start marker, with it, up to the next end marker that begins behind the start marker's first
// character; empty when either is missing.
QUORVANE_API std::string getCounterNameFromInitValue(const std::string& text, std::string endMarker,
                                                     std::string startMarker);

// The second of exactly three parts, up to its first "-suffix"; empty otherwise.
QUORVANE_API std::string getIPNameFromInitValue(const std::string& text, std::string separators, std::string suffix);

// A mask is two numbers, most significant bit first: "31:16" or "0x1F:0x10". Valid: exactly two numbers between the
// separators.
QUORVANE_API bool isMaskValid(const std::string& text, std::string separators);

// The bit numbers of a mask with ":", cut to 8 bits; 0 without exactly two parts. A number is read up to the first
// character that does not fit, in decimal unless it begins with "0x": "010" is 10. One that can't be read, or has more
// than 32 bits, is 0, with a warning.
QUORVANE_API unsigned char retrieveLsbFromMask(const std::string& mask);
QUORVANE_API unsigned char retrieveMsbFromMask(const std::string& mask);

// The field from bit `msb` down to bit `lsb`, moved to bit 0. The caller keeps lsb <= msb <= 63.
QUORVANE_API unsigned long long extractBitRangeValue(unsigned long long value, unsigned char msb, unsigned char lsb);

// Reads "U8.8" or "S1.15", the bit counts as those of a mask. Any other text gives the default format and an error
// line.
QUORVANE_API const qv_qformat retrieveQFormat(const std::string& text);

// The raw field as a real number: divided by 2 to the power of the fraction bits. Only unsigned formats are supported;
// for any other the field comes unscaled, with an error line.
QUORVANE_API double convertToFloatPoint(unsigned long long raw, const qv_qformat& format);

}    // namespace pwr

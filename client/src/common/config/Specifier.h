#pragma once

#include <cstdint>
#include <string>
#include <utility>

namespace pwr {

// How a platform is recognised: a test of one property of a system. A match is 0 (none), 1 (partial) or 2 (exact).
// Internal; owned by its Platform.
struct Specifier {
    explicit Specifier(const std::string& name);
    virtual ~Specifier();
    Specifier(const Specifier&) = delete;
    Specifier& operator=(const Specifier&) = delete;

    // 0 when the property has another name than the specifier tests.
    virtual int is_match(const std::string& name, const std::string& value) const;
    virtual std::string toString() const = 0;
    virtual int is_match_i(const std::string& value) const = 0;

    std::string m_name;
};

// Exactly this text.
struct ValueSpecifier : Specifier {
    ValueSpecifier(const std::string& name, const std::string& value);
    std::string toString() const override;
    int is_match_i(const std::string& value) const override;

    std::string m_value;
};

// A number from first to last, both included.
struct RangeSpecifier : Specifier {
    RangeSpecifier(const std::string& name, std::uint32_t first, std::uint32_t second);
    std::string toString() const override;
    int is_match_i(const std::string& value) const override;

    std::pair<std::uint32_t, std::uint32_t> m_range;
};

// A processor; where one side has no stepping the match is partial.
struct FMSSpecifier : Specifier {
    FMSSpecifier(std::uint8_t family, std::uint8_t model, std::uint8_t stepping);
    std::string toString() const override;
    int is_match_i(const std::string& value) const override;

    // Reads "family.model" or "family.model.stepping"; a leading 0 is hexadecimal, numbers are cut to 8 bits. 0; -1 for
    // a text that is no FMS value.
    static int extract_fms_i(std::uint8_t& family, std::uint8_t& model, std::uint8_t& stepping,
                             const std::string& text);

    std::uint8_t m_family;
    std::uint8_t m_model;
    std::uint8_t m_stepping;
};

// A PCI device: "VENDOR=0x1234,DEVICE=0x5678". What stands behind the numbers is not looked at; a number above 32 bits
// is the largest one.
struct PCISpecifier : Specifier {
    PCISpecifier(std::uint32_t vendor, std::uint32_t device);
    std::string toString() const override;
    int is_match_i(const std::string& value) const override;

    // False for a text in another format.
    static bool parse(const std::string& text, std::uint32_t& vendor, std::uint32_t& device);

    std::uint32_t m_vendor;
    std::uint32_t m_device;
};

// A PMT endpoint: "GUID=0x1234".
struct PMTSpecifier : Specifier {
    explicit PMTSpecifier(std::uint32_t guid);
    std::string toString() const override;
    int is_match_i(const std::string& value) const override;

    static bool parse(const std::string& text, std::uint32_t& guid);

    std::uint32_t m_guid;
};

}    // namespace pwr

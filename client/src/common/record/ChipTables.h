#pragma once

#include "record/Device.h"

#include <cstdint>
#include <span>
#include <vector>

// All that the library knows of particular chips, a row each: a new chip is a new line in ChipTables.cpp. The rows
// stand for chips of our own invention, on models that no processor on the market has.

namespace pwr {

class SystemMetadata;

// Code names that other tables of the library are keyed by.
inline constexpr const char* CODE_NAME_NARVANE = "Narvane";
inline constexpr const char* CODE_NAME_TAMROW = "Tamrow";

struct DeviceRow {
    const char* token;
    const char* name;
};
std::span<const DeviceRow> deviceRows();

struct PmtDeviceRow {
    std::uint32_t guid;
    const char* name;
    Device::PMT_DEVICE_TYPE type;
};
std::span<const PmtDeviceRow> pmtDeviceRows();

struct SteppingRange {
    std::uint8_t first;
    std::uint8_t last;    // within the range
};
inline constexpr SteppingRange ANY_STEPPING = {0, 0xFF};

// A platform among those of one model: told by one more field of the record.
struct PlatformRow {
    std::uint8_t family;
    std::uint8_t model;
    SteppingRange steppings;
    std::uint32_t SystemMetadata::*field;
    std::uint32_t value;
};
extern const PlatformRow PLATFORM_NRV;
extern const PlatformRow PLATFORM_TMR;
extern const PlatformRow PLATFORM_OSK;
extern const PlatformRow PLATFORM_LYD;

// Processors of family 6; the first row that fits names one.
struct CodeNameRow {
    std::vector<std::uint8_t> models;
    SteppingRange steppings;
    bool (SystemMetadata::*isPlatform)() const;    // null: any
    const char* name;
};
std::span<const CodeNameRow> codeNameRows();

struct ProcessorModel {
    std::uint8_t family;
    std::uint8_t model;

    bool operator==(const ProcessorModel&) const = default;
};
inline constexpr ProcessorModel ANY_MODEL = {0, 0};

// The first row that fits names a core.
struct NativeModelRow {
    std::uint32_t id;
    ProcessorModel model;
    const char* name;
};
std::span<const NativeModelRow> nativeModelRows();

// The processors whose cores differ, and tell their native model ids.
std::span<const ProcessorModel> modelsWithNativeIds();

}    // namespace pwr

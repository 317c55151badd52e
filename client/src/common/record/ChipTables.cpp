#include "record/ChipTables.h"

#include "record/SystemMetadata.h"

namespace pwr {

namespace {

constexpr DeviceRow DEVICES[] = {
    // chipsets
    {"BRN", "Brennoch"},
    {"CLV", "Calvane"},
    {"DSM", "Dessimar"},
    {"FRG", "Fargrove-H"},
    {"FRGL", "Fargrove-L"},
    {"GLD", "Gilduin"},
    // cards
    {"HTN", "Hatterin"},
    {"HTNX", "Hatterin X"},
    {"IVA", "Ivarren"},
    // telemetry sources
    {"NRVT", "Narvane telemetry"},
    {"TMRT", "Tamrow telemetry"},
    {"OSKT", "Oskerry telemetry"},
    {"GLDT", "Gilduin telemetry"},
};

constexpr PmtDeviceRow PMT_DEVICES[] = {
    {0xF1F00001, "NRV", Device::PMT_DEVICE_TYPE::PROCESSOR},
    {0xF1F00002, "GLD", Device::PMT_DEVICE_TYPE::CHIPSET},
};

const CodeNameRow CODE_NAMES[] = {
    {{0xF0, 0xF1}, ANY_STEPPING, nullptr, "Ardwyn"},
    {{0xF2}, {0x0, 0x3}, nullptr, "Bellamar"},
    {{0xF2, 0xF3}, ANY_STEPPING, nullptr, "Corrigane"},
    {{0xF4}, ANY_STEPPING, &SystemMetadata::isPlatformNRV, CODE_NAME_NARVANE},
    {{0xF4}, ANY_STEPPING, &SystemMetadata::isPlatformTMR, CODE_NAME_TAMROW},
    {{0xF5}, ANY_STEPPING, &SystemMetadata::isPlatformOSK, "Oskerry"},
    {{0xF5}, ANY_STEPPING, &SystemMetadata::isPlatformLYD, "Lydmoor"},
};

constexpr NativeModelRow NATIVE_MODELS[] = {
    // the processor decides
    {0x71000001, {6, 0xF4}, "VEX"},
    {0x71000001, {6, 0xF5}, "TOR"},
    // the id alone decides
    {0x71000001, ANY_MODEL, "LUM"},
    {0x72000001, ANY_MODEL, "PIK"},
    {0x72000002, ANY_MODEL, "SAV"},
};

constexpr ProcessorModel MODELS_WITH_NATIVE_IDS[] = {
    {6, 0xF3},
    {6, 0xF4},
    {6, 0xF5},
};

}    // namespace

const PlatformRow PLATFORM_NRV = {6, 0xF4, {0x0, 0x7}, &SystemMetadata::platformId, 1};
const PlatformRow PLATFORM_TMR = {6, 0xF4, {0x0, 0x7}, &SystemMetadata::platformId, 2};
const PlatformRow PLATFORM_OSK = {6, 0xF5, {0x0, 0x3}, &SystemMetadata::iGfxId, 0xFE01};
const PlatformRow PLATFORM_LYD = {6, 0xF5, {0x4, 0xF}, &SystemMetadata::iGfxId, 0xFE02};

std::span<const DeviceRow> deviceRows()
{
    return DEVICES;
}

std::span<const PmtDeviceRow> pmtDeviceRows()
{
    return PMT_DEVICES;
}

std::span<const CodeNameRow> codeNameRows()
{
    return CODE_NAMES;
}

std::span<const NativeModelRow> nativeModelRows()
{
    return NATIVE_MODELS;
}

std::span<const ProcessorModel> modelsWithNativeIds()
{
    return MODELS_WITH_NATIVE_IDS;
}

}    // namespace pwr

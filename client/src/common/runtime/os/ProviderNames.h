#pragma once

namespace pwr::os {

// The providers that the tool knows by name.
struct ProviderName {
    const char* guid;    // "%08lx-%04x-%04x-%02x%02x-%02x%02x%02x%02x%02x%02x"
    const char* name;
};

inline constexpr ProviderName PROVIDER_NAMES[] = {
    {"e4383c64-17ab-455d-8126-63a0d28e9fa3", "TessmarPowerDataProvider"},
    {"83e4e697-5b98-48ff-a243-03369be1b347", "TessmarCsIrDataProvider"},
    {"50288369-5da7-4789-950f-32842b910422", "TessmarPowerCollectionMetadataProvider"},
    {"331c3b3a-2005-44c2-ac5e-77220c37d6b4", "Microsoft-Windows-Kernel-Power"},
    {"a6bf0deb-3659-40ad-9f81-e25af62ce3c7", "Microsoft-Windows-PDC"},
    {"c514638f-7723-485b-bcfc-96565d735d4a", "Microsoft-Windows-Kernel-Acpi"},
    {"5412704e-b2e1-4624-8ffd-55777b8f7373", "Microsoft-Windows-Kernel-Pep"},
    {"ddcc3826-a68a-4e0d-bcfd-9c06c27c6948", "Microsoft-Windows-Energy-Estimation-Engine"},
    {"1418ef04-b0b4-4623-bf7e-d74ab47bbdaa", "Microsoft-Windows-WMI-Activity"},
    {"59819d0a-adaf-46b2-8d7c-990bc39c7c15", "Microsoft-Windows-Battery"},
};

}    // namespace pwr::os

#pragma once

#include "runtime/os/WindowsTypes.h"

namespace pwr::os {

// The function of the merge library that makes one trace file of `count` others, in time order. Returns a Windows code.
inline constexpr char MERGE_LIBRARY[] = "KernelTraceControl.dll";
inline constexpr char MERGE_FUNCTION[] = "CreateMergedTraceFile";
inline constexpr ULONG MERGE_ALL_DATA = 0xFFFFFFFF;
using MergeFunction = ULONG (*)(const wchar_t* output, const wchar_t** inputs, ULONG count, ULONG flags);

}    // namespace pwr::os

#pragma once

// QUORVANE_API marks what the host and the plugins use of the shared library; everything else stays hidden.
// Tests that link the library's objects directly define QUORVANE_STATIC_DEFINE.

#if defined(QUORVANE_STATIC_DEFINE)
#define QUORVANE_API
#elif defined(_WIN32)
#if defined(quorvane_common_EXPORTS)
#define QUORVANE_API __declspec(dllexport)
#else
#define QUORVANE_API __declspec(dllimport)
#endif
#else
#define QUORVANE_API __attribute__((visibility("default")))
#endif

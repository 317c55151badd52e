#pragma once

#include "runtime/Export.h"

#include <cstdarg>
#include <cstddef>
#include <cstdio>

// Thin covers over bounded library calls that differ between systems: what a caller sees is the same everywhere.

extern "C" {

// The contract of the standard vsnprintf (`%zu` and `%llu` included, on every system): returns the length of the whole
// text, -1 when the format can't be printed; a buffer that is not null and has a size always ends in a zero.
QUORVANE_API int pw_vsnprintf(char* buffer, size_t size, const char* format, va_list args);
QUORVANE_API int pw_snprintf(char* buffer, size_t size, const char* format, ...);

// Copies at most size - 1 characters and always terminates (a size of 0 or a null destination does nothing; a null
// source is an empty text). Returns `destination`.
QUORVANE_API char* pw_strncpy(char* destination, const char* source, size_t size);
}

namespace pwr {

// Opens `path` into `fd`, shared with other openers, created readable and writable for the owner. `flags` are those of
// <fcntl.h>; bytes are not translated unless they ask for it. Returns 0; or 1 with a warning, `fd` then is -1.
QUORVANE_API int pw_open(int& fd, const char* path, int flags);

// Puts the standard library's description of `code` (an errno value) into `buffer`, cut to `size`; the empty text,
// with a warning, when there is none.
QUORVANE_API void pw_strerror(int code, char* buffer, size_t size);

// True when the path is a file that can be opened for reading. False for null and for a directory.
QUORVANE_API bool pw_fileExists(const char* path);

// The value of an environment variable, terminated, in `buffer`, and its length with the end mark in `required` (may be
// null): 0 when the variable is not set. A buffer that is too small gets the empty text and `required` tells the need.
QUORVANE_API void pw_getenv(unsigned long long* required, char* buffer, unsigned long long size, const char* name);

// Points `stream` at another file, whose bytes are not translated. Returns 0 with `*result` the stream, else an errno
// value with `*result` null; `stream` is closed then, unless an argument was null.
QUORVANE_API int pw_freopen(FILE** result, const char* path, const char* mode, FILE* stream);

// Makes the descriptor of `to` refer to the file of `from`. Returns 0, or -1.
QUORVANE_API int pw_dup2(FILE* from, FILE* to);

}    // namespace pwr

// SPDX-License-Identifier: MIT
// Printing and files.
#include <cstdarg>
#include <cstdio>

#include "export.h"
#include "ork/abi/services.h"

namespace {
FILE* stream(int64_t channel) { return channel == 1 ? stderr : stdout; }
} // namespace

ORK_EXPORT int ork_serv_print(int64_t channel, const char* text) { return std::fprintf(stream(channel), "%s", text); }

ORK_EXPORT int ork_serv_format_print(int64_t channel, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const int length = std::vfprintf(stream(channel), format, arguments);
    va_end(arguments);
    return length;
}

ORK_EXPORT int ork_serv_printf_s(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const int length = std::vprintf(format, arguments);
    va_end(arguments);
    return length;
}

ORK_EXPORT void* ork_serv_fopen(const char* path, const char* mode) { return std::fopen(path, mode); }

ORK_EXPORT int ork_serv_fprintf_s(void* file, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const int length = std::vfprintf(static_cast<FILE*>(file), format, arguments);
    va_end(arguments);
    return length;
}

ORK_EXPORT int ork_serv_fclose(void* file) { return std::fclose(static_cast<FILE*>(file)); }

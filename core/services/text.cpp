// SPDX-License-Identifier: MIT
// String services. Each ends its destination with a zero whatever happens, and says by -1 that the text was cut.
#include <algorithm>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "export.h"
#include "ork/abi/services.h"

namespace {

// At most `count` characters of a formatted text.
int format_into(char* buffer, size_t size, size_t count, const char* format, va_list arguments)
{
    if (buffer == nullptr || size == 0) return -1;
    const size_t room = std::min(size - 1, count);
    const int length = std::vsnprintf(buffer, room + 1, format, arguments);
    if (length < 0) buffer[0] = 0;
    return length < 0 || static_cast<size_t>(length) > room ? -1 : length;
}

// At most `count` characters of `from`, of which the destination takes what it can.
int copy_into(char* to, size_t size, const char* from, size_t count)
{
    const size_t wanted = strnlen(from, count), length = std::min(wanted, size - 1);
    std::memmove(to, from, length);
    to[length] = 0;
    return length < wanted || length > INT_MAX ? -1 : static_cast<int>(length);
}

} // namespace

ORK_EXPORT int ork_serv_sprintf_s(char* buffer, size_t size, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const int length = format_into(buffer, size, size, format, arguments);
    va_end(arguments);
    return length;
}

ORK_EXPORT int ork_serv_snprintf_s(char* buffer, size_t size, size_t count, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const int length = format_into(buffer, size, count, format, arguments);
    va_end(arguments);
    return length;
}

ORK_EXPORT int ork_serv_strncpy_s(char* to, size_t size, const char* from, size_t count)
{
    if (to == nullptr || size == 0) return -1;
    return copy_into(to, size, from, count);
}

ORK_EXPORT int ork_serv_strncat_s(char* to, size_t size, const char* from, size_t count)
{
    if (to == nullptr || size == 0) return -1;
    const size_t used = strnlen(to, size);
    if (used < size) return copy_into(to + used, size - used, from, count);
    to[size - 1] = 0; // what stood there had no end
    return -1;
}

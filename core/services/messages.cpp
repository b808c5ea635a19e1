// SPDX-License-Identifier: MIT
// The message catalogue, by number.
#include <cstdarg>
#include <cstdio>

#include "export.h"
#include "ork/abi/services.h"

namespace {

const char* text_of(int64_t number)
{
    switch (number) {
#define MESSAGE(number, text)                                                                                          \
    case number:                                                                                                       \
        return text;
#include "services/catalogue.inc"
#undef MESSAGE
    default:
        return nullptr;
    }
}

} // namespace

// An unknown number gives an empty text and -1.
ORK_EXPORT int64_t ork_serv_get_msg(char* buffer, size_t size, int64_t number, int64_t arguments, ...)
{
    if (buffer == nullptr || size == 0) return -1;
    buffer[0] = 0;
    const char* text = text_of(number);
    if (text == nullptr) return -1;
    va_list values;
    va_start(values, arguments);
    const int length = std::vsnprintf(buffer, size, text, values);
    va_end(values);
    return length < 0 || static_cast<size_t>(length) >= size ? -1 : length;
}

// SPDX-License-Identifier: MIT
// The message catalogue, by number.
#include <cstdarg>

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

// Text that grows at the end of a buffer until the buffer is full.
class Line {
public:
    Line(char* buffer, size_t size) : at_(buffer), begin_(buffer), room_(size - 1) { *at_ = 0; }
    void add(const char* text)
    {
        for (; *text != 0; ++text) add(*text);
    }
    void add(char c)
    {
        if (room_ == 0) {
            cut_ = true;
            return;
        }
        *at_++ = c, *at_ = 0, --room_;
    }
    int64_t length() const { return cut_ ? -1 : at_ - begin_; }

private:
    char *at_, *begin_;
    size_t room_; // characters before the zero
    bool cut_ = false;
};

} // namespace

// An unknown number gives an empty text and -1. Arguments are put in by hand: a printf would read what was not passed.
ORK_EXPORT int64_t ork_serv_get_msg(char* buffer, size_t size, int64_t number, int64_t arguments, ...)
{
    if (buffer == nullptr || size == 0) return -1;
    Line line(buffer, size);
    const char* text = text_of(number);
    if (text == nullptr) return -1;
    va_list values;
    va_start(values, arguments);
    for (; *text != 0; ++text) {
        if (text[0] != '%' || text[1] != 's') {
            line.add(*text);
            continue;
        }
        const char* value = arguments-- > 0 ? va_arg(values, const char*) : nullptr;
        line.add(value != nullptr ? value : "?");
        ++text;
    }
    va_end(values);
    return line.length();
}

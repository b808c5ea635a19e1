// SPDX-License-Identifier: MIT
#include "pde/poisson/diagnostics.h"

#include <cstddef>

#include "frame/core_imports.h"
#include "frame/export.h"
#include "pde/poisson/state.h"

namespace ork::pde {
namespace {

constexpr char log_name[] = "ORK_Poisson_Library_Log.txt";
enum { title = 10, error_header = 11, warning_header = 12, no_details = 22, no_log = 201, no_log_end = 202 };
constexpr Int set_distance = 193;

// Which numbers the first message of a diagnostic shows.
enum class Shows : unsigned char { nothing, integer, two_integers, real, argument };

// Messages first .. last, then tail .. tail_end where there is a tail.
struct Lines {
    std::int16_t code;
    Shows shows;
    std::uint8_t index, first, last, tail, tail_end;
};

constexpr Lines lines[] = {
    // clang-format off
    {0,     Shows::integer,      12, 13, 15,  0,  0},
    {1,     Shows::integer,      13, 16, 18,  0,  0},
    {2,     Shows::integer,      14, 19, 21,  0,  0},
    {3,     Shows::real,          0, 38, 39,  0,  0},
    {4,     Shows::real,          1, 40, 41,  0,  0},
    {5,     Shows::real,          2, 42, 43,  0,  0},
    {6,     Shows::integer,       6, 44, 45,  0,  0},
    {7,     Shows::integer,       7, 46, 47,  0,  0},
    {8,     Shows::integer,       8, 48, 49,  0,  0},
    {9,     Shows::integer,       9, 50, 51,  0,  0},
    {10,    Shows::integer,      10, 52, 53,  0,  0},
    {11,    Shows::integer,      11, 54, 55,  0,  0},
    {12,    Shows::integer,       0, 56, 58,  0,  0},
    {23,    Shows::argument,      0, 65, 65, 69, 70},
    {24,    Shows::argument,      0, 66, 66, 69, 70},
    {25,    Shows::argument,      0, 71, 71, 74, 75},
    {26,    Shows::argument,      0, 72, 72, 74, 75},
    {27,    Shows::argument,      0, 73, 73, 74, 75},
    {28,    Shows::nothing,       0, 76, 77,  0,  0},
    {29,    Shows::argument,      0, 80, 80,  0,  0},
    {33,    Shows::argument,      0, 78, 78, 69, 70},
    {34,    Shows::argument,      0, 79, 79, 69, 70},
    {10000, Shows::integer,      12, 23, 27,  0,  0},
    {10001, Shows::integer,      13, 28, 32,  0,  0},
    {10002, Shows::integer,      14, 33, 37,  0,  0},
    {10023, Shows::argument,      0, 67, 67, 69, 70},
    {10024, Shows::argument,      0, 68, 68, 69, 70},
    {10033, Shows::argument,      0, 78, 78, 69, 70},
    {10034, Shows::argument,      0, 79, 79, 69, 70},
    {10067, Shows::two_integers,  6, 59, 60,  0,  0},
    {10089, Shows::two_integers,  8, 61, 62,  0,  0},
    {10111, Shows::two_integers, 10, 63, 64,  0,  0},
    {10200, Shows::nothing,       0, 81, 81, 58, 58},
    {10201, Shows::nothing,       0, 82, 83,  0,  0},
    {10202, Shows::nothing,       0, 84, 85,  0,  0},
    {10900, Shows::nothing,       0, 190, 191, 0, 0},
    {10903, Shows::nothing,       0, 192, 193, 0, 0},
    {10904, Shows::real,          3, 194, 196, 0, 0},
    // clang-format on
};

constexpr bool is_error(Int code) { return code < 900 || (code >= 10000 && code < 10900); }

// Messages of the catalogue, one a line, in a buffer that is never overrun.
class Text {
public:
    explicit Text(Int shift) : shift_(shift) { text_[0] = 0; }

    void line(Int number, const char* first = "", const char* second = "")
    {
        ork_serv_get_msg(text_ + length_, sizeof text_ - length_, number + shift_, 2, first, second);
        while (text_[length_] != 0) ++length_;
        if (length_ + 1 < sizeof text_) text_[length_++] = '\n';
        text_[length_] = 0;
    }
    void lines(Int from, Int to)
    {
        for (Int number = from; number <= to; ++number) line(number);
    }
    const char* whole() const { return text_; }

private:
    char text_[4096];
    std::size_t length_ = 0;
    Int shift_;
};

template <class R>
void first_line(Text& text, const Lines& what, const Int* ipar, const R* fpar, const char* argument)
{
    switch (what.shows) {
    case Shows::nothing:
        return text.line(what.first);
    case Shows::integer:
        return text.line(what.first, NumberText(ipar[what.index]).text);
    case Shows::two_integers:
        return text.line(what.first, NumberText(ipar[what.index]).text, NumberText(ipar[what.index + 1]).text);
    case Shows::real:
        return text.line(what.first, NumberText(static_cast<double>(fpar[what.index])).text);
    case Shows::argument:
        return text.line(what.first, argument);
    }
}

void log(const char* text, Int shift)
{
    if (void* file = ork_serv_fopen(log_name, "a+")) {
        ork_serv_fprintf_s(file, "%s", text);
        ork_serv_fclose(file);
        return;
    }
    char line[512];
    ork_serv_get_msg(line, sizeof line, no_log + shift, 1, log_name);
    ork_serv_format_print(0, "%s\n", line);
    ork_serv_get_msg(line, sizeof line, no_log_end + shift, 0);
    ork_serv_format_print(0, "%s\n", line);
}

template <class R>
void print(Int code, const Int* ipar, const R* fpar, const char* argument, Int shift)
{
    const Int where = ipar[is_error(code) ? at_errors : at_warnings];
    if (where == 0) return;
    Text text(shift);
    text.line(title);
    text.line(is_error(code) ? error_header : warning_header);
    const Lines* found = nullptr;
    for (const Lines& candidate : lines)
        if (candidate.code == code) found = &candidate;
    if (found == nullptr) {
        text.line(no_details);
    } else {
        first_line(text, *found, ipar, fpar, argument);
        text.lines(found->first + 1, found->last);
        if (found->tail != 0) text.lines(found->tail, found->tail_end);
    }
    if (where > 0)
        ork_serv_format_print(0, "%.4105s", text.whole());
    else
        log(text.whole(), shift);
}

} // namespace

NumberText::NumberText(Int value)
{
    ork_serv_snprintf_s(text, sizeof text, sizeof text - 1, "%lli", static_cast<long long>(value));
}
NumberText::NumberText(double value) { ork_serv_snprintf_s(text, sizeof text, sizeof text - 1, "%.7g", value); }

template <class R>
void report(Int code, const Int* ipar, const R* fpar, const char* argument)
{
    print(code, ipar, fpar, argument, ipar[at_message_set] != 0 ? 0 : set_distance);
}
template void report(Int, const Int*, const float*, const char*);
template void report(Int, const Int*, const double*, const char*);

} // namespace ork::pde

#define PRINTERS(p, R)                                                                                                 \
    ORK_EXPORT void ork_pdepl_nx2_##p##_pl_print_diagnostics_c(const ork::pde::Int* code, const ork::pde::Int* ipar,   \
                                                               const R* fpar, const char* argument)                    \
    {                                                                                                                  \
        ork::pde::print(*code, ipar, fpar, argument, 0);                                                               \
    }                                                                                                                  \
    ORK_EXPORT void ork_pdepl_nx2_##p##_pl_print_diagnostics_f(const ork::pde::Int* code, const ork::pde::Int* ipar,   \
                                                               const R* fpar, const char* argument)                    \
    {                                                                                                                  \
        ork::pde::print(*code, ipar, fpar, argument, ork::pde::set_distance);                                          \
    }
PRINTERS(s, float)
PRINTERS(d, double)
#undef PRINTERS

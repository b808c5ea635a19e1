// SPDX-License-Identifier: MIT
#include "pde/trig/messages.h"

#include <cstddef>

#include "frame/core_imports.h"

namespace ork::pde {
namespace {

constexpr char log_name[] = "ORK_Trig_Transforms_Log.txt";
enum { title = 396, error_header = 397, warning_header = 398, no_details = 407, no_log = 408, no_log_end = 409 };

// Lines of the catalogue, one after another, in a buffer that is never overrun.
class Text {
public:
    explicit Text(const Int* ipar) : shift_(ipar[trig_message_set] != 0 ? 0 : 39) { text_[0] = 0; }

    void end_of_line()
    {
        if (length_ + 1 < sizeof text_) text_[length_++] = '\n';
        text_[length_] = 0;
    }
    void line(Int number, const char* argument = "")
    {
        const Int of_set = number >= 449 ? number - shift_ : number;
        ork_serv_get_msg(text_ + length_, sizeof text_ - length_, of_set, 1, argument);
        while (text_[length_] != 0) ++length_;
        end_of_line();
    }
    void lines(Int from, Int to)
    {
        for (Int number = from; number <= to; ++number) line(number);
    }
    const char* whole()
    {
        end_of_line();
        return text_;
    }

private:
    char text_[4096];
    std::size_t length_ = 0;
    Int shift_;
};

// Arguments of messages are texts.
struct Number {
    char text[22];
    explicit Number(Int value) { ork_serv_snprintf_s(text, sizeof text, sizeof text - 1, "%lli", (long long)value); }
    explicit Number(double value) { ork_serv_snprintf_s(text, sizeof text, sizeof text - 1, "%.7g", value); }
};

// By the class of a status: what a descriptor knows of the circumstances is its own.
const char* dft_text(Int status)
{
    static constexpr char texts[][80] = {
        "unknown failure",
        "no memory",
        "a parameter or value that does not exist or cannot be set",
        "values that do not go together, or not with the call",
        "the library's threads failed",
        "no descriptor, a freed one, or one that is not committed",
        "not available",
        "internal error",
        "a number of threads that cannot be",
        "a length that cannot be",
    };
    for (Int i = 1; i < static_cast<Int>(sizeof texts / sizeof texts[0]); ++i)
        if (ork_dft_dftierrorclass(status, i) != 0) return texts[i];
    return texts[0];
}

void fill(Text& text, const TrigReport& what, const Int* ipar)
{
    const Number n(ipar[trig_n]), tolerance(what.tolerance), value(what.value);
    text.end_of_line();
    text.line(title);
    text.line(what.code < 300 || what.code == dft_failed ? error_header : warning_header);
    switch (what.code) {
    case not_initialised:
        text.line(449, Number(ipar[trig_status]).text);
        return text.line(450);
    case small_n:
        text.line(451, n.text);
        return text.line(452);
    case unknown_type:
        text.line(453, Number(ipar[trig_type]).text);
        return text.lines(454, 456);
    case not_committed:
        text.line(460);
        text.line(461, Number(ipar[trig_status]).text);
        return text.lines(462, 463);
    case n_is_zero:
        text.line(464);
        text.line(465, n.text);
        return text.line(466);
    case negative_tolerance:
        text.line(467, tolerance.text);
        text.lines(468, 470);
        return text.line(471, Number(static_cast<double>(ipar[trig_n]) * 1e-12).text);
    case boundary_0:
        text.line(472, value.text);
        text.line(473, tolerance.text);
        return text.line(474);
    case boundary_n:
        text.line(475, value.text);
        text.line(476, tolerance.text);
        return text.line(477);
    case cosine_end:
        text.line(478, value.text);
        text.line(479, tolerance.text);
        return text.line(480);
    case negative_threads:
        text.line(481, Number(ipar[trig_threads]).text);
        text.line(482);
        return text.line(483, Number(Int{1}).text);
    case sine_begin:
        text.line(484, value.text);
        text.line(485, tolerance.text);
        return text.line(486);
    case dft_failed:
        return text.line(487, dft_text(what.dft_status));
    }
    text.line(no_details);
}

void log(const char* text)
{
    if (void* file = ork_serv_fopen(log_name, "a+")) {
        ork_serv_fprintf_s(file, "%s", text);
        ork_serv_fclose(file);
        return;
    }
    char line[512];
    ork_serv_get_msg(line, sizeof line, no_log, 1, log_name);
    ork_serv_format_print(0, "%s\n", line);
    ork_serv_get_msg(line, sizeof line, no_log_end, 0);
    ork_serv_format_print(0, "%s\n", line);
}

} // namespace

void report(const TrigReport& what, const Int* ipar)
{
    const bool error = what.code < 7 || what.code == dft_failed;
    const Int where = ipar[error ? trig_errors : trig_warnings];
    if (where == 0) return;
    Text text(ipar);
    fill(text, what, ipar);
    if (where > 0)
        ork_serv_format_print(0, "%.3079s", text.whole());
    else
        log(text.whole());
}

} // namespace ork::pde

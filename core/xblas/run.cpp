// SPDX-License-Identifier: MIT
// Checks of a call, its report, and its division among threads.
#include <cstring>

#include "blas/report.h"
#include "blas/strips.h"
#include "xblas/call.h"
#include "xblas/piece.h"

namespace ork::xblas {
namespace {

constexpr bool is_between(Int value, Int first, Int last) { return value >= first && value <= last; }

// The first illegal one; null when the call is legal. The order is XBLAS's: increments before the leading dimension.
// A product without rows is legal, one without columns isn't.
Int Call::*first_illegal(Form form, const Call& c)
{
    const bool triangle = form == Form::triangle;
    if (!is_between(c.order, by_rows, by_columns)) return &Call::order;
    if (!is_between(c.option, triangle ? upper : no_trans, triangle ? lower : conj_trans)) return &Call::option;
    if (!triangle && c.m < 0) return &Call::m;
    if (c.n < (triangle ? 0 : 1)) return &Call::n;
    if (c.kl < 0) return &Call::kl;
    if (c.ku < 0) return &Call::ku;
    if (c.incx == 0) return &Call::incx;
    if (c.incy == 0) return &Call::incy;
    const Int stored = c.order == by_columns && !triangle ? c.m : c.n;
    const bool fits = form == Form::band ? c.lda > 0 && c.lda - 1 - c.kl >= c.ku : c.lda >= stored;
    if (!fits) return &Call::lda;
    if (!is_between(c.prec, prec_single, prec_extra)) return &Call::prec;
    return nullptr;
}

[[gnu::cold]] void report(const Routine& routine, Int Call::*illegal, Binding binding)
{
    int position = 0; // the order, which is in no list
    for (std::size_t i = 0; i < routine.count; ++i)
        if (routine.arguments[i].number == illegal) position = static_cast<int>(i) + 1;
    char name[16] = "BLAS_";
    std::strcpy(name + 5, routine.name);
    if (binding.c)
        ++position;
    else
        for (char& c : name)
            if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    (binding.wide ? blas::report_fortran<std::int64_t> : blas::report_fortran<std::int32_t>)(name, std::strlen(name),
                                                                                             position);
}

// Multiply-adds a thread, below which waking it may cost more than it saves: about 15 us of either kind. In
// double-double arithmetic one takes 0.8 (float data) to 1.6 ns, otherwise 0.1 to 0.2 ns.
constexpr double worth_a_thread(Int prec) { return prec == prec_extra ? 10000 : 100000; }

} // namespace

void run(const Routine& routine, Call& call, Binding binding)
{
    if (Int Call::*illegal = first_illegal(routine.form, call); illegal != nullptr) [[unlikely]]
        return report(routine, illegal, binding);
    // A triangle is read for rows and columns at once, and its kernel has no part of the outputs.
    if (routine.form == Form::triangle) return routine.kernel(call);
    const double work = products(routine, call);
    const int threads = blas::affordable_threads(work, worth_a_thread(call.prec));
    if (threads == 1) return routine.kernel(call);
    blas::run_strips(divisible(routine, call), threads, [&](Int first, Int count) {
        Call part = piece(routine, call, first, count);
        routine.kernel(part);
    });
}

} // namespace ork::xblas

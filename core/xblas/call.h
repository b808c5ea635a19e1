// SPDX-License-Identifier: MIT
// A call of an extra-precise product whatever binding it came through, and the argument lists as arrays of members of
// it: every binding, check and position is derived from them.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ork::xblas {

using Int = std::int64_t;

inline constexpr Int by_rows = 101, by_columns = 102, no_trans = 111, conj_trans = 113, upper = 121, lower = 122,
                     prec_single = 211, prec_extra = 214;

struct Call {
    Int order, option; // option: trans, or uplo of a triangle
    Int n, lda, incx, incy, prec;
    const void *alpha, *beta, *a, *x;
    void* y;
    Int m = 0, kl = 0, ku = 0; // some routines have none of these
    const void* tail = nullptr;
};

enum class Kind { trans, uplo, prec, integer, scalar, input, output };

// One of `number` and `address` is set, neither for the output, which is Call::y.
struct Argument {
    Kind kind;
    Int Call::*number = nullptr;
    const void* Call::*address = nullptr;

    constexpr bool is_number() const { return number != nullptr; }
};

// What a routine's matrix is.
enum class Form { dense, band, triangle };

namespace shapes {

// clang-format off
inline constexpr Argument trans{Kind::trans, &Call::option}, uplo{Kind::uplo, &Call::option},
    m{Kind::integer, &Call::m}, n{Kind::integer, &Call::n}, kl{Kind::integer, &Call::kl}, ku{Kind::integer, &Call::ku},
    lda{Kind::integer, &Call::lda}, incx{Kind::integer, &Call::incx}, incy{Kind::integer, &Call::incy},
    prec{Kind::prec, &Call::prec}, alpha{Kind::scalar, nullptr, &Call::alpha}, beta{Kind::scalar, nullptr, &Call::beta},
    a{Kind::input, nullptr, &Call::a}, x{Kind::input, nullptr, &Call::x}, tail{Kind::input, nullptr, &Call::tail},
    y{Kind::output};

// After the order, which only the C binding has.
inline constexpr Argument gemv[] = {trans, m, n, alpha, a, lda, x, incx, beta, y, incy, prec};
inline constexpr Argument gemv2[] = {trans, m, n, alpha, a, lda, x, tail, incx, beta, y, incy, prec};
inline constexpr Argument gbmv[] = {trans, m, n, kl, ku, alpha, a, lda, x, incx, beta, y, incy, prec};
inline constexpr Argument gbmv2[] = {trans, m, n, kl, ku, alpha, a, lda, x, tail, incx, beta, y, incy, prec};
inline constexpr Argument symv[] = {uplo, n, alpha, a, lda, x, incx, beta, y, incy, prec};
inline constexpr Argument symv2[] = {uplo, n, alpha, a, lda, x, tail, incx, beta, y, incy, prec};
// clang-format on

} // namespace shapes

// A row of the table as a value. `kernel` takes a legal call.
struct Routine {
    const char* name; // dgemv_x
    const Argument* arguments;
    std::size_t count;
    Form form;
    std::size_t element_size;
    int products; // real multiply-adds an element of the matrix
    void (*kernel)(Call& call);
};

// Where a wrong argument is reported.
struct Binding {
    bool c;    // by C's name and with the order as argument 1, or by Fortran's
    bool wide; // 64-bit integers
};

// Checks, divides among threads and runs.
void run(const Routine& routine, Call& call, Binding binding);

} // namespace ork::xblas

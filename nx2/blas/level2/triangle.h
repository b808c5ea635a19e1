// SPDX-License-Identifier: MIT
// Triangular products and solves are walked in groups of four columns along the diagonal: a square on the diagonal and
// the rectangle that the group's columns have above it (upper) or below it (lower).
#pragma once

#include "blas/level2/gemv.h"

namespace ork::level2 {

struct Triangle {
    bool upper, transposed, conjugated, unit;

    Triangle(const char* uplo, const char* trans, const char* diag) : upper(is_upper(uplo)), unit(is_unit(diag))
    {
        const Op op(*trans);
        transposed = op.transposed, conjugated = op.conjugated;
    }
};

// A triangle as compile-time values; conjugated for complex elements only.
template <bool is_upper, bool is_transposed, bool is_conjugated, bool is_unit>
struct Shape {
    static constexpr bool upper = is_upper, transposed = is_transposed, conjugated = is_conjugated, unit = is_unit;
};

// body(Shape<..>())
template <class T, class Body>
inline void with_shape(Triangle s, Body&& body)
{
    with_flag(s.unit, [&]<bool unit>() {
        with_flag(s.upper, [&]<bool upper>() {
            if (!s.transposed) return body(Shape<upper, false, false, unit>());
            with_flag(is_complex<T> && s.conjugated,
                      [&]<bool conjugated>() { body(Shape < upper, true, conjugated && is_complex<T>, unit > ()); });
        });
    });
}

// The blocks of n elements, from the first or from the last one on; a last block that is not full is at the end.
// body(first, count)
template <Int size, class Body>
[[gnu::always_inline]] inline void each_block(bool forward, Int n, Body&& body)
{
    if (forward) {
        for (Int j = 0; j < n; j += size) body(j, n - j < size ? n - j : size);
    } else {
        for (Int j = (n - 1) / size * size; j >= 0; j -= size) body(j, n - j < size ? n - j : size);
    }
}

// The same with whole groups as body.operator()<4>(first) and others as operator()<1 .. 3>.
template <class Body>
[[gnu::always_inline]] inline void each_group(bool forward, Int n, Body&& body)
{
    const auto rest = [&](Int j) __attribute__((always_inline))
    {
        switch (n - j) {
        case 1:
            return body.template operator()<1>(j);
        case 2:
            return body.template operator()<2>(j);
        case 3:
            return body.template operator()<3>(j);
        }
    };
    const Int whole = n / 4 * 4;
    if (!forward) rest(whole);
    for (Int k = 0; k < whole; k += 4) body.template operator()<4>(forward ? k : whole - 4 - k);
    if (forward) rest(whole);
}

// y <- y + A t for the columns of a group.
template <int count, class T>
[[gnu::always_inline]] inline void add_group(Int m, const T* a, Int lda, const T* t, T* y)
{
    if (m <= columns::tile_rows<T>)
        columns::few_rows(m, count, One(), a, lda, t, Int{1}, y);
    else
        columns::sweep<false, false, count>(m, a, lda, t, y);
}

} // namespace ork::level2

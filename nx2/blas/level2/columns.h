// SPDX-License-Identifier: MIT
// y <- y + t(0) a(:, 0) + t(1) a(:, 1) + ... for contiguous y: to every element its products are added one after the
// other in the order of the columns. So its bits depend on nothing but its own row, and a run over some columns and
// then over the next ones is the run over all of them. A negative lda takes the columns from right to left.
#pragma once

#include <utility>

#include "blas/level2/loads.h"
#include "blas/level2/tile_rows.h"

namespace ork::level2 {
namespace columns {

// t(0), t(stride), .. spread over registers.
template <class T, int count>
struct Factors {
    Factor<T> factor[count];
    explicit Factors(const T* t, Int stride = 1) : Factors(t, stride, std::make_integer_sequence<int, count>()) {}

private:
    template <int... j>
    Factors(const T* t, Int stride, std::integer_sequence<int, j...>) : factor{Factor<T>(get(t + j * stride))...}
    {
    }
};

// `count` columns at a time; y streams by. The chains of additions of `together` registers of y run side by side: one
// after the other they lost a quarter.
template <bool aligned, bool far, int count, class T>
[[gnu::noinline]] void sweep(Int m, const T* a, Int lda, const T* t, T* y)
{
    constexpr int lanes = Vec<T>::lanes, together = is_complex<T> ? 2 : 4;
    const Factors<T, count> f(t);
    Reader<aligned, count, T> column(a, lda);
    const auto step = [&]<int width, int registers>() __attribute__((always_inline))
    {
        Vec<T> s[registers];
#pragma GCC unroll 4
        for (int r = 0; r < registers; ++r) s[r] = load<width>(y + r * width);
#pragma GCC unroll 8
        for (int j = 0; j < count; ++j)
#pragma GCC unroll 4
            for (int r = 0; r < registers; ++r)
                s[r] = sum(s[r], f.factor[j] * column.template load<width>(j, r * width));
#pragma GCC unroll 4
        for (int r = 0; r < registers; ++r) store<width>(y + r * width, s[r]);
        column.advance(registers * width);
        y += registers * width;
    };
    for (Int pass = m / (together * lanes); pass > 0; --pass) {
        if constexpr (far) column.prefetch();
        step.template operator()<lanes, together>();
    }
    if constexpr (together == 4)
        if (m & (2 * lanes)) step.template operator()<lanes, 2>();
    if (m & lanes) step.template operator()<lanes, 1>();
    if constexpr (lanes == 4)
        if (m & 2) step.template operator()<2, 1>();
    if constexpr (lanes > 1)
        if (m & 1) step.template operator()<1, 1>();
}

// t(j) = alpha x(j), few rows: y stays in registers, of which the last begins so early that it ends with the last row;
// the rows that it shares with the one before are computed twice.
template <int width, int registers, class Alpha, class T>
[[gnu::always_inline]] inline void tile(Int m, Int n, Alpha alpha, const T* a, Int lda, const T* x, Int incx, T* y)
{
    const Int last = m - width;
    const auto row = [&](int r) __attribute__((always_inline)) { return r == registers - 1 ? last : r * width; };
    Vec<T> s[registers];
#pragma GCC unroll 8
    for (int r = 0; r < registers; ++r) s[r] = load<width>(y + row(r));
#pragma GCC unroll 1
    for (; n > 0; --n, a += lda, x += incx) {
        const Factor<T> f(alpha * get(x));
#pragma GCC unroll 8
        for (int r = 0; r < registers; ++r) s[r] = sum(s[r], f * load<width>(a + row(r)));
    }
#pragma GCC unroll 8
    for (int r = 0; r < registers; ++r) store<width>(y + row(r), s[r]);
}
template <int width, int registers, class Alpha, class T>
[[gnu::noinline]] void one_tile(Int m, Int n, Alpha alpha, const T* a, Int lda, const T* x, Int incx, T* y)
{
    tile<width, registers>(m, n, alpha, a, lda, x, incx, y);
}

constexpr Int near_bytes = 64 << 10;

template <class T>
constexpr Int tile_rows = 8 * Vec<T>::lanes;

// m <= tile_rows
template <class Alpha, class T>
inline void few_rows(Int m, Int n, Alpha alpha, const T* a, Int lda, const T* x, Int incx, T* y)
{
    with_tile<T>(m, [&]<int width, int registers>() { one_tile<width, registers>(m, n, alpha, a, lda, x, incx, y); });
}

} // namespace columns

// m rows and n columns; t(0 .. n) contiguous.
template <class T>
[[gnu::noinline]] void add_columns(Loads loads, Int m, Int n, const T* a, Int lda, const T* t, T* y)
{
    constexpr int most = is_complex<T> ? 4 : 8; // their factors fill half of the registers
    constexpr Int rows = columns::tile_rows<T>, lanes = Vec<T>::lanes;
    // Tiles are a tenth faster where the columns stay in the nearest caches and there are enough of them.
    if (m <= rows || (n >= 16 && m * n * Int(sizeof(T)) <= columns::near_bytes)) {
        for (; m >= 2 * rows; m -= rows, a += rows, y += rows)
            columns::tile<lanes, 8>(rows, n, One(), a, lda, t, Int{1}, y);
        if (m > rows) { // two of about the same size
            const Int part = (m / 2 + lanes - 1) / lanes * lanes;
            columns::few_rows(part, n, One(), a, lda, t, Int{1}, y);
            m -= part, a += part, y += part;
        }
        return columns::few_rows(m, n, One(), a, lda, t, Int{1}, y);
    }
    with_loads(loads, [&]<bool aligned, bool far>() {
        for (; n >= most; n -= most, a += most * lda, t += most) columns::sweep<aligned, far, most>(m, a, lda, t, y);
    });
    if constexpr (most == 8)
        if (n & 4) {
            columns::sweep<false, false, 4>(m, a, lda, t, y);
            a += 4 * lda, t += 4;
        }
    if (n & 2) {
        columns::sweep<false, false, 2>(m, a, lda, t, y);
        a += 2 * lda, t += 2;
    }
    if (n & 1) columns::sweep<false, false, 1>(m, a, lda, t, y);
}

} // namespace ork::level2

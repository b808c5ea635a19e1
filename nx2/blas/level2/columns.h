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
[[gnu::noinline]] void sweep(Int m, const T* a, Int lda, const T* t, T* y, Int ahead = 0)
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
        if constexpr (far) column.prefetch(ahead);
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
    const auto column = [&](const T* c, const T* element) __attribute__((always_inline))
    {
        const Factor<T> f(alpha * get(element));
#pragma GCC unroll 8
        for (int r = 0; r < registers; ++r) s[r] = sum(s[r], f * load<width>(c + row(r)));
    };
#pragma GCC unroll 1
    for (; n >= 2; n -= 2) { // what it takes to count is noticeable
        column(a, x);
        a += lda, x += incx;
        asm("" : "+r"(a), "+r"(x)); // as they stand: GCC would make nine of a
        column(a, x);
        a += lda, x += incx;
    }
    if (n > 0) column(a, x);
#pragma GCC unroll 8
    for (int r = 0; r < registers; ++r) store<width>(y + row(r), s[r]);
}
template <int width, int registers, class Alpha, class T>
[[gnu::noinline]] void one_tile(Int m, Int n, Alpha alpha, const T* a, Int lda, const T* x, Int incx, T* y)
{
    tile<width, registers>(m, n, alpha, a, lda, x, incx, y);
}

template <class T>
constexpr Int tile_rows = 8 * Vec<T>::lanes;

// m <= tile_rows
template <class Alpha, class T>
inline void few_rows(Int m, Int n, Alpha alpha, const T* a, Int lda, const T* x, Int incx, T* y)
{
    with_tile<T>(m, [&]<int width, int registers>() { one_tile<width, registers>(m, n, alpha, a, lda, x, incx, y); });
}

// Where the columns stay in the nearest caches, one tile after the other is a tenth faster than sweeps.
constexpr Int near_bytes = 96 << 10, enough_columns = 16;

template <class T>
inline bool suits_tiles(Int n, Int lda)
{
    return n >= enough_columns && n * (lda < 0 ? -lda : lda) * Int(sizeof(T)) <= near_bytes;
}

template <class T>
inline void tiles(Int m, Int n, const T* a, Int lda, const T* t, T* y)
{
    constexpr Int rows = tile_rows<T>, lanes = Vec<T>::lanes;
    for (; m >= 2 * rows; m -= rows, a += rows, y += rows) tile<lanes, 8>(rows, n, One(), a, lda, t, Int{1}, y);
    if (m > rows) { // two of about the same size
        const Int part = (m / 2 + lanes - 1) / lanes * lanes;
        few_rows(part, n, One(), a, lda, t, Int{1}, y);
        m -= part, a += part, y += part;
    }
    few_rows(m, n, One(), a, lda, t, Int{1}, y);
}

} // namespace columns

// m rows and n columns; t(0 .. n) contiguous.
template <class T>
[[gnu::noinline]] void add_columns(Loads loads, Int m, Int n, const T* a, Int lda, const T* t, T* y)
{
    if (m <= columns::tile_rows<T> || columns::suits_tiles<T>(n, lda)) return columns::tiles(m, n, a, lda, t, y);
    constexpr int most = is_complex<T> ? 4 : 8; // their factors fill half of the registers
    with_loads(loads, [&]<bool aligned, bool far>() {
        for (; n >= most; n -= most, a += most * lda, t += most)
            columns::sweep<aligned, far, most>(m, a, lda, t, y, loads.ahead);
    });
    if constexpr (most > 4)
        if (n >= 4) {
            columns::sweep<false, false, 4>(m, a, lda, t, y);
            n -= 4, a += 4 * lda, t += 4;
        }
    if (n & 2) {
        columns::sweep<false, false, 2>(m, a, lda, t, y);
        a += 2 * lda, t += 2;
    }
    if (n & 1) columns::sweep<false, false, 1>(m, a, lda, t, y);
}

} // namespace ork::level2

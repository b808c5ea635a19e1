// SPDX-License-Identifier: MIT
// y(j) <- y(j) + alpha (sum of a(i, j) x(i) over the rows i) for contiguous x and y, the rows cut into chunks from the
// top and the sums of one chunk added after those of another.
//
// The order of additions in a chunk, by its number of rows alone. Real numbers: registers of elements from the top go
// to two accumulators in turn; their sum and then the lanes (0 + 1, or (0 + 2) + (1 + 3)) are the result; rows that do
// not fill a register go to its lower lanes. Complex ones: one accumulator of x.re a.re and x.im a.im, one of x.im a.re
// and x.re a.im; after the lanes (of single numbers: 0 + 1), the first two are subtracted and the others added
// (conjugated: the other way). So a column's bits depend on nothing but itself.
#pragma once

#include "blas/level2/loads.h"

namespace ork::level2 {

namespace sums {

// The first `count` elements at p, zeros in the lanes above. 0 < count < lanes
inline Vec<double> load_few(const double* p, Int) { return {_mm_set_sd(get(p))}; }
inline Vec<float> load_few(const float* p, Int count)
{
    if (count == 1) return {_mm_set_ss(get(p))};
    if (count == 2) return load_low(p);
    return {_mm_movelh_ps(load_low(p).v, _mm_set_ss(get(p + 2)))};
}
inline Vec<Complex<float>> load_few(const Complex<float>* p, Int) { return {load_low(reals(p))}; }
inline Vec<Complex<double>> load_few(const Complex<double>* p, Int) { return load<1>(p); }

// Sums of one column, two registers of elements a step.
template <class T>
struct Sums {
    Vec<T> even{}, odd{};
    template <bool second>
    [[gnu::always_inline]] void add(Vec<T> a, Vec<T> x)
    {
        (second ? odd : even) = (second ? odd : even) + a * x;
    }
    // The same to `even`, in the registers where they are: for a loop that has other uses of a, and would copy sums.
    [[gnu::always_inline]] void add_in_place(Vec<T> a, Vec<T> x) { even = sum(even, product(a, x)); }
};
template <class R>
struct Sums<Complex<R>> {
    Vec<R> straight{}, crossed{};
    template <bool>
    [[gnu::always_inline]] void add(Vec<Complex<R>> a, Vec<Complex<R>> x)
    {
        straight = straight + a.v * x.v;
        crossed = crossed + a.v * exchanged(x.v);
    }
    [[gnu::always_inline]] void add_in_place(Vec<Complex<R>> a, Vec<Complex<R>> x)
    {
        straight = sum(straight, product(a.v, x.v));
        crossed = sum(crossed, product(a.v, exchanged(x.v)));
    }
};

// The sums of adjacent columns, which fill a register.
template <bool>
[[gnu::always_inline]] inline Vec<double> total(const Sums<double>* s)
{
    const __m128d a = (s[0].even + s[0].odd).v, b = (s[1].even + s[1].odd).v;
    return {_mm_add_pd(_mm_unpacklo_pd(a, b), _mm_unpackhi_pd(a, b))};
}
template <bool>
[[gnu::always_inline]] inline Vec<float> total(const Sums<float>* s)
{
    Vec<float> lane[4] = {s[0].even + s[0].odd, s[1].even + s[1].odd, s[2].even + s[2].odd, s[3].even + s[3].odd};
    transpose(lane);
    return (lane[0] + lane[2]) + (lane[1] + lane[3]);
}
template <bool conjugated>
[[gnu::always_inline]] inline Vec<Complex<double>> total(const Sums<Complex<double>>* s)
{
    const __m128d re = s->straight.v, im = s->crossed.v;
    if constexpr (conjugated)
        return {exchanged(Vec<double>{_mm_addsub_pd(_mm_unpacklo_pd(im, re), _mm_unpackhi_pd(im, re))})};
    else
        return {{_mm_addsub_pd(_mm_unpacklo_pd(re, im), _mm_unpackhi_pd(re, im))}};
}
template <bool conjugated>
[[gnu::always_inline]] inline Vec<Complex<float>> total(const Sums<Complex<float>>* s)
{
    const auto pairs = [](Vec<float> a, Vec<float> b) { // lanes 0 + 2 and 1 + 3 of both
        return Vec<float>{_mm_add_ps(_mm_movelh_ps(a.v, b.v), _mm_movehl_ps(b.v, a.v))};
    };
    const __m128 re = pairs(s[0].straight, s[1].straight).v, im = pairs(s[0].crossed, s[1].crossed).v;
    // (a, b) of one column next to (a, b) of the other: first all a, then all b
    const __m128 a = _mm_shuffle_ps(re, im, 0x88), b = _mm_shuffle_ps(re, im, 0xdd);
    __m128 x, y;
    if constexpr (conjugated)
        x = _mm_add_ps(a, b), y = _mm_sub_ps(a, b); // re in the lower half of x, im in the upper half of y
    else
        x = _mm_sub_ps(a, b), y = _mm_add_ps(a, b);
    return {{_mm_unpacklo_ps(x, _mm_movehl_ps(y, y))}};
}

// y(j) <- y(j) + alpha times the sum of column j, for `count` columns; s has those that complete a register, too.
template <bool conjugated, int count, class Alpha, class T>
[[gnu::always_inline]] inline void add_totals(Alpha alpha, const Sums<T>* s, T* y)
{
    constexpr int lanes = Vec<T>::lanes;
#pragma GCC unroll 8
    for (int j = 0; j < count; j += lanes) {
        const Vec<T> result = alpha * total<conjugated>(s + j);
        if (j + lanes <= count)
            store<lanes>(y + j, sum(load<lanes>(y + j), result));
        else if (lanes == 4 && count % 4 == 2)
            store<lanes / 2>(y + j, sum(load<lanes / 2>(y + j), result));
        else
            store<1>(y + j, sum(load<1>(y + j), result));
    }
}

// `count` columns.
template <bool aligned, bool far, bool conjugated, int count, class Alpha, class T>
[[gnu::always_inline]] inline void group(Int ahead, Int m, Alpha alpha, const T* a, Int lda, const T* x, T* y)
{
    constexpr int lanes = Vec<T>::lanes, pass = 64 / sizeof(T); // a line
    constexpr int full = (count + lanes - 1) / lanes * lanes;
    Reader<aligned, count, T> column(a, lda);
    for (; m > 0; m -= chunk) {
        Sums<T> s[full]; // those that exceed `count` remain zero
        const auto step = [&]<bool second>(Vec<T> v, auto&& read) __attribute__((always_inline))
        {
#pragma GCC unroll 8
            for (int j = 0; j < count; ++j) s[j].template add<second>(read(j), v);
        };
        const auto full_step = [&]<bool second>(int i) __attribute__((always_inline))
        {
            step.template operator()<second>(
                load<lanes>(x + i), [&](int j)
                                        __attribute__((always_inline)) { return column.template load<lanes>(j, i); });
        };
        const auto advance = [&](Int rows) __attribute__((always_inline))
        {
            column.advance(rows);
            x += rows;
        };
        const Int rows = m < chunk ? m : chunk;
        for (Int i = rows / pass; i > 0; --i) {
            if constexpr (far) column.prefetch(ahead);
#pragma GCC unroll 4
            for (int r = 0; r < pass; r += 2 * lanes) {
                full_step.template operator()<false>(r);
                full_step.template operator()<true>(r + lanes);
            }
            advance(pass);
        }
        if (rows & (2 * lanes)) {
            full_step.template operator()<false>(0);
            full_step.template operator()<true>(lanes);
            advance(2 * lanes);
        }
        const auto few = [&]<bool second>() __attribute__((always_inline))
        {
            const Int left = rows % lanes;
            step.template operator()<second>(
                load_few(x, left), [&](int j) __attribute__((always_inline)) { return load_few(column.at(j), left); });
        };
        if (rows & lanes) {
            full_step.template operator()<false>(0);
            advance(lanes);
            if (rows % lanes != 0) few.template operator()<true>();
        } else if (rows % lanes != 0) {
            few.template operator()<false>();
        }
        add_totals<conjugated, count>(alpha, s, y);
    }
}

// Columns of two registers, which the general way spends more on beginning than on adding. The same sums.
template <bool conjugated, class Alpha, class T>
requires(!is_complex<T>) [[gnu::noinline]] void two_registers(Int n, Alpha alpha, const T* a, Int lda, const T* x, T* y)
{
    constexpr int lanes = Vec<T>::lanes;
    const Vec<T> even = load(x), odd = load(x + lanes);
    const auto columns = [&]<int count>() __attribute__((always_inline))
    {
        Sums<T> s[lanes];
#pragma GCC unroll 4
        for (int j = 0; j < count; ++j, a += lda) s[j].even = load(a) * even, s[j].odd = load(a + lanes) * odd;
        add_totals<conjugated, count>(alpha, s, y);
        y += count, n -= count;
    };
    while (n >= lanes) columns.template operator()<lanes>();
    if constexpr (lanes == 4)
        if (n & 2) columns.template operator()<2>();
    if (n & 1) columns.template operator()<1>();
}

// m rows, n columns
template <bool aligned, bool far, bool conjugated, class Alpha, class T>
[[gnu::noinline]] void all(Int ahead, Int m, Int n, Alpha alpha, const T* a, Int lda, const T* x, T* y)
{
    const auto columns = [&]<int count>() __attribute__((always_inline))
    {
        group<aligned, far, conjugated, count>(ahead, m, alpha, a, lda, x, y);
        n -= count, a += count * lda, y += count;
    };
    if constexpr (!is_complex<T>) // as many as there are accumulators for; not worth it where they add little
        if (m >= 32)
            while (n >= 6) columns.template operator()<6>();
    while (n >= 4) columns.template operator()<4>();
    if (n & 2) columns.template operator()<2>();
    if (n & 1) columns.template operator()<1>();
}

} // namespace sums

// Any number of rows and columns. alpha: an element, or something that multiplies registers.
template <bool conjugated, class Alpha, class T>
inline void add_column_sums(Loads loads, Int m, Int n, Alpha alpha, const T* a, Int lda, const T* x, T* y)
{
    const auto run = [&](auto factor) __attribute__((always_inline))
    {
        if constexpr (!is_complex<T>)
            if (m == 2 * Vec<T>::lanes) return sums::two_registers<conjugated>(n, factor, a, lda, x, y);
        with_loads(loads, [&]<bool aligned, bool far>() {
            sums::all<aligned, far, conjugated>(loads.ahead, m, n, factor, a, lda, x, y);
        });
    };
    if constexpr (std::is_same_v<Alpha, T>)
        run(Factor<T>(alpha));
    else
        run(alpha);
}

} // namespace ork::level2

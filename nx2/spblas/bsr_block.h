// SPDX-License-Identifier: MIT
// Products of one block of an order that is known when compiling and a vector: Elements<lb, T> are lb elements of a
// vector in registers, Products<lb, by_rows, T> the sums of B x over blocks before the lanes of a row are added up.
#pragma once

#include <algorithm>
#include <type_traits>
#include <utility>

#include "spblas/bsr_sum.h"

namespace ork::spblas::bsr {

// Lanes by their numbers in consecutive registers.
template <int i0, int i1>
inline Vec<double> pick(const Vec<double>* p)
{
    const __m128d a = p[i0 / 2].v, b = p[i1 / 2].v;
    return {__builtin_shufflevector(a, b, i0 % 2, 2 + i1 % 2)};
}
template <int i0, int i1, int i2, int i3>
inline Vec<float> pick(const Vec<float>* p)
{
    const __m128 a = p[i0 / 4].v, b = p[i1 / 4].v, c = p[i2 / 4].v, d = p[i3 / 4].v;
    if constexpr (i0 / 4 == i1 / 4 && i2 / 4 == i3 / 4) {
        return {__builtin_shufflevector(a, c, i0 % 4, i1 % 4, 4 + i2 % 4, 4 + i3 % 4)};
    } else {
        const __m128 low = __builtin_shufflevector(a, b, i0 % 4, 4 + i1 % 4, i0 % 4, 4 + i1 % 4);
        const __m128 high = __builtin_shufflevector(c, d, i2 % 4, 4 + i3 % 4, i2 % 4, 4 + i3 % 4);
        return {_mm_movelh_ps(low, high)};
    }
}

// The first `width` elements, the last one repeated.
template <int width, class T>
inline Vec<T> load_first(const T* p)
{
    if constexpr (width == 3)
        return {_mm_shuffle_ps(load_low(p).v, _mm_load_ss(p + 2), 0x04)};
    else
        return load<width>(p);
}
template <int width, class T>
inline void store_first(T* p, Vec<T> a)
{
    if constexpr (width == 3) {
        store<2>(p, a);
        _mm_store_ss(p + 2, _mm_movehl_ps(a.v, a.v));
    } else {
        store<width>(p, a);
    }
}

// Lanes beyond the last element repeat it.
template <int lb, class T>
struct Elements {
    static constexpr int lanes = Vec<T>::lanes, registers = (lb + lanes - 1) / lanes;
    static constexpr int width = lb - (registers - 1) * lanes; // of the last register
    Vec<T> v[registers];

    static Elements at(const T* p)
    {
        Elements e;
#pragma GCC unroll 8
        for (int w = 0; w < registers - 1; ++w) e.v[w] = load<lanes>(p + w * lanes);
        e.v[registers - 1] = load_first<width>(p + (registers - 1) * lanes);
        return e;
    }
    void store_at(T* p) const
    {
#pragma GCC unroll 8
        for (int w = 0; w < registers - 1; ++w) store<lanes>(p + w * lanes, v[w]);
        store_first<width>(p + (registers - 1) * lanes, v[registers - 1]);
    }
    friend Elements operator+(Elements a, const Elements& b)
    {
#pragma GCC unroll 8
        for (int w = 0; w < registers; ++w) a.v[w] = a.v[w] + b.v[w];
        return a;
    }
    friend Elements operator*(const Factor<T>& factor, Elements a)
    {
#pragma GCC unroll 8
        for (int w = 0; w < registers; ++w) a.v[w] = factor * a.v[w];
        return a;
    }
};

// From single elements, without the way through memory that a load of several stores would wait for.
template <int lb, class T>
inline Elements<lb, T> elements(const T (&x)[lb])
{
    if constexpr (is_complex<T> || lb > 4)
        return Elements<lb, T>::at(x);
    else if constexpr (sizeof(T) == 4)
        return {{{_mm_setr_ps(x[0], x[1], x[std::min(2, lb - 1)], x[lb - 1])}}};
    else if constexpr (lb == 2)
        return {{{_mm_setr_pd(x[0], x[1])}}};
    else
        return {{{_mm_setr_pd(x[0], x[1])}, {_mm_setr_pd(x[2], x[lb - 1])}}};
}

// Blocks by columns: registers along the rows, each column times its element of x.
template <int lb, class T>
struct ColumnProducts {
    static constexpr int lanes = Vec<T>::lanes, registers = Elements<lb, T>::registers, width = Elements<lb, T>::width;
    Sum<T> sum[registers]{};

    void add(const T* block, const T* x)
    {
        for (int c = 0; c < lb; ++c, block += lb) {
            const Spread<T> factor(x[c]);
#pragma GCC unroll 8
            for (int w = 0; w < registers - 1; ++w) sum[w].add(load<lanes>(block + w * lanes), factor);
            sum[registers - 1].add(load_first<width>(block + (registers - 1) * lanes), factor);
        }
    }
    Elements<lb, T> rows(bool conjugate) const
    {
        Elements<lb, T> e;
#pragma GCC unroll 8
        for (int w = 0; w < registers; ++w) e.v[w] = sum[w].value(conjugate, false);
        return e;
    }
};

// Blocks by rows: registers along the columns, a sum for each row.
template <int lb, class T>
struct RowProducts {
    static constexpr int lanes = Vec<T>::lanes, registers = Elements<lb, T>::registers, rest = lb % lanes;
    Sum<T> sum[lb]{};

    void add(const T* block, const T* x)
    {
        for (int c = 0; c + lanes <= lb; c += lanes) {
            const Spread<T> factor(load<lanes>(x + c));
#pragma GCC unroll 8
            for (int r = 0; r < lb; ++r) sum[r].add(load<lanes>(block + r * lb + c), factor);
        }
        if constexpr (rest != 0) {
            const Spread<T> factor(load_few(x + lb - rest, rest));
#pragma GCC unroll 8
            for (int r = 0; r < lb; ++r) sum[r].add(load_few(block + r * lb + lb - rest, rest), factor);
        }
    }
    Elements<lb, T> rows(bool conjugate) const { return rows(conjugate, std::make_integer_sequence<int, lanes>()); }
    template <int... i>
    Elements<lb, T> rows(bool conjugate, std::integer_sequence<int, i...>) const
    {
        Elements<lb, T> e;
#pragma GCC unroll 8
        for (int w = 0; w < registers; ++w)
            e.v[w] = lane_sums(sum[std::min(w * lanes + i, lb - 1)].value(conjugate, false)...);
        return e;
    }
};

// Arithmetic on lane 0 alone; above it the product has zeros.
inline Vec<double> first_product(const double* a, Vec<double> b) { return {_mm_mul_sd(_mm_load_sd(a), b.v)}; }
inline Vec<float> first_product(const float* a, Vec<float> b) { return {_mm_mul_ss(_mm_load_ss(a), b.v)}; }
inline Vec<double> add_first(Vec<double> a, Vec<double> b) { return {_mm_add_sd(a.v, b.v)}; }
inline Vec<float> add_first(Vec<float> a, Vec<float> b) { return {_mm_add_ss(a.v, b.v)}; }

// Real blocks of at most four rows: their values as they lie in memory, register after register, each against the
// elements of x that belong to its lanes. What goes to the same row is added up in the end.
template <int lb, bool by_rows, class T>
struct FlatProducts {
    static constexpr int lanes = Vec<T>::lanes, size = lb * lb, registers = size / lanes;
    static constexpr bool odd = size % lanes != 0; // the last value is in no register of its own
    static_assert(size % lanes <= 1);
    using All = std::make_integer_sequence<int, lanes>;
    Vec<T> v[registers + odd]{};

    void add(const T* block, const T* x) { take<false>(block, Elements<lb, T>::at(x), Registers()); }
    void set(const T* block, const Elements<lb, T>& x) { take<true>(block, x, Registers()); }
    Elements<lb, T> rows(bool) const
    {
        constexpr std::make_integer_sequence<int, lb> all;
        Elements<lb, T> e;
        e.v[0] = rows<0>(all);
        if constexpr (e.registers == 2) e.v[1] = rows<1>(all);
        return e;
    }

private:
    using Registers = std::make_integer_sequence<int, registers>;

    // x by the lanes of a block: value f of a block by rows belongs to x[f % lb], by columns to x[f / lb]. Shuffled
    // from registers of x: with two loads a cycle, and one of them for a value, a load for each would take a third
    // longer.
    template <int f, int... i>
    static Vec<T> factor(const Elements<lb, T>& x, std::integer_sequence<int, i...>)
    {
        return pick<(by_rows ? (f + i) % lb : (f + i) / lb)...>(x.v);
    }
    template <bool first, int... q>
    void take(const T* block, const Elements<lb, T>& x, std::integer_sequence<int, q...>)
    {
        if constexpr (first)
            ((v[q] = load(block + q * lanes) * factor<q * lanes>(x, All())), ...);
        else
            ((v[q] = v[q] + load(block + q * lanes) * factor<q * lanes>(x, All())), ...);
        if constexpr (odd) {
            const Vec<T> last = first_product(block + size - 1, factor<size - 1>(x, All()));
            v[registers] = first ? last : add_first(v[registers], last);
        }
    }

    // What goes to the rows of register w, the `term`th value of each.
    template <int w, int term, int... i>
    Vec<T> terms(std::integer_sequence<int, i...>) const
    {
        constexpr auto from = [](int lane) {
            const int row = std::min(w * lanes + lane, lb - 1);
            return by_rows ? row * lb + term : term * lb + row;
        };
        return pick<from(i)...>(v);
    }
    template <int w, int... term>
    Vec<T> rows(std::integer_sequence<int, term...>) const
    {
        return (terms<w, term>(All()) + ...);
    }
};

template <int lb, bool by_rows, class T>
using Products = std::conditional_t<lb <= 4 && !is_complex<T>, FlatProducts<lb, by_rows, T>,
                                    std::conditional_t<by_rows, RowProducts<lb, T>, ColumnProducts<lb, T>>>;

} // namespace ork::spblas::bsr

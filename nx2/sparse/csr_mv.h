// SPDX-License-Identifier: MIT
// Products of compressed rows with a vector, and folding what threads scattered.
#pragma once

#include "simd/scale.h"
#include "sparse/conjugated.h"
#include "sparse/csr_rows.h"

namespace ork::sparse {

// What becomes of the sum of a row or of a slice's lane. Without beta the old y is not read.
template <class T>
struct Scaling {
    T alpha, beta;
    bool clear; // beta = 0

    Scaling(T alpha, T beta) : alpha(alpha), beta(beta), clear(beta == T{}) {}
    T apply(T sum, const T& old) const { return clear ? sum * alpha : sum * alpha + old * beta; }
};

// y = alpha A x + beta y; with `dot` also the sum of conj(x_i) y_i, x_i at the rows of the share.
template <bool dots, bool far, class Int, class T>
[[gnu::noinline]] void row_products(Share<Int, T> a, Index row_first, Scaling<T> scaling, const T* x, T* y, T* dot)
{
    T sum{};
    row_sums<far>(
        a, x, [&](Index i, T s) __attribute__((always_inline)) {
            const T result = scaling.apply(s, y[i]);
            y[i] = result;
            if constexpr (dots) sum = sum + conjugated(x[row_first + i]) * result;
        });
    if constexpr (dots) *dot = sum;
}

template <class Int, class T>
inline void row_product(Share<Int, T> a, T alpha, T beta, const T* x, T* y)
{
    if (a.rows <= 0) return;
    (a.far() ? row_products<false, true, Int, T> : row_products<false, false, Int, T>)(a, 0, {alpha, beta}, x, y,
                                                                                       nullptr);
}

template <class Int, class T>
inline void row_dot_product(Share<Int, T> a, Index row_first, T alpha, T beta, const T* x, T* y, T* dot)
{
    *dot = T{};
    if (a.rows <= 0) return;
    (a.far() ? row_products<true, true, Int, T> : row_products<true, false, Int, T>)(a, row_first, {alpha, beta}, x, y,
                                                                                     dot);
}

// out = beta out, all n of it; then out[col - base] += val (x alpha), row by row.
template <class Int, class T>
[[gnu::noinline]] void transposed_product(Share<Int, T> a, Index n, Index base, T alpha, T beta, const T* x, T* out)
{
    scale(n, beta, out);
    if (a.rows <= 0) return;
    const bool far = a.far();
    for (Index i = 0, k = 0; i < a.rows; ++i) {
        const Index length = a.length(i);
        if (far) fetch(a.vals + k), fetch(a.cols + k);
        scatter_row(a.vals + k, a.cols + k, length, x[i] * alpha, out, base);
        k += length > 0 ? length : 0;
    }
}

// step<width>(i) over first .. last - 1, two registers at a time, then single elements.
template <class T, class Step>
[[gnu::always_inline]] inline void for_lanes(Index first, Index last, Step step)
{
    constexpr int lanes = Vec<T>::lanes;
    Index i = first;
    for (; i + 2 * lanes <= last; i += 2 * lanes) {
        step.template operator()<lanes>(i);
        step.template operator()<lanes>(i + lanes);
    }
    for (; i < last; ++i) step.template operator()<1>(i);
}

// y = alpha from + beta y
template <bool clear, class T>
[[gnu::noinline]] void fold_one(Index first, Index last, T alpha, const T* from, T beta, T* y)
{
    const Factor<T> a(alpha), b(beta);
    for_lanes<T>(
        first, last, [&]<int width>(Index i) __attribute__((always_inline)) {
            const Vec<T> scaled = a * load<width>(from + i);
            store<width>(y + i, clear ? scaled : Vec<T>(sum(scaled, b * load<width>(y + i))));
        });
}

// y = y + alpha from
template <class T>
[[gnu::noinline]] void add_one(Index first, Index last, T alpha, const T* from, T* y)
{
    const Factor<T> a(alpha);
    for_lanes<T>(
        first, last, [&]<int width>(Index i) __attribute__((always_inline)) {
            store<width>(y + i, Vec<T>(sum(load<width>(y + i), a * load<width>(from + i))));
        });
}

// y = y + from
template <class T>
[[gnu::noinline]] void add_one(Index first, Index last, const T* from, T* y)
{
    for_lanes<T>(
        first, last, [&]<int width>(Index i) __attribute__((always_inline)) {
            store<width>(y + i, Vec<T>(sum(load<width>(y + i), load<width>(from + i))));
        });
}

} // namespace ork::sparse

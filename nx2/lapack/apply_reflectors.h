// SPDX-License-Identifier: MIT
// One reflector or two, H = I - tau v v^H with all of v stored, applied to a matrix that is read once and written once.
// With w = v^H C for C as it was, two from the left take
//     C <- C - v1 f1 - v2 f2,   f1 = tau1 w1,   f2 = tau2 (w2 - (v2^H v1) f1)
// column by column, and from the right the same with rows, w = C v and v^H.
#pragma once

#include "lapack/columns.h"
#include "lapack/scalar.h"
#include "simd/gather.h"

namespace ork::lapack {

template <class T, int terms>
struct Reflectors {
    const T* v[terms];
    T tau[terms];
};

namespace reflectors {

// `columns` of C; between = v2^H v1.
template <int columns, class T, int terms>
[[gnu::always_inline]] inline void from_left(Int m, const Reflectors<T, terms>& h, T between, T* c, Int ldc)
{
    constexpr int lanes = Vec<T>::lanes;
    DotSum<T> sums[terms][columns];
    Int i = 0;
    for (; i + lanes <= m; i += lanes)
#pragma GCC unroll 4
        for (int j = 0; j < columns; ++j) {
            const Vec<T> x = load<lanes>(c + i + j * ldc);
#pragma GCC unroll 2
            for (int t = 0; t < terms; ++t) sums[t][j].add(load<lanes>(h.v[t] + i), x);
        }
    T f[terms][columns];
#pragma GCC unroll 4
    for (int j = 0; j < columns; ++j)
#pragma GCC unroll 2
        for (int t = 0; t < terms; ++t) {
            T sum = sums[t][j].total();
            for (Int k = i; k < m; ++k) sum = sum + conj(h.v[t][k]) * c[k + j * ldc];
            f[t][j] = h.tau[t] * (t == 0 ? sum : sum - between * f[0][j]);
        }
#pragma GCC unroll 4
    for (int j = 0; j < columns; ++j)
#pragma GCC unroll 2
        for (int t = 0; t < terms; ++t) f[t][j] = T{} - f[t][j];
    for (i = 0; i + lanes <= m; i += lanes)
#pragma GCC unroll 4
        for (int j = 0; j < columns; ++j) {
            Vec<T> x = load<lanes>(c + i + j * ldc);
#pragma GCC unroll 2
            for (int t = 0; t < terms; ++t) x = added(x, Factor<T>(f[t][j]) * load<lanes>(h.v[t] + i));
            store<lanes>(c + i + j * ldc, x);
        }
    for (; i < m; ++i)
#pragma GCC unroll 4
        for (int j = 0; j < columns; ++j)
#pragma GCC unroll 2
            for (int t = 0; t < terms; ++t) c[i + j * ldc] = c[i + j * ldc] + f[t][j] * h.v[t][i];
}

// Rows in the lanes of `count` registers; between = v1^H v2.
template <int width, int count, class T, int terms>
[[gnu::always_inline]] inline void from_right(Int n, const Reflectors<T, terms>& h, T between, T* c, Int ldc)
{
    Vec<T> sum[terms][count] = {};
    for (Int j = 0; j < n; ++j)
#pragma GCC unroll 2
        for (int t = 0; t < terms; ++t) {
            const Factor<T> v(h.v[t][j]);
#pragma GCC unroll 4
            for (int r = 0; r < count; ++r) sum[t][r] = added(sum[t][r], v * load<width>(c + r * width + j * ldc));
        }
#pragma GCC unroll 4
    for (int r = 0; r < count; ++r) {
        sum[0][r] = Factor<T>(h.tau[0]) * sum[0][r];
        if constexpr (terms == 2) sum[1][r] = Factor<T>(h.tau[1]) * (sum[1][r] - Factor<T>(between) * sum[0][r]);
    }
    for (Int j = 0; j < n; ++j)
#pragma GCC unroll 4
        for (int r = 0; r < count; ++r) {
            Vec<T> x = load<width>(c + r * width + j * ldc);
#pragma GCC unroll 2
            for (int t = 0; t < terms; ++t) x = x - Factor<T>(conj(h.v[t][j])) * sum[t][r];
            store<width>(c + r * width + j * ldc, x);
        }
}

} // namespace reflectors

template <class T, int terms>
[[gnu::noinline]] void apply_from_left(Int m, Int n, const Reflectors<T, terms>& h, T* c, Int ldc)
{
    constexpr int columns = is_complex<T> || terms == 2 ? 2 : 4;
    T between{};
    if constexpr (terms == 2) between = dot(m, h.v[1], h.v[0]);
    Int j = 0;
    for (; j + columns <= n; j += columns) reflectors::from_left<columns>(m, h, between, c + j * ldc, ldc);
    for (; j < n; ++j) reflectors::from_left<1>(m, h, between, c + j * ldc, ldc);
}

template <class T, int terms>
[[gnu::noinline]] void apply_from_right(Int m, Int n, const Reflectors<T, terms>& h, T* c, Int ldc)
{
    constexpr int lanes = Vec<T>::lanes;
    T between{};
    if constexpr (terms == 2) between = dot(n, h.v[0], h.v[1]);
    Int i = 0;
    for (; i + 4 * lanes <= m; i += 4 * lanes) reflectors::from_right<lanes, 4>(n, h, between, c + i, ldc);
    for (; i + lanes <= m; i += lanes) reflectors::from_right<lanes, 1>(n, h, between, c + i, ldc);
    for (; i < m; ++i) reflectors::from_right<1, 1>(n, h, between, c + i, ldc);
}

} // namespace ork::lapack

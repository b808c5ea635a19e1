// SPDX-License-Identifier: MIT
// Solves and sweeps in four arrays, whose rows have their entries in any order.
#pragma once

#include "blas/divide.h"
#include "ork/abi/sparse/solve.h"
#include "simd/scale.h"
#include "sparse/conjugated.h"
#include "spblas/csr_fetch.h"

namespace ork::sparse {

template <class Int, class T>
struct FourArrays {
    std::int64_t base;
    const T* vals;
    const Int *index, *row_first, *row_last;

    // entry(column counted from the base, value) of row i, in the order in which they are stored.
    template <class Entry>
    [[gnu::always_inline]] void each(std::int64_t i, Entry&& entry) const
    {
        for (std::int64_t k = row_first[i] - base, end = row_last[i] - base; k < end; ++k)
            entry(std::int64_t{index[k]}, vals[k]);
    }
    std::int64_t bytes(std::int64_t rows) const
    {
        const std::int64_t entries = std::int64_t{row_last[rows - 1]} - row_first[0];
        return entries * static_cast<std::int64_t>(sizeof(T) + sizeof(Int));
    }
    void fetch_ahead(std::int64_t i) const
    {
        spblas::fetch_row(spblas::Csr<Int, T>{vals, index, nullptr, nullptr}, row_first[i] - base, row_last[i] - base);
    }
    T* counted(T* x) const { return spblas::counted_from(base, x); }
    const T* counted(const T* x) const { return spblas::counted_from(base, x); }
};

enum class Side { lower, upper, diagonal, conjugated_diagonal };

template <class Int, class T>
[[gnu::noinline]] void solve_rows(std::int64_t first, std::int64_t last, Side side, bool unit, const Int* order,
                                  T alpha, FourArrays<Int, T> a, const T* b, T* y)
{
    const T* const from = a.counted(y);
    for (std::int64_t n = last - first, s = 0; s < n; ++s) {
        const std::int64_t p = side == Side::upper ? last - 1 - s : first + s;
        const std::int64_t i = order != nullptr ? std::int64_t{order[p]} : p, own = i + a.base;
        T sum = alpha * b[i], diagonal{};
        a.each(i, [&](std::int64_t column, T value) {
            if (column == own)
                diagonal = diagonal + value;
            else if (side == Side::lower ? column < own : side == Side::upper && column > own)
                sum = sum - value * from[column];
        });
        if (side == Side::conjugated_diagonal) diagonal = conjugated(diagonal);
        y[i] = unit ? sum : divided(sum, diagonal);
    }
}

// A sweep of successive over-relaxation for A x = alpha b, of x = 0 where from_zero. Every row waits for the one
// before: it is multiplied by 1 / a_ii, which is ready by then, instead of being divided.
template <class Int, class T>
[[gnu::noinline]] void sweep(std::int64_t rows, bool backward, bool from_zero, T omega, T alpha, FourArrays<Int, T> a,
                             const T* b, T* x)
{
    if (rows <= 0) return;
    if (from_zero) scale(rows, T{}, x);
    // What lies ahead of a backward sweep is behind in memory; the hardware has to find that by itself.
    const bool far = !backward && a.bytes(rows) > far_bytes;
    const bool relaxed = !(omega == T(1));
    x = a.counted(x);
    b = a.counted(b);
    for (std::int64_t s = 0; s < rows; ++s) {
        const std::int64_t i = backward ? rows - 1 - s : s, own = i + a.base;
        T sum = alpha * b[own], diagonal{};
        if (far) a.fetch_ahead(i);
        a.each(i, [&](std::int64_t column, T value) {
            if (column == own)
                diagonal = diagonal + value;
            else if (!(from_zero && column > own))
                sum = sum - value * x[column];
        });
        if (diagonal == T{}) continue;
        const T next = divided(T(1), diagonal) * sum;
        x[own] = relaxed ? x[own] + omega * (next - x[own]) : next;
    }
}

template <class Int, class T>
[[gnu::noinline]] void symmetric_sweep(std::int64_t rows, T omega, FourArrays<Int, T> a, const T* b, T* x, T* work)
{
    for (std::int64_t i = 0; i < rows; ++i) work[i] = b[i];
    x = a.counted(x), work = a.counted(work);
    for (std::int64_t i = 0; i < rows; ++i) {
        const std::int64_t own = i + a.base;
        T sum = work[own], diagonal{};
        a.each(i, [&](std::int64_t column, T value) {
            if (column == own)
                diagonal = diagonal + value;
            else if (column > own)
                sum = sum - value * x[column];
        });
        if (!(diagonal == T{})) x[own] = x[own] + omega * (divided(T(1), diagonal) * sum - x[own]);
        const T solved = x[own];
        a.each(i, [&](std::int64_t column, T value) {
            if (column > own) work[column] = work[column] - value * solved;
        });
    }
}

template <class Int, class T>
[[gnu::noinline]] void symmetric_product(std::int64_t rows, T alpha, FourArrays<Int, T> a, const T* x, T beta, T* y)
{
    scale(rows, beta, y);
    x = a.counted(x), y = a.counted(y);
    for (std::int64_t i = 0; i < rows; ++i) {
        const std::int64_t own = i + a.base;
        const T scaled = alpha * x[own];
        T sum{};
        a.each(i, [&](std::int64_t column, T value) {
            if (column < own) return;
            sum = sum + value * x[column];
            if (column > own) y[column] = y[column] + value * scaled;
        });
        y[own] = y[own] + alpha * sum;
    }
}

// y = A x
template <class Int, class T>
[[gnu::noinline]] void product_of_rows(std::int64_t rows, FourArrays<Int, T> a, const T* x, T* y)
{
    x = a.counted(x);
    for (std::int64_t i = 0; i < rows; ++i) {
        T sum{};
        a.each(i, [&](std::int64_t column, T value) { sum = sum + value * x[column]; });
        y[i] = sum;
    }
}

template <class Int, class T>
[[gnu::noinline]] void lu_step(std::int64_t rows, FourArrays<Int, T> a, const T* e, const T* inverse, const T* b, T* x,
                               T* z)
{
    T *const xs = a.counted(x), *const zs = a.counted(z);
    for (std::int64_t i = 0; i < rows; ++i) {
        const std::int64_t own = i + a.base;
        T sum = b[i];
        a.each(i, [&](std::int64_t column, T value) {
            sum = sum - value * xs[column];
            if (column < own) sum = sum - value * zs[column];
        });
        z[i] = inverse[i] * sum;
    }
    for (std::int64_t i = rows; i-- > 0;) {
        const std::int64_t own = i + a.base;
        T sum = e[i] * z[i];
        a.each(i, [&](std::int64_t column, T value) {
            if (column > own) sum = sum - value * zs[column];
        });
        z[i] = inverse[i] * sum;
        x[i] = x[i] + z[i];
    }
}

} // namespace ork::sparse

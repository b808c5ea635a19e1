// SPDX-License-Identifier: MIT
// Solves and sweeps with rows of square blocks, and with dense triangles.
#pragma once

#include "sparse/row_solve.h"
#include "spblas/bsr_sum.h"

namespace ork::sparse {

template <class T>
struct Square {
    std::int64_t order;
    bool by_rows;
    const T* at;

    // y = y + (block x) sign
    void add(const T* x, T sign, T* y) const
    {
        for (std::int64_t i = 0; i < order; ++i) {
            const T* const line = at + i * order;
            if (by_rows)
                y[i] = y[i] + sign * dot(order, line, x);
            else
                subtract(order, T(-1) * sign * x[i], line, y);
        }
    }

    static T dot(std::int64_t n, const T* a, const T* x)
    {
        constexpr int lanes = Vec<T>::lanes;
        Vec<T> sums{};
        std::int64_t k = 0;
        for (; k + lanes <= n; k += lanes) sums = sums + times(load<lanes>(a + k), load<lanes>(x + k));
        T s = spblas::bsr::lane_sum(sums);
        for (; k < n; ++k) s = s + a[k] * x[k];
        return s;
    }
    // y = y - factor a
    static void subtract(std::int64_t n, T factor, const T* a, T* y)
    {
        constexpr int lanes = Vec<T>::lanes;
        const Factor<T> f(factor);
        std::int64_t k = 0;
        for (; k + lanes <= n; k += lanes) store<lanes>(y + k, load<lanes>(y + k) - f * load<lanes>(a + k));
        for (; k < n; ++k) y[k] = y[k] - factor * a[k];
    }

    // y = (a triangle)^-1 y
    void solve(bool lower, bool unit, T* y) const
    {
        for (std::int64_t s = 0; s < order; ++s) {
            const std::int64_t i = lower ? s : order - 1 - s, behind = order - 1 - i;
            const T *const line = at + i * order, pivot = line[i];
            if (by_rows) y[i] = y[i] - (lower ? dot(i, line, y) : dot(behind, line + i + 1, y + i + 1));
            if (!unit) y[i] = divided(y[i], pivot);
            if (by_rows) continue;
            if (lower)
                subtract(behind, y[i], line + i + 1, y + i + 1);
            else
                subtract(i, y[i], line, y);
        }
    }
};

template <class T>
[[gnu::noinline]] void dense_solve(std::int64_t order, bool lower, std::int64_t layout, bool unit, const T* a, T* y)
{
    Square<T>{order, layout == 0, a}.solve(lower, unit, y);
}

template <class Int, class T>
struct BlockMatrix {
    BlockRows<Int, T> a;

    Square<T> block(const T* blocks, std::int64_t k) const
    {
        return {a.block, a.layout == 0, blocks + k * a.block * a.block};
    }
    // entry(block column, block) of block row i.
    template <class Entry>
    [[gnu::always_inline]] void each(std::int64_t i, Entry&& entry) const
    {
        for (std::int64_t k = a.first[i] - a.base, end = a.last[i] - a.base; k < end; ++k)
            entry(std::int64_t{a.index[k]} - a.base, block(a.vals, k));
    }
    // y = B x, x apart from y
    void multiply(const T* blocks, std::int64_t k, const T* x, T* y) const
    {
        for (std::int64_t r = 0; r < a.block; ++r) y[r] = T{};
        block(blocks, k).add(x, T(1), y);
    }
};

template <class Int, class T>
[[gnu::noinline]] void solve_block_rows(std::int64_t first, std::int64_t last, const BlockRows<Int, T>* matrix,
                                        Side side, bool unit, const Int* order, T alpha, const T* b, T* y)
{
    const BlockMatrix<Int, T> a{*matrix};
    const std::int64_t n = a.a.block;
    for (std::int64_t s = 0; s < last - first; ++s) {
        const std::int64_t p = side == Side::upper ? last - 1 - s : first + s;
        const std::int64_t i = order != nullptr ? std::int64_t{order[p]} : p;
        T* const own = y + i * n;
        for (std::int64_t r = 0; r < n; ++r) own[r] = alpha * b[i * n + r];
        const T* diagonal = nullptr;
        a.each(i, [&](std::int64_t j, const Square<T>& block) {
            if (j == i)
                diagonal = block.at;
            else if (side == Side::lower ? j < i : side == Side::upper && j > i)
                block.add(y + j * n, T(-1), own);
        });
        if (diagonal == nullptr) continue;
        if (side == Side::diagonal)
            for (std::int64_t r = 0; r < n && !unit; ++r) own[r] = divided(own[r], diagonal[r * (n + 1)]);
        else
            Square<T>{n, a.a.layout == 0, diagonal}.solve(side == Side::lower, unit, own);
    }
}

template <class Int, class T>
[[gnu::noinline]] void divide_block_rows(std::int64_t first, std::int64_t last, const BlockRows<Int, T>* matrix,
                                         bool unit, T alpha, std::int64_t columns, bool by_rows, const T* b,
                                         std::int64_t ldb, T* c, std::int64_t ldc)
{
    const BlockMatrix<Int, T> a{*matrix};
    const std::int64_t n = a.a.block;
    for (std::int64_t i = first; i < last; ++i) {
        const T* diagonal = nullptr;
        a.each(i, [&](std::int64_t j, const Square<T>& block) {
            if (j == i) diagonal = block.at;
        });
        for (std::int64_t r = 0; r < n; ++r)
            for (std::int64_t j = 0; j < columns; ++j) {
                const std::int64_t row = i * n + r;
                const T value = alpha * b[by_rows ? row * ldb + j : j * ldb + row];
                c[by_rows ? row * ldc + j : j * ldc + row] =
                    unit || diagonal == nullptr ? value : divided(value, diagonal[r * (n + 1)]);
            }
    }
}

// One of the two solves of a step with factors.
template <class Int, class T>
[[gnu::noinline]] void lu_block_rows(std::int64_t first, std::int64_t last, const BlockRows<Int, T>* matrix, bool upper,
                                     const T* e, const T* inverse, T* z, T* work)
{
    const BlockMatrix<Int, T> a{*matrix};
    const std::int64_t n = a.a.block;
    for (std::int64_t s = 0; s < last - first; ++s) {
        const std::int64_t i = upper ? last - 1 - s : first + s;
        T* const own = z + i * n;
        if (upper)
            a.multiply(e, i, own, work);
        else
            for (std::int64_t r = 0; r < n; ++r) work[r] = own[r];
        a.each(i, [&](std::int64_t j, const Square<T>& block) {
            if (upper ? j > i : j < i) block.add(z + j * n, T(-1), work);
        });
        a.multiply(inverse, i, work, own);
    }
}

template <class Int, class T>
[[gnu::noinline]] void sweep_block_rows(std::int64_t first, std::int64_t last, const BlockRows<Int, T>* matrix,
                                        bool upper, const T* inverse, T alpha, const T* b, T* x, T* work)
{
    const BlockMatrix<Int, T> a{*matrix};
    const std::int64_t n = a.a.block;
    for (std::int64_t s = 0; s < last - first; ++s) {
        const std::int64_t i = upper ? last - 1 - s : first + s;
        for (std::int64_t r = 0; r < n; ++r) work[r] = alpha * b[i * n + r];
        a.each(i, [&](std::int64_t j, const Square<T>& block) {
            if (j != i) block.add(x + j * n, T(-1), work);
        });
        a.multiply(inverse, i, work, x + i * n);
    }
}

} // namespace ork::sparse

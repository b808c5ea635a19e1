// SPDX-License-Identifier: MIT
// Products and solves with one vector, of blocks of an order that is known when compiling: every block row in one pass.
#pragma once

#include "spblas/bsr.h"
#include "spblas/bsr_block.h"
#include "spblas/bsr_rule.h"
#include "spblas/bsr_triangle.h"
#include "spblas/csr.h"

namespace ork::spblas::bsr {

// y = beta y + sum; y is not read for beta = 0.
template <int lb, class T>
inline void update(T* y, T beta, const Elements<lb, T>& sum)
{
    (beta == T{} ? sum : Factor<T>(beta) * Elements<lb, T>::at(y) + sum).store_at(y);
}

// General, not transposed; far: the blocks come from memory. The task is copied because y might be a part of the
// original as far as the compiler knows: rows took a fifth longer. For the smallest blocks fetching is decided when
// compiling: those of four numbers took a third longer with a decision each.
template <int lb, bool by_rows, bool far, class Int, class T>
[[gnu::noinline]] void direct_rows(const BlockTask<T>& task, std::int64_t first, std::int64_t last)
{
    const BlockTask<T> t = task;
    const T *val = t.val, *x = counted_from(t.base * lb, t.x);
    const Int* indx = static_cast<const Int*>(t.indx);
    const Csr<Int, T> blocks{val, indx, static_cast<const Int*>(t.pntrb), static_cast<const Int*>(t.pntre)};
    const Factor<T> alpha(t.alpha);
    for (std::int64_t i = first; i < last; ++i) {
        Products<lb, by_rows, T> sum;
        for (std::int64_t k = blocks.first(i), end = blocks.last(i); k < end; ++k) {
            if (unrolled<lb, T> != 0 ? far : t.far) fetch_block(val + k * lb * lb, lb * lb), fetch(indx + k);
            sum.add(val + k * lb * lb, x + std::int64_t{indx[k]} * lb);
        }
        update(t.y + i * lb, t.beta, alpha * sum.rows(t.conjugate));
    }
}

// x of a mirrored product, which many blocks of a row take: in registers or in memory, as they want it.
template <int lb, class T>
struct Scattered {
    Elements<lb, T> elements;
    T memory[lb];
    explicit Scattered(const Elements<lb, T>& x) : elements(x)
    {
        if constexpr (unrolled<lb, T> == 0) x.store_at(memory);
    }
};

// y = y + B^T x
template <int lb, bool by_rows, class T>
inline void scatter_block(const T* block, const Scattered<lb, T>& x, T* y, bool conjugate)
{
    Products<lb, !by_rows, T> product;
    if constexpr (unrolled<lb, T> != 0)
        product.set(block, x.elements);
    else
        product.add(block, x.memory);
    (Elements<lb, T>::at(y) + product.rows(conjugate)).store_at(y);
}

// Products of all other rules.
template <int lb, bool by_rows, class T>
[[gnu::noinline]] void product_rows(BlockRule rule, const BlockTask<T>& task, std::int64_t first, std::int64_t last)
{
    using E = Elements<lb, T>;
    const BlockTask<T> t = task;
    const bool direct = rule.direct, mirrored = rule.mirrored;
    const T mirror(rule.negate_direct != rule.negate_mirrored ? -1 : 1);
    const Factor<T> alpha(direct ? t.alpha : t.alpha_mirrored), alpha_mirrored(t.alpha_mirrored);
    const Pairs pairs(rule.lower, by_rows, lb);
    for (std::int64_t i = first; i < last; ++i) {
        const Columns columns = t.columns(i);
        const T* x = t.x + i * lb;
        const Scattered<lb, T> scaled(alpha_mirrored * E::at(x));
        T diagonal[lb];
        for (int r = 0; r < lb; ++r) diagonal[r] = rule.unit ? x[r] : T{};
        Products<lb, by_rows, T> sum;
        for (std::int64_t k = t.first(i), end = t.last(i); k < end; ++k) {
            const T* block = t.val + k * lb * lb;
            const std::int64_t j = t.column(k);
            if (t.far) fetch_block(block, lb * lb);
            if (columns.have(j)) {
                if (direct) sum.add(block, t.x + j * lb);
                if (mirrored) scatter_block<lb, by_rows>(block, scaled, t.y + j * lb, t.conjugate_mirrored);
            } else if (j == i) {
                if constexpr (unrolled<lb, T> != 0)
                    add_triangle<lb>(rule, pairs, lb, block, mirror, x, diagonal);
                else
                    add_any_triangle(rule, pairs, lb, block, mirror, x, diagonal);
            }
        }
        if (rule.whole) continue;
        update(t.y + i * lb, t.beta, alpha * (sum.rows(t.conjugate) + elements<lb>(diagonal)));
    }
}

// Rows first .. last of `rows`, in the order of the solve. Direct: what is solved already enters the row; mirrored: the
// row, solved, leaves the rows to come.
template <int lb, bool by_rows, class T>
[[gnu::noinline]] void solve_rows(BlockRule rule, const BlockTask<T>& task, std::int64_t first, std::int64_t last,
                                  std::int64_t rows)
{
    using E = Elements<lb, T>;
    const BlockTask<T> t = task;
    const bool direct = rule.direct, mirrored = rule.mirrored, forward = is_forward(rule);
    const Pairs pairs(rule.lower, by_rows, lb);
    const Factor<T> minus(T(-1));
    for (std::int64_t s = first; s < last; ++s) {
        const std::int64_t i = forward ? s : rows - 1 - s, begin = t.first(i), end = t.last(i);
        const Columns columns = t.columns(i);
        const T* block = nullptr;
        Products<lb, by_rows, T> sum;
        for (std::int64_t k = begin; k < end; ++k) {
            const std::int64_t j = t.column(k);
            if (t.far) fetch_block(t.val + k * lb * lb, lb * lb);
            if (j == i)
                block = t.val + k * lb * lb;
            else if (direct && columns.have(j))
                sum.add(t.val + k * lb * lb, t.y + j * lb);
        }
        T y[lb];
        (minus * sum.rows(t.conjugate) + E::at(t.y + i * lb)).store_at(y);
        if (block != nullptr) {
            if constexpr (unrolled<lb, T> != 0)
                solve_triangle<lb>(rule, pairs, lb, block, y);
            else
                solve_any_triangle(rule, pairs, lb, block, y);
        }
        const E solved = elements<lb>(y);
        solved.store_at(t.y + i * lb);
        if (!mirrored) continue;
        const Scattered<lb, T> negated(minus * solved);
        for (std::int64_t k = begin; k < end; ++k)
            if (const std::int64_t j = t.column(k); columns.have(j))
                scatter_block<lb, by_rows>(t.val + k * lb * lb, negated, t.y + j * lb, t.conjugate_mirrored);
    }
}

} // namespace ork::spblas::bsr

// SPDX-License-Identifier: MIT
// Diagonal blocks of which a triangle or the diagonal counts: products and solves, for any number of vectors.
#pragma once

#include "blas/divide.h"
#include "spblas/bsr.h"
#include "spblas/bsr_rule.h"

namespace ork::spblas::bsr {

// One block row of x or y, as `count` vectors: element r of vector j is p[r * down + j * right].
template <class T>
struct Segment {
    T* p;
    std::int64_t down, right, count;
    Segment row(std::int64_t r) const { return {p + r * down, down, right, count}; }
};

// y = y + a x, one row of each.
template <class T>
inline void add_row(T a, Segment<const T> x, Segment<T> y)
{
    constexpr int lanes = Vec<T>::lanes;
    const T* from = x.p;
    T* to = y.p;
    std::int64_t j = 0;
    if (x.right == 1 && y.right == 1)
        for (const Factor<T> factor(a); j + lanes <= y.count; j += lanes)
            store(reals(to + j), Vec<Real<T>>{reals(load<lanes>(to + j)) + reals(factor * load<lanes>(from + j))});
    for (; j < y.count; ++j) to[j * y.right] = to[j * y.right] + a * from[j * x.right];
}

// The stored diagonal block of a row, the last one if there are several; null if there is none.
template <class T>
inline const T* diagonal_block(const BlockTask<T>& t, std::int64_t row)
{
    for (std::int64_t k = t.last(row); k-- > t.first(row);)
        if (t.column(k) == row) return t.block(k);
    return nullptr;
}

template <class T>
inline Segment<const T> x_segment(const BlockTask<T>& t, std::int64_t row)
{
    return {t.x + t.x_at(row), t.dense_by_rows ? t.ldx : 1, t.dense_by_rows ? 1 : t.ldx, t.count};
}
template <class T>
inline Segment<T> y_segment(const BlockTask<T>& t, std::int64_t row)
{
    return {t.y + t.y_at(row), t.dense_by_rows ? t.ldy : 1, t.dense_by_rows ? 1 : t.ldy, t.count};
}

// y_i = y_i + alpha (what counts of the diagonal blocks) x_i. alpha is that of the member, of no product's sign.
template <class T>
[[gnu::noinline]] void add_diagonal(BlockRule rule, const BlockTask<T>& t, std::int64_t i, T alpha)
{
    const Segment<const T> x = x_segment(t, i);
    const Segment<T> y = y_segment(t, i);
    const std::int64_t lb = t.lb, down = t.by_rows ? lb : 1, right = t.by_rows ? 1 : lb;
    if (rule.unit)
        for (std::int64_t r = 0; r < lb; ++r) add_row(alpha, x.row(r), y.row(r));
    for (std::int64_t k = t.first(i); k < t.last(i); ++k) {
        if (t.column(k) != i) continue;
        const T* block = t.block(k);
        for (std::int64_t r = 0; r < lb; ++r) {
            if (rule.read_diagonal)
                add_row(alpha * entry(block[r * (lb + 1)], rule.conjugate_diagonal), x.row(r), y.row(r));
            const std::int64_t first = t.lower ? 0 : r + 1, last = t.lower ? r : lb;
            if (!rule.direct && !rule.mirrored) continue;
            for (std::int64_t c = first; c < last; ++c) {
                const T value = block[r * down + c * right];
                if (rule.direct) add_row(t.alpha * entry(value, t.conjugate), x.row(c), y.row(r));
                if (rule.mirrored) add_row(t.alpha_mirrored * entry(value, t.conjugate_mirrored), x.row(r), y.row(c));
            }
        }
    }
}

// y_i = (the triangle of the diagonal block, mirrored as the rule says)^-1 y_i
template <class T>
[[gnu::noinline]] void solve_diagonal(BlockRule rule, const BlockTask<T>& t, std::int64_t i)
{
    const T* block = diagonal_block(t, i);
    if (block == nullptr) return;
    const Segment<T> y = y_segment(t, i);
    const std::int64_t lb = t.lb;
    const bool rows = t.by_rows != static_cast<bool>(rule.mirrored),
               lower = t.lower != static_cast<bool>(rule.mirrored);
    const std::int64_t down = rows ? lb : 1, right = rows ? 1 : lb;
    const bool conjugate = rule.conjugate_diagonal;
    for (std::int64_t s = 0; s < lb; ++s) {
        const std::int64_t r = lower ? s : lb - 1 - s;
        const Segment<T> solved = y.row(r);
        if (!rule.unit) {
            const T pivot = entry(block[r * (lb + 1)], conjugate);
            for (std::int64_t j = 0; j < y.count; ++j) solved.p[j * y.right] = divided(solved.p[j * y.right], pivot);
        }
        if (!rule.direct && !rule.mirrored) continue;
        const Segment<const T> from{solved.p, solved.down, solved.right, solved.count};
        for (std::int64_t q = lower ? r + 1 : 0; q < (lower ? lb : r); ++q)
            add_row(T(-1) * entry(block[q * down + r * right], conjugate), from, y.row(q));
    }
}

} // namespace ork::spblas::bsr

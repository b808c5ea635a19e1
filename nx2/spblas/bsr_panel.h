// SPDX-License-Identifier: MIT
// Blocks of any order against vectors or dense matrices: panels of a few rows of the result stay in registers while the
// blocks of a whole row pass.
#pragma once

#include <algorithm>

#include "simd/scale.h"
#include "spblas/bsr.h"
#include "spblas/bsr_sum.h"

namespace ork::spblas::bsr {

// y = beta y + alpha (the blocks first .. last of the storage, those in `columns`) x, y one block row and x_j at x + j
// * step; or, scattering, y_j = beta y_j + alpha (block) x for each of them, y_j at y + j * step.
template <class T>
struct BlockSum {
    const BlockTask<T>& task;
    std::int64_t first, last; // not empty
    Columns columns;
    const T* x;
    T* y;
    std::int64_t step;
    bool scatter;
    T alpha, beta;
    bool conjugate, by_rows; // the blocks as they are used: a mirrored block changes its layout
    bool ahead;              // fetch what comes later

    // add(block from its value `at`, x) for every block; finish(y) when that is the sum. In line, or the sums would be
    // in memory.
    template <class Add, class Finish>
    [[gnu::always_inline]] void each_block(std::int64_t at, Add&& add, Finish&& finish) const
    {
        // Copies, because stores to y might change the originals as far as the compiler knows.
        const std::int64_t size = task.lb * task.lb, end = last, move = step;
        const bool scattering = scatter, fetching = ahead && at == 0;
        const Columns counted = columns;
        const T *block = task.val + first * size, *from = x;
        T* to = y;
        for (std::int64_t k = first; k < end; ++k, block += size) {
            const std::int64_t j = task.column(k);
            const bool counts = counted.have(j);
            if (fetching) fetch_block(block, size);
            if (counts) add(block + at, scattering ? from : from + j * move);
            if (scattering ? counts : k + 1 == end) finish(scattering ? to + j * move : to);
        }
    }

    template <int width>
    void update(T* to, Vec<T> sum) const
    {
        const Vec<T> scaled = Factor<T>(alpha) * sum;
        store<width>(to, beta == T{} ? scaled : Factor<T>(beta) * load<width>(to) + scaled);
    }

    // Blocks by columns: registers along the rows, from row r.
    template <int rows, int vectors>
    void panel_of_columns(std::int64_t r, std::int64_t vector) const
    {
        constexpr int lanes = std::min(rows, Vec<T>::lanes), registers = rows / lanes;
        const std::int64_t lb = task.lb, ldx = task.ldx;
        Sum<T> sum[vectors][registers];
        const auto add = [&](const T* block, const T* xj) __attribute__((always_inline))
        {
            xj += vector * ldx;
            for (std::int64_t c = 0; c < lb; ++c, block += lb) {
                Vec<T> a[registers];
#pragma GCC unroll 4
                for (int v = 0; v < registers; ++v) a[v] = load<lanes>(block + v * lanes);
#pragma GCC unroll 4
                for (int n = 0; n < vectors; ++n) {
                    const Spread<T> factor(xj[c + n * ldx]);
#pragma GCC unroll 4
                    for (int v = 0; v < registers; ++v) sum[n][v].add(a[v], factor);
                }
            }
        };
        each_block(
            r, add, [&](T * to) __attribute__((always_inline)) {
#pragma GCC unroll 4
                for (int n = 0; n < vectors; ++n)
#pragma GCC unroll 4
                    for (int v = 0; v < registers; ++v) {
                        update<lanes>(to + r + (vector + n) * task.ldy + v * lanes, sum[n][v].value(conjugate, false));
                        sum[n][v] = {};
                    }
            });
    }

    // Blocks by rows: registers along the columns, whose lanes are added up in the end.
    template <int rows, int vectors>
    void panel_of_rows(std::int64_t r, std::int64_t vector) const
    {
        constexpr int lanes = Vec<T>::lanes;
        const std::int64_t lb = task.lb, ldx = task.ldx;
        Sum<T> sum[vectors][rows];
        const auto add = [&](const T* block, const T* xj) __attribute__((always_inline))
        {
            xj += vector * ldx;
            const auto take = [&](auto&& load) __attribute__((always_inline))
            {
                Vec<T> a[rows];
#pragma GCC unroll 4
                for (int i = 0; i < rows; ++i) a[i] = load(block + i * lb);
#pragma GCC unroll 4
                for (int n = 0; n < vectors; ++n) {
                    const Spread<T> factor(load(xj + n * ldx));
#pragma GCC unroll 4
                    for (int i = 0; i < rows; ++i) sum[n][i].add(a[i], factor);
                }
            };
            std::int64_t c = lb;
            for (; c >= lanes; c -= lanes, block += lanes, xj += lanes)
                take([](const T* p) { return ork::load<Vec<T>::lanes>(p); });
            if (c != 0) take([c](const T* p) { return load_few(p, c); });
        };
        each_block(
            r * lb, add, [&](T * to) __attribute__((always_inline)) {
#pragma GCC unroll 4
                for (int n = 0; n < vectors; ++n)
#pragma GCC unroll 4
                    for (int i = 0; i < rows; ++i) {
                        T& element = to[r + i + (vector + n) * task.ldy];
                        const T scaled = alpha * lane_sum(sum[n][i].value(conjugate, false));
                        element = beta == T{} ? scaled : beta * element + scaled;
                        sum[n][i] = {};
                    }
            });
    }

    // Dense matrices by rows: registers along the vectors, from `vector`; the blocks in either layout.
    template <int rows, int vectors>
    void panel_of_vectors(std::int64_t r, std::int64_t vector) const
    {
        constexpr int lanes = std::min(vectors, Vec<T>::lanes), registers = vectors / lanes;
        const std::int64_t lb = task.lb, ldx = task.ldx, down = by_rows ? lb : 1, right = by_rows ? 1 : lb;
        Sum<T> sum[rows][registers];
        const auto add = [&](const T* block, const T* xj) __attribute__((always_inline))
        {
            xj += vector;
            for (std::int64_t c = 0; c < lb; ++c, block += right, xj += ldx) {
                Vec<T> b[registers];
#pragma GCC unroll 4
                for (int v = 0; v < registers; ++v) b[v] = load<lanes>(xj + v * lanes);
#pragma GCC unroll 4
                for (int i = 0; i < rows; ++i) {
                    const Spread<T> factor(block[i * down]);
#pragma GCC unroll 4
                    for (int v = 0; v < registers; ++v) sum[i][v].add(b[v], factor);
                }
            }
        };
        each_block(
            r * down, add, [&](T * to) __attribute__((always_inline)) {
#pragma GCC unroll 4
                for (int i = 0; i < rows; ++i)
#pragma GCC unroll 4
                    for (int v = 0; v < registers; ++v) {
                        update<lanes>(to + (r + i) * task.ldy + vector + v * lanes, sum[i][v].value(false, conjugate));
                        sum[i][v] = {};
                    }
            });
    }
};

// All rows of the block row: panels of `rows` as long as they fit, then of half as many.
template <int rows, int vectors, class T>
inline void all_columns(const BlockSum<T>& s, std::int64_t vector, std::int64_t r = 0)
{
    for (; r + rows <= s.task.lb; r += rows) s.template panel_of_columns<rows, vectors>(r, vector);
    if constexpr (rows > 1) all_columns<rows / 2, vectors>(s, vector, r);
}
template <int rows, int vectors, class T>
inline void all_rows(const BlockSum<T>& s, std::int64_t vector, std::int64_t r = 0)
{
    for (; r + rows <= s.task.lb; r += rows) s.template panel_of_rows<rows, vectors>(r, vector);
    if constexpr (rows > 1) all_rows<rows / 2, vectors>(s, vector, r);
}
template <int vectors, class T>
inline void all_vectors(const BlockSum<T>& s, std::int64_t vector = 0)
{
    for (; vector + vectors <= s.task.count; vector += vectors) {
        std::int64_t r = 0;
        for (; r + 2 <= s.task.lb; r += 2) s.template panel_of_vectors<2, vectors>(r, vector);
        if (r < s.task.lb) s.template panel_of_vectors<1, vectors>(r, vector);
    }
    if constexpr (vectors > 1) all_vectors<vectors / 2>(s, vector);
}

template <class T>
[[gnu::noinline]] void add_blocks(const BlockSum<T>& s)
{
    constexpr int lanes = Vec<T>::lanes;
    if (s.task.dense_by_rows) return all_vectors<(is_complex<T> ? 2 : 4) * lanes>(s);
    std::int64_t vector = 0;
    if (s.by_rows) {
        for (; vector + 4 <= s.task.count; vector += 4) all_rows<is_complex<T> ? 1 : 2, 4>(s, vector);
        for (; vector < s.task.count; ++vector) all_rows<4, 1>(s, vector);
    } else {
        for (; vector + 4 <= s.task.count; vector += 4) all_columns<(is_complex<T> ? 1 : 2) * lanes, 4>(s, vector);
        for (; vector < s.task.count; ++vector) all_columns<4 * lanes, 1>(s, vector);
    }
}

// y_i = beta y_i + alpha B x_j over the blocks of row i.
template <class T>
void add_direct(const BlockTask<T>& t, std::int64_t i)
{
    const std::int64_t first = t.first(i), last = t.last(i);
    T* y = t.y + t.y_at(i);
    if (first < last)
        return add_blocks<T>(
            {t, first, last, t.columns(i), t.x, y, t.x_at(1), false, t.alpha, t.beta, t.conjugate, t.by_rows, t.far});
    const std::int64_t length = t.dense_by_rows ? t.count : t.lb, parts = t.dense_by_rows ? t.lb : t.count;
    for (std::int64_t p = 0; p < parts; ++p) scale(length, t.beta, y + p * t.ldy);
}

// y_j = y_j + alpha_mirrored B^T x_i, of the blocks of row i.
template <class T>
void add_mirrored(const BlockTask<T>& t, std::int64_t i)
{
    const std::int64_t first = t.first(i), last = t.last(i);
    if (first < last)
        add_blocks<T>({t, first, last, t.columns(i), t.x + t.x_at(i), t.y, t.y_at(1), true, t.alpha_mirrored, T(1),
                       t.conjugate_mirrored, !t.by_rows, t.far && !t.direct});
}

} // namespace ork::spblas::bsr

// SPDX-License-Identifier: MIT
// Blocks of any order against vectors or dense matrices: panels of a few rows of the result stay in registers while the
// blocks of a whole row pass.
#pragma once

#include <algorithm>

#include "spblas/bsr.h"
#include "spblas/group.h"

namespace ork::spblas::bsr {

// A factor for every lane of a register, of complex numbers its parts apart.
template <class T>
struct Spread {
    Vec<T> v;
    explicit Spread(T x) : v(broadcast(x)) {}
    explicit Spread(Vec<T> x) : v(x) {}
};
template <class R>
struct Spread<Complex<R>> {
    Vec<R> re, im;
    explicit Spread(Complex<R> x) : re(broadcast(x.re)), im(broadcast(x.im)) {}
    explicit Spread(Vec<Complex<R>> x) : re(even(x.v)), im(odd(x.v)) {}

private:
    static Vec<double> even(Vec<double> a) { return {_mm_unpacklo_pd(a.v, a.v)}; }
    static Vec<double> odd(Vec<double> a) { return {_mm_unpackhi_pd(a.v, a.v)}; }
    static Vec<float> even(Vec<float> a) { return {_mm_moveldup_ps(a.v)}; }
    static Vec<float> odd(Vec<float> a) { return {_mm_movehdup_ps(a.v)}; }
};

// Sum of a * factor, lane by lane. Complex numbers: a * re and a * im apart, so that one loop serves conjugates, too.
template <class T>
struct Sum {
    Vec<T> v{};
    void add(Vec<T> a, Spread<T> factor) { v = v + a * factor.v; }
    Vec<T> value(bool, bool) const { return v; }
};
template <class R>
struct Sum<Complex<R>> {
    Vec<R> re{}, im{};
    void add(Vec<Complex<R>> a, Spread<Complex<R>> factor)
    {
        re = re + a.v * factor.re;
        im = im + a.v * factor.im;
    }
    // With all a, or all factors, replaced by their conjugates.
    Vec<Complex<R>> value(bool conjugate_a, bool conjugate_factors) const
    {
        const Vec<Complex<R>> direct{re}, crossed{exchanged(im)};
        if (conjugate_a) return conj(direct) + crossed;
        if (conjugate_factors) return direct + conj(crossed);
        return {alternating_sum(direct.v, crossed.v)};
    }
};

// The first `count` < lanes elements, then zeros.
inline Vec<double> load_few(const double* p, std::int64_t) { return {_mm_load_sd(p)}; }
inline Vec<float> load_few(const float* p, std::int64_t count)
{
    if (count == 1) return {_mm_load_ss(p)};
    const Vec<float> low = load_low(p);
    return count == 2 ? low : Vec<float>{_mm_movelh_ps(low.v, _mm_load_ss(p + 2))};
}
inline Vec<Complex<float>> load_few(const Complex<float>* p, std::int64_t) { return {load_low(reals(p))}; }
inline Vec<Complex<double>> load_few(const Complex<double>* p, std::int64_t) { return load<1>(p); }

inline double lane_sum(Vec<double> a) { return fold(a); }
inline float lane_sum(Vec<float> a) { return fold(a); }
inline Complex<float> lane_sum(Vec<Complex<float>> a) { return pair_sum(a); }
inline Complex<double> lane_sum(Vec<Complex<double>> a) { return element(a); }

// y = beta y + alpha (the blocks first .. last of the storage, those in `columns`) x, y one block row; x_j is at x + j
// step.
template <class Int, class T>
struct BlockSum {
    const BlockTask<Int, T>& task;
    std::int64_t first, last;
    Columns columns;
    const T* x;
    std::int64_t step;
    T* y;
    T alpha, beta;
    bool conjugate, by_rows; // the blocks as they are used: a mirrored block changes its layout

    template <class Add>
    void each_block(std::int64_t at, Add&& add) const
    {
        for (std::int64_t k = first; k < last; ++k) {
            const std::int64_t j = task.column(k);
            if (columns.have(j)) add(task.block(k) + at, x + j * step);
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
        each_block(r, [&](const T* block, const T* xj) {
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
        });
#pragma GCC unroll 4
        for (int n = 0; n < vectors; ++n)
#pragma GCC unroll 4
            for (int v = 0; v < registers; ++v)
                update<lanes>(y + r + (vector + n) * task.ldy + v * lanes, sum[n][v].value(conjugate, false));
    }

    // Blocks by rows: registers along the columns, whose lanes are added up in the end.
    template <int rows, int vectors>
    void panel_of_rows(std::int64_t r, std::int64_t vector) const
    {
        constexpr int lanes = Vec<T>::lanes;
        const std::int64_t lb = task.lb, ldx = task.ldx;
        Sum<T> sum[vectors][rows];
        each_block(r * lb, [&](const T* block, const T* xj) {
            xj += vector * ldx;
            const auto add = [&](auto&& load) {
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
                add([](const T* p) { return ork::load<Vec<T>::lanes>(p); });
            if (c != 0) add([c](const T* p) { return load_few(p, c); });
        });
#pragma GCC unroll 4
        for (int n = 0; n < vectors; ++n)
#pragma GCC unroll 4
            for (int i = 0; i < rows; ++i) {
                T* to = y + r + i + (vector + n) * task.ldy;
                const T scaled = alpha * lane_sum(sum[n][i].value(conjugate, false));
                *to = beta == T{} ? scaled : beta * *to + scaled;
            }
    }

    // Dense matrices by rows: registers along the vectors, from `vector`; the blocks in either layout.
    template <int rows, int vectors>
    void panel_of_vectors(std::int64_t r, std::int64_t vector) const
    {
        constexpr int lanes = std::min(vectors, Vec<T>::lanes), registers = vectors / lanes;
        const std::int64_t lb = task.lb, down = by_rows ? lb : 1, right = by_rows ? 1 : lb;
        Sum<T> sum[rows][registers];
        each_block(r * down, [&](const T* block, const T* xj) {
            xj += vector;
            for (std::int64_t c = 0; c < lb; ++c, block += right, xj += task.ldx) {
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
        });
#pragma GCC unroll 4
        for (int i = 0; i < rows; ++i)
#pragma GCC unroll 4
            for (int v = 0; v < registers; ++v)
                update<lanes>(y + (r + i) * task.ldy + vector + v * lanes, sum[i][v].value(false, conjugate));
    }
};

// All rows of the block row: panels of `rows` as long as they fit, then of half as many.
template <int rows, int vectors, class Int, class T>
inline void all_columns(const BlockSum<Int, T>& s, std::int64_t vector, std::int64_t r = 0)
{
    for (; r + rows <= s.task.lb; r += rows) s.template panel_of_columns<rows, vectors>(r, vector);
    if constexpr (rows > 1) all_columns<rows / 2, vectors>(s, vector, r);
}
template <int rows, int vectors, class Int, class T>
inline void all_rows(const BlockSum<Int, T>& s, std::int64_t vector, std::int64_t r = 0)
{
    for (; r + rows <= s.task.lb; r += rows) s.template panel_of_rows<rows, vectors>(r, vector);
    if constexpr (rows > 1) all_rows<rows / 2, vectors>(s, vector, r);
}
template <int vectors, class Int, class T>
inline void all_vectors(const BlockSum<Int, T>& s, std::int64_t vector = 0)
{
    for (; vector + vectors <= s.task.count; vector += vectors) {
        std::int64_t r = 0;
        for (; r + 2 <= s.task.lb; r += 2) s.template panel_of_vectors<2, vectors>(r, vector);
        if (r < s.task.lb) s.template panel_of_vectors<1, vectors>(r, vector);
    }
    if constexpr (vectors > 1) all_vectors<vectors / 2>(s, vector);
}

template <class Int, class T>
[[gnu::noinline]] void add_blocks(const BlockSum<Int, T>& s)
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

template <class Int, class T>
void direct_blocks(const BlockTask<Int, T>& t, std::int64_t first, std::int64_t last)
{
    for (std::int64_t i = first; i < last; ++i)
        add_blocks<Int, T>({t, t.first(i), t.last(i), t.columns(i), t.x, t.x_at(1), t.y + t.y_at(i), t.alpha, t.beta,
                            t.conjugate, t.by_rows});
}

template <class Int, class T>
void mirrored_blocks(const BlockTask<Int, T>& t, std::int64_t first, std::int64_t last)
{
    for (std::int64_t i = first; i < last; ++i)
        for (std::int64_t k = t.first(i); k < t.last(i); ++k) {
            const std::int64_t j = t.column(k);
            if (!t.columns(i).have(j)) continue;
            const Columns itself{j, j + 1};
            add_blocks<Int, T>({t, k, k + 1, itself, t.x + t.x_at(i), 0, t.y + t.y_at(j), t.alpha_mirrored, T(1),
                                t.conjugate_mirrored, !t.by_rows});
        }
}

} // namespace ork::spblas::bsr

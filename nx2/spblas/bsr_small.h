// SPDX-License-Identifier: MIT
// Real blocks of a small fixed order against one vector. A block's values are taken as they lie in memory, register
// after register, each against the elements of x that belong to its lanes; what goes to the same row is added up at the
// end of the block row.
#pragma once

#include <algorithm>
#include <utility>

#include "spblas/bsr.h"
#include "spblas/bsr_rule.h"
#include "spblas/csr.h"

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

// The first 3 elements, the last one repeated.
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

// Arithmetic on lane 0 alone; above it the product has zeros.
inline Vec<double> first_product(const double* a, Vec<double> b) { return {_mm_mul_sd(_mm_load_sd(a), b.v)}; }
inline Vec<float> first_product(const float* a, Vec<float> b) { return {_mm_mul_ss(_mm_load_ss(a), b.v)}; }
inline Vec<double> add_first(Vec<double> a, Vec<double> b) { return {_mm_add_sd(a.v, b.v)}; }
inline Vec<float> add_first(Vec<float> a, Vec<float> b) { return {_mm_add_ss(a.v, b.v)}; }

template <int lb, class T>
struct SmallBlock {
    static constexpr int lanes = Vec<T>::lanes, size = lb * lb, registers = size / lanes;
    static constexpr bool odd = size % lanes != 0; // the last value is in no register of its own
    static_assert(size % lanes <= 1);
    static constexpr int outputs = (lb + lanes - 1) / lanes;

    // x by the lanes of a block: value f of a block by rows belongs to x[f % lb], by columns to x[f / lb]. Shuffled
    // from registers of x: with two loads a cycle, and one of them for a value, a load for each would take a third
    // longer.
    template <bool by_rows, int f, int... i>
    static Vec<T> factor(const Vec<T>* x, std::integer_sequence<int, i...>)
    {
        return pick<(by_rows ? (f + i) % lb : (f + i) / lb)...>(x);
    }

    // x, or a part of y, in registers; lanes beyond the last element repeat it.
    struct Elements {
        Vec<T> v[outputs];

        template <int w>
        static constexpr int width = std::min(lanes, lb - w * lanes);

        static Elements at(const T* p)
        {
            Elements e;
            e.v[0] = load_first<width<0>>(p);
            if constexpr (outputs == 2) e.v[1] = load_first<width<1>>(p + lanes);
            return e;
        }
        void store_at(T* p) const
        {
            store_first<width<0>>(p, v[0]);
            if constexpr (outputs == 2) store_first<width<1>>(p + lanes, v[1]);
        }
        static Elements of(const T (&x)[lb])
        {
            if constexpr (sizeof(T) == 4)
                return {{{_mm_setr_ps(x[0], x[1], x[std::min(2, lb - 1)], x[lb - 1])}}};
            else if constexpr (lb == 2)
                return {{{_mm_setr_pd(x[0], x[1])}}};
            else
                return {{{_mm_setr_pd(x[0], x[1])}, {_mm_setr_pd(x[2], x[lb - 1])}}};
        }
        friend Elements operator+(Elements a, const Elements& b)
        {
#pragma GCC unroll 2
            for (int w = 0; w < outputs; ++w) a.v[w] = a.v[w] + b.v[w];
            return a;
        }
        friend Elements operator*(T factor, Elements a)
        {
#pragma GCC unroll 2
            for (int w = 0; w < outputs; ++w) a.v[w] = broadcast(factor) * a.v[w];
            return a;
        }
    };

    // Products of all values of a block, and their sums over blocks.
    struct Products {
        Vec<T> v[registers + odd];

        template <bool by_rows, bool first, int... q>
        void take(const T* block, const Elements& x, std::integer_sequence<int, q...>)
        {
            constexpr std::make_integer_sequence<int, lanes> all;
            if constexpr (first)
                ((v[q] = load(block + q * lanes) * factor<by_rows, q * lanes>(x.v, all)), ...);
            else
                ((v[q] = v[q] + load(block + q * lanes) * factor<by_rows, q * lanes>(x.v, all)), ...);
            if constexpr (odd) {
                const Vec<T> last = first_product(block + size - 1, factor<by_rows, size - 1>(x.v, all));
                v[registers] = first ? last : add_first(v[registers], last);
            }
        }
        template <bool by_rows, bool first>
        void take(const T* block, const Elements& x)
        {
            take<by_rows, first>(block, x, std::make_integer_sequence<int, registers>());
        }

        // What goes to rows w * lanes ..; lanes beyond the last row repeat it.
        template <bool by_rows, int w, int term, int... i>
        Vec<T> terms(std::integer_sequence<int, i...>) const
        {
            constexpr auto from = [](int lane) {
                const int row = std::min(w * lanes + lane, lb - 1);
                return by_rows ? row * lb + term : term * lb + row;
            };
            return pick<from(i)...>(v);
        }
        template <bool by_rows, int w, int... term>
        Vec<T> rows(std::integer_sequence<int, term...>) const
        {
            return (terms<by_rows, w, term>(std::make_integer_sequence<int, lanes>()) + ...);
        }
        template <bool by_rows>
        Elements rows() const
        {
            constexpr std::make_integer_sequence<int, lb> all;
            Elements e;
            e.v[0] = rows<by_rows, 0>(all);
            if constexpr (outputs == 2) e.v[1] = rows<by_rows, 1>(all);
            return e;
        }
    };
};

// y = beta y + sum; y is not read for beta = 0.
template <class Elements, class T>
inline void update(T* y, T beta, const Elements& sum)
{
    (beta == T{} ? sum : beta * Elements::at(y) + sum).store_at(y);
}

// General, not transposed; far: the blocks come from memory. The task is copied because y might be a part of the
// original as far as the compiler knows: rows took a fifth longer.
template <int lb, bool by_rows, bool far, class Int, class T>
[[gnu::noinline]] void direct_small(const BlockTask<Int, T>& task, std::int64_t first, std::int64_t last)
{
    using Small = SmallBlock<lb, T>;
    const BlockTask<Int, T> t = task;
    const T* x = counted_from(t.base * lb, t.x);
    for (std::int64_t i = first; i < last; ++i) {
        typename Small::Products sum{};
        for (std::int64_t k = t.first(i), end = t.last(i); k < end; ++k) {
            if (far) fetch_block(t.val + k * lb * lb, lb * lb), fetch(t.indx + k);
            sum.template take<by_rows, false>(t.val + k * lb * lb,
                                              Small::Elements::at(x + std::int64_t{t.indx[k]} * lb));
        }
        update(t.y + i * lb, t.beta, t.alpha * sum.template rows<by_rows>());
    }
}

// y_j = y_j + B^T x
template <int lb, bool by_rows, class T>
inline void add_mirrored(const T* block, const typename SmallBlock<lb, T>::Elements& x, T* y)
{
    using Small = SmallBlock<lb, T>;
    typename Small::Products product;
    product.template take<!by_rows, true>(block, x);
    (Small::Elements::at(y) + product.template rows<!by_rows>()).store_at(y);
}

// The pairs p > q of a diagonal block that count are its values at p * down + q * right.
struct Pairs {
    std::int64_t down, right;
    Pairs(bool lower, bool by_rows, std::int64_t lb) : down(lower == by_rows ? lb : 1), right(lower == by_rows ? 1 : lb)
    {
    }
};

// What counts of a diagonal block, times x, into sum: all but the factor alpha. `mirror` is the sign of mirrored
// values.
template <int lb, class T>
inline void add_triangle(BlockRule rule, Pairs pairs, const T* block, T mirror, const T* x, T (&sum)[lb])
{
    const bool down = rule.lower ? rule.direct : rule.mirrored, up = rule.lower ? rule.mirrored : rule.direct;
    const T down_sign = rule.lower ? T(1) : mirror, up_sign = rule.lower ? mirror : T(1);
#pragma GCC unroll 4
    for (int p = 0; p < lb; ++p) {
        if (rule.read_diagonal) sum[p] += block[p * (lb + 1)] * x[p];
#pragma GCC unroll 4
        for (int q = 0; q < p; ++q) {
            const T value = block[p * pairs.down + q * pairs.right];
            if (down) sum[p] += down_sign * value * x[q];
            if (up) sum[q] += up_sign * value * x[p];
        }
    }
}

// Products of all other rules: each row's blocks in one pass.
template <int lb, bool by_rows, class Int, class T>
[[gnu::noinline]] void products_small(BlockRule rule, const BlockTask<Int, T>& task, std::int64_t first,
                                      std::int64_t last)
{
    using Small = SmallBlock<lb, T>;
    using Elements = typename Small::Elements;
    const BlockTask<Int, T> t = task;
    const bool direct = rule.direct, mirrored = rule.mirrored;
    const T mirror = rule.negate_direct != rule.negate_mirrored ? T(-1) : T(1);
    const T alpha = direct ? t.alpha : t.alpha_mirrored;
    const Pairs pairs(rule.lower, by_rows, lb);
    for (std::int64_t i = first; i < last; ++i) {
        const Columns columns = t.columns(i);
        const T* x = t.x + i * lb;
        const Elements scaled = t.alpha_mirrored * Elements::at(x);
        typename Small::Products sum{};
        T diagonal[lb];
#pragma GCC unroll 4
        for (int r = 0; r < lb; ++r) diagonal[r] = rule.unit ? x[r] : T{};
        for (std::int64_t k = t.first(i), end = t.last(i); k < end; ++k) {
            const T* block = t.val + k * lb * lb;
            const std::int64_t j = t.column(k);
            if (t.far) fetch_block(block, lb * lb), fetch(t.indx + k);
            if (columns.have(j)) {
                if (direct) sum.template take<by_rows, false>(block, Elements::at(t.x + j * lb));
                if (mirrored) add_mirrored<lb, by_rows>(block, scaled, t.y + j * lb);
            } else if (j == i) {
                add_triangle<lb>(rule, pairs, block, mirror, x, diagonal);
            }
        }
        if (rule.whole) continue;
        update(t.y + i * lb, t.beta, alpha * (sum.template rows<by_rows>() + Elements::of(diagonal)));
    }
}

// x / d by way of 1 / d, which does not wait for x; not where that leaves the range.
template <class T>
inline T quotient(T x, T d, T inverse)
{
    return inverse - inverse == T{} ? x * inverse : x / d;
}

// y = (the block's triangle, or its diagonal)^-1 y, first row first or last row first.
template <int lb, bool ascending, class T>
inline void solve_triangle(BlockRule rule, Pairs pairs, const T* block, T (&y)[lb])
{
    const bool off_diagonal = rule.direct || rule.mirrored;
    T inverse[lb];
    if (!rule.unit)
#pragma GCC unroll 4
        for (int r = 0; r < lb; ++r) inverse[r] = T(1) / block[r * (lb + 1)];
#pragma GCC unroll 4
    for (int s = 0; s < lb; ++s) {
        const int r = ascending ? s : lb - 1 - s;
        if (!rule.unit) y[r] = quotient(y[r], block[r * (lb + 1)], inverse[r]);
        if (!off_diagonal) continue;
#pragma GCC unroll 4
        for (int q = ascending ? r + 1 : 0; q < (ascending ? lb : r); ++q)
            y[q] -= block[ascending ? q * pairs.down + r * pairs.right : r * pairs.down + q * pairs.right] * y[r];
    }
}

template <int lb, bool by_rows, class Int, class T>
[[gnu::noinline]] void solve_small(BlockRule rule, const BlockTask<Int, T>& task, std::int64_t rows)
{
    using Small = SmallBlock<lb, T>;
    using Elements = typename Small::Elements;
    const BlockTask<Int, T> t = task;
    const bool direct = rule.direct, mirrored = rule.mirrored, forward = is_forward(rule);
    const Pairs pairs(rule.lower, by_rows, lb);
    for (std::int64_t s = 0; s < rows; ++s) {
        const std::int64_t i = forward ? s : rows - 1 - s, begin = t.first(i), end = t.last(i);
        const Columns columns = t.columns(i);
        const T* block = nullptr;
        typename Small::Products sum{};
        for (std::int64_t k = begin; k < end; ++k) {
            const std::int64_t j = t.column(k);
            if (t.far) fetch_block(t.val + k * lb * lb, lb * lb), fetch(t.indx + k);
            if (j == i)
                block = t.val + k * lb * lb;
            else if (direct && columns.have(j))
                sum.template take<by_rows, false>(t.val + k * lb * lb, Elements::at(t.y + j * lb));
        }
        T y[lb];
        (T(-1) * sum.template rows<by_rows>() + Elements::at(t.y + i * lb)).store_at(y);
        if (block != nullptr) {
            if (forward)
                solve_triangle<lb, true>(rule, pairs, block, y);
            else
                solve_triangle<lb, false>(rule, pairs, block, y);
        }
        const Elements solved = Elements::of(y);
        solved.store_at(t.y + i * lb);
        if (!mirrored) continue;
        const Elements negated = T(-1) * solved;
        for (std::int64_t k = begin; k < end; ++k)
            if (const std::int64_t j = t.column(k); columns.have(j))
                add_mirrored<lb, by_rows>(t.val + k * lb * lb, negated, t.y + j * lb);
    }
}

} // namespace ork::spblas::bsr

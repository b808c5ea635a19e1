// SPDX-License-Identifier: MIT
// A matrix to solve with, in every form that the kernels take, and solves in wider numbers.
#pragma once

#include <algorithm>
#include <limits>
#include <numeric>
#include <vector>

#include "sparse/kernel.h"
#include "support/guarded.h"
#include "support/random.h"

namespace ork::test {

using Index = std::int64_t;
using W = std::complex<long double>;

template <class T>
W wide(T x)
{
    return {static_cast<long double>(std::real(x)), static_cast<long double>(std::imag(x))};
}
template <class T>
T number(double re, double im)
{
    if constexpr (is_complex<T>)
        return {static_cast<Real<T>>(re), static_cast<Real<T>>(im)};
    else
        return static_cast<T>(re);
}
template <class T>
const T nan_of = number<T>(std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::quiet_NaN());

template <class T>
Guarded<T> random_vector(Index n, Random& random)
{
    Guarded<T> v(n);
    for (T& x : v.span()) x = random.uniform<T>();
    return v;
}

// All numbers here are of about size 1, and solutions well conditioned.
template <class T>
void expect_near(const Guarded<T>& got, const std::vector<W>& want, Index first = 0, Index last = -1)
{
    for (Index i = first; i < (last < 0 ? got.size() : last); ++i) {
        const W w = want[static_cast<std::size_t>(i)];
        EXPECT_TRUE(std::abs(wide(got[i]) - w) <= 300 * std::numeric_limits<Real<T>>::epsilon() * (1 + std::abs(w)))
            << "at " << i << ": " << got[i] << " instead of " << w;
    }
    EXPECT_TRUE(got.unchanged_outside());
}

template <class T>
std::vector<W> widened(const Guarded<T>& v)
{
    std::vector<W> result;
    for (const T& x : v.span()) result.push_back(wide(x));
    return result;
}

// n rows of numbers, element (i, j) at i n + j.
struct Square {
    Index n;
    std::vector<W> a;
    explicit Square(Index n) : n(n), a(static_cast<std::size_t>(n * n)) {}
    W& operator()(Index i, Index j) { return a[static_cast<std::size_t>(i * n + j)]; }
    const W& operator()(Index i, Index j) const { return a[static_cast<std::size_t>(i * n + j)]; }

    // Keeps element (i, j) if keep(i - j); diagonal: ones instead of it.
    template <class Keep>
    Square part(Keep keep, bool unit = false) const
    {
        Square p(n);
        for (Index i = 0; i < n; ++i)
            for (Index j = 0; j < n; ++j) p(i, j) = unit && i == j ? W(1) : keep(i - j) ? (*this)(i, j) : W(0);
        return p;
    }
    std::vector<W> times(const std::vector<W>& x) const
    {
        std::vector<W> y(x.size());
        for (Index i = 0; i < n; ++i)
            for (Index j = 0; j < n; ++j)
                y[static_cast<std::size_t>(i)] += (*this)(i, j) * x[static_cast<std::size_t>(j)];
        return y;
    }
    // Of a triangle in blocks of `block` rows or of 1, alpha this^-1 b.
    std::vector<W> solved(W alpha, std::vector<W> b, bool upper) const
    {
        for (Index s = 0; s < n; ++s) {
            const Index i = upper ? n - 1 - s : s;
            W sum = alpha * b[static_cast<std::size_t>(i)];
            for (Index j = upper ? i + 1 : 0; j < (upper ? n : i); ++j)
                sum -= (*this)(i, j) * b[static_cast<std::size_t>(j)];
            b[static_cast<std::size_t>(i)] = sum / (*this)(i, i);
        }
        return b;
    }
};
inline const auto is_lower = [](Index d) { return d >= 0; };
inline const auto is_upper = [](Index d) { return d <= 0; };
inline const auto is_diagonal = [](Index d) { return d == 0; };

// Four arrays with gaps: rows in any order, the diagonal in two pieces (blocks: one, and of a block with any numbers).
template <class Int, class T>
struct SolveCase {
    Index n, block;
    Int base;
    int layout;
    Square dense; // of numbers
    std::vector<T> vals;
    std::vector<Int> index, first, last;

    SolveCase(Index rows, Int base, Random& random, Index block = 1, int layout = 0)
        : n(rows), block(block), base(base), layout(layout), dense(rows * block)
    {
        for (Index i = 0; i < n; ++i) {
            std::vector<Index> columns = {i};
            if (block == 1) columns.push_back(i);
            for (Index k = random.integer(0, 6); k > 0; --k)
                if (const Index j = random.integer(0, n - 1); j != i) columns.push_back(j);
            for (Index& j : columns)
                std::swap(j, columns[static_cast<std::size_t>(random.integer(0, std::ssize(columns) - 1))]);
            first.push_back(static_cast<Int>(index.size()) + base);
            for (const Index j : columns) append(i, j, random);
            last.push_back(static_cast<Int>(index.size()) + base);
            index.push_back(-99), vals.insert(vals.end(), static_cast<std::size_t>(block * block), nan_of<T>);
        }
    }
    ork::sparse::BlockRows<Int, T> blocks() const
    {
        return {base, block, layout, vals.data(), index.data(), first.data(), last.data()};
    }
    Index size() const { return n * block; }

private:
    void append(Index i, Index j, Random& random)
    {
        index.push_back(static_cast<Int>(j) + base);
        const std::size_t at = vals.size();
        vals.resize(at + static_cast<std::size_t>(block * block));
        for (Index r = 0; r < block; ++r)
            for (Index c = 0; c < block; ++c) {
                T value = random.uniform<T>() / T(static_cast<Real<T>>(4 * block));
                if (i == j && r == c) value = number<T>(random.integer(1, 3), random.integer(-2, 2));
                vals[at + static_cast<std::size_t>(layout == 0 ? r * block + c : c * block + r)] = value;
                dense(i * block + r, j * block + c) += wide(value);
            }
    }
};

// The packed form of a case: rows by levels of its structure and the transposed one.
template <class Int, class T>
struct PackedCase {
    Index height;
    std::vector<Int> order;
    std::vector<Index> lane_of; // of each row
    std::vector<std::vector<T>> vals = std::vector<std::vector<T>>(2);
    std::vector<std::vector<Int>> cols = std::vector<std::vector<Int>>(2), begin = std::vector<std::vector<Int>>(2);
    std::vector<T> diagonal, inverse;
    std::vector<Guarded<T>> guarded_vals;
    std::vector<Guarded<Int>> guarded_cols;

    PackedCase(const SolveCase<Int, T>& a, Index height, Int base = 0) : height(height)
    {
        const Index n = a.n;
        std::vector<Index> level(static_cast<std::size_t>(n)), rows(static_cast<std::size_t>(n));
        const auto tied = [&](Index i, Index j) { return a.dense(i, j) != W(0) || a.dense(j, i) != W(0); };
        for (Index i = 0; i < n; ++i)
            for (Index j = 0; j < i; ++j)
                if (tied(i, j))
                    level[static_cast<std::size_t>(i)] =
                        std::max(level[static_cast<std::size_t>(i)], level[static_cast<std::size_t>(j)] + 1);
        std::iota(rows.begin(), rows.end(), 0);
        std::ranges::stable_sort(rows, {}, [&](Index i) { return level[static_cast<std::size_t>(i)]; });
        for (std::size_t p = 0; p < rows.size();) {
            const std::size_t start = p;
            for (Index l = 0; l < height; ++l) {
                const bool more = p < rows.size() && level[static_cast<std::size_t>(rows[p])] ==
                                                         level[static_cast<std::size_t>(rows[start])];
                order.push_back(static_cast<Int>(rows[more ? p++ : start]));
            }
        }
        for (const Int i : order) {
            const W d = a.dense(i, i);
            diagonal.push_back(number<T>(static_cast<double>(d.real()), static_cast<double>(d.imag())));
            const W q = W(1) / d;
            inverse.push_back(number<T>(static_cast<double>(q.real()), static_cast<double>(q.imag())));
        }
        for (const bool upper : {false, true}) {
            auto& b = begin[upper];
            for (Index s = 0; s < slices(); ++s) {
                b.push_back(static_cast<Int>(cols[upper].size()));
                std::vector<std::vector<Index>> row(static_cast<std::size_t>(height));
                std::size_t width = 0;
                Index any = 0;
                for (Index l = 0; l < height; ++l) {
                    const Index i = order[static_cast<std::size_t>(s * height + l)];
                    for (Index j = upper ? i + 1 : 0; j < (upper ? n : i); ++j)
                        if (a.dense(i, j) != W(0)) row[static_cast<std::size_t>(l)].push_back(any = j);
                    width = std::max(width, row[static_cast<std::size_t>(l)].size());
                }
                for (std::size_t g = 0; g < width; ++g)
                    for (Index l = 0; l < height; ++l) {
                        const auto& mine = row[static_cast<std::size_t>(l)];
                        const Index i = order[static_cast<std::size_t>(s * height + l)];
                        const W v = g < mine.size() ? a.dense(i, mine[g]) : W(0);
                        vals[upper].push_back(number<T>(static_cast<double>(v.real()), static_cast<double>(v.imag())));
                        cols[upper].push_back(static_cast<Int>(g < mine.size() ? mine[g]
                                                               : mine.empty()  ? any
                                                                               : mine[0]) +
                                              base);
                    }
            }
            b.push_back(static_cast<Int>(cols[upper].size()));
            guarded_vals.emplace_back(vals[upper]), guarded_cols.emplace_back(cols[upper]);
        }
    }
    Index slices() const { return std::ssize(order) / height; }
    ork::sparse::Packed<Int, T> get(bool far = false) const
    {
        const auto triangle = [&](std::size_t t) {
            return ork::sparse::PackedTriangle<Int, T>{guarded_vals[t].data(), guarded_cols[t].data(), begin[t].data()};
        };
        return {slices(), height, far, order.data(), diagonal.data(), inverse.data(), triangle(0), triangle(1)};
    }
};

} // namespace ork::test

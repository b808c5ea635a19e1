// SPDX-License-Identifier: MIT
// Tridiagonal systems -1, d, -1 side by side. Elimination downwards,
//
//     w(j) = 1 / (d - w(j - 1)),  y(j) = (g(j) + y(j - 1)) w(j),        then upwards  v(j) = y(j) + w(j) v(j + 1).
//
// For d >= 2 rounding keeps the map w -> 1 / (d - w) monotone, so w(j) is monotone in j and stands still exactly after
// a number of rows, about 18 / sqrt(d - 2) in double precision: from there on nothing is divided and no factor is kept.
//
// Cyclic systems: with t = v(order - 1), the rest solves the system without its last row, of order m = order - 1, with
// t added to g(0) and g(m - 1). In the elimination that adds t p(j) to y(j), where p(j) = w(0) ... w(j), and t w(m - 1)
// more to y(m - 1). The last equation then reads
//     (d - 2 (1 + p(m - 2)) w(m - 1)) t = g(order - 1) + v'(0) + v'(m - 1),
// v' the solution for t = 0: v'(m - 1) = y(m - 1), v'(0) = sum of p(j - 1) y(j). So t is known before the way up.
#include "ork/abi/pde_tridiagonal.h"

#include <cstring>

#include "frame/export.h"
#include "pde/held_by_q.h"
#include "simd/fetch.h"
#include "simd/vec.h"

namespace ork::pde {
namespace {

enum Ends : Int { dd = 0, dn = 1, nd = 2, nn = 3, pp = 6 };

// Products below this are zero: they would run through the denormal numbers otherwise.
template <class R>
constexpr R smallest = sizeof(R) == 8 ? R(1e-280) : R(1e-30);

inline Vec<double> above(Vec<double> a, Vec<double> least) { return {_mm_and_pd(a.v, _mm_cmpgt_pd(a.v, least.v))}; }
inline Vec<float> above(Vec<float> a, Vec<float> least) { return {_mm_and_ps(a.v, _mm_cmpgt_ps(a.v, least.v))}; }
inline bool any_differs(Vec<double> a, Vec<double> b) { return _mm_movemask_pd(_mm_cmpneq_pd(a.v, b.v)) != 0; }
inline bool any_differs(Vec<float> a, Vec<float> b) { return _mm_movemask_ps(_mm_cmpneq_ps(a.v, b.v)) != 0; }

// `vectors` registers of systems.
template <int vectors, class R>
class Block {
    using V = Vec<R>;
    static constexpr int lanes = V::lanes, numbers = vectors * lanes;
    static constexpr int rows_ahead = 8;

public:
    Block(Int order, Int ends, const R* table, R shift, R* g, Int stride, R* work)
        : order_(order), ends_(ends), g_(g), stride_(stride), factors_(work), products_(work + (order + 1) * numbers)
    {
        for (int v = 0; v < vectors; ++v) d_[v] = get(table, v) + broadcast(shift);
    }

    void solve() { ends_ == pp ? cyclic() : open(); }

private:
    // The rows lie far apart, often a page each, so the hardware doesn't see them coming.
    void fetch_ahead(Int j) const
    {
        if (j + rows_ahead < order_)
            for (int k = 0; k < numbers; k += line<R>) fetch_at(g_ + (j + rows_ahead) * stride_ + k, 0);
    }
    V* factor(Int j) { return reinterpret_cast<V*>(factors_ + j * numbers); }
    V* product(Int j) { return reinterpret_cast<V*>(products_ + j * numbers); }
    static V get(const R* row, int v) { return load(row + v * lanes); }
    static void put(R* row, int v, V a) { store(row + v * lanes, a); }

    // Row 0, whose neighbour counts twice when `twice`. Factors of row j are those of row min(j, last_).
    void first_row(bool twice)
    {
        const V one = broadcast(R{1});
        for (int v = 0; v < vectors; ++v) {
            const V w = one / d_[v];
            put(g_, v, get(g_, v) * w);
            factor(0)[v] = twice ? w + w : w;
        }
        last_ = 0;
    }

    // Rows 1 .. end - 1.
    void down(Int end)
    {
        const V one = broadcast(R{1});
        Int j = 1;
        for (bool moving = true; moving && j < end; ++j) {
            R *row = g_ + j * stride_, *before = row - stride_;
            fetch_ahead(j);
            moving = false;
            for (int v = 0; v < vectors; ++v) {
                const V old = factor(j - 1)[v], w = one / (d_[v] - old);
                moving |= any_differs(w, old);
                factor(j)[v] = w;
                put(row, v, (get(row, v) + get(before, v)) * w);
            }
            last_ = j;
        }
        const V* const w = factor(last_);
        for (; j < end; ++j) {
            R *row = g_ + j * stride_, *before = row - stride_;
            fetch_ahead(j);
#pragma GCC unroll 16
            for (int v = 0; v < vectors; ++v) put(row, v, (get(row, v) + get(before, v)) * w[v]);
        }
    }

    // Rows from end - 2 to 0; row end - 1 is solved.
    void up(Int end)
    {
        Int j = end - 2;
        const V* const w = factor(last_);
        for (; j >= last_; --j) back(j, w);
        for (; j >= 0; --j) back(j, factor(j));
    }
    void back(Int j, const V* w)
    {
        R *row = g_ + j * stride_, *behind = row + stride_;
#pragma GCC unroll 16
        for (int v = 0; v < vectors; ++v) put(row, v, get(row, v) + w[v] * get(behind, v));
    }

    void open()
    {
        const bool neumann_below = ends_ == nd || ends_ == nn, neumann_above = ends_ == dn || ends_ == nn;
        first_row(neumann_below);
        if (order_ == 1) return;
        down(neumann_above ? order_ - 1 : order_);
        if (neumann_above) {
            R *row = g_ + (order_ - 1) * stride_, *before = row - stride_;
            const V* const w = factor(last_);
            for (int v = 0; v < vectors; ++v) {
                const V y = get(before, v);
                put(row, v, (get(row, v) + (y + y)) / (d_[v] - (w[v] + w[v])));
            }
        }
        up(order_);
    }

    void cyclic()
    {
        const Int m = order_ - 1; // at least 2
        first_row(false);
        down(m);
        // The products, and v'(0).
        V sum[vectors], p[vectors];
        for (int v = 0; v < vectors; ++v) sum[v] = get(g_, v), p[v] = product(0)[v] = factor(0)[v];
        Int count = 1; // rows whose products are kept; 0 from there on
        const V least = broadcast(smallest<R>), zero = broadcast(R{});
        for (bool left = true; left && count < m; ++count) {
            const V* const w = factor(count < last_ ? count : last_);
            left = false;
            for (int v = 0; v < vectors; ++v) {
                sum[v] = sum[v] + p[v] * get(g_ + count * stride_, v);
                // p(m - 2) is in p before the last factor: the last row's is never used alone.
                if (count < m - 1) p[v] = above(p[v] * w[v], least);
                product(count)[v] = p[v];
                left |= any_differs(p[v], zero);
            }
        }
        R *last = g_ + m * stride_, *before = last - stride_;
        const V one = broadcast(R{1});
        const V* const w = factor(last_);
        V t[vectors];
        for (int v = 0; v < vectors; ++v) {
            const V z = (one + p[v]) * w[v];
            t[v] = (get(last, v) + (sum[v] + get(before, v))) / (d_[v] - (z + z));
            put(last, v, t[v]);
            put(before, v, get(before, v) + t[v] * z);
        }
        for (Int j = m - 2; j >= 0; --j) {
            R *row = g_ + j * stride_, *behind = row + stride_;
            const V* const w = factor(j < last_ ? j : last_);
            if (j < count) {
                const V* const p = product(j);
                for (int v = 0; v < vectors; ++v) put(row, v, (get(row, v) + t[v] * p[v]) + w[v] * get(behind, v));
            } else {
#pragma GCC unroll 16
                for (int v = 0; v < vectors; ++v) put(row, v, get(row, v) + w[v] * get(behind, v));
            }
        }
    }

    Int order_, ends_;
    R* g_;
    Int stride_;
    R *factors_, *products_;
    V d_[vectors];
    Int last_ = 0;
};

// The constant mode, d = 2 + held, and cyclic at least 3 unknowns. Neumann ends are rows of half the weight.
template <class R>
void solve_held(Int order, bool cyclic, R held, R* g, Int stride, R* work)
{
    const auto weight = [&](Int j) { return cyclic || (j > 0 && j < order - 1) ? 1.0 : 0.5; };
    solve_held_by_q(
        order, cyclic, [](Int) { return 1.0; }, weight, held, g, stride, reinterpret_cast<double*>(work));
}

// The constant mode, d = 2: the factors are 1, and the last unknown, which is free, is 0 at first.
template <class R>
void solve_constant(Int order, bool cyclic, R* g, Int stride)
{
    const auto weight = [&](Int j) { return cyclic || (j > 0 && j < order - 1) ? 1.0 : 0.5; };
    const auto lose_mean = [&] {
        double sum = 0;
        for (Int j = 0; j < order; ++j) sum += weight(j) * static_cast<double>(g[j * stride]);
        const double mean = sum / static_cast<double>(cyclic ? order : order - 1);
        for (Int j = 0; j < order; ++j) g[j * stride] = static_cast<R>(static_cast<double>(g[j * stride]) - mean);
    };
    lose_mean();
    if (cyclic) {
        // With v(order - 1) = 0: w(j) = (j + 1) / (j + 2).
        double y = 0;
        for (Int j = 0; j < order - 1; ++j) {
            const double w = static_cast<double>(j + 1) / static_cast<double>(j + 2);
            g[j * stride] = static_cast<R>(y = (static_cast<double>(g[j * stride]) + y) * w);
        }
        double v = 0;
        g[(order - 1) * stride] = 0;
        for (Int j = order - 2; j >= 0; --j) {
            const double w = static_cast<double>(j + 1) / static_cast<double>(j + 2);
            g[j * stride] = static_cast<R>(v = static_cast<double>(g[j * stride]) + w * v);
        }
    } else {
        double y = 0;
        for (Int j = 0; j < order - 1; ++j)
            g[j * stride] = static_cast<R>(y += weight(j) * static_cast<double>(g[j * stride]));
        double v = 0;
        g[(order - 1) * stride] = 0;
        for (Int j = order - 2; j >= 0; --j) g[j * stride] = static_cast<R>(v += static_cast<double>(g[j * stride]));
    }
    lose_mean();
}

// Less systems than a block holds: in a copy that the last of them fills up.
template <int vectors, class R>
void solve_few(Int systems, Int order, Int ends, const R* table, R shift, R* g, Int stride, R* work)
{
    constexpr Int numbers = vectors * Vec<R>::lanes;
    R* const copy = work + tridiagonal_work<R>(order) / 3 * 2;
    const auto bytes = static_cast<std::size_t>(systems) * sizeof(R);
    const auto fill = [&](R* row, const R* from) {
        std::memcpy(row, from, bytes);
        for (Int k = systems; k < numbers; ++k) row[k] = from[systems - 1];
    };
    R diagonal[numbers];
    fill(diagonal, table);
    for (Int j = 0; j < order; ++j) fill(copy + j * numbers, g + j * stride);
    Block<vectors, R>(order, ends, diagonal, shift, copy, numbers, work).solve();
    for (Int j = 0; j < order; ++j) std::memcpy(g + j * stride, copy + j * numbers, bytes);
}

template <class R>
void solve_systems(Int systems, Int order, Int ends, const R* constants, const R* table, R shift, R* g, Int stride,
                   R* work)
{
    if (systems < 1 || order < 1) return;
    const auto none = reinterpret_cast<std::uintptr_t>(work) % 16 / sizeof(R);
    work += none == 0 ? 0 : 16 / sizeof(R) - none;
    if (ends == pp && order == 1) { // (d - 2) v = g
        for (Int k = 0; k < systems; ++k) {
            const R d = constants != nullptr && k == 0 ? *constants : table[k] + shift - R{2};
            g[k] = constants != nullptr && k == 0 && d == 0 ? R{0} : g[k] / d;
        }
        return;
    }
    if (ends == pp && order == 2) ends = nn;
    Int k = 0;
    if (constants != nullptr) {
        if (*constants == 0)
            solve_constant(order, ends == pp, g, stride);
        else
            solve_held(order, ends == pp, *constants, g, stride, work);
        k = 1;
    }
    constexpr int lanes = Vec<R>::lanes, whole = tridiagonal_block / 16;
    for (; k + whole * lanes <= systems; k += whole * lanes)
        Block<whole, R>(order, ends, table + k, shift, g + k, stride, work).solve();
    const Int left = systems - k;
    if (left > 8 * lanes)
        solve_few<whole>(left, order, ends, table + k, shift, g + k, stride, work);
    else if (left > 2 * lanes)
        solve_few<8>(left, order, ends, table + k, shift, g + k, stride, work);
    else if (left > 0)
        solve_few<2>(left, order, ends, table + k, shift, g + k, stride, work);
}

} // namespace

#define TRIDIAGONAL(p, R)                                                                                              \
    ORK_EXPORT void ork_pdepl_nx2_##p##_tridiagonal(const Int* systems, const Int* order, const Int* ends,             \
                                                    const R* constants, const R* table, const R* shift, R* g,          \
                                                    const Int* stride, R* work)                                        \
    {                                                                                                                  \
        solve_systems(*systems, *order, *ends, constants, table, *shift, g, *stride, work);                            \
    }
TRIDIAGONAL(s, float)
TRIDIAGONAL(d, double)
#undef TRIDIAGONAL

} // namespace ork::pde

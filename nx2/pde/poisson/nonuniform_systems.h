// SPDX-License-Identifier: MIT
// Tridiagonal systems side by side whose coefficients vary along the line: system k has
//
//     -off[j] x(j - 1, k) + (base[j] + weight[j] lambda[k]) x(j, k) - off[j + 1] x(j + 1, k) = scale[j] f(j, k)
//
// for 0 <= j < order. By elimination without exchange of rows, a register of systems at a time: matrices of
// -div(a grad) + q with q >= 0 are diagonally dominant.
#pragma once

#include <cstdint>

#include "simd/vec.h"

namespace ork::pde {

using Int = std::int64_t;

// What becomes of x(-1, k) and x(order, k).
enum class Ends {
    known,   // off[0] and off[order] count, and are 0 where there is nothing: rows beside the unknown ones hold values
    periodic // x(-1) is x(order - 1); order >= 2
};

template <class R>
struct Line {
    Int order;
    Ends ends;
    const R *off, *base, *weight, *scale; // off: order + 1 numbers, of which the outer two are equal when periodic
};

inline constexpr int systems_at_once = 4; // registers, whose chains of divisions overlap

// Numbers of R that solve_systems takes as work for lines of this order.
template <class R>
inline Int systems_work(Int order)
{
    return 2 * order * systems_at_once * Vec<R>::lanes;
}

// The systems of `vectors` registers of `width` lanes. f(j, k) stands at f[j stride + k] and gives way to x(j, k).
template <int vectors, int width, class R>
inline void solve_block(const Line<R>& line, const R* lambda, R* f, Int stride, R* work)
{
    using V = Vec<R>;
    constexpr int lanes = V::lanes, block = vectors * lanes;
    // Periodic: x = y + x(order - 1) g, where y and g solve the system without its last row and column, g for the
    // column that is left out.
    const bool periodic = line.ends == Ends::periodic;
    const Int n = periodic ? line.order - 1 : line.order;
    R *const ratio = work, *const column = work + line.order * block;
    const auto at = [](int v) { return v * lanes; };
    V l[vectors], above[vectors], c[vectors], g[vectors];
    for (int v = 0; v < vectors; ++v) {
        l[v] = load<width>(lambda + at(v));
        // A known row without influence is not read: it may hold anything.
        above[v] = !periodic && line.off[0] != 0 ? load<width>(f - stride + at(v)) : broadcast(R{});
        c[v] = broadcast(R{});
        g[v] = broadcast(R{periodic ? R{1} : R{}});
    }
    for (Int j = 0; j < n; ++j) {
        R* row = f + j * stride;
        const V off = broadcast(line.off[j]), next = broadcast(line.off[j + 1]), base = broadcast(line.base[j]),
                weight = broadcast(line.weight[j]), scale = broadcast(line.scale[j]), one = broadcast(R{1});
        const bool known_below = !periodic && j == n - 1 && line.off[n] != 0;
        for (int v = 0; v < vectors; ++v) {
            const V pivot = one / (base + weight * l[v] - off * c[v]);
            V right = scale * load<width>(row + at(v)) + off * above[v];
            if (known_below) right = right + next * load<width>(row + stride + at(v));
            above[v] = right * pivot;
            c[v] = next * pivot;
            store<width>(row + at(v), above[v]);
            store(ratio + j * block + at(v), c[v]);
            if (periodic) {
                g[v] = off * g[v];
                if (j == n - 1) g[v] = g[v] + next;
                g[v] = g[v] * pivot;
                store(column + j * block + at(v), g[v]);
            }
        }
    }
    V x[vectors];
    for (int v = 0; v < vectors; ++v) x[v] = n > 0 ? load<width>(f + (n - 1) * stride + at(v)) : broadcast(R{});
    for (Int j = n - 2; j >= 0; --j) {
        R* row = f + j * stride;
        for (int v = 0; v < vectors; ++v) {
            const V factor = load(ratio + j * block + at(v));
            x[v] = load<width>(row + at(v)) + factor * x[v];
            store<width>(row + at(v), x[v]);
            if (periodic) {
                g[v] = load(column + j * block + at(v)) + factor * g[v];
                store(column + j * block + at(v), g[v]);
            }
        }
    }
    if (!periodic) return;
    R* row = f + n * stride;
    for (int v = 0; v < vectors; ++v) {
        const V last = broadcast(line.off[n]), first = broadcast(line.off[n + 1]);
        const V right = broadcast(line.scale[n]) * load<width>(row + at(v)) + last * load<width>(row - stride + at(v)) +
                        first * load<width>(f + at(v));
        const V pivot = broadcast(line.base[n]) + broadcast(line.weight[n]) * l[v] -
                        last * load(column + (n - 1) * block + at(v)) - first * load(column + at(v));
        x[v] = right / pivot;
        store<width>(row + at(v), x[v]);
    }
    for (Int j = 0; j < n; ++j)
        for (int v = 0; v < vectors; ++v) {
            R* p = f + j * stride + at(v);
            store<width>(p, load<width>(p) + load(column + j * block + at(v)) * x[v]);
        }
}

template <class R>
inline void solve_systems(const Line<R>& line, Int count, const R* lambda, R* f, Int stride, R* work)
{
    constexpr int lanes = Vec<R>::lanes, block = systems_at_once * lanes;
    Int k = 0;
    for (; k + block <= count; k += block) solve_block<systems_at_once, lanes>(line, lambda + k, f + k, stride, work);
    for (; k + lanes <= count; k += lanes) solve_block<1, lanes>(line, lambda + k, f + k, stride, work);
    for (; k < count; ++k) solve_block<1, 1>(line, lambda + k, f + k, stride, work);
}

// The one system with base = weight = lambda = 0, whose matrix has the constants as its null space. The part of the
// right-hand side that no solution can have, the mean by the scales, is dropped; of the solutions the one with that
// mean zero is taken. f(j) stands at f[j stride]. The matrix is a divergence of fluxes off[j + 1] (x(j) - x(j + 1)),
// so sums of the right-hand side are the fluxes, and no pivot vanishes by cancellation.
template <class R>
inline void solve_singular(const Line<R>& line, R* f, Int stride)
{
    using Wide = long double;
    const Int n = line.order;
    const bool periodic = line.ends == Ends::periodic;
    Wide total = 0, weights = 0;
    for (Int j = 0; j < n; ++j) total += Wide{line.scale[j]} * f[j * stride], weights += line.scale[j];
    const Wide dropped = total / weights;
    const auto right = [&](Int j) { return line.scale[j] * (f[j * stride] - dropped); };

    Wide flux = 0; // into row 0, from row n - 1: the drop around the circle is zero
    if (periodic) {
        Wide sum = 0, drops = 0, resistance = 0;
        for (Int j = 0; j < n; ++j) {
            sum += right(j);
            drops += sum / line.off[j + 1], resistance += 1 / Wide{line.off[j + 1]};
        }
        flux = -drops / resistance;
    }
    Wide x = 0, mean = 0;
    for (Int j = 0; j < n; ++j) {
        flux += right(j);
        mean += line.scale[j] * x;
        f[j * stride] = static_cast<R>(x);
        if (j + 1 < n) x -= flux / line.off[j + 1];
    }
    for (Int j = 0; j < n; ++j) f[j * stride] = static_cast<R>(f[j * stride] - mean / weights);
}

} // namespace ork::pde

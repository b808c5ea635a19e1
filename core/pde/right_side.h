// SPDX-License-Identifier: MIT
// The right-hand side of the discrete system from f and the values on the boundary.
#pragma once

#include "pde/grid.h"

namespace ork::pde {

// Registers by hand: GCC 12 vectorizes no such loop at -O2.
template <class R>
struct Register {
    typedef R type __attribute__((vector_size(16), aligned(sizeof(R)), may_alias));
    static constexpr Int lanes = 16 / sizeof(R);
};

template <class R>
void multiply(R* f, Int count, R factor)
{
    using V = Register<R>;
    Int i = 0;
    for (; i + 4 * V::lanes <= count; i += 4 * V::lanes) {
        auto* const v = reinterpret_cast<typename V::type*>(f + i);
        v[0] *= factor, v[1] *= factor, v[2] *= factor, v[3] *= factor;
    }
    for (; i < count; ++i) f[i] *= factor;
}

// factor times f and the boundary's part, at the unknown points of row j of plane k:
//     + u / h^2 beside a Dirichlet side (2 u / h^2 when the point lies on a Neumann side itself),
//     + 2 bd / h on a Neumann side.
template <class R>
class RightSide {
public:
    RightSide(const Grid<R>& grid, R factor) : grid_(grid), factor_(factor)
    {
        for (int i = 0; i <= grid.last_direction(); ++i) {
            const R h = grid.step(i);
            const bool across = grid.n[i] == 1 && grid.side[i][0] != grid.side[i][1];
            value_[i] = factor * (across ? 2 : 1) / (h * h);
            slope_[i] = factor * 2 / h;
        }
    }

    void prepare_row(Int j, Int k) const
    {
        const Grid<R>& g = grid_;
        const Work<R>& w = g.work;
        const Int nx = g.n[0], ny = g.n[1], nz = g.n[2], from = g.inside[0].first, count = g.inside[0].size();
        R* const row = w.f + k * g.plane + j * g.row;
        R* const f = row + from;
        multiply(f, count, factor_);
        if (g.side[0][0] == dirichlet) row[1] += value_[0] * row[0];
        if (g.side[0][0] == neumann) row[0] += slope_[0] * w.bd_ax[j + k * (ny + 1)];
        if (g.side[0][1] == dirichlet) row[nx - 1] += value_[0] * row[nx];
        if (g.side[0][1] == neumann) row[nx] += slope_[0] * w.bd_bx[j + k * (ny + 1)];
        const auto add = [&](R factor, const R* values) {
            for (Int i = 0; i < count; ++i) f[i] += factor * values[i];
        };
        across(1, j, ny, value_[1], slope_[1], f, g.row, w.bd_ay, w.bd_by, k * g.row + from, add);
        if (!g.flat) across(2, k, nz, value_[2], slope_[2], f, g.plane, w.bd_az, w.bd_bz, j * g.row + from, add);
    }

private:
    template <class Add>
    void across(int direction, Int place, Int n, R value, R slope, const R* f, Int stride, const R* bd_a, const R* bd_b,
                Int at, Add&& add) const
    {
        const Side a = grid_.side[direction][0], b = grid_.side[direction][1];
        if (a == dirichlet && place == 1) add(value, f - stride);
        if (a == neumann && place == 0) add(slope, bd_a + at);
        if (b == dirichlet && place == n - 1) add(value, f + stride);
        if (b == neumann && place == n) add(slope, bd_b + at);
    }

    const Grid<R>& grid_;
    R factor_, value_[3], slope_[3];
};

} // namespace ork::pde

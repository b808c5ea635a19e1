// SPDX-License-Identifier: MIT
// A problem in a box whose nodes along z are given, and its difference equations.
#pragma once

#include <cmath>
#include <string>
#include <utility>

#include "ork/abi/pde_sphere.h"
#include "solver.h"

extern "C" ork::pde::NonuniformCalls::init ork_pdepl_nx2_s_init_helmholtz_nonuniform_3d;
extern "C" ork::pde::NonuniformCalls::commit ork_pdepl_nx2_s_commit_helmholtz_nonuniform_3d;
extern "C" ork::pde::NonuniformCalls::solve ork_pdepl_nx2_s_helmholtz_nonuniform_3d;
extern "C" ork::pde::PoissonCalls<float>::free_helmholtz_3d ork_pdepl_nx2_free_helmholtz_3d;

namespace ork::test {

struct NodesBox : SolverOf<float> {
    Int n[3];
    std::string letters; // of the sides
    float length[2] = {1, 1.5F}, q;
    std::vector<float> z;
    ork_dft_descriptor *x = nullptr, *y = nullptr;

    NodesBox(Int nx, Int ny, Int nz, std::string sides, float shift, Guard guard = Guard::end)
        : SolverOf<float>((nx + 1) * (ny + 1) * (nz + 1), pde::nonuniform_reals(nx, ny, nz), guard), n{nx, ny, nz},
          letters(std::move(sides)), q(shift)
    {
        for (Int k = 0; k <= nz; ++k) z.push_back(graded(static_cast<double>(k) / static_cast<double>(nz)));
        for (int s = 0; s < 6; ++s) {
            bd.emplace_back(f.size() / (n[s / 2] + 1), guard);
            std::fill(bd.back().begin(), bd.back().end(), 0.F);
        }
    }
    ~NodesBox() override { free(); }

    static float graded(double t) { return static_cast<float>(t + 0.3 * t * t); }

    Int init() override
    {
        const float zero = 0;
        ork_pdepl_nx2_s_init_helmholtz_nonuniform_3d(&zero, &length[0], &zero, &length[1], &n[0], &n[1], &n[2],
                                                     letters.c_str(), &q, ipar.data(), fpar.data(), &stat);
        return agreed();
    }
    Int commit() override
    {
        ork_pdepl_nx2_s_commit_helmholtz_nonuniform_3d(f.data(), z.data(), &x, &y, ipar.data(), fpar.data(), &stat);
        return agreed();
    }
    Int solve() override
    {
        return with_read_only_sides([&] {
            ork_pdepl_nx2_s_helmholtz_nonuniform_3d(f.data(), bd[0].data(), bd[1].data(), bd[2].data(), bd[3].data(),
                                                    bd[4].data(), bd[5].data(), &x, &y, ipar.data(), fpar.data(),
                                                    &stat);
        });
    }
    Int free() override
    {
        ork_pdepl_nx2_free_helmholtz_3d(&x, &y, ipar.data(), &stat);
        return agreed();
    }

    Int place(const Int (&p)[3]) const { return p[0] + (n[0] + 1) * (p[1] + (n[1] + 1) * p[2]); }
    // Element of a side's array for the point above or beside it.
    float bound(int s, const Int (&p)[3]) const
    {
        const int fast = s < 2 ? 1 : 0, slow = s < 4 ? 2 : 1;
        return bd[static_cast<size_t>(s)][p[fast] + p[slow] * (n[fast] + 1)];
    }
    double node(int d, Int i) const
    {
        return d == 2 ? double{z[static_cast<size_t>(i)]}
                      : double{length[d]} * static_cast<double>(i) / static_cast<double>(n[d]);
    }
    bool known(const Int (&p)[3]) const
    {
        for (int s = 0; s < 6; ++s)
            if (letters[static_cast<size_t>(s)] == 'd' && p[s / 2] == (s % 2 == 0 ? 0 : n[s / 2])) return true;
        return false;
    }
    bool copied(const Int (&p)[3]) const
    {
        for (int d = 0; d < 3; ++d)
            if (letters[static_cast<size_t>(2 * d)] == 'p' && p[d] == n[d]) return true;
        return false;
    }
    double weight(const Int (&p)[3]) const
    {
        double product = 1;
        for (int d = 0; d < 3; ++d) {
            const bool around = letters[static_cast<size_t>(2 * d)] == 'p';
            const Int below = p[d] > 0 ? p[d] - 1 : n[d] - 1, above = p[d] < n[d] ? p[d] : 0;
            double sum = 0;
            if (p[d] > 0 || around) sum += node(d, below + 1) - node(d, below);
            if (p[d] < n[d] || around) sum += node(d, above + 1) - node(d, above);
            product *= sum / 2;
        }
        return product;
    }
    // Left-hand side less what Neumann sides add to the right one, and the magnitude of the terms.
    std::pair<double, double> equation(const Int (&p)[3]) const
    {
        const double here = f[place(p)];
        double value = q * here, size = std::fabs(value);
        for (int d = 0; d < 3; ++d) {
            const bool around = letters[static_cast<size_t>(2 * d)] == 'p';
            const bool low = p[d] > 0 || around, high = p[d] < n[d] || around;
            const Int below = p[d] > 0 ? p[d] - 1 : n[d] - 1, above = p[d] < n[d] ? p[d] : 0;
            const double h_low = node(d, below + 1) - node(d, below), h_high = node(d, above + 1) - node(d, above);
            const double half = ((low ? h_low : 0) + (high ? h_high : 0)) / 2;
            const auto add = [&](Int other, double h) {
                Int at[3] = {p[0], p[1], p[2]};
                at[d] = other;
                const double beside = f[place(at)];
                value += (here - beside) / (h * half), size += (std::fabs(here) + std::fabs(beside)) / (h * half);
            };
            if (low) add(below, h_low);
            if (high) add(above + 1, h_high);
            for (const auto& [missing, s] : {std::pair{!low, 2 * d}, {!high, 2 * d + 1}})
                if (missing) value -= bound(s, p) / half, size += std::fabs(bound(s, p)) / half;
        }
        return {value, size};
    }
    template <class Body>
    void every_point(Body&& body) const
    {
        for (Int k = 0; k <= n[2]; ++k)
            for (Int j = 0; j <= n[1]; ++j)
                for (Int i = 0; i <= n[0]; ++i) body({i, j, k});
    }
};

} // namespace ork::test

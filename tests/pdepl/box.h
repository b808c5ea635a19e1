// SPDX-License-Identifier: MIT
// A problem on a rectangle or a box with arrays at protected pages, solved by the kernels, and its difference
// equations.
#pragma once

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "solver.h"

#define DECLARE(p, R)                                                                                                  \
    extern "C" ork::pde::PoissonCalls<R>::init_helmholtz_2d ork_pdepl_nx2_##p##_init_helmholtz_2d;                     \
    extern "C" ork::pde::PoissonCalls<R>::init_helmholtz_3d ork_pdepl_nx2_##p##_init_helmholtz_3d;                     \
    extern "C" ork::pde::PoissonCalls<R>::helmholtz_2d ork_pdepl_nx2_##p##_commit_helmholtz_2d,                        \
        ork_pdepl_nx2_##p##_helmholtz_2d;                                                                              \
    extern "C" ork::pde::PoissonCalls<R>::helmholtz_3d ork_pdepl_nx2_##p##_commit_helmholtz_3d,                        \
        ork_pdepl_nx2_##p##_helmholtz_3d;                                                                              \
    extern "C" ork::pde::PoissonCalls<R>::pl_print_diagnostics_c ork_pdepl_nx2_##p##_pl_print_diagnostics_c,           \
        ork_pdepl_nx2_##p##_pl_print_diagnostics_f;
DECLARE(s, float)
DECLARE(d, double)
#undef DECLARE
extern "C" ork::pde::PoissonCalls<double>::free_helmholtz_2d ork_pdepl_nx2_free_helmholtz_2d;
extern "C" ork::pde::PoissonCalls<double>::free_helmholtz_3d ork_pdepl_nx2_free_helmholtz_3d;

namespace ork::test {

// The routines of precision R, by the names of double's.
template <class R>
struct Kernels;
template <>
struct Kernels<float> {
    static constexpr auto* init_2d = ork_pdepl_nx2_s_init_helmholtz_2d;
    static constexpr auto* init_3d = ork_pdepl_nx2_s_init_helmholtz_3d;
    static constexpr auto* commit_2d = ork_pdepl_nx2_s_commit_helmholtz_2d;
    static constexpr auto* commit_3d = ork_pdepl_nx2_s_commit_helmholtz_3d;
    static constexpr auto* solve_2d = ork_pdepl_nx2_s_helmholtz_2d;
    static constexpr auto* solve_3d = ork_pdepl_nx2_s_helmholtz_3d;
};
template <>
struct Kernels<double> {
    static constexpr auto* init_2d = ork_pdepl_nx2_d_init_helmholtz_2d;
    static constexpr auto* init_3d = ork_pdepl_nx2_d_init_helmholtz_3d;
    static constexpr auto* commit_2d = ork_pdepl_nx2_d_commit_helmholtz_2d;
    static constexpr auto* commit_3d = ork_pdepl_nx2_d_commit_helmholtz_3d;
    static constexpr auto* solve_2d = ork_pdepl_nx2_d_helmholtz_2d;
    static constexpr auto* solve_3d = ork_pdepl_nx2_d_helmholtz_3d;
};

template <class R>
struct Problem : SolverOf<R> {
    using Base = SolverOf<R>;
    using Base::f, Base::bd, Base::ipar, Base::fpar, Base::stat;

    std::string sides; // four letters or six
    Int n[3];          // intervals; n[2] is 0 in two dimensions
    R ends[6] = {R(-0.5), R(1.25), R(0.25), R(1.75), R(1), R(1.875)};
    R q;
    ork_dft_descriptor *xhandle = nullptr, *yhandle = nullptr;

    Problem(const std::string& letters, const std::vector<Int>& i, double shift, Guard guard = Guard::end)
        : Base((i[0] + 1) * (i[1] + 1) * (letters.size() > 4 ? i[2] + 1 : 1),
               letters.size() > 4 ? pde::reals_3d(i[0], i[1]) : pde::reals_2d(i[0], i[1]), guard),
          sides(letters), n{i[0], i[1], letters.size() > 4 ? i[2] : 0}, q(static_cast<R>(shift))
    {
        for (int side = 0; side < 2 * dimensions(); ++side) bd.emplace_back(f.size() / (n[side / 2] + 1), guard);
        Base::fill();
    }
    ~Problem() override
    {
        if (xhandle != nullptr || yhandle != nullptr) free();
    }

    bool flat() const { return sides.size() <= 4; }
    int dimensions() const { return flat() ? 2 : 3; }
    Int init() override
    {
        if (flat())
            Kernels<R>::init_2d(ends, ends + 1, ends + 2, ends + 3, n, n + 1, sides.c_str(), &q, ipar.data(),
                                fpar.data(), &stat);
        else
            Kernels<R>::init_3d(ends, ends + 1, ends + 2, ends + 3, ends + 4, ends + 5, n, n + 1, n + 2, sides.c_str(),
                                &q, ipar.data(), fpar.data(), &stat);
        return Base::agreed();
    }
    Int commit() override
    {
        if (flat())
            Kernels<R>::commit_2d(f.data(), bd[0].data(), bd[1].data(), bd[2].data(), bd[3].data(), &xhandle,
                                  ipar.data(), fpar.data(), &stat);
        else
            Kernels<R>::commit_3d(f.data(), bd[0].data(), bd[1].data(), bd[2].data(), bd[3].data(), bd[4].data(),
                                  bd[5].data(), &xhandle, &yhandle, ipar.data(), fpar.data(), &stat);
        return Base::agreed();
    }
    Int solve() override
    {
        return Base::with_read_only_sides([&] {
            if (flat())
                Kernels<R>::solve_2d(f.data(), bd[0].data(), bd[1].data(), bd[2].data(), bd[3].data(), &xhandle,
                                     ipar.data(), fpar.data(), &stat);
            else
                Kernels<R>::solve_3d(f.data(), bd[0].data(), bd[1].data(), bd[2].data(), bd[3].data(), bd[4].data(),
                                     bd[5].data(), &xhandle, &yhandle, ipar.data(), fpar.data(), &stat);
        });
    }
    Int free() override
    {
        if (flat())
            ork_pdepl_nx2_free_helmholtz_2d(&xhandle, ipar.data(), &stat);
        else
            ork_pdepl_nx2_free_helmholtz_3d(&xhandle, &yhandle, ipar.data(), &stat);
        return Base::agreed();
    }

    char letter(int side) const { return static_cast<char>(std::tolower(sides[static_cast<size_t>(side)])); }
    double step(int d) const { return (double(ends[2 * d + 1]) - double(ends[2 * d])) / double(n[d]); }
    Int at(const Int (&p)[3]) const { return p[0] + (n[0] + 1) * (p[1] + (n[1] + 1) * p[2]); }
    Int on_side(int d, const Int (&p)[3]) const
    {
        return d == 0 ? p[1] + (n[1] + 1) * p[2] : d == 1 ? p[0] + (n[0] + 1) * p[2] : p[0] + (n[0] + 1) * p[1];
    }
    // The side whose given value stands at a point, the last of those that meet there; -1: the point is an unknown.
    int given_by(const Int (&p)[3]) const
    {
        int side = -1;
        for (int d = 0; d < dimensions(); ++d) {
            if (p[d] == 0 && letter(2 * d) == 'd') side = 2 * d;
            if (p[d] == n[d] && letter(2 * d + 1) == 'd') side = 2 * d + 1;
        }
        return side;
    }
    // The point that a point at a periodic end repeats.
    bool is_copy(const Int (&p)[3]) const
    {
        for (int d = 0; d < dimensions(); ++d)
            if (p[d] == n[d] && letter(2 * d) == 'p') return true;
        return false;
    }
    template <class Body>
    void points(Body&& body) const
    {
        for (Int k = 0; k <= n[2]; ++k)
            for (Int j = 0; j <= n[1]; ++j)
                for (Int i = 0; i <= n[0]; ++i) body(Int(i), Int(j), Int(k));
    }

    // -Laplace(u) + q u at an unknown point by central differences, ghost points by the normal derivatives.
    long double difference(const std::vector<R>& u, const Int (&p)[3]) const
    {
        long double sum = static_cast<long double>(q) * u[static_cast<size_t>(at(p))];
        for (int d = 0; d < dimensions(); ++d) {
            const long double h = step(d);
            const auto neighbour = [&](Int to, int side) -> long double {
                Int other[3] = {p[0], p[1], p[2]};
                other[d] = to;
                if (to >= 0 && to <= n[d]) return u[static_cast<size_t>(at(other))];
                if (letter(side) == 'p') {
                    other[d] = n[d] - 1; // only point 0 is an unknown
                    return u[static_cast<size_t>(at(other))];
                }
                other[d] = to < 0 ? 1 : n[d] - 1;
                return u[static_cast<size_t>(at(other))] + 2 * h * bd[static_cast<size_t>(side)][on_side(d, p)];
            };
            sum +=
                (2.0L * u[static_cast<size_t>(at(p))] - neighbour(p[d] - 1, 2 * d) - neighbour(p[d] + 1, 2 * d + 1)) /
                (h * h);
        }
        return sum;
    }

    // What rounding may do to a residual: the operator's norm times the solution.
    double rounding(const std::vector<R>& u, const std::vector<R>& right) const
    {
        double norm = std::abs(double(q)), most = 0, largest = 0;
        for (int d = 0; d < dimensions(); ++d) {
            norm += 4 / (step(d) * step(d));
            largest += 2 / step(d);
        }
        for (R value : u) most = std::max(most, std::abs(double(value)));
        for (R value : right) largest = std::max(largest, std::abs(double(value)));
        return 30 * double(std::numeric_limits<R>::epsilon()) * (norm * most + largest);
    }

    // Every equation holds to rounding, sides have their values and periodic points are equal. In a singular problem
    // the right-hand side may have lost a constant, and the solution has mean 0.
    void expect_solved(const std::vector<R>& right, bool singular = false) const
    {
        const std::vector<R> u = f.values();
        const double tolerance = rounding(u, right);
        long double constant = 0, mean = 0, weights = 0;
        const auto residual = [&](const Int(&p)[3]) { return right[static_cast<size_t>(at(p))] - difference(u, p); };
        if (singular) constant = residual({0, 0, 0});
        double worst = 0;
        points([&](Int i, Int j, Int k) {
            const Int p[3] = {i, j, k};
            const int side = given_by(p);
            if (is_copy(p)) {
                Int source[3] = {i, j, k};
                for (int d = 0; d < dimensions(); ++d)
                    if (p[d] == n[d] && letter(2 * d) == 'p') source[d] = 0;
                ASSERT_EQ(f[at(p)], f[at(source)]) << i << ' ' << j << ' ' << k;
            } else if (side >= 0) {
                ASSERT_EQ(f[at(p)], bd[static_cast<size_t>(side)][on_side(side / 2, p)]) << i << ' ' << j << ' ' << k;
            } else {
                const double off = std::abs(double(residual(p) - constant));
                if (!(off <= worst)) worst = off;
                double weight = 1;
                for (int d = 0; d < dimensions(); ++d)
                    if (letter(2 * d) == 'n' && (p[d] == 0 || p[d] == n[d])) weight /= 2;
                mean += weight * u[static_cast<size_t>(at(p))], weights += weight;
            }
        });
        EXPECT_TRUE(worst <= tolerance) << worst << " above " << tolerance;
        if (singular) {
            double most = 0;
            for (R value : u) most = std::max(most, std::abs(double(value)));
            EXPECT_TRUE(std::abs(double(mean / weights)) <= 30 * double(std::numeric_limits<R>::epsilon()) * most);
        }
        EXPECT_TRUE(Base::kept_within_arrays());
    }
};

} // namespace ork::test

// SPDX-License-Identifier: MIT
// A problem on a sphere, and its difference equations.
#pragma once

#include <array>
#include <cmath>
#include <numbers>

#include "ork/abi/pde_sphere.h"
#include "solver.h"

#define DECLARE(letter, R)                                                                                             \
    extern "C" ork::pde::SphereCalls<R>::init ork_pdepl_nx2_##letter##_init_sph_p,                                     \
        ork_pdepl_nx2_##letter##_init_sph_np;                                                                          \
    extern "C" ork::pde::SphereCalls<R>::commit_p ork_pdepl_nx2_##letter##_commit_sph_p,                               \
        ork_pdepl_nx2_##letter##_sph_p;                                                                                \
    extern "C" ork::pde::SphereCalls<R>::commit_np ork_pdepl_nx2_##letter##_commit_sph_np,                             \
        ork_pdepl_nx2_##letter##_sph_np;
DECLARE(s, float)
DECLARE(d, double)
#undef DECLARE
extern "C" ork::pde::FreeSphereP ork_pdepl_nx2_free_sph_p;
extern "C" ork::pde::FreeSphereNp ork_pdepl_nx2_free_sph_np;

namespace ork::test {

constexpr double pi = std::numbers::pi;

// One problem and its arrays.
template <class R>
struct Sphere : SolverOf<R> {
    using Base = SolverOf<R>;
    using Base::f, Base::ipar, Base::fpar, Base::stat, Base::agreed;

    bool periodic;
    Int np, nt;
    double ap, bp, at, bt, q;
    ork_dft_descriptor *sine = nullptr, *cosine = nullptr;

    // Extents in half turns, so that poles are exact.
    Sphere(bool around, Int longitudes, Int latitudes, double north, double south, double shift, double east = 2,
           Guard guard = Guard::end)
        : Base((std::max<Int>(longitudes, 0) + 1) * (std::max<Int>(latitudes, 0) + 1),
               pde::sphere_reals(longitudes, latitudes), guard),
          periodic(around), np(longitudes), nt(latitudes), ap(0), bp(east * pi), at(north * pi), bt(south * pi),
          q(shift)
    {
    }
    ~Sphere() override { free(); }

    static constexpr bool single = sizeof(R) == 4;
    Int init() override
    {
        const R a = static_cast<R>(ap), b = static_cast<R>(bp), c = static_cast<R>(at), d = static_cast<R>(bt),
                e = static_cast<R>(q);
        if constexpr (single)
            (periodic ? ork_pdepl_nx2_s_init_sph_p : ork_pdepl_nx2_s_init_sph_np)(&a, &b, &c, &d, &np, &nt, &e,
                                                                                  ipar.data(), fpar.data(), &stat);
        else
            (periodic ? ork_pdepl_nx2_d_init_sph_p : ork_pdepl_nx2_d_init_sph_np)(&a, &b, &c, &d, &np, &nt, &e,
                                                                                  ipar.data(), fpar.data(), &stat);
        return agreed();
    }
    Int commit() override
    {
        if constexpr (single)
            periodic ? ork_pdepl_nx2_s_commit_sph_p(f.data(), &sine, &cosine, ipar.data(), fpar.data(), &stat)
                     : ork_pdepl_nx2_s_commit_sph_np(f.data(), &sine, ipar.data(), fpar.data(), &stat);
        else
            periodic ? ork_pdepl_nx2_d_commit_sph_p(f.data(), &sine, &cosine, ipar.data(), fpar.data(), &stat)
                     : ork_pdepl_nx2_d_commit_sph_np(f.data(), &sine, ipar.data(), fpar.data(), &stat);
        return agreed();
    }
    Int solve() override
    {
        if constexpr (single)
            periodic ? ork_pdepl_nx2_s_sph_p(f.data(), &sine, &cosine, ipar.data(), fpar.data(), &stat)
                     : ork_pdepl_nx2_s_sph_np(f.data(), &sine, ipar.data(), fpar.data(), &stat);
        else
            periodic ? ork_pdepl_nx2_d_sph_p(f.data(), &sine, &cosine, ipar.data(), fpar.data(), &stat)
                     : ork_pdepl_nx2_d_sph_np(f.data(), &sine, ipar.data(), fpar.data(), &stat);
        return agreed();
    }
    Int free() override
    {
        periodic ? ork_pdepl_nx2_free_sph_p(&sine, &cosine, ipar.data(), &stat)
                 : ork_pdepl_nx2_free_sph_np(&sine, ipar.data(), &stat);
        return agreed();
    }
    double ht() const { return (bt - at) / static_cast<double>(nt); }
    double theta(double j) const { return at + j * ht(); }
    double phi(Int i) const { return ap + static_cast<double>(i) * (bp - ap) / static_cast<double>(np); }
    bool north() const { return periodic && at == 0; }
    bool south() const { return periodic && bt == pi; }
    bool known(Int i, Int j) const
    {
        return (j == 0 && !north()) || (j == nt && !south()) || (!periodic && (i == 0 || i == np));
    }
    Int place(Int i, Int j) const { return j * (np + 1) + i; }
    double weight(Int j) const // of a row
    {
        if ((j == 0 && north()) || (j == nt && south())) return 2 * std::pow(std::sin(ht() / 4), 2) / ht();
        return std::sin(theta(static_cast<double>(j)));
    }
    // The left-hand side of the equation at a point that is not known, and the sum of its terms' magnitudes.
    std::array<double, 2> equation(Int i, Int j) const
    {
        const auto u = [&](Int a, Int b) { return static_cast<double>(f[place(periodic ? (a + np) % np : a, b)]); };
        const double h2 = ht() * ht(), here = u(i, j);
        double value = q * here, size = std::fabs(value);
        const auto add = [&](double factor, double other) {
            value += factor * (here - other);
            size += factor * (std::fabs(here) + std::fabs(other));
        };
        if ((j == 0 && north()) || (j == nt && south())) {
            double mean = 0;
            for (Int a = 0; a < np; ++a) mean += u(a, j == 0 ? 1 : nt - 1) / static_cast<double>(np);
            add(std::sin(ht() / 2) / (h2 * weight(j)), mean);
            return {value, size};
        }
        const double s = weight(j), step = (bp - ap) / static_cast<double>(np) * s, row = static_cast<double>(j);
        add(std::sin(theta(row - 0.5)) / (h2 * s), u(i, j - 1));
        add(std::sin(theta(row + 0.5)) / (h2 * s), u(i, j + 1));
        add(1 / (step * step), u(i - 1, j));
        add(1 / (step * step), u(i + 1, j));
        return {value, size};
    }
    double pole_mean(const std::vector<R>& values, Int j) const
    {
        double mean = 0;
        for (Int i = 0; i < np; ++i)
            mean += static_cast<double>(values[static_cast<size_t>(place(i, j))]) / static_cast<double>(np);
        return mean;
    }
};

} // namespace ork::test

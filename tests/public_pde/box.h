// SPDX-License-Identifier: MIT
// A Helmholtz problem on a rectangle (nz = 0) or a box, solved through the public interface and checked by the scheme.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "ork/pde.h"

namespace ork::test {

#define ORK_CALL(routine, ...)                                                                                         \
    [&] {                                                                                                              \
        if constexpr (sizeof(R) == 4)                                                                                  \
            return ork_s_##routine(__VA_ARGS__);                                                                       \
        else                                                                                                           \
            return ork_d_##routine(__VA_ARGS__);                                                                       \
    }()

template <class R>
struct Box {
    using Function = std::function<double(double, double, double)>;

    int64_t n[3] = {};
    std::string sides;
    R q = 0, length[3] = {R(1.5), R(2), R(0.75)};
    std::vector<R> f, bd[6];
    std::vector<R> rpar;
    int64_t ipar[ORK_PDE_INTEGERS] = {};
    ork_dft_descriptor *xhandle = nullptr, *yhandle = nullptr;

    Box(std::vector<int64_t> intervals, std::string letters, R q) : sides(std::move(letters)), q(q)
    {
        std::copy(intervals.begin(), intervals.end(), n);
        const int64_t x = n[0] + 1, y = n[1] + 1, z = n[2] + 1;
        f.assign(x * y * z, 0);
        for (int s = 0; s < 6; ++s) bd[s].assign(s < 2 ? y * z : s < 4 ? x * z : x * y, 0);
        rpar.assign(flat() ? ORK_HELMHOLTZ_2D_REALS(n[0], n[1]) : ORK_HELMHOLTZ_3D_REALS(n[0], n[1]), 0);
    }
    ~Box()
    {
        if (ipar[0] != 0) return;
        if (flat())
            ork_free_helmholtz_2d(&xhandle, ipar);
        else
            ork_free_helmholtz_3d(&xhandle, &yhandle, ipar);
    }
    Box(const Box&) = delete;

    bool flat() const { return n[2] == 0; }
    int dimensions() const { return flat() ? 2 : 3; }
    char side(int direction, int end) const { return sides[2 * direction + end]; }
    double step(int d) const { return static_cast<double>(length[d]) / static_cast<double>(n[d]); }
    int64_t place(const int64_t* p) const { return p[0] + (n[0] + 1) * (p[1] + (n[1] + 1) * p[2]); }
    int64_t side_place(int d, const int64_t* p) const
    {
        return d == 0 ? p[1] + (n[1] + 1) * p[2] : d == 1 ? p[0] + (n[0] + 1) * p[2] : p[0] + (n[0] + 1) * p[1];
    }

    void randomize(unsigned seed)
    {
        std::mt19937 engine(seed);
        std::uniform_real_distribution<R> uniform(-1, 1);
        for (R& v : f) v = uniform(engine);
        for (auto& values : bd)
            for (R& v : values) v = uniform(engine);
    }

    int64_t commit(int64_t messages = 0)
    {
        const R *l = length, o = R(0.25);
        int64_t status = flat() ? ORK_CALL(init_helmholtz_2d, o, o + l[0], -o, l[1] - o, n[0], n[1], sides.c_str(), q,
                                           ipar, rpar.data())
                                : ORK_CALL(init_helmholtz_3d, o, o + l[0], -o, l[1] - o, 0, l[2], n[0], n[1], n[2],
                                           sides.c_str(), q, ipar, rpar.data());
        if (status != 0) return status;
        ipar[ORK_PDE_ERROR_MESSAGES] = ipar[ORK_PDE_WARNING_MESSAGES] = messages;
        return flat() ? ORK_CALL(commit_helmholtz_2d, &xhandle, ipar, rpar.data())
                      : ORK_CALL(commit_helmholtz_3d, &xhandle, &yhandle, ipar, rpar.data());
    }
    int64_t solve() { return solve(f.data(), ipar, rpar.data()); }
    int64_t solve(R* u, int64_t* ints, R* reals)
    {
        const auto b = [&](int s) { return sides[s] == 'P' ? nullptr : bd[s].data(); };
        return flat() ? ORK_CALL(helmholtz_2d, u, b(0), b(1), b(2), b(3), &xhandle, ints, reals)
                      : ORK_CALL(helmholtz_3d, u, b(0), b(1), b(2), b(3), b(4), b(5), &xhandle, &yhandle, ints, reals);
    }

    // body(p, weight) for the unknown points, with the scheme's weights.
    template <class Body>
    void for_unknowns(Body&& body) const
    {
        int64_t p[3];
        const auto inside = [&](int d) {
            if (d >= dimensions()) return true;
            return !(side(d, 0) == 'D' && p[d] == 0) && !(side(d, 1) == 'D' && p[d] == n[d]) &&
                   !(side(d, 0) == 'P' && p[d] == n[d]);
        };
        for (p[2] = 0; p[2] <= n[2]; ++p[2])
            for (p[1] = 0; p[1] <= n[1]; ++p[1])
                for (p[0] = 0; p[0] <= n[0]; ++p[0]) {
                    if (!inside(0) || !inside(1) || !inside(2)) continue;
                    double weight = 1;
                    for (int d = 0; d < dimensions(); ++d)
                        weight /= side(d, 0) != 'P' && (p[d] == 0 || p[d] == n[d]) ? 2 : 1;
                    body(static_cast<const int64_t*>(p), weight);
                }
    }

    // -Laplace(u) + q u by the scheme, and in `size` what rounding is measured by.
    double left_side(const std::vector<R>& u, const int64_t* p, double& size) const
    {
        const double centre = u[place(p)];
        double sum = static_cast<double>(q) * centre;
        size = std::abs(sum);
        for (int d = 0; d < dimensions(); ++d) {
            const double h = step(d);
            double neighbours[2], slopes = 0;
            for (int end = 0; end < 2; ++end) {
                int64_t next[3] = {p[0], p[1], p[2]};
                next[d] += end == 0 ? -1 : 1;
                if (side(d, 0) == 'P') {
                    next[d] = (next[d] + n[d]) % n[d];
                } else if (next[d] < 0 || next[d] > n[d]) {
                    next[d] = end == 0 ? 1 : n[d] - 1;
                    slopes += 2 * h * bd[2 * d + end][side_place(d, p)];
                }
                neighbours[end] = u[place(next)];
            }
            sum += (2 * centre - neighbours[0] - neighbours[1] - slopes) / (h * h);
            size +=
                (2 * std::abs(centre) + std::abs(neighbours[0]) + std::abs(neighbours[1]) + std::abs(slopes)) / (h * h);
        }
        return sum;
    }

    // The largest residual against g, in units of rounding; infinite where boundary or period is wrong.
    double residual(const std::vector<R>& g, double dropped = 0) const
    {
        double worst = 0, largest = 0;
        for_unknowns([&](const int64_t* p, double) {
            double size;
            const double r = std::abs(left_side(f, p, size) + dropped - g[place(p)]);
            largest = std::max({largest, size, std::abs(static_cast<double>(g[place(p)]))});
            if (!(r <= worst)) worst = r;
        });
        for (int d = 0; d < dimensions(); ++d)
            for (int64_t k = 0; k <= n[2]; ++k)
                for (int64_t j = 0; j <= n[1]; ++j)
                    for (int64_t i = 0; i <= n[0]; ++i) {
                        int64_t p[3] = {i, j, k};
                        if (p[d] != 0 && p[d] != n[d]) continue;
                        const int end = p[d] != 0;
                        bool other = false; // an edge has the value of the later side, or of the period's first point
                        for (int e = 0; e < dimensions(); ++e)
                            other |= (e > d && p[e] == 0 && side(e, 0) == 'D') ||
                                     (e > d && p[e] == n[e] && side(e, 1) == 'D') ||
                                     (p[e] == n[e] && side(e, 1) == 'P');
                        if (side(d, end) == 'D' && !other && f[place(p)] != bd[2 * d + end][side_place(d, p)])
                            return std::numeric_limits<double>::infinity();
                        if (side(d, end) == 'P' && end == 1) {
                            const R last = f[place(p)];
                            p[d] = 0;
                            if (last != f[place(p)]) return std::numeric_limits<double>::infinity();
                        }
                    }
        return worst / (std::numeric_limits<R>::epsilon() * std::max(largest, 1e-30));
    }
};

} // namespace ork::test

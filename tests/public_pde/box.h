// SPDX-License-Identifier: MIT
// A Helmholtz problem on a rectangle (nz = 0) or a box, called through the public interface.
#pragma once

#include <algorithm>
#include <cstdint>
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
};

} // namespace ork::test

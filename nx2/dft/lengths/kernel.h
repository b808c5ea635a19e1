// SPDX-License-Identifier: MIT
// The kernel of one length. Double numbers go one a register, float ones two: even and odd elements, which one more
// step of radix 2 joins (6 % faster at 64 than two columns), two columns of odd lengths, sums and differences of prime
// ones.
#pragma once

#include "dft/butterfly.h"
#include "dft/lengths/columns.h"
#include "dft/lengths/halves.h"
#include "dft/lengths/table.h"
#include "dft/pair.h"

namespace ork::dft {

template <int n, Direction direction>
[[gnu::always_inline]] inline void one_a_register(const double* in, double* out)
{
    using E = Pair<double, direction>;
    dft<n, E>([=](auto j) ORK_INLINE_LAMBDA { return E{loaded_once(in + 2 * j)}; },
              [=](auto k, E x) ORK_INLINE_LAMBDA { store(out + 2 * k, x.v); });
}

// x[2j], x[2j + 1] in a register. With Y the transforms of length m = n/2 of even and of odd elements,
// X[k] = Y0[k] + w Y1[k] and X[k + m] = Y0[k] - w Y1[k], w = exp(-2 pi i k / n), for two k at once.
template <int n, Direction direction>
[[gnu::always_inline]] inline void two_a_register(const float* in, float* out)
{
    using E = Pair<float, direction>;
    constexpr int m = n / 2;
    E y[m];
    dft<m, E>([=](auto j) ORK_INLINE_LAMBDA { return E{loaded_once(in + 4 * j)}; },
              [&](auto k, E x) ORK_INLINE_LAMBDA { y[k] = x; });
    const auto joined = [](Vec<float> a, Vec<float> b, auto which) ORK_INLINE_LAMBDA -> Vec<float> {
        return {which == 0 ? _mm_movelh_ps(a.v, b.v) : _mm_movehl_ps(b.v, a.v)};
    };
    unrolled<m / 2>([&](auto pair) ORK_INLINE_LAMBDA {
        constexpr int k = 2 * pair;
        constexpr Root<float> w0 = root<float, n, k>, w1 = root<float, n, k + 1>;
        constexpr float sign = direction == Direction::forward ? 1 : -1;
        const Vec<float> even = joined(y[k].v, y[k + 1].v, Index<0>{}), odd = joined(y[k].v, y[k + 1].v, Index<1>{});
        const Vec<float> cos = {_mm_setr_ps(w0.cos, w0.cos, w1.cos, w1.cos)};
        const Vec<float> sin = {_mm_setr_ps(sign * w0.sin, -sign * w0.sin, sign * w1.sin, -sign * w1.sin)};
        const Vec<float> turned = odd * cos + exchanged(odd) * sin;
        store(out + 2 * k, even + turned);
        store(out + 2 * (k + m), even - turned);
    });
    if constexpr (m % 2 != 0) {
        const E last = y[m - 1], odd = twiddled<n, m - 1>(E{joined(last.v, last.v, Index<1>{})});
        store<2>(out + 2 * (m - 1), (last + odd).v);
        store<2>(out + 2 * (n - 1), (last - odd).v);
    }
}

template <class R, int n, Direction direction>
std::int32_t length_kernel(const void* in, void* out, const void*, void*)
{
    const R* const from = static_cast<const R*>(in);
    R* const to = static_cast<R*>(out);
    constexpr int a = first_radix(n, false), b = n / a;
    if constexpr (n == 1)
        store<2>(to, load<2>(from));
    else if constexpr (sizeof(R) == 8)
        one_a_register<n, direction>(from, to);
    else if constexpr (n % 2 == 0)
        two_a_register<n, direction>(from, to);
    else if constexpr (a > 1)
        two_columns<n, gcd(a, b) == 1 ? b : a, direction>(from, to);
    else
        prime_by_halves<n, direction>(from, to);
    return 0;
}

} // namespace ork::dft

// Compiles both directions of a length in the object that says so.
#define ORK_LENGTH(R, n)                                                                                               \
    template std::int32_t ork::dft::length_kernel<R, n, ork::dft::Direction::forward>(const void*, void*, const void*, \
                                                                                      void*);                          \
    template std::int32_t ork::dft::length_kernel<R, n, ork::dft::Direction::backward>(const void*, void*,             \
                                                                                       const void*, void*)

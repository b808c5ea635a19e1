// SPDX-License-Identifier: MIT
// Roots of unity as constants of the program, correctly rounded.
#pragma once

namespace ork::dft {

template <class R>
struct Root {
    R cos, sin;
};

// exp(2 pi i k / n), 0 <= k. The angle is taken into the first octant by integers; the series run in 113 bits.
template <class R>
consteval Root<R> root_of_unity(long long k, long long n)
{
    __extension__ typedef __float128 Quad;
    constexpr Quad half_pi =
        (Quad(3.14159265358979323846264338327950288L) - Quad(5.01655761266833202355732708e-20L)) / 2;

    k %= n;
    const long long quadrant = 4 * k / n, part = 4 * k - quadrant * n; // angle = pi/2 (quadrant + part/n)
    const bool mirrored = 2 * part > n;
    const Quad x = half_pi * (mirrored ? n - part : part) / n;
    Quad cosine = 1, sine = x, term = x;
    for (int i = 2; i < 34; i += 2) {
        term = -term * x / i;
        cosine += term;
        term = term * x / (i + 1);
        sine += term;
    }
    if (mirrored) {
        const Quad swap = cosine;
        cosine = sine;
        sine = swap;
    }
    switch (quadrant) {
    case 0:
        return {R(cosine), R(sine)};
    case 1:
        return {R(-sine), R(cosine)};
    case 2:
        return {R(-cosine), R(-sine)};
    default:
        return {R(sine), R(-cosine)};
    }
}

template <class R, int n, int k>
inline constexpr Root<R> root = root_of_unity<R>(k, n);

} // namespace ork::dft

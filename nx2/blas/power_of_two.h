// SPDX-License-Identifier: MIT
// Numbers as significand times power of two, so that squares, products and quotients of any finite doubles neither
// overflow nor underflow on the way to a result.
#pragma once

#include <bit>
#include <cstdint>

namespace ork {

inline double power_of_two(int e) // -1022 .. 1023
{
    return std::bit_cast<double>(static_cast<std::uint64_t>(1023 + e) << 52);
}

// x 2^e, rounded once for |x| in [2^-50, 2^50]; e may be anything.
inline double scaled(double x, int e)
{
    if (e > 1000) return x * power_of_two(1000) * power_of_two(e > 2000 ? 1000 : e - 1000);
    if (e < -1000) return x * power_of_two(-1000) * power_of_two(e < -2000 ? -1000 : e + 1000);
    return x * power_of_two(e);
}

// floor(log2 |x|), at most 1000; of 0, of infinity and of NaN something that scales without harm.
inline int exponent(double x)
{
    const auto field = [](double a) { return static_cast<int>(std::bit_cast<std::uint64_t>(a) >> 52 & 0x7ff) - 1023; };
    int e = field(x);
    if (e == -1023) e = field(x * power_of_two(600)) - 600; // subnormal
    return e < 1000 ? e : 1000;
}

// significand 2^e; significands of products and quotients are not normalised.
struct Scaled {
    double significand;
    int e;

    explicit Scaled(double x) : Scaled(x, exponent(x)) {}
    double value() const { return scaled(significand, e); }
    // The same with a significand in [1, 2).
    Scaled normal() const
    {
        const int more = exponent(significand);
        return {scaled(significand, -more), e + more, 0};
    }

    friend Scaled operator*(Scaled a, Scaled b) { return {a.significand * b.significand, a.e + b.e, 0}; }
    friend Scaled operator/(Scaled a, Scaled b) { return {a.significand / b.significand, a.e - b.e, 0}; }
    friend Scaled operator*(Scaled a, double b) { return {a.significand * b, a.e, 0}; }
    friend Scaled operator/(Scaled a, double b) { return {a.significand / b, a.e, 0}; }
    friend Scaled operator-(Scaled a) { return {-a.significand, a.e, 0}; }

private:
    Scaled(double x, int e) : significand(scaled(x, -e)), e(e) {}
    Scaled(double s, int e, int) : significand(s), e(e) {}
};

} // namespace ork

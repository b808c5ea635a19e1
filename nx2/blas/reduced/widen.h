// SPDX-License-Identifier: MIT
// Narrow floating-point numbers as binary32. Every one of them is exactly representable, so widening never rounds, and
// it raises no flag; a NaN keeps its payload at the top, and a signalling one stays what it is.
#pragma once

#include <array>
#include <bit>
#include <cstdint>

namespace ork::reduced {

// Value of a number with `exponent` and `fraction` bits behind its sign, in the manner of IEEE 754: exponent bias
// 2^(exponent - 1) - 1, gradual underflow, and the largest exponent for infinities and NaN.
constexpr std::uint32_t widened(std::uint32_t x, int exponent, int fraction)
{
    const std::uint32_t sign = x >> (exponent + fraction) << 31, magnitude = x & ((1U << (exponent + fraction)) - 1);
    const std::uint32_t e = magnitude >> fraction, f = magnitude & ((1U << fraction) - 1);
    const int bias = (1 << (exponent - 1)) - 1;
    if (e == (1U << exponent) - 1) return sign | 0x7f800000U | f << (23 - fraction);
    if (e != 0) return sign | (e + static_cast<std::uint32_t>(127 - bias)) << 23 | f << (23 - fraction);
    if (f == 0) return sign;
    const int shift = std::countl_zero(f) - (31 - fraction); // of the leading one to its hidden place
    return sign | static_cast<std::uint32_t>(128 - bias - shift) << 23 |
           (f << shift & ((1U << fraction) - 1)) << (23 - fraction);
}

// The upper half of binary32.
struct Bfloat16 {
    using Bits = std::uint16_t;
    static float widen(Bits x) { return std::bit_cast<float>(std::uint32_t(x) << 16); }
};

// IEEE 754 binary16: 5 bits of exponent, 10 of fraction.
struct Binary16 {
    using Bits = std::uint16_t;
    static float widen(Bits x) { return std::bit_cast<float>(widened(x, 5, 10)); }
};

// The upper half of binary16.
struct E5m2 {
    using Bits = std::uint8_t;
    static constexpr auto table = [] {
        std::array<std::uint32_t, 256> values{};
        for (std::uint32_t x = 0; x < 256; ++x) values[x] = widened(x, 5, 2);
        return values;
    }();
    static float widen(Bits x) { return std::bit_cast<float>(table[x]); }
};

// 4 bits of exponent with bias 7, 3 of fraction; no infinity: S.1111.111 alone is NaN and the largest number 448 (Open
// Compute Project, "8-bit floating point specification", 2023).
struct E4m3 {
    using Bits = std::uint8_t;
    static constexpr auto table = [] {
        std::array<std::uint32_t, 256> values{};
        for (std::uint32_t x = 0; x < 256; ++x) {
            const std::uint32_t magnitude = x & 0x7f, sign = x >> 7 << 31;
            if (magnitude == 0x7f)
                values[x] = sign | 0x7fc00000U;
            else if (magnitude >= 0x78) // an ordinary exponent, where IEEE 754 has infinities
                values[x] = sign | 135U << 23 | (magnitude & 7) << 20;
            else
                values[x] = widened(x, 4, 3);
        }
        return values;
    }();
    static float widen(Bits x) { return std::bit_cast<float>(table[x]); }
};

} // namespace ork::reduced

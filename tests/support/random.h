// SPDX-License-Identifier: MIT
// Test data that is the same in every run and on every machine (the standard distributions are not).
#pragma once

#include <cmath>
#include <cstdint>
#include <vector>

#include "support/scalar.h"

namespace ork::test {

// splitmix64: Steele, Lea and Flood, "Fast splittable pseudorandom number generators", 2014.
class Random {
public:
    explicit Random(std::uint64_t seed = 1) : state_(seed * 0x9e3779b97f4a7c15u) {}

    std::uint64_t bits()
    {
        std::uint64_t z = state_ += 0x9e3779b97f4a7c15u;
        z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9u;
        z = (z ^ (z >> 27)) * 0x94d049bb133111ebu;
        return z ^ (z >> 31);
    }

    // first .. last, both included.
    std::int64_t integer(std::int64_t first, std::int64_t last)
    {
        return first + static_cast<std::int64_t>(bits() % static_cast<std::uint64_t>(last - first + 1));
    }

    // In [-1, 1), every significand bit of T in use.
    template <class T>
    T uniform()
    {
        if constexpr (is_complex<T>) {
            const auto re = uniform<Real<T>>();
            return {re, uniform<Real<T>>()};
        } else {
            constexpr int digits = std::numeric_limits<T>::digits;
            const auto step = static_cast<std::int64_t>(bits() >> (64 - digits - 1)) - (std::int64_t{1} << digits);
            return std::ldexp(static_cast<T>(step), -digits);
        }
    }

    // Both signs, magnitudes spread evenly over 2^-binary_orders .. 1: sums of such numbers round differently in nearly
    // every other order of addition, which one huge entry among equals does not achieve.
    template <class T>
    T spread(int binary_orders = 40)
    {
        if constexpr (is_complex<T>) {
            const auto re = spread<Real<T>>(binary_orders);
            return {re, spread<Real<T>>(binary_orders)};
        } else {
            const T significand = (3 + uniform<T>()) / 4; // in [1/2, 1)
            const T x = std::ldexp(significand, -static_cast<int>(integer(0, binary_orders - 1)));
            return (bits() & 1) != 0 ? -x : x;
        }
    }

private:
    std::uint64_t state_;
};

template <class T>
std::vector<T> uniform_values(std::int64_t count, std::uint64_t seed = 1)
{
    Random random(seed);
    std::vector<T> values(static_cast<std::size_t>(count));
    for (T& x : values) x = random.uniform<T>();
    return values;
}

template <class T>
std::vector<T> spread_values(std::int64_t count, std::uint64_t seed = 1)
{
    Random random(seed);
    std::vector<T> values(static_cast<std::size_t>(count));
    for (T& x : values) x = random.spread<T>();
    return values;
}

} // namespace ork::test

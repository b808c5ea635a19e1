// SPDX-License-Identifier: MIT
// Comparisons that fail on whatever is not a number where one was expected, and say where.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <iomanip>
#include <limits>
#include <span>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/reference.h"
#include "support/scalar.h"

namespace ork::test {

// Representable numbers from a to b: 0 for equal values and for two NaNs, the largest value when one of them is a NaN.
// -0 and +0 are one apart.
template <class T>
std::uint64_t ulp_distance(T a, T b)
{
    if (std::isnan(a) || std::isnan(b))
        return std::isnan(a) && std::isnan(b) ? 0 : std::numeric_limits<std::uint64_t>::max();
    using Bits = std::conditional_t<sizeof(T) == 4, std::uint32_t, std::uint64_t>;
    const auto rank = [](T x) { // monotonic in x
        const Bits bits = std::bit_cast<Bits>(x), sign = Bits{1} << (8 * sizeof(T) - 1);
        return static_cast<Bits>((bits & sign) != 0 ? ~bits : bits | sign);
    };
    const Bits first = rank(a), second = rank(b);
    return first < second ? second - first : first - second;
}

template <class T>
std::string show(T x)
{
    std::ostringstream out;
    if constexpr (is_complex<T>)
        out << '(' << show(x.real()) << ", " << show(x.imag()) << ')';
    else
        out << std::setprecision(std::numeric_limits<T>::max_digits10) << x << std::hexfloat << " [" << x << ']';
    return out.str();
}

// One real number against its reference: within tolerance * eps * scale and at most half a unit of the smallest
// denormal, infinite where the reference rounds to infinity, NaN exactly where the reference is NaN.
template <class T, class R>
bool is_near(T got, R want, R scale, double tolerance)
{
    const T rounded = static_cast<T>(want);
    if (std::isnan(rounded)) return std::isnan(got);
    if (std::isinf(rounded)) return got == rounded;
    const R bound = static_cast<R>(tolerance) * static_cast<R>(std::numeric_limits<T>::epsilon()) * scale +
                    static_cast<R>(std::numeric_limits<T>::denorm_min());
    const R difference = static_cast<R>(got) - want;
    return -bound <= difference && difference <= bound;
}

template <class T, class R>
bool is_near(T got, const Expected<R>& want, double tolerance)
{
    if constexpr (is_complex<T>)
        return is_near(got.real(), want.value.re, want.scale, tolerance) &&
               is_near(got.imag(), want.value.im, want.scale, tolerance);
    else
        return is_near(got, want.value.re, want.scale, tolerance);
}

template <class T, class R>
T rounded(const Wide<R>& value)
{
    if constexpr (is_complex<T>)
        return {static_cast<Real<T>>(value.re), static_cast<Real<T>>(value.im)};
    else
        return static_cast<T>(value.re);
}

// A scalar result. tolerance is in units of eps * (sum of the terms' magnitudes): n for a sum of n terms in any order.
template <class T, class R>
void expect_near(T got, const Expected<R>& want, double tolerance)
{
    if (!is_near(got, want, tolerance))
        ADD_FAILURE() << "got " << show(got) << ", want " << show(rounded<T>(want.value)) << " within " << tolerance
                      << " eps of " << static_cast<double>(want.scale);
}

namespace detail {

// Calls describe(out, i) for the first few i < count that are not good(i), in one failure with their number.
template <class Good, class Describe>
void expect_all(std::int64_t count, Good&& good, Describe&& describe)
{
    constexpr int shown = 4;
    std::int64_t wrong = 0;
    std::ostringstream out;
    for (std::int64_t i = 0; i < count; ++i)
        if (!good(i) && wrong++ < shown) {
            out << "\n  [" << i << "] ";
            describe(out, i);
        }
    if (wrong != 0) ADD_FAILURE() << wrong << " of " << count << " elements differ:" << out.str();
}

} // namespace detail

// Element by element; got is anything with an operator[].
template <class T, class Got, class R>
void expect_near(const Got& got, const std::vector<Expected<R>>& want, double tolerance)
{
    detail::expect_all(
        static_cast<std::int64_t>(want.size()),
        [&](std::int64_t i) { return is_near(T(got[i]), want[static_cast<std::size_t>(i)], tolerance); },
        [&](std::ostream& out, std::int64_t i) {
            const auto& w = want[static_cast<std::size_t>(i)];
            out << show(T(got[i])) << ", want " << show(rounded<T>(w.value)) << " within " << tolerance << " eps of "
                << static_cast<double>(w.scale);
        });
}

template <class T>
bool same_bits(const T& a, const T& b)
{
    return std::memcmp(&a, &b, sizeof(T)) == 0;
}

// Equal bit patterns: signs of zeros and payloads of NaNs count.
template <class T>
void expect_same_bits(const T& got, const T& want)
{
    if (!same_bits(got, want)) ADD_FAILURE() << "got " << show(got) << ", want the bits of " << show(want);
}

template <class T, class Got, class Want>
void expect_same_bits(const Got& got, const Want& want, std::int64_t count)
{
    detail::expect_all(
        count, [&](std::int64_t i) { return same_bits(T(got[i]), T(want[i])); },
        [&](std::ostream& out, std::int64_t i) {
            out << show(T(got[i])) << ", want the bits of " << show(T(want[i]));
        });
}

} // namespace ork::test

// SPDX-License-Identifier: MIT
// Comparisons and references that tests of LAPACK's building blocks share.
#pragma once

#include "support/compare.h"
#include "support/random.h"
#include "support/strided.h"

namespace ork::test {

// Equal numbers, signs of zeros included; a NaN is equal to any NaN.
template <class T>
bool equal(T a, T b)
{
    if constexpr (is_complex<T>)
        return equal(a.real(), b.real()) && equal(a.imag(), b.imag());
    else
        return ulp_distance(a, b) == 0;
}
template <class T>
void expect_equal(const std::vector<T>& got, const std::vector<T>& want)
{
    ASSERT_EQ(got.size(), want.size());
    detail::expect_all(
        static_cast<std::int64_t>(got.size()),
        [&](std::int64_t i) { return equal(got[static_cast<std::size_t>(i)], want[static_cast<std::size_t>(i)]); },
        [&](std::ostream& out, std::int64_t i) {
            out << show(got[static_cast<std::size_t>(i)]) << ", want " << show(want[static_cast<std::size_t>(i)]);
        });
}

// Magnitudes over 40 binary orders, now and then an infinity or a NaN.
template <class T>
T odd_value(Random& random)
{
    const auto draw = random.integer(0, 199);
    if (draw == 0) return T(std::numeric_limits<Real<T>>::infinity());
    if (draw == 1) return T(std::numeric_limits<Real<T>>::quiet_NaN());
    return random.spread<T>();
}
template <class T>
std::vector<T> odd_values(std::int64_t n, Random& random)
{
    std::vector<T> values;
    for (std::int64_t i = 0; i < n; ++i) values.push_back(odd_value<T>(random));
    return values;
}

using WideMatrix = std::vector<std::vector<Wide<quad>>>; // columns

template <class T>
WideMatrix widened(const Matrix<T>& a)
{
    WideMatrix wide(static_cast<std::size_t>(a.columns()));
    for (std::int64_t j = 0; j < a.columns(); ++j)
        for (std::int64_t i = 0; i < a.rows(); ++i) wide[static_cast<std::size_t>(j)].emplace_back(a(i, j));
    return wide;
}
// Within tolerance * eps of the matrix's own size.
template <class T>
void expect_near(const Matrix<T>& got, const WideMatrix& want, double tolerance)
{
    quad scale = 0;
    for (const auto& column : want)
        for (const auto& x : column) scale = std::max(scale, magnitude(x));
    for (std::int64_t j = 0; j < got.columns(); ++j)
        for (std::int64_t i = 0; i < got.rows(); ++i)
            expect_near(got(i, j),
                        Expected<quad>{want[static_cast<std::size_t>(j)][static_cast<std::size_t>(i)], scale},
                        tolerance);
}

} // namespace ork::test

// SPDX-License-Identifier: MIT
// What the extra precision is for: sums that cancel, against __float128, and numbers at the ends of the range.
#include "xblas/problem.h"

namespace ork::test {
namespace {

template <class T>
class Accuracy : public testing::Test {
};
TYPED_TEST_SUITE(Accuracy, Precisions, PrecisionNames);

quad size_of(quad a) { return a < 0 ? -a : a; }

// A row whose product with x is about 1 / condition of the sum of its terms' sizes: the first half is random, of sizes
// down to 1 / condition; each further element cancels what the sum has come to, as far as T can.
template <class T>
std::vector<T> cancelling(const std::vector<T>& x, double condition, Random& random)
{
    const auto n = x.size();
    const int orders = std::max(1, static_cast<int>(std::log2(condition) / 2));
    std::vector<T> a(n);
    Wide<quad> sum;
    for (std::size_t t = 0; t < n; ++t) {
        if (t < n / 2) {
            a[t] = random.spread<T>(orders);
        } else {
            const quad size = size_of(quad(real_of(x[t]))) + size_of(quad(imag_of(x[t])));
            const auto re = static_cast<Real<T>>(-sum.re / (size * size) * real_of(x[t]));
            a[t] = T(re) + random.spread<T>(orders) * T(static_cast<Real<T>>(std::ldexp(1.0, -orders)));
            if (t > n - 4) a[t] = T(re); // the last ones take the rest away
        }
        sum += multiply<T>(Wide<quad>(a[t]), Wide<quad>(x[t]));
    }
    return a;
}

// |y - a . x| <= 4 k 2^-106 sum |a||x| + half a unit of y, for sums of k real products, conditions from 1e10 to 1e30.
TYPED_TEST(Accuracy, IllConditionedSums)
{
    using T = TypeParam;
    using R = Real<T>;
    Random random(5);
    double worst_condition = 0;
    for (const double condition : {1e10, 1e15, 1e20, 1e25, 1e30})
        for (const Int n : {10, 30, 100, 300}) {
            std::vector<T> x(static_cast<std::size_t>(n));
            for (T& v : x) v = T(random.spread<R>(4));
            const std::vector<T> a = cancelling(x, condition, random);
            Wide<quad> want;
            quad sizes = 0;
            for (std::size_t t = 0; t < a.size(); ++t) {
                want += multiply<T>(Wide<quad>(a[t]), Wide<quad>(x[t]));
                sizes += magnitude(Wide<quad>(a[t])) * magnitude(Wide<quad>(x[t]));
            }
            Problem<T> p;
            p.m = 1, p.n = n;
            T y{};
            p.call(a.data(), 1, x.data(), nullptr, &y, by_columns);
            const quad bound = (is_complex<T> ? 8 : 4) * quad(n) * std::ldexp(1.0, -106) * sizes;
            const auto expect_near = [&](double got, quad exact) {
                const quad half_unit = size_of(exact) * quad(std::numeric_limits<R>::epsilon()) / 2;
                EXPECT_TRUE(size_of(quad(got) - exact) <= bound + half_unit * 1.0001)
                    << got << ", not " << static_cast<double>(exact) << ", n " << n << ", condition " << condition;
            };
            expect_near(real_of(y), want.re);
            expect_near(imag_of(y), want.im);
            if (want.re != 0)
                worst_condition = std::max(worst_condition, static_cast<double>(sizes / size_of(want.re)));
        }
    EXPECT_GE(worst_condition, sizeof(R) == 8 ? 1e25 : 1e10); // the sums did cancel
}

TYPED_TEST(Accuracy, WhatDoubleLoses)
{
    using T = TypeParam;
    const T small(static_cast<Real<T>>(1e-17)), a[] = {T(1), small, T(-1)}, x[] = {T(1), T(1), T(1)};
    for (Problem<T> p; const Int prec : all_precisions) {
        p.n = 3, p.prec = prec;
        T y(7);
        p.call(a, 1, x, nullptr, &y, 0);
        EXPECT_EQ(y, prec == extra ? small : T{}) << prec;
    }
}

// Splitting doesn't overflow before the product does; infinities and NaN show.
TYPED_TEST(Accuracy, EndsOfTheRange)
{
    using T = TypeParam;
    using R = Real<T>;
    const R big = std::ldexp(R(1), std::numeric_limits<R>::max_exponent - 2),
            infinity = std::numeric_limits<R>::infinity();
    const T x[] = {T(R(0.5)), T(R(0.25))};
    Problem<T> p;
    p.n = 2;
    T y{}, a[] = {T(big), T(big)};
    p.call(a, 1, x, nullptr, &y, 0);
    EXPECT_EQ(y, T(big / 2 + big / 4));
    for (const R bad : {infinity, std::numeric_limits<R>::quiet_NaN()})
        for (const Int prec : all_precisions) {
            p.prec = prec, a[1] = T(bad);
            p.call(a, 1, x, nullptr, &y, 0);
            EXPECT_FALSE(std::isfinite(real_of(y))) << bad << " " << prec;
        }
}

} // namespace
} // namespace ork::test

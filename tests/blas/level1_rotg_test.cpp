// SPDX-License-Identifier: MIT
// rotg and rotmg: what makes a rotation, over the whole range of exponents.
#include <cmath>
#include <limits>

#include "blas/level1_kernels_by_type.h"
#include "support/compare.h"
#include "support/environment.h"
#include "support/random.h"

namespace ork::test {
namespace {

using Q = Wide<quad>;

// libquadmath is not linked; one Newton step from the root in long double, which has the exponent range that is needed.
quad root(quad a)
{
    if (a == 0) return 0;
    const quad x = std::sqrt(static_cast<long double>(a));
    return (x + a / x) / 2;
}
quad squared(Q a) { return a.re * a.re + a.im * a.im; }

template <class R>
std::vector<R> magnitudes()
{
    using L = std::numeric_limits<R>;
    std::vector<R> result = {0, L::denorm_min(), L::min(), 1, R(3), L::epsilon(), 1 / L::epsilon(), L::max() / 4};
    for (int e = L::min_exponent - 10; e < L::max_exponent - 2; e += L::max_exponent / 9)
        result.push_back(std::ldexp(R(1.37), e));
    return result;
}

template <class T>
class Rotg : public testing::Test {
public:
    using R = Real<T>;
    static void check(T a, T b)
    {
        SCOPED_TRACE(testing::Message() << show(a) << ", " << show(b));
        T r = a, z = b, s(R(7));
        R c = 7;
        const unsigned flags = fp_flags_of([&] { rotg<T>(&r, &z, &c, &s); });
        const Q f(a), g(b);
        const quad h = root(squared(f) + squared(g)), modulus = root(squared(f));
        Q want_r, want_s;
        quad want_c;
        if constexpr (is_complex<T>) {
            EXPECT_EQ(flags & (fp_invalid | fp_overflow | fp_divide), 0u);
            expect_same_bits(z, b);
            want_c = h == 0 ? 1 : modulus / h;
            const Q phase = modulus == 0 ? Q(1) : Q(f.re / modulus, f.im / modulus);
            want_r = Q(phase.re * h, phase.im * h);
            const Q product = multiply<T>(phase, conj(g));
            want_s = h == 0 ? Q() : Q(product.re / h, product.im / h);
        } else {
            const bool first = std::abs(a) > std::abs(b);
            const quad sign = (first ? a : b) < 0 ? -1 : 1;
            want_r = Q(b == 0 ? f.re : sign * h);
            want_c = want_r.re == 0 ? 1 : f.re / want_r.re;
            want_s = want_r.re == 0 ? Q() : Q(g.re / want_r.re);
            // 1 / c may itself be too large.
            EXPECT_EQ(flags & (fp_invalid | fp_divide | (std::isinf(z) ? 0u : fp_overflow)), 0u);
            const R want_z = b == 0 ? 0 : first ? s : c != 0 ? 1 / c : 1;
            expect_same_bits(z, want_z);
        }
        expect_near(r, Expected<quad>{want_r, root(squared(want_r))}, 4);
        expect_near(c, Expected<quad>{Q(want_c), want_c < 0 ? -want_c : want_c}, 4);
        expect_near(s, Expected<quad>{want_s, root(squared(want_s))}, 6);
    }
};
using Precisions = testing::Types<float, double, cfloat, cdouble>;
TYPED_TEST_SUITE(Rotg, Precisions);

TYPED_TEST(Rotg, IsTheRotationOverTheWholeRange)
{
    using R = Real<TypeParam>;
    for (const R a : magnitudes<R>())
        for (const R b : magnitudes<R>()) {
            if constexpr (is_complex<TypeParam>) {
                for (const TypeParam f : {TypeParam(a, 0), TypeParam(0, -a), TypeParam(-a, a / 3), TypeParam(a, b)})
                    for (const TypeParam g : {TypeParam(b, 0), TypeParam(0, b), TypeParam(b / 5, -b)})
                        this->check(f, g);
            } else {
                for (const R f : {a, -a})
                    for (const R g : {b, -b}) this->check(f, g);
            }
        }
    Random random;
    for (int i = 0; i < 1000; ++i) {
        const auto a = random.uniform<TypeParam>();
        this->check(a, random.uniform<TypeParam>());
    }
}

TYPED_TEST(Rotg, PassesNaNOn)
{
    using T = TypeParam;
    using R = Real<T>;
    const T nan(std::numeric_limits<R>::quiet_NaN());
    for (const bool first : {true, false}) {
        T a = first ? nan : T(1), b = first ? T(1) : nan, s{};
        R c{};
        rotg<T>(&a, &b, &c, &s);
        EXPECT_TRUE(std::isnan(magnitude1(a)) && std::isnan(c) && std::isnan(magnitude1(s)));
    }
}

template <class T>
class Rotmg : public testing::Test {
};
using RealPrecisions = testing::Types<float, double>;
TYPED_TEST_SUITE(Rotmg, RealPrecisions);

// With D = diag(d1, d2) and D' the new one, H' D' H = D, and H takes (x1, y1) to (x1', 0).
template <class T>
void check_rotmg(T d1, T d2, T x1, T y1)
{
    SCOPED_TRACE(testing::Message() << d1 << ' ' << d2 << ' ' << x1 << ' ' << y1);
    T n1 = d1, n2 = d2, nx = x1;
    const T unset = T(-77);
    T param[5] = {unset, unset, unset, unset, unset};
    EXPECT_EQ(fp_flags_of([&] { rotmg<T>(&n1, &n2, &nx, &y1, param); }) & (fp_invalid | fp_overflow | fp_divide), 0u);
    const quad q = static_cast<quad>(d1) * x1 * x1 + static_cast<quad>(d2) * y1 * y1;
    if (d1 < 0 || (q < 0 && y1 != 0 && d2 != 0)) {
        EXPECT_EQ(param[0], -1);
        for (int i = 1; i < 5; ++i) EXPECT_EQ(param[i], 0);
        EXPECT_TRUE(n1 == 0 && n2 == 0 && nx == 0);
        return;
    }
    if (d2 == 0 || y1 == 0) {
        EXPECT_EQ(param[0], -2);
        for (int i = 1; i < 5; ++i) EXPECT_EQ(param[i], unset);
        EXPECT_TRUE(n1 == d1 && n2 == d2 && nx == x1);
        return;
    }
    quad h11, h21, h12, h22;
    if (param[0] == -1) {
        h11 = param[1], h21 = param[2], h12 = param[3], h22 = param[4];
    } else if (param[0] == 0) {
        h11 = 1, h21 = param[2], h12 = param[3], h22 = 1;
        EXPECT_TRUE(param[1] == unset && param[4] == unset);
    } else {
        ASSERT_EQ(param[0], 1);
        h11 = param[1], h21 = -1, h12 = 1, h22 = param[4];
        EXPECT_TRUE(param[2] == unset && param[3] == unset);
    }
    const T range = T(1 << 24);
    EXPECT_TRUE(n1 == 0 || (n1 > 1 / range && n1 < range)) << n1;
    EXPECT_TRUE(n2 == 0 || (std::abs(n2) > 1 / range && std::abs(n2) < range)) << n2;
    const auto absolute = [](quad a) { return a < 0 ? -a : a; };
    // An element of H may be too small to be had exactly; it is then off by so much, times what it is multiplied with.
    const quad slack =
        static_cast<quad>(std::numeric_limits<T>::denorm_min()) *
        (absolute(x1) + absolute(y1) +
         (absolute(h11) + absolute(h21) + absolute(h12) + absolute(h22)) * (absolute(n1) + absolute(n2)));
    const auto near = [&](quad got, quad want, quad scale) {
        EXPECT_TRUE(absolute(got - want) <= 16 * static_cast<quad>(std::numeric_limits<T>::epsilon()) * scale + slack)
            << static_cast<double>(got) << ", want " << static_cast<double>(want);
    };
    near(h11 * x1 + h12 * y1, nx, absolute(h11 * x1) + absolute(h12 * y1));
    near(h21 * x1 + h22 * y1, 0, absolute(h21 * x1) + absolute(h22 * y1));
    near(n1 * h11 * h11 + n2 * h21 * h21, d1, absolute(n1 * h11 * h11) + absolute(n2 * h21 * h21));
    near(n1 * h12 * h12 + n2 * h22 * h22, d2, absolute(n1 * h12 * h12) + absolute(n2 * h22 * h22));
    near(n1 * h11 * h12 + n2 * h21 * h22, 0, absolute(n1 * h11 * h12) + absolute(n2 * h21 * h22));
}

TYPED_TEST(Rotmg, IsTheRotationAndKeepsTheWeightsInRange)
{
    using T = TypeParam;
    const T weights[] = {0,       T(0.25),        1,        T(3.7),  T(1e-9), T(1e9),
                         T(6e-8), T(1.6777216e7), T(1e-25), T(1e25), -1,      T(-0.3)};
    const T values[] = {0, 1, T(-2.5), T(1e-5), T(3e5), T(-1e-9)};
    for (const T d1 : weights)
        for (const T d2 : weights)
            for (const T x1 : values)
                for (const T y1 : values) {
                    // With x1 = 0 in both products, or q = 0 exactly, there is nothing to rotate to.
                    const quad q = static_cast<quad>(d1) * x1 * x1 + static_cast<quad>(d2) * y1 * y1;
                    if (q == 0 && d2 != 0 && y1 != 0) continue;
                    check_rotmg(d1, d2, x1, y1);
                }
}

TYPED_TEST(Rotmg, ComesToAnEndWithInfinityAndNaN)
{
    using T = TypeParam;
    for (const T odd : {std::numeric_limits<T>::infinity(), std::numeric_limits<T>::quiet_NaN()})
        for (int which = 0; which < 4; ++which) {
            T v[4] = {1, 2, 3, 4}, param[5] = {};
            v[which] = odd;
            rotmg<T>(&v[0], &v[1], &v[2], &v[3], param);
        }
}

TEST(Drotmg, IntermediateProductsOutsideTheRangeDoNoHarm)
{
    for (const double d : {1e-200, 1.0, 1e200})
        for (const double x : {1e-140, 1.0, 1e140}) {
            check_rotmg(d, d * 0.7, x, x * 1.3);
            check_rotmg(d, d * 3e4, x, x * 1e-3);
        }
}

} // namespace
} // namespace ork::test

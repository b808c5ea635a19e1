// SPDX-License-Identifier: MIT
// The signal primitives' checks, and the copies and multiples beside them.
#include "dft/node.h"
#include "dft/primitives/wrappers.h"
#include "support/strided.h"

namespace ork::test {
namespace {

template <class R>
class Primitives : public testing::Test {
protected:
    FreshCore core;
};
using Precisions = testing::Types<float, double>;
TYPED_TEST_SUITE(Primitives, Precisions);

TYPED_TEST(Primitives, CheckPointersBeforeLengths)
{
    using R = TypeParam;
    constexpr auto transform = is_double<R> ? ork_dft_nx2_ufx_transform_z : ork_dft_nx2_ufx_transform_c;
    constexpr auto batch = is_double<R> ? ork_dft_nx2_ufx_batch_z : ork_dft_nx2_ufx_batch_c;
    constexpr auto twiddle = is_double<R> ? ork_dft_nx2_ufx_twiddle_z : ork_dft_nx2_ufx_twiddle_c;
    Node<R> node({128});
    ASSERT_EQ(node.commit(), ORK_DFT_OK);
    std::vector<R> x = uniform_values<R>(256), y(256, R(7)), untouched = y;
    const void* plan = node->plan;
    for (const Int n : {Int{0}, Int{-3}, Int{128}}) {
        EXPECT_EQ(transform(nullptr, y.data(), n, plan, 0, 1, nullptr), ORK_DFT_PRIMITIVE_NULL);
        EXPECT_EQ(transform(x.data(), nullptr, n, plan, 0, 1, nullptr), ORK_DFT_PRIMITIVE_NULL);
        EXPECT_EQ(transform(x.data(), y.data(), n, nullptr, 0, 1, nullptr), ORK_DFT_PRIMITIVE_NULL);
        EXPECT_EQ(twiddle(nullptr, y.data(), n, x.data(), x.data(), 0), ORK_DFT_PRIMITIVE_NULL);
        EXPECT_EQ(twiddle(x.data(), nullptr, n, x.data(), x.data(), 0), ORK_DFT_PRIMITIVE_NULL);
        EXPECT_EQ(twiddle(x.data(), y.data(), n, nullptr, x.data(), 0), ORK_DFT_PRIMITIVE_NULL);
        EXPECT_EQ(twiddle(x.data(), y.data(), n, x.data(), nullptr, 0), ORK_DFT_PRIMITIVE_NULL);
    }
    const ork_dft_place in = {x.data(), x.data() + 1, 2, 256}, out = {y.data(), y.data() + 1, 2, 256};
    for (const Int n : {0, 1}) {
        for (void* ork_dft_place::*part : {&ork_dft_place::re, &ork_dft_place::im}) {
            ork_dft_place broken = in;
            broken.*part = nullptr;
            EXPECT_EQ(batch(&broken, &out, n, plan, 0, 1, nullptr), ORK_DFT_PRIMITIVE_NULL);
            EXPECT_EQ(batch(&in, &broken, n, plan, 0, 1, nullptr), ORK_DFT_PRIMITIVE_NULL);
        }
        EXPECT_EQ(batch(nullptr, &out, n, plan, 0, 1, nullptr), ORK_DFT_PRIMITIVE_NULL);
        EXPECT_EQ(batch(&in, nullptr, n, plan, 0, 1, nullptr), ORK_DFT_PRIMITIVE_NULL);
        EXPECT_EQ(batch(&in, &out, n, nullptr, 0, 1, nullptr), ORK_DFT_PRIMITIVE_NULL);
    }
    for (const Int n : {0, -1}) {
        EXPECT_EQ(transform(x.data(), y.data(), n, plan, 0, 1, nullptr), ORK_DFT_PRIMITIVE_LENGTH);
        EXPECT_EQ(batch(&in, &out, n, plan, 0, 1, nullptr), ORK_DFT_PRIMITIVE_LENGTH);
        EXPECT_EQ(twiddle(x.data(), y.data(), n, x.data(), x.data(), 0), ORK_DFT_PRIMITIVE_LENGTH);
    }
    EXPECT_EQ(y, untouched);
    // In order, they compute: with and without work memory of the caller's.
    EXPECT_EQ(transform(x.data(), y.data(), 128, plan, 0, 1, nullptr), ORK_DFT_OK);
    std::vector<R> once = y;
    EXPECT_NE(once, untouched);
    alignas(64) static char work[1 << 16];
    EXPECT_EQ(transform(x.data(), y.data(), 128, plan, 0, 1, work), ORK_DFT_OK);
    EXPECT_EQ(y, once);
    EXPECT_EQ(batch(&in, &out, 1, plan, 0, 1, nullptr), ORK_DFT_OK);
    EXPECT_EQ(this->core->live_work, 0);
}

TYPED_TEST(Primitives, TwiddleMultipliesByProductsOfTwoRoots)
{
    using R = TypeParam;
    using C = std::complex<R>;
    constexpr auto twiddle = is_double<R> ? ork_dft_nx2_ufx_twiddle_z : ork_dft_nx2_ufx_twiddle_c;
    const auto coarse = uniform_values<C>(4, 2), fine = uniform_values<C>(64, 3);
    for (const Int n : {1, 2, 3, 63, 64, 65, 128, 200})
        for (const int direction : {ORK_DFT_FORWARD, ORK_DFT_BACKWARD}) {
            Guarded<C> x(uniform_values<C>(n, static_cast<std::uint64_t>(n))), y(n);
            ASSERT_EQ(twiddle(x.data(), y.data(), n, coarse.data(), fine.data(), direction), ORK_DFT_OK);
            for (Int k = 0; k < n; ++k) {
                wide w = wide(coarse[static_cast<std::size_t>(k / 64)]) * wide(fine[static_cast<std::size_t>(k % 64)]);
                if (direction == ORK_DFT_BACKWARD) w = std::conj(w);
                ASSERT_LE(std::abs(wide(y[k]) - wide(x[k]) * w), 8 * std::numeric_limits<R>::epsilon())
                    << n << ' ' << k;
            }
        }
}

template <class T>
class Copies : public testing::Test {
};
using Types = testing::Types<float, double, std::complex<float>, std::complex<double>>;
TYPED_TEST_SUITE(Copies, Types);

template <class T>
void copy(Int n, const T* x, Int incx, T* y, Int incy)
{
    if constexpr (std::is_same_v<T, float>)
        ork_dft_nx2_dft_scopy(n, x, incx, y, incy);
    else if constexpr (std::is_same_v<T, double>)
        ork_dft_nx2_dft_dcopy(n, x, incx, y, incy);
    else if constexpr (std::is_same_v<T, std::complex<float>>)
        ork_dft_nx2_dft_ccopy(n, x, incx, y, incy);
    else
        ork_dft_nx2_dft_zcopy(n, x, incx, y, incy);
}

TYPED_TEST(Copies, MoveElementsAndNothingElse)
{
    using T = TypeParam;
    for (Int n = -1; n <= 19; ++n)
        for (Int incx = -3; incx <= 3; ++incx)
            for (const Int incy : {-3, -2, -1, 1, 2, 3})
                for (const Guard side : both_guards) {
                    if (n > 1 && incx == 0) continue;
                    const auto values = uniform_values<T>(std::max<Int>(n, 0));
                    Vector<T> x(values, incx == 0 ? 1 : incx, side), y(n, incy, side);
                    x.read_only();
                    copy(n, x.data(), incx, y.data(), incy);
                    ASSERT_EQ(y.values(), values) << n << ' ' << incx << ' ' << incy;
                    ASSERT_TRUE(y.padding_intact());
                }
}

TYPED_TEST(Primitives, RealMultiplesOfComplexVectors)
{
    using R = TypeParam;
    using C = std::complex<R>;
    for (Int n = 0; n <= 9; ++n)
        for (const Int inc : {-2, -1, 1, 3})
            for (const R alpha : {R(0.3), R(0), std::numeric_limits<R>::quiet_NaN()}) {
                const auto values = uniform_values<C>(n);
                Vector<C> x(values, inc);
                if constexpr (is_double<R>)
                    ork_dft_nx2_dft_zdscal(n, alpha, x.data(), inc);
                else
                    ork_dft_nx2_dft_csscal(n, alpha, x.data(), inc);
                for (Int i = 0; i < n; ++i) {
                    const C want = values[static_cast<std::size_t>(i)];
                    if (std::isnan(alpha))
                        ASSERT_TRUE(std::isnan(x[i].real()) && std::isnan(x[i].imag()));
                    else
                        ASSERT_EQ(x[i], C(alpha * want.real(), alpha * want.imag()));
                }
                ASSERT_TRUE(x.padding_intact());
            }
}

TEST(PiFunctions, AreTheCoresOfTheProduct)
{
    FreshCore core;
    for (const double x : {0.0, 0.125, 0.3, -0.5, 1.75}) {
        EXPECT_NEAR(ork_dft_nx2_dft_dcospi(x), std::cos(std::acos(-1.0) * x), 1e-15);
        EXPECT_NEAR(ork_dft_nx2_dft_dsinpi(x), std::sin(std::acos(-1.0) * x), 1e-15);
        EXPECT_NEAR(ork_dft_nx2_dft_scospi(static_cast<float>(x)), std::cos(std::acos(-1.0) * x), 3e-7);
        EXPECT_NEAR(ork_dft_nx2_dft_ssinpi(static_cast<float>(x)), std::sin(std::acos(-1.0) * x), 3e-7);
    }
}

} // namespace
} // namespace ork::test

// SPDX-License-Identifier: MIT
#include "support/compare.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <complex>
#include <cstring>

#include "support/random.h"

namespace ork::test {
namespace {

template <class T>
class Compare : public testing::Test {
public:
    static constexpr std::int64_t n = 33;
    inline static std::vector<T> x, y, got;
    inline static std::vector<Expected<>> want;

    void SetUp() override
    {
        x = spread_values<T>(n, 1);
        y = spread_values<T>(n, 2);
        got.clear();
        want.clear();
        for (std::int64_t i = 0; i < n; ++i) {
            Expected<> product;
            product.add(multiply<T>(Wide<quad>(x[i]), Wide<quad>(y[i])));
            want.push_back(product);
            got.push_back(x[i] * y[i]);
        }
    }
    static void set_real(T& z, Real<T> value)
    {
        if constexpr (is_complex<T>)
            z.real(value);
        else
            z = value;
    }
};
using Scalars = testing::Types<float, double, std::complex<float>, std::complex<double>>;
TYPED_TEST_SUITE(Compare, Scalars);

TYPED_TEST(Compare, RoundedResultsPass) { expect_near<TypeParam>(this->got, this->want, 2); }

TYPED_TEST(Compare, WrongElementsFail)
{
    using Fixture = Compare<TypeParam>;
    const auto good = Fixture::got;
    const auto refused = [&](const char* message) {
        EXPECT_NONFATAL_FAILURE(expect_near<TypeParam>(Fixture::got, Fixture::want, 2), message);
        Fixture::got = good;
    };
    Fixture::set_real(Fixture::got[7], std::numeric_limits<Real<TypeParam>>::quiet_NaN());
    refused("[7]");
    Fixture::set_real(Fixture::got[32], std::numeric_limits<Real<TypeParam>>::infinity());
    refused("[32]");
    Fixture::got[3] = -Fixture::got[3];
    refused("[3]");
    Fixture::got[5] = TypeParam(0);
    refused("[5]");
    std::swap(Fixture::got[0], Fixture::got[1]);
    refused("2 of 33");
    Fixture::got[9] *= TypeParam(1 + 20 * std::numeric_limits<Real<TypeParam>>::epsilon());
    refused("[9]");
    if constexpr (is_complex<TypeParam>) {
        Fixture::got[4] = std::conj(Fixture::got[4]);
        refused("[4]");
        Fixture::got[4].imag(std::numeric_limits<Real<TypeParam>>::quiet_NaN());
        refused("[4]");
    }
    Fixture::want[2].value.re =
        std::numeric_limits<double>::quiet_NaN(); // a NaN that is missing is as wrong as a NaN too many
    refused("[2]");
    Fixture::got[2] = TypeParam(0);
    Fixture::want[2].value.re = std::numeric_limits<double>::infinity();
    refused("[2]");
}

TYPED_TEST(Compare, LostTermsFail)
{
    using Fixture = Compare<TypeParam>;
    using T = TypeParam;
    static std::vector<T> a, b;
    a = uniform_values<T>(Fixture::n, 3);
    b = uniform_values<T>(Fixture::n, 4);
    static T sum;
    sum = T{};
    for (std::int64_t i = 0; i + 1 < Fixture::n; ++i) sum += a[i] * b[i];
    EXPECT_NONFATAL_FAILURE(expect_near(sum, reference_dot<T>(Fixture::n, a, b), double(2 * Fixture::n)), "want");
    expect_near(sum, reference_dot<T>(Fixture::n - 1, a, b), double(2 * Fixture::n));
    sum = std::numeric_limits<Real<T>>::quiet_NaN();
    EXPECT_NONFATAL_FAILURE(expect_near(sum, reference_dot<T>(Fixture::n, a, b), 1e9), "want");
}

TYPED_TEST(Compare, BitsDifferWhereValuesAgree)
{
    using T = TypeParam;
    static T zero(0), minus_zero = -T(0);
    expect_same_bits(zero, zero);
    EXPECT_NONFATAL_FAILURE(expect_same_bits(zero, minus_zero), "bits");
    static std::vector<T> one, other;
    one = other = spread_values<T>(9, 5);
    expect_same_bits<T>(one, other, 9);
    reinterpret_cast<unsigned char*>(&other[6])[0] ^= 1;
    EXPECT_NONFATAL_FAILURE(expect_same_bits<T>(one, other, 9), "[6]");
}

TYPED_TEST(Compare, GemmReferenceMeetsASmallProductByHand)
{
    using T = TypeParam;
    // op(A) = [1 2; 3 4; 5 6], op(B) = [1 -1; 2 0], C = all 1: 2 A B + 3 C = [13 1; 25 -3; 37 -7]
    const std::vector<T> a{1, 3, 5, 2, 4, 6}, at{1, 2, 3, 4, 5, 6}, b{1, 2, -1, 0}, bt{1, -1, 2, 0}, c(6, T(1));
    const std::vector<T> want{13, 25, 37, 1, -3, -7};
    for (char ta : {'N', 'T', 'C'})
        for (char tb : {'N', 'T', 'C'}) {
            const auto result = reference_gemm<T>(ta, tb, 3, 2, 2, T(2), (ta == 'N' ? a : at).data(), ta == 'N' ? 3 : 2,
                                                  (tb == 'N' ? b : bt).data(), 2, T(3), c.data(), 3);
            expect_near<T>(want, result, 1);
        }
    if constexpr (is_complex<T>) { // conj(i) * i = 1, i * i = -1
        const T i(0, 1);
        expect_near(T(1), reference_gemm<T>('C', 'N', 1, 1, 1, T(1), &i, 1, &i, 1, T(0), nullptr, 1)[0], 1);
        expect_near(T(-1), reference_gemm<T>('T', 'N', 1, 1, 1, T(1), &i, 1, &i, 1, T(0), nullptr, 1)[0], 1);
    }
}

TYPED_TEST(Compare, SpreadDataTellOrdersOfAdditionApart)
{
    using T = TypeParam;
    int differ = 0;
    for (std::uint64_t seed = 1; seed <= 20; ++seed) {
        auto values = spread_values<T>(64, seed);
        T forward{}, backward{};
        for (const T& v : values) forward += v;
        std::reverse(values.begin(), values.end());
        for (const T& v : values) backward += v;
        differ += !same_bits(forward, backward);
    }
    EXPECT_GE(differ, 15);
}

TEST(UlpDistance, CountsRepresentableNumbers)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(ulp_distance(1.0, std::nextafter(1.0, 2.0)), 1u);
    EXPECT_EQ(ulp_distance(-1.0, std::nextafter(-1.0, 0.0)), 1u);
    EXPECT_EQ(ulp_distance(0.0, -0.0), 1u);
    EXPECT_EQ(ulp_distance(-std::numeric_limits<float>::denorm_min(), std::numeric_limits<float>::denorm_min()), 3u);
    EXPECT_EQ(ulp_distance(nan, nan), 0u);
    EXPECT_GT(ulp_distance(nan, 1.0), 1ull << 60);
    EXPECT_GT(ulp_distance(1.0, -1.0), 1ull << 60);
}

} // namespace
} // namespace ork::test

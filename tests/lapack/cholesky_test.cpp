// SPDX-License-Identifier: MIT
#include "lapack/plain_factors.h"

namespace ork::test {
namespace {

template <class T>
class Cholesky : public testing::Test {
};
TYPED_TEST_SUITE(Cholesky, Precisions, PrecisionNames);

// Positive definite with the diagonal element `spoilt` replaced. The imaginary parts of the diagonal are poison, as is
// the other triangle.
template <class T>
std::function<T(Int, Int)> definite(Int n, bool upper, Int spoilt, Real<T> diagonal, Random& random)
{
    std::vector<T> values;
    for (Int k = 0; k < n * n; ++k) values.push_back(random.uniform<T>());
    return [=](Int i, Int j) -> T {
        constexpr auto nan = std::numeric_limits<Real<T>>::quiet_NaN();
        if (i == j) {
            const Real<T> d = i == spoilt ? diagonal : static_cast<Real<T>>(n) + std::abs(std::real(values[i]));
            if constexpr (is_complex<T>)
                return {d, nan};
            else
                return d;
        }
        return (i < j) == upper ? values[static_cast<std::size_t>(i + j * n)] : T(nan);
    };
}

TYPED_TEST(Cholesky, BitsAndInfoAreThoseOfThePlainRules)
{
    using T = TypeParam;
    using R = Real<T>;
    const auto either = KERNEL(potrf_small);
    const auto lower = KERNEL(potrf_l_small);
    const auto upper = KERNEL(potrf_u_small);
    ASSERT_TRUE(either && lower && upper);
    Random random(5);
    std::vector<Int> orders = {23, 24, 31, 32, 33, 45, 46, 47, 64, 65, 67};
    for (Int n = 0; n <= 19; ++n) orders.push_back(n);
    for (const Int n : orders)
        for (const char uplo : {'U', 'u', 'L', 'l', 'x'})
            for (Int spoilt = -1; spoilt < std::min<Int>(n, 13); ++spoilt) {
                const bool is_upper = uplo == 'U' || uplo == 'u';
                if (spoilt >= 0 && uplo != 'U' && uplo != 'L') continue;
                const R bad[] = {R(0), R(-1), std::numeric_limits<R>::quiet_NaN(), R(1e-3)};
                const auto element = definite<T>(n, is_upper, spoilt, bad[(spoilt + n + 4) % 4], random);
                SCOPED_TRACE(testing::Message() << "order " << n << ", " << uplo << ", spoilt " << spoilt);
                const Int lda = n + n % 3;
                const Guard side = n % 2 == 0 ? Guard::end : Guard::begin;
                Stored<T> got(n, n, lda, side, element), want(n, n, lda, side, element);
                Int info = -99;
                if (spoilt % 2 == 0)
                    either(&uplo, &n, got.a.data(), &lda, &info);
                else
                    (is_upper ? upper : lower)(&n, got.a.data(), &lda, &info);
                const Int failed = plain_cholesky(want, is_upper);
                ASSERT_EQ(info, failed);
                // Untouched: the other triangle and, of a failed one, what lies behind the offending element.
                ASSERT_TRUE(got.unchanged_except([&](Int i, Int j) {
                    const Int row = is_upper ? j : i, column = is_upper ? i : j;
                    return row >= column &&
                           (failed == 0 || column < failed - 1 || (row == column && row == failed - 1));
                }));
                ASSERT_NO_FATAL_FAILURE(expect_equal(got.elements(), want.elements()));
                if (testing::Test::HasFailure()) return;
            }
}

TYPED_TEST(Cholesky, AnExactZeroOnTheDiagonalStaysWhereItArises)
{
    using T = TypeParam;
    const auto kernel = KERNEL(potrf_small);
    const Int n = 3;
    // [4 . .; 2 1 .; 2 7 9]: a(2, 2) - l(2, 1)^2 = 0.
    std::vector<T> a = {T(4), T(2), T(2), T(-5), T(1), T(7), T(-5), T(-5), T(9)};
    Int info = -99;
    kernel("L", &n, a.data(), &n, &info);
    EXPECT_EQ(info, 2);
    EXPECT_EQ(a, (std::vector<T>{T(2), T(1), T(1), T(-5), T(0), T(7), T(-5), T(-5), T(9)}));
}

} // namespace
} // namespace ork::test

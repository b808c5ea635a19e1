// SPDX-License-Identifier: MIT
// Cholesky: factors, info, the triangle that is nobody's business, solutions, inverses.
#include "lapack.h"

namespace ork::test {

namespace {

template <class T>
class Cholesky : public testing::Test {
};
TYPED_TEST_SUITE(Cholesky, Precisions, PrecisionNames);

constexpr std::int64_t orders[] = {0, 1, 2, 5, 6, 31, 32, 33, 48, 49, 64, 65, 100, 129, 260};

bool inside(char uplo, std::int64_t i, std::int64_t j) { return uplo == 'U' ? i <= j : i >= j; }

// The triangle of a positive definite matrix; beside it and in the imaginary parts of the diagonal stands what must not
// be looked at.
template <class T>
Dense<T> stored(const Dense<T>& a, char uplo)
{
    const Real<T> nan = std::numeric_limits<Real<T>>::quiet_NaN();
    return Dense<T>(a.rows, a.rows).set([&](auto i, auto j) {
        if (!inside(uplo, i, j)) return T(nan);
        if constexpr (is_complex<T>)
            if (i == j) return T(std::real(a(i, i)), nan);
        return a(i, j);
    });
}

// The Hermitian matrix of a stored triangle.
template <class T>
Dense<T> whole(const Dense<T>& a, char uplo)
{
    return Dense<T>(a.rows, a.rows).set([&](auto i, auto j) {
        return inside(uplo, i, j) ? a(i, j) : conjugated(a(j, i));
    });
}

template <class T>
Vector triangle_times(const Dense<T>& f, char uplo, char op, const Vector& x)
{
    return product(
        f, x, [&](auto i, auto j) { return inside(uplo, i, j); }, op);
}

template <class T>
void expect_other_triangle_untouched(const Dense<T>& f, char uplo)
{
    for (std::int64_t j = 0; j < f.columns; ++j)
        for (std::int64_t i = 0; i < f.rows; ++i)
            ASSERT_TRUE(inside(uplo, i, j) || std::isnan(std::real(f(i, j)))) << i << ", " << j;
    EXPECT_TRUE(f.padding_is_poison());
}

TYPED_TEST(Cholesky, FactorsSolvesAndInverts)
{
    using T = TypeParam;
    for (const std::int64_t n : orders) {
        const auto a = positive_matrix<T>(n, n + 1);
        for (const char uplo : {'U', 'L', 'u'}) {
            SCOPED_TRACE(testing::Message() << n << uplo);
            const char side = uplo == 'u' ? 'U' : uplo;
            Dense<T> f = stored(a, side), narrow = f;
            EXPECT_EQ((lapack<T>("potrf", uplo, n, f.data(), f.lead)), 0);
            EXPECT_EQ((lapack<T, std::int32_t>("potrf", uplo, n, narrow.data(), f.lead)), 0);
            EXPECT_TRUE(same_bits(f.values, narrow.values));
            expect_other_triangle_untouched(f, side);
            const Vector x = random_vector(n);
            const Vector once = triangle_times(f, side, side == 'U' ? 'N' : 'C', x);
            expect_small<T>(triangle_times(f, side, side == 'U' ? 'C' : 'N', once), product(a, x), n, 10);

            for (const std::int64_t nrhs : {1, 3, 40}) {
                const auto b = random_matrix<T>(n, nrhs);
                Dense<T> y = b, z = b, g = stored(a, side);
                EXPECT_EQ((lapack<T>("potrs", uplo, n, nrhs, f.data(), f.lead, y.data(), y.lead)), 0);
                EXPECT_EQ((lapack<T>("posv", uplo, n, nrhs, g.data(), g.lead, z.data(), z.lead)), 0);
                EXPECT_TRUE(same_bits(y.values, z.values) && same_bits(f.values, g.values));
                const Vector v = random_vector(nrhs);
                expect_small<T>(product(a, product(y, v)), product(b, v), n, static_cast<long double>(10 * nrhs));
            }
            Dense<T> inverse = f;
            EXPECT_EQ((lapack<T>("potri", uplo, n, inverse.data(), f.lead)), 0);
            expect_other_triangle_untouched(inverse, side);
            expect_small<T>(product(a, product(whole(inverse, side), x)), x, n, 20);
        }
    }
}

// info is the order of the first minor that is not positive, wherever it falls among the blocks.
TYPED_TEST(Cholesky, StopsAtTheFirstMinorThatIsNotPositive)
{
    using T = TypeParam;
    for (const std::int64_t n : {4, 40, 130})
        for (const std::int64_t at : {std::int64_t{0}, n / 3, n / 2, n - 1})
            for (const char uplo : {'U', 'L'})
                for (const float bad : {0.0F, -1.0F, std::numeric_limits<float>::quiet_NaN()}) {
                    SCOPED_TRACE(testing::Message() << n << " " << at << uplo << bad);
                    auto a = positive_matrix<T>(n);
                    a(at, at) = T(bad);
                    Dense<T> f = stored(a, uplo), b = random_matrix<T>(n, 2);
                    const Dense<T> before = b;
                    EXPECT_EQ((lapack<T>("posv", uplo, n, 2, f.data(), f.lead, b.data(), b.lead)), at + 1);
                    EXPECT_TRUE(same_bits(b.values, before.values));
                    expect_other_triangle_untouched(f, uplo);
                    EXPECT_FALSE(std::real(f(at, at)) > 0);
                }
    Dense<T> singular = unit_matrix<T>(40, 40);
    singular(20, 20) = T();
    EXPECT_EQ((lapack<T>("potri", 'L', 40, singular.data(), singular.lead)), 21);
}

} // namespace

} // namespace ork::test

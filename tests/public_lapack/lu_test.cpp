// SPDX-License-Identifier: MIT
// LU and what follows from it: factors, pivots and info, solutions, inverses.
#include "lapack.h"

namespace ork::test {

namespace {

template <class T>
class Lu : public testing::Test {
};
TYPED_TEST_SUITE(Lu, Precisions, PrecisionNames);

// Orders around the crossover from the kernels, the panels and the halves.
constexpr std::int64_t orders[] = {0, 1, 2, 7, 8, 9, 31, 32, 33, 47, 48, 49, 63, 64, 65, 100, 129, 257};

// P L U x, with the pivots undone from the last to the first.
template <class T>
Vector factors_times(const Dense<T>& f, const std::vector<std::int64_t>& ipiv, const Vector& x)
{
    const std::int64_t k = std::min(f.rows, f.columns);
    Vector y = product(f, x, on_and_above);
    for (std::int64_t i = k; i < f.rows; ++i) y[i] = {};
    const Vector ux = y;
    for (std::int64_t j = 0; j < k; ++j)
        for (std::int64_t i = j + 1; i < f.rows; ++i)
            y[i] += multiply<std::complex<double>>(Wide<long double>(f(i, j)), ux[j]);
    for (std::int64_t i = static_cast<std::int64_t>(ipiv.size()) - 1; i >= 0; --i) std::swap(y[i], y[ipiv[i] - 1]);
    return y;
}

template <class T>
struct Factored {
    Dense<T> factors;
    std::vector<std::int64_t> ipiv;
    std::int64_t info;
};
template <class T>
Factored<T> factored(const Dense<T>& a)
{
    Factored<T> f{a, std::vector<std::int64_t>(std::min(a.rows, a.columns)), 0};
    f.info = lapack<T>("getrf", a.rows, a.columns, f.factors.data(), a.lead, f.ipiv.data());
    return f;
}

template <class T>
void expect_factored(const Dense<T>& a, const Factored<T>& f)
{
    const Vector x = random_vector(a.columns);
    const long double size = static_cast<long double>(std::max(a.rows, a.columns));
    expect_small<T>(factors_times(f.factors, f.ipiv, x), product(a, x), a.columns, size, 1);
    EXPECT_TRUE(f.factors.padding_is_poison());
    for (std::size_t i = 0; i < f.ipiv.size(); ++i) {
        EXPECT_GT(f.ipiv[i], static_cast<std::int64_t>(i));
        EXPECT_LE(f.ipiv[i], a.rows);
    }
}

TYPED_TEST(Lu, FactorsEveryShape)
{
    using T = TypeParam;
    for (const std::int64_t m : orders)
        for (const std::int64_t n : {m, m + 1, m - 1, 3 * m, m / 3, m + 70}) {
            if (n < 0) continue;
            SCOPED_TRACE(testing::Message() << m << " x " << n);
            const auto a = random_matrix<T>(m, n, 1000 * m + n);
            const auto f = factored(a);
            EXPECT_EQ(f.info, 0);
            expect_factored(a, f);
            for (std::int64_t j = 0; j < std::min(m, n); ++j) // the pivot was the largest
                for (std::int64_t i = j + 1; i < m; ++i)
                    EXPECT_LE(magnitude(Wide<double>(f.factors(i, j))), is_complex<T> ? 2.001 : 1);

            std::vector<std::int32_t> narrow(f.ipiv.size());
            Dense<T> again = a;
            EXPECT_EQ((lapack<T, std::int32_t>("getrf", m, n, again.data(), a.lead, narrow.data())), 0);
            EXPECT_TRUE(same_bits(again.values, f.factors.values));
            EXPECT_TRUE(std::equal(narrow.begin(), narrow.end(), f.ipiv.begin(), f.ipiv.end()));
        }
}

TYPED_TEST(Lu, WithoutInterchanges)
{
    using T = TypeParam;
    for (const std::int64_t m : orders)
        for (const std::int64_t n : {m, m / 2, 2 * m + 3}) {
            SCOPED_TRACE(testing::Message() << m << " x " << n);
            auto a = random_matrix<T>(m, n);
            for (std::int64_t i = 0; i < std::min(m, n); ++i) a(i, i) += T(static_cast<Real<T>>(m));
            Dense<T> f = a;
            EXPECT_EQ((lapack<T>("getrfnp", m, n, f.data(), a.lead)), 0);
            EXPECT_TRUE(f.padding_is_poison());
            const Vector x = random_vector(n);
            expect_small<T>(factors_times(f, {}, x), product(a, x), n, static_cast<long double>(2 * m + n));
        }
    Dense<T> zero = random_matrix<T>(60, 60);
    for (std::int64_t i = 0; i < 60; ++i) zero(i, 41) = T();
    EXPECT_EQ((lapack<T>("getrfnp", 60, 60, zero.data(), zero.lead)), 42);
}

// A zero column stays exactly zero, so its pivot is the first that is: the factorisation goes on and is complete.
TYPED_TEST(Lu, InfoIsTheFirstZeroPivotAndTheWorkIsDoneAnyway)
{
    using T = TypeParam;
    for (const std::int64_t n : {5, 32, 33, 100})
        for (const std::int64_t column : {std::int64_t{0}, n / 2, n - 1}) {
            SCOPED_TRACE(testing::Message() << n << " column " << column);
            auto a = random_matrix<T>(n, n);
            for (std::int64_t i = 0; i < n; ++i) a(i, column) = a(i, n - 1) = T();
            const auto f = factored(a);
            EXPECT_EQ(f.info, column + 1);
            expect_factored(a, f);

            Dense<T> b = random_matrix<T>(n, 2), copy = b, factors = a;
            std::vector<std::int64_t> ipiv(n);
            EXPECT_EQ((lapack<T>("gesv", n, 2, factors.data(), a.lead, ipiv.data(), b.data(), b.lead)), column + 1);
            EXPECT_TRUE(same_bits(b.values, copy.values)) << "B was touched";

            std::vector<T> work(n);
            const Dense<T> before = factors;
            EXPECT_EQ((lapack<T>("getri", n, factors.data(), a.lead, ipiv.data(), work.data(), n)), column + 1);
            EXPECT_TRUE(same_bits(factors.values, before.values)) << "the factors were touched";
        }
    const auto f = factored(Dense<T>(90, 90).set([](auto, auto) { return T(); }));
    EXPECT_EQ(f.info, 1);
    for (std::int64_t i = 0; i < 90; ++i) EXPECT_EQ(f.ipiv[i], i + 1);
}

TYPED_TEST(Lu, NanAndInfinityComeThrough)
{
    using T = TypeParam;
    for (const double bad : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()})
        for (const std::int64_t n : {6, 30, 90})
            for (const std::int64_t at : {std::int64_t{0}, n / 2, n - 1}) {
                auto a = random_matrix<T>(n, n);
                a(at, n / 2) = T(static_cast<Real<T>>(bad));
                const auto f = factored(a);
                bool seen = false;
                for (std::int64_t j = 0; j < n; ++j) {
                    for (std::int64_t i = 0; i < n; ++i) seen = seen || !std::isfinite(std::real(f.factors(i, j)));
                    EXPECT_GE(f.ipiv[j], j + 1);
                    EXPECT_LE(f.ipiv[j], n);
                }
                EXPECT_TRUE(seen) << n << " " << at << " " << bad;
            }
}

TYPED_TEST(Lu, SolvesForEveryLetterAndNumberOfSides)
{
    using T = TypeParam;
    for (const std::int64_t n : {0, 1, 3, 8, 32, 33, 70, 150})
        for (const std::int64_t nrhs : {0, 1, 2, 8, 9, 40}) {
            auto a = random_matrix<T>(n, n, n);
            for (std::int64_t i = 0; i < n; ++i) a(i, n - 1 - i) += T(4); // interchanges, and a small condition
            const auto b = random_matrix<T>(n, nrhs, nrhs);
            const auto f = factored(a);
            const std::vector<std::int32_t> narrow(f.ipiv.begin(), f.ipiv.end());
            for (const char trans : {'N', 'T', 'C', 'c'}) {
                SCOPED_TRACE(testing::Message() << n << " " << nrhs << " " << trans);
                Dense<T> x = b, y = b;
                EXPECT_EQ(
                    (lapack<T>("getrs", trans, n, nrhs, f.factors.data(), a.lead, f.ipiv.data(), x.data(), x.lead)), 0);
                EXPECT_TRUE(x.padding_is_poison());
                const Vector z = random_vector(nrhs), xz = product(x, z);
                const long double size = static_cast<long double>(n) * (1 + largest(xz));
                expect_small<T>(product(a, xz, trans == 'c' ? 'C' : trans), product(b, z), n, size);
                EXPECT_EQ((lapack<T, std::int32_t>("getrs", trans, n, nrhs, f.factors.data(), a.lead, narrow.data(),
                                                   y.data(), y.lead)),
                          0);
                EXPECT_TRUE(same_bits(x.values, y.values));
                if (trans != 'N') continue;
                Dense<T> factors = a;
                y = b;
                std::vector<std::int64_t> ipiv(n);
                EXPECT_EQ((lapack<T>("gesv", n, nrhs, factors.data(), a.lead, ipiv.data(), y.data(), y.lead)), 0);
                EXPECT_TRUE(same_bits(x.values, y.values) && same_bits(factors.values, f.factors.values));
            }
        }
}

TYPED_TEST(Lu, Inverts)
{
    using T = TypeParam;
    for (const std::int64_t n : orders) {
        SCOPED_TRACE(n);
        auto a = random_matrix<T>(n, n, n);
        for (std::int64_t i = 0; i < n; ++i) a(i, n - 1 - i) += T(static_cast<Real<T>>(n));
        const auto f = factored(a);
        const std::vector<std::int32_t> narrow(f.ipiv.begin(), f.ipiv.end());
        Dense<T> x = f.factors, y = f.factors;
        std::vector<T> work(std::max<std::int64_t>(1, n));
        EXPECT_EQ((lapack<T>("getri", n, x.data(), x.lead, f.ipiv.data(), work.data(), std::max<std::int64_t>(1, n))),
                  0);
        EXPECT_EQ((lapack<T, std::int32_t>("getri", n, y.data(), y.lead, narrow.data(), work.data(), n + 7)), 0);
        EXPECT_TRUE(same_bits(x.values, y.values));
        EXPECT_TRUE(x.padding_is_poison());
        const Vector z = random_vector(n);
        expect_small<T>(product(a, product(x, z)), z, n, 10);

        for (std::int64_t i = 0; i < n; ++i) a(i, i) += T(static_cast<Real<T>>(2 * n));
        x = a;
        EXPECT_EQ((lapack<T>("getrfnp", n, n, x.data(), x.lead)), 0);
        EXPECT_EQ((lapack<T>("getrinp", n, x.data(), x.lead, work.data(), std::max<std::int64_t>(1, n))), 0);
        expect_small<T>(product(a, product(x, z)), z, n, 10);
    }
}

TYPED_TEST(Lu, InvertsTriangles)
{
    using T = TypeParam;
    for (const std::int64_t n : orders)
        for (const char uplo : {'U', 'L'})
            for (const char diag : {'N', 'U'}) {
                SCOPED_TRACE(testing::Message() << n << uplo << diag);
                auto a = random_matrix<T>(n, n, n);
                a.set([&](auto i, auto j) {
                    const bool inside = uplo == 'U' ? i < j : i > j;
                    if (i == j) return diag == 'U' ? T(std::numeric_limits<Real<T>>::quiet_NaN()) : a(i, j) + T(3);
                    return inside ? a(i, j) / T(static_cast<Real<T>>(n)) : T(static_cast<Real<T>>(99)); // not looked at
                });
                Dense<T> x = a;
                EXPECT_EQ((lapack<T>("trtri", uplo, diag, n, x.data(), x.lead)), 0);
                const auto triangle = [&](const Dense<T>& m) {
                    return Dense<T>(n, n).set([&](auto i, auto j) {
                        return i == j && diag == 'U' ? T(1) : (uplo == 'U' ? i <= j : i >= j) ? m(i, j) : T();
                    });
                };
                for (std::int64_t j = 0; j < n; ++j)
                    for (std::int64_t i = 0; i < n; ++i)
                        EXPECT_TRUE((uplo == 'U' ? i <= j : i >= j) || x(i, j) == T(static_cast<Real<T>>(99)));
                const Vector z = random_vector(n);
                expect_small<T>(product(triangle(a), product(triangle(x), z)), z, n, 10);
            }
    Dense<T> a = random_matrix<T>(50, 50);
    a(40, 40) = T();
    const Dense<T> before = a;
    EXPECT_EQ((lapack<T>("trtri", 'U', 'N', 50, a.data(), a.lead)), 41);
    EXPECT_TRUE(same_bits(a.values, before.values));
}

TYPED_TEST(Lu, SolvesTridiagonalSystems)
{
    using T = TypeParam;
    for (const std::int64_t n : {0, 1, 2, 3, 10, 101})
        for (const std::int64_t nrhs : {0, 1, 2, 5}) {
            SCOPED_TRACE(testing::Message() << n << " " << nrhs);
            Random random(n);
            auto a = Dense<T>(n, n).set([&](auto i, auto j) {
                return i - j > 1 || j - i > 1 ? T() : random.uniform<T>() + T(i == j + 1 ? 2 : 0);
            });
            std::vector<T> dl(n + 1), d(n + 1), du(n + 1);
            for (std::int64_t i = 0; i < n; ++i) d[i] = a(i, i);
            for (std::int64_t i = 0; i + 1 < n; ++i) dl[i] = a(i + 1, i), du[i] = a(i, i + 1);
            const auto b = random_matrix<T>(n, nrhs);
            Dense<T> x = b;
            EXPECT_EQ((lapack<T>("gtsv", n, nrhs, dl.data(), d.data(), du.data(), x.data(), x.lead)), 0);
            EXPECT_TRUE(x.padding_is_poison());
            const Vector z = random_vector(nrhs), xz = product(x, z);
            expect_small<T>(product(a, xz), product(b, z), n, 10 * (1 + largest(xz)));
        }
    std::vector<T> dl(4), d(5, T(1)), du(4), b(5, T(1));
    d[3] = T();
    EXPECT_EQ((lapack<T>("gtsv", 5, 1, dl.data(), d.data(), du.data(), b.data(), 5)), 4);
}

} // namespace

} // namespace ork::test

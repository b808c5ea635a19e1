// SPDX-License-Identifier: MIT
// QR: Q R = A with an orthonormal Q, of any shape, and Q applied from either side.
#include "lapack.h"

namespace ork::test {

namespace {

template <class T>
class Qr : public testing::Test {
};
TYPED_TEST_SUITE(Qr, Precisions, PrecisionNames);

template <class T>
struct Factored {
    Dense<T> a;
    std::vector<T> tau;
};
template <class T, class Int = std::int64_t>
Factored<T> factored(const Dense<T>& a)
{
    Factored<T> f{a, std::vector<T>(std::min(a.rows, a.columns))};
    std::vector<T> work(std::max<std::int64_t>(1, a.columns));
    EXPECT_EQ((lapack<T, Int>("geqrf", a.rows, a.columns, f.a.data(), a.lead, f.tau.data(), work.data(),
                              static_cast<std::int64_t>(work.size()))),
              0);
    return f;
}

// The first n columns of Q.
template <class T, class Int = std::int64_t>
Dense<T> q_of(const Factored<T>& f, std::int64_t n, std::int64_t k)
{
    Dense<T> q(f.a.rows, n);
    q.set([&](auto i, auto j) { return j < k ? f.a(i, j) : T(std::numeric_limits<Real<T>>::quiet_NaN()); });
    std::vector<T> work(std::max<std::int64_t>(1, n));
    EXPECT_EQ((lapack<T, Int>(orthogonal<T>("gqr"), q.rows, n, k, q.data(), q.lead, f.tau.data(), work.data(),
                              static_cast<std::int64_t>(work.size()))),
              0);
    return q;
}

TYPED_TEST(Qr, FactorsEveryShape)
{
    using T = TypeParam;
    for (const std::int64_t m : {0, 1, 2, 8, 9, 31, 32, 33, 40, 64, 65, 100, 161})
        for (const std::int64_t n : {m, m / 2, m + 1, m - 1, 3 * m, std::int64_t{5}}) {
            if (n < 0) continue;
            SCOPED_TRACE(testing::Message() << m << " x " << n);
            const auto a = random_matrix<T>(m, n, 1000 * m + n);
            const auto f = factored(a);
            EXPECT_TRUE(f.a.padding_is_poison());
            EXPECT_TRUE(same_bits(f.a.values, (factored<T, std::int32_t>(a).a.values)));
            const std::int64_t k = std::min(m, n);
            for (std::int64_t i = 0; i < k; ++i) EXPECT_EQ(std::imag(f.a(i, i)), 0);
            const auto q = q_of(f, k, k);
            EXPECT_TRUE(q.padding_is_poison());
            EXPECT_TRUE(same_bits(q.values, (q_of<T, std::int32_t>(f, k, k).values)));
            const Vector x = random_vector(n), y = random_vector(k, 5);
            Vector rx = product(f.a, x, on_and_above);
            rx.resize(k);
            const long double size = static_cast<long double>(n + 1);
            expect_small<T>(product(q, rx), product(a, x), m, size);
            expect_small<T>(product(q, product(q, y), 'C'), y, m, 10);

            // Q of fewer reflectors than columns, and all m columns of it.
            const auto all = q_of(f, m, k);
            expect_small<T>(product(all, product(all, random_vector(m, 6)), 'C'), random_vector(m, 6), m, 10);
        }
}

TYPED_TEST(Qr, AppliesQFromBothSides)
{
    using T = TypeParam;
    for (const std::int64_t order : {1, 7, 32, 33, 100})
        for (const std::int64_t k : {std::int64_t{0}, std::int64_t{1}, order / 2, order})
            for (const std::int64_t others : {1, 5, 70}) {
                const auto f = factored(random_matrix<T>(order, std::max<std::int64_t>(k, 1), order + k));
                const auto q = q_of(f, order, k);
                for (const char side : {'L', 'R'})
                    for (const char trans : {'N', adjoint<T>}) {
                        SCOPED_TRACE(testing::Message() << order << " " << k << " " << others << side << trans);
                        const std::int64_t m = side == 'L' ? order : others, n = side == 'L' ? others : order;
                        const auto c = random_matrix<T>(m, n);
                        Dense<T> got = c, narrow = c;
                        const Factored<T> before = f;
                        std::vector<T> work(others);
                        const std::string name = orthogonal<T>("mqr");
                        EXPECT_EQ((lapack<T>(name, side, trans, m, n, k, f.a.data(), f.a.lead, f.tau.data(), got.data(),
                                             got.lead, work.data(), others)),
                                  0);
                        EXPECT_EQ((lapack<T, std::int32_t>(name, side, trans, m, n, k, f.a.data(), f.a.lead,
                                                           f.tau.data(), narrow.data(), got.lead, work.data(), others)),
                                  0);
                        EXPECT_TRUE(same_bits(got.values, narrow.values));
                        EXPECT_TRUE(same_bits(f.a.values, before.a.values) && got.padding_is_poison());
                        const Vector x = random_vector(n);
                        const char op = trans == 'N' ? 'N' : 'C';
                        const Vector want = side == 'L' ? product(q, product(c, x), op) : product(c, product(q, x, op));
                        expect_small<T>(product(got, x), want, order, 2 * static_cast<long double>(n));
                    }
            }
}

TYPED_TEST(Qr, NanComesThrough)
{
    using T = TypeParam;
    for (const std::int64_t n : {10, 100}) {
        auto a = random_matrix<T>(n, n);
        a(n / 2, 0) = T(std::numeric_limits<Real<T>>::quiet_NaN());
        const auto f = factored(a);
        EXPECT_TRUE(std::isnan(std::real(f.a(0, n - 1))));
    }
}

// A column of zeros, and one whose elements would overflow when squared.
TYPED_TEST(Qr, ExtremeColumns)
{
    using T = TypeParam;
    const std::int64_t n = 60;
    const Real<T> huge = std::numeric_limits<Real<T>>::max() / 1024, tiny = std::numeric_limits<Real<T>>::min();
    for (const Real<T> scale : {huge, tiny}) {
        auto a = random_matrix<T>(n, n);
        for (std::int64_t j = 0; j < n; ++j)
            for (std::int64_t i = 0; i < n; ++i) a(i, j) *= scale;
        for (std::int64_t i = 0; i < n; ++i) a(i, 20) = T();
        const auto f = factored(a);
        const auto q = q_of(f, n, n);
        const Vector x = random_vector(n);
        expect_small<T>(product(q, product(q, x), 'C'), x, n, 10);
        expect_small<T>(product(q, product(f.a, x, on_and_above)), product(a, x), n,
                        static_cast<long double>(scale) * n);
    }
}

} // namespace

} // namespace ork::test

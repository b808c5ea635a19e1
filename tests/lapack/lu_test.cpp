// SPDX-License-Identifier: MIT
#include "lapack/plain_factors.h"
#include "support/fake_core.h"

namespace ork::test {
namespace {

struct Shape {
    Int m, n;
};
std::vector<Shape> shapes()
{
    std::vector<Shape> all;
    for (Int n = 0; n <= 18; ++n) all.push_back({n, n});
    for (Int n : {23, 31, 32, 33, 45, 46, 64, 65, 70}) all.push_back({n, n});
    for (Int m = 1; m <= 9; ++m)
        for (Int n : {1, 2, 3, 4, 5, 8, 11})
            if (m != n) all.push_back({m, n});
    for (Shape s : {Shape{63, 7}, {64, 8}, {65, 9}, {100, 6}, {129, 13}, {5, 64}, {66, 3}}) all.push_back(s);
    return all;
}

template <class T>
class Lu : public testing::Test {
    FreshCore fresh_core_;
};
TYPED_TEST_SUITE(Lu, Precisions, PrecisionNames);

TYPED_TEST(Lu, PivotsInfoAndBitsAreThoseOfThePlainRules)
{
    using T = TypeParam;
    const auto pivoting = KERNEL(getrf_small);
    const auto plain = KERNEL(getrfnp_small);
    ASSERT_TRUE(pivoting && plain);
    Random random;
    for (const Shape& s : shapes())
        for (const auto& kind : kinds_of_pivots<T>(s.m, random))
            for (const bool pivots : {true, false}) {
                SCOPED_TRACE(testing::Message()
                             << s.m << " x " << s.n << ", " << kind.name << (pivots ? "" : ", no interchanges"));
                const Int lda = s.m + (s.n + s.m) % 3, steps = std::min(s.m, s.n);
                const Guard side = s.n % 2 == 0 ? Guard::end : Guard::begin;
                Stored<T> got(s.m, s.n, lda, side, kind.element), want(s.m, s.n, lda, side, kind.element);
                Guarded<Int> ipiv(steps, side);
                std::vector<Int> pivots_wanted;
                Int info = -99;
                if (pivots)
                    pivoting(&s.m, &s.n, got.a.data(), &lda, ipiv.data(), &info);
                else
                    plain(&s.m, &s.n, got.a.data(), &lda, &info);
                ASSERT_EQ(info, plain_lu(want, pivots ? &pivots_wanted : nullptr));
                if (pivots) {
                    ASSERT_EQ(ipiv.values(), pivots_wanted);
                }
                ASSERT_TRUE(got.padding_intact());
                ASSERT_NO_FATAL_FAILURE(expect_equal(got.elements(), want.elements()));
                if (testing::Test::HasFailure()) return;
            }
}

TYPED_TEST(Lu, TheSafeMinimumIsAskedOfTheCoreByWhatMayDivide)
{
    using T = TypeParam;
    const auto kernel = KERNEL(getrf_small);
    ASSERT_TRUE(kernel);
    Int ipiv[9], info;
    Random random;
    int calls = 0;
    for (const Int n : {1, 2, 7, 8, 9}) {
        Stored<T> a(n, n, n, Guard::end, [&](Int, Int) { return random.uniform<T>(); });
        kernel(&n, &n, a.a.data(), &n, ipiv, &info);
        if (n > 1) ++calls;
        EXPECT_EQ(fake_core().lamch_queries, calls) << "order " << n;
    }
}

// What holds for the residual of a backward stable solution: a small multiple of order, unit and norms.
template <class T>
void expect_solution(const Stored<T>& a, const std::function<T(Int, Int)>& op, const Stored<T>& x,
                     const std::function<T(Int, Int)>& b)
{
    const long double eps = std::numeric_limits<Real<T>>::epsilon();
    for (Int k = 0; k < x.n; ++k)
        for (Int i = 0; i < a.n; ++i) {
            std::complex<long double> sum = -std::complex<long double>(b(i, k));
            long double size = std::abs(sum);
            for (Int j = 0; j < a.n; ++j) {
                const auto term = std::complex<long double>(op(i, j)) * std::complex<long double>(x(j, k));
                sum += term, size += std::abs(term);
            }
            ASSERT_TRUE(std::abs(sum) <= 40 * static_cast<long double>(a.n) * eps * size)
                << "order " << a.n << ", right-hand side " << k << ", row " << i;
        }
}

TYPED_TEST(Lu, Solves)
{
    using T = TypeParam;
    const auto factor = KERNEL(getrf_small);
    const auto solve = KERNEL(getrs_small);
    ASSERT_TRUE(factor && solve);
    Random random(3);
    for (const Int n : {0, 1, 2, 3, 4, 5, 7, 8, 9, 13, 16, 31, 64, 70})
        for (const Int nrhs : {0, 1, 3, 4, 9})
            for (const char trans : {'N', 'n', 'T', 'C'}) {
                const Int lda = n + 1, ldb = n + 2;
                Stored<T> a(n, n, lda, Guard::end, [&](Int, Int) { return random.uniform<T>(); });
                const auto before = a.elements();
                const auto original = [&](Int i, Int j) { return before[static_cast<std::size_t>(i + j * n)]; };
                Stored<T> x(n, nrhs, ldb, Guard::end, [&](Int, Int) { return random.uniform<T>(); });
                const auto right = x.elements();
                std::vector<Int> ipiv(static_cast<std::size_t>(n));
                Int info = -99;
                factor(&n, &n, a.a.data(), &lda, ipiv.data(), &info);
                ASSERT_EQ(info, 0);
                a.a.read_only();
                info = -99;
                solve(&trans, &n, &nrhs, a.a.data(), &lda, ipiv.data(), x.a.data(), &ldb, &info);
                ASSERT_EQ(info, 0);
                ASSERT_TRUE(x.padding_intact());
                const std::function<T(Int, Int)> op = [&](Int i, Int j) {
                    return trans == 'T' ? original(j, i) : trans == 'C' ? conjugated(original(j, i)) : original(i, j);
                };
                SCOPED_TRACE(trans);
                // With the growth that partial pivoting leaves to matrices as these, the norms stand for |L| |U|.
                ASSERT_NO_FATAL_FAILURE(expect_solution<T>(
                    a, op, x, [&](Int i, Int k) { return right[static_cast<std::size_t>(i + k * n)]; }));
            }
}

TYPED_TEST(Lu, Inverts)
{
    using T = TypeParam;
    const auto factor = KERNEL(getrf_small);
    const auto plain_factor = KERNEL(getrfnp_small);
    const auto invert = KERNEL(getri_small);
    const auto plain_invert = KERNEL(getrinp_small);
    ASSERT_TRUE(factor && invert && plain_factor && plain_invert);
    Random random(4);
    for (const Int n : {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 12, 16, 17, 33, 64})
        for (const bool pivots : {true, false}) {
            SCOPED_TRACE(testing::Message() << "order " << n << (pivots ? "" : ", no interchanges"));
            const Int lda = n + 2;
            // Without interchanges the diagonal must dominate.
            Stored<T> a(n, n, lda, Guard::end, [&](Int i, Int j) {
                return random.uniform<T>() + T(!pivots && i == j ? Real<T>(2 * n) : Real<T>(0));
            });
            const auto before = a.elements();
            std::vector<Int> ipiv(static_cast<std::size_t>(n));
            Guarded<T> work(std::max<Int>(n, 1));
            Int info = -99, lwork = -1;
            const auto call = [&] {
                if (pivots)
                    invert(&n, a.a.data(), &lda, ipiv.data(), work.data(), &lwork, &info);
                else
                    plain_invert(&n, a.a.data(), &lda, work.data(), &lwork, &info);
            };
            call();
            ASSERT_EQ(info, 0);
            ASSERT_EQ(std::real(work[0]), static_cast<Real<T>>(std::max<Int>(n, 1)));
            ASSERT_TRUE(a.a.unchanged()) << "the query touched the matrix";
            lwork = n;
            if (pivots)
                factor(&n, &n, a.a.data(), &lda, ipiv.data(), &info);
            else
                plain_factor(&n, &n, a.a.data(), &lda, &info);
            ASSERT_EQ(info, 0);
            call();
            ASSERT_EQ(info, 0);
            ASSERT_TRUE(a.padding_intact());
            // |A X - I| beside |A| |X|, which the condition multiplies.
            const long double eps = std::numeric_limits<Real<T>>::epsilon();
            long double size_a = 0, size_x = 0, worst = 0;
            for (Int i = 0; i < n; ++i)
                for (Int j = 0; j < n; ++j) {
                    std::complex<long double> sum = i == j ? -1 : 0;
                    for (Int k = 0; k < n; ++k)
                        sum += std::complex<long double>(before[static_cast<std::size_t>(i + k * n)]) *
                               std::complex<long double>(a(k, j));
                    if (!(std::abs(sum) <= worst)) worst = std::abs(sum);
                    size_a = std::max<long double>(size_a, std::abs(before[static_cast<std::size_t>(i + j * n)]));
                    size_x = std::max<long double>(size_x, std::abs(a(i, j)));
                }
            ASSERT_TRUE(worst <= 20 * static_cast<long double>(n * n) * eps * size_a * size_x) << worst;
        }
}

TYPED_TEST(Lu, ASingularUpperFactorIsReportedAndLeft)
{
    using T = TypeParam;
    const auto invert = KERNEL(getri_small);
    const auto plain_invert = KERNEL(getrinp_small);
    const Int n = 6;
    Stored<T> a(n, n, n, Guard::end,
                [](Int i, Int j) { return i == j && (i == 3 || i == 5) ? T(0) : T(Real<T>(i + 2 * j + 1)); });
    const std::vector<Int> ipiv = {1, 2, 3, 4, 5, 6};
    std::vector<T> work(6);
    Int info = -99;
    invert(&n, a.a.data(), &n, ipiv.data(), work.data(), &n, &info);
    EXPECT_EQ(info, 4);
    plain_invert(&n, a.a.data(), &n, work.data(), &n, &info);
    EXPECT_EQ(info, 4);
    EXPECT_TRUE(a.a.unchanged());
}

} // namespace
} // namespace ork::test

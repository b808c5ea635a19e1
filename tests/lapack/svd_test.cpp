// SPDX-License-Identifier: MIT
#include "lapack/spectral.h"

namespace ork::test {
namespace {

template <class T>
class Svd : public testing::Test {
public:
    using R = Real<T>;

    struct Result {
        Padded<T> a, u, vt;
        std::vector<R> s, rwork;
        std::vector<T> work;
        Int info = -99;
    };
    static Result decompose(Int n, const std::function<T(Int, Int)>& element, char jobu, char jobvt)
    {
        Result r{{n, n, element}, {n, n}, {n, n}, std::vector<R>(n), {}, {}};
        call(n, r, jobu, jobvt, false);
        const Int size = static_cast<Int>(std::real(r.work[0]));
        EXPECT_EQ(r.info, 0);
        EXPECT_EQ(size, std::max<Int>(1, (is_complex<T> ? 3 : 5) * n));
        EXPECT_TRUE(r.a.unchanged_except([](Int, Int) { return false; })) << "the query has touched a";
        call(n, r, jobu, jobvt, true);
        EXPECT_TRUE(r.a.padding_intact() && r.u.padding_intact() && r.vt.padding_intact());
        return r;
    }

private:
    static void call(Int n, Result& r, char jobu, char jobvt, bool compute)
    {
        const auto kernel = KERNEL(gesvd_square_small);
        ASSERT_NE(kernel, nullptr);
        const Int units = compute ? n : 0, lwork = compute ? (is_complex<T> ? 3 : 5) * n : -1;
        const R nan = std::numeric_limits<R>::quiet_NaN();
        r.work.assign(std::max<Int>(1, (is_complex<T> ? 3 : 5) * units), nan);
        if constexpr (is_complex<T>) {
            r.rwork.assign(5 * units, nan);
            kernel(&jobu, &jobvt, &n, &n, r.a.data.data(), &r.a.ld, r.s.data(), r.u.data.data(), &r.u.ld,
                   r.vt.data.data(), &r.vt.ld, r.work.data(), &lwork, r.rwork.data(), &r.info);
        } else {
            kernel(&jobu, &jobvt, &n, &n, r.a.data.data(), &r.a.ld, r.s.data(), r.u.data.data(), &r.u.ld,
                   r.vt.data.data(), &r.vt.ld, r.work.data(), &lwork, &r.info);
        }
    }
};
TYPED_TEST_SUITE(Svd, Precisions, PrecisionNames);

TYPED_TEST(Svd, ReproducesTheMatrixFromOrthogonalVectors)
{
    using T = TypeParam;
    for (const Int n : orders)
        for (const auto& kind : kinds<T>(n)) {
            SCOPED_TRACE(testing::Message() << kind.name << ", order " << n);
            const auto r = this->decompose(n, kind.element, 'A', 'a');
            ASSERT_EQ(r.info, 0);
            const Padded<T> a(n, n, kind.element);
            const long double tolerance = 4 * static_cast<long double>(n + 4) * eps<T>;
            const Real<T> unit = r.s[0] > 1 ? r.s[0] : 1; // so that nothing underflows
            long double worst = 0;
            for (Int j = 0; j < n; ++j)
                for (Int i = 0; i < n; ++i) {
                    Long sum = -wide(a(i, j)) / Long(unit);
                    for (Int k = 0; k < n; ++k)
                        sum += wide(r.u(i, k)) * (static_cast<long double>(r.s[k]) / unit) * wide(r.vt(k, j));
                    if (!(std::abs(sum) <= worst)) worst = std::abs(sum);
                }
            EXPECT_TRUE(worst <= tolerance * (r.s[0] / unit) + std::numeric_limits<Real<T>>::denorm_min()) << worst;
            EXPECT_TRUE(lack_of_orthogonality(r.u) <= tolerance) << lack_of_orthogonality(r.u);
            EXPECT_TRUE(lack_of_orthogonality(r.vt) <= tolerance) << lack_of_orthogonality(r.vt);
            EXPECT_GE(r.s[n - 1], 0);
            EXPECT_TRUE(std::is_sorted(r.s.rbegin(), r.s.rend()));
        }
}

TYPED_TEST(Svd, LettersSayWhatIsFormedAndWhere)
{
    using T = TypeParam;
    for (const Int n : {1, 2, 5, 12}) {
        const auto element = kinds<T>(n, 7)[0].element;
        const auto all = this->decompose(n, element, 'A', 'A');
        const auto same = [&](const Padded<T>& x, const Padded<T>& y) {
            for (Int j = 0; j < n; ++j)
                for (Int i = 0; i < n; ++i)
                    if (!(x(i, j) == y(i, j))) return false;
            return true;
        };
        for (const char jobu : {'A', 's', 'O', 'N'})
            for (const char jobvt : {'a', 'S', 'o', 'n'}) {
                if (jobu == 'O' && jobvt == 'o') continue;
                SCOPED_TRACE(testing::Message() << jobu << jobvt << ", order " << n);
                const auto r = this->decompose(n, element, jobu, jobvt);
                const auto nothing = [](Int, Int) { return false; };
                if (jobu == 'A' || jobu == 's')
                    EXPECT_TRUE(same(r.u, all.u));
                else
                    EXPECT_TRUE(r.u.unchanged_except(nothing));
                if (jobvt == 'a' || jobvt == 'S')
                    EXPECT_TRUE(same(r.vt, all.vt));
                else
                    EXPECT_TRUE(r.vt.unchanged_except(nothing));
                EXPECT_TRUE(jobu != 'O' || same(r.a, all.u));
                EXPECT_TRUE(jobvt != 'o' || same(r.a, all.vt));
                for (Int i = 0; i < n; ++i)
                    EXPECT_TRUE(std::abs(r.s[i] - all.s[i]) <= 4 * static_cast<Real<T>>(n) * eps<T> * all.s[0]);
            }
    }
}

// Of a bidiagonal matrix, by one-sided Jacobi rotations, which keep high relative accuracy.
std::vector<long double> singular_values(Int n, const std::vector<long double>& d, const std::vector<long double>& e)
{
    std::vector<long double> a(n * n, 0), s(n);
    for (Int i = 0; i < n; ++i) a[i * n + i] = d[i];
    for (Int i = 0; i + 1 < n; ++i) a[(i + 1) * n + i] = e[i];
    for (int sweep = 0; sweep < 60; ++sweep)
        for (Int p = 0; p < n; ++p)
            for (Int q = p + 1; q < n; ++q) {
                long double x = 0, y = 0, xy = 0;
                for (Int i = 0; i < n; ++i)
                    x += a[p * n + i] * a[p * n + i], y += a[q * n + i] * a[q * n + i],
                        xy += a[p * n + i] * a[q * n + i];
                if (xy == 0) continue;
                const long double zeta = (y - x) / (2 * xy);
                const long double t = (zeta < 0 ? -1 : 1) / (std::abs(zeta) + std::sqrt(1 + zeta * zeta));
                const long double c = 1 / std::sqrt(1 + t * t), sine = c * t;
                for (Int i = 0; i < n; ++i) {
                    const long double u = a[p * n + i], v = a[q * n + i];
                    a[p * n + i] = c * u - sine * v, a[q * n + i] = sine * u + c * v;
                }
            }
    for (Int j = 0; j < n; ++j) {
        long double sum = 0;
        for (Int i = 0; i < n; ++i) sum += a[j * n + i] * a[j * n + i];
        s[j] = std::sqrt(sum);
    }
    std::sort(s.rbegin(), s.rend());
    return s;
}

// The smallest one too, twenty orders of magnitude below the largest.
TYPED_TEST(Svd, BidiagonalMatricesKeepTheRelativeAccuracyOfEveryValue)
{
    using T = TypeParam;
    using R = Real<T>;
    Random random(3);
    for (const Int n : {2, 5, 10})
        for (const int direction : {1, -1}) {
            std::vector<long double> d(n), e(n);
            for (Int i = 0; i < n; ++i) {
                const int order = static_cast<int>(direction > 0 ? i : n - i);
                d[i] = std::ldexp(static_cast<R>(random.uniform<R>() + R(1.5)), -7 * order);
                e[i] = std::ldexp(static_cast<R>(random.uniform<R>() + R(1.5)), -7 * order);
            }
            const auto element = [&](Int i, Int j) { return T(static_cast<R>(i == j ? d[i] : i + 1 == j ? e[i] : 0)); };
            const auto want = singular_values(n, d, e);
            for (const char job : {'A', 'N'}) {
                const auto r = this->decompose(n, element, job, job);
                for (Int i = 0; i < n; ++i)
                    EXPECT_TRUE(std::abs(r.s[i] - want[i]) <= 20 * static_cast<R>(n) * eps<T> * want[i])
                        << "value " << i << " of " << n << ": " << (r.s[i] - want[i]) / want[i] / eps<T> << " eps";
            }
        }
}

TYPED_TEST(Svd, WhatIsNotFiniteIsNotTried)
{
    using T = TypeParam;
    using R = Real<T>;
    for (const R bad : {std::numeric_limits<R>::quiet_NaN(), -std::numeric_limits<R>::infinity()})
        for (const Int n : {1, 2, 9}) {
            const auto r = this->decompose(
                n, [&](Int i, Int j) { return i == n - 1 && j == n / 2 ? T(bad) : T(1); }, 'A', 'O');
            EXPECT_EQ(r.info, n);
            for (Int i = 0; i < n; ++i) EXPECT_TRUE(std::isnan(r.s[i]) && std::isnan(std::real(r.u(i, 0))));
        }
}

} // namespace
} // namespace ork::test

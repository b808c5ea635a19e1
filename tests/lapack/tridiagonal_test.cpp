// SPDX-License-Identifier: MIT
// Tridiagonal factorisations and solvers of one matrix: the stated steps bit for bit, residuals in 113 bits, pivots of
// zero wherever they stand.
#include "lapack/kernel.h"
#include "lapack/tridiagonal.h"

namespace ork::test {
namespace {

template <class T>
class Tridiagonal : public testing::Test {
};
TYPED_TEST_SUITE(Tridiagonal, Precisions, PrecisionNames);

const Int orders[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 12, 17, 63, 64, 65, 66, 131};

template <class T>
std::vector<Int> right_sides()
{
    constexpr Int lanes = std::max<Int>(16 / sizeof(T), 1);
    return {0, 1, 2, 3, lanes, 2 * lanes, 2 * lanes + 1, 4 * lanes + 3};
}

// From both ends as it is stated; returns info.
template <class T>
Int plain_dttrfb(System<T>& a)
{
    const Int n = a.n;
    const auto one_row = [&](Int i, Int l, Int next) {
        if (a.d[i] == T{}) return false;
        a.d[i] = smith_quotient(T(1), a.d[i]);
        if (next < 0) return true;
        a.dl[l] = plain_product(a.dl[l], a.d[i]);
        a.d[next] = a.d[next] - plain_product(a.dl[l], a.du[l]);
        return true;
    };
    for (Int top = 0, bottom = n - 1; top <= bottom; ++top, --bottom) {
        if (!one_row(top, top, top < bottom ? top + 1 : -1)) return top + 1;
        if (bottom > top && !one_row(bottom, bottom - 1, bottom - 1 > top ? bottom - 1 : -1)) return bottom + 1;
    }
    return 0;
}

TYPED_TEST(Tridiagonal, FromBothEndsBitForBit)
{
    using T = TypeParam;
    auto* const dttrfb = KERNEL(dttrfb);
    Int info = -7, zero = 0;
    dttrfb(&zero, nullptr, nullptr, nullptr, &info);
    EXPECT_EQ(info, 0);
    Random random;
    for (const Int n : orders)
        for (const bool spread : {false, true}) {
            SCOPED_TRACE(n);
            System<T> a(n, random, spread ? Kind::graded : Kind::dominant), want(a);
            a.du.read_only();
            EXPECT_EQ(plain_dttrfb(want), 0);
            dttrfb(&n, a.dl.data(), a.d.data(), a.du.data(), &info);
            EXPECT_EQ(info, 0);
            expect_equal(a.d.values(), want.d.values());
            expect_equal(a.dl.values(), want.dl.values());
        }
}

// Zeros on the diagonal, with nothing beside them to fill them: the first one met counts, and what was done stays.
TYPED_TEST(Tridiagonal, PivotsOfZeroFromBothEnds)
{
    using T = TypeParam;
    auto* const dttrfb = KERNEL(dttrfb);
    Random random;
    for (Int n = 1; n <= 9; ++n)
        for (Int first = 0; first < n; ++first)
            for (Int second = first; second < n; ++second) {
                SCOPED_TRACE(std::to_string(n) + ": " + std::to_string(first + 1) + ", " + std::to_string(second + 1));
                System<T> a(n, random, Kind::dominant);
                for (const Int i : {first, second}) {
                    a.d[i] = T{};
                    if (i > 0) a.du[i - 1] = T{};
                    if (i + 1 < n) a.du[i] = T{};
                }
                System<T> want(a);
                Int info = -7;
                dttrfb(&n, a.dl.data(), a.d.data(), a.du.data(), &info);
                EXPECT_EQ(info, plain_dttrfb(want));
                const Int from_bottom = n - 1 - second; // which end meets its zero first
                EXPECT_EQ(info, first <= from_bottom ? first + 1 : second + 1);
                expect_equal(a.d.values(), want.d.values());
                expect_equal(a.dl.values(), want.dl.values());
            }
}

TYPED_TEST(Tridiagonal, SolvesWithFactorsFromBothEnds)
{
    using T = TypeParam;
    Random random;
    for (const Int n : orders)
        for (const Int nrhs : right_sides<T>()) {
            SCOPED_TRACE(std::to_string(n) + ", " + std::to_string(nrhs));
            System<T> a(n, random, Kind::dominant), factors(a);
            Matrix<T> b(n, nrhs, n + nrhs % 3, both_guards[n % 2]), rhs(n, nrhs, n);
            fill_both(b, rhs, random);
            Int info = -7;
            KERNEL(dttrfb)(&n, factors.dl.data(), factors.d.data(), factors.du.data(), &info);
            factors.read_only();
            info = -7;
            KERNEL(dtsvb)
            (&n, &nrhs, factors.dl.data(), factors.d.data(), factors.du.data(), b.data(), &b.ld(), &info);
            EXPECT_EQ(info, 0);
            expect_solved('N', a, b, rhs, 8);
            EXPECT_TRUE(b.padding_intact());
            if (testing::Test::HasFailure()) return;
        }
}

// LAPACK's gttrf, whose U gtsv leaves behind: dl the multipliers, or the second superdiagonal when keep is false.
template <class T>
struct Pivoted {
    System<T> f;
    std::vector<T> du2;
    std::vector<Int> ipiv;
    Int info = 0;

    explicit Pivoted(const System<T>& a) : f(a), du2(static_cast<std::size_t>(a.n)), ipiv(du2.size())
    {
        const Int n = a.n;
        const auto size = [](T x) { return magnitude(Wide<Real<T>>(x)); };
        for (Int i = 0; i < n; ++i) ipiv[static_cast<std::size_t>(i)] = i + 1;
        for (Int i = 0; i + 1 < n; ++i) {
            if (size(f.d[i]) >= size(f.dl[i])) {
                if (f.d[i] == T{}) {
                    info = i + 1;
                    return;
                }
                f.dl[i] = smith_quotient(f.dl[i], f.d[i]);
                f.d[i + 1] = f.d[i + 1] - plain_product(f.dl[i], f.du[i]);
            } else {
                const T multiplier = smith_quotient(f.d[i], f.dl[i]), next = f.d[i + 1];
                f.d[i] = f.dl[i], f.dl[i] = multiplier;
                f.d[i + 1] = f.du[i] - plain_product(multiplier, next);
                f.du[i] = next;
                if (i + 2 < n) {
                    du2[static_cast<std::size_t>(i)] = f.du[i + 1];
                    f.du[i + 1] = T{} - plain_product(multiplier, f.du[i + 1]);
                }
                ipiv[static_cast<std::size_t>(i)] = i + 2;
            }
        }
        if (f.d[n - 1] == T{}) info = n;
    }
};

TYPED_TEST(Tridiagonal, SolvesWithPivoting)
{
    using T = TypeParam;
    auto* const gtsv = KERNEL(gtsv_small);
    Random random;
    for (const Kind kind : {Kind::dominant, Kind::uniform, Kind::graded, Kind::zero_diagonal})
        for (const Int n : orders)
            for (const Int nrhs : right_sides<T>()) {
                if (kind == Kind::zero_diagonal && n % 2 != 0) continue; // singular
                SCOPED_TRACE(std::to_string(n) + ", " + std::to_string(nrhs));
                System<T> a(n, random, kind), left(a);
                const Pivoted<T> want(a);
                Matrix<T> b(n, nrhs, n + nrhs % 3, both_guards[n % 2]), rhs(n, nrhs, n);
                fill_both(b, rhs, random);
                Int info = -7;
                gtsv(&n, &nrhs, left.dl.data(), left.d.data(), left.du.data(), b.data(), &b.ld(), &info);
                EXPECT_EQ(info, 0);
                expect_solved('N', a, b, rhs, 16);
                EXPECT_TRUE(b.padding_intact());
                expect_equal(left.d.values(), want.f.d.values());
                expect_equal(left.du.values(), want.f.du.values());
                for (Int i = 0; i + 2 < n; ++i) EXPECT_EQ(left.dl[i], want.du2[static_cast<std::size_t>(i)]);
                if (testing::Test::HasFailure()) return;
            }
}

TYPED_TEST(Tridiagonal, PivotingNamesTheFirstZero)
{
    using T = TypeParam;
    Random random;
    for (const Int n : {1, 2, 5, 66})
        for (const Int nrhs : {1, 3})
            for (const Int zero : {Int{0}, n / 2, n - 1}) {
                SCOPED_TRACE(std::to_string(n) + ", " + std::to_string(nrhs) + ", " + std::to_string(zero));
                System<T> a(n, random, Kind::dominant);
                a.d[zero] = T{};
                if (zero > 0) a.dl[zero - 1] = T{};
                if (zero + 1 < n) a.dl[zero] = T{};
                Matrix<T> b(n, nrhs, n);
                b.fill(random);
                Int info = -7;
                KERNEL(gtsv_small)(&n, &nrhs, a.dl.data(), a.d.data(), a.du.data(), b.data(), &b.ld(), &info);
                EXPECT_EQ(info, zero + 1);
            }
}

// A diagonal whose inverses overflow is divided by.
TYPED_TEST(Tridiagonal, PivotingWithSubnormalPivots)
{
    using T = TypeParam;
    using R = Real<T>;
    const Int n = 3, one = 1;
    const R tiny = std::numeric_limits<R>::denorm_min() * 4;
    System<T> a(n, T{}, T(tiny), T{});
    Matrix<T> b(n, 1, n);
    b.fill([&] { return T(tiny * 2); });
    Int info = -7;
    KERNEL(gtsv_small)(&n, &one, a.dl.data(), a.d.data(), a.du.data(), b.data(), &b.ld(), &info);
    for (Int i = 0; i < n; ++i) EXPECT_EQ(b(i, 0), T(2));
}

TYPED_TEST(Tridiagonal, SolvesWithGivenFactors)
{
    using T = TypeParam;
    auto* const gtts2 = KERNEL(gtts2);
    Random random;
    for (const Int n : orders)
        for (const Int nrhs : right_sides<T>())
            for (const Int itrans : {0, 1, 2}) {
                SCOPED_TRACE(std::to_string(n) + ", " + std::to_string(nrhs) + ", " + std::to_string(itrans));
                const System<T> a(n, random, Kind::uniform);
                Pivoted<T> p(a);
                const Vector<T> du2({p.du2.begin(), p.du2.begin() + std::max<Int>(n - 2, 0)}, 1);
                p.f.read_only();
                Matrix<T> b(n, nrhs, n + nrhs % 3, both_guards[n % 2]), rhs(n, nrhs, n);
                fill_both(b, rhs, random);
                gtts2(&itrans, &n, &nrhs, p.f.dl.data(), p.f.d.data(), p.f.du.data(), du2.data(), p.ipiv.data(),
                      b.data(), &b.ld());
                expect_solved("NTC"[itrans], a, b, rhs, 16);
                EXPECT_TRUE(b.padding_intact());
                if (testing::Test::HasFailure()) return;
            }
}

TYPED_TEST(Tridiagonal, SolvesWithPositiveDefiniteFactors)
{
    using T = TypeParam;
    using R = Real<T>;
    Random random;
    for (const Int n : orders)
        for (const Int nrhs : right_sides<T>())
            for (const Int iuplo : {0, 1}) {
                SCOPED_TRACE(std::to_string(n) + ", " + std::to_string(nrhs) + ", " + std::to_string(iuplo));
                // A = L D L^H with e below the diagonal of L, or U^H D U with e above that of U.
                Vector<R> d(uniform_values<R>(n, 5), 1);
                Vector<T> e(uniform_values<T>(n - 1, 6), 1);
                for (Int i = 0; i < n; ++i) d[i] = 2 + d[i];
                System<T> a(n, T{}, T{}, T{});
                for (Int i = 0; i < n; ++i) {
                    a.d[i] = T(d[i] + (i > 0 ? std::norm(e[i - 1]) * d[i - 1] : 0));
                    if (i + 1 == n) break;
                    a.dl[i] = e[i] * d[i], a.du[i] = conjugated(e[i]) * d[i];
                    if (iuplo == 1 && is_complex<T>) std::swap(a.dl[i], a.du[i]);
                }
                d.read_only(), e.read_only();
                Matrix<T> b(n, nrhs, n + nrhs % 3, both_guards[n % 2]), rhs(n, nrhs, n);
                fill_both(b, rhs, random);
                if constexpr (is_complex<T>)
                    KERNEL(ptts2)(&iuplo, &n, &nrhs, d.data(), e.data(), b.data(), &b.ld());
                else
                    KERNEL(ptts2)(&n, &nrhs, d.data(), e.data(), b.data(), &b.ld());
                expect_solved('N', a, b, rhs, 16);
                EXPECT_TRUE(b.padding_intact());
                if (testing::Test::HasFailure()) return;
            }
}

} // namespace
} // namespace ork::test

// SPDX-License-Identifier: MIT
// Band and packed matrices times vectors, and triangular solves with them.
#include <gtest/gtest.h>

#include "blas/level2_banded.h"
#include "support/compare.h"
#include "support/environment.h"

namespace {

using namespace ork::test;
using namespace ork::test::banded;

template <class T>
class BandedProduct : public testing::Test {
};
using Types = testing::Types<float, double, std::complex<float>, std::complex<double>>;
TYPED_TEST_SUITE(BandedProduct, Types);

struct Shape {
    std::int64_t m, n, kl, ku;
};
// Narrow and wide, wider than the matrix, and around the widths where pairs of columns start to share a pass.
const Shape shapes[] = {{1, 1, 0, 0},     {5, 5, 1, 0},     {7, 4, 0, 2},    {4, 9, 2, 1},
                        {9, 9, 3, 5},     {20, 30, 4, 4},   {31, 17, 6, 11}, {40, 40, 12, 9},
                        {40, 40, 25, 14}, {13, 13, 20, 30}, {60, 50, 33, 2}, {70, 70, 69, 69}};

TYPED_TEST(BandedProduct, GeneralMatchesTheDenseFormula)
{
    using T = TypeParam;
    const T alpha = scalar<T>(1.25, -0.5);
    std::uint64_t seed = 0;
    for (const Shape& s : shapes)
        for (const char* trans = transpositions<T>(); *trans != 0; ++trans)
            for (const std::int64_t inc : {1, -1, 3})
                for (const T beta : {T(0), T(1), scalar<T>(0.5, 2)}) {
                    SCOPED_TRACE(testing::Message() << *trans << ' ' << s.m << 'x' << s.n << " kl " << s.kl << " ku "
                                                    << s.ku << " inc " << inc << " beta " << beta);
                    const Guard side = both_guards[seed & 1];
                    auto a = Stored<T>::band(s.m, s.n, s.kl, s.ku, static_cast<std::int64_t>(seed % 3), side);
                    Random random(++seed);
                    a.fill([&](auto, auto) { return random.uniform<T>(); });
                    a.read_only();
                    const bool plain = *trans == 'N';
                    const std::int64_t rows = plain ? s.m : s.n, columns = plain ? s.n : s.m;
                    Vector<T> x(uniform_values<T>(columns, seed), inc, side), y(rows, -inc, side);
                    std::vector<T> start = uniform_values<T>(rows, seed + 1);
                    if (beta == T(0)) start.assign(start.size(), std::numeric_limits<Real<T>>::quiet_NaN());
                    y.assign(start);
                    x.read_only();
                    const auto want = product(
                        rows, columns, alpha, [&](auto i, auto j) { return a.element(*trans, i, j); },
                        [&](auto i, auto j) { return plain ? a.holds(i, j) : a.holds(j, i); }, x.values(), beta, start);
                    Kernels<T>::gbmv(trans, &s.m, &s.n, &s.kl, &s.ku, raw(&alpha), raw(a.data()), &a.ld(),
                                     raw(x.data()), &x.inc(), raw(&beta), raw(y.data()), &y.inc());
                    expect_near<T>(y, want, static_cast<double>(columns + 4));
                    EXPECT_TRUE(y.padding_intact());
                }
}

// The band of order n with k diagonals, or with k < 0 the packed triangle.
template <class T>
Stored<T> triangle(std::int64_t n, std::int64_t k, char uplo, Guard side, std::size_t offset = 0)
{
    return k < 0 ? Stored<T>::packed(n, uplo, side, offset)
                 : Stored<T>::band(n, n, uplo == 'L' ? k : 0, uplo == 'U' ? k : 0, n % 2, side, offset);
}
// Orders and diagonals.
const std::pair<std::int64_t, std::int64_t> orders[] = {
    {0, -1},  {1, -1},  {2, -1},  {3, -1},  {4, -1},  {7, -1},  {15, -1}, {16, -1}, {17, -1},
    {40, -1}, {65, -1}, {1, 0},   {5, 0},   {6, 1},   {9, 2},   {14, 4},  {30, 5},  {40, 11},
    {40, 13}, {50, 14}, {50, 19}, {60, 26}, {61, 27}, {90, 40}, {7, 12},  {35, 60}};

template <class T>
void symmetric_product(char uplo, std::int64_t n, std::int64_t k, const Stored<T>& a, T alpha, const Vector<T>& x,
                       T beta, const Vector<T>& y)
{
    if (k < 0)
        Kernels<T>::spmv(&uplo, &n, raw(&alpha), raw(a.data()), raw(x.data()), &x.inc(), raw(&beta), raw(y.data()),
                         &y.inc());
    else
        Kernels<T>::sbmv(&uplo, &n, &k, raw(&alpha), raw(a.data()), &a.ld(), raw(x.data()), &x.inc(), raw(&beta),
                         raw(y.data()), &y.inc());
}

TYPED_TEST(BandedProduct, SymmetricAndHermitianReadOneTriangle)
{
    using T = TypeParam;
    const T alpha = scalar<T>(0.75, 1.5);
    std::uint64_t seed = 0;
    for (const auto& [n, k] : orders)
        for (const char uplo : {'L', 'U'})
            for (const std::int64_t inc : {1, -2})
                for (const T beta : {T(0), scalar<T>(-0.5, 1)}) {
                    SCOPED_TRACE(testing::Message() << uplo << ' ' << n << " k " << k << " inc " << inc);
                    const Guard side = both_guards[++seed & 1];
                    auto a = triangle<T>(n, k, uplo, side);
                    Random random(seed);
                    a.fill([&](auto i, auto j) {
                        T value = random.uniform<T>();
                        // of a diagonal, imaginary parts are not looked at
                        if constexpr (is_complex<T>)
                            if (i == j) value.imag(std::numeric_limits<Real<T>>::quiet_NaN());
                        return value;
                    });
                    a.read_only();
                    Vector<T> x(uniform_values<T>(n, seed), -inc, side), y(n, inc, side);
                    std::vector<T> start = uniform_values<T>(n, seed + 1);
                    if (beta == T(0)) start.assign(start.size(), std::numeric_limits<Real<T>>::quiet_NaN());
                    y.assign(start);
                    const auto want = product(
                        n, n, alpha, [&](auto i, auto j) { return a.symmetric(i, j); },
                        [&](auto i, auto j) { return a.holds(i, j) || a.holds(j, i); }, x.values(), beta, start);
                    symmetric_product(uplo, n, k, a, alpha, x, beta, y);
                    expect_near<T>(y, want, static_cast<double>(n + 4));
                    EXPECT_TRUE(y.padding_intact());
                }
}

template <class T>
void triangular(bool solve, char uplo, char trans, char diag, std::int64_t n, std::int64_t k, const Stored<T>& a, T* x,
                std::int64_t inc)
{
    if (k < 0)
        (solve ? Kernels<T>::tpsv : Kernels<T>::tpmv)(&uplo, &trans, &diag, &n, raw(a.data()), raw(x), &inc);
    else
        (solve ? Kernels<T>::tbsv : Kernels<T>::tbmv)(&uplo, &trans, &diag, &n, &k, raw(a.data()), &a.ld(), raw(x),
                                                      &inc);
}

// Diagonals away from 0 and rows that stay small beside them, so that solutions do.
template <class T>
void fill_triangle(Stored<T>& a, std::int64_t n, std::int64_t k, bool unit, std::uint64_t seed)
{
    Random random(seed);
    const auto beside = static_cast<Real<T>>(1.0 / static_cast<double>((k < 0 ? n : k) + 1));
    a.fill([&](auto i, auto j) -> T {
        if (i == j && unit) return std::numeric_limits<Real<T>>::quiet_NaN(); // not looked at
        const T value = random.uniform<T>();
        return i == j ? value + (std::real(value) < 0 ? T(-1) : T(1)) : value * beside;
    });
}

TYPED_TEST(BandedProduct, TriangularProductsAndSolvesMatchTheFormula)
{
    using T = TypeParam;
    std::uint64_t seed = 0;
    for (const auto& [n, k] : orders)
        for (const char uplo : {'L', 'U'})
            for (const char* trans = transpositions<T>(); *trans != 0; ++trans)
                for (const char diag : {'N', 'U'})
                    for (const std::int64_t inc : {1, -2}) {
                        SCOPED_TRACE(testing::Message()
                                     << uplo << *trans << diag << ' ' << n << " k " << k << " inc " << inc);
                        const Guard side = both_guards[++seed & 1];
                        auto a = triangle<T>(n, k, uplo, side);
                        fill_triangle(a, n, k, diag == 'U', seed);
                        a.read_only();
                        const std::vector<T> start = uniform_values<T>(n, seed);
                        const auto element = [&](auto i, auto j) { return a.element(*trans, i, j, diag); };
                        const auto there = [&](auto i, auto j) {
                            return *trans == 'N' ? a.holds(i, j) : a.holds(j, i);
                        };
                        Vector<T> x(start, inc, side);
                        triangular(false, uplo, *trans, diag, n, k, a, x.data(), inc);
                        expect_near<T>(x, product(n, n, T(1), element, there, start, T(0), start),
                                       static_cast<double>(n + 4));
                        EXPECT_TRUE(x.padding_intact());
                        // Of a solution it must hold that the product with it gives the right-hand side again.
                        Vector<T> b(start, inc, side);
                        triangular(true, uplo, *trans, diag, n, k, a, b.data(), inc);
                        EXPECT_TRUE(b.padding_intact());
                        const auto residual = product(n, n, T(1), element, there, b.values(), T(0), start);
                        for (std::size_t i = 0; i < start.size(); ++i) {
                            Expected<> sum = expected(Wide<quad>(start[i]));
                            sum.scale += residual[i].scale;
                            const Wide<quad> difference = residual[i].value - sum.value;
                            const quad bound = static_cast<quad>(std::numeric_limits<Real<T>>::epsilon()) *
                                               static_cast<quad>(n + 4) * sum.scale;
                            EXPECT_TRUE(magnitude(difference) <= bound) << "row " << i;
                        }
                    }
}

// Parts of a complex element may differ in which of NaN and infinity they are, elements not in being finite.
template <class T>
void expect_same_pattern(const Vector<T>& got, const std::vector<Expected<>>& want)
{
    if constexpr (!is_complex<T>) return expect_near<T>(got, want, static_cast<double>(want.size()));
    for (std::size_t i = 0; i < want.size(); ++i)
        EXPECT_EQ(std::isfinite(std::abs(got[static_cast<std::int64_t>(i)])),
                  std::isfinite(static_cast<double>(magnitude(want[i].value))))
            << i;
}

// Every element of x is multiplied, also by zeros and into zeros: where the formula has NaN or infinity, so has the
// result.
TYPED_TEST(BandedProduct, NanAndInfinityFollowTheFormula)
{
    using T = TypeParam;
    constexpr auto inf = std::numeric_limits<Real<TypeParam>>::infinity();
    constexpr std::int64_t n = 45, one = 1;
    const T alpha(1), beta(0);
    for (const std::int64_t k : {std::int64_t{-1}, std::int64_t{3}, std::int64_t{20}})
        for (const char uplo : {'L', 'U'})
            for (const std::int64_t row : {0, 7, 30, 44}) {
                SCOPED_TRACE(testing::Message() << uplo << " k " << k << " row " << row);
                auto a = triangle<T>(n, k, uplo, Guard::end);
                a.fill([&](auto i, auto j) { return i == row && i == j ? T(inf) : i == j ? T(1) : T(0); });
                std::vector<T> values(n, T(0));
                values[20] = T(inf);
                Vector<T> x(values, one), y(n, one);
                const auto holds = [&](auto i, auto j) { return a.holds(i, j) || a.holds(j, i); };
                symmetric_product(uplo, n, k, a, alpha, x, beta, y);
                const auto symmetric = [&](auto i, auto j) { return a.symmetric(i, j); };
                expect_same_pattern(y, product(n, n, alpha, symmetric, holds, values, beta, values));
                for (const char trans : {'N', 'T'}) {
                    Vector<T> z(values, one);
                    triangular(false, uplo, trans, 'N', n, k, a, z.data(), one);
                    const auto element = [&](auto i, auto j) { return a.element(trans, i, j); };
                    const auto there = [&](auto i, auto j) { return trans == 'N' ? a.holds(i, j) : a.holds(j, i); };
                    expect_same_pattern(z, product(n, n, alpha, element, there, values, beta, values));
                }
                // In a solve, the infinite element times zeros reaches all that its column holds.
                Vector<T> z(values, one);
                triangular(true, uplo, 'N', 'N', n, k, a, z.data(), one);
                for (std::int64_t i = 0; i < n; ++i)
                    EXPECT_TRUE(!a.holds(i, 20) || !std::isfinite(std::abs(z[i]))) << i;
            }
}

// Results depend on the values alone: not on where the arrays stand, not on increments, short of or beyond what the
// buffers on the stack hold.
TYPED_TEST(BandedProduct, BitsDependOnNeitherAlignmentNorIncrement)
{
    using T = TypeParam;
    const T alpha = scalar<T>(1.5, 0.25), beta = scalar<T>(0.5, -1);
    for (const auto& [n, k] :
         {std::pair<std::int64_t, std::int64_t>{53, -1}, {53, 6}, {61, 30}, {1037, 40}, {1037, 300}})
        for (const char uplo : {'L', 'U'})
            for (const char trans : {'N', 'T'}) {
                SCOPED_TRACE(testing::Message() << uplo << trans << ' ' << n << " k " << k);
                std::vector<T> first[4];
                for (const std::size_t offset : {0, 1, 2, 3})
                    for (const std::int64_t inc : {1, 2, -3}) {
                        const std::size_t bytes = offset * sizeof(Real<T>);
                        const auto values = spread_values<T>(n, 5);
                        auto a = triangle<T>(n, k, uplo, Guard::begin, bytes);
                        fill_triangle(a, n, k, false, 7);
                        Vector<T> x(values, inc, Guard::begin, sizeof(Real<T>)), y(values, 1, Guard::begin, bytes);
                        symmetric_product(uplo, n, k, a, alpha, x, beta, y);
                        Vector<T> w(values, inc, Guard::begin, bytes), v(values, inc, Guard::begin, bytes);
                        triangular(false, uplo, trans, 'N', n, k, a, w.data(), inc);
                        triangular(true, uplo, trans, 'N', n, k, a, v.data(), inc);
                        Vector<T> u(values, inc, Guard::begin, bytes);
                        if (k >= 0) {
                            const std::int64_t kl = uplo == 'L' ? k : 0, ku = k - kl;
                            Kernels<T>::gbmv(&trans, &n, &n, &kl, &ku, raw(&alpha), raw(a.data()), &a.ld(),
                                             raw(y.data()), &y.inc(), raw(&beta), raw(u.data()), &u.inc());
                        }
                        const std::vector<T> got[4] = {y.values(), w.values(), v.values(), u.values()};
                        for (int r = 0; r < 4; ++r) {
                            if (first[r].empty()) first[r] = got[r];
                            expect_same_bits<T>(got[r], first[r], n);
                        }
                        if (testing::Test::HasFailure()) return;
                    }
            }
}

TYPED_TEST(BandedProduct, QuickReturnsTouchNothing)
{
    using T = TypeParam;
    const std::int64_t n = 3, zero = 0, one = 1;
    const T nan(std::numeric_limits<Real<T>>::quiet_NaN()), none(0), unity(1);
    Vector<T> y(n, 1);
    y.assign({nan, nan, nan});
    // Nothing is read but sizes and scalars.
    Kernels<T>::gbmv("N", &zero, &n, &one, &one, raw(&unity), nullptr, &n, nullptr, &one, raw(&none), raw(y.data()),
                     &one);
    Kernels<T>::gbmv("T", &n, &n, &one, &one, raw(&none), nullptr, &n, nullptr, &one, raw(&unity), raw(y.data()), &one);
    Kernels<T>::sbmv("L", &n, &one, raw(&none), nullptr, &n, nullptr, &one, raw(&unity), raw(y.data()), &one);
    Kernels<T>::spmv("U", &zero, raw(&unity), nullptr, nullptr, &one, raw(&none), raw(y.data()), &one);
    EXPECT_TRUE(y.unchanged());
    // alpha = 0 only scales y.
    Kernels<T>::gbmv("N", &n, &n, &one, &one, raw(&none), nullptr, &n, nullptr, &one, raw(&none), raw(y.data()), &one);
    for (std::int64_t i = 0; i < n; ++i) EXPECT_EQ(y[i], T(0));
    y.assign({nan, nan, nan});
    Kernels<T>::spmv("U", &n, raw(&none), nullptr, nullptr, &one, raw(&none), raw(y.data()), &one);
    for (std::int64_t i = 0; i < n; ++i) EXPECT_EQ(y[i], T(0));
}

TYPED_TEST(BandedProduct, KeepsTheEnvironmentAndNeedsLittleStack)
{
    using T = TypeParam;
    const std::int64_t n = 900, k = 30, inc = 2, none = 0;
    const T alpha(1), beta(0.5);
    auto a = triangle<T>(n, k, 'L', Guard::end);
    fill_triangle(a, n, k, false, 3);
    Vector<T> x(uniform_values<T>(n), inc), y(uniform_values<T>(n), inc);
    EXPECT_TRUE(keeps_fp_environment([&] {
        symmetric_product('L', n, k, a, alpha, x, beta, y);
        triangular(true, 'L', 'N', 'N', n, k, a, x.data(), inc);
        triangular(false, 'L', 'T', 'N', n, k, a, x.data(), inc);
    }));
    run_on_small_stack(small_stack, [&] {
        Kernels<T>::gbmv("N", &n, &n, &k, &none, raw(&alpha), raw(a.data()), &a.ld(), raw(x.data()), &inc, raw(&beta),
                         raw(y.data()), &inc);
        symmetric_product('L', n, k, a, alpha, x, beta, y);
    });
}

} // namespace

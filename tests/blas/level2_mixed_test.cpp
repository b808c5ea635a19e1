// SPDX-License-Identifier: MIT
// Products of matrices and vectors of different types, and the two products of one sweep.
#include <gtest/gtest.h>

#include <bit>

#include "blas/level2_banded.h"
#include "support/compare.h"

namespace {

using namespace ork::test;
using namespace ork::test::banded;

// Around the registers, and beyond what passes through a buffer at a time.
const std::pair<std::int64_t, std::int64_t> sizes[] = {{0, 3}, {1, 1},   {2, 5},   {3, 2},   {5, 4},   {7, 7},
                                                       {9, 6}, {16, 11}, {17, 13}, {33, 20}, {8, 600}, {1100, 3}};

float widened(std::uint16_t a) { return std::bit_cast<float>(std::uint32_t{a} << 16); }

// call(trans, m, n, alpha, a, lda, x, incx, beta, y, incy)
template <class A, class X, class Y, class Call, class RandomA, class RandomX>
void check_product(const Call& call, const RandomA& random_a, const RandomX& random_x, Y alpha)
{
    std::uint64_t seed = 0;
    for (const auto& [m, n] : sizes)
        for (const char trans : {'N', 'T', 'C'})
            for (const std::int64_t inc : {1, -1, 2})
                for (const Y beta : {Y(0), Y(1), Y(-3)}) {
                    SCOPED_TRACE(testing::Message() << trans << ' ' << m << 'x' << n << " inc " << inc);
                    const Guard side = both_guards[++seed & 1];
                    Matrix<A> a(m, n, m + static_cast<std::int64_t>(seed % 3), side);
                    a.fill(random_a);
                    const bool plain = trans == 'N';
                    const std::int64_t rows = plain ? m : n, columns = plain ? n : m;
                    Vector<X> x(columns, -inc, side);
                    Vector<Y> y(rows, inc, side);
                    for (std::int64_t j = 0; j < columns; ++j) x[j] = random_x();
                    if (beta != Y(0)) y.assign(uniform_values<Y>(rows, seed));
                    a.read_only(), x.read_only(), y.remember();
                    std::vector<Expected<>> want(static_cast<std::size_t>(rows));
                    for (std::int64_t i = 0; i < rows; ++i) {
                        Expected<>& sum = want[static_cast<std::size_t>(i)];
                        for (std::int64_t j = 0; j < columns; ++j) {
                            const Wide<quad> element(plain ? a(i, j) : a(j, i));
                            sum.add(multiply<Y>(Wide<quad>(alpha), multiply<Y>(element, Wide<quad>(x[j]))));
                        }
                        if (beta != Y(0)) sum.add(multiply<Y>(Wide<quad>(beta), Wide<quad>(y[i])));
                    }
                    const bool returns = m == 0 || n == 0;
                    call(&trans, &m, &n, &alpha, a.data(), &a.ld(), x.data(), &x.inc(), &beta, y.data(), &y.inc());
                    if (returns)
                        EXPECT_TRUE(y.unchanged());
                    else
                        expect_near<Y>(y, want, static_cast<double>(columns + 4));
                    EXPECT_TRUE(y.padding_intact());
                }
}

TEST(MixedProduct, RealMatrixTimesComplexVector)
{
    Random random;
    check_product<float, std::complex<float>, std::complex<float>>(
        [](auto trans, auto m, auto n, auto alpha, auto a, auto lda, auto x, auto incx, auto beta, auto y, auto incy) {
            ork_blas_nx2_scgemv(trans, m, n, raw(alpha), a, lda, raw(x), incx, raw(beta), raw(y), incy);
        },
        [&] { return random.uniform<float>(); }, [&] { return random.uniform<std::complex<float>>(); },
        std::complex<float>(0.5f, -1.5f));
    check_product<double, std::complex<double>, std::complex<double>>(
        [](auto trans, auto m, auto n, auto alpha, auto a, auto lda, auto x, auto incx, auto beta, auto y, auto incy) {
            ork_blas_nx2_dzgemv(trans, m, n, raw(alpha), a, lda, raw(x), incx, raw(beta), raw(y), incy);
        },
        [&] { return random.uniform<double>(); }, [&] { return random.uniform<std::complex<double>>(); },
        std::complex<double>(0.5, -1.5));
}

// An infinite element of a real matrix multiplies the parts of a complex one and nothing else: (inf, inf), never NaN.
TEST(MixedProduct, RealElementsKeepPartsApart)
{
    constexpr double inf = std::numeric_limits<double>::infinity();
    const std::int64_t n = 5, one = 1;
    const ork_complex_double beta{0, 0};
    std::vector<double> a(25, inf), y(10, 0.0);
    std::vector<ork_complex_double> x(5, {1, 2});
    const ork_complex_double alpha{1, 0};
    ork_blas_nx2_dzgemv("N", &n, &n, &alpha, a.data(), &n, x.data(), &one, &beta,
                        reinterpret_cast<ork_complex_double*>(y.data()), &one);
    for (const double part : y) EXPECT_EQ(part, inf);
}

// Values of eight bits, which bfloat16 holds: the products are exact, the sums of binary32 rounded.
TEST(MixedProduct, Bfloat16)
{
    Random random;
    const auto value = [&] {
        return static_cast<std::uint16_t>(0x3f00 + random.integer(0, 0x1ff) + (random.bits() & 0x8000));
    };
    std::uint64_t seed = 0;
    for (const auto& [m, n] : sizes)
        for (const char trans : {'N', 'T'})
            for (const std::int64_t inc : {1, -2})
                for (const float beta : {0.0f, 0.5f}) {
                    SCOPED_TRACE(testing::Message() << trans << ' ' << m << 'x' << n << " inc " << inc);
                    const Guard side = both_guards[++seed & 1];
                    const bool plain = trans == 'N';
                    const std::int64_t rows = plain ? m : n, columns = plain ? n : m, lda = m + 1;
                    if (m == 0) continue;
                    const float alpha = 1.25f;
                    Guarded<std::uint16_t> a((n - 1) * lda + m, side);
                    for (std::int64_t i = 0; i < a.size(); ++i) a[i] = i % lda < m ? value() : std::uint16_t{0x7fc0};
                    Guarded<std::uint16_t> x((columns - 1) * std::abs(inc) + 1, side);
                    const auto at = [&](std::int64_t j) -> std::uint16_t& {
                        return x[inc > 0 ? j * inc : (columns - 1 - j) * -inc];
                    };
                    for (std::int64_t j = 0; j < columns; ++j) at(j) = value();
                    Vector<float> y(rows, inc, side);
                    if (beta != 0) y.assign(uniform_values<float>(rows, seed));
                    std::vector<Expected<>> want(static_cast<std::size_t>(rows));
                    for (std::int64_t i = 0; i < rows; ++i) {
                        Expected<>& sum = want[static_cast<std::size_t>(i)];
                        for (std::int64_t j = 0; j < columns; ++j) {
                            const quad element = widened(plain ? a[i + j * lda] : a[j + i * lda]);
                            sum.add(Wide<quad>(quad(alpha) * element * quad(widened(at(j)))));
                        }
                        if (beta != 0) sum.add(Wide<quad>(quad(beta) * quad(y[i])));
                    }
                    ork_blas_nx2_xgemv_bf16bf16f32(&trans, &m, &n, &alpha, a.data(), &lda, x.data(), &inc, &beta,
                                                   y.data(), &inc);
                    expect_near<float>(y, want, static_cast<double>(columns + 4));
                    EXPECT_TRUE(y.padding_intact());
                }
}

// Exact modulo 2^32, for all bytes and for sums beyond 32 bits.
TEST(MixedProduct, BytesAreExact)
{
    Random random;
    std::uint64_t seed = 0;
    for (const auto& [m, n] : sizes)
        for (const char trans : {'N', 'T'})
            for (const std::int64_t inc : {1, -2})
                for (const std::int32_t beta : {0, 1, -7}) {
                    if (m == 0) continue;
                    const Guard side = both_guards[++seed & 1];
                    const bool plain = trans == 'N';
                    const std::int64_t rows = plain ? m : n, columns = plain ? n : m, lda = m + 2, step = std::abs(inc);
                    const auto alpha = static_cast<std::int32_t>(random.bits());
                    Guarded<std::int8_t> a((n - 1) * lda + m, side);
                    Guarded<std::uint8_t> x((columns - 1) * step + 1, side);
                    Guarded<std::int32_t> y((rows - 1) * step + 1, side);
                    // runs of the extremes among arbitrary ones
                    for (auto& e : a.span())
                        e = static_cast<std::int8_t>(seed % 3 == 0 ? -128 : random.integer(-128, 127));
                    for (auto& e : x.span())
                        e = static_cast<std::uint8_t>(seed % 2 == 0 ? 255 : random.integer(0, 255));
                    for (auto& e : y.span()) e = static_cast<std::int32_t>(random.bits());
                    y.remember();
                    const auto position = [&](std::int64_t count, std::int64_t i) {
                        return inc > 0 ? i * step : (count - 1 - i) * step;
                    };
                    std::vector<std::uint32_t> want(static_cast<std::size_t>(rows));
                    for (std::int64_t i = 0; i < rows; ++i) {
                        std::uint32_t sum = 0;
                        for (std::int64_t j = 0; j < columns; ++j)
                            sum += static_cast<std::uint32_t>((plain ? a[i + j * lda] : a[j + i * lda]) *
                                                              x[position(columns, j)]);
                        want[static_cast<std::size_t>(i)] =
                            static_cast<std::uint32_t>(alpha) * sum +
                            static_cast<std::uint32_t>(beta) * static_cast<std::uint32_t>(y[position(rows, i)]);
                    }
                    ork_blas_nx2_xgemv_s8u8s32(&trans, &m, &n, &alpha, a.data(), &lda, x.data(), &inc, &beta, y.data(),
                                               &inc);
                    for (std::int64_t i = 0; i < rows; ++i)
                        ASSERT_EQ(static_cast<std::uint32_t>(y[position(rows, i)]), want[static_cast<std::size_t>(i)])
                            << trans << ' ' << m << 'x' << n << " inc " << inc << " row " << i;
                    EXPECT_TRUE(y.unchanged_except([&](std::int64_t i) { return i % step == 0; }));
                }
}

template <class T>
class TwoProducts : public testing::Test {
};
using Types = testing::Types<float, double, std::complex<float>, std::complex<double>>;
TYPED_TEST_SUITE(TwoProducts, Types);

TYPED_TEST(TwoProducts, AreThoseOfGemv)
{
    using T = TypeParam;
    const T alpha = scalar<T>(1.5, -0.25);
    std::uint64_t seed = 0;
    for (const auto& [m, n] : sizes)
        for (const std::int64_t inc : {1, -2})
            for (const T beta : {T(0), scalar<T>(0.5, 1)}) {
                SCOPED_TRACE(testing::Message() << m << 'x' << n << " inc " << inc << " beta " << beta);
                const Guard side = both_guards[++seed & 1];
                Matrix<T> a(m, n, m + 1, side);
                Random random(seed);
                a.fill(random);
                a.read_only();
                Vector<T> x1(uniform_values<T>(n, seed), inc, side), x2(uniform_values<T>(m, seed + 1), -inc, side);
                Vector<T> y1(m, -inc, side), y2(n, inc, side);
                if (beta != T(0)) y1.assign(uniform_values<T>(m, seed + 2)), y2.assign(uniform_values<T>(n, seed + 3));
                const auto always = [](auto, auto) { return true; };
                const auto want1 = product(
                    m, n, alpha, [&](auto i, auto j) { return Wide<quad>(a(i, j)); }, always, x1.values(), beta,
                    y1.values());
                const auto want2 = product(
                    n, m, alpha,
                    [&](auto i, auto j) { return is_complex<T> ? conj(Wide<quad>(a(j, i))) : Wide<quad>(a(j, i)); },
                    always, x2.values(), beta, y2.values());
                Kernels<T>::gem2v(&m, &n, raw(&alpha), raw(a.data()), &a.ld(), raw(x1.data()), &x1.inc(),
                                  raw(x2.data()), &x2.inc(), raw(&beta), raw(y1.data()), &y1.inc(), raw(y2.data()),
                                  &y2.inc());
                if (m == 0) {
                    EXPECT_TRUE(y2.unchanged());
                    continue;
                }
                expect_near<T>(y1, want1, static_cast<double>(n + 4));
                expect_near<T>(y2, want2, static_cast<double>(m + 4));
                EXPECT_TRUE(y1.padding_intact());
                EXPECT_TRUE(y2.padding_intact());
            }
}

} // namespace

// SPDX-License-Identifier: MIT
// Rank-one and rank-two updates of packed triangles.
#include <gtest/gtest.h>

#include "blas/level2_banded.h"
#include "support/compare.h"

namespace {

using namespace ork::test;
using namespace ork::test::banded;

template <class T>
class PackedUpdate : public testing::Test {
};
using Types = testing::Types<float, double, std::complex<float>, std::complex<double>>;
TYPED_TEST_SUITE(PackedUpdate, Types);

constexpr std::int64_t orders[] = {0, 1, 2, 3, 4, 5, 8, 9, 16, 17, 33, 40};

template <class T>
Wide<quad> conjugated(Wide<quad> a)
{
    return is_complex<T> ? conj(a) : a;
}

template <class T>
Stored<T> some_triangle(std::int64_t n, char uplo, std::uint64_t seed, std::size_t offset = 0)
{
    auto a = Stored<T>::packed(n, uplo, both_guards[seed & 1], offset);
    Random random(seed);
    a.fill([&](auto i, auto j) {
        T value = random.uniform<T>();
        if constexpr (is_complex<T>)
            if (i == j) value.imag(std::numeric_limits<Real<T>>::quiet_NaN()); // is not read and becomes 0
        return value;
    });
    return a;
}

// y is null for a rank-one update, whose alpha is real.
template <class T>
void update(char uplo, std::int64_t n, T alpha, const Vector<T>& x, const Vector<T>* y, const Stored<T>& a)
{
    const Real<T> real_alpha = std::real(alpha);
    if (y)
        Kernels<T>::spr2(&uplo, &n, raw(&alpha), raw(x.data()), &x.inc(), raw(y->data()), &y->inc(), raw(a.data()));
    else
        Kernels<T>::spr(&uplo, &n, &real_alpha, raw(x.data()), &x.inc(), raw(a.data()));
}

TYPED_TEST(PackedUpdate, AddsToOneTriangle)
{
    using T = TypeParam;
    std::uint64_t seed = 0;
    for (const std::int64_t n : orders)
        for (const char uplo : {'L', 'U'})
            for (const bool two : {false, true})
                for (const std::int64_t inc : {1, -1, 2}) {
                    SCOPED_TRACE(testing::Message() << uplo << ' ' << n << " inc " << inc << " vectors " << 1 + two);
                    const T alpha = two ? scalar<T>(0.5, -1.25) : T(1.5);
                    auto a = some_triangle<T>(n, uplo, ++seed);
                    Vector<T> x(uniform_values<T>(n, seed), inc), y(uniform_values<T>(n, seed + 1), -inc);
                    x.read_only(), y.read_only();
                    std::vector<Expected<>> want;
                    a.each([&](auto i, auto j) {
                        Expected<> sum = expected(i == j ? Wide<quad>(std::real(a(i, j))) : Wide<quad>(a(i, j)));
                        const auto term = [&](Wide<quad> factor, const Vector<T>& u, const Vector<T>& v) {
                            const Wide<quad> product =
                                multiply<T>(multiply<T>(factor, Wide<quad>(u[i])), conjugated<T>(Wide<quad>(v[j])));
                            sum.add(product);
                        };
                        term(Wide<quad>(alpha), x, two ? y : x);
                        if (two) term(conjugated<T>(Wide<quad>(alpha)), y, x);
                        if (i == j) sum.value.im = 0;
                        want.push_back(sum);
                    });
                    update(uplo, n, alpha, x, two ? &y : nullptr, a);
                    std::vector<T> got;
                    a.each([&](auto i, auto j) {
                        got.push_back(a(i, j));
                        EXPECT_TRUE(i != j || std::imag(a(i, j)) == 0);
                    });
                    expect_near<T>(got, want, 8);
                    EXPECT_TRUE(a.unchanged_outside());
                }
}

TYPED_TEST(PackedUpdate, BitsDependOnNeitherAlignmentNorIncrement)
{
    using T = TypeParam;
    for (const std::int64_t n : {37, 1011})
        for (const char uplo : {'L', 'U'})
            for (const bool two : {false, true}) {
                std::vector<T> first;
                for (const std::size_t offset : {0, 1, 3})
                    for (const std::int64_t inc : {1, 2}) {
                        const std::size_t bytes = offset * sizeof(Real<T>);
                        Vector<T> x(spread_values<T>(n, 3), inc, Guard::begin, bytes), y(spread_values<T>(n, 4), -inc);
                        auto a = some_triangle<T>(n, uplo, 5, bytes);
                        update(uplo, n, T(0.75), x, two ? &y : nullptr, a);
                        std::vector<T> got(a.data(), a.data() + n * (n + 1) / 2);
                        if (first.empty()) first = got;
                        ASSERT_EQ(std::memcmp(got.data(), first.data(), got.size() * sizeof(T)), 0)
                            << uplo << n << " offset " << offset << " inc " << inc;
                    }
            }
}

// 0 times infinity is NaN also where the other factor is an element of x; alpha = 0 reads nothing.
TYPED_TEST(PackedUpdate, ZerosAreMultipliedButNotByAlpha)
{
    using T = TypeParam;
    constexpr std::int64_t n = 20, one = 1;
    for (const char uplo : {'L', 'U'})
        for (const bool two : {false, true}) {
            auto a = some_triangle<T>(n, uplo, 9);
            std::vector<T> values(n, T(0));
            values[7] = T(std::numeric_limits<Real<T>>::infinity());
            Vector<T> x(values, one), y(std::vector<T>(n, T(0)), one);
            update(uplo, n, T(1), x, two ? &y : nullptr, a);
            a.each([&](auto i, auto j) {
                EXPECT_EQ(std::isfinite(std::abs(a(i, j))), i != 7 && j != 7) << uplo << i << ' ' << j;
            });
            auto b = some_triangle<T>(n, uplo, 9);
            update(uplo, n, T(0), x, two ? &y : nullptr, b);
            const auto start = some_triangle<T>(n, uplo, 9);
            EXPECT_EQ(std::memcmp(b.data(), start.data(), sizeof(T) * n * (n + 1) / 2), 0);
        }
}

} // namespace

// SPDX-License-Identifier: MIT
// Rotations and reflectors of two and three rows give, element by element, the bits of the stated formulas.
#include "lapack/kernel.h"
#include "lapack/values.h"

namespace ork::test {
namespace {

template <class T>
class Rotations : public testing::Test {
};
TYPED_TEST_SUITE(Rotations, Precisions, PrecisionNames);

template <class T>
constexpr int most = 4 * 4 * static_cast<int>(16 / sizeof(T)) + 3;

// t <- c t - s u, u <- s t + c u
template <class T>
void rotate(Real<T> c, Real<T> s, T& t, T& u)
{
    const T higher = c * t - s * u;
    u = s * t + c * u, t = higher;
}

TYPED_TEST(Rotations, SequencesTakeEveryColumnThroughAllOfThemInOrder)
{
    using T = TypeParam;
    using R = Real<T>;
    const struct {
        const char* name;
        typename lapack::Calls<T>::lasr_lvf* call;
        char pivot;
        bool forward;
    } variants[] = {{"lvf", KERNEL(lasr_lvf), 'v', true}, {"lvb", KERNEL(lasr_lvb), 'v', false},
                    {"ltf", KERNEL(lasr_ltf), 't', true}, {"ltb", KERNEL(lasr_ltb), 't', false},
                    {"lbf", KERNEL(lasr_lbf), 'b', true}, {"lbb", KERNEL(lasr_lbb), 'b', false}};
    Random random;
    for (const auto& v : variants)
        for (const Int m : {0, 1, 2, 3, 4, 5, 6, 9, 18})
            for (Int n = 0; n <= 4 * static_cast<Int>(16 / sizeof(T)) + 3; ++n) {
                SCOPED_TRACE(std::string(v.name) + ' ' + std::to_string(m) + " x " + std::to_string(n));
                Matrix<T> a(m, n, m + n % 3 + 1, both_guards[n % 2]);
                a.fill([&] { return odd_value<T>(random); });
                const Int count = std::max<Int>(m - 1, 0);
                auto cosines = uniform_values<R>(count, 3), sines = uniform_values<R>(count, 4);
                if (m > 3) cosines[1] = 1, sines[1] = 0; // meets infinities all the same
                Vector<R> c(cosines, 1), s(sines, 1);
                c.read_only(), s.read_only();
                Matrix<T> want(m, n, m + 1);
                for (Int j = 0; j < n; ++j)
                    for (Int i = 0; i < m; ++i) want(i, j) = a(i, j);
                for (Int step = 0; step < count; ++step) {
                    const Int k = v.forward ? step : count - 1 - step;
                    const Int lower = v.pivot == 't' ? 0 : k, higher = v.pivot == 'b' ? m - 1 : k + 1;
                    for (Int j = 0; j < n; ++j) rotate(c[k], s[k], want(higher, j), want(lower, j));
                }
                v.call(&m, &n, c.data(), s.data(), a.data(), &a.ld());
                expect_equal(a.values(), want.values());
                EXPECT_TRUE(a.padding_intact());
                if (testing::Test::HasFailure()) return;
            }
}

const std::int64_t increments[][3] = {{1, 1, 1}, {2, 3, 2}, {-1, -2, -3}, {3, 1, -1}, {0, 1, 1}, {2, 0, -2}};

TYPED_TEST(Rotations, PairsByVectorsOfRotations)
{
    using T = TypeParam;
    using R = Real<T>;
    auto* const lartv = KERNEL(lartv);
    Random random;
    for (const auto& inc : increments)
        for (Int n = 0; n <= most<T>; ++n) {
            SCOPED_TRACE("n " + std::to_string(n) + " incx " + std::to_string(inc[0]));
            const Guard side = both_guards[n % 2];
            Vector<T> x(odd_values<T>(n, random), inc[0], side), y(odd_values<T>(n, random), inc[1], side);
            Vector<R> c(uniform_values<R>(n, 3), inc[2], side);
            Vector<T> s(uniform_values<T>(n, 4), inc[2], side);
            c.read_only(), s.read_only();
            Vector<T> u(x.values(), inc[0]), v(y.values(), inc[1]);
            for (Int i = 0; i < n; ++i) {
                const T old = u[i];
                u[i] = c[i] * old + plain_product(s[i], v[i]);
                v[i] = c[i] * v[i] - plain_product(conjugated(s[i]), old);
            }
            lartv(&n, x.data(), &inc[0], y.data(), &inc[1], c.data(), s.data(), &inc[2]);
            expect_equal(x.values(), u.values());
            expect_equal(y.values(), v.values());
            EXPECT_TRUE(x.padding_intact() && y.padding_intact());
            if (testing::Test::HasFailure()) return;
        }
}

TYPED_TEST(Rotations, ReflectorsOfOrderTwoAndThree)
{
    using T = TypeParam;
    auto* const rot2 = KERNEL(rot2);
    auto* const rot3 = KERNEL(rot3);
    const T tau = some<T>(1.25f, 0.375f), h2 = some<T>(-0.7f, 0.3f), h3 = some<T>(0.9f, -1.1f);
    Random random;
    for (const auto& inc : increments)
        for (Int n = 0; n <= most<T>; ++n)
            for (const bool three : {false, true}) {
                SCOPED_TRACE("n " + std::to_string(n) + " incx " + std::to_string(inc[0]));
                const Guard side = both_guards[n % 2];
                Vector<T> x(odd_values<T>(n, random), inc[0], side), y(odd_values<T>(n, random), inc[1], side),
                    z(odd_values<T>(n, random), inc[2], side);
                Vector<T> u(x.values(), inc[0]), v(y.values(), inc[1]), w(z.values(), inc[2]);
                for (Int i = 0; i < n; ++i) {
                    T sum = u[i] + plain_product(h2, v[i]);
                    if (three) sum = sum + plain_product(h3, w[i]);
                    sum = plain_product(sum, tau);
                    u[i] = u[i] - sum;
                    v[i] = v[i] - plain_product(sum, conjugated(h2));
                    if (three) w[i] = w[i] - plain_product(sum, conjugated(h3));
                }
                if (three)
                    rot3(&n, x.data(), &inc[0], y.data(), &inc[1], z.data(), &inc[2], &tau, &h2, &h3);
                else
                    rot2(&n, x.data(), &inc[0], y.data(), &inc[1], &tau, &h2);
                expect_equal(x.values(), u.values());
                expect_equal(y.values(), v.values());
                expect_equal(z.values(), w.values());
                EXPECT_TRUE(x.padding_intact() && y.padding_intact() && z.padding_intact());
                if (testing::Test::HasFailure()) return;
            }
}

// With tau = 2 / (h^H h) the reflector is unitary and its own inverse; with tau = 0 it is the identity.
TYPED_TEST(Rotations, ReflectorsComeBack)
{
    using T = TypeParam;
    const T h2 = some<T>(-0.75f, 0.5f), h3 = some<T>(0.25f, -1), none{};
    const T tau = T(2 / (1 + std::norm(h2) + std::norm(h3)));
    const Int n = 9, one = 1;
    Vector<T> x(uniform_values<T>(n, 1), 1), y(uniform_values<T>(n, 2), 1), z(uniform_values<T>(n, 3), 1);
    const auto before = x.values();
    auto* const rot3 = KERNEL(rot3);
    rot3(&n, x.data(), &one, y.data(), &one, z.data(), &one, &none, &h2, &h3);
    expect_equal(x.values(), before);
    for (int twice = 0; twice < 2; ++twice) rot3(&n, x.data(), &one, y.data(), &one, z.data(), &one, &tau, &h2, &h3);
    for (Int i = 0; i < n; ++i)
        EXPECT_LE(std::abs(x[i] - before[static_cast<std::size_t>(i)]), 16 * std::numeric_limits<Real<T>>::epsilon());
}

} // namespace
} // namespace ork::test

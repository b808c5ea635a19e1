// SPDX-License-Identifier: MIT
// Reflectors with all of v stored, one and two at once, against the product with I - tau v v^H.
#include "lapack/kernel.h"
#include "lapack/values.h"

namespace ork::test {
namespace {

template <class T>
class Reflectors : public testing::Test {
};
TYPED_TEST_SUITE(Reflectors, Precisions, PrecisionNames);

// C <- H C or C H
template <class T>
void reflect(bool left, const Vector<T>& v, T tau, WideMatrix& c)
{
    const std::size_t columns = c.size(), rows = c.empty() ? 0 : c[0].size();
    const auto at = [&](std::size_t i, std::size_t other) -> Wide<quad>& { return left ? c[other][i] : c[i][other]; };
    const auto element = [&](std::size_t i, bool conjugate) {
        const Wide<quad> x(v[static_cast<Int>(i)]);
        return conjugate ? conj(x) : x;
    };
    for (std::size_t other = 0; other < (left ? columns : rows); ++other) {
        Wide<quad> sum;
        for (std::size_t i = 0; i < (left ? rows : columns); ++i) sum += multiply<T>(element(i, left), at(i, other));
        sum = multiply<T>(Wide<quad>(tau), sum);
        for (std::size_t i = 0; i < (left ? rows : columns); ++i)
            at(i, other) = at(i, other) - multiply<T>(element(i, !left), sum);
    }
}

template <class T>
T unitary(const Vector<T>& v)
{
    Real<T> length = 0;
    for (Int i = 0; i < v.size(); ++i) length += std::norm(v[i]);
    return length == 0 ? T(1) : T(2 / length);
}

template <class T>
struct Case {
    bool left;
    Int m, n;
    Matrix<T> c;
    Vector<T> v1, v2;
    Case(bool left, Int order, Int others, Random& random)
        : left(left), m(left ? order : others), n(left ? others : order),
          c(m, n, m + others % 2 + 1, both_guards[others % 2]), v1(uniform_values<T>(order, 5), 1),
          v2(uniform_values<T>(order, 6), 1, Guard::begin)
    {
        c.fill(random);
        v1.read_only(), v2.read_only();
    }
};

TYPED_TEST(Reflectors, OneOfEveryOrder)
{
    using T = TypeParam;
    auto* const larfx = KERNEL(larfx);
    Random random;
    for (const char side : {'L', 'r'})
        for (const Int order : {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 35})
            for (Int others = 0; others <= 4 * static_cast<Int>(16 / sizeof(T)) + 3; ++others) {
                SCOPED_TRACE(std::string(1, side) + " order " + std::to_string(order) + ", " + std::to_string(others));
                Case<T> p(side == 'L', order, others, random);
                const T tau = unitary(p.v1);
                WideMatrix want = widened(p.c);
                reflect(p.left, p.v1, tau, want);
                larfx(&side, &p.m, &p.n, p.v1.data(), &tau, p.c.data(), &p.c.ld(), nullptr);
                expect_near(p.c, want, 4 * static_cast<double>(order) + 8);
                EXPECT_TRUE(p.c.padding_intact());
                if (testing::Test::HasFailure()) return;
            }
}

TYPED_TEST(Reflectors, TwoAtOnceTheFirstFirst)
{
    using T = TypeParam;
    auto* const apply_2hv = KERNEL(apply_2hv);
    Random random;
    for (const char side : {'l', 'R'})
        for (const Int order : {1, 2, 3, 7, 10, 33})
            for (Int others = 0; others <= 4 * static_cast<Int>(16 / sizeof(T)) + 3; ++others)
                for (const int zero : {0, 1, 2}) {
                    SCOPED_TRACE(std::string(1, side) + " order " + std::to_string(order) + ", " +
                                 std::to_string(others) + ", tau " + std::to_string(zero) + " is zero");
                    Case<T> p(side == 'l', order, others, random);
                    const T tau1 = zero == 1 ? T{} : unitary(p.v1), tau2 = zero == 2 ? T{} : unitary(p.v2);
                    WideMatrix want = widened(p.c);
                    reflect(p.left, p.v1, tau1, want);
                    reflect(p.left, p.v2, tau2, want);
                    apply_2hv(&side, &p.m, &p.n, p.v1.data(), &tau1, p.v2.data(), &tau2, p.c.data(), &p.c.ld(),
                              nullptr);
                    expect_near(p.c, want, 8 * static_cast<double>(order) + 16);
                    EXPECT_TRUE(p.c.padding_intact());
                    if (testing::Test::HasFailure()) return;
                }
}

TYPED_TEST(Reflectors, ZeroTauReadsNothing)
{
    using T = TypeParam;
    const Int m = 5, n = 4;
    const T tau{}, *nothing = nullptr;
    Matrix<T> c(m, n, m); // NaN
    KERNEL(larfx)("L", &m, &n, nothing, &tau, c.data(), &c.ld(), nullptr);
    KERNEL(apply_2hv)("R", &m, &n, nothing, &tau, nothing, &tau, c.data(), &c.ld(), nullptr);
    EXPECT_TRUE(c.unchanged());
}

} // namespace
} // namespace ork::test

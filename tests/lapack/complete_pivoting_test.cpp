// SPDX-License-Identifier: MIT
#include "lapack/spectral.h"

namespace ork::test {
namespace {

template <class T>
class CompletePivoting : public testing::Test {
public:
    struct Result {
        Padded<T> a;
        std::vector<Int> ipiv, jpiv;
        Int info = -99;
    };
    static Result factor(Int n, const std::function<T(Int, Int)>& element)
    {
        Result r{{n, n, element}, std::vector<Int>(n, -77), std::vector<Int>(n, -77)};
        const auto kernel = KERNEL(getc2);
        if (kernel) kernel(&n, r.a.data.data(), &r.a.ld, r.ipiv.data(), r.jpiv.data(), &r.info);
        EXPECT_TRUE(r.a.padding_intact());
        return r;
    }
    // The same rules step by step.
    static Result expected(Int n, const std::function<T(Int, Int)>& element)
    {
        using R = Real<T>;
        Result r{{n, n, element}, std::vector<Int>(n), std::vector<Int>(n), 0};
        const R least = std::numeric_limits<R>::min() / eps<T>;
        R smallest = least;
        for (Int k = 0; k < n; ++k) {
            Int p = k, q = k;
            long double most = 0;
            for (Int i = k; i < n; ++i)
                for (Int j = k; j < n; ++j)
                    if (const auto size = std::abs(wide(r.a(i, j))); size >= most) most = size, p = i, q = j;
            r.ipiv[k] = p + 1, r.jpiv[k] = q + 1;
            for (Int j = 0; j < n; ++j) std::swap(r.a(k, j), r.a(p, j));
            for (Int i = 0; i < n; ++i) std::swap(r.a(i, k), r.a(i, q));
            if (k == 0 && n > 1) smallest = std::max<R>(eps<T> * std::abs(r.a(0, 0)), least);
            if (std::abs(r.a(k, k)) < smallest) r.info = k + 1, r.a(k, k) = smallest;
            for (Int i = k + 1; i < n; ++i) r.a(i, k) /= r.a(k, k);
            for (Int j = k + 1; j < n; ++j)
                for (Int i = k + 1; i < n; ++i) r.a(i, j) -= plain_product(r.a(i, k), r.a(k, j));
        }
        return r;
    }
    static void check(const char* name, Int n, const std::function<T(Int, Int)>& element, bool near_singular = false)
    {
        SCOPED_TRACE(testing::Message() << name << ", order " << n);
        const auto got = factor(n, element), want = expected(n, element);
        if (!near_singular) {
            EXPECT_EQ(got.ipiv, want.ipiv);
            EXPECT_EQ(got.jpiv, want.jpiv);
            EXPECT_EQ(got.info, want.info);
        }
        // P L U Q.
        const Padded<T> a(n, n, element);
        std::vector<Long> m(n * n);
        const auto at = [&](Int i, Int j) -> Long& { return m[j * n + i]; };
        for (Int j = 0; j < n; ++j)
            for (Int i = 0; i < n; ++i) {
                at(i, j) = i <= j ? wide(got.a(i, j)) : 0;
                for (Int k = 0; k < i && k <= j; ++k) at(i, j) += wide(got.a(i, k)) * wide(got.a(k, j));
            }
        for (Int k = n - 1; k >= 0; --k) {
            for (Int j = 0; j < n; ++j) std::swap(at(k, j), at(got.ipiv[k] - 1, j));
            for (Int i = 0; i < n; ++i) std::swap(at(i, k), at(i, got.jpiv[k] - 1));
        }
        const long double tolerance =
            4 * static_cast<long double>(n) * eps<T> * largest(a) +
            2 * std::numeric_limits<Real<T>>::min() / eps<T>; // a pivot may become the smallest
        for (Int j = 0; j < n; ++j)
            for (Int i = 0; i < n; ++i) ASSERT_TRUE(std::abs(at(i, j) - wide(a(i, j))) <= tolerance) << i << ", " << j;
    }
};
TYPED_TEST_SUITE(CompletePivoting, Precisions, PrecisionNames);

TYPED_TEST(CompletePivoting, PivotsFollowTheRulesAndFactorsReproduceTheMatrix)
{
    using T = TypeParam;
    for (const Int n : orders)
        for (const auto& kind : kinds<T>(n)) {
            const std::string name = kind.name;
            this->check(kind.name, n, kind.element, name == "rank one" || name == "Hilbert");
        }
    // Ties: the last row wins, in it the last column.
    Random random(9);
    for (int trial = 0; trial < 50; ++trial) {
        const Int n = random.integer(1, 5);
        std::vector<float> small(n * n);
        for (float& x : small) x = static_cast<float>(random.integer(-2, 2));
        this->check("ties", n, [&](Int i, Int j) { return some<T>(small[j * n + i], 0); });
    }
}

TYPED_TEST(CompletePivoting, SmallPivotsAreReplacedAndTheLastIsTold)
{
    using T = TypeParam;
    using R = Real<T>;
    const R least = std::numeric_limits<R>::min() / eps<T>;
    const auto zero = this->factor(4, [](Int, Int) { return T(0); });
    EXPECT_EQ(zero.info, 4);
    for (Int k = 0; k < 4; ++k) EXPECT_EQ(zero.a(k, k), T(least));
    const auto one = this->factor(1, [](Int, Int) { return T(std::numeric_limits<R>::min()); });
    EXPECT_TRUE(one.info == 1 && one.a(0, 0) == T(least));
    const auto two = this->factor(3, [](Int i, Int j) {
        return T(i == j ? R(i == 1 ? 8 : i == 0 ? eps<T> : 4) : R(0));
    });
    EXPECT_EQ(two.info, 3);
    EXPECT_EQ(two.a(2, 2), T(8 * eps<T>));
}

TYPED_TEST(CompletePivoting, ANumberIsPreferredToNaN)
{
    using T = TypeParam;
    const T nan = std::numeric_limits<Real<T>>::quiet_NaN();
    for (const Int n : {2, 5, 11}) {
        const auto r = this->factor(n, [=](Int i, Int j) { return i == j ? nan : T(i == 1 && j == 0 ? 3 : 1); });
        EXPECT_TRUE(r.ipiv[0] == 2 && r.jpiv[0] == 1) << r.ipiv[0] << ", " << r.jpiv[0];
        const auto all = this->factor(n, [=](Int, Int) { return nan; });
        for (Int k = 0; k < n; ++k) EXPECT_TRUE(all.ipiv[k] == k + 1 && all.jpiv[k] == k + 1);
    }
}

} // namespace
} // namespace ork::test

// SPDX-License-Identifier: MIT
// Copies of trapezoids write what they name and nothing else.
#include "lapack/kernel.h"
#include "lapack/values.h"

namespace ork::test {
namespace {

template <class T>
class Copies : public testing::Test {
};
TYPED_TEST_SUITE(Copies, Precisions, PrecisionNames);

TYPED_TEST(Copies, TrapezoidsOfAnyDiagonal)
{
    using T = TypeParam;
    auto* const lacpy2 = KERNEL(lacpy2);
    auto* const lacpy3 = KERNEL(lacpy3);
    Random random;
    for (const char uplo : {'U', 'l', 'A'})
        for (const Int m : {0, 1, 3, 5, 20, 35})
            for (const Int n : {0, 1, 4, 7})
                for (const Int k : {-40, -6, -1, 0, 1, 3, 9}) {
                    SCOPED_TRACE(std::string(1, uplo) + ' ' + std::to_string(m) + " x " + std::to_string(n) + ", " +
                                 std::to_string(k));
                    Matrix<T> a(m, n, m + 2), b(m, n, m + 1, Guard::begin);
                    a.fill([&] { return odd_value<T>(random); });
                    a.read_only();
                    if (k == 0)
                        lacpy2(&uplo, &m, &n, a.data(), &a.ld(), b.data(), &b.ld());
                    else
                        lacpy3(&uplo, &m, &n, &k, a.data(), &a.ld(), b.data(), &b.ld());
                    const auto named = [&](Int i, Int j) {
                        return uplo == 'U' ? j - i >= k : uplo == 'l' ? j - i <= k : true;
                    };
                    EXPECT_TRUE(b.unchanged_except(named));
                    for (Int j = 0; j < n; ++j)
                        for (Int i = 0; i < m; ++i)
                            EXPECT_TRUE(!named(i, j) || same_bits(a(i, j), b(i, j))) << i << ", " << j;
                    if (testing::Test::HasFailure()) return;
                }
}

} // namespace
} // namespace ork::test

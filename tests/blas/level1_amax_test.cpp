// SPDX-License-Identifier: MIT
// amax and amin: the first extreme element, the first NaN before all others, and the flags as the caller left them.
#include <cmath>
#include <cstring>
#include <limits>
#include <xmmintrin.h>

#include "blas/level1_kernels_by_type.h"
#include "support/compare.h"
#include "support/environment.h"
#include "support/strided.h"

namespace ork::test {
namespace {

constexpr int64_t unit = 1;

// Lengths around each register, block and way of searching, to beyond the last change of way.
template <class T>
std::vector<int64_t> lengths()
{
    std::vector<int64_t> result;
    for (int64_t n = 1; n <= 2 * stretch<T> + 3; ++n) result.push_back(n);
    for (const int64_t block : {4 * stretch<T>, 5 * stretch<T>, 8 * stretch<T>})
        for (int64_t n = block - 2; n <= block + 3; ++n) result.push_back(n);
    result.push_back(1000);
    return result;
}

template <class T>
class Level1Amax : public testing::Test {
public:
    using R = Real<T>;
    static T of_magnitude(R m)
    {
        if constexpr (is_complex<T>)
            return {-m / 4, m / 4 * 3};
        else
            return -m;
    }
    static int64_t expected(int64_t n, const Vector<T>& x, bool largest)
    {
        for (int64_t i = 0; i < n; ++i)
            if (std::isnan(magnitude1(x[i]))) return i + 1;
        int64_t best = n < 1 ? -1 : 0;
        for (int64_t i = 1; i < n; ++i)
            if (largest ? magnitude1(x[i]) > magnitude1(x[best]) : magnitude1(x[i]) < magnitude1(x[best])) best = i;
        return best + 1;
    }
};
using Precisions = testing::Types<float, double, cfloat, cdouble>;
TYPED_TEST_SUITE(Level1Amax, Precisions);

TYPED_TEST(Level1Amax, FindsTheExtremeWhereverItIs)
{
    using T = TypeParam;
    using R = Real<T>;
    for (const int64_t n : lengths<T>()) {
        Vector<T> x(std::vector<T>(static_cast<std::size_t>(n), this->of_magnitude(R(8))), 1,
                    n % 2 != 0 ? Guard::begin : Guard::end, sizeof(R) * static_cast<std::size_t>(n % 3));
        EXPECT_EQ(amax<T>(&n, x.data(), &unit), 1) << "of equal ones the first, n " << n;
        EXPECT_EQ(amin<T>(&n, x.data(), &unit), 1) << n;
        for (int64_t where = 0; where<n; where += n> 300 ? 7 : 1) {
            for (const int64_t again : {where, n - 1}) { // a second one of the same size must not win
                x[where] = x[again] = this->of_magnitude(R(16));
                ASSERT_EQ(amax<T>(&n, x.data(), &unit), where + 1) << n;
                x[where] = x[again] = this->of_magnitude(R(4));
                ASSERT_EQ(amin<T>(&n, x.data(), &unit), where + 1) << n;
                x[where] = x[again] = this->of_magnitude(R(8));
            }
        }
    }
}

TYPED_TEST(Level1Amax, SearchesRandomVectorsWithEveryIncrement)
{
    using T = TypeParam;
    for (const int64_t n : {0, 1, 2, 3, 9, 40, 200, 777})
        for (int64_t inc = -3; inc <= 3; ++inc)
            for (std::uint64_t seed = 0; seed < 5; ++seed) {
                Vector<T> x(spread_values<T>(n, seed), inc, seed % 2 != 0 ? Guard::begin : Guard::end);
                x.read_only();
                EXPECT_EQ(amax<T>(&n, x.data(), &inc), this->expected(n, x, true)) << n << " inc " << inc;
                EXPECT_EQ(amin<T>(&n, x.data(), &inc), this->expected(n, x, false)) << n << " inc " << inc;
            }
}

TYPED_TEST(Level1Amax, TheFirstNaNWinsOverEveryNumber)
{
    using T = TypeParam;
    using R = Real<T>;
    for (const int64_t n : lengths<T>())
        for (const int64_t inc : {1, 2})
            for (int64_t where = 0; where<n; where += n> 300 ? 13 : 1) {
                Vector<T> x(uniform_values<T>(n), inc);
                x[n - 1] = x[where] = T(std::numeric_limits<R>::quiet_NaN());
                x[0] = where == 0 ? x[0] : T(std::numeric_limits<R>::infinity());
                EXPECT_EQ(amax<T>(&n, x.data(), &inc), where + 1) << n;
                EXPECT_EQ(amin<T>(&n, x.data(), &inc), where + 1) << n;
            }
    if constexpr (!is_complex<T>) {
        const R example[] = {1, std::numeric_limits<R>::quiet_NaN(), 5, std::numeric_limits<R>::quiet_NaN()};
        const int64_t four = 4;
        EXPECT_EQ(amax<T>(&four, example, &unit), 2);
    }
}

TYPED_TEST(Level1Amax, OrdersZerosAndInfinities)
{
    using T = TypeParam;
    using R = Real<T>;
    for (const int64_t n : {2, 5, 40, 500}) {
        std::vector<T> x(static_cast<std::size_t>(n), T(-R(0)));
        EXPECT_EQ(amax<T>(&n, x.data(), &unit), 1);
        EXPECT_EQ(amin<T>(&n, x.data(), &unit), 1);
        x.back() = T(std::numeric_limits<R>::denorm_min());
        EXPECT_EQ(amax<T>(&n, x.data(), &unit), n);
        x.assign(x.size(), T(-std::numeric_limits<R>::infinity()));
        EXPECT_EQ(amax<T>(&n, x.data(), &unit), 1);
        EXPECT_EQ(amin<T>(&n, x.data(), &unit), 1);
        x.back() = T(std::numeric_limits<R>::max());
        EXPECT_EQ(amin<T>(&n, x.data(), &unit), n);
    }
}

TYPED_TEST(Level1Amax, SameAnswerAtEveryAlignment)
{
    using T = TypeParam;
    alignas(64) static std::byte memory[1000 * 16 + 64];
    for (const int64_t n : {1, 3, 7, 33, 150, 1000}) {
        const std::vector<T> x = uniform_values<T>(n, 3);
        for (const std::size_t offset : {1, 4, 8, 12}) {
            const T* u = reinterpret_cast<T*>(memory + offset);
            std::memcpy(memory + offset, x.data(), static_cast<std::size_t>(n) * sizeof(T));
            EXPECT_EQ(amax<T>(&n, u, &unit), amax<T>(&n, x.data(), &unit));
            EXPECT_EQ(amin<T>(&n, u, &unit), amin<T>(&n, x.data(), &unit));
        }
    }
}

// Whatever flags the caller has, they are there afterwards, no others join them, and they do not look like a NaN.
TYPED_TEST(Level1Amax, KeepsTheCallersFlagsAndTakesThemForNothing)
{
    using T = TypeParam;
    const unsigned before = _mm_getcsr();
    const unsigned rounding_down = (before & ~static_cast<unsigned>(_MM_ROUND_MASK)) | _MM_ROUND_DOWN;
    for (const int64_t n : lengths<T>()) {
        std::vector<T> x(static_cast<std::size_t>(n), T(1)); // sums of parts stay exact
        x[x.size() / 2] = T(2);
        for (const unsigned flags : {0u, 1u, 0x3fu, 0x20u}) {
            const unsigned caller = (rounding_down & ~static_cast<unsigned>(_MM_EXCEPT_MASK)) | flags;
            _mm_setcsr(caller);
            const int64_t most = amax<T>(&n, x.data(), &unit);
            const unsigned after_amax = _mm_getcsr();
            const int64_t least = amin<T>(&n, x.data(), &unit);
            const unsigned after_amin = _mm_getcsr();
            _mm_setcsr(before);
            EXPECT_EQ(most, n / 2 + 1);
            EXPECT_EQ(least, n < 2 || n / 2 != 0 ? 1 : 2);
            EXPECT_EQ(after_amax, caller);
            EXPECT_EQ(after_amin, caller);
        }
        if (n < 2) continue;
        x[x.size() / 2] = T(std::numeric_limits<Real<T>>::quiet_NaN());
        for (const unsigned flags : {0u, 1u, 0x20u}) {
            const unsigned caller = (rounding_down & ~static_cast<unsigned>(_MM_EXCEPT_MASK)) | flags;
            _mm_setcsr(caller);
            const int64_t first = amax<T>(&n, x.data(), &unit);
            const unsigned after = _mm_getcsr();
            _mm_setcsr(before);
            EXPECT_EQ(first, n / 2 + 1);
            EXPECT_EQ(after, caller | fp_invalid) << "the NaN shows among the flags, n " << n;
        }
    }
}

} // namespace
} // namespace ork::test

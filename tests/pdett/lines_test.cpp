// SPDX-License-Identifier: MIT
#include <cmath>
#include <limits>

#include "pdett/transform.h"
#include "support/guarded.h"

namespace ork::test {
namespace {

template <class R>
class TrigLines : public testing::Test {
};
TYPED_TEST_SUITE(TrigLines, RealPrecisions);

// The relative distance of two vectors.
template <class R>
long double distance_of(const std::vector<R>& got, const std::vector<R>& want)
{
    long double error = 0, size = 0;
    for (std::size_t i = 0; i < want.size(); ++i) {
        const long double off = static_cast<long double>(got[i]) - static_cast<long double>(want[i]);
        error += off * off, size += static_cast<long double>(want[i]) * static_cast<long double>(want[i]);
    }
    return std::sqrt(error / size);
}

// Lines, however they lie, are single transforms to rounding; their bits are those of each line alone, nothing between
// them is touched, and nothing beside them read.
TYPED_TEST(TrigLines, AreSingleTransforms)
{
    using R = TypeParam;
    struct Layout {
        Int count, stride, distance;
    };
    for (const Int n : {2, 4, 8, 9, 16, 32, 64, 100, 128, 130, 256})
        for (Int type = 0; type < 6; ++type)
            for (const auto& [count, stride, distance] :
                 {Layout{3, 1, n + 4}, {21, 22, 1}, {5, 7, 2}, {4, 3, 3 * n + 5}, {9, 1, n + 1}, {4, 4, 1}, {0, 1, 1}})
                for (const Int unscaled : {0, 1}) {
                    SCOPED_TRACE("n " + std::to_string(n) + ", type " + std::to_string(type) + ", stride " +
                                 std::to_string(stride));
                    Trig<R> t(n, type);
                    t.ipar[10] = unscaled;
                    ASSERT_EQ(t.commit(), 0);
                    const Int backward = count % 2;
                    const auto lines = [&](R* at, Int lines, Int stride, Int distance) {
                        EXPECT_EQ(t.call.lines(&backward, at, &lines, &stride, &distance, &t.handle, t.ipar.data(),
                                               t.fpar.data()),
                                  0);
                    };
                    std::vector<R> all(static_cast<std::size_t>((count - 1) * distance + n * stride + 1), R(-3)),
                        want = all;
                    Random random;
                    for (Int k = 0; k < count; ++k) {
                        for (R& x : t.f) x = random.uniform<R>();
                        const auto place = [&](std::vector<R>& to) {
                            for (Int i = 0; i <= n; ++i)
                                to[static_cast<std::size_t>(k * distance + i * stride)] =
                                    t.f[static_cast<std::size_t>(i)];
                        };
                        place(all);
                        std::vector<R> alone = t.f;
                        lines(alone.data(), 1, 1, n);
                        ASSERT_EQ(backward ? t.backward() : t.forward(), 0);
                        EXPECT_TRUE(distance_of(alone, t.f) <=
                                    3 * static_cast<long double>(std::numeric_limits<R>::epsilon()));
                        t.f = alone;
                        place(want);
                    }
                    const std::vector<Int> ipar = t.ipar;
                    for (const Guard side : both_guards) {
                        GuardedBytes data(all.size() * sizeof(R), side);
                        R* const f = reinterpret_cast<R*>(data.data());
                        std::copy(all.begin(), all.end(), f);
                        lines(f, count, stride, distance);
                        EXPECT_TRUE(std::equal(want.begin(), want.end(), f));
                        EXPECT_TRUE(data.unchanged_outside());
                    }
                    EXPECT_EQ(t.ipar, ipar);
                }
}

} // namespace
} // namespace ork::test

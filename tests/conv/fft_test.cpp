// SPDX-License-Identifier: MIT
#include <complex>
#include <thread>

#include "conv/reference.h"
#include "ork/ork.h"
#include "support/environment.h"

namespace ork::test {
namespace {

template <class T>
class Transforms : public testing::Test {
protected:
    Transforms() { replaced_core().reset(); }
    ~Transforms() override { EXPECT_EQ(replaced_core().blocks, 0); }
};
using Elements = testing::Types<float, double, std::complex<float>, std::complex<double>>;
TYPED_TEST_SUITE(Transforms, Elements);

// As nx2/conv/fft/fft.h has it.
long double epsilons(const Setup& setup)
{
    long double x = 1, y = 1;
    for (const std::int32_t n : setup.x) x *= n;
    for (const std::int32_t n : setup.y) y *= n;
    return 8 * std::log2(2 * (x + y));
}

// As it is, and with x kept from one run to the next: the same bits.
template <class T>
void expect_sums(Setup setup)
{
    static int count = 0;
    setup.mode = ORK_CONV_FFT;
    if (sizeof(Real<T>) == 4 && count % 3 == 0) setup.internal = ORK_CONV_DOUBLE;
    Convolution<T> c(setup, both_guards[count++ % 2]);
    ASSERT_EQ(c.exec(), 0) << setup.describe();
    EXPECT_TRUE(c.is_sum_by_transforms(epsilons(setup)));
    const std::vector<T> first = c.z.memory.values();
    for (int run = 0; run < 2; ++run) {
        for (T& z : c.z.memory.span()) z = {};
        ASSERT_EQ(c.exec(true), 0);
        for_each_index(c.z.extents, [&](const auto& k) {
            EXPECT_TRUE(same_bits(c.z[k], first[static_cast<std::size_t>(c.z.at(k))])) << setup.describe();
        });
    }
}

std::int32_t some_stride(Random& random, Int stride)
{
    return static_cast<std::int32_t>(random.integer(0, 1) != 0 ? stride : -stride);
}

TYPED_TEST(Transforms, OfAnyShapeStrideStartAndDecimation)
{
    Random random(3);
    const Int most[] = {0, 300, 40, 10, 6};
    for (int count = 0; count < 300; ++count) {
        const auto dims = static_cast<int>(random.integer(1, 4));
        Setup setup{.job = count % 2 == 0 ? ORK_CONV_CONVOLUTION : ORK_CONV_CORRELATION};
        Int strides[3] = {random.integer(1, 2), random.integer(1, 3), random.integer(1, 2)};
        for (int d = 0; d < dims; ++d) {
            const Int x = random.integer(1, most[dims]), y = random.integer(1, most[dims] / (1 + count % 5) + 1);
            const Int first = random.integer(0, x + y - 2), step = count % 3 == 0 ? random.integer(1, x + y) : 1;
            const Int all = (x + y - 2 - first) / step + 1, z = random.integer((all + 1) / 2, all);
            const auto add = [](Ints& list, Int n) { list.push_back(static_cast<std::int32_t>(n)); };
            add(setup.x, x), add(setup.y, y), add(setup.z, z), add(setup.decimation, step);
            add(setup.start, setup.correlates() ? first + 1 - x : first);
            if (count % 4 == 0) continue;
            setup.x_stride.push_back(random.integer(0, 9) == 0 ? 0 : some_stride(random, strides[0]));
            setup.y_stride.push_back(some_stride(random, strides[1]));
            setup.z_stride.push_back(some_stride(random, strides[2]));
            strides[0] *= x, strides[1] *= y, strides[2] *= z;
        }
        expect_sums<TypeParam>(setup);
    }
}

// Every length of transforms, around the ends of tiles.
TYPED_TEST(Transforms, OfLinesOfEveryLength)
{
    for (std::int32_t x = 1; x <= 100; ++x) expect_sums<TypeParam>({{x}, {1 + x * 7 % 40}});
    for (const std::int32_t x : {2000, 3999, 5000})
        for (const std::int32_t y : {1, 2, 10, 31}) {
            expect_sums<TypeParam>({{x}, {y}});
            expect_sums<TypeParam>({{y}, {x}, {}, ORK_CONV_CORRELATION});
            expect_sums<TypeParam>({.x = {x}, .y = {y}, .start = {x / 2}, .decimation = {3}});
            expect_sums<TypeParam>({.x = {x}, .y = {y}, .start = {5}, .decimation = {700}});
        }
}

TYPED_TEST(Transforms, OfGridsInTiles)
{
    expect_sums<TypeParam>({{300, 200}, {3, 4}});
    expect_sums<TypeParam>({{2, 5}, {150, 260}, {}, ORK_CONV_CORRELATION});
    expect_sums<TypeParam>({.x = {3, 600}, .y = {3, 2}, .start = {1, 1}, .decimation = {1, 2}});
    expect_sums<TypeParam>({{40, 30, 50}, {2, 3, 2}});
}

} // namespace
} // namespace ork::test

// SPDX-License-Identifier: MIT
#include <algorithm>
#include <complex>
#include <numeric>

#include "conv/reference.h"
#include "ork/ork.h"
#include "support/environment.h"

namespace ork::test {
namespace {

template <class T>
class DirectSums : public testing::Test {
protected:
    DirectSums() { replaced_core().reset(); }
    ~DirectSums() override { EXPECT_EQ(replaced_core().blocks, 0); }
};
using Elements = testing::Types<float, double, std::complex<float>, std::complex<double>>;
TYPED_TEST_SUITE(DirectSums, Elements);

// In the arrays' ends and beginnings, and, of single numbers, in double precision too.
template <class T>
void expect_sums(Setup setup)
{
    static int count = 0;
    const bool single = sizeof(Real<T>) == 4;
    for (const std::int32_t internal : {0, single ? ORK_CONV_DOUBLE : 0}) {
        setup.internal = internal;
        Convolution<T> c(setup, both_guards[count++ % 2]);
        ASSERT_EQ(c.exec(), 0) << setup.describe();
        EXPECT_TRUE(c.is_sum());
        if (!single) break;
    }
}

TYPED_TEST(DirectSums, OfLinesOfEveryLengthAroundTheBlocks)
{
    for (const std::int32_t x : {1, 2, 3, 4, 7, 15, 16, 17, 24, 33, 63, 64, 65, 100, 135})
        for (const std::int32_t y : {1, 2, 3, 5, 8, 16, 31, 64, 70})
            expect_sums<TypeParam>({{x}, {y}, {}, (x + y) % 3 != 0 ? ORK_CONV_CONVOLUTION : ORK_CONV_CORRELATION});
    for (std::int32_t z = 1; z <= 140; ++z) { // all blocks for what is left, within the line and over its end
        expect_sums<TypeParam>({.x = {200}, .y = {9}, .z = {z}, .start = {20}});
        expect_sums<TypeParam>({.x = {40}, .y = {150}, .z = {z}, .start = {189 - z}});
    }
}

// Not more outputs than a few, and outputs that are apart.
TYPED_TEST(DirectSums, OfFewOutputsAndOfDecimatedOnes)
{
    for (const std::int32_t step : {1, 2, 3, 5, 64, 1000})
        for (const std::int32_t y : {1, 2, 3, 4, 5, 32, 37, 300})
            for (const std::int32_t first : {0, 1, 30, 299, 300 + y - 20}) {
                if (first > 300 + y - 2) continue;
                Setup setup{.x = {300}, .y = {y}, .start = {first}, .decimation = {step}};
                expect_sums<TypeParam>(setup);
                setup.z = {std::min(setup.outputs()[0], 1 + y % 5)};
                expect_sums<TypeParam>(setup);
                setup.job = ORK_CONV_CORRELATION, setup.start = {first - 299}, setup.y_stride = {step - 4};
                expect_sums<TypeParam>(setup);
            }
}

// Strides of any dimensions in any order, with gaps and either sign; of operands also 0.
Ints some_strides(Random& random, const Ints& extents, bool operand)
{
    Ints order(extents.size()), strides(extents.size());
    std::iota(order.begin(), order.end(), 0);
    for (std::size_t i = order.size(); i > 1; --i)
        std::swap(order[i - 1], order[static_cast<std::size_t>(random.integer(0, static_cast<Int>(i) - 1))]);
    Int stride = random.integer(1, 2);
    for (const std::int32_t d : order) {
        strides[d] = static_cast<std::int32_t>(random.integer(0, 1) != 0 ? stride : -stride);
        stride *= extents[d];
        if (operand && random.integer(0, 9) == 0) strides[d] = 0;
    }
    return strides;
}

TYPED_TEST(DirectSums, OfGridsOfAnyShapeStrideStartAndDecimation)
{
    Random random(7);
    for (int count = 0; count < 400; ++count) {
        const Int dims = random.integer(1, 4), most = dims == 1 ? 90 : dims == 2 ? 24 : 7;
        Setup setup{.x = {}, .y = {}, .job = count % 2 == 0 ? ORK_CONV_CONVOLUTION : ORK_CONV_CORRELATION};
        for (Int d = 0; d < dims; ++d) {
            const Int x = random.integer(1, most), y = random.integer(1, most), first = random.integer(0, x + y - 2);
            const Int step = random.integer(1, count % 3 == 0 ? 3 : 1), all = (x + y - 2 - first) / step + 1;
            const auto add = [](Ints& list, Int n) { list.push_back(static_cast<std::int32_t>(n)); };
            add(setup.x, x), add(setup.y, y), add(setup.z, random.integer((all + 1) / 2, all));
            add(setup.start, setup.correlates() ? first + 1 - x : first), add(setup.decimation, step);
        }
        if (count % 4 != 0) setup.x_stride = some_strides(random, setup.x, true);
        if (count % 4 != 1) setup.y_stride = some_strides(random, setup.y, true);
        if (count % 4 != 2) setup.z_stride = some_strides(random, setup.z, false);
        expect_sums<TypeParam>(setup);
    }
}

// An infinity or a NaN reaches the outputs that have it in their sum, as the sum has it, and no others.
TYPED_TEST(DirectSums, OfInfinitiesOnlyWhereTheyMeetAnElement)
{
    using R = Real<TypeParam>;
    const R infinity = std::numeric_limits<R>::infinity(), nan = std::numeric_limits<R>::quiet_NaN();
    for (const Setup& setup : std::vector<Setup>{{{50}, {7}},
                                                 {{20}, {45}, {}, ORK_CONV_CORRELATION},
                                                 {.x = {80}, .y = {40}, .decimation = {3}},
                                                 {.x = {9, 12}, .y = {5, 3}, .x_stride = {-12, 1}}})
        for (const R special : {infinity, nan})
            for (const int place : {0, 1, 2, 3}) { // the first or the last element of x or y
                Convolution<TypeParam> c(setup);
                Strided<TypeParam>& operand = place < 2 ? c.x : c.y;
                operand.memory.writable();
                const Int at = place % 2 == 0 ? 0 : operand.memory.size() - 1;
                operand.memory[at] = some<TypeParam>(static_cast<float>(special), 1);
                ASSERT_EQ(c.exec(), 0);
                const std::vector<Output> want = c.expected();
                std::size_t number = 0;
                for_each_index(c.z.extents, [&](const std::vector<Int>& k) {
                    const Wide<long double> got(c.z[k]), sum = want[number++].sum.value;
                    for (const auto& [g, w] : {std::pair{got.re, sum.re}, std::pair{got.im, sum.im}}) {
                        const bool same = std::isnan(w) ? std::isnan(g) : std::isinf(w) ? g == w : std::isfinite(g);
                        EXPECT_TRUE(same) << setup.describe() << " output " << number - 1 << ": " << show(c.z[k]);
                    }
                });
            }
}

std::vector<Setup> large_setups()
{
    return {{{20000}, {150}},
            {.x = {30000}, .y = {101}, .decimation = {2}},
            {.x = {90, 70}, .y = {33, 40}, .job = ORK_CONV_CORRELATION},
            {.x = {20, 16, 18}, .y = {9, 8, 10}, .z_stride = {-1, 40, 1000}}};
}

TYPED_TEST(DirectSums, HaveTheSameBitsForAnyNumberOfThreads)
{
    for (const Setup& setup : large_setups()) {
        Convolution<TypeParam> c(setup);
        std::vector<TypeParam> first;
        for (const int threads : {1, 2, 5}) {
            ork_set_num_threads(threads);
            replaced_core().reset();
            ASSERT_EQ(c.exec(), 0);
            EXPECT_EQ(replaced_core().parallel_runs, 1) << setup.describe();
            if (threads == 1) {
                EXPECT_TRUE(c.is_sum());
                first = c.z.memory.values();
            }
            EXPECT_EQ(std::memcmp(first.data(), c.z.memory.data(), first.size() * sizeof(TypeParam)), 0);
        }
        ork_set_num_threads(0);
    }
    replaced_core().reset();
    Convolution<TypeParam> small({{1000}, {16}});
    EXPECT_EQ(small.exec(), 0);
    EXPECT_EQ(replaced_core().parallel_runs, 0);
}

TYPED_TEST(DirectSums, HaveTheSameBitsWhereverTheArraysStand)
{
    for (const Setup& setup : std::vector<Setup>{{{1001}, {37}}, {{333}, {40}, {5}}, {{33, 35}, {4, 7}}}) {
        Convolution<TypeParam> end(setup, Guard::end), begin(setup, Guard::begin);
        EXPECT_EQ(end.exec(), 0);
        EXPECT_EQ(begin.exec(), 0);
        for (Int i = 0; i < end.z.memory.size(); ++i) EXPECT_EQ(end.z.memory[i], begin.z.memory[i]) << i;
    }
}

TYPED_TEST(DirectSums, LeaveTheEnvironmentAloneOnASmallStack)
{
    for (Setup setup : std::vector<Setup>{{{100}, {5}},
                                          {.x = {100}, .y = {50}, .decimation = {3}, .x_stride = {2}},
                                          {{5, 4, 3, 2, 3, 2, 3}, {2, 3, 4, 3, 2, 1, 2}}}) {
        Convolution<TypeParam> c(setup);
        testing::AssertionResult kept = testing::AssertionFailure() << "not run";
        run_on_small_stack(small_stack, [&] { kept = keeps_fp_environment([&] { c.exec(); }); });
        EXPECT_TRUE(kept) << setup.describe();
        EXPECT_EQ(c.exec(), 0);
        EXPECT_TRUE(c.is_sum());
    }
}

// Whichever allocation fails, the rest is released and nothing is written. Taps are copied; a signal is when it does
// not stand as the sums want it and its elements meet more than two taps.
TYPED_TEST(DirectSums, SayWhenThereIsNoMemory)
{
    for (const auto& [setup, allocations] :
         std::vector<std::pair<Setup, int>>{{{{100}, {5}}, 1},
                                            {{.x = {100}, .y = {2}, .x_stride = {3}}, 1},
                                            {{.x = {100}, .y = {3}, .x_stride = {3}}, 2},
                                            {{.x = {100}, .y = {50}, .z = {3}, .y_stride = {2}}, 1},
                                            {{.x = {9, 9}, .y = {3, 3}, .x_stride = {11, 99}}, 2}}) {
        Convolution<TypeParam> c(setup);
        const int before = replaced_core().blocks;
        int failed = 0;
        for (;; ++failed) {
            replaced_core().allocations_left = failed;
            const std::int32_t status = c.exec();
            EXPECT_EQ(replaced_core().blocks, before);
            if (status == 0) break;
            ASSERT_EQ(status, ORK_CONV_NO_WORK_MEMORY);
            EXPECT_TRUE(c.z.memory.unchanged());
        }
        replaced_core().reset();
        EXPECT_EQ(failed, allocations) << setup.describe();
        EXPECT_TRUE(c.is_sum());
    }
}

} // namespace
} // namespace ork::test

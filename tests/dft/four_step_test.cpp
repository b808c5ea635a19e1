// SPDX-License-Identifier: MIT
// Long transforms as matrices, at lengths that are short: a node that avoids workspace asks for them.
#include "dft/layout.h"

namespace ork::test {
namespace {

template <class R>
class FourStep : public testing::Test {
protected:
    FreshCore core;
};
using Precisions = testing::Types<float, double>;
TYPED_TEST_SUITE(FourStep, Precisions);

template <class R>
inline constexpr auto step_1_2 = is_double<R> ? ork_dft_nx2_xz_4step_1_2 : ork_dft_nx2_xc_4step_1_2;
template <class R>
inline constexpr auto step_3 = is_double<R> ? ork_dft_nx2_xz_4step_3 : ork_dft_nx2_xc_4step_3;

template <class R>
void plan(Node<R>& node, Int placement, Int transforms = 1)
{
    node->workspace = ORK_DFT_AVOID;
    node->placement = static_cast<int>(placement);
    node->transforms = transforms;
    node->input_distance = node->output_distance = node->length;
    ASSERT_EQ(node.commit(), ORK_DFT_OK);
    ASSERT_EQ(node->engine, ORK_DFT_ENGINE_FOUR_STEP);
    EXPECT_EQ((node->flags & ORK_DFT_FLAG_FOUR_STEP) != 0, transforms == 1);
}

// Squares, two squares, and neither; groups that are full, and remainders of every size.
const Ints lengths = {16,  17,  18,  21,  25,  32,   36,   40,   49,   50,   60,   64,  77,
                      100, 121, 128, 144, 169, 200,  210,  225,  256,  289,  361,  392, 400,
                      512, 529, 578, 576, 800, 1000, 1024, 1152, 2048, 2116, 4096, 4489};

TYPED_TEST(FourStep, AgreesWithTheSums)
{
    using R = TypeParam;
    using C = std::complex<R>;
    for (const Int n : lengths)
        for (const int placement : {ORK_DFT_INPLACE, ORK_DFT_NOT_INPLACE})
            for (const int transforms : {1, 3})
                for (const int direction : {ORK_DFT_FORWARD, ORK_DFT_BACKWARD}) {
                    SCOPED_TRACE(testing::Message() << n << ", placement " << placement << ", " << transforms
                                                    << " transforms, direction " << direction);
                    Node<R> node({n});
                    node->scales.forward = 0.5;
                    plan(node, placement, transforms);
                    const bool in_place = placement == ORK_DFT_INPLACE;
                    const auto x = uniform_values<C>(n * transforms);
                    const auto compute = [&](auto run) {
                        Guarded<C> in(x), out(n * transforms, Guard::begin);
                        if (!in_place) in.read_only();
                        EXPECT_EQ(in_place ? run({in.data()}) : run({in.data(), out.data()}), ORK_DFT_OK);
                        return in_place ? in.values() : out.values();
                    };
                    const auto got = compute([&](Arrays arrays) { return node.compute(direction, arrays); });
                    for (int t = 0; t < transforms; ++t) {
                        auto want = reference_dft({x.begin() + t * n, x.begin() + (t + 1) * n}, {n}, direction);
                        if (direction == ORK_DFT_FORWARD)
                            for (wide& a : want) a *= 0.5L;
                        ASSERT_LE(relative_error(std::vector<C>(got.begin() + t * n, got.begin() + (t + 1) * n), want),
                                  1.3L * tolerance<R>(n));
                    }
                    for (const Int piece : {1, 2, 1000})
                        ASSERT_EQ(
                            compute([&](Arrays arrays) { return node.compute_in_pieces(direction, arrays, piece); }),
                            got);
                }
    EXPECT_EQ(this->core->live_allocations, 0);
    EXPECT_EQ(this->core->live_work, 0);
}

TEST(FourStepFactors, AreNearTheSquareRootAndLimited)
{
    const auto factors = [](Int n, int precision = ORK_DFT_DOUBLE) {
        Int n1 = 0, n2 = 0;
        const int status = ork_dft_nx2_four_step_factors(precision, n, &n1, &n2);
        EXPECT_TRUE(status == 0 || (status == ORK_DFT_NOT_APPLICABLE && n1 == 0)) << n;
        return std::pair(n1, n2);
    };
    using Pair = std::pair<Int, Int>;
    const Int one = 1;
    EXPECT_EQ(factors(one << 27), Pair(one << 13, one << 14));
    EXPECT_EQ(factors(one << 28), Pair(one << 14, one << 14));
    EXPECT_EQ(factors(16), Pair(4, 4));
    EXPECT_EQ(factors(100000000), Pair(10000, 10000));
    EXPECT_EQ(factors(21), Pair(3, 7));
    EXPECT_EQ(factors(15 * 17), Pair(15, 17)); // the square root's own floor
    EXPECT_EQ(factors(11 * 14), Pair(11, 14));
    EXPECT_EQ(factors(2 * 4001 * 4003), Pair(4003, 8002));
    EXPECT_EQ(factors(17), Pair(1, 17));
    // A prime above the limit, for which single precision has twice as much.
    const Int prime = (one << 24) + 43;
    EXPECT_EQ(factors(prime), Pair(0, 0));
    EXPECT_EQ(factors(prime, ORK_DFT_SINGLE), Pair(1, prime));
    EXPECT_EQ(factors(4 * prime), Pair(0, 0));
}

// Kernels that report what a test asks for, in the place of a plan's.
struct Reports {
    int calls = 0;
    std::vector<int> statuses; // by call; 0 beyond
    static Reports* now;
    static std::int32_t kernel(const void*, void*, const void*, void*)
    {
        const auto call = static_cast<std::size_t>(now->calls++);
        return call < now->statuses.size() ? now->statuses[call] : 0;
    }
};
Reports* Reports::now = nullptr;

TYPED_TEST(FourStep, ColumnsGoOnAfterAFailureAndRowsStop)
{
    using R = TypeParam;
    Node<R> node({13 * 13});
    plan(node, ORK_DFT_NOT_INPLACE);
    ork_dft_four_step four_step = *node->four_step;
    for (auto* pair : {&four_step.column_kernel, &four_step.row_kernel})
        for (auto& kernel : *pair) kernel = Reports::kernel;
    std::vector<std::complex<R>> x(13 * 13), y(13 * 13);
    const auto run = [&](auto step, std::vector<int> statuses, int calls) {
        Reports reports{0, std::move(statuses)};
        Reports::now = &reports;
        const int status = step();
        EXPECT_EQ(reports.calls, calls);
        return status;
    };
    const auto columns = [&] { return step_1_2<R>(&four_step, ORK_DFT_FORWARD, x.data(), y.data(), 0, 13); };
    const auto rows = [&] { return step_3<R>(&four_step, ORK_DFT_FORWARD, 1, y.data(), y.data(), 0, 13); };
    EXPECT_EQ(run(columns, {0, 1, 0, 4, 1}, 13), 5);
    EXPECT_EQ(run(rows, {0, 1, 0, 4, 1}, 2), 1);
    EXPECT_EQ(run(rows, {0, 0, 0, 0, 0, 0, 0, 0, 0, 6}, 10), 6);
    EXPECT_EQ(run(rows, {}, 13), 0);
    // A count of three has the remainder only; a multiple of eight has none.
    EXPECT_EQ(run([&] { return step_1_2<R>(&four_step, ORK_DFT_FORWARD, x.data(), y.data(), 8, 3); }, {}, 3), 0);
    EXPECT_EQ(run([&] { return step_3<R>(&four_step, ORK_DFT_FORWARD, 1, y.data(), y.data(), 0, 8); }, {}, 8), 0);
    EXPECT_EQ(this->core->live_allocations, 0);
}

TYPED_TEST(FourStep, BuffersHoldAGroupAtMostAndArePageAligned)
{
    using R = TypeParam;
    Node<R> node({10 * 13});
    plan(node, ORK_DFT_NOT_INPLACE);
    ASSERT_EQ(node->four_step->n1, 10);
    std::vector<std::complex<R>> x(130), y(130);
    for (const Int count : {1, 3, 8, 10}) {
        const Int group = std::min<Int>(count, 8) * static_cast<Int>(2 * sizeof(R));
        step_1_2<R>(node->four_step, ORK_DFT_FORWARD, x.data(), y.data(), 0, count);
        EXPECT_EQ(this->core->last_size, group * 10);
        EXPECT_EQ(this->core->last_alignment, 4096);
        step_3<R>(node->four_step, ORK_DFT_FORWARD, 1, y.data(), y.data(), 0, count);
        EXPECT_EQ(this->core->last_size, group * 13);
        EXPECT_EQ(this->core->last_alignment, 4096);
    }
}

TYPED_TEST(FourStep, FailsAtEveryAllocationAndLeavesNothing)
{
    using R = TypeParam;
    for (const Int n : {Int{36}, Int{50}, Int{60}, Int{41 * 43}, Int{3000}}) { // modes 0, 0 and 2, larger work
        Node<R> node({n});
        plan(node, ORK_DFT_INPLACE);
        auto x = uniform_values<std::complex<R>>(n);
        int failures = 0;
        for (int at = 1;; ++at) {
            this->core->fail_allocation_at = at;
            const int status = node.compute(ORK_DFT_FORWARD, {x.data()});
            EXPECT_EQ(this->core->live_allocations, 0);
            EXPECT_EQ(this->core->live_work, 0);
            if (this->core->fail_allocation_at > 0) break;
            ++failures;
            EXPECT_EQ(status, ORK_DFT_NO_MEMORY);
        }
        this->core->fail_allocation_at = 0;
        EXPECT_GE(failures, 2);
    }
}

TYPED_TEST(FourStep, ARefusalMeansTheOrdinaryPlan)
{
    Node<TypeParam> node({64});
    node->workspace = ORK_DFT_AVOID;
    this->core->fail_allocation_at = 1; // the engine's record
    ASSERT_EQ(node.commit(), ORK_DFT_OK);
    EXPECT_EQ(node->engine, ORK_DFT_ENGINE_POWER_OF_TWO);
    EXPECT_EQ(node->four_step, nullptr);
    EXPECT_EQ(node->flags & ORK_DFT_FLAG_FOUR_STEP, 0);
}

TYPED_TEST(FourStep, AppliesAScaleThatIsNaN)
{
    using R = TypeParam;
    Node<R> node({40});
    node->scales.backward = std::numeric_limits<double>::quiet_NaN();
    plan(node, ORK_DFT_INPLACE);
    auto x = uniform_values<R>(80);
    ASSERT_EQ(node.compute(ORK_DFT_BACKWARD, {x.data()}), ORK_DFT_OK);
    for (const R a : x) EXPECT_TRUE(std::isnan(a));
}

} // namespace
} // namespace ork::test

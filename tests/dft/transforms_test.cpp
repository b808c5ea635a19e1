// SPDX-License-Identifier: MIT
// Complex transforms of all lengths, ranks and layouts against sums in long double.
#include "dft/layout.h"
#include "support/environment.h"

namespace ork::test {
namespace {

template <class R>
class Transforms : public testing::Test {
protected:
    FreshCore core;
};
using Precisions = testing::Types<float, double>;
TYPED_TEST_SUITE(Transforms, Precisions);

// Both directions, each against the reference; nothing but the output's numbers changes; stages divided anyhow give the
// same bits as the whole call.
template <class R>
void check(const Layout& layout, Int piece)
{
    SCOPED_TRACE(testing::Message() << layout.in << " -> " << layout.out << (layout.in_place ? " in place" : "")
                                    << (layout.split ? " split" : ""));
    Node<R> node(layout.in.lengths);
    set(node, layout);
    node->scales.forward = 0.75, node->scales.backward = 1;
    ASSERT_EQ(node.commit(), ORK_DFT_OK);
    ASSERT_EQ(node->status, ORK_DFT_COMMITTED);
    for (const int direction : {ORK_DFT_FORWARD, ORK_DFT_BACKWARD})
        for (const Guard guard : both_guards) {
            SCOPED_TRACE(direction == ORK_DFT_FORWARD ? "forward" : "backward");
            const bool swap = direction == ORK_DFT_BACKWARD && !layout.in_place;
            const Side &read = swap ? layout.out : layout.in, &written = swap ? layout.in : layout.out;
            Random random(static_cast<std::uint64_t>(layout.numbers() + direction));
            Array<R> from(read, layout.split, guard), to(written, layout.split, guard);
            from.fill(random);
            Array<R> again(read, layout.split, guard), to_again(written, layout.split, guard);
            Random same(static_cast<std::uint64_t>(layout.numbers() + direction));
            again.fill(same);
            std::vector<std::vector<wide>> want;
            for (Int t = 0; t < read.transforms; ++t) {
                want.push_back(reference_dft(from.transform(t), read.lengths, direction));
                if (direction == ORK_DFT_FORWARD)
                    for (wide& x : want.back()) x *= 0.75L;
            }
            if (!layout.in_place) from.read_only();
            ASSERT_EQ(call(layout, from, to, [&](Arrays arrays) { return node.compute(direction, arrays); }),
                      ORK_DFT_OK);
            const Array<R>& result = layout.in_place ? from : to;
            for (Int t = 0; t < read.transforms; ++t)
                ASSERT_LE(relative_error(result.transform(t), want[static_cast<std::size_t>(t)]),
                          tolerance<R>(layout.numbers()));
            EXPECT_TRUE(result.padding_intact());
            ASSERT_EQ(call(layout, again, to_again,
                           [&](Arrays arrays) { return node.compute_in_pieces(direction, arrays, piece); }),
                      ORK_DFT_OK);
            // One long transform may be divided in another way than it is done at once.
            if ((node->flags & ORK_DFT_FLAG_SINGLE) == 0)
                EXPECT_EQ((layout.in_place ? again : to_again).all(), result.all());
            else
                EXPECT_LE(relative_error((layout.in_place ? again : to_again).transform(0), want[0]),
                          tolerance<R>(layout.numbers()));
        }
}

// One length in every layout.
template <class R>
void check_layouts(Int n)
{
    const auto apart = [&](Side in, Side out, bool split = false) { check<R>({in, out, false, split}, 2); };
    const auto in_place = [&](Side side, bool split = false) { check<R>({side, side, true, split}, 1); };
    in_place(dense({n}));
    apart(dense({n}), dense({n}));
    in_place(dense({n}), true);
    apart(dense({n}), dense({n}), true);
    in_place({{n}, {3}, 1, 0, 5});
    apart({{n}, {2}, 1, 0, 1}, {{n}, {-1}, 1, 0, n + 1}); // the output backwards
    in_place(dense({n}, 5));
    in_place({{n}, {7}, 7, 1, 0}); // numbers of all transforms side by side
    apart({{n}, {1}, 9, n + 2, 0}, {{n}, {9}, 9, 1, 0});
    apart({{n}, {11}, 11, 1, 3}, {{n}, {1}, 11, n, 0}, true);
    in_place({{n}, {2}, 3, 2 * n + 1, 0}, true);
}

TYPED_TEST(Transforms, OfShortLengthsInEveryLayout)
{
    for (Int n = 1; n <= 128; ++n) check_layouts<TypeParam>(n);
}

TYPED_TEST(Transforms, OfLongerLengthsInEveryLayout)
{
    // Prime powers, 2^k - 1 and 2^k + 1, products of many factors, primes that are large or have smooth neighbours.
    for (const Int n :
         {131, 211, 240, 243, 255, 256, 257, 289, 343, 360, 509, 511, 512, 513, 529, 625, 729, 1000, 1009})
        check_layouts<TypeParam>(n);
}

TYPED_TEST(Transforms, OfLongLengthsOneAndAFew)
{
    for (const Int n : {1023, 1024, 1025, 1920, 2047, 2048, 2187, 2310, 4096, 6561, 8192, 16384, 65536}) {
        if (is_double<TypeParam> && n > 8192) continue; // twice the time shows nothing new
        const Side one = dense({n}), some = dense({n}, 3);
        check<TypeParam>({one, one, true, false}, 3);
        check<TypeParam>({one, one, false, false}, 1);
        check<TypeParam>({some, some, false, false}, 1);
        check<TypeParam>({one, one, true, true}, 1);
    }
}

TYPED_TEST(Transforms, OfSeveralDimensions)
{
    const std::vector<Ints> shapes = {{1, 1},    {1, 5},    {6, 1},       {4, 4},          {16, 3},
                                      {3, 16},   {15, 17},  {70, 65},     {65, 64},        {5, 4, 3},
                                      {1, 9, 2}, {8, 8, 8}, {3, 1, 4, 5}, {2, 3, 2, 3, 2}, {2, 2, 3, 1, 2, 2, 2}};
    for (const Int level2 : {Int{1} << 20, Int{1000}}) { // all in cache, or hardly anything
        this->core->level2_size = level2;
        for (const Ints& shape : shapes) {
            const Side plain = dense(shape), three = dense(shape, 3);
            check<TypeParam>({plain, plain, true, false}, 1);
            check<TypeParam>({three, three, false, false}, 2);
            check<TypeParam>({three, three, true, true}, 3);
            // Padding between rows, the transforms beside each other, and the last dimension fastest in the output.
            Side padded = three, reversed = dense(Ints(shape.rbegin(), shape.rend()), 3);
            Int step = 2;
            for (std::size_t d = 0; d < shape.size(); ++d) {
                padded.strides[d] = 3 * step;
                step = step * shape[d] + 1;
            }
            padded.distance = 2, padded.offset = 1;
            std::reverse(reversed.strides.begin(), reversed.strides.end());
            reversed.lengths = shape;
            check<TypeParam>({padded, padded, true, false}, 2);
            check<TypeParam>({padded, reversed, false, false}, 5);
            check<TypeParam>({reversed, padded, false, true}, 1);
        }
    }
}

TYPED_TEST(Transforms, OfLongColumnsFarApart)
{
    // 21 columns: 16, 8 or 4 at a time and a remainder, as much as the cache is said to hold.
    const Side matrix = {{21, 800}, {1, 520}, 1, 0, 0}, other = {{21, 800}, {1, 525}, 1, 0, 3};
    for (const Int level2 : {280 << 10, 140 << 10, 70 << 10}) {
        this->core->level2_size = is_double<TypeParam> ? level2 : level2 / 2;
        check<TypeParam>({matrix, matrix, true, false}, 1);
        check<TypeParam>({matrix, other, false, false}, 3);
    }
}

TYPED_TEST(Transforms, OfBatchesThatHaveTheirOwnPlan)
{
    for (const Int n : {65, 66, 77, 100, 127, 130, 255})
        for (const Int count : {2, 3, 16, 40}) {
            const Side side = dense({n}, count);
            check<TypeParam>({side, side, true, false}, 1);
        }
}

TYPED_TEST(Transforms, AlignmentDoesNotChangeBits)
{
    using R = TypeParam;
    for (const Int n : {8, 60, 64, 100, 256, 1000}) {
        Node<R> node({n});
        ASSERT_EQ(node.commit(), ORK_DFT_OK);
        const auto x = uniform_values<R>(2 * n);
        std::vector<R> first;
        for (std::size_t offset = 0; offset < 64; offset += sizeof(R)) {
            Guarded<R> data(2 * n, Guard::end, offset);
            std::copy(x.begin(), x.end(), data.data());
            ASSERT_EQ(node.compute(ORK_DFT_FORWARD, {data.data()}), ORK_DFT_OK);
            if (offset == 0) first = data.values();
            ASSERT_EQ(data.values(), first) << n << ", " << offset << " bytes off";
        }
    }
}

TYPED_TEST(Transforms, RunOnASmallStackAndLeaveTheEnvironment)
{
    using R = TypeParam;
    for (const Ints& lengths : {Ints{64}, Ints{1000}, Ints{1009}, Ints{4096}, Ints{30, 70}}) {
        Node<R> node(lengths);
        run_on_small_stack(small_stack, [&] { ASSERT_EQ(node.commit(), ORK_DFT_OK); });
        std::vector<R> x = uniform_values<R>(2 * node->size);
        run_on_small_stack(small_stack, [&] { node.compute(ORK_DFT_FORWARD, {x.data()}); });
        EXPECT_TRUE(keeps_fp_environment([&] { node.compute(ORK_DFT_BACKWARD, {x.data()}); }, fp_inexact, true));
    }
}

TYPED_TEST(Transforms, AScaleOfOneIsNotAppliedAndNaNIs)
{
    using R = TypeParam;
    for (const Ints& lengths : {Ints{8}, Ints{60}, Ints{100}, Ints{4, 6}}) {
        Node<R> node(lengths);
        node->scales.forward = std::numeric_limits<double>::quiet_NaN();
        ASSERT_EQ(node.commit(), ORK_DFT_OK);
        std::vector<R> x = uniform_values<R>(2 * node->size);
        ASSERT_EQ(node.compute(ORK_DFT_BACKWARD, {x.data()}), ORK_DFT_OK);
        for (const R a : x) ASSERT_FALSE(std::isnan(a));
        ASSERT_EQ(node.compute(ORK_DFT_FORWARD, {x.data()}), ORK_DFT_OK);
        for (const R a : x) ASSERT_TRUE(std::isnan(a));
    }
    // A product with a denormal number would raise a flag where a copy doesn't.
    Node<R> copy({1});
    ASSERT_EQ(copy.commit(), ORK_DFT_OK);
    R x[2] = {std::numeric_limits<R>::denorm_min(), 0};
    EXPECT_EQ(fp_flags_of([&] { copy.compute(ORK_DFT_FORWARD, {x}); }), 0U);
    EXPECT_EQ(x[0], std::numeric_limits<R>::denorm_min());
}

} // namespace
} // namespace ork::test

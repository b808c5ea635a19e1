// SPDX-License-Identifier: MIT
// Rows of alpha A + B, bit for bit, in every layout.
#include <bit>
#include <map>

#include "sparse/product_case.h"

namespace ork::test {
namespace {

template <class C>
class SparseSums : public testing::Test {
};
TYPED_TEST_SUITE(SparseSums, Cases, CaseNames);

// One row of an operand.
template <class Int, class T>
struct Row {
    Index base, layout;
    std::vector<Int> cols;
    std::vector<T> vals;

    Row(std::initializer_list<Index> columns, Index block, Index layout, Index base, std::uint64_t seed)
        : base(base), layout(layout), vals(spread_values<T>(static_cast<Index>(columns.size()) * block * block, seed))
    {
        for (const Index c : columns) cols.push_back(static_cast<Int>(c + base));
    }
    T at(std::size_t k, Index block, Index r, Index c) const
    {
        return vals[(k * block + (layout == 0 ? r : c)) * block + (layout == 0 ? c : r)];
    }
};

template <class Int, class T>
struct Sums {
    Index block, n;
    const Row<Int, T>&a, &b;
    Index layout, base;
    T alpha;
    Guarded<Int> cols;
    Guarded<T> vals;

    Sums(Index block, Index n, const Row<Int, T>& a, const Row<Int, T>& b, Index layout, Index base, T alpha,
         Index count)
        : block(block), n(n), a(a), b(b), layout(layout), base(base), alpha(alpha), cols(count),
          vals(count * block * block)
    {
    }
    template <class Kernel, class... Work>
    void run(Kernel* kernel, Work... work)
    {
        // Row pointers begin anywhere.
        const Guarded<Int> ca(a.cols), cb(b.cols);
        const Guarded<T> va(a.vals), vb(b.vals);
        kernel(static_cast<Int>(block), static_cast<Int>(n), static_cast<Int>(a.base), static_cast<Int>(b.base),
               static_cast<Int>(base), static_cast<Int>(a.layout), static_cast<Int>(b.layout), static_cast<Int>(layout),
               7, static_cast<Int>(7 + a.cols.size()), ca.data(), va.data(), 100, static_cast<Int>(100 + b.cols.size()),
               cb.data(), vb.data(), cols.data(), vals.data(), alpha, work...);
    }
    // Entry k is in `column`, of entry i of A and j of B; -1: of none.
    void expect(Index k, Index column, int i, int j)
    {
        ASSERT_EQ(cols[k], column + base);
        for (Index r = 0; r < block; ++r)
            for (Index c = 0; c < block; ++c) {
                const T got = vals[(k * block + (layout == 0 ? r : c)) * block + (layout == 0 ? c : r)];
                const T scaled = i < 0 ? T(0) : plain_product(alpha, a.at(static_cast<std::size_t>(i), block, r, c));
                const T other = j < 0 ? T(0) : b.at(static_cast<std::size_t>(j), block, r, c);
                ASSERT_TRUE(same_bits(got, i < 0   ? other
                                           : j < 0 ? scaled
                                                   : other + scaled))
                    << "column " << column << " element " << r << ' ' << c;
            }
    }
};

// Blocks to 9 take every path of the transposing copy.
TYPED_TEST(SparseSums, MergeRows)
{
    using Int = typename TypeParam::Int;
    using T = typename TypeParam::T;
    const Index n = 12;
    for (Index block = 1; block <= 9; ++block)
        for (int layouts = 0; layouts < 8; ++layouts)
            for (const T alpha : {some<T>(-1.7f, 0.6f), T(0)}) {
                const int bases = static_cast<int>(block + 3 * layouts) & 7;
                SCOPED_TRACE("block " + std::to_string(block) + ", layouts " + std::to_string(layouts) + ", bases " +
                             std::to_string(bases));
                const Row<Int, T> a({0, 3, 4, 9}, block, layouts & 1, bases & 1, 1),
                    b({3, 5, 9, 11}, block, layouts >> 1 & 1, bases >> 1 & 1, 2);
                Sums<Int, T> sums(block, n, a, b, layouts >> 2, bases >> 2, alpha, 6);
                sums.run(KERNEL(add_sorted_ker));
                sums.expect(0, 0, 0, -1), sums.expect(1, 3, 1, 0), sums.expect(2, 4, 2, -1);
                sums.expect(3, 5, -1, 1), sums.expect(4, 9, 3, 2), sums.expect(5, 11, -1, 3);

                const Guarded<Int> work(std::vector<Int>(n, 0));
                Sums<Int, T> other(block, n, a, b, layouts >> 2, bases >> 2, alpha, 6);
                other.run(KERNEL(add_unsorted_ker), work.data());
                other.expect(0, 3, 1, 0), other.expect(1, 5, -1, 1), other.expect(2, 9, 3, 2);
                other.expect(3, 11, -1, 3), other.expect(4, 0, 0, -1), other.expect(5, 4, 2, -1);
                EXPECT_TRUE(work.unchanged());
            }
}

TYPED_TEST(SparseSums, PlacesThatRepeatAndRowsWithoutEntries)
{
    using Int = typename TypeParam::Int;
    using T = typename TypeParam::T;
    const T alpha = some<T>(0.3f, 1);
    const Row<Int, T> none({}, 1, 0, 1, 1), twice({2, 2, 6}, 1, 0, 0, 2), one({2, 7}, 1, 0, 1, 3);
    const Guarded<Int> work(std::vector<Int>(8, 0));
    for (const bool sorted : {true, false}) {
        const auto run = [&](auto& sums) {
            sorted ? sums.run(KERNEL(add_sorted_ker)) : sums.run(KERNEL(add_unsorted_ker), work.data());
        };
        Sums<Int, T> empty(1, 8, none, none, 0, 0, alpha, 0), of_a(1, 8, twice, none, 0, 1, alpha, 3),
            of_b(1, 8, none, twice, 0, 1, alpha, 3);
        run(empty), run(of_a), run(of_b);
        for (int k = 0; k < 3; ++k) of_a.expect(k, k < 2 ? 2 : 6, k, -1), of_b.expect(k, k < 2 ? 2 : 6, -1, k);
    }
    Sums<Int, T> merged(1, 8, twice, one, 0, 0, alpha, 4);
    merged.run(KERNEL(add_sorted_ker));
    merged.expect(0, 2, 0, 0), merged.expect(1, 2, 1, -1), merged.expect(2, 6, 2, -1), merged.expect(3, 7, -1, 1);

    // In any order: all of A's go to the one entry of B, and one of A to the last of B's.
    Sums<Int, T> into_one(1, 8, twice, one, 0, 0, alpha, 3);
    into_one.run(KERNEL(add_unsorted_ker), work.data());
    EXPECT_TRUE(same_bits<T>(into_one.vals[0], (one.vals[0] + plain_product(alpha, twice.vals[0])) +
                                                   plain_product(alpha, twice.vals[1])));
    into_one.expect(1, 7, -1, 1), into_one.expect(2, 6, 2, -1);
    Sums<Int, T> to_last(1, 8, one, twice, 0, 0, alpha, 4);
    to_last.run(KERNEL(add_unsorted_ker), work.data());
    to_last.expect(0, 2, -1, 0), to_last.expect(1, 2, 0, 1), to_last.expect(2, 6, -1, 2), to_last.expect(3, 7, 1, -1);
    EXPECT_TRUE(work.unchanged());
}

// A signalling NaN, whose bits any arithmetic would change.
TYPED_TEST(SparseSums, EntriesOfBAloneAreCopied)
{
    using Int = typename TypeParam::Int;
    using T = typename TypeParam::T;
    using R = Real<T>;
    using Bits = std::conditional_t<sizeof(R) == 4, std::uint32_t, std::uint64_t>;
    const Bits signalling =
        (std::numeric_limits<R>::digits == 24 ? Bits{0x7f8} << 20 : Bits(0x7ff) << (sizeof(R) * 8 - 12)) | 5;
    for (Index block = 1; block <= 9; ++block)
        for (const Index layout : {0, 1}) {
            const Row<Int, T> a({1}, block, 0, 0, 1);
            Row<Int, T> b({0, 4}, block, layout, 0, 2);
            auto* const numbers = reinterpret_cast<R*>(b.vals.data());
            const std::size_t count = b.vals.size() * sizeof(T) / sizeof(R);
            for (std::size_t k = 0; k < count; ++k) std::memcpy(&numbers[k], &signalling, sizeof(R));
            const Guarded<Int> work(std::vector<Int>(5, 0));
            for (const bool sorted : {true, false}) {
                Sums<Int, T> sums(block, 5, a, b, 0, 0, T(1), 3);
                sorted ? sums.run(KERNEL(add_sorted_ker)) : sums.run(KERNEL(add_unsorted_ker), work.data());
                const Index last = sorted ? 2 : 1;
                EXPECT_EQ(std::memcmp(&sums.vals[0], b.vals.data(), block * block * sizeof(T)), 0);
                EXPECT_EQ(std::memcmp(&sums.vals[last * block * block], b.vals.data(), block * block * sizeof(T)), 0);
            }
        }
}

} // namespace
} // namespace ork::test

// SPDX-License-Identifier: MIT
// The multiply as a whole, in all precisions: the bits of its sums, its rules for beta, alpha and NaN, and what it
// touches.
#include <cstdint>
#include <limits>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "blas/gemm_by_type.h"
#include "support/compare.h"
#include "support/environment.h"
#include "support/fake_core.h"
#include "support/random.h"
#include "support/strided.h"

using namespace ork::test;

namespace {

using Int = std::int64_t;

struct Shape {
    Int m, n, k;
    char transa = 'N', transb = 'N';
    int pad = 1;                       // leading dimensions exceed the rows by this
    std::size_t offset[3] = {0, 0, 0}; // bytes from A, B and C to their guarded pages
};

std::string name(const Shape& s)
{
    return std::to_string(s.m) + " x " + std::to_string(s.n) + " x " + std::to_string(s.k) + " " + s.transa + s.transb;
}

bool transposed(char letter) { return letter != 'N' && letter != 'n'; }

template <class T>
class Gemm : public testing::Test {
};
using Precisions = testing::Types<float, double, cfloat, cdouble>;
TYPED_TEST_SUITE(Gemm, Precisions);

template <class T>
Real<T> real_part(T x)
{
    if constexpr (is_complex<T>)
        return x.real();
    else
        return x;
}

// A, B and C tight against guarded pages; A and B can't be written, the padding of all three is NaN.
template <class T>
struct Problem {
    Shape shape;
    Matrix<T> a, b, c;
    T alpha = T(1), beta = T(1);

    Problem(const Shape& s, std::uint64_t seed, Guard side = Guard::end)
        : shape(s), a(transposed(s.transa) ? s.k : s.m, transposed(s.transa) ? s.m : s.k,
                      (transposed(s.transa) ? s.k : s.m) + s.pad, side, s.offset[0]),
          b(transposed(s.transb) ? s.n : s.k, transposed(s.transb) ? s.k : s.n,
            (transposed(s.transb) ? s.n : s.k) + s.pad, side, s.offset[1]),
          c(s.m, s.n, s.m + s.pad, side, s.offset[2])
    {
        Random random(seed);
        const auto spread = [&] { return random.spread<T>(); };
        a.fill(spread);
        b.fill(spread);
        c.fill(spread);
        a.read_only();
        b.read_only();
    }

    T a_at(Int i, Int l) const { return conjugated(shape.transa, transposed(shape.transa) ? a(l, i) : a(i, l)); }
    T b_at(Int l, Int j) const { return conjugated(shape.transb, transposed(shape.transb) ? b(j, l) : b(l, j)); }
    static T conjugated(char letter, T x)
    {
        if constexpr (is_complex<T>)
            if (letter == 'C') return std::conj(x);
        return x;
    }

    std::vector<T> expected() const
    {
        std::vector<T> want;
        for (Int j = 0; j < shape.n; ++j)
            for (Int i = 0; i < shape.m; ++i)
                want.push_back(gemm_element(
                    shape.k, alpha, [&](Int l) { return a_at(i, l); }, [&](Int l) { return b_at(l, j); }, beta,
                    c(i, j)));
        return want;
    }

    void run()
    {
        gemm<T>(&shape.transa, &shape.transb, &shape.m, &shape.n, &shape.k, &alpha, a.data(), &a.ld(), b.data(),
                &b.ld(), &beta, c.data(), &c.ld());
    }

    void expect_exact()
    {
        SCOPED_TRACE(name(shape) + ", alpha " + show(alpha) + ", beta " + show(beta));
        const auto want = expected();
        run();
        expect_same_bits<T>(c.values(), want, static_cast<Int>(want.size()));
        EXPECT_TRUE(c.padding_intact());
    }
};

const char letters[] = {'N', 'T', 'C'};

} // namespace

// Sizes around every unit and block; a wrong order of additions, block of depth, tail or letter changes bits.
TYPED_TEST(Gemm, EveryElementIsTheOrderedSumOnBothRowsOfTheTable)
{
    using T = TypeParam;
    FreshCore core;
    Random random(7);
    const Int sizes[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 15, 16, 17, 23, 31, 33, 40, 41, 49};
    const Int depths[] = {1, 2, 3, 4, 5, 7, 8, 9, 10, 11, 12, 16, 17, 40};
    const T scalars[] = {T(1), T(0), scalar<T>(-0.75)};
    for (const Int model : {0, 66}) {
        core->microarchitecture = model;
        for (const Int m : sizes)
            for (const Int n : sizes) {
                Problem<T> p({m,
                              n,
                              depths[random.integer(0, 13)],
                              letters[random.integer(0, 2)],
                              letters[random.integer(0, 2)],
                              static_cast<int>(random.integer(0, 3)),
                              {sizeof(Real<T>) * (random.bits() % 4), sizeof(Real<T>) * (random.bits() % 4),
                               sizeof(Real<T>) * (random.bits() % 4)}},
                             random.bits(), both_guards[random.integer(0, 1)]);
                p.alpha = scalars[random.integer(0, 1) * 2];
                p.beta = scalars[random.integer(0, 2)];
                p.expect_exact();
                if (this->HasFailure()) return;
            }
    }
}

// Depths around the blocks, on the ways that pack and on those that do not.
TYPED_TEST(Gemm, DepthIsSummedBlockByBlockOnEveryWay)
{
    using T = TypeParam;
    FreshCore core;
    core->microarchitecture = 66;
    const Int depths[] = {127, 128, 129, 252, 255, 256, 257, 264, 265, 300, 511, 512, 513, 600, 768, 1030, 2100};
    const Shape shapes[] = {{1, 1, 0},  {1, 9, 0}, {1, 40, 0}, {9, 1, 0},  {40, 1, 0},  {40, 3, 0},
                            {3, 40, 0}, {5, 7, 0}, {8, 8, 0},  {9, 50, 0}, {33, 17, 0}, {34, 24, 0}};
    for (Shape shape : shapes)
        for (const Int k : depths)
            for (const char transa : letters)
                for (const char transb : letters) {
                    shape.k = k;
                    shape.transa = transa;
                    shape.transb = transb;
                    Problem<T> p(shape, static_cast<std::uint64_t>(k));
                    p.beta = T(k % 2 == 0 ? 0 : 1);
                    p.alpha = scalar<T>(k % 3 == 0 ? 1 : 0.3);
                    p.expect_exact();
                    if (this->HasFailure()) return;
                }
}

// More rows and columns than a block of either: a smaller cache gives the smaller block of rows.
TYPED_TEST(Gemm, BlocksOfRowsAndColumns)
{
    using T = TypeParam;
    FreshCore core;
    core->cache_size = 1 << 20;
    Problem<T>(Shape{781, 20, 33}, 1).expect_exact();
    Problem<T>(Shape{12, 5009, 9, 'T', 'N'}, 2).expect_exact();
    core->cache_levels = 0;
    Problem<T>(Shape{1290, 11, 5, 'N', 'T'}, 3).expect_exact();
}

TYPED_TEST(Gemm, WithoutMemoryTheProductHasTheSameBits)
{
    using T = TypeParam;
    FreshCore core;
    for (const Int k : {50, 300, 520})
        for (const char transa : letters) {
            core->fail_allocation_at = 1;
            Problem<T>(Shape{70, 66, k, transa, 'N'}, 5).expect_exact();
            EXPECT_EQ(core->fail_allocation_at, 0) << "nothing was allocated: the test misses its way";
        }
    Problem<T>(Shape{70, 66, 300}, 5).expect_exact();
    EXPECT_EQ(core->live_allocations, 0);
    EXPECT_EQ(core->allocations, core->deallocations + 9);
}

TYPED_TEST(Gemm, AColumnAndARowComputedAloneHaveTheBitsTheyHaveInCompany)
{
    using T = TypeParam;
    FreshCore core;
    for (const Int k : {9, 64, 300}) {
        Problem<T> whole(Shape{45, 43, k}, 11);
        whole.beta = T(0);
        whole.run();
        const Int one = 1;
        for (Int j = 0; j < 43; j += 7) {
            Matrix<T> column(45, 1, 45);
            gemm<T>("N", "N", &whole.shape.m, &one, &k, &whole.alpha, whole.a.data(), &whole.a.ld(), &whole.b(0, j),
                    &whole.b.ld(), &whole.beta, column.data(), &column.ld());
            expect_same_bits<T>(column.values(), std::vector<T>(&whole.c(0, j), &whole.c(0, j) + 45), 45);
        }
        for (Int i = 0; i < 45; i += 11) {
            Matrix<T> row(1, 43, 1);
            gemm<T>("N", "N", &one, &whole.shape.n, &k, &whole.alpha, &whole.a(i, 0), &whole.a.ld(), whole.b.data(),
                    &whole.b.ld(), &whole.beta, row.data(), &row.ld());
            for (Int j = 0; j < 43; ++j) expect_same_bits(row(0, j), whole.c(i, j));
        }
    }
}

// beta = 0 clears NaN without reading it, for every size of edge tile and without a product too; NaN as beta or alpha
// is a number like any other.
TYPED_TEST(Gemm, NanFollowsTheFormula)
{
    using T = TypeParam;
    FreshCore core;
    const T nan(std::numeric_limits<Real<T>>::quiet_NaN()), inf(std::numeric_limits<Real<T>>::infinity());
    for (const Int m : {1, 2, 3, 5, 10, 42, 43})
        for (const Int n : {1, 2, 5, 7, 8, 13, 44, 45, 46, 47})
            for (const Int k : {0, 3, 5, 40}) {
                Problem<T> p(Shape{m, n, k}, 3);
                p.beta = T(0);
                p.c.fill([&] { return nan; });
                p.expect_exact();
                p.alpha = T(0);
                p.c.fill([&] { return nan; });
                p.expect_exact();
                p.alpha = T(1);
                p.beta = nan;
                p.run();
                for (const T x : p.c.values()) ASSERT_TRUE(has_nan(x)) << name(p.shape);
            }
    // One infinity and one NaN reach exactly their row and their column, whatever the tile they stand in.
    for (const Int n : {5, 9, 45, 47}) {
        Problem<T> p(Shape{n, n, 6}, 4);
        p.a.writable();
        p.b.writable();
        p.a.fill([] { return T(1); });
        p.b.fill([] { return T(1); });
        p.a(n - 1, 2) = inf;
        p.b(3, n - 1) = nan;
        p.c.fill([] { return T(0); });
        p.run();
        for (Int j = 0; j < n; ++j)
            for (Int i = 0; i < n; ++i) {
                if (j == n - 1)
                    ASSERT_TRUE(has_nan(p.c(i, j)));
                else if (i < n - 1)
                    ASSERT_EQ(p.c(i, j), T(6));
                else
                    ASSERT_TRUE(std::isinf(real_part(p.c(i, j))));
            }
    }
}

TYPED_TEST(Gemm, AlphaZeroReadsNeitherOperand)
{
    using T = TypeParam;
    FreshCore core;
    for (const Int size : {3, 8, 60}) {
        Problem<T> p(Shape{size, size, size}, 6);
        p.alpha = T(0);
        for (const double beta : {1.0, 0.0, 0.5}) {
            p.beta = scalar<T>(beta);
            const auto want = p.expected();
            gemm<T>("N", "T", &size, &size, &size, &p.alpha, nullptr, &size, nullptr, &size, &p.beta, p.c.data(),
                    &p.c.ld());
            expect_same_bits<T>(p.c.values(), want, size * size);
        }
    }
}

TYPED_TEST(Gemm, EmptySizesTouchNothingAndNoDepthStillScales)
{
    using T = TypeParam;
    FreshCore core;
    Problem<T> p(Shape{6, 6, 4}, 8);
    p.beta = scalar<T>(0.5);
    for (const Int empty : {Int(0), Int(-3)}) {
        gemm<T>("N", "N", &empty, &p.shape.n, &p.shape.k, &p.alpha, nullptr, &p.a.ld(), nullptr, &p.b.ld(), &p.beta,
                nullptr, &p.c.ld());
        gemm<T>("N", "N", &p.shape.m, &empty, &p.shape.k, &p.alpha, nullptr, &p.a.ld(), nullptr, &p.b.ld(), &p.beta,
                nullptr, &p.c.ld());
    }
    p.shape.k = -1;
    p.expect_exact();
}

// Infinity times the padding of an edge tile would raise the invalid flag that no element asks for.
TYPED_TEST(Gemm, RaisesNoFlagOfItsOwnAndKeepsTheControlWord)
{
    using T = TypeParam;
    FreshCore core;
    for (const Int size : {5, 7, 9, 45, 47, 49}) {
        Problem<T> p(Shape{size, size, 5}, 9);
        p.a.writable();
        p.b.writable();
        p.a.fill([] { return T(std::numeric_limits<Real<T>>::infinity()); });
        p.b.fill([] { return T(1); });
        p.c.fill([] { return T(1); });
        // infinity + 0i times 1 + 0i is itself invalid in its imaginary part
        EXPECT_TRUE(keeps_fp_environment([&] { p.run(); }, is_complex<T> ? unsigned{fp_invalid} : 0u)) << name(p.shape);
    }
}

TYPED_TEST(Gemm, RunsOnASmallStackAndConcurrently)
{
    using T = TypeParam;
    FreshCore core;
    for (const Shape& shape :
         {Shape{300, 310, 300}, Shape{60, 1, 600, 'T'}, Shape{100, 7, 300}, Shape{30, 30, 300, 'T'}}) {
        Problem<T> serial(shape, 10), small(shape, 10);
        serial.run();
        run_on_small_stack(small_stack, [&] { small.run(); });
        expect_same_bits<T>(small.c.values(), serial.c.values(), shape.m * shape.n);
        std::vector<std::thread> callers;
        std::vector<Problem<T>> problems;
        for (int i = 0; i < 4; ++i) problems.emplace_back(shape, 10);
        for (auto& p : problems) callers.emplace_back([&p] { p.run(); });
        for (auto& t : callers) t.join();
        for (auto& p : problems) expect_same_bits<T>(p.c.values(), serial.c.values(), shape.m * shape.n);
    }
}

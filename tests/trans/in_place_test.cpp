// SPDX-License-Identifier: MIT
// AB <- alpha op(AB) in the same memory, whatever the two leading dimensions.
#include "trans/matrices.h"

namespace ork::test {
namespace {

template <class T>
struct InPlace {
    char ordering, trans;
    Int rows, cols;
    T alpha = T(1);
    Int pada = 0, padb = 0; // leading dimensions are the least possible and that much more
    Guard guard = Guard::end;
    const std::vector<T>* values = &random_values<T>();
};

// What is in the matrix before and not after may hold anything; what is in neither stays.
template <class T>
void expect_in_place(const InPlace<T>& c, bool batch_of_one = false)
{
    const Layout from = layout(c.ordering, false, c.rows, c.cols, c.pada);
    const Layout to = layout(c.ordering, transposes(c.trans), c.rows, c.cols, c.padb);
    SCOPED_TRACE(testing::Message() << c.ordering << c.trans << ' ' << c.rows << " x " << c.cols << ", alpha "
                                    << show(c.alpha) << ", leading dimensions " << from.ld << ", " << to.ld
                                    << ", guard at the " << (c.guard == Guard::end ? "end" : "begin"));
    Guarded<T> ab(std::max(from.extent(), to.extent()), c.guard);
    fill(ab, from, *c.values);
    ab.remember();
    const std::vector<T> before = ab.values();
    if (batch_of_one) KERNEL(imatcopy_batch_strided)
    (c.ordering, c.trans, c.rows, c.cols, c.alpha, ab.data(), from.ld, to.ld, 0, 1);
    else KERNEL(imatcopy)(c.ordering, c.trans, c.rows, c.cols, c.alpha, ab.data(), from.ld, to.ld);
    expect_matrix(ab.data(), to, c.alpha == T(1),
                  [&](Int i, Int j) { return times(c.alpha, element(before.data(), from, c.trans, i, j)); });
    EXPECT_TRUE(ab.unchanged_except([&](Int position) { return from.holds(position) || to.holds(position); }));
}

template <class T>
class InPlaceCopy : public testing::Test {
};
TYPED_TEST_SUITE(InPlaceCopy, Precisions, PrecisionNames);

// Source and target overlap in every way there is: as cycles, as chains that begin or end in a gap of the other.
TYPED_TEST(InPlaceCopy, IsRightInEverySmallShapeWithGaps)
{
    using T = TypeParam;
    Random random(3);
    for (Int rows = 1; rows <= 24; ++rows)
        for (Int cols = 1; cols <= 24; ++cols)
            for (Int pada = 0; pada < 4; ++pada)
                for (Int padb = 0; padb < 4; ++padb)
                    for (const bool transposed : {false, true}) {
                        const Int upper = random.integer(0, 1), conjugated = random.integer(0, 1);
                        const char trans = (transposed ? "TtCc" : "NnRr")[upper + 2 * conjugated];
                        const T alpha = random.integer(0, 1) == 0 ? T(1) : one_of<T>(factors<T>(), random);
                        expect_in_place(InPlace<T>{one_of<char>(orderings, random), trans, rows, cols, alpha, pada,
                                                   padb, one_of<Guard>(both_guards, random)},
                                        random.integer(0, 7) == 0);
                        if (this->HasFailure()) return;
                    }
}

TYPED_TEST(InPlaceCopy, IsRightInLargerShapes)
{
    using T = TypeParam;
    struct {
        Int rows, cols, pada, padb;
    } const shapes[] = {{3, 5, 0, 0},      {1, 300, 0, 0},   {300, 1, 0, 0},    {1, 300, 5, 2},   {300, 1, 0, 7},
                        {97, 101, 0, 0},   {101, 97, 0, 0},  {101, 97, 1, 0},   {97, 101, 0, 30}, {64, 127, 0, 0},
                        {127, 64, 0, 1},   {128, 63, 2, 0},  {63, 128, 65, 0},  {2, 997, 0, 0},   {997, 2, 3, 1},
                        {255, 256, 0, 0},  {256, 255, 1, 0}, {256, 255, 0, 2},  {200, 400, 0, 0}, {131, 67, 500, 3},
                        {67, 131, 2, 600}, {300, 700, 0, 0}, {311, 691, 13, 0}, {256, 512, 0, 0}, {512, 100, 0, 412},
                        {323, 4104, 0, 0}, {4104, 323, 0, 0}};
    Random random(4);
    for (const auto& s : shapes)
        for (const char trans : {'N', 'T', 'R', 'C'})
            for (const T alpha : {T(1), some<T>(-2, 0.5f)}) {
                expect_in_place(InPlace<T>{one_of<char>(orderings, random), trans, s.rows, s.cols, alpha, s.pada,
                                           s.padb, one_of<Guard>(both_guards, random)});
                if (this->HasFailure()) return;
            }
}

// The cycles of an m x n matrix's transposition are those of multiplication by n modulo m n - 1, whose divisors decide
// how many there are and where: sizes in a row, powers of primes, products of many, primes.
TYPED_TEST(InPlaceCopy, IsRightWhateverTheCycles)
{
    using T = TypeParam;
    std::vector<std::pair<Int, Int>> shapes = {
        {17, 241},  {241, 17},  {99, 331},  {331, 99}, {33, 993}, // 2^12, 2^15
        {34, 193},  {193, 34},  {26, 601},  {88, 191},            // 3^8, 5^6, 7^5
        {59, 509},  {509, 59},  {19, 1459}, {73, 137},            // 2 3 5 7 11 13, 2^3 3^2 5 7 11, 2^4 5^4
        {2, 5000},  {30, 500},  {500, 30},  {2, 4999},            // 9999, 14999 = 53 283, 9997 = 13 769
        {128, 256}, {256, 128}, {64, 1024}, {210, 143}};          // n a power of two; 30029, a prime
    for (Int m = 2; m <= 64; ++m)
        for (Int n = 2040 / m; n <= 2064 / m + 6; ++n) shapes.emplace_back(m, n);
    Random random(9);
    for (const auto& [rows, cols] : shapes)
        for (const Int pada : {0, 1}) {
            const T alpha = random.integer(0, 3) == 0 ? some<T>(2, -1) : T(1);
            expect_in_place(
                InPlace<T>{'C', random.integer(0, 1) == 0 ? 'T' : 'C', rows, cols, alpha, pada, random.integer(0, 1)});
            if (this->HasFailure()) return;
        }
}

TYPED_TEST(InPlaceCopy, IsRightInSquares)
{
    using T = TypeParam;
    Random random(5);
    std::vector<Int> sizes = {255, 256, 257, 258, 300};
    for (Int n = 1; n <= 70; ++n) sizes.push_back(n);
    for (const Int n : {95, 96, 97, 127, 128, 129}) sizes.push_back(n);
    for (const Int n : sizes)
        for (const Int pad : {Int{0}, Int{1}, n < 256 ? 256 - n : 512 - n})
            for (const char trans : {'N', 'T', 'R', 'C'})
                for (const T& alpha : {T(1), one_of<T>(factors<T>(), random)}) {
                    expect_in_place(InPlace<T>{one_of<char>(orderings, random), trans, n, n, alpha, pad, pad,
                                               one_of<Guard>(both_guards, random)});
                    if (this->HasFailure()) return;
                }
}

// Leading dimensions of whole pages put all columns on the same cache sets.
TYPED_TEST(InPlaceCopy, IsRightInSquaresOfCompetingColumns)
{
    using T = TypeParam;
    for (const auto way : {Drivers::Square::declines, Drivers::Square::tiles})
        for (const Int n : {257, 300, 370, 530, 700})
            for (const char trans : {'T', 'C'})
                for (const T& alpha : {T(1), some<T>(2, 3)}) {
                    drivers() = {way, {}};
                    expect_in_place(InPlace<T>{'C', trans, n, n, alpha, 1024 - n, 1024 - n});
                    if (this->HasFailure()) return;
                }
}

TYPED_TEST(InPlaceCopy, KeepsWhatIsNotANumber)
{
    using T = TypeParam;
    for (const auto& [rows, cols] : {std::pair<Int, Int>{5, 4}, {9, 9}, {40, 40}, {13, 31}})
        for (const char trans : {'N', 'T', 'R', 'C'})
            for (const T alpha : factors<T>())
                for (const Int padb : {0, 1})
                    expect_in_place(
                        InPlace<T>{'C', trans, rows, cols, alpha, 0, padb, Guard::end, &special_values<T>()});
}

// Squares from 257 rows on whose elements only change places; the core may cut them in tiles, or decline.
TYPED_TEST(InPlaceCopy, AsksTheCoreForLargeSquares)
{
    using T = TypeParam;
    for (const auto way : {Drivers::Square::declines, Drivers::Square::whole, Drivers::Square::tiles})
        for (const Int n : {256, 257, 300})
            for (const Int lda : {n, n + 3})
                for (const char ordering : {'C', 'R'})
                    for (const char trans : {'T', 'c'}) {
                        SCOPED_TRACE(testing::Message() << ordering << trans << ' ' << n << ", " << lda);
                        const Layout l{ordering, n, n, lda};
                        Guarded<T> ab(l.extent());
                        fill(ab, l, random_values<T>());
                        ab.remember();
                        const std::vector<T> before = ab.values();
                        drivers() = {way, {}};
                        KERNEL(imatcopy)(ordering, trans, n, n, T(1), ab.data(), lda, lda);
                        std::vector<std::string> want;
                        if (n >= 257)
                            want = {call_text("imatcopy_square_t", trans == 'T' ? 'T' : 'C', n, ab.data(), lda)};
                        EXPECT_EQ(drivers().calls, want);
                        expect_matrix(ab.data(), l, true,
                                      [&](Int i, Int j) { return element(before.data(), l, trans, i, j); });
                        EXPECT_TRUE(ab.unchanged_except([&](Int position) { return l.holds(position); }));
                    }
    drivers() = {};
    std::vector<T> ab(310 * 310, T(1));
    KERNEL(imatcopy)('C', 'T', 300, 300, T(2), ab.data(), 300, 300);
    KERNEL(imatcopy)('C', 'T', 300, 300, T(1), ab.data(), 300, 301);
    KERNEL(imatcopy)('C', 'T', 300, 301, T(1), ab.data(), 301, 301);
    KERNEL(imatcopy)('C', 'N', 300, 300, T(1), ab.data(), 300, 300);
    KERNEL(imatcopy)('R', 'R', 300, 300, T(1), ab.data(), 300, 300);
    EXPECT_TRUE(drivers().calls.empty());
}

} // namespace
} // namespace ork::test

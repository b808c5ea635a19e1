// SPDX-License-Identifier: MIT
// B <- alpha op(A): every element, nothing between them, nothing beside them.
#include "trans/matrices.h"

namespace ork::test {
namespace {

template <class T>
struct Copy {
    char ordering, trans;
    Int rows, cols; // of A
    T alpha = T(1);
    Int pada = 0, padb = 0, stridea = 1, strideb = 1; // leading dimensions are the least possible and that much more
    Guard guard = Guard::end;
    const std::vector<T>* values = &random_values<T>();
};

enum class By { omatcopy, omatcopy2, omatcopy2_seq, batch_of_one };

template <class T>
void expect_copy(const Copy<T>& c, By by)
{
    const Layout from = layout(c.ordering, false, c.rows, c.cols, c.pada, c.stridea);
    const Layout to = layout(c.ordering, transposes(c.trans), c.rows, c.cols, c.padb, c.strideb);
    SCOPED_TRACE(testing::Message() << c.ordering << c.trans << ' ' << c.rows << " x " << c.cols << ", alpha "
                                    << show(c.alpha) << ", leading dimensions " << from.ld << ", " << to.ld
                                    << ", strides " << c.stridea << ", " << c.strideb << ", guard at the "
                                    << (c.guard == Guard::end ? "end" : "begin"));
    Guarded<T> a(from.extent(), c.guard), b(to.extent(), c.guard);
    fill(a, from, *c.values);
    a.read_only();
    if (by == By::omatcopy)
        KERNEL(omatcopy)(c.ordering, c.trans, c.rows, c.cols, c.alpha, a.data(), from.ld, b.data(), to.ld);
    else if (by == By::batch_of_one)
        KERNEL(omatcopy_batch_strided)
    (c.ordering, c.trans, c.rows, c.cols, c.alpha, a.data(), from.ld, 0, b.data(), to.ld, 0, 1);
    else(by == By::omatcopy2 ? KERNEL(omatcopy2) : KERNEL(omatcopy2_seq))(
        c.ordering, c.trans, c.rows, c.cols, c.alpha, a.data(), from.ld, c.stridea, b.data(), to.ld, c.strideb);
    expect_matrix(b.data(), to, c.alpha == T(1),
                  [&](Int i, Int j) { return times(c.alpha, element(a.data(), from, c.trans, i, j)); });
    EXPECT_TRUE(b.unchanged_except([&](Int position) { return to.holds(position); }));
}

template <class T>
class MatrixCopy : public testing::Test {
};
TYPED_TEST_SUITE(MatrixCopy, Precisions, PrecisionNames);

TYPED_TEST(MatrixCopy, IsRightInEveryShapeAndLetter)
{
    using T = TypeParam;
    Random random;
    std::vector<std::pair<Int, Int>> shapes;
    for (Int rows = 0; rows <= 40; ++rows)
        for (Int cols = 0; cols <= 40; ++cols) shapes.emplace_back(rows, cols);
    const Int edges[] = {61, 63, 64, 65, 66, 97, 127, 128, 129, 130};
    for (const Int m : edges)
        for (const Int n : {1, 2, 3, 4, 5, 7, 8, 9, 15, 17, 61, 64, 65, 127, 130}) {
            shapes.emplace_back(m, n);
            shapes.emplace_back(n, m);
        }
    for (const auto& [rows, cols] : shapes)
        for (int letter = 0; letter < 8; letter += 2) {
            const char trans = all_letters[letter + random.integer(0, 1)];
            const Int stridea = random.integer(-1, 3), strideb = random.integer(-1, 3); // below 1: 1
            Copy<T> c{one_of<char>(orderings, random),
                      trans,
                      rows,
                      cols,
                      one_of<T>(factors<T>(), random),
                      random.integer(0, 5),
                      random.integer(0, 5),
                      1,
                      1,
                      one_of<Guard>(both_guards, random)};
            expect_copy(c, random.integer(0, 1) == 0 ? By::omatcopy : By::batch_of_one);
            c.alpha = T(1); // half of all, as it has ways of its own
            expect_copy(c, By::omatcopy);
            if (rows < 20 || cols < 20) {
                c.stridea = std::max<Int>(stridea, 1), c.strideb = std::max<Int>(strideb, 1);
                c.alpha = one_of<T>(factors<T>(), random);
                expect_copy(c, By::omatcopy2);
            }
            if (this->HasFailure()) return;
        }
}

// Hundreds of columns, remainders of strips of any width, leading dimensions that put columns on the same cache sets.
TYPED_TEST(MatrixCopy, IsRightWhereMatricesAreLarge)
{
    using T = TypeParam;
    struct {
        Int rows, cols, lda, ldb;
    } const shapes[] = {{255, 258, 0, 0},     {256, 257, 256, 264},   {257, 431, 0, 0},    {431, 257, 433, 0},
                        {67, 1101, 0, 0},     {1101, 67, 0, 0},       {17, 1500, 17, 0},   {1500, 17, 0, 17},
                        {300, 290, 512, 512}, {300, 290, 511, 513},   {120, 700, 512, 0},  {500, 130, 1024, 1024},
                        {90, 500, 1025, 512}, {440, 120, 1023, 1024}, {513, 511, 520, 0},  {3, 1200, 512, 2048},
                        {1, 3000, 0, 0},      {3000, 1, 0, 0},        {1, 300, 1024, 512}, {300, 1, 512, 1024}};
    for (const auto& s : shapes)
        for (const char trans : {'N', 'T', 'R', 'C'})
            for (const T alpha : {T(1), some<T>(0.5f, -1)}) {
                Copy<T> c{'C', trans, s.rows, s.cols, alpha};
                c.pada = std::max<Int>(0, s.lda - s.rows);
                c.padb = std::max<Int>(0, s.ldb - (transposes(trans) ? s.cols : s.rows));
                expect_copy(c, By::omatcopy);
                c.guard = Guard::begin;
                expect_copy(c, By::omatcopy2_seq);
                std::swap(c.rows, c.cols), c.ordering = 'R'; // the same in memory
                expect_copy(c, By::omatcopy);
                if (this->HasFailure()) return;
            }
}

// Megabytes, which are stored around the caches, line by line of B wherever its columns begin.
TYPED_TEST(MatrixCopy, IsRightBeyondTheCaches)
{
    using T = TypeParam;
    Random random(10);
    for (const Int bytes : {2 << 20, 3 << 20})
        for (const Int rows : {31, 32, 35, 65, 600, 1021, 9000})
            for (const char trans : {'N', 'T', 'R', 'C'})
                for (const T alpha : {T(1), some<T>(0.5f, -1)}) {
                    const Int cols = (bytes / static_cast<Int>(sizeof(T)) + rows - 1) / rows + random.integer(0, 2);
                    expect_copy(Copy<T>{'C', trans, rows, cols, alpha, random.integer(0, 20), random.integer(0, 20), 1,
                                        1, one_of<Guard>(both_guards, random)},
                                By::omatcopy);
                    if (this->HasFailure()) return;
                }
}

TYPED_TEST(MatrixCopy, StepsOverElementsBetween)
{
    using T = TypeParam;
    Random random(2);
    for (const auto& [stridea, strideb] : {std::pair<Int, Int>{1, 2}, {2, 1}, {3, 3}, {1, 129}, {130, 1}, {64, 7}})
        for (const auto& [rows, cols] : {std::pair<Int, Int>{1, 1}, {5, 3}, {4, 4}, {8, 17}, {33, 20}, {70, 41}})
            for (const char trans : all_letters)
                for (const By by : {By::omatcopy2, By::omatcopy2_seq}) {
                    const T alpha = one_of<T>(factors<T>(), random);
                    expect_copy(Copy<T>{one_of<char>(orderings, random), trans, rows, cols, alpha, random.integer(0, 9),
                                        random.integer(0, 9), stridea, strideb, one_of<Guard>(both_guards, random)},
                                by);
                    if (this->HasFailure()) return;
                }
}

// As bits where alpha is one; NaN and infinity by the plain products otherwise, zero times them too.
TYPED_TEST(MatrixCopy, KeepsWhatIsNotANumber)
{
    using T = TypeParam;
    for (const auto& [rows, cols] : {std::pair<Int, Int>{1, 9}, {5, 4}, {8, 8}, {13, 31}, {66, 70}})
        for (const char trans : {'N', 'T', 'R', 'C'})
            for (const T alpha : factors<T>())
                for (const Int stride : {1, 2})
                    expect_copy(
                        Copy<T>{'C', trans, rows, cols, alpha, 1, 0, stride, 1, Guard::end, &special_values<T>()},
                        By::omatcopy2);
}

TYPED_TEST(MatrixCopy, LeavesOtherLettersAndEmptySizesAlone)
{
    using T = TypeParam;
    Guarded<T> b(36), none(0);
    const auto expect_nothing = [&](char ordering, char trans, Int rows, Int cols) {
        const auto large = std::max<Int>({rows, cols, 1});
        for (const T alpha : {T(1), T(2)}) {
            KERNEL(omatcopy)(ordering, trans, rows, cols, alpha, none.data(), large, b.data(), large);
            KERNEL(omatcopy2)(ordering, trans, rows, cols, alpha, none.data(), large, 1, b.data(), large, 1);
            KERNEL(omatcopy2_seq)(ordering, trans, rows, cols, alpha, none.data(), large, 1, b.data(), large, 1);
            KERNEL(imatcopy)(ordering, trans, rows, cols, alpha, b.data(), large, large + 1);
            KERNEL(imatcopy)(ordering, trans, rows, cols, alpha, b.data(), large, large);
        }
        EXPECT_TRUE(b.unchanged()) << "letters " << int{ordering} << ' ' << int{trans} << ", " << rows << " x " << cols;
    };
    const auto is_in = [](char letter, const auto& list) {
        return std::count(std::begin(list), std::end(list), letter);
    };
    for (int letter = -128; letter < 128; ++letter) {
        const char x = static_cast<char>(letter);
        for (const auto& [rows, cols] : {std::pair<Int, Int>{5, 5}, {4, 6}, {6, 1}}) {
            if (!is_in(x, all_letters)) expect_nothing('C', x, rows, cols);
            if (!is_in(x, orderings)) expect_nothing(x, letter % 2 == 0 ? 'T' : 'N', rows, cols);
        }
    }
    for (const auto& [rows, cols] :
         {std::pair<Int, Int>{0, 0}, {0, 5}, {5, 0}, {-1, 5}, {5, -7}, {-1, -1}, {INT64_MIN, 40}})
        for (const char ordering : {'C', 'R'})
            for (const char trans : {'N', 'T', 'R', 'C'}) expect_nothing(ordering, trans, rows, cols);
}

// 32 KiB, and both sides at least 17.
TYPED_TEST(MatrixCopy, IsTheCoresFromItsThresholdOn)
{
    using T = TypeParam;
    constexpr Int elements = 32768 / sizeof(T);
    struct {
        Int rows, cols;
        bool asks;
    } const sizes[] = {
        {16, 10000, false},         {10000, 16, false},           {17, 10000, true},         {10000, 17, true},
        {64, elements / 64, false}, {elements / 64, 64, false},   {65, elements / 64, true}, {elements / 64, 65, true},
        {17, elements / 17, false}, {17, elements / 17 + 1, true}};
    for (const auto& [rows, cols, asks] : sizes)
        for (const char ordering : {'C', 'R'})
            for (const char trans : {'N', 'T'})
                for (const T alpha : {T(1), T(2)}) {
                    SCOPED_TRACE(testing::Message() << ordering << trans << ' ' << rows << " x " << cols);
                    const std::vector<T> a(static_cast<std::size_t>(rows * cols), T(3));
                    std::vector<T> b(a.size());
                    const Int lda = ordering == 'C' ? rows : cols, ldb = trans == 'N' ? lda : rows + cols - lda;
                    drivers() = {};
                    KERNEL(omatcopy)(ordering, trans, rows, cols, alpha, a.data(), lda, b.data(), ldb);
                    EXPECT_EQ(b, std::vector<T>(b.size(), alpha * T(3)));
                    std::vector<std::string> want;
                    if (asks)
                        want = {call_text("omatcopy2", ordering, trans, rows, cols, alpha, a.data(), lda, Int{1},
                                          b.data(), ldb, Int{1})};
                    EXPECT_EQ(drivers().calls, want);
                    drivers() = {};
                    KERNEL(omatcopy2_seq)(ordering, trans, rows, cols, alpha, a.data(), lda, 1, b.data(), ldb, 1);
                    EXPECT_TRUE(drivers().calls.empty());
                }
}

} // namespace
} // namespace ork::test

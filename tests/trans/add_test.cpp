// SPDX-License-Identifier: MIT
// C <- alpha op(A) + beta op(B), also where C is an operand's array.
#include "trans/matrices.h"

namespace ork::test {
namespace {

enum class Place { apart, at_a, at_b, all_one };

template <class T>
struct Sum {
    char ordering, transa, transb;
    Int rows, cols; // of C
    T alpha, beta;
    Int pada = 0, padb = 0, padc = 0; // leading dimensions are the least possible and that much more
    Place place = Place::apart;
    Guard guard = Guard::end;
};
enum class By { omatadd, omatadd_seq, batch_of_one };

template <class T>
void expect_sum(const Sum<T>& s, By by)
{
    Layout from_a = layout(s.ordering, transposes(s.transa), s.rows, s.cols, s.pada);
    Layout from_b = layout(s.ordering, transposes(s.transb), s.rows, s.cols, s.padb);
    const Layout to = layout(s.ordering, false, s.rows, s.cols, s.padc);
    const bool at_a = s.place == Place::at_a || s.place == Place::all_one;
    const bool at_b = s.place == Place::at_b || s.place == Place::all_one;
    if (at_a && at_b && transposes(s.transa) != transposes(s.transb) && s.rows != s.cols) return; // left open
    if (at_a && at_b) from_a.ld = from_b.ld = std::max(from_a.ld, from_b.ld);
    SCOPED_TRACE(testing::Message() << s.ordering << s.transa << s.transb << ' ' << s.rows << " x " << s.cols
                                    << ", alpha " << show(s.alpha) << ", beta " << show(s.beta)
                                    << ", leading dimensions " << from_a.ld << ", " << from_b.ld << ", " << to.ld
                                    << (at_a ? ", C at A" : "") << (at_b ? ", C at B" : ""));
    const bool seq = by == By::omatadd_seq, reads_a = s.alpha != T(0) || seq;
    const bool reads_b = s.alpha == T(0) || s.beta != T(0) || seq;
    // What must not be read isn't there, or NaN where C is in its place.
    Guarded<T> c(std::max({to.extent(), at_a ? from_a.extent() : 0, at_b ? from_b.extent() : 0}), s.guard);
    Guarded<T> apart_a(at_a || !reads_a ? 0 : from_a.extent(), s.guard);
    Guarded<T> apart_b(at_b || !reads_b ? 0 : from_b.extent(), s.guard);
    Guarded<T>&a = at_a ? c : apart_a, &b = at_b ? c : apart_b;
    if (reads_a) fill(a, from_a, random_values<T>());
    if (reads_b) fill(b, from_b, random_values<T>());
    c.remember();
    apart_a.read_only(), apart_b.read_only();
    const std::vector<T> old_a = a.values(), old_b = b.values();
    if (by == By::batch_of_one) KERNEL(omatadd_batch_strided)
    (s.ordering, s.transa, s.transb, s.rows, s.cols, s.alpha, a.data(), from_a.ld, 0, s.beta, b.data(), from_b.ld, 0,
     c.data(), to.ld, 0, 1);
    else(by == By::omatadd ? KERNEL(omatadd) : KERNEL(omatadd_seq))(s.ordering, s.transa, s.transb, s.rows, s.cols,
                                                                    s.alpha, a.data(), from_a.ld, s.beta, b.data(),
                                                                    from_b.ld, c.data(), to.ld);
    expect_matrix(c.data(), to, false, [&](Int i, Int j) {
        const auto term_a = [&] { return plain_product(s.alpha, element(old_a.data(), from_a, s.transa, i, j)); };
        const auto term_b = [&] { return plain_product(s.beta, element(old_b.data(), from_b, s.transb, i, j)); };
        return reads_a && reads_b ? term_a() + term_b() : reads_a ? term_a() : term_b();
    });
    EXPECT_TRUE(c.unchanged_except([&](Int position) {
        return to.holds(position) || (at_a && from_a.holds(position)) || (at_b && from_b.holds(position));
    }));
}

template <class T>
class MatrixSum : public testing::Test {
};
TYPED_TEST_SUITE(MatrixSum, Precisions, PrecisionNames);

template <class T>
Sum<T> any_sum(char transa, char transb, Int rows, Int cols, Place place, Random& random)
{
    return {one_of<char>(orderings, random),
            transa,
            transb,
            rows,
            cols,
            one_of<T>(factors<T>(), random),
            one_of<T>(factors<T>(), random),
            random.integer(0, 3),
            random.integer(0, 3),
            random.integer(0, 3),
            place,
            one_of<Guard>(both_guards, random)};
}

TYPED_TEST(MatrixSum, IsRightInEveryPairOfLettersAndPlace)
{
    using T = TypeParam;
    Random random(6);
    std::vector<std::pair<Int, Int>> shapes = {{0, 3}, {3, 0}, {66, 65}, {70, 130}, {128, 40}, {1, 200}, {200, 1}};
    for (const Int rows : {1, 2, 3, 4, 5, 7, 8, 9, 13, 16, 17, 31, 40})
        for (const Int cols : {1, 2, 3, 4, 5, 6, 8, 9, 12, 17, 33}) shapes.emplace_back(rows, cols);
    for (const auto& [rows, cols] : shapes)
        for (const Place place : {Place::apart, Place::at_a, Place::at_b, Place::all_one})
            for (const char transa : {'N', 'T', 'R', 'C'})
                for (const char transb : {'n', 't', 'r', 'c'}) {
                    const bool exchanged = random.integer(0, 1) == 0;
                    auto s =
                        any_sum<T>(exchanged ? transb : transa, exchanged ? transa : transb, rows, cols, place, random);
                    expect_sum(s, random.integer(0, 3) == 0 ? By::batch_of_one : By::omatadd);
                    if (place == Place::apart) expect_sum(s, By::omatadd_seq);
                    s.padb = s.padc = s.pada; // in place, other ways may be open
                    expect_sum(s, By::omatadd);
                    if (place != Place::apart && !transposes(transa) && !transposes(transb))
                        expect_sum(s, By::omatadd_seq);
                    if (this->HasFailure()) return;
                }
}

TYPED_TEST(MatrixSum, IsRightWhereMatricesAreLarge)
{
    using T = TypeParam;
    Random random(7);
    constexpr Int beyond_caches = (2 << 20) / sizeof(T);
    for (const auto& [rows, cols] : {std::pair<Int, Int>{257, 256},
                                     {256, 256},
                                     {17, 1300},
                                     {700, 61},
                                     {131, 307},
                                     {401, beyond_caches / 401 + 1},
                                     {beyond_caches / 93 + 1, 93}})
        for (const Place place : {Place::apart, Place::at_a, Place::at_b, Place::all_one})
            for (const char transa : {'N', 'T', 'C'})
                for (const char transb : {'N', 'T', 'R'}) {
                    expect_sum(any_sum<T>(transa, transb, rows, cols, place, random), By::omatadd);
                    if (this->HasFailure()) return;
                }
}

TYPED_TEST(MatrixSum, DoesNotReadWhatHasAFactorOfZero)
{
    using T = TypeParam;
    for (const auto& [rows, cols] : {std::pair<Int, Int>{5, 5}, {12, 31}, {200, 190}})
        for (const Place place : {Place::apart, Place::at_a, Place::at_b})
            for (const char transa : {'N', 'T'})
                for (const char transb : {'N', 'T'})
                    for (const auto& [alpha, beta] : {std::pair<T, T>{0, 1}, {1, 0}, {0, 2}, {-3, 0}, {0, 0}}) {
                        Sum<T> s{'C', transa, transb, rows, cols, alpha, beta, 1, 2, 3, place};
                        expect_sum(s, By::omatadd);
                        s.pada = s.padb = s.padc = 0;
                        expect_sum(s, By::omatadd);
                        if (this->HasFailure()) return;
                    }
}

TYPED_TEST(MatrixSum, LeavesOtherLettersAloneAndOrdersByRowsUnlessAskedForColumns)
{
    using T = TypeParam;
    const std::vector<T> a(64, T(1)), b(64, T(2));
    Guarded<T> c(64);
    for (int letter = -128; letter < 128; ++letter) {
        const char x = static_cast<char>(letter);
        if (std::count(std::begin(all_letters), std::end(all_letters), x) == 0)
            for (const auto& [transa, transb] : {std::pair{x, 'N'}, {'T', x}, {x, x}})
                for (const T alpha : {T(1), T(0)})
                    for (const auto call : {KERNEL(omatadd), KERNEL(omatadd_seq)}) {
                        call('C', transa, transb, 7, 8, alpha, a.data(), 8, T(2), b.data(), 8, c.data(), 8);
                        call('C', transa, transb, 7, 8, T(2), a.data(), 8, alpha, b.data(), 8, c.data(), 8);
                    }
        for (const By by : {By::omatadd, By::omatadd_seq}) expect_sum(Sum<T>{x, 'N', 'T', 6, 5, T(2), T(-1), 1}, by);
    }
    for (const auto& [rows, cols] : {std::pair<Int, Int>{0, 0}, {0, 5}, {5, 0}, {-1, 5}, {5, -7}, {-1, -1}})
        for (const char trans : {'N', 'T'})
            for (const auto call : {KERNEL(omatadd), KERNEL(omatadd_seq)})
                call('R', trans, 'N', rows, cols, T(1), a.data(), 8, T(1), b.data(), 8, c.data(), 8);
    EXPECT_TRUE(c.unchanged());
}

// 128 KiB, and both sides at least 17.
TYPED_TEST(MatrixSum, IsTheCoresFromItsThresholdOn)
{
    using T = TypeParam;
    constexpr Int elements = 131072 / sizeof(T);
    struct {
        Int rows, cols;
        bool asks;
    } const sizes[] = {{16, 40000, false},
                       {40000, 16, false},
                       {17, 40000, true},
                       {40000, 17, true},
                       {128, elements / 128, false},
                       {elements / 128, 128, false},
                       {129, elements / 128, true},
                       {elements / 128, 129, true},
                       {17, elements / 17, false},
                       {17, elements / 17 + 1, true}};
    for (const auto& [rows, cols, asks] : sizes)
        for (const char transa : {'N', 'T'})
            for (const char transb : {'N', 'T'}) {
                SCOPED_TRACE(testing::Message() << transa << transb << ' ' << rows << " x " << cols);
                const std::vector<T> a(static_cast<std::size_t>(rows * cols), T(3)), b(a.size(), T(5));
                std::vector<T> c(a.size());
                const Int lda = transa == 'N' ? rows : cols, ldb = transb == 'N' ? rows : cols;
                drivers() = {};
                KERNEL(omatadd)
                ('C', transa, transb, rows, cols, T(2), a.data(), lda, T(-1), b.data(), ldb, c.data(), rows);
                EXPECT_EQ(c, std::vector<T>(c.size(), T(1)));
                std::vector<std::string> want;
                if (asks)
                    want = {call_text("omatadd", 'C', transa, transb, rows, cols, T(2), a.data(), lda, T(-1), b.data(),
                                      ldb, c.data(), rows)};
                EXPECT_EQ(drivers().calls, want);
                drivers() = {};
                KERNEL(omatadd_seq)
                ('C', transa, transb, rows, cols, T(2), a.data(), lda, T(-1), b.data(), ldb, c.data(), rows);
                EXPECT_TRUE(drivers().calls.empty());
            }
}

} // namespace
} // namespace ork::test

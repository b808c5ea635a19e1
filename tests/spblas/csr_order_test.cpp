// SPDX-License-Identifier: MIT
// Compressed rows: the orders of additions that are part of the contract, bit for bit. Magnitudes spread over 40 binary
// orders, so that another order rounds differently.
#include "spblas/csr_mm_blocks.h"
#include "spblas/kernel.h"
#include "support/compare.h"

namespace ork::test {
namespace {

using Lengths = std::vector<std::int64_t>;

template <class T>
struct Entry {
    std::int64_t column;
    T value;
};
template <class T>
using Row = std::vector<Entry<T>>;

// Rows of these lengths, unsorted, with columns that repeat.
template <class T>
Sparse<T> matrix_of(const Lengths& lengths, std::int64_t columns, std::uint64_t seed)
{
    Random random(seed);
    Sparse<T> a{static_cast<std::int64_t>(lengths.size()), columns, 1, {}};
    for (std::int64_t row = 0; row < a.rows; ++row)
        for (std::int64_t k = 0; k < lengths[static_cast<std::size_t>(row)]; ++k)
            a.blocks.push_back({row, random.integer(0, columns - 1), {random.spread<T>()}});
    return a;
}

// With the values conjugated where the operation says so.
template <class T>
std::vector<Row<T>> rows_of(const Sparse<T>& a, char op)
{
    std::vector<Row<T>> rows(static_cast<std::size_t>(a.rows));
    for (const Block<T>& entry : a.blocks)
        rows[static_cast<std::size_t>(entry.row)].push_back(
            {entry.column, spblas::conjugates(op) ? conjugated(entry.value[0]) : entry.value[0]});
    return rows;
}

// Base 0: eight at a time into four sums of two lanes. Base 1: two at a time into one. Then one by one.
template <class T>
T dot(const Row<T>& row, const std::vector<T>& x, char base)
{
    const std::size_t group = base == '0' ? 8 : 2, blocked = row.size() / group * group;
    const auto term = [&](std::size_t k) { return row[k].value * x[static_cast<std::size_t>(row[k].column)]; };
    T lane[4][2] = {};
    for (std::size_t k = 0; k < blocked; ++k) lane[k % group / 2][k % 2] += term(k);
    T sum{};
    if (blocked != 0 && base == '0')
        sum = ((lane[0][0] + lane[1][0]) + (lane[2][0] + lane[3][0])) +
              ((lane[0][1] + lane[1][1]) + (lane[2][1] + lane[3][1]));
    else if (blocked != 0)
        sum = lane[0][0] + lane[0][1];
    for (std::size_t k = blocked; k < row.size(); ++k) sum += term(k);
    return sum;
}

template <class T>
T written(T y, T s, T alpha, T beta)
{
    return beta == T(0) ? alpha * s : y * beta + s * alpha;
}

// Scaled or cleared, before entries are added into it.
template <class T>
std::vector<T> scaled(std::vector<T> y, T beta)
{
    for (T& element : y) element = beta == T(0) ? T(0) : element * beta;
    return y;
}

template <class C>
class CsrOrder : public testing::Test {
protected:
    using T = typename C::T;
    using Int = typename C::Int;
    using Call = spblas::Calls<Format::csr, Int, T>;

    static constexpr const char* straight = is_complex<T> ? "ns" : "n";
    static constexpr const char* crossed = is_complex<T> ? "tc" : "t";
    static inline const T alpha = scalar<T>(0.7, -1.3), beta = scalar<T>(-0.6, 0.9);

    // Whole and as two slices that share y or, where the kernel scales all of it, add into it one after the other.
    static void expect_bits(Shape s, const Sparse<T>& a, const std::vector<T>& x, const std::vector<T>& y, T beta_now,
                            const std::vector<T>& want)
    {
        SCOPED_TRACE(name_of(Format::csr, Routine::mvout, s));
        const auto m = static_cast<std::int64_t>(y.size());
        for (std::size_t offset = 0; offset < (m < 1000 ? 4 : 1); ++offset) {
            Arrangement how{s};
            how.start = 5, how.gaps = offset % 2 != 0, how.offset = offset;
            how.side = offset < 2 ? Guard::end : Guard::begin;
            const auto kernel = test::kernel<Int>(Format::csr, Routine::mvout, s, a, how);
            ASSERT_TRUE(kernel->found());
            Guarded<T> x_now(x, how.side, offset * sizeof(Real<T>)), whole(y, how.side, offset * sizeof(Real<T>));
            Guarded<T> sliced(y);
            kernel->mvout(1, a.rows, m, a.columns, alpha, x_now.data(), whole.data(), beta_now);
            expect_same_bits<T>(whole, want, m);
            const std::int64_t cut = a.rows / 3;
            const T one(1);
            kernel->mvout(1, cut, m, a.columns, alpha, x_now.data(), sliced.data(), beta_now);
            kernel->mvout(cut + 1, a.rows, m, a.columns, alpha, x_now.data(), sliced.data(),
                          scatters(Format::csr, s) ? one : beta_now);
            if (!is_complex<T> || !scatters(Format::csr, s)) // (1, 0) * -0 is not -0 in both parts
                expect_same_bits<T>(sliced, want, m);
        }
    }

    static void expect_general_product(const Sparse<T>& a)
    {
        const auto x = spread_values<T>(a.columns, 3), y = spread_values<T>(a.rows, 4);
        for (const char* op = straight; *op != 0; ++op)
            for (const char base : {'0', '1'})
                for (const T& b : {T(0), beta}) {
                    if (a.rows > 1000 && b == T(0)) continue;
                    const Shape s{base, *op, 'g', '_', '_', base == '0' ? 'c' : 'f'};
                    const auto rows = rows_of(a, *op);
                    std::vector<T> want;
                    for (std::size_t i = 0; i < rows.size(); ++i)
                        want.push_back(written(y[i], dot(rows[i], x, base), alpha, b));
                    expect_bits(s, a, x, y, b, want);
                }
    }
};
TYPED_TEST_SUITE(CsrOrder, Cases, CaseNames);

// Lengths around the blocks, and runs of equal short rows.
Lengths various_lengths()
{
    Lengths lengths = {0, 1, 7, 8, 9, 15, 16, 17, 24, 25, 2, 3, 4, 5, 6, 32, 33, 0, 10, 11, 12, 13, 14, 40};
    for (const std::int64_t run : {4, 5, 6, 7, 3, 5})
        for (int i = 0; i < 4; ++i) lengths.push_back(run);
    return lengths;
}

TYPED_TEST(CsrOrder, GeneralProduct)
{
    this->expect_general_product(matrix_of<typename TypeParam::T>(various_lengths(), 40, 1));
}

// Ten megabytes of entries: more than a kernel takes for near.
TYPED_TEST(CsrOrder, GeneralProductFromMemory)
{
    using T = typename TypeParam::T;
    if (is_complex<T>) return;
    const auto entry = static_cast<std::int64_t>(sizeof(T) + sizeof(typename TypeParam::Int));
    Lengths lengths;
    for (std::int64_t entries = 0; entries * entry < 10 << 20; entries += lengths.back()) {
        const auto various = various_lengths();
        lengths.push_back(various[lengths.size() % various.size()]);
    }
    this->expect_general_product(matrix_of<T>(lengths, 1000, 2));
}

TYPED_TEST(CsrOrder, PlainProductOfThreeArrays)
{
    using T = typename TypeParam::T;
    using Int = typename TypeParam::Int;
    auto* gemvout = member<typename TestFixture::Call::GemvoutPar, Int, T>("csr1ng__f__gemvout_par");
    ASSERT_NE(gemvout, nullptr);
    const auto a = matrix_of<T>(various_lengths(), 40, 5);
    const Shape s{'1', 'n', 'g', '_', '_', 'f'};
    auto arrays = compressed(a, Arrangement{s, 1}, false);
    arrays.begin.push_back(arrays.end.back());
    const auto rows = rows_of(a, 'n');
    for (const std::int64_t start : {0, 1, 7})
        for (const Guard side : both_guards) {
            std::vector<Int> ia, indx(arrays.indx.begin(), arrays.indx.end());
            for (const std::int64_t position : arrays.begin) ia.push_back(static_cast<Int>(position - 1 + start));
            Guarded<T> val(arrays.val, side), x(spread_values<T>(a.columns, 6), side), y(a.rows, side);
            Guarded<Int> columns(indx, side), positions(ia, side);
            val.read_only(), x.read_only(), columns.read_only(), positions.read_only();
            const Int first = 3, last = static_cast<Int>(a.rows) - 2;
            gemvout(&first, &last, nullptr, nullptr, nullptr, val.data(), columns.data(), positions.data(), nullptr,
                    x.data(), y.data());
            EXPECT_TRUE(y.unchanged_except([&](std::int64_t i) { return first - 1 <= i && i < last; }));
            std::vector<T> want;
            for (Int i = first - 1; i < last; ++i) {
                const Row<T>& row = rows[static_cast<std::size_t>(i)];
                T sum{};
                for (std::size_t k = 0; k < row.size(); k += 4) {
                    T group{};
                    for (std::size_t p = k; p < std::min(k + 4, row.size()); ++p) {
                        const T product = row[p].value * x[row[p].column];
                        group = p == k ? product : group + product;
                    }
                    sum += group;
                }
                want.push_back(sum);
            }
            expect_same_bits<T>(y.data() + first - 1, want, last - first + 1);
        }
}

// Entry by entry, whichever loop the mean length of a row chooses.
TYPED_TEST(CsrOrder, TransposedProduct)
{
    using T = typename TypeParam::T;
    const std::vector<Lengths> structures = {{5, 6, 5, 7, 0, 6}, {6, 6, 6, 6}, {3, 9, 0, 12, 6}, {30, 30, 30},
                                             {31, 29, 30},       {29, 30, 30}, {40, 41, 42, 43}, {2, 3, 1, 0, 4}};
    for (const Lengths& lengths : structures)
        for (const char* op = this->crossed; *op != 0; ++op)
            for (const char base : {'0', '1'})
                for (const T& b : {T(0), this->beta})
                    for (const std::int64_t columns : {9, 13, 64}) { // few: the same column several times in a row
                        const auto a = matrix_of<T>(lengths, columns, 7);
                        const auto x = spread_values<T>(a.rows, 8), y = spread_values<T>(columns, 9);
                        const auto rows = rows_of(a, *op);
                        auto want = scaled(y, b);
                        for (std::size_t i = 0; i < rows.size(); ++i) {
                            const T t = this->alpha * x[i];
                            for (const auto& entry : rows[i])
                                want[static_cast<std::size_t>(entry.column)] += entry.value * t;
                        }
                        this->expect_bits({base, *op, 'g', '_', '_', base == '0' ? 'c' : 'f'}, a, x, y, b, want);
                    }
}

// What stands at the mirrored place.
template <class T>
T mirror(Shape s, T value)
{
    return s.type == 'h' ? conjugated(value) : value;
}

TYPED_TEST(CsrOrder, SymmetricAndHermitianProduct)
{
    using T = typename TypeParam::T;
    const T alpha = this->alpha;
    Lengths lengths = various_lengths();
    lengths.resize(40);
    auto a = matrix_of<T>(lengths, 40, 10);
    for (auto& entry : a.blocks) // a tenth of the entries on the diagonal
        if (entry.column % 10 == 0) entry.column = entry.row;
    const auto x = spread_values<T>(40, 11), y = spread_values<T>(40, 12);
    const auto rows = rows_of(a, 'n');
    for (const char type : {'s', 'h'})
        for (const char uplo : {'l', 'u'})
            for (const char diag : {'n', 'u'})
                for (const char base : {'0', '1'})
                    for (const T& b : {T(0), this->beta}) {
                        const Shape s{base, 'n', type, uplo, diag, base == '0' ? 'c' : 'f'};
                        if (!exists(Format::csr, Routine::mvout, s, is_complex<T>)) continue;
                        auto want = scaled(y, b);
                        for (std::size_t i = 0; i < rows.size(); ++i) {
                            T sum{};
                            if (diag == 'u') want[i] += alpha * dot(rows[i], x, base);
                            for (const auto& [column, value] : rows[i]) {
                                const auto j = static_cast<std::size_t>(column);
                                const bool used = uplo == 'l' ? j < i : j > i;
                                if (diag == 'u') {
                                    if (used)
                                        want[j] += mirror(s, value) * (alpha * x[i]);
                                    else
                                        sum += (alpha * value) * x[j];
                                } else if (used) {
                                    sum += value * x[j];
                                    want[j] += (x[i] * alpha) * mirror(s, value);
                                } else if (j == i) {
                                    sum += value * x[i];
                                }
                            }
                            want[i] = diag == 'u' ? (want[i] - sum) + alpha * x[i] : sum * alpha + want[i];
                        }
                        this->expect_bits(s, a, x, y, b, want);
                    }
}

// Real numbers: how complex ones are divided is not part of the order.
TYPED_TEST(CsrOrder, SolveByRows)
{
    using T = typename TypeParam::T;
    using Int = typename TypeParam::Int;
    if constexpr (!is_complex<T>) {
        for (const char diag : {'n', 'u'})
            for (const char base : {'0', '1'}) {
                const Shape s{base, 'n', 't', 'l', diag, base == '0' ? 'c' : 'f'};
                Random random(13);
                const auto a = random_sparse<T>({s, 60, 60, 1, true, false, false}, random);
                const auto kernel = test::kernel<Int>(Format::csr, Routine::svout, s, a, Arrangement{s, 5, true});
                ASSERT_TRUE(kernel->found());
                Guarded<T> y(spread_values<T>(60, 14));
                auto want = y.values();
                kernel->svout(60, y.data());
                const auto rows = rows_of(a, 'n');
                for (std::size_t i = 0; i < rows.size(); ++i) {
                    T sum{}, diagonal(1);
                    for (const auto& [column, value] : rows[i]) {
                        const auto j = static_cast<std::size_t>(column);
                        if (j < i) sum += value * want[j];
                        if (j == i && diag == 'n') diagonal = value;
                    }
                    want[i] = (want[i] - sum) / diagonal;
                }
                expect_same_bits<T>(y, want, 60);
            }
    }
}

// Of every right-hand side the 1-based order of a product with a vector, also where the rows are taken in blocks.
TYPED_TEST(CsrOrder, GeneralProductWithManyRightHandSides)
{
    using T = typename TypeParam::T;
    using Int = typename TypeParam::Int;
    Lengths blocked(2000);
    for (std::size_t i = 0; i < blocked.size(); ++i) blocked[i] = static_cast<std::int64_t>(i % 7);
    for (const Lengths& lengths : {various_lengths(), blocked})
        for (const char* op = this->straight; *op != 0; ++op)
            for (const char layout : {'c', 'f'})
                for (const char base : {'0', '1'}) {
                    const Shape s{base, *op, 'g', '_', '_', layout};
                    SCOPED_TRACE(name_of(Format::csr, Routine::mmout, s));
                    const auto a = matrix_of<T>(lengths, lengths.size() == 2000 ? 2000 : 40, 15);
                    const auto kernel = test::kernel<Int>(Format::csr, Routine::mmout, s, a, Arrangement{s, 5});
                    ASSERT_TRUE(kernel->found());
                    const std::int64_t rhs = 7;
                    const auto b = spread_values<T>(a.columns * rhs, 16), c = spread_values<T>(a.rows * rhs, 17);
                    const auto rows = rows_of(a, *op);
                    for (const T& beta : {T(0), this->beta}) {
                        auto got = c;
                        kernel->mmout(1, rhs, a.rows, a.columns, this->alpha, b.data(), layout == 'c' ? rhs : a.columns,
                                      got.data(), layout == 'c' ? rhs : a.rows, beta);
                        const auto at = [&](std::int64_t rows_of_it, std::int64_t r, std::int64_t j) {
                            return static_cast<std::size_t>(layout == 'c' ? r * rhs + j : j * rows_of_it + r);
                        };
                        auto want = c;
                        for (std::int64_t j = 0; j < rhs; ++j) {
                            std::vector<T> x;
                            for (std::int64_t r = 0; r < a.columns; ++r) x.push_back(b[at(a.columns, r, j)]);
                            for (std::int64_t i = 0; i < a.rows; ++i) {
                                T& element = want[at(a.rows, i, j)];
                                element =
                                    written(element, dot(rows[static_cast<std::size_t>(i)], x, '1'), this->alpha, beta);
                            }
                        }
                        expect_same_bits<T>(got, want, static_cast<std::int64_t>(want.size()));
                    }
                }
}

// Blocks of rows by the cost model: values worked out by hand, with both of its conditions at their edges.
TEST(CsrBlocks, FollowTheCostModel)
{
    using spblas::row_blocks, spblas::RowBlocks;
    EXPECT_EQ(row_blocks(2000, 2000, 6000, 5), (RowBlocks{106, 18}));  // 1.7e7 / (36 + 40000) / 4 = 106.2
    EXPECT_EQ(row_blocks(2000, 2000, 20000, 3), (RowBlocks{105, 19})); // 20 * 3 / (12 * 10) = 0.5
    EXPECT_EQ(row_blocks(2000, 2000, 22000, 3).count, 1);              // 0.4545
    EXPECT_EQ(row_blocks(1000, 1410, 4000, 9), (RowBlocks{150, 6}));   // (80 + 16920) * 1000 = 1.7e7
    EXPECT_EQ(row_blocks(999, 1410, 3996, 9).count, 1);
    EXPECT_EQ(row_blocks(3, 5000000, 3, 1), (RowBlocks{1, 3})); // a block has at least a row
    EXPECT_EQ(row_blocks(0, 5, 0, 1).count, 1);
    EXPECT_EQ(row_blocks(5, 0, 0, 1).count, 1);
}

} // namespace
} // namespace ork::test

// SPDX-License-Identifier: MIT
// The members of csr outside the grammar: sparse times sparse into a dense matrix, and the symmetric product of three
// arrays. Values are small integers, so every sum is exact.
#include "spblas/member.h"
#include "spblas/sparse.h"
#include "support/guarded.h"

namespace ork::test {
namespace {

template <class T>
T small(Random& random)
{
    const auto re = random.integer(-4, 4);
    return scalar<T>(static_cast<double>(re), static_cast<double>(random.integer(-4, 4)));
}

// Three arrays, 1-based, unsorted, with places that are stored twice and rows without entries; positions from `start`.
template <class T, class Int>
struct ThreeArrays {
    std::int64_t rows, columns;
    std::vector<T> dense; // row by row
    Guarded<T> val;
    Guarded<Int> indx, ia;

    ThreeArrays(std::int64_t rows, std::int64_t columns, Int start, Random& random)
        : ThreeArrays(rows, columns, start, lists(rows, columns, random))
    {
    }
    T operator()(std::int64_t i, std::int64_t j) const { return dense[static_cast<std::size_t>(i * columns + j)]; }

private:
    using Entries = std::vector<std::vector<std::pair<Int, T>>>;

    static Entries lists(std::int64_t rows, std::int64_t columns, Random& random)
    {
        Entries entries(static_cast<std::size_t>(rows));
        for (auto& row : entries)
            for (std::int64_t k = random.integer(0, 5); k > 0; --k)
                row.push_back({static_cast<Int>(random.integer(1, columns)), small<T>(random)});
        return entries;
    }
    ThreeArrays(std::int64_t rows, std::int64_t columns, Int start, const Entries& entries)
        : rows(rows), columns(columns), dense(static_cast<std::size_t>(rows * columns)), val(count(entries)),
          indx(count(entries)), ia(rows + 1)
    {
        std::int64_t k = 0;
        ia[0] = start;
        for (std::int64_t i = 0; i < rows; ++i) {
            for (const auto& [column, value] : entries[static_cast<std::size_t>(i)]) {
                indx[k] = column, val[k++] = value;
                dense[static_cast<std::size_t>(i * columns + column - 1)] += value;
            }
            ia[i + 1] = static_cast<Int>(start + k);
        }
        val.read_only(), indx.read_only(), ia.read_only();
    }
    static std::int64_t count(const Entries& entries)
    {
        std::size_t sum = 0;
        for (const auto& row : entries) sum += row.size();
        return static_cast<std::int64_t>(sum);
    }
};

template <class C>
class CsrMultd : public testing::Test {
protected:
    using T = typename C::T;
    using Int = typename C::Int;
    using Call = spblas::Calls<Format::csr, Int, T>;
    static constexpr std::pair<Int, Int> ranges[] = {{1, 6}, {2, 4}, {6, 6}, {4, 3}};
};
TYPED_TEST_SUITE(CsrMultd, Cases, CaseNames);

// The rows of the range of C are all that is written, NaN in them before.
TYPED_TEST(CsrMultd, RowsOfTheProduct)
{
    using T = typename TypeParam::T;
    using Int = typename TypeParam::Int;
    auto* call = member<typename TestFixture::Call::Multd, Int, T>("csrmultd_ker");
    ASSERT_NE(call, nullptr);
    Random random(31);
    const Int k = 5;
    for (const auto& [first, last] : TestFixture::ranges)
        for (const Int ldc : {6, 9}) {
            const ThreeArrays<T, Int> a(6, 7, 1, random), b(7, k, 4, random);
            Guarded<T> c(ldc * (k - 1) + 6);
            call(&first, &last, &k, a.val.data(), a.indx.data(), a.ia.data(), b.val.data(), b.indx.data(), b.ia.data(),
                 c.data(), &ldc);
            for (Int i = first - 1; i < last; ++i)
                for (Int j = 0; j < k; ++j) {
                    T want{};
                    for (Int l = 0; l < 7; ++l) want += a(i, l) * b(l, j);
                    EXPECT_EQ(c[i + j * ldc], want) << i << ", " << j;
                }
            EXPECT_TRUE(c.unchanged_except([&](std::int64_t at) { return first - 1 <= at % ldc && at % ldc < last; }));
        }
}

// A call clears all of C, and what calls for parts of the rows leave adds up to the product.
TYPED_TEST(CsrMultd, PartsOfTheTransposedProduct)
{
    using T = typename TypeParam::T;
    using Int = typename TypeParam::Int;
    auto* call = member<typename TestFixture::Call::MultdTransposed, Int, T>("csrmultd_ker_t");
    ASSERT_NE(call, nullptr);
    Random random(32);
    const Int m = 7, k = 5;
    for (const auto& [first, last] : TestFixture::ranges)
        for (const Int ldc : {7, 9}) {
            const ThreeArrays<T, Int> a(6, m, 1, random), b(6, k, 2, random);
            Guarded<T> c(ldc * (k - 1) + m);
            call(&first, &last, &m, &k, a.val.data(), a.indx.data(), a.ia.data(), b.val.data(), b.indx.data(),
                 b.ia.data(), c.data(), &ldc);
            for (Int i = 0; i < m; ++i)
                for (Int j = 0; j < k; ++j) {
                    T want{};
                    for (Int l = first - 1; l < last; ++l) want += a(l, i) * b(l, j);
                    EXPECT_EQ(c[i + j * ldc], want) << i << ", " << j;
                }
            EXPECT_TRUE(c.unchanged_except([&](std::int64_t at) { return at % ldc < m; }));
        }
}

// Only the triangle that is named counts, y is overwritten, and a matrix of order 0 touches nothing.
TYPED_TEST(CsrMultd, SymmetricProduct)
{
    using T = typename TypeParam::T;
    using Int = typename TypeParam::Int;
    if constexpr (std::is_same_v<T, double>) {
        auto* call = member<typename TestFixture::Call::Symmvs, Int, T>("csrsymmvs");
        ASSERT_NE(call, nullptr);
        Random random(33);
        for (const Int m : {0, 1, 2, 30})
            for (const char uplo : {'L', 'l', 'U', 'u'}) {
                const ThreeArrays<T, Int> a(m, std::max<Int>(m, 1), 3, random);
                Guarded<T> x(m), y(m);
                for (Int i = 0; i < m; ++i) x[i] = small<T>(random);
                call(&uplo, &m, a.val.data(), a.indx.data(), a.ia.data(), x.data(), y.data());
                for (Int i = 0; i < m; ++i) {
                    T want{};
                    for (Int j = 0; j < m; ++j) {
                        const bool stored_below = uplo == 'L' || uplo == 'l';
                        want += (stored_below == (j <= i) || i == j ? a(i, j) : a(j, i)) * x[j];
                    }
                    EXPECT_EQ(y[i], want) << m << uplo << i;
                }
                EXPECT_TRUE(y.unchanged_outside());
            }
    }
}

} // namespace
} // namespace ork::test

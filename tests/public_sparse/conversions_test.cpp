// SPDX-License-Identifier: MIT
// What comes back from a handle is what went in: conversions of every format to every other under every operation,
// copies, sorted rows, new values. With empty rows, gaps between rows, columns in any order and more than once.
#include "stored.h"

namespace ork::test {
namespace {

template <class Element, class Integer>
struct Variant {
    using T = Element;
    using Int = Integer;
};
template <class V>
class SparseHandles : public testing::Test {
};
using Variants =
    testing::Types<Variant<float, std::int32_t>, Variant<double, std::int32_t>, Variant<cfloat, std::int32_t>,
                   Variant<cdouble, std::int32_t>, Variant<float, std::int64_t>, Variant<double, std::int64_t>,
                   Variant<cfloat, std::int64_t>, Variant<cdouble, std::int64_t>>;
TYPED_TEST_SUITE(SparseHandles, Variants);

// Lines whose indices ascend and, of coo, places.
template <class Int, class T>
bool is_sorted(const Stored<Int, T>& s)
{
    if (s.form.format == Format::coo) {
        for (std::size_t k = 1; k < s.first.size(); ++k)
            if (std::pair(s.first[k - 1], s.index[k - 1]) > std::pair(s.first[k], s.index[k])) return false;
        return true;
    }
    for (std::size_t i = 0; i < s.first.size(); ++i)
        if (!std::is_sorted(s.index.begin() + (s.first[i] - s.form.base), s.index.begin() + (s.last[i] - s.form.base)))
            return false;
    return true;
}

// Filled up with zeros to whole blocks.
template <class T>
Dense<T> filled(const Dense<T>& a, Index block)
{
    Dense<T> result((a.rows + block - 1) / block * block, (a.cols + block - 1) / block * block);
    for (Index i = 0; i < a.rows; ++i)
        for (Index j = 0; j < a.cols; ++j) result.at(i, j) = a.at(i, j);
    return result;
}

TYPED_TEST(SparseHandles, ConvertToWhatTheyWere)
{
    using Int = typename TypeParam::Int;
    using T = typename TypeParam::T;
    for (std::uint64_t seed = 1; seed <= 60; ++seed) {
        SCOPED_TRACE(seed);
        Random random(seed);
        const Stored<Int, T> stored(random_form(random, 12, false), random);
        const Handle a(stored);
        const Dense<T> dense = stored.dense();
        for (const int op : operations) {
            SCOPED_TRACE(op);
            const auto operation = static_cast<ork_spblas_operation>(op);
            for (const bool by_columns : {false, true}) {
                Handle c;
                ASSERT_EQ((by_columns ? ork_sparse_convert_csc : ork_sparse_convert_csr)(a, operation, c.result()), 0);
                const auto back = exported<Int, T>(c, by_columns ? Format::csc : Format::csr);
                EXPECT_EQ(back.dense(), dense.operated(op));
                EXPECT_EQ(back.form.base, stored.form.base);
                EXPECT_EQ(back.entries, stored.entries * stored.form.block * stored.form.block);
                const bool same = stored.form.format == (by_columns != is_transposed(op) ? Format::csc : Format::csr);
                EXPECT_TRUE(same || is_sorted(back));
            }
            const Index block = random.integer(1, 5);
            const auto layout = static_cast<ork_spblas_layout>(random.integer(101, 102));
            Handle c;
            ASSERT_EQ(ork_sparse_convert_bsr(a, block, layout, operation, c.result()), 0);
            const auto back = exported<Int, T>(c, Format::bsr);
            EXPECT_EQ(back.dense(), filled(dense.operated(op), block));
            EXPECT_EQ(back.form.layout, static_cast<int>(layout));
            EXPECT_TRUE(is_sorted(back));
            if (testing::Test::HasFailure()) return;
        }
    }
}

TYPED_TEST(SparseHandles, CopyAndSortAndChange)
{
    using Int = typename TypeParam::Int;
    using T = typename TypeParam::T;
    for (std::uint64_t seed = 1; seed <= 60; ++seed) {
        SCOPED_TRACE(seed);
        Random random(seed);
        const Stored<Int, T> stored(random_form(random, 12, false), random);
        const Handle a(stored);
        Dense<T> dense = stored.dense();
        Handle c;
        ASSERT_EQ(ork_sparse_copy(a, c.result()), 0);
        EXPECT_EQ((exported<Int, T>(c, stored.form.format).dense()), dense);
        ASSERT_EQ(ork_sparse_order(c), 0);
        auto back = exported<Int, T>(c, stored.form.format);
        EXPECT_EQ(back.dense(), dense);
        EXPECT_TRUE(is_sorted(back));
        EXPECT_EQ(back.index.size(), static_cast<std::size_t>(stored.entries)) << "a copy has no gaps";
        ASSERT_EQ(ork_sparse_order(a), 0); // in the caller's arrays
        EXPECT_TRUE(is_sorted(exported<Int, T>(a, stored.form.format)));
        EXPECT_EQ((exported<Int, T>(a, stored.form.format).dense()), dense);

        // All values at once.
        back.values = small_integers<T>(random, static_cast<Index>(back.values.size()));
        const auto count = static_cast<Int>(back.values.size());
        for (ork_sparse_matrix_t handle : {ork_sparse_matrix_t(a), ork_sparse_matrix_t(c)}) {
            ASSERT_EQ((call_sized<Int, T>("update_values", handle, count, static_cast<const Int*>(nullptr),
                                          static_cast<const Int*>(nullptr), back.values.data())),
                      0);
            EXPECT_EQ((exported<Int, T>(handle, stored.form.format).dense()), back.dense());
        }
        // Single ones, each the first that is stored at its place.
        dense = back.dense();
        std::vector<Int> rows, columns;
        std::vector<T> values;
        std::vector<std::pair<Index, Index>> seen;
        back.for_each([&](Index i, Index j, T old) {
            if (std::find(seen.begin(), seen.end(), std::pair(i, j)) != seen.end()) return;
            seen.emplace_back(i, j);
            if (random.integer(0, 1) == 0) return;
            rows.push_back(static_cast<Int>(i + stored.form.base));
            columns.push_back(static_cast<Int>(j + stored.form.base));
            values.push_back(small_integer<T>(random));
            dense.at(i, j) += values.back() - old;
        });
        ASSERT_EQ((call_sized<Int, T>("update_values", ork_sparse_matrix_t(c), static_cast<Int>(rows.size()),
                                      rows.data(), columns.data(), values.data())),
                  0);
        for (std::size_t k = 0; k < rows.size(); ++k)
            ASSERT_EQ(call<T>("set_value", ork_sparse_matrix_t(a), Index{rows[k]}, Index{columns[k]},
                              scalar_argument(values[k])),
                      0);
        EXPECT_EQ((exported<Int, T>(a, stored.form.format).dense()), dense);
        EXPECT_EQ((exported<Int, T>(c, stored.form.format).dense()), dense);
        if (testing::Test::HasFailure()) return;
    }
}

// Whole rows in descending order, longer than any run that is sorted in one piece, and equal places in their order.
TEST(SparseOrder, IsStable)
{
    constexpr int length = 1000;
    std::vector<std::int32_t> first = {0, length}, index(length);
    std::vector<double> values(length);
    for (int k = 0; k < length; ++k) index[k] = (length - 1 - k) / 3, values[k] = k;
    Handle a;
    ASSERT_EQ(ork_sparse_d_create_csr_i4(a.result(), ORK_SPBLAS_BASE_0, 1, length, first.data(), first.data() + 1,
                                         index.data(), values.data()),
              0);
    ASSERT_EQ(ork_sparse_order(a), 0);
    for (int k = 1; k < length; ++k) {
        ASSERT_LE(index[k - 1], index[k]);
        ASSERT_TRUE(index[k - 1] < index[k] || values[k - 1] < values[k]) << k;
        ASSERT_EQ(index[k], (length - 1 - static_cast<int>(values[k])) / 3);
    }
}

} // namespace
} // namespace ork::test

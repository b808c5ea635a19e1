// SPDX-License-Identifier: MIT
// Sparse products, squares and triple products: patterns and values against plain loops in the stated order.
#include "sparse/product_case.h"

namespace ork::test {
namespace {

template <class C>
class SparseProducts : public testing::Test {
};
TYPED_TEST_SUITE(SparseProducts, Cases, CaseNames);

// Scratch as kernels want it: zero before and after.
struct Work {
    Guarded<std::uint64_t> words;
    explicit Work(Index bytes) : words(std::vector<std::uint64_t>(static_cast<std::size_t>((bytes + 15) / 16 * 2))) {}
    void* data() { return words.data(); }
    void expect_clean() { EXPECT_TRUE(words.unchanged()); }
};

// The arrays of C, exactly as large as they must be.
template <class Int, class T>
struct Target {
    const Dense<T>& want;
    Index base, layout;
    std::vector<Int> pointers;
    Guarded<Int> cols;
    Guarded<T> vals;

    Target(const Dense<T>& want, Index base, Index layout)
        : want(want), base(base), layout(layout), cols(count(want)), vals(count(want) * want.block * want.block)
    {
        pointers.push_back(static_cast<Int>(base));
        for (Index i = 0; i < want.rows; ++i) pointers.push_back(static_cast<Int>(pointers.back() + row_count(i)));
    }
    static Index count(const Dense<T>& d) { return std::count(d.place.begin(), d.place.end(), true); }
    Index row_count(Index i) const
    {
        const auto row = want.place.begin() + i * want.cols;
        return std::count(row, row + want.cols, true);
    }
    sparse::Result<Int, T> view()
    {
        return {vals.data(), cols.data(), pointers.data(), pointers.data() + 1, static_cast<Int>(base)};
    }
    // Columns in another order.
    void turn_rows()
    {
        for (Index i = 0; i < want.rows; ++i)
            std::reverse(cols.data() + (pointers[i] - base), cols.data() + (pointers[i + 1] - base));
    }
    void clear_values() { std::memset(static_cast<void*>(vals.data()), 0xff, vals.size() * sizeof(T)); }

    void expect(bool values, bool ascending = true)
    {
        const Index n = want.block;
        for (Index i = 0; i < want.rows; ++i) {
            Index previous = -1;
            for (Index k = pointers[i] - base; k < pointers[i + 1] - base; ++k) {
                const Index j = cols[k] - base;
                ASSERT_TRUE(0 <= j && j < want.cols && want.place[i * want.cols + j]) << "row " << i << " column " << j;
                if (ascending) {
                    ASSERT_LT(previous, j);
                }
                previous = j;
                for (Index r = 0; values && r < n; ++r)
                    for (Index c = 0; c < n; ++c) {
                        const T got = vals[(k * n + (layout == 0 ? r : c)) * n + (layout == 0 ? c : r)];
                        ASSERT_TRUE(same_bits(got, want(i * n + r, j * n + c)))
                            << "row " << i << " column " << j << " element " << r << ' ' << c;
                    }
            }
        }
        EXPECT_TRUE(cols.unchanged_outside());
        EXPECT_TRUE(vals.unchanged_outside());
    }
};

// All stems of a product in two shares. Each is a callable of first, last and what is its own; a null one is left out.
template <class Int, class T, class Struct, class Pattern, class Row, class Values>
void expect_stems(const Dense<T>& want, Index layout, Index work_bytes, Struct count, Pattern pattern, Row row,
                  Values values)
{
    constexpr bool has_count = !std::is_null_pointer_v<Struct>, has_pattern = !std::is_null_pointer_v<Pattern>,
                   has_values = !std::is_null_pointer_v<Values>;
    const Int rows = static_cast<Int>(want.rows), middle = static_cast<Int>(rows / 3);
    Work work(work_bytes);
    Target<Int, T> c(want, 1, layout);
    const auto view = c.view();
    const auto shares = [&](auto body) {
        body(Int{0}, middle), body(middle, middle), body(middle, rows);
        work.expect_clean();
    };
    Guarded<Int> counts(want.rows);
    const auto expect_counts = [&] {
        for (Index i = 0; i < want.rows; ++i) ASSERT_EQ(counts[i], c.row_count(i)) << "row " << i;
    };
    if constexpr (has_count) {
        shares([&](Int first, Int last) { count(first, last, counts.data() + first, work.data()); });
        expect_counts();
    }
    if constexpr (has_pattern) {
        shares([&](Int first, Int last) { pattern(first, last, &view, work.data()); });
        c.expect(false);
    }
    c.clear_values();
    shares([&](Int first, Int last) { row(first, last, &view, nullptr, work.data()); });
    c.expect(true);
    std::memset(counts.data(), 0xff, counts.size() * sizeof(Int));
    shares([&](Int first, Int last) { row(first, last, &view, counts.data() + first, work.data()); });
    expect_counts();
    if constexpr (has_values) {
        c.clear_values();
        c.turn_rows();
        shares([&](Int first, Int last) { values(first, last, &view, work.data()); });
        c.expect(true, false);
    }
}

// Marks are words of 64 columns with a word above each 64 of them, read at once in rows that are full and by the upper
// ones in rows that are not.
TYPED_TEST(SparseProducts, RowsOfNumbers)
{
    using Int = typename TypeParam::Int;
    using T = typename TypeParam::T;
    for (const Index columns : {1, 63, 64, 65, 200, 4096, 9000})
        for (const Index most : {3, 40}) {
            SCOPED_TRACE(std::to_string(columns) + " columns, rows to " + std::to_string(most));
            const auto a = Stored<Int, T>::random(11, 30, 6, columns), b = Stored<Int, T>::random(30, columns, most, 7);
            const auto va = a.view(), vb = b.view();
            const Int n = static_cast<Int>(columns);
            expect_stems<Int>(
                product(a, b), 0, sparse::product_work<Int, T>(columns),
                [&](Int f, Int l, auto... more) {
                    KERNEL(csr__g_n_spmm_notr_row_struct)
                    (f, l, n, &va, &vb, more...);
                },
                [&](Int f, Int l, auto... more) {
                    KERNEL(csr__g_n_spmm_notr_row_pattern)
                    (f, l, n, &va, &vb, more...);
                },
                [&](Int f, Int l, auto... more) {
                    KERNEL(csr__g_n_spmm_notr_row)
                    (f, l, n, &va, &vb, more...);
                },
                [&](Int f, Int l, auto... more) {
                    KERNEL(csr__g_n_spmm_notr_row_values)
                    (f, l, n, &va, &vb, more...);
                });
        }
}

TYPED_TEST(SparseProducts, RowsOfBlocks)
{
    using Int = typename TypeParam::Int;
    using T = typename TypeParam::T;
    using Row = typename sparse::Calls<Int, T>::bsr__g_n_spmm_notr_row_rrr;
    using Values = typename sparse::Calls<Int, T>::bsr__g_n_spmm_notr_row_rrr_values;
    Row* const rows[] = {KERNEL(bsr__g_n_spmm_notr_row_rrr), KERNEL(bsr__g_n_spmm_notr_row_rcr),
                         KERNEL(bsr__g_n_spmm_notr_row_crr), KERNEL(bsr__g_n_spmm_notr_row_ccc)};
    Values* const values[] = {KERNEL(bsr__g_n_spmm_notr_row_rrr_values), KERNEL(bsr__g_n_spmm_notr_row_rcr_values),
                              KERNEL(bsr__g_n_spmm_notr_row_crr_values), KERNEL(bsr__g_n_spmm_notr_row_ccc_values)};
    for (const Index block : {1, 2, 3, 4, 5, 9, 17})
        for (int l = 0; l < 4; ++l) {
            SCOPED_TRACE("block " + std::to_string(block) + ", layouts " + std::to_string(l));
            const auto a = Stored<Int, T>::random(5, 6, 4, 1 + l, block, l / 2);
            const auto b = Stored<Int, T>::random(6, 70, 3, 5, block, l % 2);
            const auto va = a.view(), vb = b.view();
            const Int size = static_cast<Int>(block);
            expect_stems<Int>(
                product(a, b), l == 3, sparse::product_work<Int, T>(70), nullptr, nullptr,
                [&](Int f, Int e, auto... more) { rows[l](f, e, 70, size, &va, &vb, more...); },
                [&](Int f, Int e, auto... more) { values[l](f, e, 70, size, &va, &vb, more...); });
        }
}

TYPED_TEST(SparseProducts, UpperTrianglesOfSquares)
{
    using Int = typename TypeParam::Int;
    using T = typename TypeParam::T;
    for (const Index order : {1, 40, 130}) {
        SCOPED_TRACE("order " + std::to_string(order));
        const auto a = Stored<Int, T>::random(order, 25, 4, 3), ah = a.hermitian();
        const auto va = a.view(), vh = ah.view();
        const Int n = static_cast<Int>(order);
        expect_stems<Int>(
            upper(product(a, ah)), 0, sparse::product_work<Int, T>(order),
            [&](Int f, Int l, auto... more) {
                KERNEL(csr__g_n_syrk_notr_struct)
                (f, l, n, &va, &vh, more...);
            },
            nullptr,
            [&](Int f, Int l, auto... more) {
                KERNEL(csr__g_n_syrk_notr_row)
                (f, l, n, &va, &vh, more...);
            },
            nullptr);
    }
    for (const Index layout : {0, 1}) {
        const auto a = Stored<Int, T>::random(9, 5, 3, 3, 3, layout), ah = a.hermitian();
        const auto va = a.view(), vh = ah.view();
        auto* const kernel = layout == 0 ? KERNEL(bsr__g_n_syrk_notr_rr) : KERNEL(bsr__g_n_syrk_notr_cc);
        expect_stems<Int>(
            upper(product(a, ah)), layout, sparse::product_work<Int, T>(9), nullptr, nullptr,
            [&](Int f, Int l, auto... more) { kernel(f, l, 9, 3, &va, &vh, more...); }, nullptr);
    }
}

TYPED_TEST(SparseProducts, UpperTrianglesOfTripleProducts)
{
    using Int = typename TypeParam::Int;
    using T = typename TypeParam::T;
    for (const Index order : {1, 12, 70}) {
        SCOPED_TRACE("order " + std::to_string(order));
        const auto a = Stored<Int, T>::random(order, 90, 4, 3), b = Stored<Int, T>::random(90, 90, 5, 4);
        const auto ab = Stored<Int, T>::compressed(product(a, b), 0), ah = a.hermitian();
        const auto va = a.view(), vb = b.view(), vh = ah.view();
        const Int n = static_cast<Int>(order);
        expect_stems<Int>(
            upper(product(ab, ah)), 0, sparse::triple_work<Int, T>(order, 90, 1),
            [&](Int f, Int l, auto... m) {
                KERNEL(csr__g_n_sypr_notr_row_struct)
                (f, l, n, 90, &va, &vb, &vh, m...);
            },
            [&](Int f, Int l, auto... m) {
                KERNEL(csr__g_n_sypr_notr_row_pattern)
                (f, l, n, 90, &va, &vb, &vh, m...);
            },
            [&](Int f, Int l, auto... m) {
                KERNEL(csr__g_n_sypr_notr_row)
                (f, l, n, 90, &va, &vb, &vh, m...);
            },
            [&](Int f, Int l, auto... m) {
                KERNEL(csr__g_n_sypr_notr_row_values)
                (f, l, n, 90, &va, &vb, &vh, m...);
            });
    }
    using Row = typename sparse::Calls<Int, T>::bsr__g_n_sypr_notr_rr;
    using Values = typename sparse::Calls<Int, T>::bsr__g_n_sypr_notr_rr_values;
    Row* const rows[] = {KERNEL(bsr__g_n_sypr_notr_rr), KERNEL(bsr__g_n_sypr_notr_rc), KERNEL(bsr__g_n_sypr_notr_cr),
                         KERNEL(bsr__g_n_sypr_notr_cc)};
    Values* const values[] = {KERNEL(bsr__g_n_sypr_notr_rr_values), KERNEL(bsr__g_n_sypr_notr_rc_values),
                              KERNEL(bsr__g_n_sypr_notr_cr_values), KERNEL(bsr__g_n_sypr_notr_cc_values)};
    for (int l = 0; l < 4; ++l) {
        const auto a = Stored<Int, T>::random(7, 5, 3, 3, 3, l / 2), b = Stored<Int, T>::random(5, 5, 3, 6, 3, l % 2);
        const auto ab = Stored<Int, T>::compressed(product(a, b), l / 2), ah = a.hermitian();
        const auto va = a.view(), vb = b.view(), vh = ah.view();
        expect_stems<Int>(
            upper(product(ab, ah)), l / 2, sparse::triple_work<Int, T>(7, 5, 3), nullptr, nullptr,
            [&](Int f, Int e, auto... more) { rows[l](f, e, 7, 5, 3, &va, &vb, &vh, more...); },
            [&](Int f, Int e, auto... more) { values[l](f, e, 7, 5, 3, &va, &vb, &vh, more...); });
    }
}

// A dense result with its leading dimension one larger than need be, in two shares. run(first, last, c, ldc, alpha,
// beta)
template <class Int, class T, class Run>
void expect_dense(const Dense<T>& start, const Dense<T>& want, Index layout, bool triangle, T beta, Run run)
{
    const Index rows = want.rows * want.block, cols = want.cols * want.block, ld = (layout == 0 ? cols : rows) + 1;
    Guarded<T> c((layout == 0 ? rows : cols) * ld);
    const auto at = [&](Index i, Index j) -> T& { return layout == 0 ? c[i * ld + j] : c[j * ld + i]; };
    for (Index i = 0; i < rows; ++i)
        for (Index j = 0; j < cols; ++j) at(i, j) = beta == T(0) ? some<T>(NAN, NAN) : start(i, j);
    const std::vector<T> before = c.values();
    const Int middle = static_cast<Int>(want.rows / 2);
    run(Int{0}, middle, c.data(), static_cast<Int>(ld));
    run(middle, static_cast<Int>(want.rows), c.data(), static_cast<Int>(ld));
    for (Index i = 0; i < rows; ++i)
        for (Index j = 0; j < cols; ++j) {
            const T expected = triangle && j < i ? before[layout == 0 ? i * ld + j : j * ld + i] : want(i, j);
            ASSERT_TRUE(same_bits(at(i, j), expected)) << i << ' ' << j << " layout " << layout;
        }
    EXPECT_TRUE(c.unchanged_outside());
}

TYPED_TEST(SparseProducts, DenseResults)
{
    using Int = typename TypeParam::Int;
    using T = typename TypeParam::T;
    const Index rows = 9, inner = 7, cols = 12;
    const auto a = Stored<Int, T>::random(rows, inner, 4, 1), b = Stored<Int, T>::random(inner, cols, 5, 2),
               ah = a.hermitian();
    const auto va = a.view(), vb = b.view(), vh = ah.view();
    const auto random_dense = [](Index m, Index n, Index block) {
        Dense<T> d(m, n, block);
        d.value = spread_values<T>(m * n * block * block, 5);
        return d;
    };
    const auto scaled = [](Dense<T> d, T beta) {
        for (T& v : d.value) v = beta == T(0) ? T(0) : beta == T(1) ? v : plain_product(beta, v);
        return d;
    };
    for (const Index layout : {0, 1})
        for (const T beta : {T(0), T(1), some<T>(-0.7f, 0.4f)})
            for (const T alpha : {T(1), some<T>(1.3f, -0.6f)}) {
                const bool plain = alpha == T(1) && beta == T(0);
                const auto start = random_dense(rows, cols, 1);
                auto want = scaled(start, beta);
                accumulate(a, b, want, alpha);
#define IN_LAYOUT(stem) (layout == 0 ? KERNEL(stem##_c_ker) : KERNEL(stem##_f_ker))
                expect_dense<Int>(start, want, layout, false, beta, [&](Int f, Int l, T* c, Int ld) {
                    IN_LAYOUT(csr_ng_n_spmmd_alf)(f, l, cols, alpha, &va, &vb, beta, c, ld);
                });
                if (plain)
                    expect_dense<Int>(start, want, layout, false, beta, [&](Int f, Int l, T* c, Int ld) {
                        IN_LAYOUT(csr_ng_n_spmmd)(f, l, cols, &va, &vb, c, ld);
                    });

                const auto square = random_dense(rows, rows, 1);
                want = scaled(square, beta);
                accumulate(a, ah, want, alpha);
                expect_dense<Int>(square, want, layout, true, beta, [&](Int f, Int l, T* c, Int ld) {
                    IN_LAYOUT(csr__g_n_syrkd_alf)(f, l, rows, alpha, &va, &vh, beta, c, ld);
                });
                if (plain)
                    expect_dense<Int>(square, want, layout, true, beta, [&](Int f, Int l, T* c, Int ld) {
                        IN_LAYOUT(csr__g_n_syrkd)(f, l, rows, &va, &vh, c, ld);
                    });

                // A^H A, row by row of A.
                const auto other = random_dense(inner, inner, 1);
                want = scaled(other, beta);
                for (Index i = 0; i < rows; ++i)
                    for (Index k = a.begin(i); k < a.end(i); ++k)
                        for (Index l = a.begin(i); l < a.end(i); ++l) {
                            const T left = conjugated(a.vals[k]);
                            T& element = want(a.column(k), a.column(l));
                            element =
                                element + plain_product(alpha == T(1) ? left : plain_product(alpha, left), a.vals[l]);
                        }
                expect_dense<Int>(other, want, layout, true, beta, [&](Int f, Int l, T* c, Int ld) {
                    IN_LAYOUT(csr__g_t_syrkd_alf)(f, l, inner, rows, alpha, &va, beta, c, ld);
                });
                if (plain)
                    expect_dense<Int>(other, want, layout, true, beta, [&](Int f, Int l, T* c, Int ld) {
                        IN_LAYOUT(csr__g_t_syrkd)(f, l, inner, rows, &va, c, ld);
                    });

                // A B A^H with a dense B, of which nothing below the diagonal counts.
                const auto whole = random_dense(inner, inner, 1);
                want = scaled(square, beta);
                for (Index i = 0; i < rows; ++i) {
                    std::vector<T> ab(inner);
                    for (Index k = a.begin(i); k < a.end(i); ++k)
                        for (Index j = 0; j < inner; ++j) {
                            const Index p = a.column(k);
                            ab[j] = ab[j] + plain_product(a.vals[k], j < p ? conjugated(whole(j, p)) : whole(p, j));
                        }
                    for (Index j = 0; j < rows; ++j) {
                        T sum{};
                        for (Index k = a.begin(j); k < a.end(j); ++k)
                            sum = sum + plain_product(ab[a.column(k)], conjugated(a.vals[k]));
                        want(i, j) = want(i, j) + (alpha == T(1) ? sum : plain_product(alpha, sum));
                    }
                }
                for (const bool by_columns : {false, true}) {
                    Guarded<T> b_values(inner * inner), row(inner);
                    const Int row_b = by_columns ? 1 : inner, column_b = by_columns ? inner : 1;
                    for (Index i = 0; i < inner; ++i)
                        for (Index j = i; j < inner; ++j) b_values[i * row_b + j * column_b] = whole(i, j);
                    expect_dense<Int>(square, want, layout, true, beta, [&](Int f, Int l, T* c, Int ld) {
                        IN_LAYOUT(csr__g_n_syprd)
                        (f, l, rows, inner, alpha, &va, b_values.data(), row_b, column_b, beta, c, ld, row.data());
                    });
                }
            }
    // Blocks; of column-major ones B gets alpha, which a power of two shows not.
    for (const Index layout : {0, 1})
        for (const Index block : {1, 3, 4}) {
            const auto x = Stored<Int, T>::random(4, 5, 3, 1, block, layout),
                       y = Stored<Int, T>::random(5, 6, 3, 2, block, layout);
            const auto vx = x.view(), vy = y.view();
            for (const T beta : {T(0), T(2)}) {
                const auto start = random_dense(4, 6, block);
                auto want = scaled(start, beta);
                accumulate(x, y, want, T(4));
                expect_dense<Int>(start, want, layout, false, beta, [&](Int f, Int l, T* c, Int ld) {
                    IN_LAYOUT(bsr_ng_n_spmmd)(f, l, 6, static_cast<Int>(block), T(4), &vx, &vy, beta, c, ld);
                });
            }
        }
#undef IN_LAYOUT
}

} // namespace
} // namespace ork::test

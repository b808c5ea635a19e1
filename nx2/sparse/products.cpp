// SPDX-License-Identifier: MIT
// The exports of sums and products of sparse matrices; ork/abi/sparse/products.h says what they compute.
#include "sparse/add.h"
#include "sparse/dense_products.h"
#include "sparse/members.h"
#include "sparse/product_shares.h"

namespace ork::sparse {
namespace {

using A = Call::A;
using C = Call::C;
using Blocks = BlockProduct<T>;

Blocks product_in(Int block, Layout a, Layout b, Layout c) { return Blocks(block, a, b, c, block, T{1}); }
Blocks product_in(Int block, Layout layout) { return product_in(block, layout, layout, layout); }

} // namespace

ORK_SPARSE_EXPORT(void, add_sorted_ker)
(Int b, Int n, Int base_a, Int base_b, Int base_c, Int layout_a, Int layout_b, Int layout_c, Int a_begin, Int a_end,
 const Int* a_cols, const T* a_vals, Int b_begin, Int b_end, const Int* b_cols, const T* b_vals, Int* c_cols, T* c_vals,
 T alpha)
{
    add_sorted<Int, T>(n, {a_cols, a_vals, std::int64_t{a_end} - a_begin, base_a, layout_a != layout_c},
                       {b_cols, b_vals, std::int64_t{b_end} - b_begin, base_b, layout_b != layout_c},
                       {b, base_c, c_cols, c_vals, alpha});
}

ORK_SPARSE_EXPORT(void, add_unsorted_ker)
(Int b, Int, Int base_a, Int base_b, Int base_c, Int layout_a, Int layout_b, Int layout_c, Int a_begin, Int a_end,
 const Int* a_cols, const T* a_vals, Int b_begin, Int b_end, const Int* b_cols, const T* b_vals, Int* c_cols, T* c_vals,
 T alpha, Int* work)
{
    add_unsorted<Int, T>({a_cols, a_vals, std::int64_t{a_end} - a_begin, base_a, layout_a != layout_c},
                         {b_cols, b_vals, std::int64_t{b_end} - b_begin, base_b, layout_b != layout_c},
                         {b, base_c, c_cols, c_vals, alpha}, work);
}

// Sparse products.

ORK_SPARSE_EXPORT(void, csr__g_n_spmm_notr_row_struct)
(Int first, Int last, Int columns, A a, A b, Int* counts, void* work)
{
    count_share<Part::whole>(first, last, columns, RowsOf<Int, T>{*a, 1}, *b, counts, work);
}
ORK_SPARSE_EXPORT(void, csr__g_n_spmm_notr_row_pattern)(Int first, Int last, Int columns, A a, A b, C c, void* work)
{
    fill_share<Part::whole, false>(first, last, columns, RowsOf<Int, T>{*a, 1}, *b, *c, static_cast<Int*>(nullptr),
                                   work);
}
ORK_SPARSE_EXPORT(void, csr__g_n_spmm_notr_row)
(Int first, Int last, Int columns, A a, A b, C c, Int* counts, void* work)
{
    fill_share<Part::whole, true>(first, last, columns, RowsOf<Int, T>{*a, 1}, *b, *c, counts, work);
}
ORK_SPARSE_EXPORT(void, csr__g_n_spmm_notr_row_values)(Int first, Int last, Int columns, A a, A b, C c, void* work)
{
    revalue_share<Part::whole>(first, last, columns, RowsOf<Int, T>{*a, 1}, *b, *c, work);
}

// Layouts of A, B and C.
#define MEMBERS(letters, ...)                                                                                          \
    ORK_SPARSE_EXPORT(void, bsr__g_n_spmm_notr_row_##letters)                                                          \
    (Int first, Int last, Int columns, Int block, A a, A b, C c, Int * counts, void* work)                             \
    {                                                                                                                  \
        fill_block_share<Part::whole>(first, last, columns, product_in(block, __VA_ARGS__), RowsOf<Int, T>{*a, block}, \
                                      *b, *c, counts, work);                                                           \
    }                                                                                                                  \
    ORK_SPARSE_EXPORT(void, bsr__g_n_spmm_notr_row_##letters##_values)                                                 \
    (Int first, Int last, Int columns, Int block, A a, A b, C c, void* work)                                           \
    {                                                                                                                  \
        revalue_block_share<Part::whole>(first, last, columns, product_in(block, __VA_ARGS__),                         \
                                         RowsOf<Int, T>{*a, block}, *b, *c, work);                                     \
    }
MEMBERS(rrr, row_major, row_major, row_major)
MEMBERS(rcr, row_major, column_major, row_major)
MEMBERS(crr, column_major, row_major, row_major)
MEMBERS(ccc, column_major, column_major, column_major)
#undef MEMBERS

// Squares.

ORK_SPARSE_EXPORT(void, csr__g_n_syrk_notr_struct)
(Int first, Int last, Int order, A a, A ah, Int* counts, void* work)
{
    count_share<Part::upper>(first, last, order, RowsOf<Int, T>{*a, 1}, *ah, counts, work);
}
ORK_SPARSE_EXPORT(void, csr__g_n_syrk_notr_row)
(Int first, Int last, Int order, A a, A ah, C c, Int* counts, void* work)
{
    fill_share<Part::upper, true>(first, last, order, RowsOf<Int, T>{*a, 1}, *ah, *c, counts, work);
}
#define MEMBER(letters, layout)                                                                                        \
    ORK_SPARSE_EXPORT(void, bsr__g_n_syrk_notr_##letters)                                                              \
    (Int first, Int last, Int order, Int block, A a, A ah, C c, Int * counts, void* work)                              \
    {                                                                                                                  \
        fill_block_share<Part::upper>(first, last, order, product_in(block, layout), RowsOf<Int, T>{*a, block}, *ah,   \
                                      *c, counts, work);                                                               \
    }
MEMBER(rr, row_major)
MEMBER(cc, column_major)
#undef MEMBER

// Triple products.

ORK_SPARSE_EXPORT(void, csr__g_n_sypr_notr_row_struct)
(Int first, Int last, Int order, Int columns, A a, A b, A ah, Int* counts, void* work)
{
    RowsOfProduct<Int, T, false> ab(work, order, columns, *a, *b, nullptr);
    count_share<Part::upper>(first, last, order, ab, *ah, counts, work);
    ab.clear(std::int64_t{last} - first);
}
ORK_SPARSE_EXPORT(void, csr__g_n_sypr_notr_row_pattern)
(Int first, Int last, Int order, Int columns, A a, A b, A ah, C c, void* work)
{
    RowsOfProduct<Int, T, false> ab(work, order, columns, *a, *b, nullptr);
    fill_share<Part::upper, false>(first, last, order, ab, *ah, *c, static_cast<Int*>(nullptr), work);
    ab.clear(std::int64_t{last} - first);
}
ORK_SPARSE_EXPORT(void, csr__g_n_sypr_notr_row)
(Int first, Int last, Int order, Int columns, A a, A b, A ah, C c, Int* counts, void* work)
{
    RowsOfProduct<Int, T, true> ab(work, order, columns, *a, *b, nullptr);
    fill_share<Part::upper, true>(first, last, order, ab, *ah, *c, counts, work);
    ab.clear(std::int64_t{last} - first);
}
ORK_SPARSE_EXPORT(void, csr__g_n_sypr_notr_row_values)
(Int first, Int last, Int order, Int columns, A a, A b, A ah, C c, void* work)
{
    RowsOfProduct<Int, T, true> ab(work, order, columns, *a, *b, nullptr);
    revalue_share<Part::upper>(first, last, order, ab, *ah, *c, work);
    ab.clear(std::int64_t{last} - first);
}

// Layouts of A and C, and of B.
#define MEMBERS(letters, layout_a, layout_b)                                                                           \
    ORK_SPARSE_EXPORT(void, bsr__g_n_sypr_notr_##letters)                                                              \
    (Int first, Int last, Int order, Int columns, Int block, A a, A b, A ah, C c, Int * counts, void* work)            \
    {                                                                                                                  \
        const Blocks inner = product_in(block, layout_a, layout_b, layout_a);                                          \
        RowsOfProduct<Int, T, true> ab(work, order, columns, *a, *b, &inner);                                          \
        fill_block_share<Part::upper>(first, last, order, product_in(block, layout_a), ab, *ah, *c, counts, work);     \
        ab.clear(std::int64_t{last} - first);                                                                          \
    }                                                                                                                  \
    ORK_SPARSE_EXPORT(void, bsr__g_n_sypr_notr_##letters##_values)                                                     \
    (Int first, Int last, Int order, Int columns, Int block, A a, A b, A ah, C c, void* work)                          \
    {                                                                                                                  \
        const Blocks inner = product_in(block, layout_a, layout_b, layout_a);                                          \
        RowsOfProduct<Int, T, true> ab(work, order, columns, *a, *b, &inner);                                          \
        revalue_block_share<Part::upper>(first, last, order, product_in(block, layout_a), ab, *ah, *c, work);          \
        ab.clear(std::int64_t{last} - first);                                                                          \
    }
MEMBERS(rr, row_major, row_major)
MEMBERS(rc, row_major, column_major)
MEMBERS(cr, column_major, row_major)
MEMBERS(cc, column_major, column_major)
#undef MEMBERS

// Dense results, in the layout of the letter.

#define MEMBERS(letter, layout)                                                                                        \
    ORK_SPARSE_EXPORT(void, csr_ng_n_spmmd_alf_##letter##_ker)                                                         \
    (Int first, Int last, Int columns, T alpha, A a, A b, T beta, T * c, Int ldc)                                      \
    {                                                                                                                  \
        multiply_dense<Part::whole>(first, last, columns, alpha, *a, *b, beta,                                         \
                                    DenseResult<T>::in_layout(layout, c, ldc));                                        \
    }                                                                                                                  \
    ORK_SPARSE_EXPORT(void, csr_ng_n_spmmd_##letter##_ker)(Int first, Int last, Int columns, A a, A b, T * c, Int ldc) \
    {                                                                                                                  \
        multiply_dense<Part::whole>(first, last, columns, T{1}, *a, *b, T{},                                           \
                                    DenseResult<T>::in_layout(layout, c, ldc));                                        \
    }                                                                                                                  \
    ORK_SPARSE_EXPORT(void, bsr_ng_n_spmmd_##letter##_ker)                                                             \
    (Int first, Int last, Int columns, Int block, T alpha, A a, A b, T beta, T * c, Int ldc)                           \
    {                                                                                                                  \
        multiply_dense_blocks(layout, first, last, columns, block, alpha, *a, *b, beta, c, ldc);                       \
    }                                                                                                                  \
    ORK_SPARSE_EXPORT(void, csr__g_n_syrkd_alf_##letter##_ker)                                                         \
    (Int first, Int last, Int order, T alpha, A a, A ah, T beta, T * c, Int ldc)                                       \
    {                                                                                                                  \
        multiply_dense<Part::upper>(first, last, order, alpha, *a, *ah, beta,                                          \
                                    DenseResult<T>::in_layout(layout, c, ldc));                                        \
    }                                                                                                                  \
    ORK_SPARSE_EXPORT(void, csr__g_n_syrkd_##letter##_ker)(Int first, Int last, Int order, A a, A ah, T * c, Int ldc)  \
    {                                                                                                                  \
        multiply_dense<Part::upper>(first, last, order, T{1}, *a, *ah, T{},                                            \
                                    DenseResult<T>::in_layout(layout, c, ldc));                                        \
    }                                                                                                                  \
    ORK_SPARSE_EXPORT(void, csr__g_t_syrkd_alf_##letter##_ker)                                                         \
    (Int first, Int last, Int order, Int rows, T alpha, A a, T beta, T * c, Int ldc)                                   \
    {                                                                                                                  \
        square_transposed(first, last, order, rows, alpha, *a, beta, DenseResult<T>::in_layout(layout, c, ldc));       \
    }                                                                                                                  \
    ORK_SPARSE_EXPORT(void, csr__g_t_syrkd_##letter##_ker)                                                             \
    (Int first, Int last, Int order, Int rows, A a, T * c, Int ldc)                                                    \
    {                                                                                                                  \
        square_transposed(first, last, order, rows, T{1}, *a, T{}, DenseResult<T>::in_layout(layout, c, ldc));         \
    }                                                                                                                  \
    ORK_SPARSE_EXPORT(void, csr__g_n_syprd_##letter##_ker)                                                             \
    (Int first, Int last, Int order, Int columns, T alpha, A a, const T* b, Int row_b, Int column_b, T beta, T* c,     \
     Int ldc, void* work)                                                                                              \
    {                                                                                                                  \
        triple_dense(first, last, order, alpha, *a, DenseHermitian<T>{b, row_b, column_b, columns}, beta,              \
                     DenseResult<T>::in_layout(layout, c, ldc), static_cast<T*>(work));                                \
    }
MEMBERS(c, row_major)
MEMBERS(f, column_major)
#undef MEMBERS

} // namespace ork::sparse

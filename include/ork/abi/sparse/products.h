/* SPDX-License-Identifier: MIT */
// Sums and products of sparse matrices. The rules that all stems share: ../sparse.h.
//
// OPERANDS are whole matrices here, and a share is the rows first .. last (exclusive, from 0) of C, or block rows: see
// Rows and Result. Rows may have any order of columns, places may repeat (they add up), unless a stem says that rows
// ascend.
//
// ORDER OF ADDITIONS of C = A B, in every stem alike: element (i, j) starts from 0 and gains a * b entry by entry of
// row i of A as it is stored, and for each of them, of the row of B as it is stored; in blocks, inner index by inner
// index. It depends on nothing else, so that shares, stages and dense results all have the same bits. With an alpha
// other than 1 it gains (alpha * a) * b, and with a beta it starts from beta * c: from 0 for beta = 0, from c for 1.
//
// PATTERN of C: the places that some pair of entries meets, whether or not the sum is 0. Stems that write columns write
// them ascending, each once.
//
// SCRATCH is `work`, of product_work bytes or, of triple products, triple_work, aligned to 16: all bytes zero when it
// is handed over and again when the kernel returns, so that one clearing serves all shares and stages. Concurrent calls
// need one each.
#ifndef ORK_ABI_SPARSE_PRODUCTS_H
#define ORK_ABI_SPARSE_PRODUCTS_H

#include <cstdint>
#include <type_traits>

#include "ork/abi/sparse/handle.h"

namespace ork::sparse {

// What a product reads. Row i has the entries first[i] - base .. last[i] - base (exclusive) of cols and vals; of blocks
// an entry is block * block values. The columns less base.
template <class Int, class T>
struct Rows {
    const T* vals;
    const Int *cols, *first, *last;
    Int base;
};

// What it writes, in the same way. first and last are there already.
template <class Int, class T>
struct Result {
    T* vals;
    Int* cols;
    const Int *first, *last;
    Int base;
};

// Scratch of a product with `columns` columns, in blocks where there are blocks: for each column a T or an Int,
// whichever is larger, and a bit, and a bit for each 64 of those.
template <class Int, class T>
constexpr std::int64_t product_work(std::int64_t columns)
{
    constexpr std::int64_t unit = sizeof(T) > sizeof(Int) ? sizeof(T) : sizeof(Int);
    return (columns * unit + 15) / 16 * 16 + (columns / 64 + columns / 4096 + 3) / 2 * 16;
}

// Scratch of A B A^H, A of `rows` rows and `columns` columns: a row of A B besides.
template <class Int, class T>
constexpr std::int64_t triple_work(std::int64_t rows, std::int64_t columns, std::int64_t block)
{
    constexpr std::int64_t column = sizeof(Int), value = sizeof(T);
    return product_work<Int, T>(rows) + product_work<Int, T>(columns) + (columns * column + 15) / 16 * 16 +
           (columns * block * block * value + 15) / 16 * 16;
}

// Threads of the caller of a routine that works on records: run calls body(context, part) for part = 0 .. parts - 1, on
// whatever threads, and returns when all are done. A null Team is the calling thread alone.
struct Team {
    std::int64_t most; // parts that are of use at once
    void (*run)(int parts, void (*body)(void* context, int part), void* context);
};

enum class ProductForm : std::int32_t {
    product, // op_a(A) op_b(B)
    square,  // the upper triangle of A A^H (op_a none) or A^H A (op_a another); B is null
    triple   // the upper triangle of A B A^H (op_a none) or A^H B A; B stands for a Hermitian (real: symmetric) matrix
};

// The operands of a product of records; op as enum Operation (mv.h). Both of blocks of one order or neither, and alike
// in precision and width of indices; B of a triple product not coo.
struct Factors {
    ProductForm form = ProductForm::product;
    std::int32_t op_a = 0, op_b = 0;
    std::int32_t upper_b = 0;     // triple: 1: the upper triangle of B is read, 0: the lower one
    std::int32_t symmetric_b = 0; // triple, complex: 1: B is symmetric, not Hermitian
    const Matrix *a = nullptr, *b = nullptr;
    // In place of B, for a dense result of a triple product: element (i, j) is dense_b[i row_b + j column_b], of which
    // the upper triangle is read.
    const void* dense_b = nullptr;
    std::int64_t row_b = 0, column_b = 0;
};

// Steps of a product of records. A step may be done again; pattern needs counts, values a pattern.
enum ProductSteps : std::int32_t {
    product_counts = 1,  // row pointers
    product_pattern = 2, // columns
    product_values = 4   // values; without it but with the pattern they are zeros
};

// What routines on records return. On failure C owns what it owned before.
enum ProductStatus : std::int64_t {
    product_done = 0,
    product_no_memory = 1,
    product_too_large = 2 // more entries than the integers of C count
};

template <class Int, class T>
struct ProductCalls {
    using A = const Rows<Int, T>*;
    using C = const Result<Int, T>*;

    // ROWS OF SUMS. One row of C = alpha A + B: n columns, in square blocks of order b (1: numbers), each operand with
    // its base and layout (compared with each other only). Columns less bases of both ascend. A row's entries are
    // a_begin .. a_end (exclusive), of which only the difference counts; arrays stand at the row's first entry. Of
    // columns c of A alone C has alpha a, of B alone b, copied without arithmetic, of both b + alpha a. Places that
    // repeat in A (in B) repeat in C; none is dropped for being 0. Blocks of another layout than C's are transposed on
    // the way. C must not overlap A or B.
    using add_sorted_ker = void(Int b, Int n, Int base_a, Int base_b, Int base_c, Int layout_a, Int layout_b,
                                Int layout_c, Int a_begin, Int a_end, const Int* a_cols, const T* a_vals, Int b_begin,
                                Int b_end, const Int* b_cols, const T* b_vals, Int* c_cols, T* c_vals, T alpha);
    // The same for rows in any order: the entries of B in their order, then those of A that no entry of B shares a
    // column with. If a column repeats in B, entries of A with it go to its last; if it repeats in A, B's entry takes
    // them all, one after the other. work: n integers, all zero before and after.
    using add_unsorted_ker = void(Int b, Int n, Int base_a, Int base_b, Int base_c, Int layout_a, Int layout_b,
                                  Int layout_c, Int a_begin, Int a_end, const Int* a_cols, const T* a_vals, Int b_begin,
                                  Int b_end, const Int* b_cols, const T* b_vals, Int* c_cols, T* c_vals, T alpha,
                                  Int* work);

    // C = A B of `columns` columns. struct: counts[i - first] = entries of row i of C, in blocks too. pattern: the
    // columns of C. row: columns and values, of rows that have room from first[i] on; with `counts` also how many each
    // has, otherwise they are known to fit. values: the values of a pattern that has all the places, which may stand in
    // any order, without repetition; places that no product meets get 0.
    using csr__g_n_spmm_notr_row_struct = void(Int first, Int last, Int columns, A a, A b, Int* counts, void* work);
    using csr__g_n_spmm_notr_row_pattern = void(Int first, Int last, Int columns, A a, A b, C c, void* work);
    using csr__g_n_spmm_notr_row = void(Int first, Int last, Int columns, A a, A b, C c, Int* counts, void* work);
    using csr__g_n_spmm_notr_row_values = void(Int first, Int last, Int columns, A a, A b, C c, void* work);
    // The same in square blocks; layouts of A, of B and of C: r row-major, c column-major. Patterns are those of csr.
    using bsr__g_n_spmm_notr_row_rrr = void(Int first, Int last, Int columns, Int block, A a, A b, C c, Int* counts,
                                            void* work);
    using bsr__g_n_spmm_notr_row_rcr = bsr__g_n_spmm_notr_row_rrr;
    using bsr__g_n_spmm_notr_row_crr = bsr__g_n_spmm_notr_row_rrr;
    using bsr__g_n_spmm_notr_row_ccc = bsr__g_n_spmm_notr_row_rrr;
    using bsr__g_n_spmm_notr_row_rrr_values = void(Int first, Int last, Int columns, Int block, A a, A b, C c,
                                                   void* work);
    using bsr__g_n_spmm_notr_row_rcr_values = bsr__g_n_spmm_notr_row_rrr_values;
    using bsr__g_n_spmm_notr_row_crr_values = bsr__g_n_spmm_notr_row_rrr_values;
    using bsr__g_n_spmm_notr_row_ccc_values = bsr__g_n_spmm_notr_row_rrr_values;

    // Rows first .. last of C = A B, or alpha A B + beta C, dense, of `columns` columns. C is the whole matrix: element
    // (i, j) is c[i ldc + j] (c) or c[j ldc + i] (f). In blocks: the layout of those of A and of B is that of C, first,
    // last and columns count blocks, and f gains a * (alpha * b).
    using csr_ng_n_spmmd_c_ker = void(Int first, Int last, Int columns, A a, A b, T* c, Int ldc);
    using csr_ng_n_spmmd_f_ker = csr_ng_n_spmmd_c_ker;
    using csr_ng_n_spmmd_alf_c_ker = void(Int first, Int last, Int columns, T alpha, A a, A b, T beta, T* c, Int ldc);
    using csr_ng_n_spmmd_alf_f_ker = csr_ng_n_spmmd_alf_c_ker;
    using bsr_ng_n_spmmd_c_ker = void(Int first, Int last, Int columns, Int block, T alpha, A a, A b, T beta, T* c,
                                      Int ldc);
    using bsr_ng_n_spmmd_f_ker = bsr_ng_n_spmmd_c_ker;

    // The upper triangle, diagonal included, of C = A A^H of `order` rows; in blocks: the diagonal blocks whole. ah is
    // A^H as it would be stored, its rows ascending, blocks in the layout of A. struct and row as those of spmm; rr: A
    // and C of row-major blocks.
    using csr__g_n_syrk_notr_struct = void(Int first, Int last, Int order, A a, A ah, Int* counts, void* work);
    using csr__g_n_syrk_notr_row = void(Int first, Int last, Int order, A a, A ah, C c, Int* counts, void* work);
    using bsr__g_n_syrk_notr_rr = void(Int first, Int last, Int order, Int block, A a, A ah, C c, Int* counts,
                                       void* work);
    using bsr__g_n_syrk_notr_cc = bsr__g_n_syrk_notr_rr;

    // The same, C dense: of rows first .. last only elements (i, j) with j >= i are read or written. n: A A^H; t: A^H A
    // from A alone, of `rows` rows in any order: element (i, j) gains conj(a_ki) * a_kj row by row of A. alf: alpha
    // and beta.
    using csr__g_n_syrkd_c_ker = void(Int first, Int last, Int order, A a, A ah, T* c, Int ldc);
    using csr__g_n_syrkd_f_ker = csr__g_n_syrkd_c_ker;
    using csr__g_n_syrkd_alf_c_ker = void(Int first, Int last, Int order, T alpha, A a, A ah, T beta, T* c, Int ldc);
    using csr__g_n_syrkd_alf_f_ker = csr__g_n_syrkd_alf_c_ker;
    using csr__g_t_syrkd_c_ker = void(Int first, Int last, Int order, Int rows, A a, T* c, Int ldc);
    using csr__g_t_syrkd_f_ker = csr__g_t_syrkd_c_ker;
    using csr__g_t_syrkd_alf_c_ker = void(Int first, Int last, Int order, Int rows, T alpha, A a, T beta, T* c,
                                          Int ldc);
    using csr__g_t_syrkd_alf_f_ker = csr__g_t_syrkd_alf_c_ker;

    // The upper triangle of C = alpha A B A^H + beta C, B and C dense, element (i, j) of B b[i row_b + j column_b] with
    // i <= j and the conjugate of (j, i) below; of the diagonal as stored. A has `order` rows and `columns` columns.
    // Row i of A B is made first, element by element the entries of A in their order; element (i, j) of C is then beta
    // c
    // + alpha * (the sum over row j of A, entry by entry, of ab * conj(a)). work: `columns` elements of any contents.
    using csr__g_n_syprd_c_ker = void(Int first, Int last, Int order, Int columns, T alpha, A a, const T* b, Int row_b,
                                      Int column_b, T beta, T* c, Int ldc, void* work);
    using csr__g_n_syprd_f_ker = csr__g_n_syprd_c_ker;

    // The upper triangle of C = (A B) A^H of `order` rows, as that of syrk; A has `columns` columns and B is whole. Row
    // i of A B, in the order of its columns, takes the place of A's.
    using csr__g_n_sypr_notr_row_struct = void(Int first, Int last, Int order, Int columns, A a, A b, A ah, Int* counts,
                                               void* work);
    using csr__g_n_sypr_notr_row_pattern = void(Int first, Int last, Int order, Int columns, A a, A b, A ah, C c,
                                                void* work);
    using csr__g_n_sypr_notr_row = void(Int first, Int last, Int order, Int columns, A a, A b, A ah, C c, Int* counts,
                                        void* work);
    using csr__g_n_sypr_notr_row_values = csr__g_n_sypr_notr_row_pattern;
    // rc: A and C of row-major blocks, B of column-major ones.
    using bsr__g_n_sypr_notr_rr = void(Int first, Int last, Int order, Int columns, Int block, A a, A b, A ah, C c,
                                       Int* counts, void* work);
    using bsr__g_n_sypr_notr_rc = bsr__g_n_sypr_notr_rr;
    using bsr__g_n_sypr_notr_cr = bsr__g_n_sypr_notr_rr;
    using bsr__g_n_sypr_notr_cc = bsr__g_n_sypr_notr_rr;
    using bsr__g_n_sypr_notr_rr_values = void(Int first, Int last, Int order, Int columns, Int block, A a, A b, A ah,
                                              C c, void* work);
    using bsr__g_n_sypr_notr_rc_values = bsr__g_n_sypr_notr_rr_values;
    using bsr__g_n_sypr_notr_cr_values = bsr__g_n_sypr_notr_rr_values;
    using bsr__g_n_sypr_notr_cc_values = bsr__g_n_sypr_notr_rr_values;

    // PRODUCTS OF RECORDS. They take memory from ork_serv_malloc and use the kernels above, in shares of about as many
    // multiplications on the threads of the team; the bits do not depend on their number.
    //
    // A new record for the product: sizes, precision, base and, where both factors are row-major or both column-major,
    // the layout of A (otherwise row-major); rows without entries. The format is that of A, or csr
    // for coo and, of square and triple products, for csc. Its arrays are one block each, first of rows + 1 numbers
    // (last points into it), index and values null.
    using do_sp2m_allocate_C_handle = std::int64_t(const Factors*, Matrix** c);
    // The steps, into such a record.
    using do_sp2m = std::int64_t(const Team*, const Factors*, std::int32_t steps, Matrix* c);
    // What lies between them. product_counts: numbers of entries in first[1] .. first[rows] become row pointers; when
    // they are too many no other step but counts may follow. product_pattern: new arrays for the entries.
    using update_C_handle_data_for_matmat = std::int64_t(std::int32_t steps, Matrix* c);
    // Dense C = alpha op(A) op(B) + beta C and the other forms' upper triangles, layout of C 0 row-major, 1
    // column-major.
    using spmmd = std::int64_t(const Team*, const Factors*, const T* alpha, const T* beta, std::int32_t layout, T* c,
                               std::int64_t ldc);
};

// The same without a precision: the record's letter decides. A null *c gets a new record (all steps), otherwise the
// steps are done in it. When one fails a new record is released.
template <class Int>
struct ProductHandleCalls {
    using sp2m = std::int64_t(const Team*, std::int32_t op_a, const Matrix* a, std::int32_t op_b, const Matrix* b,
                              std::int32_t steps, Matrix** c);
    using spmm = std::int64_t(const Team*, std::int32_t op_a, const Matrix* a, const Matrix* b, Matrix** c);
    using syrk = std::int64_t(const Team*, std::int32_t op_a, const Matrix* a, Matrix** c);
    using sypr = std::int64_t(const Team*, std::int32_t op_a, const Matrix* a, const Matrix* b, std::int32_t upper_b,
                              std::int32_t symmetric_b, std::int32_t steps, Matrix** c);
};

} // namespace ork::sparse

#endif

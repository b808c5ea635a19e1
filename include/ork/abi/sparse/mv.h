/* SPDX-License-Identifier: MIT */
// Products of one sparse matrix with vectors and dense matrices. The rules that all stems share: ../sparse.h.
//
// ORDERS OF ADDITION, bit for bit in every precision. A row of compressed rows: entries eight at a time into four
// accumulators of two lanes (0 1, 2 3, 4 5, 6 7), folded (acc0 + acc2) + (acc1 + acc3), then lane 0 + lane 1, then the
// rest one by one; rows shorter than eight one by one from 0. The result is sum * alpha; a row without entries is 0 *
// alpha, and so NaN for an infinite alpha. With beta it is sum * alpha + y * beta. (The kernels in a caller's arrays,
// ../spblas.h, fold (acc0 + acc1) + (acc2 + acc3).) A row of a slice, a diagonal, a block: its entries one by one.
//
// SLICES. Rows in groups of h consecutive ones, h = 4 or 8; row r of slice s is row s h + r. A slice holds w groups of
// h entries, w the length of its longest row: group g has entry g of each of its rows, row 0 first. Shorter rows are
// filled up with the value 0 and a column that exists, which the kernels multiply like any other. `cols` and `vals`
// hold the slices without gaps; slice_begin[s] and slice_end[s] are its first entry and one past its last, of which
// only the difference counts. `tail` is the number of rows of the last slice, or 0 when it is full: entries of a tail
// slice beyond its rows are not read. With a tail above h the last slice is left out.
//
// Dot products are the sum of conj(x_i) y_i over the share's rows i, with x at the same global rows and y as it was
// written: of a Hermitian matrix they are real. Each call stores its own sum, 0 for an empty share. Compressed rows:
// one by one. Slices: the products of a slice first, added in pairs of registers, ((p0, p1) + (p2, p3)) + ((p4, p5) +
// (p6, p7)) for h = 8 and (p0, p1) + (p2, p3) for h = 4, lane 0 + lane 1, then to the running sum; of a tail one by
// one.
#ifndef ORK_ABI_SPARSE_MV_H
#define ORK_ABI_SPARSE_MV_H

#include <type_traits>

namespace ork::sparse {

// op of the stems that take one.
enum Operation : int { op_none = 0, op_transpose = 1, op_conjugate_transpose = 2 };

template <class Int, class T>
struct MvCalls {
    using U = std::make_unsigned_t<Int>;

    // y = alpha A x; _beta: y = alpha A x + beta y; _b: that with columns counted from `base`.
    using csr_ng_n_mv_ker = void(Int row_first, Int row_last, const void* unread, const void* unread_too, T alpha, T* y,
                                 const T* x, const T* vals, const U* rows_ptr, const Int* cols);
    using csr_ng_n_mv_ker_beta = void(Int row_first, Int row_last, const void* unread, const void* unread_too, T alpha,
                                      T* y, const T* x, const T* vals, const U* rows_ptr, const Int* cols, T beta);
    using csr_ng_n_mv_ker_b = void(Int row_first, Int row_last, const void* unread, Int base, T alpha, T* y, const T* x,
                                   const T* vals, const U* rows_ptr, const Int* cols, T beta);
    // The same, and the dot product.
    using csr_ng_n_dotmv_ker = void(Int row_first, Int row_last, const void* unread, const void* unread_too, T alpha,
                                    T* y, const T* x, const T* vals, const U* rows_ptr, const Int* cols, T* dot);
    using csr_ng_n_dotmv_ker_beta = void(Int row_first, Int row_last, const void* unread, const void* unread_too,
                                         T alpha, T* y, const T* x, const T* vals, const U* rows_ptr, const Int* cols,
                                         T* dot, T beta);
    // out = alpha A^T x + beta out, out of n elements, A and x the share's rows: out[col - base] += val * (x * alpha),
    // row by row. out is scaled in every call, also by one without rows.
    using csr_ng_t_mv_ker = void(Int rows, Int n, Int base, T beta, T alpha, T* out, const T* x, const T* vals,
                                 const U* rows_ptr, const Int* cols);
    // y[i] = alpha partials[i] + beta y[i], then y[i] += alpha partials[p stride + i] for p = 1 .. parts - 1 in turn,
    // first <= i < last. Both arrays whole.
    using csr_mv_merge = void(Int first, Int last, Int stride, Int parts, T alpha, T beta, const T* partials, T* y);
    // y[i] += partials[p stride + i] for p = 0 .. parts - 1 in turn: of partials that hold alpha already.
    using csr_mv_merge1 = void(Int first, Int last, Int stride, Int parts, const T* partials, T* y);

    // y = alpha op(A) x + beta y of a whole matrix in four arrays: row i (csc: column i) has the entries first[i] -
    // base
    // .. last[i] - base (exclusive). rows, cols: of A.
    using csr_mv_def_ker = void(Int rows, Int cols, Int base, Int op, T alpha, const T* vals, const Int* index,
                                const Int* first, const Int* last, const T* x, T beta, T* y);
    using csc_mv_def_ker = csr_mv_def_ker;
    // The same of square blocks of order `block`, rows and cols counted in blocks, layout 0 row-major, 1 column-major.
    using bsr_mv_def_ker = void(Int rows, Int cols, Int base, Int op, Int block, Int layout, T alpha, const T* vals,
                                const Int* index, const Int* first, const Int* last, const T* x, T beta, T* y);

    // y = alpha A x + beta y in slices of 8, of 4, of `height` (4 or 8).
    using xESB_SpMV_8 = void(Int slice_first, Int slice_last, Int tail, const void* unread, const T* vals,
                             const Int* cols, const U* slice_begin, const U* slice_end, const T* x, T* y,
                             const void* unread_too, T alpha, T beta);
    using xESB_SpMV_4 = xESB_SpMV_8;
    using xESB_SpMV = void(Int slice_first, Int slice_last, Int tail, Int height, const T* vals, const Int* cols,
                           const U* slice_begin, const U* slice_end, const T* x, T* y, const void* unread, T alpha,
                           T beta);
    using ESB_SpDOTMV_8 = void(Int slice_first, Int slice_last, Int tail, const void* unread, const T* vals,
                               const Int* cols, const U* slice_begin, const U* slice_end, const T* x, T* y, T* dot,
                               const void* unread_too, T alpha, T beta);
    using ESB_SpDOTMV_4 = ESB_SpDOTMV_8;
    using ESB_SpDOTMV = void(Int slice_first, Int slice_last, Int tail, Int height, const T* vals, const Int* cols,
                             const U* slice_begin, const U* slice_end, const T* x, T* y, T* dot, const void* unread,
                             T alpha, T beta);

    // y = alpha A x + beta y, A with `cols` columns in diagonals, of which row i has A(i, i + distance[d]). They lie in
    // chunks of `height` rows, each chunk's part of one diagonal behind that of the one before:
    // vals[(i / height * diagonals + d) * height + i % height]. With height at least the rows these are whole diagonals
    // one after the other. vals is the whole array; values outside of A are not read.
    using dia_mv_ker = void(Int row_first, Int row_last, Int cols, Int diagonals, Int height, const Int* distance,
                            const T* vals, const T* x, T* y, T alpha, T beta);
    // y = alpha D x + beta y, D a diagonal of square blocks, of which the share is first .. last. x whole.
    using block_diag_mv_ker = void(Int block_first, Int block_last, Int block, Int layout, const T* vals, const T* x,
                                   T* y, T alpha, T beta);

    // y = alpha A x + beta y in square blocks, the share counted in block rows; columns from 0 or 1 as the name says.
    using bsr0ng_n_mv_ker = void(Int row_first, Int row_last, Int block, Int layout, T alpha, T* y, const T* x,
                                 const T* vals, const U* rows_ptr, const Int* cols, T beta);
    using bsr1ng_n_mv_ker = bsr0ng_n_mv_ker;
    using bsr_ng_avx512_sp_mv = bsr0ng_n_mv_ker;
    // Of A only the blocks on and below the diagonal, whole.
    using bsr0nblt_n_mv_ker = bsr0ng_n_mv_ker;
    using bsr1nblt_n_mv_ker = bsr0ng_n_mv_ker;
    // Of A only one triangle, of a diagonal block too; unit: ones for the diagonal.
    using bsr0nt_n_mv_ker = void(Int row_first, Int row_last, Int block, Int layout, T alpha, T* y, const T* x,
                                 const T* vals, const U* rows_ptr, const Int* cols, T beta, Int upper, Int unit);
    using bsr1nt_n_mv_ker = bsr0nt_n_mv_ker;

    // C = alpha A B + beta C, B whole and C the share's rows, `columns` columns. Element (i, j) is b[i ldb + j] (c) or
    // b[j ldb + i] (f). Orders of addition and those of blocks are the ones of ../spblas.h.
    using csr_ng_n_mm_c_ker = void(Int row_first, Int row_last, Int base, Int columns, T alpha, const T* vals,
                                   const U* rows_ptr, const Int* cols, const T* b, Int ldb, T beta, T* c, Int ldc);
    using csr_ng_n_mm_f_ker = csr_ng_n_mm_c_ker;
    // The same in square blocks, the share counted in block rows; layout of the blocks, of B and of C alike.
    using bsr_ng_n_mm_rows = void(Int row_first, Int row_last, Int base, Int block, Int layout, Int columns, T alpha,
                                  const T* vals, const U* rows_ptr, const Int* cols, const T* b, Int ldb, T beta, T* c,
                                  Int ldc);
};

} // namespace ork::sparse

#endif

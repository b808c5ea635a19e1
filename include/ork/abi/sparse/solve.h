/* SPDX-License-Identifier: MIT */
// Triangular solves and smoothers. The rules that all stems share: ../sparse.h. Here every array is whole and starts
// with the matrix, not with the share.
//
// FOUR ARRAYS. A matrix as it was handed over: row i has the entries first[i] - base .. last[i] - base (exclusive) of
// vals and index, columns counted from base, in any order. Of a triangle the entries on its side count, whatever else
// is stored; what stands at the same place adds up, on the diagonal too. Sums start from alpha b_i, each entry is taken
// off as it is stored, and the rest is divided by the diagonal. A diagonal that is missing counts as 0 and is divided
// by: who calls looks for it first.
//
// PACKED. L, U or both strict triangles of A = L + D + U in slices of `height` rows, 1 or 4, of which none needs
// another; lane l of slice s is row order[s height + l], counted from 0. A triangle's part of slice s is w groups of
// `height` entries, the positions begin[s] .. begin[s + 1] (exclusive) of vals and cols; group g has the g-th entry of
// each row. Shorter rows have the value 0 and a column of their own or, of a row that has none, of another row of the
// slice. A slice of fewer rows repeats its first one, entries and all, in the lanes left over. Columns count from 0
// unless the stem says otherwise. diagonal and inverse have 1 element a lane; a null inverse means that all are 1.
//
// The sum of a row starts from alpha b_i (of products from 0), takes its groups one by one, and is multiplied with the
// inverse. So the result does not depend on which slices are computed by whom.
//
// Slices ascend in the order in which rows of L can be solved: what a row's entries of L name stands in earlier slices.
// Of matrices with both triangles, too, those whose entries of U name the row. Then U can be solved from the last slice
// to the first; a packed U alone is stored the same way, what its rows need in later slices.
//
// SHARES are slices or rows first .. last (exclusive). What they need must have been computed; fwd and lower take them
// from the first on, bwd and upper from the last.
#ifndef ORK_ABI_SPARSE_SOLVE_H
#define ORK_ABI_SPARSE_SOLVE_H

#include <cstdint>
#include <type_traits>

namespace ork::sparse {

template <class Int, class T>
struct PackedTriangle {
    const T* vals;
    const Int *cols, *begin;
};

template <class Int, class T>
struct Packed {
    std::int64_t slices, height;
    std::int64_t far; // 1: it comes from memory, and what is needed later is fetched early
    const Int* order;
    const T *diagonal, *inverse;
    PackedTriangle<Int, T> lower, upper;
};

// A matrix in four arrays of which entry (i, j) is a block of `block` rows and columns, layout 0 row-major, 1
// column-major.
template <class Int, class T>
struct BlockRows {
    std::int64_t base, block, layout;
    const T* vals;
    const Int *index, *first, *last;
};

// What a share of a smoother does.
enum Phase : int {
    phase_from_zero = 0, // x is not read and counts as 0
    phase_forward = 1,
    phase_backward = 2,
    phase_product = 3
};

template <class Int, class T>
struct SolveCalls {
    using PackedMatrix = Packed<Int, T>;
    using Blocks = BlockRows<Int, T>;

    // y_i = (alpha b_i - the sum of a_ij y_j over the triangle) / a_ii in four arrays; b may be y. Position p of the
    // share is row order[p], of a null order row p. _u: ones for the diagonal. 0 and 1: that base, the argument is not
    // read.
    using sv_fwd_ker_n = void(Int first, Int last, Int base, const Int* order, T alpha, const T* vals, const Int* index,
                              const Int* row_first, const Int* row_last, const T* b, T* y);
    using sv_fwd_ker_u = sv_fwd_ker_n;
    using sv_fwd_ker0 = sv_fwd_ker_n;
    using sv_fwd_ker1 = sv_fwd_ker_n;
    using sv_bwd_ker0 = sv_fwd_ker_n;
    using sv_bwd_ker0_u = sv_fwd_ker_n;
    using sv_bwd_ker1 = sv_fwd_ker_n;
    // The same by rows as they follow each other: lower, upper, the diagonal, the conjugated diagonal.
    using csr_ntl_sv_ker = void(Int row_first, Int row_last, Int base, Int unit, T alpha, const T* vals,
                                const Int* index, const Int* first, const Int* last, const T* b, T* y);
    using csr_ntu_sv_ker = csr_ntl_sv_ker;
    using csr_ntd_sv_ker = csr_ntl_sv_ker;
    using csr_ctd_sv_ker = csr_ntl_sv_ker;

    // The same of a packed triangle, columns counted from the base that the name or, of _n, the argument tells.
    using sv_fwd_ker_n_high_opt = void(Int slice_first, Int slice_last, Int base, const PackedMatrix* a, T alpha,
                                       const T* b, T* y);
    using sv_fwd_ker0_high_opt = sv_fwd_ker_n_high_opt;
    using sv_fwd_ker1_high_opt = sv_fwd_ker_n_high_opt;
    using sv_bwd_ker0_high_opt = sv_fwd_ker_n_high_opt;
    using sv_bwd_ker1_high_opt = sv_fwd_ker_n_high_opt;
    // All slices.
    using sv_esb_fwd_ker_n_1thr = void(Int base, const PackedMatrix* a, T alpha, const T* b, T* y);
    using sv_esb_bwd_ker0_1thr = sv_esb_fwd_ker_n_1thr;

    // y_i = alpha (T x)_i + beta y_i with T = L + D (fwd), D + U (bwd), L + D + U (all); a null diagonal counts as 0.
    // dotmv: *dot = the sum of conj(x_i) y_i over the share, lane by lane.
    using mv_fwd_ker = void(Int slice_first, Int slice_last, const PackedMatrix* a, T alpha, const T* x, T beta, T* y);
    using mv_bwd_ker = mv_fwd_ker;
    using mv_all_ker = mv_fwd_ker;
    using dotmv_all_ker = void(Int slice_first, Int slice_last, const PackedMatrix* a, T alpha, const T* x, T beta,
                               T* y, T* dot);

    // The phases of a symmetric Gauss-Seidel step for A x = alpha b, and of y = A x after it. `rest` has an element a
    // lane, and keeps alpha b - L x of the forward sweep. The backward sweep leaves L x as it was, so it need not
    // compute it again; and what it makes of rest is (D + U) x = rest, so that A x is rest + L x with the new x: one
    // and a half products for a step (one from zero), and half a product for y.
    //     from_zero  rest_i = alpha b_i - (L x)_i, x_i = rest_i inverse_i
    //     forward    rest_i = alpha b_i - (L x)_i, x_i = (rest_i - (U x)_i) inverse_i
    //     backward   x_i = (rest_i - (U x)_i) inverse_i, slices descending
    //     product    y_i = rest_i + (L x)_i; dotmv: *dot = the sum of conj(x_i) y_i over the share
    // A phase is called when all shares of the one before are done. dot is written by the product alone.
    using mv_symgs_ker = void(Int phase, Int slice_first, Int slice_last, const PackedMatrix* a, T alpha, const T* b,
                              T* x, T* rest, T* y);
    using dotmv_symgs_ker = void(Int phase, Int slice_first, Int slice_last, const PackedMatrix* a, T alpha, const T* b,
                                 T* x, T* rest, T* y, T* dot);
    // All slices and phases; a null y: without the product.
    using mv_symgs_ker_1thr = void(Int from_zero, const PackedMatrix* a, T alpha, const T* b, T* x, T* rest, T* y);
    using dotmv_symgs_ker_1thr = void(Int from_zero, const PackedMatrix* a, T alpha, const T* b, T* x, T* rest, T* y,
                                      T* dot);
    // A step, and y = A x, in four arrays. Rows whose diagonal is 0 are left as they are. from_zero: x is 0 first.
    using csr__g_n_symgs_def = void(Int rows, Int base, Int from_zero, T alpha, const T* vals, const Int* index,
                                    const Int* first, const Int* last, const T* b, T* x);
    using csr__g_n_symgs_mv_def = void(Int rows, Int base, Int from_zero, T alpha, const T* vals, const Int* index,
                                       const Int* first, const Int* last, const T* b, T* x, T* y);

    // x = x + ((L + E) E^-1 (E + U))^-1 (b - A x) with L and U of A = L + D + U; E and its inverse are given by rows.
    //     forward    z_i = inverse_i (b_i - (A x)_i - (L z)_i)
    //     backward   z_i = inverse_i (e_i z_i - (U z)_i), x_i = x_i + z_i
    // `diagonal` of the packed matrix is D, its inverse is not read. z has an element a row.
    using csr_lu_smoother_opt_ker = void(Int phase, Int slice_first, Int slice_last, const PackedMatrix* a, const T* e,
                                         const T* inverse, const T* b, T* x, T* z);
    // Both phases of a matrix in four arrays.
    using csr_lu_smoother_def_ker = void(Int rows, Int base, const T* vals, const Int* index, const Int* first,
                                         const Int* last, const T* e, const T* inverse, const T* b, T* x, T* z);
    // The same in blocks, E and its inverse as diagonal blocks one after the other in the layout of A, in two steps:
    // lower: z_i = inverse_i (z_i - (L z)_i), upper: z_i = inverse_i (e_i z_i - (U z)_i). `work` has a block's rows.
    using bsr_ng_lu_smoother_lower_solve_def = void(Int row_first, Int row_last, const Blocks* a, const T* e,
                                                    const T* inverse, T* z, T* work);
    using bsr_ng_lu_smoother_upper_solve_def = bsr_ng_lu_smoother_lower_solve_def;
    // The solve with one triangle and the product with the other in one pass, a block Gauss-Seidel sweep: x_i =
    // inverse_i (alpha b_i - the sum of A_ij x_j over j != i), lower from the first row on, upper from the last.
    using bsr_ng_fused_lower_solve = void(Int row_first, Int row_last, const Blocks* a, const T* inverse, T alpha,
                                          const T* b, T* x, T* work);
    using bsr_ng_fused_upper_solve = bsr_ng_fused_lower_solve;

    // A forward step of successive over-relaxation, x_i = (1 - omega) x_i + omega (b_i - the sum of a_ij x_j over j !=
    // i) / a_ii; backward if told. Rows whose diagonal is 0 are left as they are.
    using csr_seq_fw_sor_def = void(Int rows, Int base, Int backward, T omega, const T* vals, const Int* index,
                                    const Int* first, const Int* last, const T* b, T* x);
    // A forward step of a symmetric matrix of which the upper triangle and the diagonal count: what a row owes to those
    // behind it is taken off their elements of work, which has `rows`.
    using csr_seq_sym_u_full_fw_sor = void(Int rows, Int base, T omega, const T* vals, const Int* index,
                                           const Int* first, const Int* last, const T* b, T* x, T* work);
    // y = alpha A x + beta y of such a matrix.
    using csr_seq_nt_sym_full_u_mv = void(Int rows, Int base, T alpha, const T* vals, const Int* index,
                                          const Int* first, const Int* last, const T* x, T beta, T* y);

    // y = alpha T^-1 b, T the lower, the upper triangle or the diagonal of a matrix in blocks, of diagonal blocks too;
    // b may be y. Of a row only one diagonal block counts. Position p is block row order[p], of a null order p.
    using bsr_ntl_sv_ker = void(Int first, Int last, const Blocks* a, Int unit, const Int* order, T alpha, const T* b,
                                T* y);
    using bsr_ntu_sv_ker = bsr_ntl_sv_ker;
    using bsr_ntd_sv_ker = bsr_ntl_sv_ker;
    // The diagonal against `columns` right-hand sides: element (i, j) is b[i ldb + j] in row-major layout (0),
    // b[j ldb + i] in column-major (1).
    using bsr_ntd_sm_ker = void(Int row_first, Int row_last, const Blocks* a, Int unit, T alpha, Int columns,
                                Int dense_layout, const T* b, Int ldb, T* c, Int ldc);
    // All block rows of the triangle that `upper` tells.
    using bsr_nt_sv_noopt = void(Int rows, const Blocks* a, Int upper, Int unit, T alpha, const T* b, T* y);

    // y = T^-1 y, T a triangle of a dense square block of 8 or 64 rows in n * n adjacent numbers.
    using dense_l_sv8x8 = void(Int layout, Int unit, const T* a, T* y);
    using dense_u_sv8x8 = dense_l_sv8x8;
    using dense_l_sv64x64 = dense_l_sv8x8;
    using dense_u_sv64x64 = dense_l_sv8x8;
};

} // namespace ork::sparse

#endif

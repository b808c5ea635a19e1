/* SPDX-License-Identifier: MIT */
// The kernels of analysed sparse matrices: how they are named, what they take. C++: a core looks them up by name.
//
//     ork_sparse_<p>_<stem>_<i4|i8>_<tag>     d csr_ng_n_mv_ker i4
//     ork_sparse_<stem>_<i4|i8>_<tag>         what knows no precision: copy destroy optimize ...
//
// p is the precision s d c z; i4 has 32-bit indices and row pointers, i8 64-bit ones. The tokens of a stem:
//
//     csr csc coo bsr dia esb    storage; esb: rows packed in slices of 4 or 8 (sparse/mv.h)
//     ng nt nblt                 not transposed: general, triangular, block lower triangular
//     0 1 before or behind       base of the indices
//     _n_ _t_                    op(A): A, A transposed
//     mv dotmv mm sv sm          product with a vector, the same and its dot product with x, product with a dense
//                                matrix, triangular solve with one and with many right-hand sides
//     spmm spmmd sp2m            sparse times sparse, to sparse, to dense, in two stages
//     syrk sypr                  A A^H or A^H A; A B A^H or A^H B A with B symmetric
//     symgs lu_smoother sor      symmetric Gauss-Seidel, a step with given factors L U, successive over-relaxation
//     _c_ _f_                    row-major, column-major dense operands
//     _alf_ _beta                applies alpha, beta
//     _1thr                      for one thread that has the whole of the work
//     _high_opt                  on the packed copy that a full analysis makes
//     fwd bwd all                forward, backward, whole sweep
//     def                        any matrix as it was handed over, without analysis
//     avx512                     named for another processor's layout; the arithmetic of the same stem without it
//
// SHARES. A kernel gets one thread's share of the rows, slices or levels; `first` and `last` (exclusive, from 0) count
// in the whole matrix. Unless a stem says otherwise every array that has an element a row or an entry (row pointers,
// columns, values, y) is handed over at the start of the share, and x is the whole vector. Row pointers are unsigned,
// of one number more than the share has rows, and only their differences count, so the first may be any number.
// Columns are used as they are stored: of indices with base 1 the caller hands over x - 1, unless a kernel takes the
// base.
//
// All sizes and scalars are values, complex ones too. Kernels take no memory and check nothing unless a stem says so;
// what a kernel is handed may stand at any address. beta = 0 (in complex both parts) means that the output is not read.
// `unread` is anything.
//
// On x86-64 a whole number takes eight bytes of a register or of the stack in either width, so a caller may call i4
// kernels through the i8 signature with the pointers of its indices cast; the values must fit.
#ifndef ORK_ABI_SPARSE_H
#define ORK_ABI_SPARSE_H

#include "ork/abi/sparse/handle.h"
#include "ork/abi/sparse/mv.h"
#include "ork/abi/sparse/products.h"
#include "ork/abi/sparse/solve.h"

namespace ork::sparse {

// Calls<Int, T>::stem is the signature of a stem with precision, HandleCalls<Int>::stem of one without.
template <class Int, class T>
struct Calls : MvCalls<Int, T>, SolveCalls<Int, T>, ProductCalls<Int, T>, CreationCalls<Int, T> {
};

} // namespace ork::sparse

#endif

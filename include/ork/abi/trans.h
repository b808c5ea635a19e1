/* SPDX-License-Identifier: MIT */
// Kernels of matrix copy, transposition and addition: how they are named, what they take. C++: a core looks them up by
// name.
//
//     ork_trans_<tag>_ork_<p><stem>      d omatcopy
//
// p is the precision s d c z. Sizes, scalars and letters are passed by value, integers have 64 bits; a complex scalar
// is passed as C's own _Complex.
//
// ordering is C or R, case apart: the matrices stand by columns or by rows. op is chosen by trans, case apart:
//     N  op(A) = A     R  conj(A)     T  A^T     C  conj(A)^T
// For real types R is N and C is T. rows and cols are A's, as stored; op(A) is B. A leading dimension counts elements
// from one column (C) or row (R) to the next, and is at least the length of one. Any other letter, as well as rows or
// cols below 1, leaves every output alone; nothing is checked, nothing reported, no memory taken.
//
// Elements go from A to B as bits where alpha is one. Otherwise they are multiplied by alpha, also where alpha is zero,
// by the plain (ac - bd, ad + bc) in complex types, after they were conjugated. Elements between the columns or rows of
// an output are not touched. A and B do not overlap.
//
// By size they do the work or hand it to the core's drivers (ork/abi/core_trans.h), which call back:
// omatcopy does where rows and cols are at least 17 and A has more than 32,768 bytes, omatadd where they are and C has
// more than 131,072; imatcopy of a square with trans T or C, lda = ldb and alpha one from 257 rows on. Batches always
// do, but for one matrix.
#ifndef ORK_ABI_TRANS_H
#define ORK_ABI_TRANS_H

#include "ork/abi/core_trans.h"

namespace ork::trans {

// Calls<T>::stem is the signature of a stem; T is float, double or a complex pair of them.
template <class T>
struct Calls : CoreCalls<T> {
    // B <- alpha op(A)
    using omatcopy = void(char ordering, char trans, Int rows, Int cols, T alpha, const T* a, Int lda, T* b, Int ldb);
    // The same with elements stridea and strideb apart in each column (C) or row (R). _seq never asks the core.
    using omatcopy2 = void(char ordering, char trans, Int rows, Int cols, T alpha, const T* a, Int lda, Int stridea,
                           T* b, Int ldb, Int strideb);
    using omatcopy2_seq = omatcopy2;
    // AB <- alpha op(AB), in the same memory: read with lda, written with ldb. Neither reads nor writes any element
    // that is in neither matrix.
    using imatcopy = void(char ordering, char trans, Int rows, Int cols, T alpha, T* ab, Int lda, Int ldb);
    // C <- alpha op(A) + beta op(B); rows and cols are C's here, and any ordering but C is R. Products first, each
    // rounded, then their sum. omatadd with alpha zero is omatcopy of B, else with beta zero that of A, and does not
    // read the other. C may be the array of A or of B, with any leading dimension, or of both: if lda = ldb, and C is
    // square where one is transposed. _seq reads both, never asks the core and wants C apart from A and B, unless
    // neither is transposed and their leading dimensions are ldc.
    using omatadd = void(char ordering, char transa, char transb, Int rows, Int cols, T alpha, const T* a, Int lda,
                         T beta, const T* b, Int ldb, T* c, Int ldc);
    using omatadd_seq = omatadd;

    // Matrices of one size, the next one stride elements on: as omatcopy, imatcopy and omatadd on each.
    using omatcopy_batch_strided = void(char ordering, char trans, Int rows, Int cols, T alpha, const T* a, Int lda,
                                        Int stridea, T* b, Int ldb, Int strideb, Int size);
    using imatcopy_batch_strided = void(char ordering, char trans, Int rows, Int cols, T alpha, T* ab, Int lda, Int ldb,
                                        Int stride, Int size);
    using omatadd_batch_strided = void(char ordering, char transa, char transb, Int rows, Int cols, T alpha, const T* a,
                                       Int lda, Int stridea, T beta, const T* b, Int ldb, Int strideb, T* c, Int ldc,
                                       Int stridec, Int size);
    // Groups: trans, sizes, factor and leading dimensions of group g stand at [g], its size[g] matrices behind those of
    // the groups before in a and b (or ab).
    using omatcopy_batch = void(char ordering, const char* trans, const Int* rows, const Int* cols, const T* alpha,
                                const T* const* a, const Int* lda, T* const* b, const Int* ldb, Int groups,
                                const Int* size);
    using imatcopy_batch = void(char ordering, const char* trans, const Int* rows, const Int* cols, const T* alpha,
                                T* const* ab, const Int* lda, const Int* ldb, Int groups, const Int* size);
};

} // namespace ork::trans

#endif

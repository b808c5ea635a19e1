/* SPDX-License-Identifier: MIT */
// What the kernels of ork/abi/trans.h call of the core: drivers that split the work over threads and call the kernels
// for the pieces, or for the whole. Arguments are those of the kernel of the same stem; letters and sizes may be
// anything, and what is wrong is left to the kernel, which leaves outputs alone.
//
//     ork_trans_ork_<p><stem>      d omatcopy2_par
#ifndef ORK_ABI_CORE_TRANS_H
#define ORK_ABI_CORE_TRANS_H

#include <cstdint>

#include "ork/types.h"

namespace ork::trans {

using Int = std::int64_t;

template <class T>
struct CoreCalls {
    using omatcopy2_par = void(char ordering, char trans, Int rows, Int cols, T alpha, const T* a, Int lda, Int stridea,
                               T* b, Int ldb, Int strideb);
    using omatadd_par = void(char ordering, char transa, char transb, Int rows, Int cols, T alpha, const T* a, Int lda,
                             T beta, const T* b, Int ldb, T* c, Int ldc);

    // A kernel's piece of a square's transposition: exchanges the block of rows x cols elements at upper with the
    // transpose of the cols x rows block at lower, both by columns lda apart, conjugating with trans C. Both are the
    // same or apart; the same is square.
    using SwapTiles = void(char trans, Int rows, Int cols, T* upper, T* lower, Int lda);
    // Transposes the n x n matrix (trans T or C) by calls of swap on disjoint blocks. 0: declined, nothing was done.
    using imatcopy_square_t_par = Int(char trans, Int n, T* ab, Int lda, SwapTiles* swap);

    using omatcopy_batch_strided_par = void(char ordering, char trans, Int rows, Int cols, T alpha, const T* a, Int lda,
                                            Int stridea, T* b, Int ldb, Int strideb, Int size);
    using imatcopy_batch_strided_par = void(char ordering, char trans, Int rows, Int cols, T alpha, T* ab, Int lda,
                                            Int ldb, Int stride, Int size);
    using omatadd_batch_strided_par = void(char ordering, char transa, char transb, Int rows, Int cols, T alpha,
                                           const T* a, Int lda, Int stridea, T beta, const T* b, Int ldb, Int strideb,
                                           T* c, Int ldc, Int stridec, Int size);
    using omatcopy_batch_par = void(char ordering, const char* trans, const Int* rows, const Int* cols, const T* alpha,
                                    const T* const* a, const Int* lda, T* const* b, const Int* ldb, Int groups,
                                    const Int* size);
    using imatcopy_batch_par = void(char ordering, const char* trans, const Int* rows, const Int* cols, const T* alpha,
                                    T* const* ab, const Int* lda, const Int* ldb, Int groups, const Int* size);
};

} // namespace ork::trans

#endif

// SPDX-License-Identifier: MIT
// Many matrices at once: one is a plain call, several are the core's to distribute.
#include "trans/members.h"

namespace ork::trans {

extern "C" {
Call::omatcopy ORK_TRANS_MEMBER(omatcopy);
Call::imatcopy ORK_TRANS_MEMBER(imatcopy);
Call::omatadd ORK_TRANS_MEMBER(omatadd);
}

ORK_TRANS_EXPORT(omatcopy_batch_strided)
(char ordering, char trans, Int rows, Int cols, T alpha, const T* a, Int lda, Int stridea, T* b, Int ldb, Int strideb,
 Int size)
{
    if (size == 0) return;
    if (size == 1) return ORK_TRANS_MEMBER(omatcopy)(ordering, trans, rows, cols, alpha, a, lda, b, ldb);
    ORK_TRANS_DRIVER(omatcopy_batch_strided_par)
    (ordering, trans, rows, cols, alpha, a, lda, stridea, b, ldb, strideb, size);
}

ORK_TRANS_EXPORT(imatcopy_batch_strided)
(char ordering, char trans, Int rows, Int cols, T alpha, T* ab, Int lda, Int ldb, Int stride, Int size)
{
    if (size == 0) return;
    if (size == 1) return ORK_TRANS_MEMBER(imatcopy)(ordering, trans, rows, cols, alpha, ab, lda, ldb);
    ORK_TRANS_DRIVER(imatcopy_batch_strided_par)(ordering, trans, rows, cols, alpha, ab, lda, ldb, stride, size);
}

ORK_TRANS_EXPORT(omatadd_batch_strided)
(char ordering, char transa, char transb, Int rows, Int cols, T alpha, const T* a, Int lda, Int stridea, T beta,
 const T* b, Int ldb, Int strideb, T* c, Int ldc, Int stridec, Int size)
{
    if (size == 0) return;
    if (size == 1)
        return ORK_TRANS_MEMBER(omatadd)(ordering, transa, transb, rows, cols, alpha, a, lda, beta, b, ldb, c, ldc);
    ORK_TRANS_DRIVER(omatadd_batch_strided_par)
    (ordering, transa, transb, rows, cols, alpha, a, lda, stridea, beta, b, ldb, strideb, c, ldc, stridec, size);
}

ORK_TRANS_EXPORT(omatcopy_batch)
(char ordering, const char* trans, const Int* rows, const Int* cols, const T* alpha, const T* const* a, const Int* lda,
 T* const* b, const Int* ldb, Int groups, const Int* size)
{
    if (groups == 0) return;
    ORK_TRANS_DRIVER(omatcopy_batch_par)(ordering, trans, rows, cols, alpha, a, lda, b, ldb, groups, size);
}

ORK_TRANS_EXPORT(imatcopy_batch)
(char ordering, const char* trans, const Int* rows, const Int* cols, const T* alpha, T* const* ab, const Int* lda,
 const Int* ldb, Int groups, const Int* size)
{
    if (groups == 0) return;
    ORK_TRANS_DRIVER(imatcopy_batch_par)(ordering, trans, rows, cols, alpha, ab, lda, ldb, groups, size);
}

} // namespace ork::trans

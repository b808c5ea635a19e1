// SPDX-License-Identifier: MIT
// The public calls, whatever the binding: arguments checked in the order of the list, wrong ones reported, right ones
// handed to the kernels. Letters of C's enumerators are those of Fortran, '?' for what is none.
#pragma once

#include <cstdint>

#include "trans/drivers.h"

namespace ork::trans {

enum class Binding : std::uint8_t { fortran_lp64, fortran_ilp64, cblas_lp64, cblas_ilp64 };

template <class T>
void omatcopy(Binding binding, char ordering, char trans, Int rows, Int cols, T alpha, const T* a, Int lda, T* b,
              Int ldb);
template <class T>
void omatcopy2(Binding binding, char ordering, char trans, Int rows, Int cols, T alpha, const T* a, Int lda,
               Int stridea, T* b, Int ldb, Int strideb);
template <class T>
void imatcopy(Binding binding, char ordering, char trans, Int rows, Int cols, T alpha, T* ab, Int lda, Int ldb);
template <class T>
void omatadd(Binding binding, char ordering, char transa, char transb, Int rows, Int cols, T alpha, const T* a, Int lda,
             T beta, const T* b, Int ldb, T* c, Int ldc);
template <class T>
void omatcopy_batch_strided(Binding binding, char ordering, char trans, Int rows, Int cols, T alpha, const T* a,
                            Int lda, Int stridea, T* b, Int ldb, Int strideb, Int size);
template <class T>
void imatcopy_batch_strided(Binding binding, char ordering, char trans, Int rows, Int cols, T alpha, T* ab, Int lda,
                            Int ldb, Int stride, Int size);
template <class T>
void omatadd_batch_strided(Binding binding, char ordering, char transa, char transb, Int rows, Int cols, T alpha,
                           const T* a, Int lda, Int stridea, T beta, const T* b, Int ldb, Int strideb, T* c, Int ldc,
                           Int stridec, Int size);
template <class T>
void omatcopy_batch(Binding binding, char ordering, const Groups& groups, const T* alpha, const T* const* a,
                    T* const* b);
template <class T>
void imatcopy_batch(Binding binding, char ordering, const Groups& groups, const T* alpha, T* const* ab);

} // namespace ork::trans

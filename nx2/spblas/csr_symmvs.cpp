// SPDX-License-Identifier: MIT
// The symmetric product of three arrays, in double precision alone.
#include "spblas/csr_symmvs.h"
#include "spblas/members.h"

#define ORK_SPBLAS_ONLY_d_ 1
#if ORK_SPBLAS_SYMBOL(ORK_SPBLAS_ONLY_, ORK_KERNEL_LETTER, _)

namespace ork::spblas {

#define MEMBER(name) ORK_SPBLAS_SYMBOL(ORK_SPBLAS_PREFIX, ORK_KERNEL_LETTER, name)

ORK_EXPORT void MEMBER(csrsymmvs)(const char* uplo, const Int* m, const T* val, const Int* indx, const Int* ia,
                                  const T* x, T* y)
{
    symmetric_product_of_three_arrays(*uplo, m, val, indx, ia, x, y);
}
static_assert(std::is_same_v<decltype(MEMBER(csrsymmvs)), Calls<Format::csr, Int, T>::Symmvs>);

} // namespace ork::spblas

#endif

// SPDX-License-Identifier: MIT
// The products and updates of blocked reductions under their LAPACK names: those of the BLAS half.
#include <type_traits>

#include "blas/level2_kernels.h"
#include "lapack/members.h"

#define KERNEL(result, routine, ...) ORK_EXPORT result ork_blas_nx2_##routine(__VA_ARGS__);
#include "ork/abi/level3.inc"
#undef KERNEL

#define BLAS_OF(letter, stem) ork_blas_nx2_##letter##stem
#define BLAS(letter, stem) BLAS_OF(letter, stem)
#define BLAS_X_OF(letter, stem) ork_blas_nx2_x##letter##stem
#define BLAS_X(letter, stem) BLAS_X_OF(letter, stem)
#if ORK_KERNEL_COMPLEX
#define HEMV BLAS(ORK_KERNEL_LETTER, hemv)
#define HER2 BLAS(ORK_KERNEL_LETTER, her2)
#define HER2K BLAS_X(ORK_KERNEL_LETTER, her2k)
#else
#define HEMV BLAS_X(ORK_KERNEL_LETTER, symv)
#define HER2 BLAS_X(ORK_KERNEL_LETTER, syr2)
#define HER2K BLAS_X(ORK_KERNEL_LETTER, syr2k)
#endif

namespace ork::lapack {
namespace {

// As the BLAS half declares elements.
template <class E>
auto* as_declared(E* p)
{
    using Element = std::remove_const_t<E>;
    if constexpr (is_complex<Element>) {
        using Pair = decltype(boundary(Element{}));
        return reinterpret_cast<std::conditional_t<std::is_const_v<E>, const Pair*, Pair*>>(p);
    } else {
        return p;
    }
}

} // namespace
} // namespace ork::lapack

using namespace ork::lapack;

ORK_LAPACK_EXPORT(hemv_nb)
(const char* uplo, const Int* n, const T* alpha, const T* a, const Int* lda, const T* x, const Int* incx, const T* beta,
 T* y, const Int* incy)
{
    HEMV(uplo, n, as_declared(alpha), as_declared(a), lda, as_declared(x), incx, as_declared(beta), as_declared(y),
         incy);
}

#if !ORK_KERNEL_COMPLEX
ORK_LAPACK_EXPORT(symv_nb)
(const char* uplo, const Int* n, const T* alpha, const T* a, const Int* lda, const T* x, const Int* incx, const T* beta,
 T* y, const Int* incy)
{
    HEMV(uplo, n, alpha, a, lda, x, incx, beta, y, incy);
}
#endif

ORK_LAPACK_EXPORT(her2_nb)
(const char* uplo, const Int* n, const T* alpha, const T* x, const Int* incx, const T* y, const Int* incy, T* a,
 const Int* lda)
{
    HER2(uplo, n, as_declared(alpha), as_declared(x), incx, as_declared(y), incy, as_declared(a), lda);
}

ORK_LAPACK_EXPORT(her2k_nb)
(const char* uplo, const char* trans, const Int* n, const Int* k, const T* alpha, const T* a, const Int* lda,
 const T* b, const Int* ldb, const R* beta, T* c, const Int* ldc)
{
    HER2K(uplo, trans, n, k, as_declared(alpha), as_declared(a), lda, as_declared(b), ldb, beta, as_declared(c), ldc);
}

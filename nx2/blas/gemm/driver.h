// SPDX-License-Identifier: MIT
// C <- alpha op(A) op(B) + beta C: quick returns, the small multiply, beta, and the way to the blocked multiply.
#pragma once

#include "blas/gemm/blocked.h"
#include "blas/gemm/scale.h"
#include "blas/gemm/table.h"

namespace ork::gemm {

// Version of the interface between the driver and the blocked multiply.
constexpr std::int64_t interface_version = 2;

template <class T>
[[gnu::noinline]] void multiply_with_descriptor(const Product<T>& product)
{
    Desc desc{};
    const std::uint32_t row = Routines<T>::best_row();
    Descriptor<T>::fill(desc, row, Routines<T>::rows[row]);
    desc.routines.get_blks_size(&product.m, &product.n, &product.k, &desc);
    multiply_blocked(product, desc);
}

template <class T>
[[gnu::always_inline]] inline void drive(char transa, char transb, Int m, Int n, Int k, T alpha, const T* a, Int lda,
                                         const T* b, Int ldb, T beta, T* c, Int ldc)
{
    using U = Units<T>;
    if (m <= 0 || n <= 0) return;
    const bool beta_is_one = beta == T(1), beta_is_zero = beta == T(0);
    const Product<T> product{m, n,   k,           alpha, rows_of(Op(transa), a, lda), columns_of(Op(transb), b, ldb),
                             c, ldc, beta_is_zero};
    if (m <= 10 && n <= 10 && k >= 1 && k <= 10 && beta_is_one) {
        if (!(alpha == T(0))) multiply_direct(product, block_depth(k, U::k));
        return;
    }
    // beta = 0 is left to whoever writes an element of C first, so that C is touched once; the rest is applied now.
    const bool nothing_to_add = alpha == T(0) || k <= 0;
    if (!beta_is_one && (!beta_is_zero || nothing_to_add)) scale(m, n, beta, c, ldc);
    if (nothing_to_add) return;
    if (m < U::m || n < U::n || k < U::k || !packing_pays(product)) // nothing is packed: no descriptor is needed
        return multiply_direct(product, block_depth(k, U::k));
    multiply_with_descriptor(product);
}

} // namespace ork::gemm

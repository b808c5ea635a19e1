// SPDX-License-Identifier: MIT
// C <- alpha op(A) op(B) + beta C: quick returns, the small multiply, beta, and the way to the blocked multiply.
#pragma once

#include "blas/gemm/multiply.h"
#include "blas/gemm/scale.h"
#include "blas/gemm/table.h"
#include "blas/gemm/triangle.h"

namespace ork::gemm {

// Version of the interface between the driver and the blocked multiply.
constexpr std::int64_t interface_version = 2;

// Whether a product is packed at all; otherwise no descriptor is needed.
template <class T, class S>
inline bool needs_descriptor(const Product<T, S>& p)
{
    using U = Units<T>;
    return p.m >= U::m && p.n >= U::n && p.k >= U::k && packing_pays(p);
}

template <class T, class S, class Part>
[[gnu::noinline]] void multiply_with_descriptor(const Product<T, S>& product, Part part)
{
    Desc desc{};
    const std::uint32_t row = Routines<T>::best_row();
    Descriptor<T>::fill(desc, row, Routines<T>::rows[row]);
    desc.routines.get_blks_size(&product.m, &product.n, &product.k, &desc);
    multiply_blocked(product, desc, part);
}

template <class T>
void multiply(const Product<T>& p)
{
    if (needs_descriptor(p))
        multiply_with_descriptor(p, Everything{});
    else
        multiply_direct(p, block_depth(p.k, Units<T>::k));
}

template <class T, class S>
void multiply_triangle(bool lower, const Product<T, S>& p)
{
    const Triangle part{lower};
    if (needs_descriptor(p))
        multiply_with_descriptor(p, part);
    else
        part.multiply_direct(p, block_depth(p.k, Units<T>::k));
}

template <class T>
[[gnu::always_inline]] inline void drive(char transa, char transb, Int m, Int n, Int k, T alpha, const T* a, Int lda,
                                         const T* b, Int ldb, T beta, T* c, Int ldc)
{
    if (m <= 0 || n <= 0) return;
    const bool beta_is_one = beta == T(1), beta_is_zero = beta == T(0);
    const Product<T> product{m, n,   k,           alpha, rows_of(Op(transa), a, lda), columns_of(Op(transb), b, ldb),
                             c, ldc, beta_is_zero};
    if (m <= 10 && n <= 10 && k >= 1 && k <= 10 && beta_is_one) {
        if (!(alpha == T(0))) multiply_direct(product, block_depth(k, Units<T>::k));
        return;
    }
    // beta = 0 is left to whoever writes an element of C first, so that C is touched once; the rest is applied now.
    const bool nothing_to_add = alpha == T(0) || k <= 0;
    if (!beta_is_one && (!beta_is_zero || nothing_to_add)) scale(m, n, beta, c, ldc);
    if (nothing_to_add) return;
    if (!needs_descriptor(product)) return multiply_direct(product, block_depth(k, Units<T>::k));
    multiply_with_descriptor(product, Everything{});
}

} // namespace ork::gemm

// SPDX-License-Identifier: MIT
// The multiply as other kernels use it. Defined once for each type, in its <p>gemm.cpp.
#pragma once

#include "blas/gemm/product.h"

namespace ork::gemm {

// C (m x n) = C + alpha A B, or alpha A B where p says so, by the way that suits its size; every size is at least 1. An
// element's bits depend on its own row of A and column of B alone.
template <class T>
void multiply(const Product<T>& p);

// The same for one triangle of a square C, its diagonal included; nothing of the other is read or written.
template <class T, class S>
void multiply_triangle(bool lower, const Product<T, S>& p);

extern template void multiply(const Product<float>&);
extern template void multiply(const Product<double>&);
extern template void multiply(const Product<Complex<float>>&);
extern template void multiply(const Product<Complex<double>>&);
extern template void multiply_triangle(bool, const Product<float>&);
extern template void multiply_triangle(bool, const Product<double>&);
extern template void multiply_triangle(bool, const Product<Complex<float>>&);
extern template void multiply_triangle(bool, const Product<Complex<double>>&);
extern template void multiply_triangle(bool, const Product<Complex<float>, float>&);
extern template void multiply_triangle(bool, const Product<Complex<double>, double>&);

} // namespace ork::gemm

// SPDX-License-Identifier: MIT
// The exports of level 3 by element type, and shorthands for scalars and triangles.
#pragma once

#include <cstring>

#include "blas/gemm_by_type.h"
#include "support/random.h"
#include "support/strided.h"

#define KERNEL(result, routine, ...) extern "C" result ork_blas_nx2_##routine(__VA_ARGS__);
#include "ork/abi/level3.inc"
#undef KERNEL

namespace ork::test {

// clang-format off
template <class T> inline constexpr auto gemmt = of_type<T>(ork_blas_nx2_xsgemmt, ork_blas_nx2_xdgemmt, ork_blas_nx2_xcgemmt, ork_blas_nx2_xzgemmt);
template <class T> inline constexpr auto syrk = of_type<T>(ork_blas_nx2_xssyrk, ork_blas_nx2_xdsyrk, ork_blas_nx2_xcsyrk, ork_blas_nx2_xzsyrk);
template <class T> inline constexpr auto syr2k = of_type<T>(ork_blas_nx2_xssyr2k, ork_blas_nx2_xdsyr2k, ork_blas_nx2_xcsyr2k, ork_blas_nx2_xzsyr2k);
template <class T> inline constexpr auto symm = of_type<T>(ork_blas_nx2_xssymm, ork_blas_nx2_xdsymm, ork_blas_nx2_xcsymm, ork_blas_nx2_xzsymm);
template <class T> inline constexpr auto trmm = of_type<T>(ork_blas_nx2_xstrmm, ork_blas_nx2_xdtrmm, ork_blas_nx2_xctrmm, ork_blas_nx2_xztrmm);
template <class T> inline constexpr auto trsm = of_type<T>(ork_blas_nx2_xstrsm, ork_blas_nx2_xdtrsm, ork_blas_nx2_xctrsm, ork_blas_nx2_xztrsm);
// complex T
template <class T> inline constexpr auto herk = of_type<T>(ork_blas_nx2_xcherk, ork_blas_nx2_xzherk);
template <class T> inline constexpr auto her2k = of_type<T>(ork_blas_nx2_xcher2k, ork_blas_nx2_xzher2k);
template <class T> inline constexpr auto hemm = of_type<T>(ork_blas_nx2_xchemm, ork_blas_nx2_xzhemm);
template <class T> inline constexpr auto gemm3m = of_type<T>(ork_blas_nx2_xcgemm3m, ork_blas_nx2_xzgemm3m);
template <class T> inline constexpr auto mixed_gemm = of_type<T>(ork_blas_nx2_xscgemm, ork_blas_nx2_xdzgemm);
// clang-format on

template <class T>
T conjugate(T x)
{
    if constexpr (is_complex<T>)
        return std::conj(x);
    else
        return x;
}

// Padded, against either page, at any alignment.
template <class T>
Matrix<T> any_matrix(std::int64_t rows, std::int64_t columns, Random& random)
{
    return {rows, columns, rows + random.integer(0, 3), both_guards[random.integer(0, 1)],
            sizeof(Real<T>) * (random.bits() % 4)};
}

// Whether (i, j) is in the triangle.
inline bool in_triangle(char uplo, std::int64_t i, std::int64_t j) { return uplo == 'L' ? i >= j : i <= j; }

// The same bits, or NaN of any kind, in each part.
template <class T>
bool same_value(T x, T y)
{
    if constexpr (is_complex<T>)
        return same_value(x.real(), y.real()) && same_value(x.imag(), y.imag());
    else
        return std::memcmp(&x, &y, sizeof(T)) == 0 || (x != x && y != y);
}

} // namespace ork::test

// SPDX-License-Identifier: MIT
// The exports of the blocked multiply by element type, the reference that fixes their bits, and shorthands.
#pragma once

#include <cstdint>
#include <vector>

#include "blas/level1_kernels_by_type.h"
#include "ork/abi/gemm.h"
#include "ork/types.h"

// clang-format off
#define GEMM_EXPORTS(p, T) \
    extern "C" { \
    void ork_blas_nx2_x##p##gemm(const char*, const char*, const int64_t*, const int64_t*, const int64_t*, const T*, const T*, \
                                 const int64_t*, const T*, const int64_t*, const T*, T*, const int64_t*); \
    void ork_blas_nx2_x##p##gemm_par(const char*, const char*, const int64_t*, const int64_t*, const int64_t*, const T*, \
                                     const T*, const int64_t*, const T*, const int64_t*, const T*, T*, const int64_t*, \
                                     ork_gemm_desc*, const int64_t*); \
    void ork_blas_nx2_##p##gemm_num_kernels(int64_t*); \
    int64_t ork_blas_nx2_##p##gemm_api_support(); \
    int64_t ork_blas_nx2_##p##gemm_get_kernel(const int64_t*, ork_gemm_desc*); \
    const ork_gemm_row* ork_blas_nx2_##p##gemm_get_optimal_kernel(ork_gemm_desc*); \
    int64_t ork_blas_nx2_##p##gemm_get_blks_size(const int64_t*, const int64_t*, const int64_t*, ork_gemm_desc*); \
    int64_t ork_blas_nx2_##p##gemm_get_bufs_size(const int64_t*, const int64_t*, const int64_t*, const int64_t*, \
                                                 const int64_t*, ork_gemm_desc*); \
    int64_t ork_blas_nx2_##p##gemm_get_bufs(ork_gemm_desc*, void**, void**, void**, void**); \
    void ork_blas_nx2_##p##gemm_free_bufs(void*); \
    void ork_blas_nx2_##p##gemm_set_blks_size(const int64_t*, const int64_t*, const int64_t*, ork_gemm_desc*); \
    void ork_blas_nx2_##p##gemm_zero_desc(ork_gemm_desc*); \
    void ork_blas_nx2_##p##gemm_mscale(const int64_t*, const int64_t*, const T*, T*, const int64_t*); \
    int64_t ork_blas_nx2_##p##gemm_pack_get_size(const char*, const int64_t*, const int64_t*, const int64_t*); \
    int64_t ork_blas_nx2_##p##gemm_copyan(const int64_t*, const int64_t*, const T*, const int64_t*, T*, const int64_t*, \
                                          const T*); \
    int64_t ork_blas_nx2_##p##gemm_copyat(const int64_t*, const int64_t*, const T*, const int64_t*, T*, const int64_t*, \
                                          const T*); \
    int64_t ork_blas_nx2_##p##gemm_copybn(const int64_t*, const int64_t*, const T*, const int64_t*, T*, const int64_t*); \
    int64_t ork_blas_nx2_##p##gemm_copybt(const int64_t*, const int64_t*, const T*, const int64_t*, T*, const int64_t*); \
    }
GEMM_EXPORTS(s, float)
GEMM_EXPORTS(d, double)
GEMM_EXPORTS(c, ork_complex_float)
GEMM_EXPORTS(z, ork_complex_double)
#undef GEMM_EXPORTS
// clang-format on

namespace ork::test {

// Depth of a block of a product of depth k: 256, or two halves below 512; one block up to 255.
inline std::int64_t gemm_block(std::int64_t k)
{
    if (k <= 255) return k;
    return k > 256 && k < 512 ? ((k + 1) / 2 + 3) / 4 * 4 : 256;
}

// clang-format off
template <class T> inline constexpr auto gemm = of_type<T>(ork_blas_nx2_xsgemm, ork_blas_nx2_xdgemm, ork_blas_nx2_xcgemm, ork_blas_nx2_xzgemm);
// clang-format on

// x, with an imaginary part unless it is 0 or 1.
template <class T>
T scalar(double x)
{
    if constexpr (is_complex<T>)
        return {static_cast<Real<T>>(x), static_cast<Real<T>>(x == 0 || x == 1 ? 0 : 0.5)};
    else
        return static_cast<T>(x);
}

template <class T>
bool has_nan(T x)
{
    return !(x == x);
}

// One element: beta * c (not read for beta = 0), then block after block the sum from zero of (alpha a(l)) b(l) in
// order. A complex block has four sums, (re re - im im, im re + re im).
template <class T, class A, class B>
T gemm_element(std::int64_t k, T alpha, A&& a, B&& b, T beta, T c)
{
    const auto times = [](T x, T y) {
        if constexpr (is_complex<T>)
            return T(x.real() * y.real() - x.imag() * y.imag(), x.real() * y.imag() + x.imag() * y.real());
        else
            return x * y;
    };
    T result = beta == T(0) ? T(0) : beta == T(1) ? c : times(beta, c);
    if (alpha == T(0)) return result;
    const std::int64_t block = gemm_block(k);
    for (std::int64_t first = 0; first < k; first += block) {
        Real<T> sum[4] = {};
        for (std::int64_t l = first; l < k && l < first + block; ++l) {
            const T x = alpha == T(1) ? T(a(l)) : times(alpha, a(l)), y = b(l);
            if constexpr (is_complex<T>) {
                sum[0] += x.real() * y.real();
                sum[1] += x.imag() * y.imag();
                sum[2] += x.imag() * y.real();
                sum[3] += x.real() * y.imag();
            } else {
                sum[0] += x * y;
            }
        }
        T value;
        if constexpr (is_complex<T>)
            value = {sum[0] - sum[1], sum[2] + sum[3]};
        else
            value = sum[0];
        result = beta == T(0) && first == 0 ? value : result + value;
    }
    return result;
}

} // namespace ork::test

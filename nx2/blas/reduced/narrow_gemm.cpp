// SPDX-License-Identifier: MIT
// C <- alpha op(A) op(B) + beta C with A and B of narrow floating-point numbers, C, alpha and beta in binary32. The
// result has the bits of xsgemm on the widened operands: products are exact in binary32 (bfloat16's may leave its
// range), and sums round once a step, in xsgemm's order.
#include <cstddef>

#include "blas/gemm/multiply.h"
#include "blas/gemm/scale.h"
#include "blas/reduced/widen.h"
#include "frame/core_imports.h"
#include "frame/export.h"

namespace ork::reduced {

using namespace gemm;

// A block of an operand widened to floats, contiguous in the direction in which the operand is.
template <class Format>
Operand<float> widen(const Operand<typename Format::Bits>& x, Int outer, Int depth, float* to)
{
    const bool along_outer = x.outer_stride == 1;
    const Int length = along_outer ? outer : depth, lines = along_outer ? depth : outer;
    const Int stride = along_outer ? x.depth_stride : x.outer_stride;
    for (Int line = 0; line < lines; ++line) {
        const auto* from = x.data + line * stride;
        for (Int i = 0; i < length; ++i) to[line * length + i] = Format::widen(from[i]);
    }
    return {to, along_outer ? 1 : length, along_outer ? length : 1};
}

template <class Format>
void narrow_gemm(char transa, char transb, Int m, Int n, Int k, float alpha, const typename Format::Bits* a, Int lda,
                 const typename Format::Bits* b, Int ldb, float beta, float* c, Int ldc)
{
    if (m <= 0 || n <= 0) return;
    const bool adds = alpha != 0 && k > 0; // also for NaN
    if (beta != 1 && !(beta == 0 && adds)) scale(m, n, beta, c, ldc);
    if (!adds) return;

    // What fits on the stack when there is no memory: single rows and columns, 256 deep.
    constexpr Int reserve = 256;
    float reserved[2 * reserve];
    const Int kb = least(k, block_depth(k, Units<float>::k));
    Int mb = least(m, 640), nb = least(n, 1024);
    void* base =
        m * n <= 1 ? nullptr : ork_serv_allocate(static_cast<std::size_t>((mb + nb) * kb) * sizeof(float), 4096);
    if (base == nullptr) mb = nb = 1;
    float* wide_a = base != nullptr ? static_cast<float*>(base) : reserved;
    float* wide_b = wide_a + mb * kb;
    const auto rows = rows_of(Op(transa), a, lda);
    const auto columns = columns_of(Op(transb), b, ldb);
    for (Int j = 0; j < n; j += nb)
        for (Int l = 0; l < k; l += kb) {
            const Int width = least(n - j, nb), depth = least(k - l, kb);
            const Operand<float> block_b = widen<Format>(columns.from(j, l), width, depth, wide_b);
            for (Int i = 0; i < m; i += mb) {
                const Int height = least(m - i, mb);
                const Operand<float> block_a = widen<Format>(rows.from(i, l), height, depth, wide_a);
                multiply(Product<float>{height, width, depth, alpha, block_a, block_b, c + i + j * ldc, ldc,
                                        beta == 0 && l == 0});
            }
        }
    if (base != nullptr) ork_serv_deallocate(base);
}

} // namespace ork::reduced

using Ptr = const std::int64_t*;
using Letter = const char*;

#define MEMBER(name, Format)                                                                                           \
    ORK_EXPORT void ork_blas_nx2_xgemm_##name(Letter transa, Letter transb, Ptr m, Ptr n, Ptr k, const float* alpha,   \
                                              const Format::Bits* a, Ptr lda, const Format::Bits* b, Ptr ldb,          \
                                              const float* beta, float* c, Ptr ldc)                                    \
    {                                                                                                                  \
        ork::reduced::narrow_gemm<Format>(*transa, *transb, *m, *n, *k, *alpha, a, *lda, b, *ldb, *beta, c, *ldc);     \
    }
MEMBER(bf16bf16f32, ork::reduced::Bfloat16)
MEMBER(f16f16f32, ork::reduced::Binary16)
MEMBER(e4m3e4m3f32, ork::reduced::E4m3)
MEMBER(e5m2e5m2f32, ork::reduced::E5m2)

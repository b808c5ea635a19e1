// SPDX-License-Identifier: MIT
// C <- alpha op(A) op(B) + beta C with a real A and complex B and C. B is packed as zgemm packs it, which is the real
// multiply's packing of twice as many columns, re and im in turn; so the real tile gives both parts of C. Each is
// summed over a block of depth in order from zero, then alpha times the sum is added to C, block after block.
#pragma once

#include "blas/gemm/scale.h"
#include "blas/gemm/strips.h"
#include "blas/gemm/table.h"

namespace ork::gemm {

template <class R>
struct Mixed {
    using T = Complex<R>;
    using Ptr = const Int*;
    static constexpr int kernels = 1;
    static const ork_gemm_row rows[1];

    static std::uint32_t best_row() { return 0; }

    static Int get_blks_size(Ptr, Ptr n, Ptr k, Desc* desc) { return Descriptor<T>::fix_blocks(*n, *k, *desc); }

    static Int get_bufs_size(Ptr which, Ptr clip, Ptr m, Ptr n, Ptr k, Desc* desc)
    {
        const ork_gemm_buffer a = desc->a;
        if (Descriptor<R>::size_buffers(*which, *clip, *m, *n, *k, *desc) != 0) return 1;
        const ork_gemm_buffer real = desc->a;
        Descriptor<T>::size_buffers(*which, *clip, *m, *n, *k, *desc);
        desc->a = *which == ORK_GEMM_BUFS_BC || *which == ORK_GEMM_BUFS_B || *which == ORK_GEMM_BUFS_C ? a : real;
        return 0;
    }

    static Int get_bufs(Desc* desc, void** base, void** a, void** b, void** c)
    {
        return Descriptor<T>::get_buffers(*desc, base, a, b, c);
    }

    template <char op>
    static Int copy_a(Ptr m, Ptr k, const R* a, Ptr lda, R* buffer, Ptr panel_stride, const R* alpha)
    {
        return Routines<R>::template copy_a<op>(m, k, a, lda, buffer, panel_stride, alpha);
    }

    template <char op>
    static Int copy_b(Ptr k, Ptr n, const T* b, Ptr ldb, T* buffer, Ptr panel_stride)
    {
        return Routines<T>::template copy_b<op>(k, n, b, ldb, buffer, panel_stride);
    }

    // C += alpha A B of packed blocks. `scalar` is alpha; mode and flags make no difference.
    static Int kernel(Ptr, Ptr m, Ptr n, Ptr depth, const R* a, Ptr a_stride, const T* b, Ptr b_stride, const T* scalar,
                      T* c, Ptr ldc, Ptr)
    {
        const T alpha = *scalar;
        multiply_strips(*m, 2 * *n, *depth, a, *a_stride, reals(b), 2 * *b_stride,
                        [&](Int row, Int rows, Int column, Int columns, const R* sums) {
                            for (Int j = 0; j < columns; j += 2, sums += 2 * strip_rows) {
                                T* to = c + row + (column + j) / 2 * *ldc;
                                for (Int i = 0; i < rows; ++i) to[i] = to[i] + alpha * T{sums[i], sums[i + strip_rows]};
                            }
                        });
        return 0;
    }

    template <int scalar>
    static Int kernel_with(Ptr mode, Ptr m, Ptr n, Ptr depth, const R* a, Ptr a_stride, const T* b, Ptr b_stride, T* c,
                           Ptr ldc, Ptr flags)
    {
        const T one{1, 0};
        if (scalar == 0) scale(*m, *n, T{}, c, *ldc);
        return kernel(mode, m, n, depth, a, a_stride, b, b_stride, &one, c, ldc, flags);
    }
};

// clang-format off
template <class R>
const ork_gemm_row Mixed<R>::rows[1] = {{
    Units<R>::m, Units<Complex<R>>::n, Units<R>::k, Units<R>::c_factor,
    {Units<R>::parameters[0], Units<R>::parameters[1], Units<R>::parameters[2]}, Units<R>::flags,
    {
        get_blks_size, get_bufs_size, get_bufs,
        reinterpret_cast<Untyped>(copy_a<'N'>), reinterpret_cast<Untyped>(copy_a<'T'>), reinterpret_cast<Untyped>(copy_a<'T'>),
        reinterpret_cast<Untyped>(copy_b<'N'>), reinterpret_cast<Untyped>(copy_b<'T'>), reinterpret_cast<Untyped>(copy_b<'C'>),
        reinterpret_cast<Untyped>(kernel), reinterpret_cast<Untyped>(kernel_with<1>), reinterpret_cast<Untyped>(kernel_with<0>),
    },
}};
// clang-format on

// The same sums without work buffers.
template <class R>
void multiply_mixed_plainly(Int m, Int n, Int k, Int kb, Complex<R> alpha, Operand<R> a, Operand<Complex<R>> b,
                            Complex<R>* c, Int ldc)
{
    for (Int j = 0; j < n; ++j)
        for (Int l = 0; l < k; l += kb)
            for (Int i = 0; i < m; ++i) {
                Complex<R> sum{};
                for (Int q = l; q < k && q < l + kb; ++q) {
                    const Complex<R> x = b.conjugated ? conj(*b.at(j, q)) : *b.at(j, q);
                    sum = sum + *a.at(i, q) * x;
                }
                c[i + j * ldc] = c[i + j * ldc] + alpha * sum;
            }
}

template <class R>
void drive_mixed(char transa, char transb, Int m, Int n, Int k, Complex<R> alpha, const R* a, Int lda,
                 const Complex<R>* b, Int ldb, Complex<R> beta, Complex<R>* c, Int ldc)
{
    using T = Complex<R>;
    if (m <= 0 || n <= 0) return;
    if (!(beta == T{1, 0})) scale(m, n, beta, c, ldc);
    if (alpha == T{} || k <= 0) return;
    const Operand<R> rows = rows_of(Op(transa), a, lda);
    const Operand<T> columns = columns_of(Op(transb), b, ldb);
    Desc desc{};
    Descriptor<T>::fill(desc, 0, Mixed<R>::rows[0]);
    Mixed<R>::get_blks_size(&m, &n, &k, &desc);
    const Int which = ORK_GEMM_BUFS_AB, clip = ORK_GEMM_CLIP_TO_PROBLEM;
    Mixed<R>::get_bufs_size(&which, &clip, &m, &n, &k, &desc);
    void *base = nullptr, *buffer_a, *buffer_b, *buffer_c;
    if (m * n * k < 512 || Mixed<R>::get_bufs(&desc, &base, &buffer_a, &buffer_b, &buffer_c) != 0)
        return multiply_mixed_plainly(m, n, k, desc.kb, alpha, rows, columns, c, ldc);
    R* packed_a = static_cast<R*>(buffer_a);
    T* packed_b = static_cast<T*>(buffer_b);
    for (Int j = 0; j < n; j += desc.nb)
        for (Int l = 0; l < k; l += desc.kb) {
            const Int width = n - j < desc.nb ? n - j : desc.nb, depth = k - l < desc.kb ? k - l : desc.kb;
            const Int padded = round_up(depth, Units<R>::k), mode = 1, flags = 1;
            pack_b(columns.from(j, l), width, depth, packed_b, desc.b.panel_stride);
            for (Int i = 0; i < m; i += desc.mb) {
                const Int height = m - i < desc.mb ? m - i : desc.mb;
                pack_a(rows.from(i, l), height, depth, packed_a, desc.a.panel_stride, R(1));
                Mixed<R>::kernel(&mode, &height, &width, &padded, packed_a, &desc.a.panel_stride, packed_b,
                                 &desc.b.panel_stride, &alpha, c + i + j * ldc, &ldc, &flags);
            }
        }
    ork_serv_deallocate(base);
}

} // namespace ork::gemm

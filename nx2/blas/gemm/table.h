// SPDX-License-Identifier: MIT
// The kernel table of one precision: two constant rows, equal but for their kernel entry.
#pragma once

#include "blas/gemm/descriptor.h"
#include "blas/gemm/kernel.h"
#include "blas/gemm/pack.h"

namespace ork::gemm {

// What the rows point to. All of it is local to the library, so that the table needs no symbol to be looked up at load.
template <class T>
struct Routines {
    using Ptr = const Int*;

    static Int get_blks_size(Ptr, Ptr n, Ptr k, Desc* desc) { return Descriptor<T>::fix_blocks(*n, *k, *desc); }

    static Int get_bufs_size(Ptr which, Ptr clip, Ptr m, Ptr n, Ptr k, Desc* desc)
    {
        return Descriptor<T>::size_buffers(*which, *clip, *m, *n, *k, *desc);
    }

    static Int get_bufs(Desc* desc, void** base, void** a, void** b, void** c)
    {
        return Descriptor<T>::get_buffers(*desc, base, a, b, c);
    }

    template <char op>
    static Int copy_a(Ptr m, Ptr k, const T* a, Ptr lda, T* buffer, Ptr panel_stride, const T* alpha)
    {
        if (*m < 1 || *k < 1) return 0;
        pack_a(rows_of(Op(op), a, *lda), *m, *k, buffer, *panel_stride, *alpha);
        return 0;
    }

    template <char op>
    static Int copy_b(Ptr k, Ptr n, const T* b, Ptr ldb, T* buffer, Ptr panel_stride)
    {
        if (*k < 1 || *n < 1) return 0;
        pack_b(columns_of(Op(op), b, *ldb), *n, *k, buffer, *panel_stride);
        return 0;
    }

    // Two tests, on the mode and on the scalar, give one of four cases, and the alignment of C one of its two kernels.
    // The two arrangements of the tile are the two rows' entries.
    template <Arrangement arrangement>
    static Int kernel(Ptr mode, Ptr m, Ptr n, Ptr depth, const T* a, Ptr a_stride, const T* b, Ptr b_stride,
                      const T* scalar, T* c, Ptr ldc, Ptr flags)
    {
        with_flag(*scalar == T(0), [&]<bool overwrite>() {
            with_flag(*mode == 2, [&]<bool prefetch>() {
                with_flag(aligned16(c) && *flags % 2 == 0, [&]<bool aligned>() {
                    multiply_packed<Finish{overwrite, prefetch, aligned}, arrangement>(*m, *n, *depth, a, *a_stride, b,
                                                                                       *b_stride, c, *ldc);
                });
            });
        });
        return 0;
    }

    // The entry with its scalar fixed, 0 or 1.
    template <int scalar>
    static Int kernel_with(Ptr mode, Ptr m, Ptr n, Ptr depth, const T* a, Ptr a_stride, const T* b, Ptr b_stride, T* c,
                           Ptr ldc, Ptr flags)
    {
        const T fixed = T(scalar);
        return kernel<Arrangement::broadcast>(mode, m, n, depth, a, a_stride, b, b_stride, &fixed, c, ldc, flags);
    }

    // Of real numbers the conjugated copy is the transposed one, the same routine.
    static constexpr char conjugate_copy = is_complex<T> ? 'C' : 'T';

    static constexpr int kernels = Units<T>::kernels; // that count of these
    static const ork_gemm_row rows[2];

    // Row 1 for model 66, the core's word for processors that broadcast in the load unit; row 0 for every other.
    static std::uint32_t best_row()
    {
        if (Units<T>::kernels == 1) return 0;
        static constexpr std::uint32_t selection[2] = {0, 1};
        return selection[ork_serv_get_microarchitecture() == 66];
    }
};

// Plain braces, so that the table is data and nothing runs at load.
// clang-format off
#define ORK_GEMM_ROW(arrangement)                                                                                              \
    {                                                                                                                  \
        Units<T>::m, Units<T>::n, Units<T>::k, Units<T>::c_factor,                                                     \
        {Units<T>::parameters[0], Units<T>::parameters[1], Units<T>::parameters[2]}, Units<T>::flags,                  \
        {                                                                                                              \
            Routines<T>::get_blks_size, Routines<T>::get_bufs_size, Routines<T>::get_bufs,                             \
            reinterpret_cast<Untyped>(Routines<T>::template copy_a<'N'>),                                            \
            reinterpret_cast<Untyped>(Routines<T>::template copy_a<'T'>),                                             \
            reinterpret_cast<Untyped>(Routines<T>::template copy_a<Routines<T>::conjugate_copy>),                                             \
            reinterpret_cast<Untyped>(Routines<T>::template copy_b<'N'>),                                            \
            reinterpret_cast<Untyped>(Routines<T>::template copy_b<'T'>),                                             \
            reinterpret_cast<Untyped>(Routines<T>::template copy_b<Routines<T>::conjugate_copy>),                                             \
            reinterpret_cast<Untyped>(Routines<T>::template kernel<arrangement>),                                              \
            reinterpret_cast<Untyped>(Routines<T>::template kernel_with<1>),                                           \
            reinterpret_cast<Untyped>(Routines<T>::template kernel_with<0>)                                            \
        }                                                                                                              \
    }
// clang-format on

template <class T>
const ork_gemm_row Routines<T>::rows[2] = {
    ORK_GEMM_ROW((is_complex<T> ? Arrangement::broadcast : Arrangement::crossed)),
    ORK_GEMM_ROW(Arrangement::broadcast)};

#undef ORK_GEMM_ROW

} // namespace ork::gemm

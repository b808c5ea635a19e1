// SPDX-License-Identifier: MIT
// The multiply of any size: block after block of depth, B packed once for all rows, A block by block of rows.
#pragma once

#include "blas/gemm/descriptor.h"
#include "blas/gemm/direct.h"
#include "blas/gemm/product.h"

namespace ork::gemm {

// Whether packing costs more than it gives. Packing touches every element of A and B once, at about two cycles an
// element; a tile read from the operands as they stand pays with strided lines, which hurts once they leave the cache.
template <class T>
bool packing_pays(const Product<T>& p)
{
    if (p.m <= 8 || p.n < 8) return false;
    const bool whole = p.m % Units<T>::m == 0 && p.n % Units<T>::n == 0; // edges of tiles cost packing more
    const Int crossover = is_complex<T> ? (whole ? 12 : 16) : whole ? 24 : 40;
    return p.m * p.n * p.k > crossover * crossover * crossover;
}

// beta has been applied to C, or is 0 and C is written without being read.
template <class T>
void multiply_blocked(const Product<T>& p, Desc& desc)
{
    if (desc.mb == 0 || desc.nb == 0 || desc.kb == 0) Descriptor<T>::fix_blocks(p.n, p.k, desc);
    void *base = nullptr, *buffer_a, *buffer_b, *buffer_c;
    desc.c_bytes = 0; // tiles go straight to C
    Descriptor<T>::size_buffers(ORK_GEMM_BUFS_AB, ORK_GEMM_CLIP_TO_PROBLEM, p.m, p.n, p.k, desc);
    if (!packing_pays(p) || Descriptor<T>::get_buffers(desc, &base, &buffer_a, &buffer_b, &buffer_c) != 0) {
        multiply_direct(p, desc.kb); // also when there is no memory: the same bits, more slowly
        return;
    }
    T* packed_a = static_cast<T*>(buffer_a);
    T* packed_b = static_cast<T*>(buffer_b);
    const auto choose = [](const Operand<T>& x, Int unit_stride, Untyped as_is, Untyped transposed,
                           Untyped conjugated) {
        return unit_stride == 1 && !x.conjugated ? as_is : x.conjugated ? conjugated : transposed;
    };
    const ork_gemm_routines& r = desc.routines;
    const auto copy_a = reinterpret_cast<CopyA<T>*>(choose(p.a, p.a.outer_stride, r.copyan, r.copyat, r.copyac));
    const auto copy_b = reinterpret_cast<CopyB<T>*>(choose(p.b, p.b.depth_stride, r.copybn, r.copybt, r.copybc));
    const auto kernel = reinterpret_cast<PackedKernel<T>*>(desc.routines.kernel);
    const Int lda = p.a.outer_stride == 1 ? p.a.depth_stride : p.a.outer_stride;
    const Int ldb = p.b.depth_stride == 1 ? p.b.outer_stride : p.b.depth_stride;
    const Int mode = 2, flags = p.ldc % Units<T>::m != 0; // bit 0: columns of C differ in alignment
    for (Int j = 0; j < p.n; j += desc.nb) {
        const Int columns = p.n - j < desc.nb ? p.n - j : desc.nb;
        for (Int l = 0; l < p.k; l += desc.kb) {
            const Int depth = p.k - l < desc.kb ? p.k - l : desc.kb, padded = round_up(depth, Units<T>::k);
            const T scalar = T(p.overwrite && l == 0 ? 0 : 1);
            copy_b(&depth, &columns, p.b.at(j, l), &ldb, packed_b, &desc.b.panel_stride);
            for (Int i = 0; i < p.m; i += desc.mb) {
                const Int rows = p.m - i < desc.mb ? p.m - i : desc.mb;
                copy_a(&rows, &depth, p.a.at(i, l), &lda, packed_a, &desc.a.panel_stride, &p.alpha);
                kernel(&mode, &rows, &columns, &padded, packed_a, &desc.a.panel_stride, packed_b, &desc.b.panel_stride,
                       &scalar, p.c + i + j * p.ldc, &p.ldc, &flags);
            }
        }
    }
    ork_serv_deallocate(base);
}

} // namespace ork::gemm

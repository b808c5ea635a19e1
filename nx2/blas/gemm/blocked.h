// SPDX-License-Identifier: MIT
// The multiply of any size: block after block of depth, B packed once for all rows, A block by block of rows.
#pragma once

#include "blas/gemm/descriptor.h"
#include "blas/gemm/direct.h"
#include "blas/gemm/product.h"

namespace ork::gemm {

// Whether packing costs more than it gives. Packing touches every element of A and B once, at about two cycles an
// element; a tile read from the operands as they stand pays with strided lines, which hurts once they leave the cache.
template <class T, class S>
bool packing_pays(const Product<T, S>& p)
{
    if (p.m <= 8 || p.n < 8) return false;
    const bool whole = p.m % Units<T>::m == 0 && p.n % Units<T>::n == 0; // edges of tiles cost packing more
    const Int crossover = is_complex<T> ? (whole ? 12 : sizeof(T) == 16 ? 26 : 17) : whole ? 24 : 40;
    return p.m * p.n * p.k > crossover * crossover * crossover;
}

// A packed block of A against a packed block of B. Rows and columns count from the block's first and start at multiples
// of Units::m and Units::n.
template <class T>
struct PackedBlock {
    PackedKernel<T>* kernel;
    const T *a, *b;
    Int a_stride, b_stride, depth; // panel to panel; padded

    // out (rows x columns) = out + A B, or A B when out is overwritten.
    void multiply(Int row, Int rows, Int column, Int columns, bool overwrite, T* out, Int ld) const
    {
        const T scalar = T(overwrite ? 0 : 1);
        const Int mode = 2, flags = ld % Units<T>::m != 0; // bit 0: columns of C differ in alignment
        kernel(&mode, &rows, &columns, &depth, a + row / Units<T>::m * a_stride, &a_stride,
               b + column / Units<T>::n * b_stride, &b_stride, &scalar, out, &ld, &flags);
    }
};

// A part of C that is wanted: all of it.
struct Everything {
    bool meets(Int, Int, Int, Int) const { return true; }

    template <class T>
    void multiply(const PackedBlock<T>& block, Int row, Int rows, Int column, Int columns, bool overwrite, T* c,
                  Int ldc) const
    {
        block.multiply(0, rows, 0, columns, overwrite, c + row + column * ldc, ldc);
    }

    template <class T>
    void multiply_direct(const Product<T>& p, Int kb) const
    {
        gemm::multiply_direct(p, kb);
    }
};

// beta has been applied to C, or is 0 and C is written without being read.
template <class T, class S, class Part>
void multiply_blocked(const Product<T, S>& p, Desc& desc, Part part)
{
    if (desc.mb == 0 || desc.nb == 0 || desc.kb == 0) Descriptor<T>::fix_blocks(p.n, p.k, desc);
    void *base = nullptr, *buffer_a, *buffer_b, *buffer_c;
    desc.c_bytes = 0; // tiles go straight to C
    Descriptor<T>::size_buffers(ORK_GEMM_BUFS_AB, ORK_GEMM_CLIP_TO_PROBLEM, p.m, p.n, p.k, desc);
    if (!packing_pays(p) || Descriptor<T>::get_buffers(desc, &base, &buffer_a, &buffer_b, &buffer_c) != 0) {
        part.multiply_direct(p, desc.kb); // also when there is no memory: the same bits, more slowly
        return;
    }
    T* packed_a = static_cast<T*>(buffer_a);
    T* packed_b = static_cast<T*>(buffer_b);
    // None for an operand that is conjugated as it stands, which gemm itself never asks for.
    const auto choose = [](const Operand<T>& x, Int unit_stride, Untyped as_is, Untyped transposed,
                           Untyped conjugated) {
        return unit_stride == 1 ? (x.conjugated ? nullptr : as_is) : x.conjugated ? conjugated : transposed;
    };
    const ork_gemm_routines& r = desc.routines;
    const auto copy_a = reinterpret_cast<CopyA<T>*>(choose(p.a, p.a.outer_stride, r.copyan, r.copyat, r.copyac));
    const auto copy_b = reinterpret_cast<CopyB<T>*>(choose(p.b, p.b.depth_stride, r.copybn, r.copybt, r.copybc));
    const Int lda = p.a.outer_stride == 1 ? p.a.depth_stride : p.a.outer_stride;
    const Int ldb = p.b.depth_stride == 1 ? p.b.outer_stride : p.b.depth_stride;
    for (Int j = 0; j < p.n; j += desc.nb) {
        const Int columns = p.n - j < desc.nb ? p.n - j : desc.nb;
        for (Int l = 0; l < p.k; l += desc.kb) {
            const Int depth = p.k - l < desc.kb ? p.k - l : desc.kb;
            if (copy_b != nullptr)
                copy_b(&depth, &columns, p.b.at(j, l), &ldb, packed_b, &desc.b.panel_stride);
            else
                pack_b(p.b.from(j, l), columns, depth, packed_b, desc.b.panel_stride);
            for (Int i = 0; i < p.m; i += desc.mb) {
                const Int rows = p.m - i < desc.mb ? p.m - i : desc.mb;
                if (!part.meets(i, rows, j, columns)) continue;
                bool packed = false;
                if constexpr (std::is_same_v<T, S>) // the table's routines take alpha as a T
                    if (copy_a != nullptr) {
                        copy_a(&rows, &depth, p.a.at(i, l), &lda, packed_a, &desc.a.panel_stride, &p.alpha);
                        packed = true;
                    }
                if (!packed) pack_a(p.a.from(i, l), rows, depth, packed_a, desc.a.panel_stride, p.alpha);
                const PackedBlock<T> block{reinterpret_cast<PackedKernel<T>*>(r.kernel),
                                           packed_a,
                                           packed_b,
                                           desc.a.panel_stride,
                                           desc.b.panel_stride,
                                           round_up(depth, Units<T>::k)};
                part.multiply(block, i, rows, j, columns, p.overwrite && l == 0, p.c, p.ldc);
            }
        }
    }
    ork_serv_deallocate(base);
}

} // namespace ork::gemm

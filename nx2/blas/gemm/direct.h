// SPDX-License-Identifier: MIT
// The multiply that packs nothing, for products too small or too thin to repay it. Every element of C is summed over
// the depth in order from zero and then added to C, block of depth by block of depth, exactly as the packed multiply
// does.
#pragma once

#include "blas/gemm/vector.h"

namespace ork::gemm {

template <bool overwrite, class T>
inline void multiply_block(const Product<T>& p)
{
    if constexpr (!is_complex<T>) {
        constexpr Int long_side = 32; // rows from which streaming beats tiles
        if (p.m <= 1 || p.n <= 1 || p.m >= long_side || p.n >= long_side) {
            if (p.n < 8 && p.a.outer_stride == 1) return multiply_thin<overwrite>(wide_a(p));
            if (p.m < 8 && p.b.outer_stride == 1) return multiply_thin<overwrite>(wide_b(p));
        }
    }
    multiply_tiles<overwrite>(p);
}

// The depth in more than one block.
template <class T>
[[gnu::noinline]] void multiply_blocks(const Product<T>& p, Int step)
{
    for (Int first = 0; first < p.k; first += step) {
        const Product<T> part = p.block(first, p.k - first < step ? p.k - first : step);
        with_flag(part.overwrite, [&]<bool overwrite>() { multiply_block<overwrite>(part); });
    }
}

// kb: the depth of a block, at most deepest_block.
template <class T>
void multiply_direct(const Product<T>& p, Int kb)
{
    const Int step = kb < deepest_block ? kb : deepest_block;
    if constexpr (!is_complex<T>) {
        if (p.n == 1 && p.a.outer_stride != 1) return multiply_vector(wide_a(p), step, p.overwrite);
        if (p.m == 1 && p.b.outer_stride != 1) return multiply_vector(wide_b(p), step, p.overwrite);
    }
    if (p.k > step)
        multiply_blocks(p, step);
    else
        with_flag(p.overwrite, [&]<bool overwrite>() { multiply_block<overwrite>(p); });
}

} // namespace ork::gemm

// SPDX-License-Identifier: MIT
// The 2 x 8 tile of the double-precision multiply: 2 packed rows of A (already times alpha) by 8 packed columns of B.
//
// A step of depth loads the pair (a0, a1), its swapped copy (a1, a0) and four pairs of B, and adds eight products:
//     direct[p]  += (a0, a1) * (b[2p], b[2p+1])        crossed[p] += (a1, a0) * (b[2p], b[2p+1])
// so no value is broadcast, and each of the sixteen elements is one sum over the depth, in order, from zero.
// Recombined: column 2p is (direct.low, crossed.low), column 2p+1 is (crossed.high, direct.high).
#pragma once

#include <emmintrin.h>

#include "blas/gemm/units.h"

namespace ork::gemm {

struct TileD {
    __m128d direct[4], crossed[4];

    __m128d column(int j) const // rows 0 and 1 of column j
    {
        const __m128d d = direct[j / 2], x = crossed[j / 2];
        return j % 2 == 0 ? _mm_unpacklo_pd(d, x) : _mm_unpackhi_pd(x, d);
    }
};

// One step of depth at byte offsets oa and ob. The last pair of B is multiplied into the registers of A themselves, which
// saves two copies: 24 instructions for 32 flops, and the shuffle reads memory so that it waits for nothing.
#define ORK_TILE_D_STEP(oa, ob)                                                                                        \
    "movapd " #oa "(%[a]), %[a0]\n\t"                                                                                  \
    "pshufd $0x4e, " #oa "(%[a]), %[a1]\n\t"                                                                           \
    "movapd " #ob "(%[b]), %[t0]\n\t"                                                                                  \
    "movapd %[t0], %[t1]\n\t"                                                                                          \
    "mulpd %[a0], %[t0]\n\t"                                                                                           \
    "addpd %[t0], %[d0]\n\t"                                                                                           \
    "mulpd %[a1], %[t1]\n\t"                                                                                           \
    "addpd %[t1], %[x0]\n\t"                                                                                           \
    "movapd " #ob "+16(%[b]), %[t2]\n\t"                                                                               \
    "movapd %[t2], %[t3]\n\t"                                                                                          \
    "mulpd %[a0], %[t2]\n\t"                                                                                           \
    "addpd %[t2], %[d1]\n\t"                                                                                           \
    "mulpd %[a1], %[t3]\n\t"                                                                                           \
    "addpd %[t3], %[x1]\n\t"                                                                                           \
    "movapd " #ob "+32(%[b]), %[t4]\n\t"                                                                               \
    "movapd %[t4], %[t5]\n\t"                                                                                          \
    "mulpd %[a0], %[t4]\n\t"                                                                                           \
    "addpd %[t4], %[d2]\n\t"                                                                                           \
    "mulpd %[a1], %[t5]\n\t"                                                                                           \
    "addpd %[t5], %[x2]\n\t"                                                                                           \
    "mulpd " #ob "+48(%[b]), %[a0]\n\t"                                                                                \
    "addpd %[a0], %[d3]\n\t"                                                                                           \
    "mulpd " #ob "+48(%[b]), %[a1]\n\t"                                                                                \
    "addpd %[a1], %[x3]\n\t"

// depth is a positive multiple of 4; a and b are 16-byte aligned packed panels.
inline TileD multiply_tile(const double* a, const double* b, Int depth)
{
    TileD tile;
    __m128d a0, a1, t0, t1, t2, t3, t4, t5;
    Int passes = depth / 8;
    const Int rest = depth % 8;
    asm("pxor %[d0], %[d0]\n\t"
        "pxor %[d1], %[d1]\n\t"
        "pxor %[d2], %[d2]\n\t"
        "pxor %[d3], %[d3]\n\t"
        "pxor %[x0], %[x0]\n\t"
        "pxor %[x1], %[x1]\n\t"
        "pxor %[x2], %[x2]\n\t"
        "pxor %[x3], %[x3]\n\t"
        "test %[n], %[n]\n\t"
        "jz 2f\n\t"
        ".p2align 5\n"
        "1:\n\t" //
        ORK_TILE_D_STEP(0, 0) ORK_TILE_D_STEP(16, 64) ORK_TILE_D_STEP(32, 128) ORK_TILE_D_STEP(48, 192)
        ORK_TILE_D_STEP(64, 256) ORK_TILE_D_STEP(80, 320) ORK_TILE_D_STEP(96, 384) ORK_TILE_D_STEP(112, 448)
        "add $128, %[a]\n\t"
        "add $512, %[b]\n\t"
        "dec %[n]\n\t"
        "jnz 1b\n"
        "2:\n\t"
        "test %[rest], %[rest]\n\t"
        "jz 3f\n\t" //
        ORK_TILE_D_STEP(0, 0) ORK_TILE_D_STEP(16, 64) ORK_TILE_D_STEP(32, 128) ORK_TILE_D_STEP(48, 192)
        "3:\n"
        : [d0] "=&x"(tile.direct[0]), [d1] "=&x"(tile.direct[1]), [d2] "=&x"(tile.direct[2]),
          [d3] "=&x"(tile.direct[3]), [x0] "=&x"(tile.crossed[0]), [x1] "=&x"(tile.crossed[1]),
          [x2] "=&x"(tile.crossed[2]), [x3] "=&x"(tile.crossed[3]), [a0] "=&x"(a0), [a1] "=&x"(a1), [t0] "=&x"(t0),
          [t1] "=&x"(t1), [t2] "=&x"(t2), [t3] "=&x"(t3), [t4] "=&x"(t4), [t5] "=&x"(t5), [a] "+r"(a), [b] "+r"(b),
          [n] "+r"(passes)
        : [rest] "r"(rest)
        : "cc", "memory");
    return tile;
}

#undef ORK_TILE_D_STEP

} // namespace ork::gemm

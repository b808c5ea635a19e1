// SPDX-License-Identifier: MIT
// The 2 x 8 tile of the double-precision multiply: 2 packed rows of A (already times alpha) by 8 packed columns of B.
//
// A step of depth is exactly eight multiplies and eight additions of pairs; each of the sixteen elements is one sum
// over the depth, in order, from zero. Two arrangements of the same sums, hence the same bits:
//
//   crossed    (a0, a1) and its swapped copy (a1, a0) times (b[2p], b[2p+1]); the lanes are recombined at the end.
//              The swapped copy needs the shuffle unit, which on some processors shares its pipes with the arithmetic.
//   broadcast  (a0, a0) and (a1, a1) times (b[2p], b[2p+1]), for processors whose load unit duplicates an element for
//              nothing (all Zen, Intel since Sandy Bridge).
//
// Zen 5, panels in the first level of cache, share of what mulpd + addpd reach in registers: crossed 90 % with pshufd,
// 92 % with two half loads, broadcast 99 %. What matters beside the shuffle: 24 instructions a step and no more, copies
// spread over A and B (all copies of B: 93 %), and offsets that fit in a byte.
#pragma once

#include <emmintrin.h>

#include "blas/gemm/units.h"

namespace ork::gemm {

enum class Arrangement { crossed, broadcast };

template <Arrangement arrangement>
struct TileD {
    __m128d first[4], second[4]; // direct and crossed, or rows 0 and 1, of column pair p

    __m128d column(int j) const // rows 0 and 1 of column j
    {
        const __m128d f = first[j / 2], s = second[j / 2];
        if (j % 2 == 0) return _mm_unpacklo_pd(f, s);
        return arrangement == Arrangement::crossed ? _mm_unpackhi_pd(s, f) : _mm_unpackhi_pd(f, s);
    }
};

// Byte offsets: oa of the pair of A, ob of the row of B.
#define ORK_LOAD_CROSSED(oa)                                                                                           \
    "movapd " #oa "(%[a]), %[a0]\n\t"                                                                                  \
    "movsd " #oa "+8(%[a]), %[a1]\n\t"                                                                                 \
    "movhpd " #oa "(%[a]), %[a1]\n\t"
#define ORK_LOAD_BROADCAST(oa)                                                                                         \
    "movddup " #oa "(%[a]), %[a0]\n\t"                                                                                 \
    "movddup " #oa "+8(%[a]), %[a1]\n\t"
#define ORK_STEP(load, oa, ob)                                                                                         \
    load(oa) "movapd " #ob "(%[b]), %[t0]\n\t"                                                                         \
             "movapd %[t0], %[t1]\n\t"                                                                                 \
             "mulpd %[a0], %[t0]\n\t"                                                                                  \
             "mulpd %[a1], %[t1]\n\t"                                                                                  \
             "addpd %[t0], %[f0]\n\t"                                                                                  \
             "addpd %[t1], %[s0]\n\t"                                                                                  \
             "movapd " #ob "+16(%[b]), %[t2]\n\t"                                                                      \
             "movapd %[t2], %[t3]\n\t"                                                                                 \
             "mulpd %[a0], %[t2]\n\t"                                                                                  \
             "mulpd %[a1], %[t3]\n\t"                                                                                  \
             "addpd %[t2], %[f1]\n\t"                                                                                  \
             "addpd %[t3], %[s1]\n\t"                                                                                  \
             "movapd %[a0], %[t4]\n\t"                                                                                 \
             "mulpd " #ob "+32(%[b]), %[t4]\n\t"                                                                       \
             "movapd %[a1], %[t5]\n\t"                                                                                 \
             "mulpd " #ob "+32(%[b]), %[t5]\n\t"                                                                       \
             "addpd %[t4], %[f2]\n\t"                                                                                  \
             "addpd %[t5], %[s2]\n\t"                                                                                  \
             "mulpd " #ob "+48(%[b]), %[a0]\n\t"                                                                       \
             "mulpd " #ob "+48(%[b]), %[a1]\n\t"                                                                       \
             "addpd %[a0], %[f3]\n\t"                                                                                  \
             "addpd %[a1], %[s3]\n\t"
#define ORK_FOUR_STEPS(load, oa)                                                                                       \
    ORK_STEP(load, oa, -128) ORK_STEP(load, oa + 16, -64) ORK_STEP(load, oa + 32, 0) ORK_STEP(load, oa + 48, 64)

// Eight steps a pass, then four if they remain. b stands 128 bytes behind its pointer.
#define ORK_TILE(load)                                                                                                 \
    asm("pxor %[f0], %[f0]\n\t"                                                                                        \
        "pxor %[f1], %[f1]\n\t"                                                                                        \
        "pxor %[f2], %[f2]\n\t"                                                                                        \
        "pxor %[f3], %[f3]\n\t"                                                                                        \
        "pxor %[s0], %[s0]\n\t"                                                                                        \
        "pxor %[s1], %[s1]\n\t"                                                                                        \
        "pxor %[s2], %[s2]\n\t"                                                                                        \
        "pxor %[s3], %[s3]\n\t"                                                                                        \
        "test %[n], %[n]\n\t"                                                                                          \
        "jz 2f\n\t"                                                                                                    \
        ".p2align 6\n"                                                                                                 \
        "1:\n\t" ORK_FOUR_STEPS(load, 0) "sub $-256, %[b]\n\t" ORK_FOUR_STEPS(load, 64) "sub $-128, %[a]\n\t"          \
                                                                                        "sub $-256, %[b]\n\t"          \
                                                                                        "dec %[n]\n\t"                 \
                                                                                        "jnz 1b\n"                     \
                                                                                        "2:\n\t"                       \
                                                                                        "test %[rest], %[rest]\n\t"    \
                                                                                        "jz 3f\n\t" ORK_FOUR_STEPS(    \
                                                                                            load, 0) "3:\n"            \
        : [f0] "=&x"(tile.first[0]), [f1] "=&x"(tile.first[1]), [f2] "=&x"(tile.first[2]), [f3] "=&x"(tile.first[3]),  \
          [s0] "=&x"(tile.second[0]), [s1] "=&x"(tile.second[1]), [s2] "=&x"(tile.second[2]),                          \
          [s3] "=&x"(tile.second[3]), [a0] "=&x"(a0), [a1] "=&x"(a1), [t0] "=&x"(t0), [t1] "=&x"(t1), [t2] "=&x"(t2),  \
          [t3] "=&x"(t3), [t4] "=&x"(t4), [t5] "=&x"(t5), [a] "+r"(a), [b] "+r"(b), [n] "+r"(passes)                   \
        : [rest] "r"(rest)                                                                                             \
        : "cc", "memory")

// depth is a positive multiple of 4; a and b are 16-byte aligned packed panels.
template <Arrangement arrangement>
[[gnu::always_inline]] inline TileD<arrangement> multiply_tile(const double* a, const double* b, Int depth)
{
    TileD<arrangement> tile;
    __m128d a0, a1, t0, t1, t2, t3, t4, t5;
    Int passes = depth / 8;
    const Int rest = depth % 8;
    b += 16;
    if constexpr (arrangement == Arrangement::crossed)
        ORK_TILE(ORK_LOAD_CROSSED);
    else
        ORK_TILE(ORK_LOAD_BROADCAST);
    return tile;
}

#undef ORK_TILE
#undef ORK_FOUR_STEPS
#undef ORK_STEP
#undef ORK_LOAD_BROADCAST
#undef ORK_LOAD_CROSSED

} // namespace ork::gemm

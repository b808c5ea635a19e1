// SPDX-License-Identifier: MIT
// The tile of the multiply: one packed panel of A (16 bytes a step of depth, already times alpha) by one of B (64
// bytes).
//
// In double precision that is 2 rows by 8 columns. A step of depth is exactly eight multiplies and eight additions of
// registers; every product of two real numbers goes into one sum over the depth, in order, from zero. Two arrangements
// of the same sums, hence the same bits:
//
//   crossed    (a0, a1) and its swapped copy (a1, a0) times (b[2p], b[2p+1]); the lanes are recombined at the end.
//              The swapped copy needs the shuffle unit, which on some processors shares its pipes with the arithmetic.
//   broadcast  (a0, a0) and (a1, a1) times (b[2p], b[2p+1]), for processors whose load unit duplicates 8 bytes for
//   nothing
//              (all Zen, Intel since Sandy Bridge).
//
// The other types run the same instructions on halves of 8 bytes: a half of A is two rows (s), the real and imaginary
// part of a row (c), or one part (z); a half of B is a column twice (s), a part of a column twice (c), or one part (z).
// So a tile is 4 x 8 (s), 2 x 4 (c) or 1 x 4 (z).
//
// Zen 5, double precision, panels in the first level of cache, share of what mulpd + addpd reach in registers: crossed
// 90 % with pshufd, 92 % with two half loads, broadcast 99 %. What matters beside the shuffle: 24 instructions a step
// and no more, copies spread over A and B (all copies of B: 93 %), and offsets that fit in a byte.
#pragma once

#include <emmintrin.h>

#include "blas/gemm/units.h"

namespace ork::gemm {

enum class Arrangement { crossed, broadcast };

// Byte offsets: oa of the halves of A, ob of the registers of B.
#define ORK_LOAD_CROSSED(oa)                                                                                           \
    "movaps " #oa "(%[a]), %[a0]\n\t"                                                                                  \
    "movsd " #oa "+8(%[a]), %[a1]\n\t"                                                                                 \
    "movhpd " #oa "(%[a]), %[a1]\n\t"
#define ORK_LOAD_BROADCAST(oa)                                                                                         \
    "movddup " #oa "(%[a]), %[a0]\n\t"                                                                                 \
    "movddup " #oa "+8(%[a]), %[a1]\n\t"
#define ORK_STEP(t, load, oa, ob)                                                                                      \
    load(oa) "movaps " #ob "(%[b]), %[t0]\n\t"                                                                         \
             "movaps %[t0], %[t1]\n\t"                                                                                 \
             "mul" t " %[a0], %[t0]\n\t"                                                                               \
             "mul" t " %[a1], %[t1]\n\t"                                                                               \
             "add" t " %[t0], %[f0]\n\t"                                                                               \
             "add" t " %[t1], %[s0]\n\t"                                                                               \
             "movaps " #ob "+16(%[b]), %[t2]\n\t"                                                                      \
             "movaps %[t2], %[t3]\n\t"                                                                                 \
             "mul" t " %[a0], %[t2]\n\t"                                                                               \
             "mul" t " %[a1], %[t3]\n\t"                                                                               \
             "add" t " %[t2], %[f1]\n\t"                                                                               \
             "add" t " %[t3], %[s1]\n\t"                                                                               \
             "movaps %[a0], %[t4]\n\t"                                                                                 \
             "mul" t " " #ob "+32(%[b]), %[t4]\n\t"                                                                    \
             "movaps %[a1], %[t5]\n\t"                                                                                 \
             "mul" t " " #ob "+32(%[b]), %[t5]\n\t"                                                                    \
             "add" t " %[t4], %[f2]\n\t"                                                                               \
             "add" t " %[t5], %[s2]\n\t"                                                                               \
             "mul" t " " #ob "+48(%[b]), %[a0]\n\t"                                                                    \
             "mul" t " " #ob "+48(%[b]), %[a1]\n\t"                                                                    \
             "add" t " %[a0], %[f3]\n\t"                                                                               \
             "add" t " %[a1], %[s3]\n\t"
#define ORK_FOUR_STEPS(t, load, oa)                                                                                    \
    ORK_STEP(t, load, oa, -128)                                                                                        \
    ORK_STEP(t, load, oa + 16, -64) ORK_STEP(t, load, oa + 32, 0) ORK_STEP(t, load, oa + 48, 64)

// Eight steps a pass, then four if they remain. b stands 128 bytes behind its pointer.
#define ORK_TILE(t, load)                                                                                              \
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
        "1:\n\t" ORK_FOUR_STEPS(t, load, 0) "sub $-256, %[b]\n\t" ORK_FOUR_STEPS(                                      \
            t, load, 64) "sub $-128, %[a]\n\t"                                                                         \
                         "sub $-256, %[b]\n\t"                                                                         \
                         "dec %[n]\n\t"                                                                                \
                         "jnz 1b\n"                                                                                    \
                         "2:\n\t"                                                                                      \
                         "test %[rest], %[rest]\n\t"                                                                   \
                         "jz 3f\n\t" ORK_FOUR_STEPS(t, load, 0) "3:\n"                                                 \
        : [f0] "=&x"(tile.first[0]), [f1] "=&x"(tile.first[1]), [f2] "=&x"(tile.first[2]), [f3] "=&x"(tile.first[3]),  \
          [s0] "=&x"(tile.second[0]), [s1] "=&x"(tile.second[1]), [s2] "=&x"(tile.second[2]),                          \
          [s3] "=&x"(tile.second[3]), [a0] "=&x"(a0), [a1] "=&x"(a1), [t0] "=&x"(t0), [t1] "=&x"(t1), [t2] "=&x"(t2),  \
          [t3] "=&x"(t3), [t4] "=&x"(t4), [t5] "=&x"(t5), [a] "+r"(a), [b] "+r"(b), [n] "+r"(passes)                   \
        : [rest] "r"(rest)                                                                                             \
        : "cc", "memory")

// The sums of `vectors` registers of B with the two halves of A: direct and crossed, or by the first and second half.
template <Arrangement arrangement, int vectors>
struct Sums {
    __m128d first[vectors], second[vectors];

    // What half j of B's row of registers met: the product with half 0 of A, then with half 1.
    __m128d half(int j) const
    {
        const __m128d f = first[j / 2], s = second[j / 2];
        if (j % 2 == 0) return _mm_unpacklo_pd(f, s);
        return arrangement == Arrangement::crossed ? _mm_unpackhi_pd(s, f) : _mm_unpackhi_pd(f, s);
    }
};

// Column j of a tile, as it is added to C: 16 bytes of rows. A complex column is (re re - im im, im re + re im).
template <class T, Arrangement arrangement, int vectors>
[[gnu::always_inline]] inline Vec<Real<T>> column(const Sums<arrangement, vectors>& sums, int j)
{
    if constexpr (std::is_same_v<T, double>)
        return {sums.half(j)};
    else if constexpr (std::is_same_v<T, float>)
        return {_mm_castpd_ps(sums.half(j))};
    else if constexpr (std::is_same_v<T, Complex<double>>)
        return alternating_sum(Vec<double>{sums.half(2 * j)}, exchanged(Vec<double>{sums.half(2 * j + 1)}));
    else
        return alternating_sum(Vec<float>{_mm_castpd_ps(sums.half(2 * j))},
                               exchanged(Vec<float>{_mm_castpd_ps(sums.half(2 * j + 1))}));
}

// depth is a positive multiple of 4; a and b are 16-byte aligned packed panels.
template <Arrangement arrangement, class R>
[[gnu::always_inline]] inline Sums<arrangement, 4> multiply_tile(const R* a, const R* b, Int depth)
{
    Sums<arrangement, 4> tile;
    __m128d a0, a1, t0, t1, t2, t3, t4, t5;
    Int passes = depth / 8;
    const Int rest = depth % 8;
    b += 128 / sizeof(R);
    if constexpr (std::is_same_v<R, double>) {
        if constexpr (arrangement == Arrangement::crossed)
            ORK_TILE("pd", ORK_LOAD_CROSSED);
        else
            ORK_TILE("pd", ORK_LOAD_BROADCAST);
    } else {
        if constexpr (arrangement == Arrangement::crossed)
            ORK_TILE("ps", ORK_LOAD_CROSSED);
        else
            ORK_TILE("ps", ORK_LOAD_BROADCAST);
    }
    return tile;
}

#undef ORK_TILE
#undef ORK_FOUR_STEPS
#undef ORK_STEP
#undef ORK_LOAD_BROADCAST
#undef ORK_LOAD_CROSSED

} // namespace ork::gemm

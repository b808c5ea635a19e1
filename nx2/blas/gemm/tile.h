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
// So a tile is 4 x 8 (s), 2 x 4 (c) or 1 x 4 (z). Pairs of 16-bit integers stand where single precision has numbers.
//
// Zen 5, double precision, panels in the first level of cache, share of what mulpd + addpd reach in registers: crossed
// 90 % with pshufd, 92 % with two half loads, broadcast 99 %. What matters beside the shuffle: 24 instructions a step
// and no more, copies spread over A and B (all copies of B: 93 %), and offsets that fit in a byte.
#pragma once

#include <emmintrin.h>

#include "blas/gemm/units.h"
#include "simd/word_pair.h"

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
#define ORK_STEP(mul, add, load, oa, ob)                                                                               \
    load(oa) "movaps " #ob "(%[b]), %[t0]\n\t"                                                                         \
             "movaps %[t0], %[t1]\n\t" mul " %[a0], %[t0]\n\t" mul " %[a1], %[t1]\n\t" add " %[t0], %[f0]\n\t" add     \
             " %[t1], %[s0]\n\t"                                                                                       \
             "movaps " #ob "+16(%[b]), %[t2]\n\t"                                                                      \
             "movaps %[t2], %[t3]\n\t" mul " %[a0], %[t2]\n\t" mul " %[a1], %[t3]\n\t" add " %[t2], %[f1]\n\t" add     \
             " %[t3], %[s1]\n\t"                                                                                       \
             "movaps %[a0], %[t4]\n\t" mul " " #ob "+32(%[b]), %[t4]\n\t"                                              \
             "movaps %[a1], %[t5]\n\t" mul " " #ob "+32(%[b]), %[t5]\n\t" add " %[t4], %[f2]\n\t" add                  \
             " %[t5], %[s2]\n\t" mul " " #ob "+48(%[b]), %[a0]\n\t" mul " " #ob "+48(%[b]), %[a1]\n\t" add             \
             " %[a0], %[f3]\n\t" add " %[a1], %[s3]\n\t"
#define ORK_FOUR_STEPS(mul, add, load, oa)                                                                             \
    ORK_STEP(mul, add, load, oa, -128)                                                                                 \
    ORK_STEP(mul, add, load, oa + 16, -64) ORK_STEP(mul, add, load, oa + 32, 0) ORK_STEP(mul, add, load, oa + 48, 64)

// Eight steps a pass, then four if they remain. b stands 128 bytes behind its pointer.
#define ORK_TILE(mul, add, load)                                                                                       \
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
        "1:\n\t" ORK_FOUR_STEPS(mul, add, load, 0) "sub $-256, %[b]\n\t" ORK_FOUR_STEPS(                               \
            mul, add, load, 64) "sub $-128, %[a]\n\t"                                                                  \
                                "sub $-256, %[b]\n\t"                                                                  \
                                "dec %[n]\n\t"                                                                         \
                                "jnz 1b\n"                                                                             \
                                "2:\n\t"                                                                               \
                                "test %[rest], %[rest]\n\t"                                                            \
                                "jz 3f\n\t" ORK_FOUR_STEPS(mul, add, load, 0) "3:\n"                                   \
        : [f0] "=&x"(tile.first[0]), [f1] "=&x"(tile.first[1]), [f2] "=&x"(tile.first[2]), [f3] "=&x"(tile.first[3]),  \
          [s0] "=&x"(tile.second[0]), [s1] "=&x"(tile.second[1]), [s2] "=&x"(tile.second[2]),                          \
          [s3] "=&x"(tile.second[3]), [a0] "=&x"(a0), [a1] "=&x"(a1), [t0] "=&x"(t0), [t1] "=&x"(t1), [t2] "=&x"(t2),  \
          [t3] "=&x"(t3), [t4] "=&x"(t4), [t5] "=&x"(t5), [a] "+r"(a), [b] "+r"(b), [n] "+r"(passes)                   \
        : [rest] "r"(rest)                                                                                             \
        : "cc", "memory")

// A register of any type as the bits that the sums are kept in.
template <class R>
inline Vec<R> from_bits(__m128d x)
{
    if constexpr (std::is_same_v<R, double>)
        return {x};
    else if constexpr (std::is_same_v<R, float>)
        return {_mm_castpd_ps(x)};
    else
        return {_mm_castpd_si128(x)};
}
inline __m128d bits(Vec<double> x) { return x.v; }
inline __m128d bits(Vec<float> x) { return _mm_castps_pd(x.v); }
inline __m128d bits(Vec<WordPair> x) { return _mm_castsi128_pd(x.v); }

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
    using R = Real<T>;
    if constexpr (is_complex<T>)
        return alternating_sum(from_bits<R>(sums.half(2 * j)), exchanged(from_bits<R>(sums.half(2 * j + 1))));
    else
        return from_bits<R>(sums.half(j));
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
            ORK_TILE("mulpd", "addpd", ORK_LOAD_CROSSED);
        else
            ORK_TILE("mulpd", "addpd", ORK_LOAD_BROADCAST);
    } else if constexpr (std::is_same_v<R, float>) {
        if constexpr (arrangement == Arrangement::crossed)
            ORK_TILE("mulps", "addps", ORK_LOAD_CROSSED);
        else
            ORK_TILE("mulps", "addps", ORK_LOAD_BROADCAST);
    } else {
        if constexpr (arrangement == Arrangement::crossed)
            ORK_TILE("pmaddwd", "paddd", ORK_LOAD_CROSSED);
        else
            ORK_TILE("pmaddwd", "paddd", ORK_LOAD_BROADCAST);
    }
    return tile;
}

#undef ORK_TILE
#undef ORK_FOUR_STEPS
#undef ORK_STEP
#undef ORK_LOAD_BROADCAST
#undef ORK_LOAD_CROSSED

} // namespace ork::gemm

// SPDX-License-Identifier: MIT
// Packing of 8- and 16-bit integers for the multiply of word pairs: two steps of depth make one, widened to 16 bits.
// Panels are those of single precision: four rows of A, and eight columns of B, each twice, a step; then four, then
// pairs. Missing elements are 0.
#pragma once

#include <type_traits>

#include "blas/gemm/product.h"
#include "simd/word_pair.h"

namespace ork::reduced {

using gemm::Int;
using gemm::Operand;
using gemm::round_up;

using Unit = gemm::Units<WordPair>;

// Eight numbers at p (or four in the lower half) as words.
template <int count, class E>
inline __m128i words(const E* p)
{
    __m128i x;
    if constexpr (count * sizeof(E) == 16) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    } else if constexpr (count * sizeof(E) == 8) {
        x = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p));
    } else {
        std::int32_t four;
        std::memcpy(&four, p, 4);
        x = _mm_cvtsi32_si128(four);
    }
    if constexpr (sizeof(E) == 2)
        return x;
    else
        return std::is_signed_v<E> ? _mm_cvtepi8_epi16(x) : _mm_cvtepu8_epi16(x);
}

// Four steps of four rows (or columns) from (outer, 2 step) on: register s holds step s.
template <class E>
inline void square(const Operand<E>& x, Int outer, Int step, __m128i (&to)[4])
{
    const E* from = x.at(outer, 2 * step);
    if (x.outer_stride == 1) {
        for (int s = 0; s < 4; ++s, from += 2 * x.depth_stride)
            to[s] = _mm_unpacklo_epi16(words<4>(from), words<4>(from + x.depth_stride));
    } else {
        __m128 row[4];
        for (int r = 0; r < 4; ++r) row[r] = _mm_castsi128_ps(words<8>(from + r * x.outer_stride));
        _MM_TRANSPOSE4_PS(row[0], row[1], row[2], row[3]);
        for (int s = 0; s < 4; ++s) to[s] = _mm_castps_si128(row[s]);
    }
}

// One pair, of which some may not exist.
template <class E>
inline WordPair pair(const Operand<E>& x, Int outer, Int count, Int step, Int depth)
{
    const auto word = [&](Int l) -> std::int16_t { return outer < count && l < depth ? *x.at(outer, l) : 0; };
    return {word(2 * step), word(2 * step + 1)};
}

// op(A), m x depth, to panels of four rows `panel_stride` elements apart.
template <class E>
void pack_rows(const Operand<E>& a, Int m, Int depth, WordPair* to, Int panel_stride)
{
    const Int padded = round_up((depth + 1) / 2, Unit::k);
    for (Int i = 0; i < m; i += 4, to += panel_stride) {
        Int step = 0;
        if (i + 4 <= m)
            for (; 2 * step + 8 <= depth; step += 4) {
                __m128i x[4];
                square(a, i, step, x);
                for (int s = 0; s < 4; ++s) store_aligned(to + 4 * (step + s), Vec<WordPair>{x[s]});
            }
        for (; step < padded; ++step)
            for (Int r = 0; r < 4; ++r) to[4 * step + r] = pair(a, i + r, m, step, depth);
    }
}

// op(B), depth x n, to panels of eight columns, then four, then two.
template <class E>
void pack_columns(const Operand<E>& b, Int n, Int depth, WordPair* to, Int panel_stride)
{
    const Int padded = round_up((depth + 1) / 2, Unit::k);
    for (Int j = 0; j < n;) {
        const Int width = n - j >= 8 ? 8 : n - j >= 4 ? 4 : 2;
        Int step = 0;
        if (width == 8)
            for (; 2 * step + 8 <= depth; step += 4)
                for (int half = 0; half < 2; ++half) {
                    __m128i x[4];
                    square(b, j + 4 * half, step, x);
                    for (int s = 0; s < 4; ++s) {
                        WordPair* at = to + 16 * (step + s) + 8 * half;
                        store_aligned(at, Vec<WordPair>{_mm_unpacklo_epi32(x[s], x[s])});
                        store_aligned(at + 4, Vec<WordPair>{_mm_unpackhi_epi32(x[s], x[s])});
                    }
                }
        for (; step < padded; ++step)
            for (Int r = 0; r < width; ++r)
                to[2 * (width * step + r)] = to[2 * (width * step + r) + 1] = pair(b, j + r, n, step, depth);
        to += width == 8 ? panel_stride : 2 * width * padded;
        j += width;
    }
}

} // namespace ork::reduced

// SPDX-License-Identifier: MIT
// Two adjacent 16-bit integers as an element that multiplies into their dot product: a 32-bit number, kept in the same
// four bytes. Sums are modulo 2^32; of two products at once only (-2^15)^2 + (-2^15)^2 leaves the range, and wraps too.
#pragma once

#include <bit>
#include <cstdint>

#include "simd/vec.h"

namespace ork {

struct WordPair {
    std::int16_t even, odd;

    friend WordPair operator+(WordPair a, WordPair b) // as 32-bit numbers
    {
        return std::bit_cast<WordPair>(std::bit_cast<std::uint32_t>(a) + std::bit_cast<std::uint32_t>(b));
    }
};

template <>
struct Vec<WordPair> {
    static constexpr int lanes = 4;
    __m128i v;

    friend Vec operator*(Vec a, Vec b) { return {_mm_madd_epi16(a.v, b.v)}; }
    friend Vec operator+(Vec a, Vec b) { return {_mm_add_epi32(a.v, b.v)}; }
};

inline Vec<WordPair> load(const WordPair* p) { return {_mm_loadu_si128(reinterpret_cast<const __m128i*>(p))}; }
inline Vec<WordPair> load_aligned(const WordPair* p) { return {_mm_load_si128(reinterpret_cast<const __m128i*>(p))}; }
inline void store(WordPair* p, Vec<WordPair> a) { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), a.v); }
inline void store_aligned(WordPair* p, Vec<WordPair> a) { _mm_store_si128(reinterpret_cast<__m128i*>(p), a.v); }

} // namespace ork

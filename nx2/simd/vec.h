// SPDX-License-Identifier: MIT
// Vec<T>: one 128-bit register of elements, lane 0 at the lowest address. The only place that names intrinsics for what
// more than one kernel needs.
#pragma once

#include <cstdint>
#include <cstring>
#include <smmintrin.h>

namespace ork {

template <class T>
struct Vec;

template <>
struct Vec<double> {
    static constexpr int lanes = 2;
    __m128d v;
};

template <>
struct Vec<float> {
    static constexpr int lanes = 4;
    __m128 v;
};

// load, store: any address. load_aligned, store_aligned: multiples of 16.
inline Vec<double> load(const double* p) { return {_mm_loadu_pd(p)}; }
inline Vec<float> load(const float* p) { return {_mm_loadu_ps(p)}; }
inline Vec<double> load_aligned(const double* p) { return {_mm_load_pd(p)}; }
inline Vec<float> load_aligned(const float* p) { return {_mm_load_ps(p)}; }
inline void store(double* p, Vec<double> a) { _mm_storeu_pd(p, a.v); }
inline void store(float* p, Vec<float> a) { _mm_storeu_ps(p, a.v); }
inline void store_aligned(double* p, Vec<double> a) { _mm_store_pd(p, a.v); }
inline void store_aligned(float* p, Vec<float> a) { _mm_store_ps(p, a.v); }

// The first `width` elements at p, repeated in the lanes that are left: arithmetic on a part of a register then does
// what the whole one would, and raises no flag of its own. Neither touches a byte beside the part, and p may stand
// anywhere.
template <int width>
inline Vec<double> load(const double* p)
{
    if constexpr (width == 2) return load(p);
    double a;
    std::memcpy(&a, p, sizeof a);
    return {_mm_set1_pd(a)};
}
template <int width>
inline Vec<float> load(const float* p)
{
    if constexpr (width == 4) return load(p);
    if constexpr (width == 2) {
        double pair;
        std::memcpy(&pair, p, sizeof pair);
        return {_mm_castpd_ps(_mm_set1_pd(pair))};
    }
    float a;
    std::memcpy(&a, p, sizeof a);
    return {_mm_set1_ps(a)};
}
// Two numbers, and zeros in the lanes above.
inline Vec<float> load_low(const float* p)
{
    double pair;
    std::memcpy(&pair, p, sizeof pair);
    return {_mm_castpd_ps(_mm_set_sd(pair))};
}
template <int width>
inline void store(double* p, Vec<double> a)
{
    if constexpr (width == 2) return store(p, a);
    const double low = _mm_cvtsd_f64(a.v);
    std::memcpy(p, &low, sizeof low);
}
template <int width>
inline void store(float* p, Vec<float> a)
{
    if constexpr (width == 4) return store(p, a);
    if constexpr (width == 2) return store<1>(reinterpret_cast<double*>(p), Vec<double>{_mm_castps_pd(a.v)});
    const float low = _mm_cvtss_f32(a.v);
    std::memcpy(p, &low, sizeof low);
}

// One value in every lane.
inline Vec<double> broadcast(double a) { return {_mm_set1_pd(a)}; }
inline Vec<float> broadcast(float a) { return {_mm_set1_ps(a)}; }

inline Vec<double> operator+(Vec<double> a, Vec<double> b) { return {_mm_add_pd(a.v, b.v)}; }
inline Vec<float> operator+(Vec<float> a, Vec<float> b) { return {_mm_add_ps(a.v, b.v)}; }
inline Vec<double> operator-(Vec<double> a, Vec<double> b) { return {_mm_sub_pd(a.v, b.v)}; }
inline Vec<float> operator-(Vec<float> a, Vec<float> b) { return {_mm_sub_ps(a.v, b.v)}; }
inline Vec<double> operator*(Vec<double> a, Vec<double> b) { return {_mm_mul_pd(a.v, b.v)}; }
inline Vec<float> operator*(Vec<float> a, Vec<float> b) { return {_mm_mul_ps(a.v, b.v)}; }
inline Vec<double> operator/(Vec<double> a, Vec<double> b) { return {_mm_div_pd(a.v, b.v)}; }
inline Vec<float> operator/(Vec<float> a, Vec<float> b) { return {_mm_div_ps(a.v, b.v)}; }

// Of two NaNs the processor returns the first operand's, and the compiler may exchange the operands of + and *, here so
// and there so. Where the payload must not depend on which copy of a loop ran, these two keep a first.
inline Vec<double> sum(Vec<double> a, Vec<double> b)
{
    asm("addpd %1, %0" : "+x"(a.v) : "x"(b.v));
    return a;
}
inline Vec<float> sum(Vec<float> a, Vec<float> b)
{
    asm("addps %1, %0" : "+x"(a.v) : "x"(b.v));
    return a;
}
inline Vec<double> product(Vec<double> a, Vec<double> b)
{
    asm("mulpd %1, %0" : "+x"(a.v) : "x"(b.v));
    return a;
}
inline Vec<float> product(Vec<float> a, Vec<float> b)
{
    asm("mulps %1, %0" : "+x"(a.v) : "x"(b.v));
    return a;
}

inline Vec<double> abs(Vec<double> a)
{
    return {_mm_and_pd(a.v, _mm_castsi128_pd(_mm_set1_epi64x(0x7fffffffffffffff)))};
}
inline Vec<float> abs(Vec<float> a) { return {_mm_and_ps(a.v, _mm_castsi128_ps(_mm_set1_epi32(0x7fffffff)))}; }

inline double lane(Vec<double> a, int i)
{
    return i == 0 ? _mm_cvtsd_f64(a.v) : _mm_cvtsd_f64(_mm_unpackhi_pd(a.v, a.v));
}
inline float lane(Vec<float> a, int i)
{
    alignas(16) float lanes[4];
    _mm_store_ps(lanes, a.v);
    return lanes[i];
}

// Sum of the lanes: 0 + 1; (0 + 2) + (1 + 3).
inline double fold(Vec<double> a) { return _mm_cvtsd_f64(_mm_add_sd(a.v, _mm_unpackhi_pd(a.v, a.v))); }
inline float fold(Vec<float> a)
{
    const __m128 pairs = _mm_add_ps(a.v, _mm_movehl_ps(a.v, a.v));
    return _mm_cvtss_f32(_mm_add_ss(pairs, _mm_movehdup_ps(pairs)));
}

// Rows become columns in a square of lanes x lanes elements.
inline void transpose(Vec<double> (&x)[2])
{
    // Both in registers first: otherwise GCC loads halves over again (movhpd, movlpd), twice the loads.
    asm("" : "+x"(x[0].v), "+x"(x[1].v));
    const __m128d low = _mm_unpacklo_pd(x[0].v, x[1].v), high = _mm_unpackhi_pd(x[0].v, x[1].v);
    x[0].v = low, x[1].v = high;
}
inline void transpose(Vec<float> (&x)[4]) { _MM_TRANSPOSE4_PS(x[0].v, x[1].v, x[2].v, x[3].v); }

template <class T>
inline bool aligned16(const T* p)
{
    return reinterpret_cast<std::uintptr_t>(p) % 16 == 0;
}

} // namespace ork

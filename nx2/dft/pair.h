// SPDX-License-Identifier: MIT
// Pair<R, direction>: a register of complex numbers as they lie in memory: one of double, two of float. Transforms over
// it are forward ones, or backward ones when every i is taken for -i, which only changes signs of constants.
#pragma once

#include "dft/plan.h"
#include "dft/roots.h"
#include "simd/complex.h"

namespace ork::dft {

// (a, b) in every pair.
inline Vec<double> alternating(double a, double b) { return {_mm_set_pd(b, a)}; }
inline Vec<float> alternating(float a, float b) { return {_mm_set_ps(b, a, b, a)}; }

inline Vec<double> flipped(Vec<double> a, Vec<double> signs) { return {_mm_xor_pd(a.v, signs.v)}; }
inline Vec<float> flipped(Vec<float> a, Vec<float> signs) { return {_mm_xor_ps(a.v, signs.v)}; }

// The upper complex number.
inline void store_high(float* p, Vec<float> a) { _mm_storeh_pi(reinterpret_cast<__m64*>(p), a.v); }

// Otherwise GCC 12 loads what is used twice a second time in place of a copy between registers, 2 % slower.
inline Vec<double> loaded_once(const double* p)
{
    Vec<double> a = load(p);
    asm("" : "+x"(a.v));
    return a;
}
inline Vec<float> loaded_once(const float* p)
{
    Vec<float> a = load(p);
    asm("" : "+x"(a.v));
    return a;
}

// The two numbers at p in every pair.
inline Vec<double> repeated(const double* p) { return load_aligned(p); }
inline Vec<float> repeated(const float* p) { return load<2>(p); }

template <class R, Direction direction>
struct Pair {
    using Real = R;
    static constexpr int outputs_at_once = 6; // of a prime transform: twelve registers of sums
    static constexpr bool twiddles_from_memory = sizeof(R) == 8;
    static constexpr bool forward = direction == Direction::forward;

    // -i s (re, im) = (s, -s) (im, re).
    static Vec<R> imaginary(R s) { return forward ? alternating(s, -s) : alternating(-s, s); }

    struct Multiplier {
        alignas(2 * sizeof(R)) R pair[2];
        constexpr explicit Multiplier(R a) : pair{a, a} {}
    };

    // -i times the number that it holds with its parts exchanged.
    struct Quarter {
        struct Multiplier {
            alignas(2 * sizeof(R)) R pair[2];
            constexpr explicit Multiplier(R a) : pair{forward ? a : -a, forward ? -a : a} {}
        };
        Vec<R> crossed;

        operator Pair() const { return {flipped(crossed, imaginary(0))}; }
        friend Pair operator+(Pair a, Quarter b) { return a + Pair(b); }
        friend Pair operator-(Pair a, Quarter b) { return a - Pair(b); }
        friend Pair operator*(Quarter a, R b) { return {a.crossed * imaginary(b)}; }
        friend Pair operator*(Quarter a, const Multiplier& b) { return {a.crossed * repeated(b.pair)}; }
    };

    Vec<R> v;

    friend Pair operator+(Pair a, Pair b) { return {a.v + b.v}; }
    friend Pair operator-(Pair a, Pair b) { return {a.v - b.v}; }
    friend Pair operator*(Pair a, R b) { return {a.v * broadcast(b)}; }
    friend Pair operator*(Pair a, const Multiplier& b) { return {a.v * repeated(b.pair)}; }
    friend Quarter quarter(Pair a) { return {exchanged(a.v)}; }
};

// exp(-2 pi i k / n) a.
template <int n, int k, class R, Direction direction>
[[gnu::always_inline]] inline Pair<R, direction> twiddled(Pair<R, direction> a)
{
    using E = Pair<R, direction>;
    constexpr int eighths = 8 * k % n == 0 ? 8 * k / n % 8 : -1;
    if constexpr (eighths == 0) {
        return a;
    } else if constexpr (eighths == 2) {
        return quarter(a);
    } else if constexpr (eighths == 4) {
        return {flipped(a.v, broadcast(R(-0.0)))};
    } else if constexpr (eighths == 6) {
        return {flipped(exchanged(a.v), E::imaginary(R(-0.0)))};
    } else if constexpr (eighths >= 0) {
        constexpr R h = root<R, 8, 1>.cos, minus_h = -h;
        if constexpr (eighths == 1) return (a + quarter(a)) * h;
        if constexpr (eighths == 3) return (quarter(a) - a) * h;
        if constexpr (eighths == 5) return (a + quarter(a)) * minus_h;
        return (a - quarter(a)) * h;
    } else {
        constexpr Root<R> w = root<R, n, k % n>;
        return {a.v * broadcast(w.cos) + exchanged(a.v) * E::imaginary(w.sin)};
    }
}

// The same of a number in memory: two loads that repeat a part each take the place of a load, a copy and a shuffle.
template <int n, int k, Direction direction>
[[gnu::always_inline]] inline Pair<double, direction> twiddled(const Pair<double, direction>* a)
{
    if constexpr (8 * k % n == 0) {
        return twiddled<n, k>(*a);
    } else {
        constexpr Root<double> w = root<double, n, k % n>;
        constexpr double c = w.cos, s = direction == Direction::forward ? w.sin : -w.sin;
        const double* const parts = reinterpret_cast<const double*>(a);
        return {load<1>(parts) * alternating(c, -s) + load<1>(parts + 1) * alternating(s, c)};
    }
}

} // namespace ork::dft

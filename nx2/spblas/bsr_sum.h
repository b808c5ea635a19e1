// SPDX-License-Identifier: MIT
// Sums of products in registers: values against a factor for every lane.
#pragma once

#include <cstdint>

#include "simd/gather.h"

namespace ork::spblas::bsr {

// A factor for every lane of a register, of complex numbers its parts apart.
template <class T>
struct Spread {
    Vec<T> v;
    explicit Spread(T x) : v(broadcast(x)) {}
    explicit Spread(Vec<T> x) : v(x) {}
};
template <class R>
struct Spread<Complex<R>> {
    Vec<R> re, im;
    explicit Spread(Complex<R> x) : re(broadcast(x.re)), im(broadcast(x.im)) {}
    explicit Spread(Vec<Complex<R>> x) : re(even(x.v)), im(odd(x.v)) {}

private:
    static Vec<double> even(Vec<double> a) { return {_mm_unpacklo_pd(a.v, a.v)}; }
    static Vec<double> odd(Vec<double> a) { return {_mm_unpackhi_pd(a.v, a.v)}; }
    static Vec<float> even(Vec<float> a) { return {_mm_moveldup_ps(a.v)}; }
    static Vec<float> odd(Vec<float> a) { return {_mm_movehdup_ps(a.v)}; }
};

// Sum of a * factor, lane by lane. Complex numbers: a * re and a * im apart, so that one loop serves conjugates, too.
template <class T>
struct Sum {
    Vec<T> v{};
    void add(Vec<T> a, Spread<T> factor) { v = v + a * factor.v; }
    Vec<T> value(bool, bool) const { return v; }
};
template <class R>
struct Sum<Complex<R>> {
    Vec<R> re{}, im{};
    void add(Vec<Complex<R>> a, Spread<Complex<R>> factor)
    {
        re = re + a.v * factor.re;
        im = im + a.v * factor.im;
    }
    // With all a, or all factors, replaced by their conjugates.
    Vec<Complex<R>> value(bool conjugate_a, bool conjugate_factors) const
    {
        const Vec<Complex<R>> direct{re}, crossed{exchanged(im)};
        if (conjugate_a) return conj(direct) + crossed;
        if (conjugate_factors) return direct + conj(crossed);
        return {alternating_sum(direct.v, crossed.v)};
    }
};

// The first `count` < lanes elements, then zeros.
inline Vec<double> load_few(const double* p, std::int64_t) { return {_mm_load_sd(p)}; }
inline Vec<float> load_few(const float* p, std::int64_t count)
{
    if (count == 1) return {_mm_load_ss(p)};
    const Vec<float> low = load_low(p);
    return count == 2 ? low : Vec<float>{_mm_movelh_ps(low.v, _mm_load_ss(p + 2))};
}
inline Vec<Complex<float>> load_few(const Complex<float>* p, std::int64_t) { return {load_low(reals(p))}; }
inline Vec<Complex<double>> load_few(const Complex<double>* p, std::int64_t) { return load<1>(p); }

inline double lane_sum(Vec<double> a) { return fold(a); }
inline float lane_sum(Vec<float> a) { return fold(a); }
inline Complex<float> lane_sum(Vec<Complex<float>> a) { return pair_sum(a); }
inline Complex<double> lane_sum(Vec<Complex<double>> a) { return element(a); }

// Sums of the lanes of adjacent sums, one a lane.
inline Vec<double> lane_sums(Vec<double> a, Vec<double> b) { return {_mm_hadd_pd(a.v, b.v)}; }
inline Vec<float> lane_sums(Vec<float> a, Vec<float> b, Vec<float> c, Vec<float> d)
{
    return {_mm_hadd_ps(_mm_hadd_ps(a.v, b.v), _mm_hadd_ps(c.v, d.v))};
}
inline Vec<Complex<float>> lane_sums(Vec<Complex<float>> a, Vec<Complex<float>> b)
{
    return {{_mm_add_ps(_mm_movelh_ps(a.v.v, b.v.v), _mm_movehl_ps(b.v.v, a.v.v))}};
}
inline Vec<Complex<double>> lane_sums(Vec<Complex<double>> a) { return a; }

} // namespace ork::spblas::bsr

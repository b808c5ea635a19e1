// SPDX-License-Identifier: MIT
// Sums of products, `outputs` elements of y to a register, and the precisions in which they run. A complex number is a
// pair of lanes; then every term is two products with a real number in both lanes, re(a) (re x, im x) and
// im(a) (-im x, re x), whose signs carry every conjugation.
#pragma once

#include "simd/complex.h"
#include "xblas/double_double.h"

namespace ork::xblas {

// `outputs` elements of A, or of y: real numbers lane by lane; of complex ones each part in both lanes of its pair.
template <class T, class Work>
struct Operand {
    Vec<Work> v;
    explicit Operand(Vec<Work> a) : v(a) {}
};
template <class R, class Work>
struct Operand<Complex<R>, Work> {
    Vec<Work> re, im;
    explicit Operand(Vec<double> a) requires std::is_same_v<Work, double>
        : re{_mm_unpacklo_pd(a.v, a.v)}, im{_mm_unpackhi_pd(a.v, a.v)}
    {
    }
    explicit Operand(Vec<float> a) requires std::is_same_v<Work, float>
        : re{_mm_moveldup_ps(a.v)}, im{_mm_movehdup_ps(a.v)}
    {
    }
    // From memory: loads that repeat a number take no turn of the arithmetic.
    explicit Operand(const Complex<double>* p) requires(sizeof(R) == 8) : re(load<1>(&p->re)), im(load<1>(&p->im)) {}
};

// (im, -re) of every pair, or (-im, re).
template <class Work>
inline Vec<Work> crossed(Vec<Work> x, bool conjugate)
{
    const __m128i even = sizeof(Work) == 8 ? _mm_set_epi64x(0, INT64_MIN) : _mm_set1_epi64x(0x80000000);
    const __m128i odd = sizeof(Work) == 8 ? _mm_set_epi64x(INT64_MIN, 0) : _mm_set1_epi64x(INT64_MIN);
    const __m128i sign = conjugate ? odd : even;
    if constexpr (sizeof(Work) == 8)
        return {_mm_xor_pd(exchanged(x).v, _mm_castsi128_pd(sign))};
    else
        return {_mm_xor_ps(exchanged(x).v, _mm_castsi128_ps(sign))};
}

// In floating-point numbers of type Work, double or the data's.
template <class T, class W>
struct PlainSum {
    using Element = T;
    using Work = W;
    static constexpr int outputs = Vec<Work>::lanes / (is_complex<T> ? 2 : 1);
    static constexpr bool one_scales_nothing = false; // with alpha = 1: infinities and NaNs of complex numbers

    // x, or alpha or beta, ready to multiply with.
    struct Factor {
        Vec<Work> v, cross; // of complex numbers only
        Factor(Vec<Work> x, bool conjugate) : v(x), cross(x)
        {
            if constexpr (is_complex<T>) cross = crossed(x, conjugate);
        }
    };

    Vec<Work> s;

    static PlainSum zero() { return {broadcast(Work{})}; }
    void add(const Operand<T, Work>& a, const Factor& x) { s = s + product(a, x); }
    void add(const PlainSum& other) { s = s + other.s; }
    void scale(const Factor& alpha) { s = product(Operand<T, Work>(s), alpha); }
    Vec<Work> rounded() const { return s; }

private:
    static Vec<Work> product(const Operand<T, Work>& a, const Factor& x)
    {
        if constexpr (is_complex<T>)
            return a.re * x.v + a.im * x.cross;
        else
            return a.v * x.v;
    }
};

// In pairs of doubles.
template <class T>
struct ExtraSum {
    using Element = T;
    using Work = double;
    static constexpr int outputs = is_complex<T> ? 1 : 2;
    static constexpr bool one_scales_nothing = true;
    static constexpr bool exact = sizeof(Real<T>) == 4; // products of two floats, in double

    struct Factor {
        Split v, cross;
        Factor(Vec<double> x, bool conjugate) : v(x), cross(is_complex<T> ? crossed(x, conjugate) : x) {}
    };

    Pair s;

    static ExtraSum zero() { return {{broadcast(0.0), broadcast(0.0)}}; }
    void add(const Operand<T, double>& a, const Factor& x)
    {
        if constexpr (is_complex<T>) {
            add(a.re, x.v);
            add(a.im, x.cross);
        } else {
            add(a.v, x.v);
        }
    }
    void add(const ExtraSum& other) { s = s + other.s; }
    void scale(const Factor& alpha)
    {
        if constexpr (is_complex<T>) {
            const Operand<T, double> hi(s.hi), lo(s.lo);
            s = Pair{hi.re, lo.re} * alpha.v + Pair{hi.im, lo.im} * alpha.cross;
        } else {
            s = s * alpha.v;
        }
    }
    Vec<double> rounded() const { return s.hi; }

private:
    void add(Vec<double> a, const Split& x)
    {
        if constexpr (exact)
            s = s + a * x.v;
        else
            s = s + Split(a) * x;
    }
};

} // namespace ork::xblas

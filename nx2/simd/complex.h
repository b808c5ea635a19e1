// SPDX-License-Identifier: MIT
// Complex numbers as adjacent pairs: single ones, registers of them, and scalars prepared to multiply registers. Every
// product is the plain (ac - bd, ad + bc).
#pragma once

#include <type_traits>

#include "ork/types.h"
#include "simd/vec.h"

namespace ork {

template <class R>
struct Complex {
    R re = 0, im = 0;

    friend Complex operator+(Complex a, Complex b) { return {a.re + b.re, a.im + b.im}; }
    friend Complex operator-(Complex a, Complex b) { return {a.re - b.re, a.im - b.im}; }
    friend Complex operator*(Complex a, Complex b) { return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re}; }
    friend bool operator==(Complex a, Complex b) { return a.re == b.re && a.im == b.im; }
};

template <class R>
inline Complex<R> conj(Complex<R> a)
{
    return {a.re, -a.im};
}

template <class T>
struct RealOf {
    using type = T;
};
template <class R>
struct RealOf<Complex<R>> {
    using type = R;
};
template <class T>
using Real = typename RealOf<T>::type;
template <class T>
inline constexpr bool is_complex = !std::is_same_v<T, Real<T>>;

// A register of pairs, in the order of memory.
template <class R>
struct Vec<Complex<R>> {
    static constexpr int lanes = Vec<R>::lanes / 2;
    Vec<R> v;

    friend Vec operator-(Vec a, Vec b) { return {a.v - b.v}; }
    friend Vec sum(Vec a, Vec b) { return {sum(a.v, b.v)}; }
};

template <int width, class R>
inline Vec<Complex<R>> load(const Complex<R>* p)
{
    return {load<2 * width>(reinterpret_cast<const R*>(p))};
}
template <int width, class R>
inline void store(Complex<R>* p, Vec<Complex<R>> a)
{
    store<2 * width>(reinterpret_cast<R*>(p), a.v);
}

// (im, re) of every pair.
inline Vec<double> exchanged(Vec<double> a) { return {_mm_shuffle_pd(a.v, a.v, 1)}; }
inline Vec<float> exchanged(Vec<float> a) { return {_mm_shuffle_ps(a.v, a.v, _MM_SHUFFLE(2, 3, 0, 1))}; }

// A scalar S spread over registers so that it can multiply a register of T: factor * x. Of two NaNs, x's goes on.
template <class T, class S = T>
struct Factor { // real scalar: every real lane by the same number
    Vec<Real<T>> v;
    explicit Factor(S a) : v(broadcast(a)) {}
    friend Vec<T> operator*(Factor a, Vec<T> x)
    {
        if constexpr (is_complex<T>)
            return {product(x.v, a.v)};
        else
            return product(x, a.v);
    }
};
template <class R>
struct Factor<Complex<R>, Complex<R>> {
    Vec<R> re, im; // (re, re, ...), (-im, im, ...)
    explicit Factor(Complex<R> a) : re(broadcast(a.re)), im(alternate(-a.im, a.im)) {}
    friend Vec<Complex<R>> operator*(Factor a, Vec<Complex<R>> x)
    {
        return {sum(product(x.v, a.re), product(exchanged(x.v), a.im))};
    }

private:
    static Vec<double> alternate(double even, double odd) { return {_mm_set_pd(odd, even)}; }
    static Vec<float> alternate(float even, float odd) { return {_mm_set_ps(odd, even, odd, even)}; }
};

// Between the types of the boundary and these.
inline float* pairs(float* p) { return p; }
inline double* pairs(double* p) { return p; }
inline Complex<float>* pairs(ork_complex_float* p) { return reinterpret_cast<Complex<float>*>(p); }
inline Complex<double>* pairs(ork_complex_double* p) { return reinterpret_cast<Complex<double>*>(p); }
inline const Complex<float>* pairs(const ork_complex_float* p) { return reinterpret_cast<const Complex<float>*>(p); }
inline const Complex<double>* pairs(const ork_complex_double* p) { return reinterpret_cast<const Complex<double>*>(p); }
inline ork_complex_float boundary(Complex<float> a) { return {a.re, a.im}; }
inline ork_complex_double boundary(Complex<double> a) { return {a.re, a.im}; }

} // namespace ork

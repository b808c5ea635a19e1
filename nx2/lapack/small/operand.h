// SPDX-License-Identifier: MIT
// Operands of products in which a register holds rows of one column and a number of another column multiplies all of
// them: a - l u with product and difference rounded one after the other, the complex product the plain formula.
#pragma once

#include "lapack/mask.h"
#include "lapack/scalar.h"

namespace ork::lapack {

// Rows of one column, ready to be multiplied.
template <class T>
struct Rows {
    Vec<T> v;
    explicit Rows(Vec<T> v) : v(v) {}
};
template <class R>
struct Rows<Complex<R>> {
    Vec<R> v, turned; // (re, im, ...), (im, re, ...)
    explicit Rows(Vec<Complex<R>> a) : v(a.v), turned(exchanged(a.v)) {}
};

// The number that multiplies them, in every lane.
template <class T>
struct Number {
    Vec<T> v;
    explicit Number(T a) : v(broadcast(a)) {}
    explicit Number(const T* p) : v(load<1>(p)) {}
};
template <class R>
struct Number<Complex<R>> {
    Vec<R> re, im;
    explicit Number(Complex<R> a) : re(broadcast(a.re)), im(broadcast(a.im)) {}
    explicit Number(const Complex<R>* p) : re(load<1>(reals(p))), im(load<1>(reals(p) + 1)) {}
};

// Rows times number, or times its conjugate.
template <bool conjugate, class T>
inline Vec<T> product(const Rows<T>& a, const Number<T>& b)
{
    if constexpr (!is_complex<T>)
        return a.v * b.v;
    else if constexpr (conjugate) // (a.re b.re + a.im b.im, a.im b.re - a.re b.im)
        return {alternating_sum(a.v * b.re, a.turned * (broadcast(Real<T>(-0.0)) - b.im))};
    else
        return {alternating_sum(a.v * b.re, a.turned * b.im)};
}

// Rows divided by one number, complex ones by Smith's method as divided() does it but without its branch: (x p) / size
// with a prepared p.
template <class T>
struct Divisor {
    Vec<T> v;
    explicit Divisor(T d) : v(broadcast(d)) {}
    Vec<T> divide(Vec<T> x) const { return x / v; }
    Number<T> reciprocal() const { return Number<T>(lane(broadcast(T(1)) / v, 0)); }
};
template <class R>
struct Divisor<Complex<R>> {
    Number<Complex<R>> p;
    Vec<R> size;
    explicit Divisor(Complex<R> d) : p(d), size(p.re)
    {
        const Vec<R> one = broadcast(R(1)), minus = broadcast(R(-1));
        const Vec<R> turned = greater(abs(p.im), abs(p.re));
        const Vec<R> large = select(turned, p.im, p.re), small = select(turned, p.re, p.im);
        const Vec<R> r = small / large;
        size = large + small * r;
        p.re = select(turned, r, one), p.im = select(turned, minus, minus * r);
    }
    Vec<Complex<R>> divide(Vec<Complex<R>> x) const { return {product<false>(Rows<Complex<R>>(x), p).v / size}; }
    // (1, -r) / size or (r, -1) / size.
    Number<Complex<R>> reciprocal() const
    {
        Number<Complex<R>> q = p;
        q.re = q.re / size, q.im = q.im / size;
        return q;
    }
};

} // namespace ork::lapack

// SPDX-License-Identifier: MIT
// Lanes<T>: one element of the matrices that stand in a register (of the real parts, and one of the imaginary ones).
#pragma once

#include "blas/compact/layout.h"

namespace ork::compact {

template <class T>
struct Lanes {
    Vec<T> x{};

    // `imaginary` is how far imaginary parts stand behind real ones, as in Matrix.
    static Lanes get(const T* p, Int) { return {load(p)}; }
    static Lanes at(const Matrix<const T>& m, Int i, Int j) { return get(m.at(i, j), m.imaginary); }
    void put(T* p, Int) const { store(p, x); }

    // + a b, the real products one by one.
    template <bool, bool>
    void add_product(Lanes a, Lanes b)
    {
        x = x + a.x * b.x;
    }
    // - a b, the product rounded first; b conjugated if asked.
    template <bool>
    void subtract_product(Lanes a, Lanes b)
    {
        x = x - a.x * b.x;
    }
    Lanes times(T a) const { return {x * broadcast(a)}; }
    friend Lanes operator+(Lanes a, Lanes b) { return {a.x + b.x}; }
    friend Lanes operator-(Lanes a, Lanes b) { return {a.x - b.x}; }
    friend Lanes operator*(Lanes a, Lanes b) { return {a.x * b.x}; }
    friend Lanes operator*(Lanes a, Vec<T> real) { return {a.x * real}; }
    friend Lanes operator/(Lanes a, Vec<T> real) { return {a.x / real}; }
};

template <class R>
struct Lanes<Complex<R>> {
    Vec<R> re{}, im{};

    static Lanes get(const R* p, Int imaginary) { return {load(p), load(p + imaginary)}; }
    static Lanes at(const Matrix<const R>& m, Int i, Int j) { return get(m.at(i, j), m.imaginary); }
    void put(R* p, Int imaginary) const
    {
        store(p, re);
        store(p + imaginary, im);
    }

    template <bool conjugate_a, bool conjugate_b>
    void add_product(Lanes a, Lanes b)
    {
        const Vec<R> ii = a.im * b.im, ri = a.re * b.im, ir = a.im * b.re;
        re = re + a.re * b.re;
        re = conjugate_a == conjugate_b ? re - ii : re + ii;
        im = conjugate_b ? im - ri : im + ri;
        im = conjugate_a ? im - ir : im + ir;
    }
    template <bool conjugate_b>
    void subtract_product(Lanes a, Lanes b)
    {
        re = re - (conjugate_b ? a.re * b.re + a.im * b.im : a.re * b.re - a.im * b.im);
        im = im - (conjugate_b ? a.im * b.re - a.re * b.im : a.re * b.im + a.im * b.re);
    }
    Lanes times(Complex<R> a) const
    {
        return {re * broadcast(a.re) - im * broadcast(a.im), re * broadcast(a.im) + im * broadcast(a.re)};
    }
    friend Lanes operator+(Lanes a, Lanes b) { return {a.re + b.re, a.im + b.im}; }
    friend Lanes operator-(Lanes a, Lanes b) { return {a.re - b.re, a.im - b.im}; }
    friend Lanes operator*(Lanes a, Lanes b) { return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re}; }
    friend Lanes operator*(Lanes a, Vec<R> real) { return {a.re * real, a.im * real}; }
    friend Lanes operator/(Lanes a, Vec<R> real) { return {a.re / real, a.im / real}; }
};

} // namespace ork::compact

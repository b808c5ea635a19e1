// SPDX-License-Identifier: MIT
// One element of y, number by number as include/ork/abi/xblas.h has it, splitting with 134217729 v.
#pragma once

#include <vector>

#include "xblas/kernel.h"

namespace ork::test {

struct Pair {
    double hi = 0, lo = 0;
};

inline Pair exact_sum(double a, double b)
{
    const double t = a + b, b_part = t - a;
    return {t, (a - (t - b_part)) + (b - b_part)};
}
inline Pair split(double v)
{
    const double c = 134217729.0 * v, hi = c - (c - v);
    return {hi, v - hi};
}
inline Pair exact_product(double a, double x)
{
    const Pair as = split(a), xs = split(x);
    const double p = a * x;
    return {p, ((as.hi * xs.hi - p) + as.hi * xs.lo + as.lo * xs.hi) + as.lo * xs.lo};
}
inline Pair operator+(Pair s, Pair p)
{
    Pair t = exact_sum(s.hi, p.hi);
    const Pair low = exact_sum(s.lo, p.lo);
    for (const double more : {low.hi, low.lo}) {
        t.lo += more;
        const double sum = t.hi + t.lo;
        t = {sum, t.lo - (sum - t.hi)};
    }
    return t;
}
inline Pair operator*(Pair s, double alpha)
{
    const Pair leading = exact_product(s.hi, alpha);
    const double small = s.lo * alpha, sum = leading.hi + small;
    const double rest = (small - (sum - leading.hi)) + leading.lo, head = sum + rest;
    return {head, rest - (head - sum)};
}

// The terms of one element, and what else goes into it.
template <class T>
struct Element {
    std::vector<T> a, head, tail; // tail: empty in the form of one vector
    T alpha, beta, y;
};

template <class T>
double real_of(T a)
{
    if constexpr (is_complex<T>)
        return a.real();
    else
        return a;
}
template <class T>
double imag_of(T a)
{
    if constexpr (is_complex<T>)
        return a.imag();
    else
        return 0;
}

struct ExtraNumber {
    Pair re, im;
};
template <class T>
void add_product(ExtraNumber& s, T a, T x)
{
    s.re = s.re + exact_product(real_of(a), real_of(x));
    if constexpr (is_complex<T>) {
        s.re = s.re + exact_product(imag_of(a), -imag_of(x));
        s.im = s.im + exact_product(real_of(a), imag_of(x));
        s.im = s.im + exact_product(imag_of(a), real_of(x));
    }
}
template <class T>
ExtraNumber extra_element(const Element<T>& e)
{
    ExtraNumber s, other;
    for (std::size_t t = 0; t < e.a.size(); ++t) {
        add_product(s, e.a[t], e.head[t]);
        if (!e.tail.empty()) add_product(other, e.a[t], e.tail[t]);
    }
    if (!e.tail.empty()) s = {s.re + other.re, s.im + other.im};
    if (e.alpha == T{}) s = {};
    const double re = real_of(e.alpha), im = imag_of(e.alpha);
    ExtraNumber y{s.re * re, {}};
    if constexpr (is_complex<T>) y = {s.re * re + s.im * -im, s.re * im + s.im * re};
    if (!(e.beta == T{})) add_product(y, e.y, e.beta);
    return y;
}

// In the real type W.
template <class W, class T>
Wide<W> plain_element(const Element<T>& e)
{
    const auto product = [](T a, T x) { return multiply<T>(Wide<W>(a), Wide<W>(x)); };
    Wide<W> s, other;
    for (std::size_t t = 0; t < e.a.size(); ++t) {
        s += product(e.a[t], e.head[t]);
        if (!e.tail.empty()) other += product(e.a[t], e.tail[t]);
    }
    if (!e.tail.empty()) s += other;
    if (e.alpha == T{})
        s = {};
    else
        s = multiply<T>(Wide<W>(e.alpha), s);
    if (!(e.beta == T{})) s += product(e.beta, e.y);
    return s;
}

template <class T>
T expected_element(Int prec, const Element<T>& e)
{
    using R = Real<T>;
    const auto number = [](auto re, auto im) -> T {
        if constexpr (is_complex<T>)
            return {static_cast<R>(re), static_cast<R>(im)};
        else
            return static_cast<R>(re);
    };
    if (prec == extra) {
        const ExtraNumber y = extra_element(e);
        return number(y.re.hi, y.im.hi);
    }
    if (prec == double_precision) {
        const Wide<double> y = plain_element<double>(e);
        return number(y.re, y.im);
    }
    const Wide<R> y = plain_element<R>(e);
    return number(y.re, y.im);
}

} // namespace ork::test

// SPDX-License-Identifier: MIT
// Sums of products over contiguous data: values against elements of x or y, both with unit stride.
#pragma once

#include "spblas/right_sides.h"

namespace ork::spblas {

// A register of sums of val * x, or of conj(val) * x as asked for at the end. Complex: re(val) * x and im(val) * (x
// with its parts exchanged) are summed apart.
template <class T>
struct Products {
    Vec<T> sum{};

    template <int width>
    void add(const T* val, const T* x)
    {
        sum = sum + load<width>(val) * load<width>(x);
    }
    friend Products operator+(Products a, Products b) { return {a.sum + b.sum}; }
    Vec<T> value(Conjugation<T>) const { return sum; }
};

template <class R>
struct Products<Complex<R>> {
    Vec<R> re{}, im{};

    template <int width>
    void add(const Complex<R>* val, const Complex<R>* x)
    {
        const Vec<R> v = load<2 * width>(reals(x));
        if constexpr (sizeof(R) == 8) {
            re = re + load<1>(reals(val)) * v;
            im = im + load<1>(reals(val) + 1) * exchanged(v);
        } else {
            const Vec<R> a = load<2 * width>(reals(val));
            re = re + Vec<R>{_mm_moveldup_ps(a.v)} * v;
            im = im + Vec<R>{_mm_movehdup_ps(a.v)} * exchanged(v);
        }
    }
    friend Products operator+(Products a, Products b) { return {a.re + b.re, a.im + b.im}; }
    Vec<Complex<R>> value(Conjugation<Complex<R>> conjugated) const
    {
        return {alternating_sum(re, broadcast(conjugated.sign) * im)};
    }
};

// Lanes 0 .. width - 1 together.
template <int width, class T>
inline T total(Vec<T> a)
{
    if constexpr (!is_complex<T>) {
        if constexpr (width == 1) return lane(a, 0);
        return fold(a);
    } else {
        T part[Vec<T>::lanes];
        store<Vec<T>::lanes>(part, a);
        if constexpr (width == 1) return part[0];
        return part[0] + part[1];
    }
}

// t multiplies registers of values: t * val, or t * conj(val).
template <class T>
struct Multiple {
    Factor<T> factor;
    Multiple(T t, Conjugation<T> conjugated) : factor(t)
    {
        if constexpr (is_complex<T>)
            if (conjugated.sign < 0) {
                factor.re = conj(Vec<T>{factor.re}).v;
                factor.im = broadcast(t.im);
            }
    }
    friend Vec<T> operator*(const Multiple& a, Vec<T> val)
    {
        if constexpr (is_complex<T>)
            return {val.v * a.factor.re + exchanged(val.v) * a.factor.im};
        else
            return a.factor.v * val;
    }
};

template <int width, class T>
inline void add_to(T* y, Vec<T> a)
{
    store<width>(y, Vec<T>(sum(a, load<width>(y))));
}

// The sum of val[i] x[i], i < n.
template <class T>
[[gnu::noinline]] T dot(const T* val, const T* x, Index n, Conjugation<T> conjugated)
{
    constexpr int lanes = Vec<T>::lanes;
    Products<T> part[4]{}, rest{};
    Index i = 0;
    for (; i + 4 * lanes <= n; i += 4 * lanes)
#pragma GCC unroll 4
        for (int j = 0; j < 4; ++j) part[j].template add<lanes>(val + i + j * lanes, x + i + j * lanes);
    for (; i + lanes <= n; i += lanes) part[0].template add<lanes>(val + i, x + i);
    for (; i < n; ++i) rest.template add<1>(val + i, x + i);
    const T blocks = total<lanes>(((part[0] + part[1]) + (part[2] + part[3])).value(conjugated));
    return lanes == 1 ? blocks : blocks + total<1>(rest.value(conjugated));
}

// y[i] += t val[i], i < n.
template <class T>
[[gnu::noinline]] void axpy(T t, const T* val, T* y, Index n, Conjugation<T> conjugated)
{
    constexpr int lanes = Vec<T>::lanes;
    const Multiple<T> multiple(t, conjugated);
    Index i = 0;
    for (; i + 4 * lanes <= n; i += 4 * lanes)
#pragma GCC unroll 4
        for (int j = 0; j < 4; ++j) add_to<lanes>(y + i + j * lanes, multiple * load<lanes>(val + i + j * lanes));
    for (; i < n; ++i) add_to<1>(y + i, multiple * load<1>(val + i));
}

// Both in one pass over val.
template <class T>
[[gnu::noinline]] T dot_axpy(T t, const T* val, const T* x, T* y, Index n, Conjugation<T> in_dot,
                             Conjugation<T> in_axpy)
{
    constexpr int lanes = Vec<T>::lanes;
    const Multiple<T> multiple(t, in_axpy);
    Products<T> part[2]{}, rest{};
    Index i = 0;
    for (; i + 2 * lanes <= n; i += 2 * lanes)
#pragma GCC unroll 2
        for (int j = 0; j < 2; ++j) {
            const Index k = i + j * lanes;
            part[j].template add<lanes>(val + k, x + k);
            add_to<lanes>(y + k, multiple * load<lanes>(val + k));
        }
    for (; i < n; ++i) {
        rest.template add<1>(val + i, x + i);
        add_to<1>(y + i, multiple * load<1>(val + i));
    }
    return total<lanes>((part[0] + part[1]).value(in_dot)) + total<1>(rest.value(in_dot));
}

} // namespace ork::spblas

// SPDX-License-Identifier: MIT
// Sums of products over contiguous data: values against elements of x or y, both with unit stride.
#pragma once

#include "simd/fetch.h"
#include "spblas/right_sides.h"

namespace ork::spblas {

// How far from the values in use others are fetched, in bytes: ahead, or behind where a matrix is walked from its end.
// Nothing where the values fit near caches, and what is fetched is at hand already.
struct Ahead {
    Index bytes;

    Ahead(bool forward, Index size) : bytes(size < far_bytes ? 0 : forward ? far_ahead : -far_ahead) {}
    template <class T>
    [[gnu::always_inline]] void fetch(const T* p) const
    {
        fetch_at(p, bytes);
    }
};

// f<vectors, width>(i) over 0 .. n - 1: four registers at once, single ones, single elements.
template <class T, class F>
[[gnu::always_inline]] inline void for_strips(Index n, F f)
{
    constexpr int lanes = Vec<T>::lanes;
    Index i = 0;
    for (; i + 4 * lanes <= n; i += 4 * lanes) f.template operator()<4, lanes>(i);
    for (; i + lanes <= n; i += lanes) f.template operator()<1, lanes>(i);
    if constexpr (lanes > 1)
        for (; i < n; ++i) f.template operator()<1, 1>(i);
}

// The first `width` elements at p, and zeros in the lanes that are left.
template <int width>
inline Vec<double> load_zero(const double* p)
{
    return width == 1 ? Vec<double>{_mm_load_sd(p)} : load(p);
}
template <int width>
inline Vec<float> load_zero(const float* p)
{
    return width == 1 ? Vec<float>{_mm_load_ss(p)} : width == 2 ? load_low(p) : load(p);
}

// A register of sums of val * x, or of conj(val) * x as asked for at the end. Complex: re(val) * x and im(val) * (x
// with its parts exchanged) are summed apart.
template <class T>
struct Products {
    Vec<T> sum{};

    template <int width>
    void add(const T* val, const T* x)
    {
        sum = sum + load_zero<width>(val) * load_zero<width>(x);
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
        const Vec<R> v = load_zero<2 * width>(reals(x));
        if constexpr (sizeof(R) == 8) {
            re = re + load<1>(reals(val)) * v;
            im = im + load<1>(reals(val) + 1) * exchanged(v);
        } else {
            const Vec<R> a = load_zero<2 * width>(reals(val));
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

// The sum of the lanes.
template <class T>
inline T total(Vec<T> a)
{
    if constexpr (!is_complex<T>) {
        return fold(a);
    } else {
        T part[Vec<T>::lanes];
        store<Vec<T>::lanes>(part, a);
        return Vec<T>::lanes == 1 ? part[0] : part[0] + part[Vec<T>::lanes - 1];
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
inline T dot(const T* val, const T* x, Index n, Conjugation<T> conjugated, Ahead ahead)
{
    Products<T> part[4]{};
    for_strips<T>(
        n, [&]<int vectors, int width>(Index i) __attribute__((always_inline)) {
            ahead.fetch(val + i);
#pragma GCC unroll 4
            for (int j = 0; j < vectors; ++j) part[j].template add<width>(val + i + j * width, x + i + j * width);
        });
    return total(((part[0] + part[1]) + (part[2] + part[3])).value(conjugated));
}

// y[i] += t val[i], i < n.
template <class T>
inline void axpy(T t, const T* val, T* y, Index n, Conjugation<T> conjugated, Ahead ahead)
{
    const Multiple<T> multiple(t, conjugated);
    for_strips<T>(
        n, [&]<int vectors, int width>(Index i) __attribute__((always_inline)) {
            ahead.fetch(val + i);
#pragma GCC unroll 4
            for (int j = 0; j < vectors; ++j)
                add_to<width>(y + i + j * width, multiple * load<width>(val + i + j * width));
        });
}

// The ones of a unit diagonal: rows first .. last (exclusive) of C += alpha B.
template <class T>
[[gnu::noinline]] void add_identity(bool row_major, Index first, Index last, T alpha, const Operands<T>& o)
{
    const Index lines = row_major ? last - first : o.sides, length = row_major ? o.sides : last - first;
    const T* b = o.b + first * o.b_row;
    T* c = o.c + first * o.c_row;
    for (Index line = 0; line < lines; ++line)
        axpy(alpha, b + line * (row_major ? o.b_row : o.b_side), c + line * (row_major ? o.c_row : o.c_side), length,
             Conjugation<T>(false), Ahead(true, 0));
}

// Both in one pass over val.
template <class T>
inline T dot_axpy(T t, const T* val, const T* x, T* y, Index n, Conjugation<T> in_dot, Conjugation<T> in_axpy,
                  Ahead ahead)
{
    const Multiple<T> multiple(t, in_axpy);
    Products<T> part[4]{};
    for_strips<T>(
        n, [&]<int vectors, int width>(Index i) __attribute__((always_inline)) {
            ahead.fetch(val + i);
#pragma GCC unroll 4
            for (int j = 0; j < vectors; ++j) {
                const Index k = i + j * width;
                part[j].template add<width>(val + k, x + k);
                add_to<width>(y + k, multiple * load<width>(val + k));
            }
        });
    return total(((part[0] + part[1]) + (part[2] + part[3])).value(in_dot));
}

} // namespace ork::spblas

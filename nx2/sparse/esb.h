// SPDX-License-Identifier: MIT
// Products of rows in slices: one accumulator a row for the whole slice, rows in the lanes of registers.
#pragma once

#include "sparse/csr_mv.h"

namespace ork::sparse {

// Slices of a share. `tail`: rows of the last one, 0 for all of them, more than h to leave it out.
template <class Int, class T>
struct Slices {
    using Pointer = std::make_unsigned_t<Int>;
    const T* vals;
    const Int* cols;
    const Pointer *begin, *end;
    Index first, last, tail;

    Index count() const { return last - first; }
    Index length(Index slice) const { return static_cast<Int>(end[slice] - begin[slice]); }
    bool far() const
    {
        Index entries = 0;
        if (count() > 0) // about: slices are much alike
            entries = (length(0) + length(count() / 2) + length(count() - 1)) / 3 * count();
        return entries * Index(sizeof(T) + sizeof(Int)) > far_bytes;
    }
};

// The sums of the h rows of a slice.
template <int h, class T>
struct SliceSums {
    static constexpr int lanes = Vec<T>::lanes, registers = h / lanes;
    Vec<T> v[registers]{};

    template <class Int>
    [[gnu::always_inline]] void add(const T* vals, const Int* cols, const T* x)
    {
#pragma GCC unroll 8
        for (int j = 0; j < registers; ++j)
            v[j] = v[j] + times(load<lanes>(vals + j * lanes), gather(x, cols + j * lanes, 0));
    }
};

// The lanes of conj(x) y.
template <class T>
inline Vec<T> conjugate_product(Vec<T> x, Vec<T> y)
{
    if constexpr (is_complex<T>)
        return times(conj(x), y);
    else
        return x * y;
}

// A slice's products to one number: pairs (0 1) (2 3) ... as lanes, ((p0 p1) + (p2 p3)) + ((p4 p5) + (p6 p7)), then
// lane 0 + lane 1.
template <int h, class T>
inline T slice_dot(const Vec<T> (&p)[h / Vec<T>::lanes])
{
    if constexpr (std::is_same_v<T, float>) {
        const auto halves = [](Vec<float> a) { return _mm_add_ps(a.v, _mm_movehl_ps(a.v, a.v)); };
        Vec<float> pair{halves(p[0])};
        if constexpr (h == 8) pair.v = _mm_add_ps(pair.v, halves(p[1]));
        return TwoLanes<float>{pair}.sum();
    } else if constexpr (std::is_same_v<T, Complex<double>>) {
        const auto lane = [&](int i) {
            if constexpr (h == 8)
                return (p[i] + p[i + 2]) + (p[i + 4] + p[i + 6]);
            else
                return p[i] + p[i + 2];
        };
        return element(lane(0) + lane(1));
    } else {
        if constexpr (h == 8)
            return TwoLanes<T>{(p[0] + p[1]) + (p[2] + p[3])}.sum();
        else
            return TwoLanes<T>{p[0] + p[1]}.sum();
    }
}

// y = alpha A x + beta y, and with `dots` the sum of conj(x_i) y_i over the rows of the share.
template <int h, bool dots, bool far, class Int, class T>
[[gnu::noinline]] void slice_products(Slices<Int, T> a, Scaling<T> scaling, const T* x, T* y, T* dot)
{
    constexpr int lanes = Vec<T>::lanes, registers = h / lanes;
    const Factor<T> alpha(scaling.alpha), beta(scaling.beta);
    const bool clear = scaling.clear;
    const Index full = a.count() - (a.tail != 0);
    const T* vals = a.vals;
    const Int* cols = a.cols;
    const T* own = x + a.first * h; // x at the rows of the slice
    T running{};
    for (Index s = 0; s < full; ++s, own += h, y += h) {
        SliceSums<h, T> sums;
        const Index length = a.length(s);
        for (const T* const end = vals + (length > 0 ? length : 0); vals < end; vals += h, cols += h) {
            if constexpr (far) {
#pragma GCC unroll 8
                for (int j = 0; j < h; j += line<T>) fetch(vals + j);
                fetch(cols);
            }
            sums.add(vals, cols, x);
        }
        Vec<T> products[registers];
#pragma GCC unroll 8
        for (int j = 0; j < registers; ++j) {
            Vec<T> result = alpha * sums.v[j];
            if (!clear) result = {sum(result, beta * load<lanes>(y + j * lanes))};
            store<lanes>(y + j * lanes, result);
            if constexpr (dots) products[j] = conjugate_product(load<lanes>(own + j * lanes), result);
        }
        if constexpr (dots) running = running + slice_dot<h>(products);
        if constexpr (far) fetch(y), fetch(a.begin + s), fetch(a.end + s);
    }
    if (a.tail >= 1 && a.tail <= h && full >= 0) {
        const Index length = a.length(full);
        for (Index r = 0; r < a.tail; ++r) {
            T s{};
            for (Index k = r; k < length; k += h) s = s + vals[k] * x[cols[k]];
            y[r] = scaling.apply(s, y[r]);
            if constexpr (dots) running = running + conjugated(own[r]) * y[r];
        }
    }
    if constexpr (dots) *dot = running;
}

template <int h, class Int, class T>
inline void slice_product(Slices<Int, T> a, T alpha, T beta, const T* x, T* y)
{
    (a.far() ? slice_products<h, false, true, Int, T> : slice_products<h, false, false, Int, T>)(a, {alpha, beta}, x, y,
                                                                                                 nullptr);
}

template <int h, class Int, class T>
inline void slice_dot_product(Slices<Int, T> a, T alpha, T beta, const T* x, T* y, T* dot)
{
    (a.far() ? slice_products<h, true, true, Int, T> : slice_products<h, true, false, Int, T>)(a, {alpha, beta}, x, y,
                                                                                               dot);
}

} // namespace ork::sparse

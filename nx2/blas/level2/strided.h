// SPDX-License-Identifier: MIT
// Vectors with increments, and their way through the two buffers on the stack that make them contiguous for the
// streaming kernels: `panel` elements of the vector that runs along the columns of the matrix, `chunk` of the one that
// runs along its rows.
#pragma once

#include "blas/elementwise.h"

namespace ork::level2 {

constexpr Int panel = 128, chunk = 1000;

template <class T, Int size>
struct Buffer {
    alignas(16) T data[size]; // not initialised
    operator T*() { return data; }
};
template <class R, Int size>
struct Buffer<Complex<R>, size> {
    alignas(16) R numbers[2 * size];
    operator Complex<R>*() { return reinterpret_cast<Complex<R>*>(numbers); }
};

// Element i stands at first + i * inc; with a negative increment element 0 is the last in memory. An increment of 0
// makes all elements one.
template <class T>
struct Strided {
    T* first;
    Int inc;

    Strided(T* x, Int n, Int increment) : first(ork::first(x, n, increment)), inc(increment) {}
    Strided(T* element, Int increment) : first(element), inc(increment) {}
    explicit Strided(T* x) : first(x), inc(1) {}

    T* at(Int i) const { return first + i * inc; }
    Strided from(Int i) const { return {at(i), inc}; }
    bool contiguous() const { return inc == 1; }
    operator Strided<const T>() const { return {first, inc}; }

    // The address that a BLAS call takes for the first n elements.
    T* argument(Int n) const { return inc < 0 ? at(n - 1) : first; }
};

// Addresses may be any, as everywhere.
template <class T>
inline void gather(Int n, Strided<const T> x, T* buffer)
{
#pragma GCC unroll 4
    for (Int i = 0; i < n; ++i) buffer[i] = get(x.at(i));
}

template <class T>
inline void scatter(Int n, const T* buffer, Strided<T> y)
{
#pragma GCC unroll 4
    for (Int i = 0; i < n; ++i) put(y.at(i), buffer[i]);
}

} // namespace ork::level2

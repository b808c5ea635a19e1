// SPDX-License-Identifier: MIT
// Vectors with increments, and their way through the two buffers on the stack that make them contiguous for the
// streaming kernels: `panel` elements of the vector that runs along the columns of the matrix, `chunk` of the one that
// runs along its rows.
#pragma once

#include <type_traits>

#include "blas/elementwise.h"

namespace ork::level2 {

constexpr Int panel = 128, chunk = 1000;

// Room for elements that are written before they are read.
template <class T, Int size>
class Buffer {
public:
    T* data() { return reinterpret_cast<T*>(numbers_); }
    operator T*() { return data(); }

private:
    alignas(16) Real<T> numbers_[size * (sizeof(T) / sizeof(Real<T>))];
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
inline void gather(Int n, Strided<const T> x, std::type_identity_t<T>* buffer)
{
#pragma GCC unroll 4
    for (Int i = 0; i < n; ++i) buffer[i] = get(x.at(i));
}

template <class T>
inline void scatter(Int n, const std::type_identity_t<T>* buffer, Strided<T> y)
{
#pragma GCC unroll 4
    for (Int i = 0; i < n; ++i) put(y.at(i), buffer[i]);
}

} // namespace ork::level2

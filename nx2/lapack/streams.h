// SPDX-License-Identifier: MIT
// Vectors with increments that go through the same step element by element. Where all increments are 1 registers take
// adjacent elements; where none is 0 they take elements from where they stand, which halves the arithmetic; otherwise
// one element comes after the other, each seeing what the one before has stored.
#pragma once

#include "blas/elementwise.h"
#include "lapack/column_lanes.h"

namespace ork::lapack {

template <class E>
struct Stream {
    E* at; // element 0
    Int inc;

    Stream(E* x, Int n, Int inc) : at(first(x, n, inc)), inc(inc) {}
};

namespace streams {

// A register's worth of a stream, `i` elements on. strided: its elements stand `inc` apart.
template <int width, bool strided, class E>
struct Slice {
    using Element = std::remove_const_t<E>;
    E* p;
    Int inc;

    [[gnu::always_inline]] Vec<Element> get() const
    {
        if constexpr (strided && width > 1) {
            const Int offsets[4] = {0, inc, 2 * inc, 3 * inc};
            return gather(p, offsets, 0);
        } else {
            return load<width>(p);
        }
    }
    [[gnu::always_inline]] void put(Vec<Element> x) const
    {
        if constexpr (strided && width > 1) {
            const Int offsets[4] = {0, inc, 2 * inc, 3 * inc};
            scatter(p, offsets, x);
        } else {
            store<width>(p, x);
        }
    }
    // Real numbers beside complex ones: each twice.
    [[gnu::always_inline]] Vec<Element> get_twice() const
    {
        if constexpr (width == 1)
            return broadcast(*p);
        else if constexpr (strided)
            return {_mm_movelh_ps(_mm_set1_ps(p[0]), _mm_set1_ps(p[inc]))};
        else {
            const __m128 two = load_low(p).v;
            return {_mm_unpacklo_ps(two, two)};
        }
    }
};

template <bool strided, int unroll, class T, class Step, class... E>
[[gnu::always_inline]] inline void in_registers(Int n, const Step& step, Stream<E>... s)
{
    constexpr int lanes = Vec<T>::lanes;
    const auto take = [&]<int width>(Int i) __attribute__((always_inline))
    {
        step.template at<width>(Slice<width, strided, E>{s.at + (strided ? i * s.inc : i), s.inc}...);
    };
    const auto advance = [&](Int count) __attribute__((always_inline))
    {
        ((s.at += strided ? count * s.inc : count), ...);
        n -= count;
    };
    while (n >= unroll * lanes) {
#pragma GCC unroll 4
        for (int j = 0; j < unroll; ++j) take.template operator()<lanes>(j * lanes);
        advance(unroll * lanes);
    }
    while (n >= lanes) {
        take.template operator()<lanes>(0);
        advance(lanes);
    }
    while (n > 0) {
        take.template operator()<1>(0);
        advance(1);
    }
}

} // namespace streams

// step.at<width>(slice...) takes `width` elements of every stream. T is the type whose lanes count.
template <class T, class Step, class... E>
void for_each_element(Int n, const Step& step, Stream<E>... s)
{
    if (n <= 0) return;
    if (((s.inc == 1) && ...))
        streams::in_registers<false, 4, T>(n, step, s...);
    else if (((s.inc != 0) && ...))
        streams::in_registers<true, 2, T>(n, step, s...);
    else
        for (Int i = 0; i < n; ++i) step.template at<1>(streams::Slice<1, false, E>{s.at + i * s.inc, s.inc}...);
}

} // namespace ork::lapack

// SPDX-License-Identifier: MIT
// Runs a step over the elements of one vector or of two. A step is an object with
//     template <int width> void at(const X* x, Y* y) const;
// that loads `width` adjacent elements at x and y, and then stores. Bits do not depend on where the vectors stand: the
// same step, on more or fewer lanes, does every element.
//
// Whatever the increments, the outcome is that of one element after the other in the order of the elements; so an
// increment of zero means n steps on one element, and overlapping vectors see what earlier steps stored.
#pragma once

#include <cstdint>

#include "simd/complex.h"

namespace ork {

using Int = std::int64_t;

// The address of element 0: with a negative increment it is the last in memory.
template <class T>
inline T* first(T* x, Int n, Int inc)
{
    return inc < 0 ? x + (1 - n) * inc : x;
}

template <class T>
inline T get(const T* p) // p of any alignment
{
    T value;
    std::memcpy(&value, p, sizeof value);
    return value;
}
template <class T>
inline void put(T* p, T value)
{
    std::memcpy(p, &value, sizeof value);
}

// Bytes from x to y in (-size, size), but not 0.
inline bool overlap(const void* x, const void* y, std::int64_t size)
{
    const auto distance = static_cast<std::uint64_t>(static_cast<const char*>(y) - static_cast<const char*>(x));
    return distance + static_cast<std::uint64_t>(size - 1) <= 2 * static_cast<std::uint64_t>(size - 1) && distance != 0;
}

// Pairs of vectors of so many bytes come from the third-level cache, where fetching ahead of the loads gains 10 to 20
// %. In the nearer caches it only costs a load, and from memory it loses up to 20 % to what the processor fetches by
// itself, as it does for a single vector and where arithmetic is the limit, as in complex axpy.
inline bool in_third_level(Int bytes) { return bytes >= 1 << 19 && bytes < 3 << 21; }
constexpr Int ahead = 1024; // bytes

// The lines of `count` elements that will be wanted. Never faults, wherever p + ahead is.
template <int count, class T>
[[gnu::always_inline]] inline void prefetch(const T* p)
{
#pragma GCC unroll 8
    for (int line = 0; line < count * static_cast<int>(sizeof(T)); line += 64)
        _mm_prefetch(reinterpret_cast<const char*>(reinterpret_cast<std::uintptr_t>(p) + ahead + line), _MM_HINT_T0);
}

namespace elementwise {

// Registers that the step takes at once in the long loops.
template <class Step>
constexpr int group()
{
    if constexpr (requires { Step::group; })
        return Step::group;
    else
        return 1;
}

// The elements that fill no pass, by the bits of their number.
template <int part, class X, class Y, class Step>
[[gnu::always_inline]] inline void rest(Int n, const Step& step, X* x, Y* y)
{
    constexpr int width = part < Vec<Y>::lanes ? part : Vec<Y>::lanes;
    if (n & part) {
#pragma GCC unroll 8
        for (int j = 0; j < part; j += width) step.template at<width>(x + j, y + j);
        x += part, y += part;
    }
    if constexpr (part > 1) rest<part / 2>(n, step, x, y);
}

template <class X, class Y, class Step>
[[gnu::always_inline]] inline void adjacent(Int n, const Step& step, X* x, Y* y)
{
    constexpr int lanes = Vec<Y>::lanes, width = group<Step>() * lanes;
    constexpr int block = 8 * lanes; // a pass
    if (n >= block) {
        // A store that crosses a cache line costs twice; that pays for a few single steps in a longer vector only.
        if (n >= 4 * block && reinterpret_cast<std::uintptr_t>(y) % sizeof(Y) == 0)
            for (; reinterpret_cast<std::uintptr_t>(y) % 16 != 0; ++x, ++y, --n) step.template at<1>(x, y);
        if (group<Step>() == 1 && static_cast<const void*>(x) != y && in_third_level(n * static_cast<Int>(sizeof(Y)))) {
            for (; n >= block; n -= block, x += block, y += block) {
                prefetch<block>(x), prefetch<block>(y);
#pragma GCC unroll 8
                for (int j = 0; j < block; j += width) step.template at<width>(x + j, y + j);
            }
        } else {
            for (; n >= block; n -= block, x += block, y += block)
#pragma GCC unroll 8
                for (int j = 0; j < block; j += width) step.template at<width>(x + j, y + j);
        }
    }
    rest<block / 2>(n, step, x, y);
}

// All that is not two increments of 1, out of the way of those. Takes the step by value, so that theirs stays in
// registers.
template <class X, class Y, class Step>
[[gnu::noinline]] void in_order(Int n, Step step, X* x, Int incx, Y* y, Int incy)
{
    const bool backward = incx == -1 && incy == -1 && !overlap(x, y, n * static_cast<Int>(sizeof(Y)));
    if (backward) return elementwise::adjacent(n, step, x, y);
    x = first(x, n, incx), y = first(y, n, incy);
#pragma GCC unroll 4
    for (Int i = 0; i < n; ++i, x += incx, y += incy) step.template at<1>(x, y);
}

} // namespace elementwise

template <class X, class Y, class Step>
[[gnu::always_inline]] inline void each(Int n, const Step& step, X* x, Int incx, Y* y, Int incy)
{
    // A register at a time is one element at a time, unless an element that it stores is another that it loads.
    if (incx == 1 && incy == 1 && !overlap(x, y, 16 * elementwise::group<Step>())) [[likely]]
        elementwise::adjacent(n, step, x, y);
    else
        elementwise::in_order(n, step, x, incx, y, incy);
}

} // namespace ork

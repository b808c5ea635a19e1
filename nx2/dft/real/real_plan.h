// SPDX-License-Identifier: MIT
// What a plan for real transforms holds.
#pragma once

#include "dft/real/half_length.h"
#include "dft/real/odd.h"
#include "dft/real/real.h"
#include "dft/real/small.h"

namespace ork::dft {

template <class R>
class RealPlan {
public:
    std::int64_t n;
    SmallForward<R> small_forward; // null: none for this length
    SmallBackward<R> small_backward;
    Plan<R>* complex; // of length n/2 for even n; of length n for odd n that goes no other way, or else null
    Complex<R>* g;    // even n: constants of half_length.h for k = 1 ...
    OddPlan<R>* odd;  // odd n with small factors, or null

    std::int64_t group;       // transforms that are best done at once
    std::int64_t block;       // those done at once, so that both sides stay in the second-level cache
    std::int64_t line;        // real numbers of one transform in work memory
    std::int64_t lines;       // so many of them there
    std::size_t whole_offset; // odd n with a complex plan: n complex numbers
    std::size_t lines_offset, work_bytes;
};

// A layout with its three parts told apart.
template <class R>
inline Spectrum<R> spectrum(Packing packing, std::int64_t n, const Place<R>& p)
{
    const std::int64_t s = p.stride, half = n / 2;
    const bool even = n % 2 == 0;
    if (packing == Packing::cce)
        return {p.re, p.im, s, p.distance, p.re, p.re + half * s, p.im, even ? p.im + half * s : p.im};
    if (packing == Packing::ccs) {
        R* const im = p.re + s;
        return {p.re, im, 2 * s, p.distance, p.re, p.re + 2 * half * s, im, even ? im + 2 * half * s : im};
    }
    if (packing == Packing::perm && even) return {p.re, p.re + s, 2 * s, p.distance, p.re, p.re + s, nullptr, nullptr};
    return {p.re - s, p.re, 2 * s, p.distance, p.re, p.re + (n - 1) * s, nullptr, nullptr};
}

// One contiguous transform of odd length; all of `in` is read before anything is written. The spectrum is dense.
template <class R>
void odd_forward(const RealPlan<R>& plan, R scale, const R* in, const Spectrum<R>& x, void* work);
template <class R>
void odd_backward(const RealPlan<R>& plan, R scale, const Spectrum<R>& x, R* out, void* work);

// Many of odd length.
template <class R>
void odd_forward(const RealPlan<R>& plan, Packing packing, R scale, const Place<R>& in, const Place<R>& out,
                 std::int64_t count, void* work);
template <class R>
void odd_backward(const RealPlan<R>& plan, Packing packing, R scale, const Place<R>& in, const Place<R>& out,
                  std::int64_t count, void* work);

template <class R>
inline Place<R> from_transform(const Place<R>& p, std::int64_t t)
{
    return {p.re + t * p.distance, p.im == nullptr ? nullptr : p.im + t * p.distance, p.stride, p.distance};
}
template <class Body>
inline void in_blocks(std::int64_t count, std::int64_t block, Body body)
{
    for (std::int64_t t = 0; t < count; t += block) body(t, count - t < block ? count - t : block);
}

} // namespace ork::dft

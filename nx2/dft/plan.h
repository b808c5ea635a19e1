// SPDX-License-Identifier: MIT
// One length, planned: factors, tables, and every way in which transforms of it are computed.
//
// forward: X[k] = sum over j of x[j] exp(-2 pi i j k / n); backward: the same with +. Neither is scaled unless asked.
// All functions are re-entrant; a plan is read-only once it is made.
#pragma once

#include <cstddef>
#include <cstdint>

#include "simd/complex.h"

namespace ork::dft {

enum class Direction : int { forward, backward };

template <class R>
class Plan;

// Status 0, or 1 when there is no memory (nothing is left behind then). n >= 1. A plan that is not `strided` is made in
// half the time, and slower when strides are not those of contiguous numbers.
template <class R>
int make_plan(std::int64_t n, Plan<R>** plan, bool strided = true);
template <class R>
void free_plan(Plan<R>* plan); // null is fine

template <class R>
std::int64_t length(const Plan<R>& plan);

// Element k of transform t has its real part at re[t * distance + k * stride] and its imaginary part at im[the same].
// So interleaved complex numbers have im = re + 1 and even strides. Strides count real numbers and may be negative.
template <class R>
struct Place {
    R *re, *im;
    std::int64_t stride, distance;
};
template <class R>
inline Place<R> interleaved(Complex<R>* x, std::int64_t stride, std::int64_t distance)
{
    return {reals(x), reals(x) + 1, 2 * stride, 2 * distance};
}

// Bytes of work memory, 64-byte aligned, that the calls below need; it holds nothing between calls. The second for any
// count up to the given one (it stops growing soon).
template <class R>
std::size_t work_bytes(const Plan<R>& plan);
template <class R>
std::size_t work_bytes(const Plan<R>& plan, std::int64_t count);

// One transform of contiguous numbers, scaled by `scale` unless that is exactly 1. in and out are equal or apart.
template <class R>
void transform(const Plan<R>& plan, Direction direction, R scale, const Complex<R>* in, Complex<R>* out, void* work);

// `count` transforms. in and out are the same place (pointers, stride and distance) or apart.
template <class R>
void transform(const Plan<R>& plan, Direction direction, R scale, const Place<R>& in, const Place<R>& out,
               std::int64_t count, void* work);

// Transforms are done in groups; a call for a multiple of this many loses no time on unfinished groups. Threads should
// split batches at multiples of it.
template <class R>
std::int64_t group(const Plan<R>& plan);

// A long transform in two stages of independent units, so that threads may share it. All units of stage 0 before stage
// 1, each once, in any order and on any threads; `shared` is common to all (shared_bytes, 64-byte aligned), `work`
// (staged_work_bytes) each thread's own. Every division into units gives the same bits. units(plan, 0) == 0: the plan
// has no stages.
template <class R>
std::int64_t units(const Plan<R>& plan, int stage);
template <class R>
std::size_t shared_bytes(const Plan<R>& plan);
template <class R>
std::size_t staged_work_bytes(const Plan<R>& plan);
template <class R>
void run_stage(const Plan<R>& plan, int stage, Direction direction, R scale, std::int64_t from, std::int64_t to,
               const Complex<R>* in, Complex<R>* out, void* shared, void* work);

} // namespace ork::dft

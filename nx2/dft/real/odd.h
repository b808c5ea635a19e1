// SPDX-License-Identifier: MIT
// Odd lengths n = r m with half the work of a complex transform: real columns of length r, complex rows k1 = 1 ... (r -
// 1)/2 of length m, and row 0, which is a real transform of length m. As X[n - k] = conj(X[k]), these rows are all.
#pragma once

#include <cstddef>
#include <cstdint>

#include "dft/real/half_length.h"

namespace ork::dft {

template <class R>
class OddPlan;

// Status 0 or 1; *plan is null when n has no factor of use.
template <class R>
int make_odd_plan(std::int64_t n, OddPlan<R>** plan);
template <class R>
void free_odd_plan(OddPlan<R>* plan); // null is fine
template <class R>
std::size_t work_bytes(const OddPlan<R>& plan);

// One contiguous vector; all of it is read before anything is written.
template <class R>
void forward(const OddPlan<R>& plan, R scale, const R* in, const Spectrum<R>& out, void* work);
template <class R>
void backward(const OddPlan<R>& plan, R scale, const Spectrum<R>& in, R* out, void* work);

} // namespace ork::dft

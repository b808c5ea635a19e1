// SPDX-License-Identifier: MIT
// Types 2 and 3: one index at whole, the other at half steps; and types 4 and 5: both at half steps.
#pragma once

#include "pde/trig/kernel.h"

namespace ork::pde {

template <class R>
void make_half_sample_table(Int n, R* table);
template <class R>
Int half_sample_transform(const TrigPlan<R>& plan, Way way, R factor, R* f, R* work);

inline Int both_half_length(Int n) { return n % 2 == 0 ? n / 2 : n; }
template <class R>
void make_both_half_table(Int n, R* table);
template <class R>
Int both_half_transform(const TrigPlan<R>& plan, R factor, R* f, R* work);

} // namespace ork::pde

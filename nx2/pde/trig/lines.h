// SPDX-License-Identifier: MIT
// Transforms of lines, wherever they lie: those whose elements are not adjacent go through a buffer.
#pragma once

#include "pde/trig/kernel.h"

namespace ork::pde {

// n 8 n and the like stay far from the ends of the integers.
constexpr Int longest_trig = Int{1} << 50;

// Element i of line k is f[k distance + i stride].
struct Lines {
    Int count, stride, distance;
};

// Gives a status of the Fourier transform; what has been transformed by then stays so.
template <class R>
Int transform_lines(const TrigPlan<R>& plan, Way way, bool scaled, R* f, const Lines& lines);

} // namespace ork::pde

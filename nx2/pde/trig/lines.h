// SPDX-License-Identifier: MIT
// Transforms of lines, wherever they lie: short ones side by side (side_by_side.h), others one after another, through a
// buffer when their elements are not adjacent.
#pragma once

#include "pde/trig/kernel.h"

namespace ork::pde {

// n 8 n and the like stay far from the ends of the integers.
constexpr Int longest_trig = Int{1} << 50;

// Element i of line k is f[k distance + i stride].
struct Lines {
    Int count, stride, distance;
};

// Give a status of the Fourier transform; what has been transformed by then stays so. One line of adjacent numbers is
// faster on its own where lines go side by side, and its rounding errors are others.
template <class R>
Int transform_line(const TrigPlan<R>& plan, Way way, bool scaled, R* f);
template <class R>
Int transform_lines(const TrigPlan<R>& plan, Way way, bool scaled, R* f, const Lines& lines);

} // namespace ork::pde

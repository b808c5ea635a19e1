// SPDX-License-Identifier: MIT
// Convolution by summation.
#pragma once

#include "conv/problem.h"

namespace ork::conv {

// Status 0, or -2001 when there is no memory.
int sum_line(const Problem& problem); // one dimension
int sum_grid(const Problem& problem); // any number of dimensions

// Seconds, roughly, that summation takes on one thread.
double cost_of_sums(const Problem& problem);

} // namespace ork::conv

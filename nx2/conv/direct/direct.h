// SPDX-License-Identifier: MIT
// Convolution by summation.
#pragma once

#include "conv/problem.h"

namespace ork::conv {

// Status 0, or -2001 when there is no memory.
int sum_directly(const Problem& problem);

// Seconds, roughly, that summation takes on one thread.
double cost_of_sums(const Problem& problem);

} // namespace ork::conv

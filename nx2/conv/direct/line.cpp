// SPDX-License-Identifier: MIT
#include "conv/direct/direct.h"

namespace ork::conv {

int sum_line(const Problem& problem) { return sum_grid(problem); }

} // namespace ork::conv

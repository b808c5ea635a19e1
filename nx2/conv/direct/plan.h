// SPDX-License-Identifier: MIT
// How a convolution is summed: what its outputs need of the operands, which dimension runs along the lines, and what
// that costs.
#pragma once

#include "conv/problem.h"

namespace ork::conv {

struct Operand {
    const void* data; // element 0, of what is needed
    Int extent[max_dims], stride[max_dims];
};

struct Plan {
    Operand operand[2]; // x, y
    Int first[max_dims];
    int along;       // the dimension of the lines
    int signal;      // the operand that is the longer one there
    double products; // of two numbers, no fewer than all sums have
};

Plan plan_sums(const Problem& problem);

// Whether lines are summed output by output (dots.h) rather than in blocks (block.h).
inline bool by_dots(Int outputs, Int step, Int taps, int lanes, int parts)
{
    return step > 1 || (outputs * parts <= 4 * lanes && taps >= 32);
}

} // namespace ork::conv

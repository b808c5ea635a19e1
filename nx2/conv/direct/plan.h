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

// With no more taps than these, the outputs at both ends of a line, which meet some of them only, are summed one by
// one.
constexpr Int few_taps(int parts) { return parts == 1 ? 16 : 8; }

// Of the signal; padded: with zeros beside the lines, which spare the blocks there the taps that they don't meet.
enum class Copy { none, tight, padded };

// `touched`: how many taps an element meets; `lanes`: elements of a register. The ends of a long line with few taps are
// not worth a copy that is not needed for something else.
inline Copy copy_of_signal(int dims, bool in_place, bool dots, double touched, Int taps, Int signal_count, int lanes)
{
    if (dims > 1 && !dots && taps > 1 && (!in_place || touched >= 48 || signal_count < 64 * lanes)) return Copy::padded;
    return in_place ? Copy::none : Copy::tight;
}

} // namespace ork::conv

// SPDX-License-Identifier: MIT
// How a convolution is cut into transforms (overlap-save).
//
// The operand with fewer elements is the filter, the other one the signal. Only what the outputs depend on is kept of
// either. Along an axis a transform of n numbers gives n - filter + 1 numbers of the result that no number wrapped
// around has touched; where that is not enough, there are several tiles. A single tile needs no more than that what
// wraps around stays off the outputs.
#pragma once

#include "conv/problem.h"

namespace ork::conv {

// Along one dimension of more than one element; indices count from the first elements that are kept.
struct Axis {
    int dimension;
    Int signal, filter; // extents
    Int first;          // the first output's place in the full result of the two
    Int z, step;        // outputs, and from each to the next in the full result
    Int n;              // numbers of a transform
    Int tiles, outputs; // outputs of each tile but perhaps the last

    // Tile t has the signal's elements from start(t) in places 0 .. n - 1, where there are any; output k of it is in
    // place lead() + k step.
    Int start(Int t) const { return tiles == 1 ? 0 : first + t * outputs * step - (filter - 1); }
    Int lead() const { return tiles == 1 ? first : filter - 1; }
    Int outputs_of(Int t) const { return z - t * outputs < outputs ? z - t * outputs : outputs; }
};

struct Range {
    Int begin, end;
    Int size() const { return end - begin; }
};
// The places of a tile that hold elements of the signal.
inline Range filled(const Axis& axis, Int t)
{
    const Int start = axis.start(t), end = axis.signal - start;
    const Int begin = start < 0 ? -start : 0;
    return {begin, end < begin ? begin : end < axis.n ? end : axis.n};
}

struct Shape {
    bool is_complex, is_double; // what is computed with
    bool x_is_filter;
    Int x_from[max_dims], y_from[max_dims]; // the first element that is kept, in every dimension
    int rank;                               // at least 1
    Axis axis[max_dims];                    // the first is the one whose numbers lie together

    Int tiles() const;
    Int line() const { return is_complex ? axis[0].n : axis[0].n / 2 + 1; } // pairs of numbers of a transformed line
};

// The cheapest, and its cost in seconds.
Shape choose_shape(const Problem& problem, double* seconds);

} // namespace ork::conv

// SPDX-License-Identifier: MIT
// An operand, or the result, as a tile sees it: lines of numbers in the caller's array and in work memory.
#pragma once

#include "conv/fft/shape.h"

namespace ork::conv {

// The filter, the signal or the result; strides in elements along the axes of the shape.
struct Array {
    const void* data; // element 0 of what is kept
    Int stride[max_dims];
    bool is_double, conjugate;
};
Array filter_of(const Problem& problem, const Shape& shape);
Array signal_of(const Problem& problem, const Shape& shape);
// step and start of outputs apart: output k of the result is at k strides.
Array result_of(const Problem& problem, const Shape& shape);

// `count` elements from element `at` of the array on, along its first axis, to or from adjacent numbers.
template <class W>
void pack(const Array& array, bool is_complex, Int at, Int count, W* line);
// From every step-th number of the line.
template <class W>
void unpack(const Array& array, bool is_complex, Int at, Int count, const W* line, Int step);

} // namespace ork::conv

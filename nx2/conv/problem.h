// SPDX-License-Identifier: MIT
// One run of a task, brought to a convolution: z(k) = sum over i of x(i) y(first + k step - i).
//
// A correlation is the convolution with conj(x) reversed: x starts at its last element, its strides are negated.
#pragma once

#include <cstdint>
#include <limits>

namespace ork::conv {

using Int = std::int64_t;

inline constexpr int max_dims = 7;

struct Dimension {
    Int x, y, z;                      // extents, at least 1
    Int x_stride, y_stride, z_stride; // in elements; z's is not 0
    Int first, step;                  // z(k) is number first + k step of the x + y - 1 numbers of the full result
};

struct Problem {
    int dims;             // the first runs fastest in memory, unless strides say otherwise
    bool is_complex;      // pairs of numbers
    bool is_double;       // the numbers of x, y and z
    bool computes_double; // what is computed in; is_double implies it
    bool conjugate_x;
    Dimension dimension[max_dims];
    const void *x, *y; // elements 0
    void* z;
};

// A product of counts, or the largest number when it is larger: what no memory holds is refused, not wrapped around.
inline Int times(Int a, Int b)
{
    Int product;
    return __builtin_mul_overflow(a, b, &product) ? std::numeric_limits<Int>::max() : product;
}

} // namespace ork::conv

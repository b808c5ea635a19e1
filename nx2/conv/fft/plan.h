// SPDX-License-Identifier: MIT
// What a task keeps of its shapes: how it is cut, where numbers lie in a tile, descriptors.
//
// A tile is an array of pairs of numbers. Its lines (axis 0) are transformed in place, real ones into half as many
// pairs and one; then the columns of every other axis, some adjacent ones at a time. Lines are an odd number of cache
// lines apart, so that no column falls into one set of the first cache.
#pragma once

#include "conv/fft/shape.h"
#include "ork/dft.h"

namespace ork::conv {

// Columns of one axis: `width` adjacent ones in every plane, `group` at a time and the rest of a plane together.
struct Columns {
    Int width, group;
    ork_dft_descriptor *whole, *rest; // rest: null when there is none

    Int groups() const { return (width + group - 1) / group; }
};

struct TransformPlan {
    Shape shape;
    ork_dft_descriptor* line;
    Int pitch[max_dims]; // pairs from each number along an axis to the next
    Int pairs;           // of a tile
    Columns columns[max_dims];

    Int bytes() const { return times(pairs, shape.is_double ? 16 : 8); }
};

// Work memory, or what is kept of an operand. Null data: there was none.
class Memory {
public:
    explicit Memory(Int bytes);
    ~Memory();
    Memory(const Memory&) = delete;
    Memory& operator=(const Memory&) = delete;
    char* data() const { return data_; }

private:
    char* data_;
};

} // namespace ork::conv

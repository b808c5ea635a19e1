// SPDX-License-Identifier: MIT
// Transforms of one tile.
#pragma once

#include "conv/fft/operand.h"
#include "conv/fft/plan.h"

namespace ork::conv {

// Places first, first + step, ... of an axis.
struct Places {
    Int first, count, step;
};
struct Block {
    Places places[max_dims];
    Int element[max_dims]; // of the array, that the first place holds
};
Block filter_block(const Shape& shape);
// Of tile t, counted along axis 0 first: what it has of the signal, and which of its places are outputs.
Block signal_block(const Shape& shape, Int t);
Block output_block(const Shape& shape, Int t);

// The calls return false when a transform failed, which only happens without memory. W is the precision of the plan.

// The transform of the array's block, all else being 0, times `scale`.
template <class W>
bool transform_block(const TransformPlan& plan, const Array& array, const Block& block, W scale, W* tile);

// What is multiplied with the filter: a block that is transformed on the way, or, if not null, its transform.
template <class W>
struct Signal {
    Array array;
    Block block;
    const W* transform;
};
// Writes the tile's outputs; `tile` is work memory.
template <class W>
bool convolve_tile(const TransformPlan& plan, const Signal<W>& signal, const W* filter, const Array& result,
                   const Block& outputs, W* tile);

} // namespace ork::conv

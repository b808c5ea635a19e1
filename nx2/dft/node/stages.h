// SPDX-License-Identifier: MIT
// How a transform of several dimensions, or a batch, is divided: stages of passes over one dimension each.
//
// A pass transforms all vectors along its dimension; the other dimensions and the batch are loops around it. One of
// them, the inner one, is handed to the engine as a batch, so that adjacent vectors share cache lines and registers.
// The first pass goes from the array that is read to the one that is written, later ones stay in that.
//
// Dimensions whose numbers together stay in cache make one stage: its units are such blocks, each passed over several
// times. A dimension beyond makes a stage of its own, whose units are groups of vectors.
#pragma once

#include "dft/node/node.h"

namespace ork::dft {

struct Loop {
    std::int64_t count, read, written; // strides in the two arrays, real numbers
};

inline constexpr int most_loops = ORK_DFT_MOST_DIMENSIONS + 1; // the batch too

struct Loops {
    int size;
    Loop loop[most_loops];

    void push(Loop next) { loop[size++] = next; }
    std::int64_t count() const
    {
        std::int64_t product = 1;
        for (int i = 0; i < size; ++i) product *= loop[i].count;
        return product;
    }
    // Where iteration i stands, the first loop fastest.
    struct At {
        std::int64_t read = 0, written = 0;
    };
    At at(std::int64_t i) const
    {
        At at;
        for (int d = 0; d < size; ++d) {
            const std::int64_t k = i % loop[d].count;
            i /= loop[d].count;
            at.read += k * loop[d].read, at.written += k * loop[d].written;
        }
        return at;
    }
};

struct Pass {
    const void* plan;               // Plan<R>
    const ork_dft_batched* batched; // or null
    const void* engine;             // of the batched plan
    std::int64_t read, written;     // strides of the dimension
    Loop inner;
    Loops outer;
    bool from_input; // reads the input; otherwise reads what it writes
    bool last;       // scales
};

struct Stage {
    std::int64_t block;  // vectors of the inner loop in a unit; 0: a unit is a whole block of several passes
    std::int64_t blocks; // units of one inner loop
    Loops outer;         // the units' loops, the inner one's blocks come before them
    int passes;
    const Pass* pass;
    std::size_t work; // bytes
};

// The arrays of a call, at the first number.
template <class R>
struct Sides {
    Place<R> read, written; // strides are not set
    bool apart;
};
template <class R>
Sides<R> sides_of(const ork_dft_node& node, const ork_dft_call& call);

// Where the record of a stage is kept.
inline const Stage& record(const ork_dft_stage& stage) { return *reinterpret_cast<const Stage*>(stage.argument[0]); }

} // namespace ork::dft

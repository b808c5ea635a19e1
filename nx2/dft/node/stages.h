// SPDX-License-Identifier: MIT
// How a transform of several dimensions, or a batch, is divided: stages of passes over one dimension each.
//
// A pass transforms all vectors along its dimension; the other dimensions and the batch are loops around it. One of
// them, the inner one, is handed to the engine as a batch, so that adjacent vectors share cache lines and registers.
//
// The first pass reads the input, the last one writes the output; between them the numbers are in the middle. That is
// the output itself for complex data and for the way to a spectrum. On the way back to real numbers it is the input in
// place, and otherwise memory that the stages share, as the output has no room for a spectrum.
//
// Dimensions whose numbers together stay in cache make one stage: its units are such blocks, each passed over several
// times. A dimension beyond makes a stage of its own, whose units are groups of vectors.
#pragma once

#include "dft/node/node.h"

namespace ork::dft {

enum Space : int { input, middle, output };

struct Loop {
    std::int64_t count;
    std::int64_t stride[3]; // by space, real numbers
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
};

// A position in every space.
struct At {
    std::int64_t in[3] = {};

    void advance(const Loop& loop, std::int64_t k)
    {
        for (int space = 0; space < 3; ++space) in[space] += k * loop.stride[space];
    }
    // Iteration i, the first loop fastest.
    void advance(const Loops& loops, std::int64_t i)
    {
        for (int d = 0; d < loops.size; ++d) {
            advance(loops.loop[d], i % loops.loop[d].count);
            i /= loops.loop[d].count;
        }
    }
};

// gathered: columns of a matrix far from each other are brought together, some at a time, and transformed one by one.
enum class Kind : int { complex, gathered, batched, real, columns };

struct Pass {
    Kind kind;
    Space from, to;
    bool last;        // scales
    const void* plan; // Plan<R>; real and columns: RealNode<R>
    const ork_dft_node* node;
    int width;              // gathered: columns at a time, 16, 8 or 4
    std::int64_t stride[3]; // of the dimension, by space
    Loop inner;
    Loops outer;
};

struct Stage {
    std::int64_t block;  // vectors of the inner loop in a unit; 0: a unit is a whole block of several passes
    std::int64_t blocks; // units of one inner loop
    Loops outer;         // the units' loops; the inner one's blocks come before them
    int passes;
    const Pass* pass;
    std::size_t work; // bytes
    Space middle;     // where the middle is: input, output, or apart
};

// The arrays of a call, at the first number.
template <class R>
struct Sides {
    R *re[3], *im[3]; // by space
};
template <class R>
Sides<R> sides_of(const ork_dft_node& node, const ork_dft_call& call, Space middle_is = output);

inline const Stage& record(const ork_dft_stage& stage) { return *reinterpret_cast<const Stage*>(stage.argument[0]); }

// Real numbers of an element of each side of the forward transform.
inline std::int64_t input_unit(const ork_dft_node& head)
{
    return head.domain.domain == ORK_DFT_REAL || split(head) ? 1 : 2;
}
inline std::int64_t output_unit(const ork_dft_node& head)
{
    return (head.domain.domain == ORK_DFT_REAL ? packed(head) : split(head)) ? 1 : 2;
}

} // namespace ork::dft

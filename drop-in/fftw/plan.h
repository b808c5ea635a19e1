// SPDX-License-Identifier: MIT
// A plan: a descriptor of the core, loops around it, and buffers before and behind it where the core can't have the
// caller's layout.
#pragma once

#include "interface.h"
#include "ork/dft.h"
#include "real.h"

namespace ork::fftw {

enum class Kind { complex, r2c, c2r, r2r };

constexpr int most_dimensions = 7, most_loops = 7;

// Strides in elements of the sides: complex numbers where a side is interleaved complex, else real ones.
struct Dimension {
    std::int64_t n, in, out;
};

// Where a side is: `im` is null for a real or an interleaved one.
struct Array {
    Number *re = nullptr, *im = nullptr;
};
struct Arrays {
    Array in, out;
};

// What a caller asks for. The last dimension comes first, as the core has it; it is the halved one of real data.
struct Problem {
    Kind kind = Kind::complex;
    bool backward = false;
    bool split = false; // complex sides are
    int rank = 0, loops = 0;
    Dimension dimension[most_dimensions] = {}, loop[most_loops] = {};
    RealKind real_kind[most_dimensions] = {}; // of r2r
    Arrays arrays = {};

    // Those of length 1 that don't matter are left out. False when there are too many, or a length can't be.
    bool add_dimension(Dimension dimension);
    bool add_dimension(Dimension dimension, RealKind kind);
    bool add_loop(Dimension loop);

    bool in_place() const { return arrays.in.re == arrays.out.re; }
    bool complex_in() const { return kind == Kind::complex || kind == Kind::c2r; }
    bool complex_out() const { return kind == Kind::complex || kind == Kind::r2c; }
};

// Elements of one side, moved to or from a dense buffer.
struct Move {
    bool wanted = false;
    int rank = 0;
    Dimension dimension[most_dimensions + most_loops] = {};
    std::int64_t elements = 0; // of the buffer
};

struct Plan {
    Problem problem = {};                     // its loops are those left to us
    ork_dft_descriptor* descriptor = nullptr; // null: there is nothing to do
    bool in_place = false;
    bool split = false; // the descriptor is
    Move gather = {}, scatter = {};
    RealTransform* transforms = nullptr; // of r2r, one for each dimension
    double operations = 0;               // 5 n log2 n of all transforms
};

Plan* make_plan(const Problem& problem);
void free_plan(Plan* plan); // null is fine
void execute(const Plan& plan, const Arrays& arrays);

// Of r2r: real_plan.cpp.
bool make_real(Plan& plan);
void free_real(Plan& plan);
std::int64_t execute_real(const Plan& plan, const Arrays& arrays);
// Real numbers of a dense buffer to where they belong.
void scatter(const Move& move, const Number* from, Number* to);

// Threads of plans made from now on; 0, which holds at first: as the core has it.
void set_planner_threads(int threads);
int planner_threads();

} // namespace ork::fftw

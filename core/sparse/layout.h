// SPDX-License-Identifier: MIT
// Choosing and filling the layout of products with one vector. From structure alone; values are copied by their size.
#pragma once

#include "sparse/mv_plan.h"

namespace ork::sparse {

struct Costs {
    static constexpr int most_diagonals = 128;

    double rows, slices4, slices8, diagonals; // of a product; infinite where there is no such layout
    std::int64_t stored4, stored8;            // numbers in slices
    std::int64_t diagonal_count;              // 0: too many, or columns may repeat
    std::int64_t distance[most_diagonals];    // ascending, from the main diagonal to the right
};

// Of a plan in Layout::rows. `distinct`: no place is stored twice, which diagonals need.
Costs costs_of(const MvPlan& rows, bool distinct);

// The layout of a plan in Layout::rows becomes another one, in memory of its own. False without memory, the plan as it
// was.
bool into_slices(MvPlan& plan, std::int64_t height, std::int64_t stored);
bool into_diagonals(MvPlan& plan, const Costs& costs);

} // namespace ork::sparse

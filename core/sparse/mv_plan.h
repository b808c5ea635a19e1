// SPDX-License-Identifier: MIT
// The layout that products with one vector take, for one op and kind of a matrix.
//
// The choice is a model of what a product costs and no measurement, so the same matrix is always stored alike and its
// products have the same bits in every run. Costs are in entries of long compressed rows that come from near caches,
// which take about 0.26 ns on AMD family 26 in real numbers, 0.4 and 0.5 ns in complex ones.
#pragma once

#include "sparse/analysis.h"

namespace ork::sparse {

enum class Layout : std::uint8_t {
    rows,     // compressed rows, of the caller or of a conversion
    blocks,   // block rows, likewise
    slices,   // rows in slices of `height`
    diagonals // diagonals in chunks of `height` rows
};

struct MvPlan {
    MvPlan* next;
    int op; // public numbers
    ork_sparse_kind kind;
    double calls; // expected

    Layout layout;
    char precision;
    std::int8_t index_bytes, base, block_layout; // base of cols; blocks: 0 row-major
    std::int64_t rows, columns, block;           // of op(A), in blocks where there are some
    std::int64_t entries, stored;                // of the matrix; numbers in the layout
    std::int64_t height, count;                  // count: slices or diagonals
    // At the first entry: values; columns or distances; pointers of rows + 1 or slices + 1 numbers.
    const void *vals, *cols, *pointers;

    Matrix* source; // a conversion whose arrays are used; null
    void* memory;   // of the layout; null
    std::int64_t bytes;
};

// The plan for a call; null when there is none.
const MvPlan* mv_plan(const Matrix& a, int op, const ork_sparse_kind& kind);

// A matrix in compressed (block) rows with one pointer array as it stands, nothing copied. False if it is not one, or
// op and kind ask for more.
bool as_it_stands(const Matrix& a, int op, const ork_sparse_kind& kind, MvPlan& plan);

} // namespace ork::sparse

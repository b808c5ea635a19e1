// SPDX-License-Identifier: MIT
// What can be said of a sparse matrix before anything is computed with it.
#pragma once

#include <string>
#include <vector>

#include "peers/sparse.h"

namespace ork::tool {

struct Facts {
    std::vector<int> quartiles; // of the numbers of entries a row: least, quarter, half, three quarters, most
    double mean = 0;
    int empty_rows = 0;
    int below = 0, above = 0; // how far entries are from the diagonal
    size_t diagonals = 0;     // that hold an entry
    size_t unmatched = 0;     // entries (i, j) of a square matrix without an entry (j, i)
    size_t unequal = 0;       // with one of another value
};
Facts facts_of(const peers::CsrMatrix& a);

// Rows by their numbers of entries: each number where there are few, powers of two where there are many.
struct Bar {
    int least, most; // entries
    int rows;
};
std::vector<Bar> histogram_of(const peers::CsrMatrix& a);
std::vector<std::string> draw_in_text(const std::vector<Bar>& bars);

} // namespace ork::tool

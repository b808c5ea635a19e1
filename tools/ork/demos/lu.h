// SPDX-License-Identifier: MIT
// Dense linear systems by LU factors with partial pivoting. Matrices are stored by columns.
#pragma once

#include <vector>

namespace ork::tool {

struct Factors {
    int n = 0;
    std::vector<double> lu; // n x n: U, and L below its diagonal of ones
    std::vector<int> pivot; // row i was exchanged with row pivot[i] >= i, for i from 0 on
};

// P A = L U. Throws std::runtime_error when a pivot is zero or not a number.
Factors factor(int n, std::vector<double> a);

// X with A X = B, for `count` right-hand sides.
std::vector<double> solve(const Factors& factors, int count, std::vector<double> b);

} // namespace ork::tool

// SPDX-License-Identifier: MIT
// Matrix-vector products in extra precision, y = op(A) x: the kernels against loops of one's own. All take the call of
// the kernels (include/ork/abi/xblas.h, matrices by columns).
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "peers/problem.h"

namespace ork::peers {

struct XblasCase {
    std::string routine; // "dgemv_x", "zsymv_x", "dgbmv_x"
    char letter;         // N, T or C; U or L of symv and hemv
    int m, n;            // of a band: its order and its diagonals on each side; symv and hemv have m = n
};
// Null for a case that there isn't.
std::unique_ptr<Problem> make_xblas(const XblasCase& c);

// ork_xblas_<tag>_blas_<symbol> of the kernel library that the core has loaded, null when it has none.
void* xblas_kernel(const std::string& symbol);

// Loops of this program by their names; null where one doesn't have the routine.
//   scalar       the recipe of the kernels, one sum after the other, compiled -O2
//   long double  64 bits of significand
//   __float128   113 bits, by the compiler's run-time library
//   pair         the recipe with two sums in a register, -O3 -msse4.2: gemv of real numbers
//   four pairs   the same with eight sums on their way
void* xblas_loop(const std::string& loop, const std::string& symbol, char letter);
void* xblas_pair_loop(bool four, const std::string& symbol, char letter); // of xblas_loop
const std::vector<std::string>& xblas_loops();

} // namespace ork::peers

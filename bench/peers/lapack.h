// SPDX-License-Identifier: MIT
// Many small matrices factored one after the other, each by a call of its own. LAPACK's routines with 32-bit integers
// and kernels with 64-bit ones take the same call: numbers are handed over in eight bytes, the low four of which come
// first.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "peers/problem.h"

namespace ork::peers {

struct LapackCase {
    std::string routine; // "dgetrf", "zpotrf" (lower), "sgeqrf"
    int m, n;            // m = n for potrf
};
// Null for a routine it doesn't know. A call is one matrix of about a mebibyte of them; each round starts from fresh
// copies, which are counted in the time: an eighth of it for order 2, nothing from order 8 on.
std::unique_ptr<Problem> make_lapack(const LapackCase& c);
const std::vector<std::string>& lapack_routines();

// Eigen's decompositions in place behind the same signatures: PartialPivLU, LLT, HouseholderQR. `fixed`: of matrices of
// that order known at compile time; 0: of any. Null when there is none.
void* eigen_lapack_symbol(const std::string& symbol, int fixed);

} // namespace ork::peers

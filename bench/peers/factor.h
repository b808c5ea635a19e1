// SPDX-License-Identifier: MIT
// One matrix of any order, factored, solved or inverted by LAPACK's routines with 32-bit integers.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "peers/problem.h"

namespace ork::peers {

struct FactorCase {
    std::string routine; // "dgetrf", "zpotrf" (lower), "sgeqrf", "dgesv" (one right-hand side), "dgetri"
    int n;
};
// Null for a routine it doesn't know. Every call starts from a fresh copy of the matrix, which is counted in the time.
std::unique_ptr<Problem> make_factor(const FactorCase& c);
const std::vector<std::string>& factor_stems();

} // namespace ork::peers

// SPDX-License-Identifier: MIT
// Thousands of matrices of one size, factored in packs or one after the other.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "peers/problem.h"

namespace ork::peers {

struct CompactCase {
    std::string routine; // "dgetrfnp", "zpotrf" (lower), "sgeqrf"
    int order, count;
};
// How a contender gets through the batch; what Problem::run of these cases takes for a routine.
struct CompactWay {
    enum class Call {
        packs,     // the public compact interface, one call
        plain,     // a call a matrix, LAPACK's arguments, LU without exchanges
        exchanging // the same, LU with ipiv
    } call;
    void* routine = nullptr; // not of packs
};

// Null for a routine it doesn't know. A call is the whole batch, in place. So that nothing has to be copied between
// calls, what is factored is what factorisation leaves as it is: upper triangles with any diagonal (LU), the identity
// (Cholesky); QR goes on from its own result, whose columns grow slowly. The processors that were looked at take the
// same time for these numbers as for any other normal ones. Results are checked with random matrices.
std::unique_ptr<Problem> make_compact(const CompactCase& c);
const std::vector<std::string>& compact_routines();

// Loops as anybody would write them, in the signatures of the kernels getrfnp_small, potrf_small and geqrf_small.
void* plain_factorisation(const std::string& routine);

} // namespace ork::peers

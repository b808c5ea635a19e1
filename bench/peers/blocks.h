// SPDX-License-Identifier: MIT
// Building blocks of LAPACK in double precision: rotations, reflectors, tridiagonal systems. Kernels, the plain loops
// and, where LAPACK has the routine, other libraries take the same call: integers are handed over in eight bytes, the
// low four of which come first.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "peers/problem.h"

namespace ork::peers {

struct BlocksCase {
    std::string routine;
    int m, n; // see blocks_routines()
};
struct BlocksRoutine {
    const char *name, *symbol, *kernel; // symbol: of LAPACK and of the plain loops; kernel: of ork
    const char* shape;                  // what m and n are
};
const std::vector<BlocksRoutine>& blocks_routines();
// Null for a routine it doesn't know. Right-hand sides, and matrices that a solver overwrites, are copied afresh for
// every call, which is counted in the time of all alike.
std::unique_ptr<Problem> make_blocks(const BlocksCase& c);

// Loops compiled -O3 -msse4.2, `which` = 0, 1, ..: the textbook's and, of some routines, a second one. Null when there
// is none.
void* plain_blocks_symbol(const std::string& symbol, int which);

} // namespace ork::peers

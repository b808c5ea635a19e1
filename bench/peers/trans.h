// SPDX-License-Identifier: MIT
// Matrices copied, transposed and added: omatcopy, imatcopy and omatadd of ork and the peers by their Fortran names,
// and what does the same in other libraries.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "peers/problem.h"

namespace ork::peers {

struct Library;

struct TransCase {
    std::string routine; // "domatcopy", "zimatcopy", "somatadd"
    std::string letters; // "T"; of omatadd A's and B's: "NT"
    int rows, cols;      // of A; of omatadd C's
    double alpha;        // 1, or 2: results are exact
};
const std::vector<std::string>& trans_routines();
bool is_case(const TransCase& c); // the routine is known, and so are the letters of it

class TransProblem : public Problem {
public:
    // The same done by a plan of FFTW; empty where it can't.
    virtual Entrant planned(const Library& fftw) = 0;
    // The same out of place, by the library's omatcopy: what a transposition in place is held against. Empty unless
    // this is one in place.
    virtual Entrant out_of_place(const Library& library) = 0;
    virtual std::string check(const Entrant& run) = 0; // by a call and, in place, the one that undoes it
    using Problem::check;
};
// Columns are tight. In place, calls alternately transpose the matrix and transpose it back. The limit is memcpy: of
// the matrix to B (or to memory that is not the matrix's, in place).
std::unique_ptr<TransProblem> make_trans(const TransCase& c);

// Two nested loops, and loops over tiles of 32 x 32 elements (in place, where the matrix is not square, both by way of
// a buffer), as compilers make SSE4.2 code of them; Eigen's expressions. Behind the Fortran signatures; null for other
// names.
void* plain_trans_symbol(const std::string& symbol);
void* tiled_trans_symbol(const std::string& symbol);
void* eigen_trans_symbol(const std::string& symbol);

} // namespace ork::peers

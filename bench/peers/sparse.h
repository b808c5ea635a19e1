// SPDX-License-Identifier: MIT
// Sparse matrices to measure with: which there are, what is computed with them, how every library is asked for it, and
// whether its result is right.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "peers/problem.h"

namespace ork::peers {

// Compressed rows, everything counted from 0, rows sorted by column.
struct CsrMatrix {
    int rows = 0, columns = 0;
    bool symmetric = false; // in structure and values
    std::vector<int> ptr = {0}, col;
    std::vector<double> val;

    size_t entries() const { return col.size(); }
};

// Matrices by name:
//   lap2d:N    5-point Laplacian on N x N points        lap3d:N    7-point on N x N x N
//   box3d:N    27-point stencil on N x N x N            fem:N      N nodes of 3 unknowns, each tied to about 8 others
//                                                       in a band of 60 on each side
//   pow:N:K    N rows of K entries on average, rows and columns filled by a power law
// The same in every run. The first four are symmetric with a dominant diagonal.
bool is_generated(const std::string& name);
CsrMatrix generate(const std::string& name); // of a name that is_generated

CsrMatrix triangle(const CsrMatrix& a, char uplo); // with its diagonal; zeros where that has no entry
// Of a triangle, with a diagonal of at least the sum of the rest of the row, so that solutions stay bounded.
CsrMatrix dominated(CsrMatrix triangle);

struct SparseCase {
    enum class Routine { mv, mm, sv, dotmv, symgs } routine = Routine::mv;
    bool single = false, wide = false; // wide: 64-bit integers
    // The matrix is handed over once and may be analysed, copied and stored in any form before the calls.
    bool handle = false;
    int64_t calls = 1000; // announced to the analysis of a handle; 0: none is made
    char letter = 'N'; // mv, dotmv: N, T, S symmetric with the lower triangle stored; mm: R row-major, C column-major;
                       // sv: L, U; symgs: N
    int nrhs = 1;
};

// "dmv", "smm", "dsv64" with "N", "R8", "L", of handles also "ddotmv" and "dsymgs": nothing for another text.
std::optional<SparseCase> sparse_case(const std::string& routine, const std::string& letters, bool handle = false);

// Everything a library needs to prepare a call: y = op(A) x, C = A B, y = A^-1 x; dotmv: y = A x and dot = x'y; symgs:
// a sweep of Gauss and Seidel forwards and one backwards from y for A y = x.
struct SparseOperands {
    SparseCase what;
    int m, n;             // of A
    const int *ptr, *col; // 32-bit
    const int64_t *ptr64, *col64;
    const void *val, *x; // double or float
    void* y;
    int ldx, ldy; // of B and C
    void* dot;
};

// What a library found out about a matrix before the first call.
struct Analysis {
    double seconds = 0; // 0: there was none
    std::string layout = {};
    double padding = 1; // numbers stored for each entry
    int64_t bytes = 0;  // kept
};

// A call made ready.
class SparseOperation {
public:
    virtual ~SparseOperation() = default;
    virtual void run() = 0;
    virtual void finish() {}                           // leaves in y what is elsewhere; not timed
    virtual std::string storage() const { return {}; } // where a library keeps the matrix in its own form: which
    virtual Analysis analysis() const { return {}; }
};

// Null when the library hasn't the case.
using SparseMaker = std::function<std::unique_ptr<SparseOperation>(const SparseOperands&)>;

class SparseProblem {
public:
    SparseProblem(const SparseCase& what, const CsrMatrix& whole);
    const SparseOperands& operands() const { return operands_; }
    double flops() const;                          // of one call
    double bytes() const;                          // values, indices, pointers, x once, y
    std::string check(SparseOperation& operation); // what is wrong with its result; empty when it is right
    // The same products one right-hand side after the other, each with vectors of its own.
    std::vector<SparseOperands> one_by_one();
    std::vector<Limit> read_limits(); // all that has to be read or written once, read

private:
    std::string check_product(size_t rhs, const std::vector<double>& y);
    std::string check_solution(const std::vector<double>& y);
    std::string check_sweep(const std::vector<double>& y);
    std::string check_dot(const std::vector<double>& y);
    double x_at(size_t row, size_t rhs) const;

    CsrMatrix a_;
    std::vector<int64_t> ptr64_, col64_;
    size_t x_rows_, y_rows_; // of one right-hand side
    Array<char> val_, x_, y_;
    std::vector<double> dot_ = {0}; // or a float; stays where it is when the problem moves
    SparseOperands operands_;
};

// Plain loops, compiled -O3 -msse4.2.
std::unique_ptr<SparseOperation> plain_sparse(const SparseOperands& o);
// Eigen's; never called without Eigen.
std::unique_ptr<SparseOperation> eigen_sparse(const SparseOperands& o);

} // namespace ork::peers

// SPDX-License-Identifier: MIT
// The same conjugate gradients through an analysed handle: each iteration is a product together with its dot product,
// and a symmetric Gauss-Seidel sweep from 0, which is what the preconditioner of that name computes.
#pragma once

#include "demos/cg.h"
#include "sparse_handle.h"

namespace ork::tool {

class HandleSolver {
public:
    // `matrix` has both triangles and outlives the solver; `iterations`: how many are expected.
    HandleSolver(const peers::CsrMatrix& matrix, int iterations);
    double analysis_seconds() const { return analysis_; }
    ork_sparse_description describe() const { return handle_.describe(); }

    double multiply(const Vector& x, Vector& y) const; // y = A x; returns x'y
    void sweep(const Vector& r, Vector& z) const;      // z = M^-1 r
    // From x = 0 to |r| <= tolerance |b|.
    Solution solve(const Vector& b, double tolerance, int most_iterations) const;

private:
    SparseHandle handle_;
    double analysis_ = 0;
};

} // namespace ork::tool

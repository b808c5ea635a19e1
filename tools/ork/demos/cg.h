// SPDX-License-Identifier: MIT
// Conjugate gradients for a sparse symmetric positive definite matrix, of which the lower triangle is stored, with
// preconditioners made of triangular solves. All products and solves are ork's.
#pragma once

#include <vector>

#include "peers/sparse.h"

namespace ork::tool {

using Vector = std::vector<double>;

// y = A x, the lower triangle of A given.
void multiply(const peers::CsrMatrix& lower, const Vector& x, Vector& y);
// y = L^-1 x, or L^-T x.
void solve(const peers::CsrMatrix& lower, bool transposed, const Vector& x, Vector& y);

// z = M^-1 r for a symmetric positive definite M near A.
class Preconditioner {
public:
    virtual ~Preconditioner() = default;
    virtual void apply(const Vector& r, Vector& z) const = 0;
    virtual int solves() const = 0; // triangular ones of an application
};

class None : public Preconditioner {
public:
    void apply(const Vector& r, Vector& z) const override { z = r; }
    int solves() const override { return 0; }
};

// M = (D + L) D^-1 (D + L)': a sweep of Gauss and Seidel forwards and one backwards, where A = L + D + L'.
class GaussSeidel : public Preconditioner {
public:
    explicit GaussSeidel(const peers::CsrMatrix& lower);
    void apply(const Vector& r, Vector& z) const override;
    int solves() const override { return 2; }

private:
    const peers::CsrMatrix& lower_;
    Vector diagonal_;
    mutable Vector half_;
};

// M = G G', where G has entries only where the lower triangle of A has, and G G' equals A + shift D there. The shift is
// the least of 0, 1e-4, 2e-4, 4e-4 ... with which every pivot is positive (T. A. Manteuffel, "An incomplete
// factorization technique for positive definite linear systems", 1980).
class IncompleteCholesky : public Preconditioner {
public:
    explicit IncompleteCholesky(const peers::CsrMatrix& lower); // throws std::runtime_error when no shift up to 1 does
    void apply(const Vector& r, Vector& z) const override;
    int solves() const override { return 2; }
    const peers::CsrMatrix& factor() const { return factor_; }
    double shift() const { return shift_; }

private:
    peers::CsrMatrix factor_; // rows of the lower triangle
    double shift_ = 0;
    mutable Vector half_;
};

struct Solution {
    Vector x;
    Vector history;       // |r| / |b| before every iteration and after the last, r as the iteration carries it along
    bool reached = false; // the tolerance
    double seconds = 0;
    int iterations() const { return static_cast<int>(history.size()) - 1; }
};

// From x = 0 to |r| <= tolerance |b|.
Solution conjugate_gradients(const peers::CsrMatrix& lower, const Vector& b, const Preconditioner& m, double tolerance,
                             int most_iterations);

} // namespace ork::tool

// SPDX-License-Identifier: MIT
// Poisson's equation with u = 0 on the boundary of a square or a cube, by sine transforms and tridiagonal systems:
// ork's solver, and the same method built on the sine transforms of another library.
#pragma once

#include <memory>

#include "peers/libraries.h"

namespace ork::peers {

struct PoissonCase {
    int dimensions, n; // points inside along a side; the side has length 1
    size_t points() const
    {
        const auto line = static_cast<size_t>(n);
        return dimensions == 2 ? line * line : line * line * line;
    }
};

// Solves for the same right-hand side in every call, which is copied afresh each time.
class PoissonSolver {
public:
    virtual ~PoissonSolver() = default;
    virtual void run() = 0;
    virtual double solution(int i, int j, int k) const = 0; // inside from 1; k = 1 in a square
};
// Null when the library has no solver, or for ork when it refuses. right_side is indexed (k n + j) n + i from 0.
std::unique_ptr<PoissonSolver> ork_poisson(const Library& library, const PoissonCase& c, const double* right_side);
// On FFTW's interface, planned with FFTW_MEASURE; null when the library has it not.
std::unique_ptr<PoissonSolver> fftw_poisson(const Library& library, const PoissonCase& c, const double* right_side);

// What is wrong with the solution: the equation of a point that doesn't hold to rounding; empty when all do.
std::string check(PoissonSolver& solver, const PoissonCase& c, const double* right_side);

} // namespace ork::peers

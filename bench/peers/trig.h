// SPDX-License-Identifier: MIT
// Sine and cosine transforms of real numbers, in place and unscaled: the kernels of the loaded library, FFTW's r2r.
#pragma once

#include <memory>
#include <string>

#include "peers/problem.h"

namespace ork::peers {

struct Library;

struct TrigCase {
    bool single;
    int type; // 0 to 5, as ork/abi/pde.h has them
    bool backward;
    int n; // of n - 1, n + 1 or n numbers
};

class TrigProblem {
public:
    virtual ~TrigProblem() = default;
    virtual double work() const = 0;                   // 5/2 n log2 n, as of a real Fourier transform
    virtual Entrant ork() = 0;                         // empty where there is no such kernel
    virtual Entrant planned(const Library& fftw) = 0;  // empty where it can't
    virtual std::string check(const Entrant& run) = 0; // what is wrong with a result; leaves zeros, which stay so
    virtual double error(const Entrant& run) = 0; // relative L2 error of random numbers against sums in long double
};
std::unique_ptr<TrigProblem> make_trig(const TrigCase& c);

} // namespace ork::peers

// SPDX-License-Identifier: MIT
// Convolutions and correlations of lines and grids: ork's tasks, transforms of FFTW (overlap-save on lines, grids in
// one piece), a plain loop and one written with registers.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "peers/libraries.h"
#include "peers/problem.h"

namespace ork::peers {

struct ConvCase {
    char precision; // s d c z
    bool correlates;
    std::vector<int> x, y; // extents, the first runs fastest
};

// Full results, every element of which is right when an entrant that passes check() says so.
class ConvProblem {
public:
    virtual ~ConvProblem() = default;
    virtual double work() const = 0; // flops of the summation, whatever the method
    virtual std::string check(const Entrant& run) = 0;
    // Empty when the library can't, or there is no such loop for the case.
    virtual Entrant ork(const Library& library, int mode) = 0;
    virtual Entrant fftw(const Library& library) = 0; // real numbers; planned with FFTW_MEASURE, the best of some sizes
    virtual Entrant plain() = 0;                      // lines
    virtual Entrant by_hand() = 0;                    // lines of real numbers
};
std::unique_ptr<ConvProblem> make_conv(const ConvCase& c);

// z, x + y - 1 numbers, is the full result; in conv_plain.cpp.
template <class T>
void plain_conv(const T* x, long nx, const T* y, long ny, T* z);
template <class T>
void hand_conv(const T* x, long nx, const T* y, long ny, T* z);

// In conv_fftw.cpp. Extents of one or two dimensions; the result is full.
template <class T>
Entrant fftw_conv(const Library& library, const std::vector<int>& nx, const std::vector<int>& ny, const T* x,
                  const T* y, T* z);

} // namespace ork::peers

// SPDX-License-Identifier: MIT
// Discrete Fourier transforms in long double, to measure the accuracy of others against.
#pragma once

#include <vector>

#include "peers/fft.h"

namespace ork::peers {

struct LongPair {
    long double re = 0, im = 0;
};

// Replaces x by its unscaled transform: sign -1 forward, +1 backward; slowest dimension first.
void reference_dft(std::vector<LongPair>& x, const std::vector<int>& lengths, int sign);

// Relative L2 error of a transform of random input: |got - want| / |want| over all elements of its output.
double accuracy(FftProblem& problem, Transform& transform);

} // namespace ork::peers

// SPDX-License-Identifier: MIT
// Fourier transforms of real data as the demos use them: ork's public descriptors, not in place, the half of the
// spectrum as complex numbers. Slowest dimension first, as C arrays have them.
#pragma once

#include <complex>
#include <vector>

#include "ork/dft.h"

namespace ork::tool {

using Complex = std::complex<double>;

class RealTransform {
public:
    explicit RealTransform(std::vector<int64_t> lengths);
    ~RealTransform();
    RealTransform(const RealTransform&) = delete;
    RealTransform& operator=(const RealTransform&) = delete;

    size_t points() const { return points_; }
    size_t last_length() const { return static_cast<size_t>(lengths_.back()); }
    size_t row() const { return row_; } // complex numbers along the last dimension: n/2 + 1
    std::vector<Complex> forward(const std::vector<double>& x) const;
    std::vector<double> backward(const std::vector<Complex>& spectrum) const; // scaled by 1/points

    // Sum of |X|^2 over the whole spectrum, for the half of it that is stored.
    long double energy(const std::vector<Complex>& spectrum) const;
    double flops() const; // of one transform

private:
    std::vector<int64_t> lengths_;
    size_t points_ = 1, row_;
    ork_dft_descriptor* descriptor_ = nullptr;
};

// Largest relative error of Parseval's identity, of the way there and back, and of chosen elements of the spectrum
// against the sums that define them.
struct TransformErrors {
    double parseval = 0, there_and_back = 0, elements = 0;
};
TransformErrors errors_of(const RealTransform& transform, const std::vector<double>& x,
                          const std::vector<Complex>& spectrum, const std::vector<size_t>& elements);

// exp(-2 pi i j/n) in long double
std::complex<long double> root_of_unity(size_t j, size_t n);

} // namespace ork::tool

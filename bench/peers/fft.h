// SPDX-License-Identifier: MIT
// Fourier transforms to measure: what is transformed, how every library is asked for it, and whether its result is
// right.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "peers/problem.h"

namespace ork::peers {

// Complex data are pairs; the spectrum of real data is its non-redundant half, n/2 + 1 pairs along the last dimension.
// Transforms of a batch follow one another without gaps; in place, rows of real data are padded to their spectrum's.
struct FftCase {
    bool real = false, single = false, backward = false, in_place = false;
    std::vector<int> lengths; // slowest dimension first
    int batch = 1;

    std::string kind() const; // "cd"; with "b" backward, "i" in place: "rsbi"
    std::string size() const; // "1024", "512x512", "100*1000": a thousand transforms of length 100
    size_t points() const;    // of one transform
    size_t outer() const;     // points over the last length
    size_t half_row() const;  // pairs in a row of the spectrum of real data
    double work() const;      // 5 n log2 n flops of complex transforms, half of it for real ones
};

// Nothing unless both texts are as FftCase writes them and the data fit a size_t comfortably.
std::optional<FftCase> fft_case(const std::string& kind, const std::string& size);

// A planned transform of fixed arrays. Unscaled in both directions; a backward real one may destroy its input.
class Transform {
public:
    virtual ~Transform() = default;
    virtual void run() = 0;
};

// Plans a case for these arrays, whose contents may be lost; null when the library can't.
using TransformMaker = std::function<std::unique_ptr<Transform>(const FftCase&, void* in, void* out)>;

// Input, output (the same in place) and what the output must be.
class FftProblem {
public:
    explicit FftProblem(const FftCase& c);
    const FftCase& what() const { return case_; }
    void* in() { return in_.data(); }
    void* out() { return case_.in_place ? in_.data() : out_.data(); }
    void fill();                             // random input, the same each time
    std::string check(Transform& transform); // what is wrong with its result; empty when it is right
    // Element i of a transform as a full complex array, the redundant half of a spectrum included.
    std::complex<double> input(size_t transform, size_t i);
    std::complex<double> output(size_t transform, size_t i);
    void settle(); // input that stays bounded however often it is transformed in place

private:
    FftCase case_;
    Array<char> in_, out_;
};

} // namespace ork::peers

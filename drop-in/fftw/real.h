// SPDX-License-Identifier: MIT
// Transforms of real data to real data: a one-dimensional transform for every dimension, line by line through a buffer.
#pragma once

#include "interface.h"
#include "ork/dft.h"

namespace ork::fftw {

// In the order of FFTW's header.
enum class RealKind : int { r2hc, hc2r, dht, redft00, redft01, redft10, redft11, rodft00, rodft01, rodft10, rodft11 };

// Of one dimension. Sines and cosines are those of ork/pde.h, without their scales.
class RealTransform {
public:
    // False when there is no such transform, or no memory.
    bool make(RealKind kind, std::int64_t n);
    void release();

    // One line from `in` to `out`, n numbers with these strides, through `buffer`, room() numbers. A status of
    // ork_dft's, or any other number but 0.
    std::int64_t run(const Number* in, std::int64_t in_stride, Number* out, std::int64_t out_stride,
                     Number* buffer) const;
    std::size_t room() const { return static_cast<std::size_t>(n_) + 2; }

private:
    bool make_sines(int type, std::int64_t length, bool backward);
    bool make_fourier();
    std::int64_t fourier(const Number* in, std::int64_t in_stride, Number* out, std::int64_t out_stride,
                         Number* buffer) const;

    static constexpr int integers = 40;
    RealKind kind_;
    std::int64_t n_;
    int first_;     // place of the line's first number in the buffer
    bool backward_; // of a sine or cosine transform
    ork_dft_descriptor* handle_;
    std::int64_t ipar_[integers];
    Number* fpar_;
};

} // namespace ork::fftw

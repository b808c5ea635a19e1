// SPDX-License-Identifier: MIT
#include "real.h"

#include <cmath>
#include <cstdlib>
#include <cstring>

#include "ork/pde.h"

#ifdef ORK_FFTW_SINGLE
#define SINES(stage) ork_s_##stage##_trig_transform
#else
#define SINES(stage) ork_d_##stage##_trig_transform
#endif

namespace ork::fftw {

bool RealTransform::make(RealKind kind, std::int64_t n)
{
    *this = {};
    kind_ = kind, n_ = n;
    switch (kind) {
    case RealKind::r2hc:
    case RealKind::hc2r:
    case RealKind::dht:
        return make_fourier();
    case RealKind::redft00:
        return n >= 2 && make_sines(1, n - 1, false);
    case RealKind::redft01:
        return make_sines(2, n, false);
    case RealKind::redft10:
        return make_sines(2, n, true);
    case RealKind::redft11:
        return make_sines(4, n, false);
    case RealKind::rodft00:
        first_ = 1;
        return make_sines(0, n + 1, false);
    case RealKind::rodft01:
        return make_sines(3, n, false);
    case RealKind::rodft10:
        return make_sines(3, n, true);
    case RealKind::rodft11:
        return make_sines(5, n, false);
    }
    return false;
}

bool RealTransform::make_sines(int type, std::int64_t length, bool backward)
{
    backward_ = backward;
    if (length == 1) return true;                                                   // run() has it
    const auto numbers = static_cast<std::size_t>(5 * length / 2 + 2 + length + 1); // and a line to commit with
    fpar_ = static_cast<Number*>(std::calloc(numbers, sizeof(Number)));
    if (fpar_ == nullptr) return false;
    SINES(init)(length, type, ipar_, fpar_);
    ipar_[1] = ipar_[2] = 0; // silent
    ipar_[10] = 1;           // without scales
    return SINES(commit)(fpar_ + 5 * length / 2 + 2, &handle_, ipar_, fpar_) == 0;
}

bool RealTransform::make_fourier()
{
    std::int64_t failed =
        ork_dft_create_descriptor_1d(&handle_, sizeof(Number) == 4 ? ORK_DFT_SINGLE : ORK_DFT_DOUBLE, ORK_DFT_REAL, n_);
    if (!failed) failed = ork_dft_set_integer(handle_, ORK_DFT_CONJUGATE_EVEN_STORAGE, ORK_DFT_COMPLEX_REAL);
    if (!failed) failed = ork_dft_set_integer(handle_, ORK_DFT_PACKED_FORMAT, ORK_DFT_PACK);
    if (!failed) failed = ork_dft_set_integer(handle_, ORK_DFT_THREAD_LIMIT, 1);
    if (!failed) failed = ork_dft_commit_descriptor(handle_);
    return !failed;
}

void RealTransform::release()
{
    if (handle_ != nullptr) ork_dft_free_descriptor(&handle_);
    std::free(fpar_);
}

std::int64_t RealTransform::run(const Number* in, std::int64_t in_stride, Number* out, std::int64_t out_stride,
                                Number* buffer) const
{
    if (kind_ <= RealKind::dht) return fourier(in, in_stride, out, out_stride, buffer);
    Number* const line = buffer + first_;
    for (std::int64_t i = 0; i < n_; ++i) line[i] = in[i * in_stride];
    std::int64_t status = 0;
    if (fpar_ != nullptr) {
        std::int64_t ipar[integers]; // a stage writes its status there, and a plan may run on many threads
        std::memcpy(ipar, ipar_, sizeof ipar);
        ork_dft_descriptor* handle = handle_;
        status = (backward_ ? SINES(backward) : SINES(forward))(buffer, &handle, ipar, fpar_);
    } else if (kind_ == RealKind::redft00) { // two numbers
        const Number sum = line[0] + line[1];
        line[1] = line[0] - line[1], line[0] = sum;
    } else if (kind_ == RealKind::redft10 || kind_ == RealKind::rodft10) {
        line[0] *= 2;
    } else if (kind_ == RealKind::redft11 || kind_ == RealKind::rodft11) {
        line[0] *= static_cast<Number>(1.41421356237309504880);
    }
    for (std::int64_t i = 0; i < n_; ++i) out[i * out_stride] = line[i];
    return status;
}

// The core has R0 R1 I1 R2 I2 ..; FFTW's halves are R0 R1 .. Rh and backwards I1 I2 ..
std::int64_t RealTransform::fourier(const Number* in, std::int64_t in_stride, Number* out, std::int64_t out_stride,
                                    Number* buffer) const
{
    const std::int64_t pairs = (n_ - 1) / 2;
    const bool even = n_ % 2 == 0;
    if (kind_ == RealKind::hc2r) {
        buffer[0] = in[0];
        for (std::int64_t k = 1; k <= pairs; ++k)
            buffer[2 * k - 1] = in[k * in_stride], buffer[2 * k] = in[(n_ - k) * in_stride];
        if (even) buffer[n_ - 1] = in[n_ / 2 * in_stride];
        const std::int64_t status = ork_dft_backward(handle_, buffer);
        for (std::int64_t i = 0; i < n_; ++i) out[i * out_stride] = buffer[i];
        return status;
    }
    for (std::int64_t i = 0; i < n_; ++i) buffer[i] = in[i * in_stride];
    const std::int64_t status = ork_dft_forward(handle_, buffer);
    out[0] = buffer[0];
    for (std::int64_t k = 1; k <= pairs; ++k) {
        const Number re = buffer[2 * k - 1], im = buffer[2 * k];
        const bool hartley = kind_ == RealKind::dht;
        out[k * out_stride] = hartley ? re - im : re;
        out[(n_ - k) * out_stride] = hartley ? re + im : im;
    }
    if (even) out[n_ / 2 * out_stride] = buffer[n_ - 1];
    return status;
}

} // namespace ork::fftw

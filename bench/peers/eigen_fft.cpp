// SPDX-License-Identifier: MIT
// Eigen's transforms of one dimension (its unsupported FFT module), out of place.
#include <unsupported/Eigen/FFT>

#include "peers/eigen.h"

namespace ork::peers {
namespace {

template <class R>
class EigenTransform : public Transform {
public:
    EigenTransform(const FftCase& c, void* in, void* out) : c_(c), in_(in), out_(out)
    {
        fft_.SetFlag(Eigen::FFT<R>::Unscaled);
        fft_.SetFlag(Eigen::FFT<R>::HalfSpectrum);
        run(); // plans
    }
    void run() override
    {
        using Pair = std::complex<R>;
        const int n = c_.lengths[0], pairs = c_.real ? n / 2 + 1 : n;
        auto *spectrum_in = static_cast<Pair*>(in_), *spectrum_out = static_cast<Pair*>(out_);
        auto *real_in = static_cast<R*>(in_), *real_out = static_cast<R*>(out_);
        for (int b = 0; b < c_.batch; ++b, spectrum_in += pairs, spectrum_out += pairs, real_in += n, real_out += n)
            if (c_.real && c_.backward)
                fft_.inv(real_out, spectrum_in, n);
            else if (c_.real)
                fft_.fwd(spectrum_out, real_in, n);
            else if (c_.backward)
                fft_.inv(spectrum_out, spectrum_in, n);
            else
                fft_.fwd(spectrum_out, spectrum_in, n);
    }

private:
    FftCase c_;
    void *in_, *out_;
    Eigen::FFT<R> fft_;
};

} // namespace

std::unique_ptr<Transform> eigen_transform(const FftCase& c, void* in, void* out)
{
    if (c.in_place || c.lengths.size() != 1) return nullptr;
    if (c.single) return std::make_unique<EigenTransform<float>>(c, in, out);
    return std::make_unique<EigenTransform<double>>(c, in, out);
}

} // namespace ork::peers

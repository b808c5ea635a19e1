// SPDX-License-Identifier: MIT
#include "demos/transform.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <stdexcept>

#include "demos/demo.h"

namespace ork::tool {
namespace {

void require(int64_t status, const char* what)
{
    if (status != ORK_DFT_NO_ERROR)
        throw std::runtime_error(fmt::format("{}: {}", what, ork_dft_error_message(status)));
}

} // namespace

RealTransform::RealTransform(std::vector<int64_t> lengths) : lengths_(std::move(lengths))
{
    for (const int64_t n : lengths_) points_ *= static_cast<size_t>(n);
    row_ = static_cast<size_t>(lengths_.back()) / 2 + 1;
    // the descriptor's dimension 0 is the last one of a C array
    const std::vector<int64_t> adjacent_first(lengths_.rbegin(), lengths_.rend());
    const auto rank = static_cast<int64_t>(lengths_.size());
    require(ork_dft_create_descriptor(&descriptor_, ORK_DFT_DOUBLE, ORK_DFT_REAL, rank, adjacent_first.data()),
            "creating a transform");
    std::vector<int64_t> reals = {0, 1}, pairs = {0, 1};
    int64_t real_step = adjacent_first[0], pair_step = static_cast<int64_t>(row_);
    for (size_t d = 1; d < adjacent_first.size(); ++d) {
        reals.push_back(real_step);
        pairs.push_back(pair_step);
        real_step *= adjacent_first[d];
        pair_step *= adjacent_first[d];
    }
    require(ork_dft_set_integer(descriptor_, ORK_DFT_PLACEMENT, ORK_DFT_NOT_INPLACE), "placement");
    require(ork_dft_set_integers(descriptor_, ORK_DFT_INPUT_STRIDES, reals.data()), "input strides");
    require(ork_dft_set_integers(descriptor_, ORK_DFT_OUTPUT_STRIDES, pairs.data()), "output strides");
    require(ork_dft_set_real(descriptor_, ORK_DFT_BACKWARD_SCALE, 1 / static_cast<double>(points_)), "scale");
    require(ork_dft_commit_descriptor(descriptor_), "planning a transform");
}

RealTransform::~RealTransform() { ork_dft_free_descriptor(&descriptor_); }

std::vector<Complex> RealTransform::forward(const std::vector<double>& x) const
{
    std::vector<Complex> spectrum(points_ / static_cast<size_t>(lengths_.back()) * row_);
    require(ork_dft_forward_out(descriptor_, x.data(), spectrum.data()), "a forward transform");
    return spectrum;
}

std::vector<double> RealTransform::backward(const std::vector<Complex>& spectrum) const
{
    std::vector<double> x(points_);
    require(ork_dft_backward_out(descriptor_, spectrum.data(), x.data()), "a backward transform");
    return x;
}

long double RealTransform::energy(const std::vector<Complex>& spectrum) const
{
    const auto n = static_cast<size_t>(lengths_.back());
    long double sum = 0;
    for (size_t i = 0; i < spectrum.size(); ++i) {
        const size_t column = i % row_;
        const int times = column == 0 || 2 * column == n ? 1 : 2;
        sum += times * (static_cast<long double>(spectrum[i].real()) * spectrum[i].real() +
                        static_cast<long double>(spectrum[i].imag()) * spectrum[i].imag());
    }
    return sum;
}

double RealTransform::flops() const { return 2.5 * static_cast<double>(points_) * std::log2(points_); }

TransformErrors errors_of(const RealTransform& transform, const std::vector<double>& x,
                          const std::vector<Complex>& spectrum, const std::vector<size_t>& elements)
{
    TransformErrors errors;
    const size_t n = transform.points(), row = transform.row();
    long double energy = 0, size = 0;
    for (const double value : x) energy += static_cast<long double>(value) * value;
    errors.parseval =
        static_cast<double>(std::fabs(transform.energy(spectrum) / (energy * static_cast<long double>(n)) - 1));

    const std::vector<double> back = transform.backward(spectrum);
    for (size_t i = 0; i < n; ++i) {
        keep_largest(errors.there_and_back, std::fabs(back[i] - x[i]));
        size = std::max<long double>(size, std::fabs(x[i]));
    }
    errors.there_and_back /= static_cast<double>(size);

    // Elements differ in size by orders of magnitude; rounding follows the root mean square of all of them.
    const long double rms = std::sqrt(energy);
    const size_t columns = transform.last_length(), rows = n / columns;
    for (const size_t e : elements) {
        const size_t k1 = e / row, k0 = e % row;
        std::complex<long double> sum = 0;
        for (size_t j1 = 0; j1 < rows; ++j1) {
            std::complex<long double> line = 0;
            for (size_t j0 = 0; j0 < columns; ++j0)
                line += static_cast<long double>(x[j1 * columns + j0]) * root_of_unity(j0 * k0, columns);
            sum += line * root_of_unity(j1 * k1, rows);
        }
        const std::complex<long double> got(spectrum[e].real(), spectrum[e].imag());
        keep_largest(errors.elements, std::abs(got - sum) / rms);
    }
    return errors;
}

std::complex<long double> root_of_unity(size_t j, size_t n)
{
    const long double angle = -2 * M_PIl * static_cast<long double>(j % n) / static_cast<long double>(n);
    return {std::cos(angle), std::sin(angle)};
}

} // namespace ork::tool

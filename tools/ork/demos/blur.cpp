// SPDX-License-Identifier: MIT
// A picture x blurred by a point-spread function h, with noise e: y = h * x + e. In frequencies the convolution is a
// product, Y = H X + E, and the linear estimate of X with the least mean square error is Wiener's,
//     X' = conj(H) Y / (|H|^2 + N/S),
// for noise of power N and a picture of power S at the frequency. Photographs have a power that falls with the square
// of the frequency, so S is C/f^2, with C such that all of it together is the variance of the blurred picture.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <fmt/format.h>
#include <numeric>

#include "demos/demo.h"
#include "demos/noise.h"
#include "demos/panels.h"
#include "demos/transform.h"
#include "peers/measure.h"

namespace ork::tool {
namespace {

constexpr double spread = 2.5;      // pixels, standard deviation of the Gaussian
constexpr double noise_level = 1.0; // grey levels, standard deviation
constexpr int smallest = 32, largest = 2048;

struct Restoration {
    int width, height;
    std::vector<double> original, spread_function, noise, blurred, restored; // pixels, row by row
    std::vector<Complex> picture, transfer, observed, estimate;              // their spectra: x, h, y, x'
    double scale = 0;                                                        // C

    double distance2(size_t element) const // of a frequency, in cycles a picture
    {
        const size_t row = static_cast<size_t>(width) / 2 + 1;
        const auto fx = static_cast<double>(element % row);
        auto fy = static_cast<double>(element / row);
        if (2 * fy > height) fy -= height;
        return fx * fx + fy * fy;
    }
    double noise_over_signal(size_t element) const
    {
        return noise_level * noise_level * static_cast<double>(original.size()) * distance2(element) / scale;
    }
};

// Pixel (0, 0) is the middle; the picture is thought to go on at the opposite border.
std::vector<double> gaussian(int width, int height)
{
    std::vector<double> h(static_cast<size_t>(width) * static_cast<size_t>(height));
    for (size_t i = 0; i < h.size(); ++i) {
        const int px = static_cast<int>(i % static_cast<size_t>(width)),
                  py = static_cast<int>(i / static_cast<size_t>(width));
        const double x = std::min(px, width - px), y = std::min(py, height - py);
        h[i] = std::exp(-(x * x + y * y) / (2 * spread * spread));
    }
    const double sum = std::accumulate(h.begin(), h.end(), 0.0);
    for (double& value : h) value /= sum;
    return h;
}

void restore(Restoration& r, const RealTransform& transform)
{
    const double n = static_cast<double>(r.original.size());
    r.picture = transform.forward(r.original);
    r.transfer = transform.forward(r.spread_function);
    std::vector<Complex> product(r.picture.size());
    for (size_t k = 0; k < product.size(); ++k) product[k] = r.transfer[k] * r.picture[k];
    r.blurred = transform.backward(product);
    for (size_t i = 0; i < r.blurred.size(); ++i) r.blurred[i] += r.noise[i];

    r.observed = transform.forward(r.blurred);
    std::vector<Complex> model(r.observed.size()); // of 1/f, whose energy counts the redundant half too
    for (size_t k = 1; k < model.size(); ++k) model[k] = 1 / std::sqrt(r.distance2(k));
    const auto inverse_squares = static_cast<double>(transform.energy(model));
    std::vector<Complex> varying = r.observed;
    varying[0] = 0;
    r.scale = (static_cast<double>(transform.energy(varying)) - n * n * noise_level * noise_level) / inverse_squares;
    r.estimate = r.observed;
    for (size_t k = 0; k < r.estimate.size(); ++k)
        r.estimate[k] *= std::conj(r.transfer[k]) / (std::norm(r.transfer[k]) + r.noise_over_signal(k));
    r.restored = transform.backward(r.estimate);
}

// Peak signal to noise ratio in dB, of pixels as they are written.
double psnr(const Picture& original, const Picture& other)
{
    double squares = 0;
    for (size_t i = 0; i < original.pixels.size(); ++i) {
        const double d = static_cast<double>(original.pixels[i]) - other.pixels[i];
        squares += d * d;
    }
    return 10 * std::log10(255.0 * 255.0 * static_cast<double>(original.pixels.size()) / squares);
}

Picture rounded(const Restoration& r, const std::vector<double>& values)
{
    Picture picture{r.width, r.height, {}};
    for (const double value : values) // NaN becomes black, and the checks say so
        picture.pixels.push_back(static_cast<uint8_t>(value >= 0 ? std::min(value + 0.5, 255.0) : 0));
    return picture;
}

void verify(const Restoration& r, const RealTransform& transform, Report& report)
{
    const size_t n = r.original.size(), row = transform.row(), rows = static_cast<size_t>(r.height);
    const size_t columns = static_cast<size_t>(r.width);
    const TransformErrors picture = errors_of(transform, r.original, r.picture, {1, row, 3 * row + 7, n / 4}),
                          observed = errors_of(transform, r.blurred, r.observed, {2, rows / 2 * row + row - 1}),
                          restored =
                              errors_of(transform, r.restored, r.estimate, {1, 5 * row + 2, (rows - 1) * row + 9});
    report.check("Parseval's identity, three pictures",
                 std::max({picture.parseval, observed.parseval, restored.parseval}), 1e-13);
    report.check("there and back, of the brightest pixel",
                 std::max({picture.there_and_back, observed.there_and_back, restored.there_and_back}), 1e-13);
    report.check("frequencies against sums in long double, of the root mean square",
                 std::max({picture.elements, observed.elements, restored.elements}), 1e-13);

    double blur = 0, gradient_size = 0, transfer = 0;
    for (const size_t at :
         {size_t{0}, columns - 1, n / 2 + 17, n - 1}) { // corners too: the picture goes on beyond them
        long double sum = r.noise[at];
        for (size_t i = 0; i < n; ++i) {
            const size_t dx = (at % columns + columns - i % columns) % columns;
            const size_t dy = (at / columns + rows - i / columns) % rows;
            sum += static_cast<long double>(r.original[i]) * r.spread_function[dy * columns + dx];
        }
        keep_largest(blur, std::fabs(sum - r.blurred[at]));
    }
    // A Gaussian's transform is a Gaussian.
    for (size_t k = 0; k < r.transfer.size(); ++k) {
        const auto fx = static_cast<double>(k % row) / r.width;
        double fy = static_cast<double>(k / row) / r.height;
        if (fy > 0.5) fy -= 1;
        const double want = std::exp(-2 * M_PI * M_PI * spread * spread * (fx * fx + fy * fy));
        keep_largest(transfer, std::abs(r.transfer[k] - want));
        // the estimate minimises |Y - H X'|^2 + N/S |X'|^2, so the gradient is zero there
        const Complex gradient = std::conj(r.transfer[k]) * (r.observed[k] - r.transfer[k] * r.estimate[k]) -
                                 r.noise_over_signal(k) * r.estimate[k];
        keep_largest(gradient_size, std::abs(gradient) / (std::abs(r.observed[k]) + 1));
    }
    report.check("blurred pixels against sums over the whole picture, grey levels", blur, 1e-10);
    report.check("transform of the Gaussian against the formula", transfer, 1e-8);
    report.check("gradient of what the restored picture minimises", gradient_size, 1e-12);
}

void run(const Places& places, Report& report)
{
    const Picture original = read_pgm(places.data + "/ascent.pgm");
    if (std::min(original.width, original.height) < smallest || std::max(original.width, original.height) > largest)
        throw std::runtime_error(fmt::format("ascent.pgm: {} x {} pixels; sides from {} to {} are wanted",
                                             original.width, original.height, smallest, largest));
    Restoration r{original.width, original.height, {}, {}, {}, {}, {}, {}, {}, {}, {}};
    r.original.assign(original.pixels.begin(), original.pixels.end());
    r.spread_function = gaussian(r.width, r.height);
    r.noise = normal_noise(r.original.size(), noise_level);
    const RealTransform transform({r.height, r.width});
    std::vector<double> seconds;
    for (double all = 0; seconds.size() < 3 || (all < 0.1 && seconds.size() < 11); all += seconds.back()) {
        const auto start = std::chrono::steady_clock::now();
        restore(r, transform);
        seconds.push_back(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    verify(r, transform, report);
    const Picture blurred = rounded(r, r.blurred), restored = rounded(r, r.restored);
    const double before = psnr(original, blurred), after = psnr(original, restored);
    report.check("the restored picture is no nearer to the original than the blurred one, dB", before - after, 0);
    report.line(fmt::format("  {} x {} pixels, blurred by a Gaussian of {} pixels, noise of {} grey level", r.width,
                            r.height, spread, noise_level));
    report.line(fmt::format("  PSNR blurred {:.2f} dB, restored {:.2f} dB", before, after));
    report.timing(peers::median(seconds), 5 * transform.flops());
    if (!report.all_hold()) return;
    for (const auto& [name, picture] :
         {std::pair{"original", &original}, {"blurred", &blurred}, {"restored", &restored}}) {
        const std::string file = fmt::format("{}/ork-demo-blur-{}.pgm", places.out, name);
        write_pgm(file, *picture);
        report.picture(file);
    }
    const std::string file = places.out + "/ork-demo-blur.svg";
    draw_panels(file,
                {{"Original", &original},
                 {fmt::format("Blurred, with noise: {:.2f} dB", before), &blurred},
                 {fmt::format("Restored: {:.2f} dB", after), &restored}},
                400);
    report.picture(file);
}

} // namespace

const Demo blur = {"blur", "ascent.pgm, a photograph of 512 x 512 pixels",
                   "the photograph blurred, disturbed by noise and restored by a Wiener filter, by 2-D real transforms",
                   run};

} // namespace ork::tool

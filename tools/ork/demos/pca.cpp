// SPDX-License-Identifier: MIT
// Centre the images, form their covariance, find its eigenvectors, project and rebuild.
//
// Eigenvectors come from one-sided Jacobi rotations (Hestenes 1958): columns of W = C V are made orthogonal in pairs,
// each rotation applied to W and V alike. C is symmetric and not negative, so at the end the columns of V are its
// eigenvectors. Every step works on whole columns: ddot for the angle, drot for the rotation.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <fmt/format.h>
#include <numeric>
#include <stdexcept>

#include "demos/demo.h"
#include "demos/pca.h"
#include "ork/blas.h"
#include "peers/measure.h"

namespace ork::tool {
namespace {

constexpr int kept_components[] = {2, 5, 10, 20, 40};
constexpr int p = pixels_each;
constexpr int one = 1;

size_t at(int row, int column, int rows)
{
    return static_cast<size_t>(column) * static_cast<size_t>(rows) + static_cast<size_t>(row);
}

Images read_images(const std::string& file)
{
    Images images = read_digits(file);
    const auto varies = [&](int pixel) {
        for (int i = 1; i < images.count; ++i)
            if (images.pixel(i, pixel) != images.pixel(0, pixel)) return true;
        return false;
    };
    for (int pixel = 0; pixel < p; ++pixel)
        if (varies(pixel)) return images;
    throw std::runtime_error(file + ": all images are alike, so there is no variance to explain");
}

// dgemm that keeps count of its work and time.
void product(Principal& r, const char* trans, int m, int n, int k, double alpha, const double* a, int lda,
             const double* b, int ldb, double beta, double* c, int ldc)
{
    const auto start = std::chrono::steady_clock::now();
    dgemm_(&trans[0], &trans[1], &m, &n, &k, &alpha, a, &lda, b, &ldb, &beta, c, &ldc);
    r.product_seconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    r.product_flops += 2.0 * m * n * k;
}

// Rotates columns of w and v until no pair of w is further from orthogonal than rounding; returns the rotations made.
long orthogonalise(std::vector<double>& w, std::vector<double>& v)
{
    constexpr double negligible = 4e-15, noise = 1e-16;
    constexpr int most_sweeps = 30;
    // Two columns that are both rounding errors of the largest never become orthogonal and need not.
    double largest = 0;
    for (int j = 0; j < p; ++j) largest = std::max(largest, dnrm2_(&p, &w[at(0, j, p)], &one));
    long rotations = 0, before = -1;
    for (int sweep = 0; sweep < most_sweeps && rotations != before; ++sweep) {
        before = rotations;
        for (int i = 0; i < p; ++i)
            for (int j = i + 1; j < p; ++j) {
                double *x = &w[at(0, i, p)], *y = &w[at(0, j, p)];
                const double xx = ddot_(&p, x, &one, x, &one), yy = ddot_(&p, y, &one, y, &one);
                const double xy = ddot_(&p, x, &one, y, &one);
                if (std::fabs(xy) <= negligible * std::max(std::sqrt(xx * yy), noise * largest * largest)) continue;
                const double zeta = (yy - xx) / (2 * xy);
                const double tangent = std::copysign(1.0, zeta) / (std::fabs(zeta) + std::hypot(1.0, zeta));
                const double c = 1 / std::hypot(1.0, tangent), s = -c * tangent;
                drot_(&p, x, &one, y, &one, &c, &s);
                drot_(&p, &v[at(0, i, p)], &one, &v[at(0, j, p)], &one, &c, &s);
                ++rotations;
            }
    }
    return rotations;
}

// Eigenvectors of the covariance in descending order of variance; the largest entry of each is positive.
void find_components(Principal& r)
{
    std::vector<double> w = r.covariance, v(p * p, 0.0);
    for (int j = 0; j < p; ++j) v[at(j, j, p)] = 1;
    const long rotations = orthogonalise(w, v);
    // a pair costs three dot products where it is rotated, and two rotations of 6 operations an element
    r.flops += static_cast<double>(rotations) * (3 * 2 + 2 * 6) * p;
    for (int j = 0; j < p; ++j) {
        const double scale = 1 / dnrm2_(&p, &v[at(0, j, p)], &one);
        dscal_(&p, &scale, &v[at(0, j, p)], &one);
    }
    product(r, "NN", p, p, p, 1, r.covariance.data(), p, v.data(), p, 0, w.data(), p);
    std::vector<double> variance(p);
    for (int j = 0; j < p; ++j)
        variance[static_cast<size_t>(j)] = ddot_(&p, &v[at(0, j, p)], &one, &w[at(0, j, p)], &one);
    std::vector<int> order(p);
    std::iota(order.begin(), order.end(), 0);
    std::sort(order.begin(), order.end(),
              [&](int a, int b) { return variance[static_cast<size_t>(a)] > variance[static_cast<size_t>(b)]; });
    r.components.assign(p * p, 0);
    r.variance.clear();
    for (int j = 0; j < p; ++j) {
        const double* from = &v[at(0, order[static_cast<size_t>(j)], p)];
        double* to = &r.components[at(0, j, p)];
        r.variance.push_back(variance[static_cast<size_t>(order[static_cast<size_t>(j)])]);
        dcopy_(&p, from, &one, to, &one);
        constexpr double minus_one = -1;
        if (to[idamax_(&p, to, &one) - 1] < 0) dscal_(&p, &minus_one, to, &one);
    }
}

Principal analyse(const Images& images)
{
    const int n = images.count;
    const std::vector<double> raw(images.pixels.begin(), images.pixels.end()), ones(static_cast<size_t>(n), 1.0);
    Principal r;
    r.mean.resize(p);
    r.covariance.resize(p * p);
    r.scores.resize(raw.size());

    product(r, "TN", 1, p, n, 1.0 / n, ones.data(), n, raw.data(), n, 0, r.mean.data(), 1);
    std::vector<double> centred = raw;
    product(r, "NN", n, p, 1, -1, ones.data(), n, r.mean.data(), 1, 1, centred.data(), n);
    product(r, "TN", p, p, n, 1.0 / (n - 1), centred.data(), n, centred.data(), n, 0, r.covariance.data(), p);
    find_components(r);
    product(r, "NN", n, p, p, 1, centred.data(), n, r.components.data(), p, 0, r.scores.data(), n);

    for (const int k : kept_components) {
        Reconstruction kept{k, std::vector<double>(raw.size()), 0};
        product(r, "NN", n, p, 1, 1, ones.data(), n, r.mean.data(), 1, 0, kept.images.data(), n);
        product(r, "NT", n, p, k, 1, r.scores.data(), n, r.components.data(), p, 1, kept.images.data(), n);
        std::vector<double> difference = raw;
        const int all = n * p;
        constexpr double minus_one = -1;
        daxpy_(&all, &minus_one, kept.images.data(), &one, difference.data(), &one);
        kept.rms = dnrm2_(&all, difference.data(), &one) / std::sqrt(static_cast<double>(all));
        r.flops += 4.0 * all;
        r.kept.push_back(std::move(kept));
    }
    r.flops += r.product_flops;
    return r;
}

// The covariance from sums of integers, exact up to the one division: (n sum xy - sum x sum y) / (n (n - 1)).
std::vector<long double> exact_covariance(const Images& images, std::vector<long double>& mean)
{
    const long long n = images.count;
    std::vector<long double> covariance(p * p);
    std::vector<long long> sum(p, 0);
    for (int j = 0; j < p; ++j)
        for (int i = 0; i < n; ++i) sum[static_cast<size_t>(j)] += images.pixel(i, j);
    for (int a = 0; a < p; ++a) {
        mean.push_back(static_cast<long double>(sum[static_cast<size_t>(a)]) / static_cast<long double>(n));
        for (int b = 0; b < p; ++b) {
            long long both = 0;
            for (int i = 0; i < n; ++i) both += static_cast<long long>(images.pixel(i, a)) * images.pixel(i, b);
            covariance[at(a, b, p)] =
                static_cast<long double>(n * both - sum[static_cast<size_t>(a)] * sum[static_cast<size_t>(b)]) /
                static_cast<long double>(n * (n - 1));
        }
    }
    return covariance;
}

// n orthonormal vectors that each satisfy C v = lambda v are all there is to know about C, so the first checks cover
// every variance that is printed; the rebuilt images are compared with the pixels one by one.
void verify(const Images& images, const Principal& r, Report& report)
{
    std::vector<long double> mean;
    const std::vector<long double> exact = exact_covariance(images, mean);
    double mean_error = 0, covariance_error = 0, residual = 0, orthonormality = 0, order = 0;
    long double trace = 0, total = 0;
    for (int a = 0; a < p; ++a) {
        keep_largest(mean_error, std::fabs(r.mean[static_cast<size_t>(a)] - mean[static_cast<size_t>(a)]));
        trace += exact[at(a, a, p)];
        total += r.variance[static_cast<size_t>(a)];
        if (a > 0) keep_largest(order, r.variance[static_cast<size_t>(a)] - r.variance[static_cast<size_t>(a) - 1]);
        long double squares = 0;
        for (int b = 0; b < p; ++b) {
            keep_largest(covariance_error, std::fabs(r.covariance[at(a, b, p)] - exact[at(a, b, p)]));
            long double inner = 0, image = 0;
            for (int i = 0; i < p; ++i) {
                inner += static_cast<long double>(r.components[at(i, a, p)]) * r.components[at(i, b, p)];
                image += exact[at(b, i, p)] * r.components[at(i, a, p)];
            }
            keep_largest(orthonormality, std::fabs(inner - (a == b ? 1 : 0)));
            const long double d =
                image - static_cast<long double>(r.variance[static_cast<size_t>(a)]) * r.components[at(b, a, p)];
            squares += d * d;
        }
        keep_largest(residual, std::sqrt(squares));
    }
    const double scale = static_cast<double>(trace);
    report.check("mean of the images against sums of integers", mean_error, 1e-12);
    report.check("covariance against sums of integers", covariance_error, 1e-13 * scale);
    report.check("length of C v - lambda v, every component", residual, 1e-13 * scale);
    report.check("components orthonormal", orthonormality, 1e-12);
    report.check("variances in descending order", order, 0);
    report.check("sum of variances against the trace", static_cast<double>(std::fabs(total - trace)), 1e-13 * scale);

    for (const Reconstruction& kept : r.kept) {
        long double squares = 0, tail = 0;
        for (int j = 0; j < p; ++j)
            for (int i = 0; i < images.count; ++i) {
                const long double d =
                    static_cast<long double>(kept.images[at(i, j, images.count)]) - images.pixel(i, j);
                squares += d * d;
            }
        for (int j = kept.components; j < p; ++j) tail += r.variance[static_cast<size_t>(j)];
        tail *= images.count - 1;
        const long double cells = static_cast<long double>(images.count) * p;
        report.check(fmt::format("{} components: squared error against the variances left out", kept.components),
                     static_cast<double>(std::fabs(squares - tail)), 1e-11 * scale * images.count);
        report.check(fmt::format("{} components: rms error against plain loops", kept.components),
                     static_cast<double>(std::fabs(kept.rms - std::sqrt(squares / cells))), 1e-11);
    }
}

void describe(const Images& images, const Principal& r, Report& report)
{
    const double total = std::accumulate(r.variance.begin(), r.variance.end(), 0.0);
    const auto share = [&](int count) {
        return std::accumulate(r.variance.begin(), r.variance.begin() + count, 0.0) / total;
    };
    report.line(fmt::format("  {} images of {} pixels, total variance {:.2f}", images.count, p, total));
    std::string components = "  component ", variances = "  variance  ";
    for (int j = 0; j < std::min(8, p); ++j) {
        components += fmt::format("{:>8}", j + 1);
        variances += fmt::format("{:>6.2f} %", 100 * r.variance[static_cast<size_t>(j)] / total);
    }
    report.line(components);
    report.line(variances);
    std::string kept = "  kept      ", explained = "  explained ", rms = "  rms error ";
    for (const Reconstruction& k : r.kept) {
        kept += fmt::format("{:>8}", k.components);
        explained += fmt::format("{:>6.2f} %", 100 * share(k.components));
        rms += fmt::format("{:>8.3f}", k.rms);
    }
    report.line(kept);
    report.line(explained);
    report.line(rms + "  of 16 grey levels");
}

void run(const Places& places, Report& report)
{
    const Images images = read_images(places.data + "/digits.csv");
    Principal result;
    std::vector<double> seconds, product_seconds; // of several runs, the medians of which are shown
    for (double all = 0; seconds.size() < 5 || (all < 0.1 && seconds.size() < 51); all += seconds.back()) {
        const auto start = std::chrono::steady_clock::now();
        result = analyse(images);
        seconds.push_back(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
        product_seconds.push_back(result.product_seconds);
    }
    verify(images, result, report);
    describe(images, result, report);
    report.timing(peers::median(seconds), result.flops);
    report.line(fmt::format("  products (dgemm): {:.0f} Mflop at {:.2f} GF/s", result.product_flops / 1e6,
                            result.product_flops / peers::median(product_seconds) / 1e9));
    if (!report.all_hold()) return; // no picture of wrong numbers
    const std::string file = places.out + "/ork-demo-pca.svg";
    draw_pca(file, images, result);
    report.picture(file);
}

} // namespace

const Demo pca = {"pca", "digits.csv, 1797 handwritten digits of 8 x 8 pixels",
                  "principal components of handwritten digits, and the digits rebuilt from few of them", run};

} // namespace ork::tool

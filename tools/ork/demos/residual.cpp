// SPDX-License-Identifier: MIT
// A nearly singular least-squares problem, and what its residual is worth. One second of the electrocardiogram, from
// the ninth to the tenth, is fitted by a polynomial of degree 7 in the time since the record began: on that interval
// the powers of t are so nearly dependent that hardly four digits of the coefficients survive in double precision.
//
// The coefficients x and the misfit r = b - A x solve
//
//     (I  A) (r)   (b)
//     (A' 0) (x) = (0),
//
// and iterative refinement (Bjorck, "Iterative refinement of linear least squares solutions", 1967) corrects both by
// what they leave of the right-hand side, solved for with the QR factors of A. What they leave is a difference of
// numbers 10^13 times as large as itself: computed as everything else it is noise and the refinement goes nowhere,
// computed with extra precision it has all its digits and the coefficients become right to the last one.
#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <stdexcept>
#include <vector>

#include "demos/csv.h"
#include "demos/demo.h"
#include "ork/blas.h"
#include "ork/lapack.h"
#include "ork/ork.h"
#include "ork/xblas.h"
#include "peers/measure.h"

namespace ork::tool {
namespace {

using Numbers = std::vector<double>;
using Quad = __float128; // 113 bits
using Quads = std::vector<Quad>;

constexpr double sample_rate = 360; // Hz
constexpr int first = 9 * 360, rows = 360, columns = 8, order = rows + columns, steps = 7;

size_t at(int i, int j, int lead)
{
    return static_cast<size_t>(i) + static_cast<size_t>(j) * static_cast<size_t>(lead);
}
Quad absolute(Quad q) { return q < 0 ? -q : q; }

void require(int info, const char* what)
{
    if (info != 0) throw std::runtime_error(fmt::format("{}: info {}", what, info));
}

struct Fit {
    Numbers a = Numbers(static_cast<size_t>(rows) * columns), b;         // powers of the time, samples
    Numbers system = Numbers(static_cast<size_t>(order) * order), right; // the symmetric system of r and x
    Numbers qr, tau = Numbers(columns);

    explicit Fit(const std::vector<std::vector<int>>& samples)
    {
        for (int i = 0; i < rows; ++i) {
            b.push_back(samples[static_cast<size_t>(first + i)].back());
            double power = 1;
            for (int j = 0; j < columns; ++j, power *= (first + i) / sample_rate) a[at(i, j, rows)] = power;
        }
        for (int i = 0; i < rows; ++i) {
            system[at(i, i, order)] = 1;
            for (int j = 0; j < columns; ++j) system[at(i, rows + j, order)] = a[at(i, j, rows)]; // the upper triangle
        }
        right = b;
        right.resize(order);
        qr = a;
        Numbers work(columns);
        const int m = rows, n = columns;
        int info = 0;
        ork_lapack_lp64_dgeqrf(&m, &n, qr.data(), &m, tau.data(), work.data(), &n, &info);
        require(info, "dgeqrf");
    }

    void multiply_by_q(const char* trans, Numbers& v) const
    {
        const int m = rows, n = columns, one = 1;
        double work = 0;
        int info = 0;
        ork_lapack_lp64_dormqr("L", trans, &m, &one, &n, qr.data(), &m, tau.data(), v.data(), &m, &work, &one, &info);
        require(info, "dormqr");
    }
    void solve_r(const char* trans, Numbers& v) const
    {
        const int m = rows, n = columns, one = 1;
        dtrsv_("U", trans, "N", &n, qr.data(), &m, v.data(), &one);
    }

    // (r, x) of a right-hand side (f, g): with Q' f = (c, d) and h = R^-T g, x = R^-1 (c - h) and r = Q (h, d).
    Numbers solve(const Numbers& side) const
    {
        Numbers r(side.begin(), side.begin() + rows), h(side.begin() + rows, side.end()), x(columns);
        solve_r("T", h);
        multiply_by_q("T", r);
        for (size_t j = 0; j < columns; ++j) x[j] = r[j] - h[j], r[j] = h[j];
        solve_r("N", x);
        multiply_by_q("N", r);
        r.insert(r.end(), x.begin(), x.end());
        return r;
    }

    // What (r, x) leaves of the right-hand side.
    Numbers residual(const Numbers& z, bool extra) const
    {
        Numbers left = right;
        const int n = order, one = 1;
        const double minus = -1, plus = 1;
        if (extra)
            BLAS_dsymv_x(blas_colmajor, blas_upper, n, minus, system.data(), n, z.data(), 1, plus, left.data(), 1,
                         blas_prec_extra);
        else
            dsymv_("U", &n, &minus, system.data(), &n, z.data(), &one, &plus, left.data(), &one);
        return left;
    }
};

// Row i of the system: what z leaves of the right-hand side, and the size of the terms in it.
struct Row {
    Quad left, size;
};
Row row_of(const Fit& fit, const Numbers& z, int i)
{
    Row row{fit.right[static_cast<size_t>(i)], absolute(fit.right[static_cast<size_t>(i)])};
    for (int j = 0; j < order; ++j) {
        const Quad term =
            static_cast<Quad>(fit.system[at(std::min(i, j), std::max(i, j), order)]) * z[static_cast<size_t>(j)];
        row.left -= term;
        row.size += absolute(term);
    }
    return row;
}

// The coefficients by L D L' of A' A. Its condition is the square of A's, so one solution has few digits of 34; each
// of a few corrections brings some more. `settled` becomes the last correction, relative.
Quads exact_coefficients(const Fit& fit, double& settled)
{
    Quad g[columns][columns] = {};
    for (int j = 0; j < columns; ++j)
        for (int i = j; i < columns; ++i)
            for (int r = 0; r < rows; ++r) g[i][j] += static_cast<Quad>(fit.a[at(r, i, rows)]) * fit.a[at(r, j, rows)];
    for (int j = 0; j < columns; ++j) {
        for (int k = 0; k < j; ++k)
            for (int i = j; i < columns; ++i) g[i][j] -= g[i][k] * g[j][k] * g[k][k];
        for (int i = j + 1; i < columns; ++i) g[i][j] /= g[j][j];
    }
    Quads x(columns, 0);
    for (int correction = 0; correction < 8; ++correction) {
        Quad d[columns] = {};
        for (int r = 0; r < rows; ++r) {
            Quad left = fit.b[static_cast<size_t>(r)];
            for (int j = 0; j < columns; ++j) left -= fit.a[at(r, j, rows)] * x[static_cast<size_t>(j)];
            for (int j = 0; j < columns; ++j) d[j] += fit.a[at(r, j, rows)] * left;
        }
        for (int i = 0; i < columns; ++i)
            for (int k = 0; k < i; ++k) d[i] -= g[i][k] * d[k];
        for (int i = 0; i < columns; ++i) d[i] /= g[i][i];
        for (int i = columns - 1; i >= 0; --i)
            for (int k = i + 1; k < columns; ++k) d[i] -= g[k][i] * d[k];
        settled = 0;
        for (size_t j = 0; j < columns; ++j) {
            x[j] += d[j];
            keep_largest(settled, static_cast<long double>(absolute(d[j] / x[j])));
        }
    }
    return x;
}

// Correct decimal digits; 16 for whatever is no further off than half a unit in the last place.
double digits(double error)
{
    return std::isnan(error) ? 0 : std::clamp(std::log10(1 / std::max(error, 1e-16)), 0.0, 16.0);
}

struct Step {
    double residual, coefficients; // digits: of the median entry, of the worst one
};

// The bound of BLAS_dsymv_x holds for every entry, or `over` exceeds 1.
std::vector<Step> refine(const Fit& fit, bool extra, const Quads& exact, double& over)
{
    std::vector<Step> all;
    Numbers z = fit.solve(fit.right);
    for (int step = 0; step < steps; ++step) {
        const Numbers left = fit.residual(z, extra);
        Numbers errors;
        for (int i = 0; i < order; ++i) {
            const Row row = row_of(fit, z, i);
            const Quad error = absolute(left[static_cast<size_t>(i)] - row.left), size = absolute(row.left);
            errors.push_back(static_cast<double>(error / size));
            const Quad allowed = 0x1p-53 * size + 4 * (order + 2) * 0x1p-106 * row.size;
            keep_largest(over, static_cast<long double>(error / allowed));
        }
        double worst = 0;
        for (size_t j = 0; j < columns; ++j)
            keep_largest(worst, static_cast<long double>(absolute((z[rows + j] - exact[j]) / exact[j])));
        all.push_back({digits(peers::median(std::move(errors))), digits(worst)});
        const Numbers correction = fit.solve(left);
        for (size_t i = 0; i < order; ++i) z[i] += correction[i];
    }
    return all;
}

// In the norm of largest column sums, columns scaled to a length of one.
double condition(const Fit& fit)
{
    Numbers r(static_cast<size_t>(columns) * columns);
    for (int j = 0; j < columns; ++j) {
        double length = 0;
        for (int i = 0; i <= j; ++i) length = std::hypot(length, fit.qr[at(i, j, rows)]);
        for (int i = 0; i <= j; ++i) r[at(i, j, columns)] = fit.qr[at(i, j, rows)] / length;
    }
    const auto norm = [&] {
        double largest = 0;
        for (int j = 0; j < columns; ++j) {
            double sum = 0;
            for (int i = 0; i <= j; ++i) sum += std::fabs(r[at(i, j, columns)]);
            keep_largest(largest, sum);
        }
        return largest;
    };
    const double forth = norm();
    const int n = columns;
    int info = 0;
    ork_lapack_lp64_dtrtri("U", "N", &n, r.data(), &n, &info);
    require(info, "dtrtri");
    return forth * norm();
}

void run(const Places& places, Report& report)
{
    const auto samples = read_csv(places.data + "/ecg.txt", {1, 0, 4095, 0, 4095});
    if (samples.size() < first + rows)
        throw std::runtime_error(fmt::format("ecg.txt: {} samples; {} are wanted", samples.size(), first + rows));
    const Fit fit(samples);
    double settled = 0, over_plain = 0, over_extra = 0;
    const Quads exact = exact_coefficients(fit, settled);
    const auto plain = refine(fit, false, exact, over_plain), extra = refine(fit, true, exact, over_extra);

    report.check("last correction of the coefficients in 113 bits, relative", settled, 1e-18);
    report.check("extra-precise residuals, of half an ulp and what 106 bits lose", over_extra, 1);
    double noise = 0, least_residual = 16, best_plain = 0;
    for (int step = 1; step < steps; ++step) {
        keep_largest(noise, plain[static_cast<size_t>(step)].residual);
        keep_largest(best_plain, plain[static_cast<size_t>(step)].coefficients);
    }
    for (const Step& step : extra) least_residual = std::min(least_residual, step.residual);
    report.check("digits short of 16 in the median entry of an extra-precise residual", 16 - least_residual, 0.2);
    report.check("digits in the median entry of a plain residual after the first", noise, 1);
    report.check("digits short of 16 in the coefficients at last, extra-precise residuals",
                 16 - extra.back().coefficients, 0.4);
    report.check("digits in the coefficients at best, plain residuals", best_plain, 8);

    report.line(fmt::format("  {} samples, {} powers of the time, condition {:.1e}", rows, columns, condition(fit)));
    report.line("                digits of the residual      digits of the coefficients");
    report.line("  refinement    plain    extra-precise      plain    extra-precise");
    for (size_t step = 0; step < steps; ++step)
        report.line(fmt::format("  {:<10}{:>9.1f}{:>17.1f}{:>11.1f}{:>17.1f}", step, plain[step].residual,
                                extra[step].residual, plain[step].coefficients, extra[step].coefficients));
    const Numbers z = fit.solve(fit.right);
    const auto timed = [&](bool with_extra) {
        return [&, with_extra](long calls) {
            while (calls-- > 0) (void)fit.residual(z, with_extra);
        };
    };
    const int before = ork_set_num_threads_local(1); // a core against a core
    const auto seconds = peers::interleave({timed(false), timed(true)}, {1e-3, 0.1, 5, 15});
    ork_set_num_threads_local(before);
    report.line(fmt::format("  one thread takes {:.0f} us for a residual, {:.0f} us for an extra-precise one",
                            1e6 * peers::median(seconds[0]), 1e6 * peers::median(seconds[1])));
}

} // namespace

const Demo residual = {"residual", "ecg.txt, the tenth second of a minute of an electrocardiogram at 360 Hz",
                       "a nearly singular least-squares fit, refined with plain and with extra-precise residuals", run};

} // namespace ork::tool

// SPDX-License-Identifier: MIT
// The stiffness matrix of a structure, solved by conjugate gradients without a preconditioner and with two; with
// symmetric Gauss-Seidel also through an analysed handle.
//
// The right-hand side belongs to displacements that are known, so the error of every solution is too. Errors are
// measured as the energy sqrt(e' A e): the norm that conjugate gradients make least, and the one in which a small
// residual means a small error although the matrix is badly conditioned.
#include "demos/structure.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <stdexcept>

#include "demos/cg_handle.h"
#include "demos/demo.h"
#include "matrix_market.h"
#include "ork/cblas.h"
#include "peers/measure.h"

namespace ork::tool {
namespace {

using LongVector = std::vector<long double>;

constexpr double tolerance = 1e-10;
constexpr double eps = 0x1p-52;

// The product by plain loops over all entries of the file in long double; `sizes` gets the sums of absolute values.
LongVector long_product(const peers::CsrMatrix& a, const LongVector& x, LongVector* sizes = nullptr)
{
    LongVector y(x.size(), 0);
    if (sizes) sizes->assign(x.size(), 0);
    for (size_t i = 0; i < x.size(); ++i)
        for (auto k = static_cast<size_t>(a.ptr[i]); k < static_cast<size_t>(a.ptr[i + 1]); ++k) {
            const long double term = a.val[k] * x[static_cast<size_t>(a.col[k])];
            y[i] += term;
            if (sizes) (*sizes)[i] += std::fabs(term);
        }
    return y;
}

long double long_dot(const LongVector& x, const LongVector& y)
{
    long double sum = 0;
    for (size_t i = 0; i < x.size(); ++i) sum += x[i] * y[i];
    return sum;
}

// Displacements of every scale: a wave over the numbers of the unknowns and something irregular on top.
Vector known_displacements(int n)
{
    Vector x(static_cast<size_t>(n));
    peers::Random random;
    for (size_t i = 0; i < x.size(); ++i)
        x[i] = std::sin(2 * M_PI * static_cast<double>(i) / static_cast<double>(n)) + 0.1 * random.next();
    return x;
}

struct Problem {
    peers::CsrMatrix whole, lower;
    Vector displacements, load; // known x, and b = A x rounded once
};

Problem read_problem(const std::string& file)
{
    Problem p;
    p.whole = read_matrix_market(file);
    if (!p.whole.symmetric) throw std::runtime_error(file + ": not symmetric, so no matrix for conjugate gradients");
    p.lower = peers::triangle(p.whole, 'L');
    for (int i = 0; i < p.lower.rows; ++i)
        if (!(p.lower.val[static_cast<size_t>(p.lower.ptr[static_cast<size_t>(i) + 1]) - 1] > 0))
            throw std::runtime_error(
                fmt::format("{}: entry ({}, {}) of the diagonal is not positive", file, i + 1, i + 1));
    p.displacements = known_displacements(p.whole.rows);
    for (const long double value : long_product(p.whole, {p.displacements.begin(), p.displacements.end()}))
        p.load.push_back(static_cast<double>(value));
    return p;
}

double true_residual(const Problem& p, const Vector& x)
{
    const LongVector ax = long_product(p.whole, {x.begin(), x.end()});
    long double squares = 0, size = 0;
    for (size_t i = 0; i < x.size(); ++i) {
        squares += (p.load[i] - ax[i]) * (p.load[i] - ax[i]);
        size += static_cast<long double>(p.load[i]) * p.load[i];
    }
    return static_cast<double>(std::sqrt(squares / size));
}

// Of the difference of two vectors, relative to the known displacements.
double energy_between(const Problem& p, const Vector& a, const Vector& b)
{
    const LongVector known(p.displacements.begin(), p.displacements.end());
    LongVector e(a.begin(), a.end());
    for (size_t i = 0; i < e.size(); ++i) e[i] -= b[i];
    return static_cast<double>(
        std::sqrt(long_dot(e, long_product(p.whole, e)) / long_dot(known, long_product(p.whole, known))));
}

double energy_error(const Problem& p, const Vector& x) { return energy_between(p, p.displacements, x); }

void verify_product(const Problem& p, Report& report)
{
    Vector y;
    multiply(p.lower, p.displacements, y);
    LongVector sizes;
    const LongVector want = long_product(p.whole, {p.displacements.begin(), p.displacements.end()}, &sizes);
    double worst = 0;
    for (size_t i = 0; i < y.size(); ++i) keep_largest(worst, std::fabs(y[i] - want[i]) / (sizes[i] * eps));
    report.check("symmetric product against plain loops in long double, in roundings of a row's sum", worst, 60);
}

// Of row i of T y = x, in roundings of its terms.
void verify_solves(const char* what, const peers::CsrMatrix& t, const Vector& x, Report& report)
{
    double worst = 0;
    for (const bool transposed : {false, true}) {
        Vector y;
        solve(t, transposed, x, y);
        LongVector sum(x.size(), 0), sizes(x.size(), 0);
        for (size_t i = 0; i < x.size(); ++i)
            for (auto k = static_cast<size_t>(t.ptr[i]); k < static_cast<size_t>(t.ptr[i + 1]); ++k) {
                const auto j = static_cast<size_t>(t.col[k]), row = transposed ? j : i, column = transposed ? i : j;
                const long double term = static_cast<long double>(t.val[k]) * y[column];
                sum[row] += term;
                sizes[row] += std::fabs(term);
            }
        for (size_t i = 0; i < x.size(); ++i)
            keep_largest(worst, std::fabs(sum[i] - x[i]) / ((sizes[i] + std::fabs(x[i])) * eps));
    }
    report.check(fmt::format("solves with {} and its transpose put back, in roundings of a row's sum", what), worst,
                 60);
}

// G G' where A has entries, against A with its diagonal times 1 + shift, over sqrt(a_ii a_jj).
void verify_factor(const Problem& p, const IncompleteCholesky& cholesky, Report& report)
{
    const peers::CsrMatrix &a = p.lower, &g = cholesky.factor();
    const auto diagonal = [&](size_t i) { return a.val[static_cast<size_t>(a.ptr[i + 1]) - 1]; };
    double worst = 0;
    for (size_t i = 0; i < static_cast<size_t>(a.rows); ++i)
        for (auto k = static_cast<size_t>(a.ptr[i]); k < static_cast<size_t>(a.ptr[i + 1]); ++k) {
            const auto j = static_cast<size_t>(a.col[k]);
            long double sum = 0; // of row i and row j
            auto u = static_cast<size_t>(g.ptr[i]), v = static_cast<size_t>(g.ptr[j]);
            while (u < static_cast<size_t>(g.ptr[i + 1]) && v < static_cast<size_t>(g.ptr[j + 1])) {
                if (g.col[u] == g.col[v])
                    sum += static_cast<long double>(g.val[u++]) * g.val[v++];
                else if (g.col[u] < g.col[v])
                    ++u;
                else
                    ++v;
            }
            const long double want = a.val[k] * (i == j ? 1 + static_cast<long double>(cholesky.shift()) : 1);
            keep_largest(worst, std::fabs(sum - want) / std::sqrt(static_cast<long double>(diagonal(i)) * diagonal(j)));
        }
    report.check("G G' against A + shift D where A has entries, over sqrt(a_ii a_jj)", worst, 60 * eps);
}

void verify(const Problem& p, const std::vector<Method>& methods, Report& report)
{
    for (const Method& m : methods) {
        const double end = m.solution.history.back(), residual = true_residual(p, m.solution.x);
        report.check(fmt::format("{}: |r| / |b| of the iteration", m.name), end, tolerance);
        report.check(fmt::format("{}: |b - A x| / |b| in long double", m.name), residual, 10 * tolerance);
        report.check(fmt::format("{}: energy of the error, of the energy of the known displacements", m.name),
                     energy_error(p, m.solution.x), 1e-6);
    }
}

// Seconds of one call, median of a hundred.
template <class Call>
double seconds_of(const Call& call)
{
    std::vector<double> seconds(100);
    for (double& s : seconds) s = peers::time_of([&](long) { call(); }, 1, peers::Clock::wall);
    return peers::median(std::move(seconds));
}

// The handle beside the legacy interface: the same result, and how much sooner, in turn with medians of the ratios.
void compare_handle(const Problem& p, const Solution& legacy, int most, Report& report)
{
    const HandleSolver solver(p.whole, legacy.iterations());
    const GaussSeidel gauss_seidel(p.lower);
    const Solution handle = solver.solve(p.load, tolerance, most);
    report.check("through the handle: |b - A x| / |b| in long double", true_residual(p, handle.x), 10 * tolerance);
    report.check("through the handle: energy of the error", energy_error(p, handle.x), 1e-6);
    report.check("through the handle: energy of the difference from the legacy solution",
                 energy_between(p, handle.x, legacy.x), 1e-6);
    report.check("through the handle: steps more or less than by the legacy interface",
                 std::abs(handle.iterations() - legacy.iterations()), 2 + 0.05 * legacy.iterations());

    Vector y, z;
    const std::vector<peers::Entrant> entrants = {
        [&](long calls) {
            for (; calls > 0; --calls) conjugate_gradients(p.lower, p.load, gauss_seidel, tolerance, most);
        },
        [&](long calls) {
            for (; calls > 0; --calls) solver.solve(p.load, tolerance, most);
        },
        [&](long calls) {
            for (; calls > 0; --calls) {
                multiply(p.lower, p.load, y);
                cblas_ddot(static_cast<int>(y.size()), p.load.data(), 1, y.data(), 1);
            }
        },
        [&](long calls) {
            for (; calls > 0; --calls) solver.multiply(p.load, y);
        },
        [&](long calls) {
            for (; calls > 0; --calls) gauss_seidel.apply(p.load, z);
        },
        [&](long calls) {
            for (; calls > 0; --calls) solver.sweep(p.load, z);
        }};
    peers::Effort effort;
    effort.clock = peers::Clock::wall;
    effort.fewest = 9;
    const peers::Samples seconds = peers::interleave(entrants, effort);
    report.line(fmt::format(
        "  symmetric Gauss-Seidel through a handle ({}): {} iterations, {:.3f} s after {:.1f} ms of analysis; "
        "{:.2f} times as fast as by ork/spblas.h",
        solver.describe().layout, handle.iterations(), peers::median(seconds[1]), 1e3 * solver.analysis_seconds(),
        peers::speed_ratio(seconds[1], seconds[0])));
    report.line(
        fmt::format("    product with its dot product {:.2f} times, the sweep {:.2f} times as fast as two solves",
                    peers::speed_ratio(seconds[3], seconds[2]), peers::speed_ratio(seconds[5], seconds[4])));
}

// Values, indices and pointers of a stored triangle, two vectors.
double bytes(const peers::CsrMatrix& lower)
{
    return static_cast<double>(12 * lower.entries() + 4 * lower.ptr.size() + 16 * static_cast<size_t>(lower.rows));
}

void run(const Places& places, Report& report)
{
    const Problem p = read_problem(places.data + "/bcsstk15.mtx");
    const int n = p.whole.rows, most = 10 * n;
    const IncompleteCholesky cholesky(p.lower);
    const GaussSeidel gauss_seidel(p.lower);
    std::vector<Method> methods = {{"no preconditioner", "#0072b2", '.', {}},
                                   {"symmetric Gauss-Seidel", "#e69f00", 'o', {}},
                                   {"incomplete Cholesky", "#d55e00", '#', {}}};
    methods[0].solution = conjugate_gradients(p.lower, p.load, None(), tolerance, most);
    methods[1].solution = conjugate_gradients(p.lower, p.load, gauss_seidel, tolerance, most);
    methods[2].solution = conjugate_gradients(p.lower, p.load, cholesky, tolerance, most);

    verify_product(p, report);
    verify_solves("the triangle of A", p.lower, p.load, report);
    verify_solves("G", cholesky.factor(), p.load, report);
    verify_factor(p, cholesky, report);
    verify(p, methods, report);

    report.line(
        fmt::format("  {} unknowns, {} entries, of which {} are stored", n, p.whole.entries(), p.lower.entries()));
    report.line(fmt::format("  {:<24}{:>11}{:>16}{:>16}{:>11}", "preconditioner", "iterations", "|b - A x|/|b|",
                            "energy of error", "seconds"));
    for (const Method& m : methods)
        report.line(fmt::format("  {:<24}{:>11}{:>16.2e}{:>16.2e}{:>11.3f}", m.name, m.solution.iterations(),
                                true_residual(p, m.solution.x), energy_error(p, m.solution.x), m.solution.seconds));
    report.line(fmt::format("  incomplete Cholesky of A + {:g} D, the least shift tried that has positive pivots",
                            cholesky.shift()));
    compare_handle(p, methods[1].solution, most, report);
    Vector y;
    const double product = seconds_of([&] { multiply(p.lower, p.load, y); }),
                 forward = seconds_of([&] { solve(cholesky.factor(), false, p.load, y); }),
                 backward = seconds_of([&] { solve(cholesky.factor(), true, p.load, y); });
    report.line(fmt::format("  symmetric product {:.2f} GB/s, solve with G {:.2f} GB/s, with G' {:.2f} GB/s",
                            bytes(p.lower) / product / 1e9, bytes(cholesky.factor()) / forward / 1e9,
                            bytes(cholesky.factor()) / backward / 1e9));
    for (const std::string& line : plot_in_text(methods)) report.line(line);

    const Solution& best = methods.back().solution;
    const auto entries = static_cast<double>(p.lower.entries());
    report.timing(best.seconds, best.iterations() * (4 * entries - 2 * n + 4 * entries + 12.0 * n));
    if (!report.all_hold()) return;
    const std::string picture = places.out + "/ork-demo-structure.svg";
    draw_structure(picture, p.whole, methods);
    report.picture(picture);
}

} // namespace

const Demo structure = {"structure", "bcsstk15.mtx, the stiffness of an offshore platform's module: 3948 unknowns",
                        "displacements under a load by conjugate gradients, with and without preconditioners", run};

} // namespace ork::tool

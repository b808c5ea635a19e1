// SPDX-License-Identifier: MIT
// A dense linear system: digits recognised by interpolation between known images.
//
// For each digit d the function f_d(x) = c_d + sum of w_id |x - x_i| takes the value 1 at the known images of d and 0
// at the others, with weights that sum to 0 (which makes it unique: Micchelli, "Interpolation of scattered data",
// 1986). The weights and c solve a symmetric system with the distances in it, whose diagonal is zero, so that nothing
// goes without pivoting. An unknown image shows the digit whose function is largest.
#include <chrono>
#include <cmath>
#include <fmt/format.h>

#include "demos/csv.h"
#include "demos/demo.h"
#include "demos/lu.h"
#include "ork/blas.h"
#include "peers/measure.h"

namespace ork::tool {
namespace {

constexpr int pixels = 64, digits = 10, most_known = 999; // with the constant a system of order 1000

size_t at(int row, int column, int rows)
{
    return static_cast<size_t>(column) * static_cast<size_t>(rows) + static_cast<size_t>(row);
}

struct Images {
    int count;
    std::vector<double> pixel; // 64 x count
    std::vector<int> digit;
};

struct System {
    int n;                    // known images and the constant
    std::vector<double> a, b; // n x n; n x 10
    int exchanges = 0;        // of rows
    std::vector<double> lu, x, values;
    std::vector<int> pivot, recognised;
    double seconds = 0;
};

// Images first .. last - 1 of the table.
Images take(const std::vector<std::vector<int>>& rows, size_t first, size_t last)
{
    Images images{static_cast<int>(last - first), {}, {}};
    for (size_t i = first; i < last; ++i) {
        images.pixel.insert(images.pixel.end(), rows[i].begin(), rows[i].end() - 1);
        images.digit.push_back(rows[i].back());
    }
    return images;
}

// |x - y| for all x of one set (rows) and y of another, in the first rows and columns of a matrix. Squares and products
// of grey levels are small integers, so all but the root is exact.
void distances(const Images& from, const Images& to, std::vector<double>& matrix, int rows)
{
    const double minus_two = -2, zero = 0;
    const int k = pixels, one = 1;
    dgemm_("T", "N", &from.count, &to.count, &k, &minus_two, from.pixel.data(), &k, to.pixel.data(), &k, &zero,
           matrix.data(), &rows);
    const auto squares = [&](const Images& images) {
        std::vector<double> s;
        for (int i = 0; i < images.count; ++i) {
            const double* x = &images.pixel[at(0, i, pixels)];
            s.push_back(ddot_(&k, x, &one, x, &one));
        }
        return s;
    };
    const auto rows2 = squares(from), columns2 = squares(to);
    for (int j = 0; j < to.count; ++j)
        for (int i = 0; i < from.count; ++i) {
            double& d = matrix[at(i, j, rows)];
            d = std::sqrt(d + rows2[static_cast<size_t>(i)] + columns2[static_cast<size_t>(j)]);
        }
}

System interpolate(const Images& known, const Images& unknown)
{
    System s;
    const int n = s.n = known.count + 1;
    s.a.assign(static_cast<size_t>(n) * static_cast<size_t>(n), 0);
    s.b.assign(static_cast<size_t>(n) * digits, 0);
    distances(known, known, s.a, n);
    for (int i = 0; i < known.count; ++i) {
        s.a[at(i, n - 1, n)] = s.a[at(n - 1, i, n)] = 1;
        s.b[at(i, known.digit[static_cast<size_t>(i)], n)] = 1;
    }

    const auto start = std::chrono::steady_clock::now();
    Factors f = factor(n, s.a);
    s.x = solve(f, digits, s.b);
    s.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    s.lu = std::move(f.lu);
    s.pivot = std::move(f.pivot);
    for (int i = 0; i < n; ++i) s.exchanges += s.pivot[static_cast<size_t>(i)] != i;

    std::vector<double> d(static_cast<size_t>(unknown.count) * static_cast<size_t>(n), 1); // last column: the constant
    distances(unknown, known, d, unknown.count);
    s.values.resize(static_cast<size_t>(unknown.count) * digits);
    const double one = 1, zero = 0;
    const int columns = digits;
    dgemm_("N", "N", &unknown.count, &columns, &n, &one, d.data(), &unknown.count, s.x.data(), &n, &zero,
           s.values.data(), &unknown.count);
    for (int i = 0; i < unknown.count; ++i) {
        int best = 0;
        for (int c = 1; c < digits; ++c)
            if (s.values[at(i, c, unknown.count)] > s.values[at(i, best, unknown.count)]) best = c;
        s.recognised.push_back(best);
    }
    return s;
}

long double distance(const Images& from, int i, const Images& to, int j)
{
    long long sum = 0;
    for (int k = 0; k < pixels; ++k) {
        const auto d = static_cast<long long>(from.pixel[at(k, i, pixels)] - to.pixel[at(k, j, pixels)]);
        sum += d * d;
    }
    return std::sqrt(static_cast<long double>(sum));
}

// Largest |b - A x| / (|A| |x| n eps) of any right-hand side, in norms of largest elements' sums.
double scaled_residual(const System& s)
{
    long double norm = 0;
    for (int i = 0; i < s.n; ++i) {
        long double row = 0;
        for (int j = 0; j < s.n; ++j) row += std::fabs(s.a[at(i, j, s.n)]);
        norm = std::max(norm, row);
    }
    double worst = 0;
    for (int c = 0; c < digits; ++c) {
        double residual = 0, size = 0;
        for (int i = 0; i < s.n; ++i) {
            long double r = s.b[at(i, c, s.n)];
            for (int j = 0; j < s.n; ++j) r -= static_cast<long double>(s.a[at(i, j, s.n)]) * s.x[at(j, c, s.n)];
            keep_largest(residual, std::fabs(r));
            keep_largest(size, std::fabs(s.x[at(i, c, s.n)]));
        }
        if (size > 0 || !(residual <= 0)) keep_largest(worst, residual / (norm * size * s.n * 0x1p-52L));
    }
    return worst;
}

// Largest |P A z - L U z| / (|A| n eps) for a vector z of signs, which no fault in the factors survives.
double scaled_error_of_factors(const System& s)
{
    const auto n = static_cast<size_t>(s.n);
    std::vector<long double> z(n), uz(n), az(n);
    unsigned bits = 1;
    for (long double& e : z) {
        bits = bits * 1664525 + 1013904223;
        e = (bits >> 31) != 0 ? 1 : -1;
    }
    long double norm = 0;
    for (int i = 0; i < s.n; ++i) {
        long double row = 0;
        for (int j = 0; j < s.n; ++j) {
            const auto to = static_cast<size_t>(i), from = static_cast<size_t>(j);
            az[to] += s.a[at(i, j, s.n)] * z[from];
            row += std::fabs(s.a[at(i, j, s.n)]);
            if (j >= i) uz[to] += s.lu[at(i, j, s.n)] * z[from];
        }
        norm = std::max(norm, row);
    }
    for (size_t i = 0; i < n; ++i) std::swap(az[i], az[static_cast<size_t>(s.pivot[i])]);
    double worst = 0;
    for (int i = 0; i < s.n; ++i) {
        long double luz = uz[static_cast<size_t>(i)];
        for (int j = 0; j < i; ++j) luz += s.lu[at(i, j, s.n)] * uz[static_cast<size_t>(j)];
        keep_largest(worst, std::fabs(az[static_cast<size_t>(i)] - luz) / (norm * s.n * 0x1p-52L));
    }
    return worst;
}

void verify(const Images& known, const Images& unknown, const System& s, Report& report)
{
    double matrix = 0, multiplier = 0, value = 0, wrong = 0;
    for (int j = 0; j < known.count; ++j)
        for (int i = 0; i < known.count; ++i) {
            const long double want = distance(known, i, known, j);
            keep_largest(matrix, std::fabs(s.a[at(i, j, s.n)] - want));
            if (i > j) keep_largest(multiplier, std::fabs(s.lu[at(i, j, s.n)]));
        }
    for (int i = 0; i < unknown.count; ++i) {
        long double largest = 0;
        int best = -1;
        for (int c = 0; c < digits; ++c) {
            long double f = s.x[at(s.n - 1, c, s.n)], terms = std::fabs(f);
            for (int j = 0; j < known.count; ++j) {
                const long double term = distance(unknown, i, known, j) * s.x[at(j, c, s.n)];
                f += term;
                terms += std::fabs(term);
            }
            keep_largest(value, std::fabs(f - s.values[at(i, c, unknown.count)]) / (terms * 0x1p-52L));
            if (best < 0 || f > largest) best = c, largest = f;
        }
        wrong += best != s.recognised[static_cast<size_t>(i)];
    }
    report.check("distances against sums of integers", matrix, 1e-13);
    report.check("multipliers of the elimination, |L|", multiplier, 1);
    report.check("P A z against L (U z), over |A| n eps", scaled_error_of_factors(s), 1);
    report.check("scaled residual |b - A x| / (|A| |x| n eps)", scaled_residual(s), 1);
    report.check("values at unknown images against plain loops, in roundings of the largest sum", value, s.n);
    report.check("digits recognised otherwise by plain loops", wrong, 0);
}

void run(const Places& places, Report& report)
{
    const auto rows = read_csv(places.data + "/digits.csv", {pixels + 1, 0, 16, 0, digits - 1});
    if (rows.size() < 4) throw std::runtime_error(places.data + "/digits.csv: too few images to learn from");
    const size_t learn = std::min<size_t>(most_known, rows.size() * 2 / 3);
    const Images known = take(rows, 0, learn), unknown = take(rows, learn, rows.size());
    System s;
    std::vector<double> seconds; // of several runs, the median of which is shown
    for (double all = 0; seconds.size() < 5 || (all < 0.1 && seconds.size() < 51); all += seconds.back()) {
        s = interpolate(known, unknown);
        seconds.push_back(s.seconds);
    }
    verify(known, unknown, s, report);
    int right = 0;
    for (int i = 0; i < unknown.count; ++i)
        right += s.recognised[static_cast<size_t>(i)] == unknown.digit[static_cast<size_t>(i)];
    report.line(fmt::format("  system of order {}, {} right-hand sides, {} rows exchanged", s.n, digits, s.exchanges));
    report.line(fmt::format("  scaled residual |b - A x| / (|A| |x| n eps) = {:.2e}", scaled_residual(s)));
    report.line(fmt::format("  {} of {} digits recognised that were not learnt ({:.1f} %)", right, unknown.count,
                            100.0 * right / unknown.count));
    const double n = s.n;
    report.timing(peers::median(seconds), 2 * n * n * n / 3 + 2 * n * n * digits);
}

} // namespace

const Demo linear_system = {
    "system", "digits.csv, the first 999 of 1797 handwritten digits known, the others not",
    "a dense linear system of order 1000 by LU with partial pivoting: interpolation between images", run};

} // namespace ork::tool

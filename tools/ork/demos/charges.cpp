// SPDX-License-Identifier: MIT
// The potential of point charges in a box with grounded walls, by Poisson's equation with lengths in boxes and charges
// in units of epsilon 0:
//     -Laplace(u) = rho, u = 0 on the walls.
// A charge is the density Q / h^3 in the cell of one grid point. Proved by the equations, by symmetry, and by Gauss's
// law: the field that leaves through the walls is the charge inside.
#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <stdexcept>
#include <utility>
#include <vector>

#include "demos/demo.h"
#include "ork/pde.h"
#include "peers/measure.h"
#include "svg.h"

namespace ork::tool {
namespace {

constexpr int n = 64; // intervals along a side of length 1
constexpr double h = 1.0 / n;

struct Charge {
    int x, y, z; // grid point
    double q;
};
// Mirrored at y = 1/2 and at the plane z = 1/2 that is drawn.
const std::vector<Charge> charges = {{16, 32, 32, 2}, {44, 18, 32, -1}, {44, 46, 32, -1}, {52, 32, 32, 0.5}};

size_t at(int i, int j, int k) { return static_cast<size_t>((k * (n + 1) + j) * (n + 1) + i); }

std::vector<double> density()
{
    std::vector<double> rho(static_cast<size_t>((n + 1) * (n + 1) * (n + 1)));
    for (const Charge& c : charges) rho[at(c.x, c.y, c.z)] += c.q / (h * h * h);
    return rho;
}

std::vector<double> potential(std::vector<double> f, double& seconds)
{
    const std::vector<double> grounded(static_cast<size_t>((n + 1) * (n + 1)));
    std::vector<double> rpar(ORK_HELMHOLTZ_3D_REALS(n, n));
    std::vector<int64_t> ipar(ORK_PDE_INTEGERS);
    ork_dft_descriptor *x = nullptr, *y = nullptr;
    const double* o = grounded.data();
    int64_t status = ork_d_init_helmholtz_3d(0, 1, 0, 1, 0, 1, n, n, n, "DDDDDD", 0, ipar.data(), rpar.data());
    if (status == ORK_PDE_OK) status = ork_d_commit_helmholtz_3d(&x, &y, ipar.data(), rpar.data());
    const double start = peers::now(peers::Clock::wall);
    if (status == ORK_PDE_OK) status = ork_d_helmholtz_3d(f.data(), o, o, o, o, o, o, &x, &y, ipar.data(), rpar.data());
    seconds = peers::now(peers::Clock::wall) - start;
    ork_free_helmholtz_3d(&x, &y, ipar.data());
    if (status != ORK_PDE_OK) throw std::runtime_error(fmt::format("the solver refused with status {}", status));
    return f;
}

void check(const std::vector<double>& u, const std::vector<double>& rho, Report& report)
{
    double residual = 0, largest = 0, mirrored = 0, charge = 0;
    long double flux = 0;
    for (int k = 0; k <= n; ++k)
        for (int j = 0; j <= n; ++j)
            for (int i = 0; i <= n; ++i) {
                const double here = u[at(i, j, k)];
                keep_largest(largest, std::fabs(here));
                keep_largest(mirrored, std::fabs(here - u[at(i, n - j, k)]));
                keep_largest(mirrored, std::fabs(here - u[at(i, j, n - k)]));
                if (std::min({i, j, k}) < 1 || std::max({i, j, k}) >= n) continue;
                const double sum = u[at(i - 1, j, k)] + u[at(i + 1, j, k)] + u[at(i, j - 1, k)] + u[at(i, j + 1, k)] +
                                   u[at(i, j, k - 1)] + u[at(i, j, k + 1)];
                keep_largest(residual, std::fabs((6 * here - sum) / (h * h) - rho[at(i, j, k)]));
            }
    // Through a face of h^2 the field is the step of the potential over h.
    for (int a = 1; a < n; ++a)
        for (int b = 1; b < n; ++b)
            for (const auto& [inside, wall] : {std::pair{at(1, a, b), at(0, a, b)},
                                               {at(n - 1, a, b), at(n, a, b)},
                                               {at(a, 1, b), at(a, 0, b)},
                                               {at(a, n - 1, b), at(a, n, b)},
                                               {at(a, b, 1), at(a, b, 0)},
                                               {at(a, b, n - 1), at(a, b, n)}})
                flux += (u[inside] - u[wall]) * h;
    for (const Charge& c : charges) charge += c.q;
    report.check("residual of the equations over the largest term", residual / (6 * largest / (h * h)), 1e-14);
    report.check("potential against its mirror images, over the largest", mirrored / largest, 1e-13);
    report.check("flux through the walls against the charge inside", std::fabs(static_cast<double>(flux) - charge),
                 1e-11);
    report.line(
        fmt::format("  charge inside {:.6f}, flux through the walls {:.6f}", charge, static_cast<double>(flux)));
}

// Where the contour of a level crosses a cell, by linear interpolation along its edges.
void draw_contour(Svg& svg, const std::vector<double>& slice, double level, double left, double top, double size,
                  const std::string& colour)
{
    const auto value = [&](int i, int j) { return slice[static_cast<size_t>(j * (n + 1) + i)]; };
    for (int j = 0; j < n; ++j)
        for (int i = 0; i < n; ++i) {
            std::vector<std::pair<double, double>> points;
            const int corner[5][2] = {{i, j}, {i + 1, j}, {i + 1, j + 1}, {i, j + 1}, {i, j}};
            for (int e = 0; e < 4; ++e) {
                const double a = value(corner[e][0], corner[e][1]), b = value(corner[e + 1][0], corner[e + 1][1]);
                if ((a < level) == (b < level)) continue;
                const double t = (level - a) / (b - a);
                points.emplace_back(left + size * h * (corner[e][0] + t * (corner[e + 1][0] - corner[e][0])),
                                    top + size * h * (corner[e][1] + t * (corner[e + 1][1] - corner[e][1])));
            }
            for (size_t p = 0; p + 1 < points.size(); p += 2)
                svg.line(points[p].first, points[p].second, points[p + 1].first, points[p + 1].second, colour, 0.8);
        }
}

// Along the field from a positive charge until a wall or a charge; in boxes.
std::vector<std::pair<double, double>> field_line(const std::vector<double>& slice, double x, double y)
{
    const auto value = [&](double px, double py) {
        const int i = std::clamp(static_cast<int>(px * n), 0, n - 1),
                  j = std::clamp(static_cast<int>(py * n), 0, n - 1);
        const double s = px * n - i, t = py * n - j;
        const auto u = [&](int a, int b) { return slice[static_cast<size_t>((j + b) * (n + 1) + i + a)]; };
        return (1 - t) * ((1 - s) * u(0, 0) + s * u(1, 0)) + t * ((1 - s) * u(0, 1) + s * u(1, 1));
    };
    std::vector<std::pair<double, double>> points = {{x, y}};
    for (int step = 0; step < 600; ++step) {
        const double ex = value(x - h, y) - value(x + h, y), ey = value(x, y - h) - value(x, y + h);
        const double length = std::hypot(ex, ey);
        if (!(length > 1e-9)) break;
        x += h / 4 * ex / length, y += h / 4 * ey / length;
        points.emplace_back(x, y);
        if (std::min(x, y) <= h || std::max(x, y) >= 1 - h) break;
        const bool arrived = std::any_of(charges.begin(), charges.end(), [&](const Charge& c) {
            return c.q < 0 && std::hypot(x - c.x * h, y - c.y * h) < 1.5 * h;
        });
        if (arrived) break;
    }
    return points;
}

void draw(const std::string& file, const std::vector<double>& u)
{
    constexpr double margin = 40, size = 640;
    Svg svg(size + 2 * margin, size + 2 * margin + 40);
    svg.text(margin, 34, "Point charges in a grounded box", 20, Svg::Anchor::start, "#111", true);
    svg.text(margin, 56, "Potential in the middle plane: contours at powers of 1.6, field lines in grey", 13,
             Svg::Anchor::start, "#555");
    const double left = margin, top = margin + 32;
    const std::vector<double> slice(u.begin() + static_cast<std::ptrdiff_t>(at(0, 0, n / 2)),
                                    u.begin() + static_cast<std::ptrdiff_t>(at(0, 0, n / 2 + 1)));
    for (int j = 0; j < n; ++j)
        for (int i = 0; i < n; ++i) {
            const double level = slice[static_cast<size_t>(j * (n + 1) + i)];
            svg.rect(left + size * i * h, top + size * j * h, size * h + 0.3, size * h + 0.3,
                     diverging(0.8 * level / (0.6 + std::fabs(level))));
        }
    for (const Charge& c : charges)
        for (int ray = 0; c.q > 0 && ray < 12 * c.q; ++ray) {
            const double angle = 2 * M_PI * (ray + 0.5) / (12 * c.q);
            auto points = field_line(slice, c.x * h + 2 * h * std::cos(angle), c.y * h + 2 * h * std::sin(angle));
            for (auto& [x, y] : points) x = left + size * x, y = top + size * y;
            svg.polyline(points, "#666", 0.9);
        }
    for (double level = 0.02; level < 20; level *= 1.6) {
        draw_contour(svg, slice, level, left, top, size, "#a33");
        draw_contour(svg, slice, -level, left, top, size, "#33a");
    }
    for (const Charge& c : charges)
        svg.circle(left + size * c.x * h, top + size * c.y * h, 4 + 3 * std::fabs(c.q), c.q > 0 ? "#b00" : "#00b");
    svg.frame(left, top, size, size, "#333");
    svg.save(file);
}

void run(const Places& places, Report& report)
{
    const std::vector<double> rho = density();
    double seconds = 0;
    const std::vector<double> u = potential(rho, seconds);
    report.line(fmt::format("  {} charges, {} x {} x {} unknown points in {:.2f} ms", charges.size(), n - 1, n - 1,
                            n - 1, seconds * 1e3));
    check(u, rho, report);
    if (!report.all_hold()) return;
    const std::string file = places.out + "/ork-demo-charges.svg";
    draw(file, u);
    report.picture(file);
}

} // namespace

const Demo charges_in_a_box = {"charges", "four point charges of its own",
                               "the potential and the field of point charges in a box with grounded walls", run};

} // namespace ork::tool

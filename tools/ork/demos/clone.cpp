// SPDX-License-Identifier: MIT
// Seamless cloning (Perez, Gangnet and Blake, "Poisson image editing", SIGGRAPH 2003). Inside a rectangle the picture
// takes over what differs from pixel to pixel in another part of it, s, and on the border it keeps its own values t:
//     -Laplace(u) = -Laplace(s) inside, u = t on the border.
// u - s is harmonic: it spreads what t and s differ by over the rectangle, so no step is left at the border.
#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <stdexcept>
#include <utility>
#include <vector>

#include "demos/demo.h"
#include "demos/panels.h"
#include "ork/pde.h"
#include "peers/measure.h"

namespace ork::tool {
namespace {

constexpr int side = 512;                                                    // of the photograph
constexpr int source_x = 404, source_y = 222, target_x = 145, target_y = 50; // a head, and a fence before the sky
constexpr int nx = 46, ny = 40;                                              // pixels 0 .. nx, 0 .. ny

using Patch = std::vector<double>; // grey levels, row by row

size_t at(int i, int j) { return static_cast<size_t>(j * (nx + 1) + i); }
bool on_border(int i, int j) { return i == 0 || i == nx || j == 0 || j == ny; }

Patch cut(const Picture& picture, int x, int y)
{
    Patch patch;
    for (int j = 0; j <= ny; ++j)
        for (int i = 0; i <= nx; ++i) patch.push_back(picture.pixels[static_cast<size_t>((y + j) * side + x + i)]);
    return patch;
}

Picture with(Picture picture, const Patch& patch)
{
    for (int j = 0; j <= ny; ++j)
        for (int i = 0; i <= nx; ++i)
            picture.pixels[static_cast<size_t>((target_y + j) * side + target_x + i)] =
                static_cast<uint8_t>(std::lround(std::clamp(patch[at(i, j)], 0.0, 255.0)));
    return picture;
}

// Of the five points, steps of one pixel.
double minus_laplace(const Patch& u, int i, int j)
{
    return 4 * u[at(i, j)] - u[at(i - 1, j)] - u[at(i + 1, j)] - u[at(i, j - 1)] - u[at(i, j + 1)];
}

// u from the source's differences inside and the target's values on the border.
Patch clone_of(const Patch& source, const Patch& target, double& seconds)
{
    Patch f(source.size()), rpar(ORK_HELMHOLTZ_2D_REALS(nx, ny));
    std::vector<int64_t> ipar(ORK_PDE_INTEGERS);
    std::vector<double> left, right, top, bottom;
    for (int j = 0; j <= ny; ++j) left.push_back(target[at(0, j)]), right.push_back(target[at(nx, j)]);
    for (int i = 0; i <= nx; ++i) top.push_back(target[at(i, 0)]), bottom.push_back(target[at(i, ny)]);
    for (int j = 1; j < ny; ++j)
        for (int i = 1; i < nx; ++i) f[at(i, j)] = minus_laplace(source, i, j);
    ork_dft_descriptor* handle = nullptr;
    int64_t status = ork_d_init_helmholtz_2d(0, nx, 0, ny, nx, ny, "DDDD", 0, ipar.data(), rpar.data());
    if (status == ORK_PDE_OK) status = ork_d_commit_helmholtz_2d(&handle, ipar.data(), rpar.data());
    const double start = peers::now(peers::Clock::wall);
    if (status == ORK_PDE_OK)
        status = ork_d_helmholtz_2d(f.data(), left.data(), right.data(), top.data(), bottom.data(), &handle,
                                    ipar.data(), rpar.data());
    seconds = peers::now(peers::Clock::wall) - start;
    ork_free_helmholtz_2d(&handle, ipar.data());
    if (status != ORK_PDE_OK) throw std::runtime_error(fmt::format("the solver refused with status {}", status));
    return f;
}

// Mean over the border of the step to the next pixel inside, beyond the one that the source has there.
double seam(const Patch& u, const Patch& source, const Patch& target)
{
    double sum = 0;
    int count = 0;
    const auto add = [&](int i, int j, int inside_i, int inside_j) {
        const double step = u[at(inside_i, inside_j)] - target[at(i, j)];
        sum += std::fabs(step - (source[at(inside_i, inside_j)] - source[at(i, j)])), ++count;
    };
    for (int i = 1; i < nx; ++i) add(i, 0, i, 1), add(i, ny, i, ny - 1);
    for (int j = 1; j < ny; ++j) add(0, j, 1, j), add(nx, j, nx - 1, j);
    return sum / count;
}

void run(const Places& places, Report& report)
{
    const Picture original = read_pgm(places.data + "/ascent.pgm");
    if (original.width != side || original.height != side)
        throw std::runtime_error(
            fmt::format("ascent.pgm: {} x {} pixels instead of {} x {}", original.width, original.height, side, side));
    const Patch source = cut(original, source_x, source_y), target = cut(original, target_x, target_y);
    double seconds = 0;
    const Patch clone = clone_of(source, target, seconds);

    double residual = 0, border = 0;
    for (int j = 0; j <= ny; ++j)
        for (int i = 0; i <= nx; ++i)
            if (on_border(i, j))
                keep_largest(border, std::fabs(clone[at(i, j)] - target[at(i, j)]));
            else
                keep_largest(residual, std::fabs(minus_laplace(clone, i, j) - minus_laplace(source, i, j)));
    const double step = seam(clone, source, target), pasted = seam(source, source, target);
    report.check("residual of the equations, grey levels", residual, 1e-10);
    report.check("border changed by, grey levels", border, 0);
    report.check("step at the border over that of plain pasting", step / pasted, 0.25);
    report.line(
        fmt::format("  {} x {} pixels of a head cloned behind a fence in {:.2f} ms", nx - 1, ny - 1, seconds * 1e3));
    report.line(fmt::format("  step at the border {:.1f} grey levels, by plain pasting {:.1f}", step, pasted));
    if (!report.all_hold()) return;

    const Picture plain = with(original, source), seamless = with(original, clone);
    for (const auto& [name, picture] : {std::pair{"pasted", &plain}, {"cloned", &seamless}}) {
        const std::string file = fmt::format("{}/ork-demo-clone-{}.pgm", places.out, name);
        write_pgm(file, *picture);
        report.picture(file);
    }
    const std::string file = places.out + "/ork-demo-clone.svg";
    draw_panels(file, {{"Original", &original}, {"Pasted", &plain}, {"Cloned", &seamless}}, 400);
    report.picture(file);
}

} // namespace

const Demo clone = {"clone", "ascent.pgm, a photograph of 512 x 512 pixels",
                    "a part of the photograph cloned into another part without a seam", run};

} // namespace ork::tool

// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cmath>
#include <fmt/format.h>

#include "demos/structure.h"
#include "png.h"
#include "svg.h"

namespace ork::tool {
namespace {

using Anchor = Svg::Anchor;

constexpr double margin = 40, side = 420, gap = 90, plot_width = 620, top = 84;
constexpr double plot_left = margin + side + gap;
constexpr const char* quiet = "#667";

int longest(const std::vector<Method>& methods)
{
    int most = 10;
    for (const Method& m : methods) most = std::max(most, m.solution.iterations());
    return most;
}

// Decades from `low` to `high` that hold all residuals.
struct Decades {
    int low = 0, high = 0;
    explicit Decades(const std::vector<Method>& methods)
    {
        for (const Method& m : methods)
            for (const double residual : m.solution.history) {
                if (!(residual > 0)) continue;
                low = std::min(low, static_cast<int>(std::floor(std::log10(residual))));
                high = std::max(high, static_cast<int>(std::ceil(std::log10(residual))));
            }
    }
    double height_of(double residual) const // 0 lowest, 1 highest
    {
        return (std::log10(std::max(residual, std::pow(10, low))) - low) / (high - low);
    }
};

// How much of each pixel's square of the matrix holds entries.
std::string portrait(const peers::CsrMatrix& a, int pixels)
{
    std::vector<double> count(static_cast<size_t>(pixels) * static_cast<size_t>(pixels), 0);
    const auto pixel = [&](int number) { return static_cast<size_t>(static_cast<int64_t>(number) * pixels / a.rows); };
    for (int i = 0; i < a.rows; ++i)
        for (auto k = static_cast<size_t>(a.ptr[static_cast<size_t>(i)]);
             k < static_cast<size_t>(a.ptr[static_cast<size_t>(i) + 1]); ++k)
            ++count[pixel(i) * static_cast<size_t>(pixels) + pixel(a.col[k])];
    const double full = *std::max_element(count.begin(), count.end());
    std::vector<uint8_t> grey;
    for (const double c : count) grey.push_back(static_cast<uint8_t>(c == 0 ? 255 : 170 - 170 * std::sqrt(c / full)));
    return data_uri(png(pixels, pixels, grey));
}

void draw_histories(Svg& svg, const std::vector<Method>& methods)
{
    const Decades decades(methods);
    const double most = std::log10(longest(methods));
    const auto x = [&](double iteration) {
        return plot_left + plot_width * std::log10(std::max(iteration, 1.0)) / most;
    };
    const auto y = [&](double residual) { return top + side * (1 - decades.height_of(residual)); };
    svg.text(plot_left, 40, "Residuals of conjugate gradients", 16, Anchor::start, "#111", true);
    svg.text(plot_left, 59, "|r| / |b| before every iteration, both scales logarithmic", 12, Anchor::start, quiet);
    for (int decade = decades.low; decade <= decades.high; ++decade) {
        const double at = y(std::pow(10, decade));
        svg.line(plot_left, at, plot_left + plot_width, at, "#e6e6ea");
        if ((decade - decades.low) % 2 == 0)
            svg.text(plot_left - 8, at + 4, fmt::format("1e{}", decade), 11, Anchor::end, quiet);
    }
    for (double tick = 1; tick <= longest(methods); tick *= 10) {
        svg.line(x(tick), top + side, x(tick), top + side + 5, "#889");
        svg.text(x(tick), top + side + 18, fmt::format("{:g}", tick), 11, Anchor::middle, quiet);
    }
    svg.text(plot_left + plot_width / 2, top + side + 36, "iterations", 12, Anchor::middle, quiet);
    svg.frame(plot_left, top, plot_width, side, "#c8c8d0");
    double legend = top + side - 16 * static_cast<double>(methods.size());
    for (const Method& m : methods) {
        // no more points than pixels: of those that fall on one, the highest
        std::vector<std::pair<double, double>> points;
        for (size_t i = 0; i < m.solution.history.size(); ++i) {
            const double px = x(static_cast<double>(i)), py = y(m.solution.history[i]);
            if (!points.empty() && px - points.back().first < 0.5)
                points.back().second = std::min(points.back().second, py);
            else
                points.emplace_back(px, py);
        }
        points.emplace_back(x(m.solution.iterations()), y(m.solution.history.back()));
        svg.polyline(points, m.colour, 1.8);
        svg.line(plot_left + 14, legend - 4, plot_left + 38, legend - 4, m.colour, 3);
        svg.text(plot_left + 46, legend, fmt::format("{}: {} iterations", m.name, m.solution.iterations()), 12);
        legend += 16;
    }
}

} // namespace

std::vector<std::string> plot_in_text(const std::vector<Method>& methods)
{
    constexpr int width = 64, height = 14;
    const Decades decades(methods);
    const double most = std::log10(longest(methods));
    std::vector<std::string> rows(height, std::string(width, ' '));
    for (const Method& m : methods)
        for (size_t i = 0; i < m.solution.history.size(); ++i) {
            const double across = std::log10(std::max(static_cast<double>(i), 1.0)) / most;
            const double up = decades.height_of(m.solution.history[i]);
            rows[static_cast<size_t>(std::lround((height - 1) * (1 - up)))]
                [static_cast<size_t>(std::lround((width - 1) * across))] = m.mark;
        }
    std::vector<std::string> lines;
    std::string legend = "  residual over iterations, both logarithmic:";
    for (const Method& m : methods) legend += fmt::format("  {} {}", m.mark, m.name);
    lines.push_back(legend);
    for (int row = 0; row < height; ++row) {
        const std::string label = row == 0            ? fmt::format("1e{}", decades.high)
                                  : row == height - 1 ? fmt::format("1e{}", decades.low)
                                                      : "";
        lines.push_back(fmt::format("  {:>6} |{}", label, rows[static_cast<size_t>(row)]));
    }
    lines.push_back(fmt::format("  {:>6} +{}", "", std::string(width, '-')));
    lines.push_back(fmt::format("  {:>6}  {:<10}{:>{}}", "", 1, longest(methods), width - 10));
    return lines;
}

void draw_structure(const std::string& file, const peers::CsrMatrix& matrix, const std::vector<Method>& methods)
{
    Svg svg(plot_left + plot_width + margin, top + side + 56);
    svg.text(margin, 40, "Stiffness matrix", 16, Anchor::start, "#111", true);
    svg.text(margin, 59, fmt::format("{0} x {0}, {1} entries; the darker, the denser", matrix.rows, matrix.entries()),
             12, Anchor::start, quiet);
    svg.image(margin, top, side, side, portrait(matrix, static_cast<int>(side)));
    svg.frame(margin, top, side, side, "#c8c8d0");
    draw_histories(svg, methods);
    svg.save(file);
}

} // namespace ork::tool

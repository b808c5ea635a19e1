// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <numeric>

#include "demos/pca.h"
#include "svg.h"

namespace ork::tool {
namespace {

using Anchor = Svg::Anchor;

constexpr double margin = 40, gap = 56, left_width = 620, right_width = 520;
constexpr double right = margin + left_width + gap;
constexpr const char* quiet = "#667";

void heading(Svg& svg, double x, double y, const std::string& title, const std::string& note)
{
    svg.text(x, y, title, 16, Anchor::start, "#111", true);
    svg.text(x, y + 19, note, 12, Anchor::start, quiet);
}

void draw_components(Svg& svg, double x, double y, const Principal& r, double total)
{
    heading(svg, x, y, "Principal components",
            "The twelve directions of greatest variance. Red and blue pixels go opposite ways.");
    constexpr int columns = 6;
    constexpr double size = 86, step_x = (left_width - size) / (columns - 1), step_y = size + 34;
    for (int c = 0; c < 2 * columns; ++c) {
        const double* v = &r.components[static_cast<size_t>(c) * pixels_each];
        double largest = 0;
        for (int i = 0; i < pixels_each; ++i) largest = std::max(largest, std::fabs(v[i]));
        const double tx = x + step_x * (c % columns), ty = y + 36 + step_y * (c / columns);
        draw_tile(svg, tx, ty, size, [&](int i) { return diverging(v[i] / largest); });
        svg.text(tx, ty + size + 15, fmt::format("{}", c + 1), 12, Anchor::start, "#333", true);
        svg.text(tx + size, ty + size + 15, fmt::format("{:.1f} %", 100 * r.variance[static_cast<size_t>(c)] / total),
                 12, Anchor::end, quiet);
    }
}

void draw_scree(Svg& svg, double x, double y, const Principal& r, double total)
{
    heading(svg, x, y, "Variance explained", "Bars: each component. Line: all up to it.");
    constexpr double height = 206;
    constexpr double plot_width = right_width - 40;
    const double top = y + 36, bottom = top + height, x0 = x + 40;
    for (int percent = 0; percent <= 100; percent += 25) {
        const double py = bottom - height * percent / 100;
        svg.line(x0, py, x0 + plot_width, py, percent == 0 ? "#889" : "#e4e4ea");
        svg.text(x0 - 8, py + 4, fmt::format("{} %", percent), 11, Anchor::end, quiet);
    }
    const double step = plot_width / pixels_each;
    std::vector<std::pair<double, double>> curve = {{x0, bottom}};
    double sum = 0;
    for (int c = 0; c < pixels_each; ++c) {
        const double share = r.variance[static_cast<size_t>(c)] / total;
        svg.rect(x0 + step * c + 0.8, bottom - height * share, step - 1.6, height * share, "#56b4e9");
        sum += share;
        curve.emplace_back(x0 + step * (c + 1), bottom - height * sum);
        if ((c + 1) % 8 == 0 || c == 0)
            svg.text(x0 + step * (c + 0.5), bottom + 16, fmt::format("{}", c + 1), 11, Anchor::middle, quiet);
    }
    svg.polyline(curve, "#d55e00", 2.2);
    for (const Reconstruction& kept : r.kept) {
        const auto& [px, py] = curve[static_cast<size_t>(kept.components)];
        svg.circle(px, py, 3.5, "#d55e00");
        const double share = std::accumulate(r.variance.begin(), r.variance.begin() + kept.components, 0.0) / total;
        svg.text(px + 7, py + 14, fmt::format("{}: {:.0f} %", kept.components, 100 * share), 11, Anchor::start,
                 "#a04400");
    }
}

void draw_digits(Svg& svg, double x, double y, const Images& images, const Principal& r)
{
    heading(svg, x, y, "Digits rebuilt from few components",
            "Top row: as scanned. Below: from so many components, with the error of a pixel over all images.");
    constexpr double size = 44, label = 118;
    constexpr double step = (left_width - label - size) / 9;
    const auto row = [&](double ty, const std::string& name, const std::string& note, const auto& value) {
        svg.text(x, ty + size / 2 - 1, name, 12.5, Anchor::start, "#222", true);
        svg.text(x, ty + size / 2 + 14, note, 11, Anchor::start, quiet);
        for (int digit = 0; digit < 10; ++digit) {
            const auto found = std::find(images.digit.begin(), images.digit.end(), digit);
            if (found == images.digit.end()) continue;
            const int image = static_cast<int>(found - images.digit.begin());
            draw_tile(svg, x + label + step * digit, ty, size, [&](int i) { return ink(value(image, i) / 16); });
        }
    };
    double ty = y + 36;
    row(ty, "original", "16 grey levels",
        [&](int image, int i) { return static_cast<double>(images.pixel(image, i)); });
    for (auto kept = r.kept.rbegin(); kept != r.kept.rend(); ++kept) {
        ty += size + 11;
        const auto value = [&](int image, int i) {
            return kept
                ->images[static_cast<size_t>(i) * static_cast<size_t>(images.count) + static_cast<size_t>(image)];
        };
        row(ty, fmt::format("{} components", kept->components), fmt::format("rms error {:.2f}", kept->rms), value);
    }
}

void draw_scatter(Svg& svg, double x, double y, const Images& images, const Principal& r)
{
    heading(svg, x, y, "The images in the plane of the first two components",
            "A point an image, coloured by the digit that it shows.");
    constexpr double plot_width = right_width - 40, height = 296;
    const double x0 = x + 40, top = y + 54, bottom = top + height;
    const size_t n = static_cast<size_t>(images.count);
    const auto [low1, high1] = std::minmax_element(r.scores.begin(), r.scores.begin() + images.count);
    const auto [low2, high2] =
        std::minmax_element(r.scores.begin() + images.count, r.scores.begin() + 2 * images.count);
    const double a = 10 * std::floor(*low1 / 10), b = 10 * std::ceil(*high1 / 10);
    const double c = 10 * std::floor(*low2 / 10), d = 10 * std::ceil(*high2 / 10);
    if (!(b > a) || !(d > c)) return; // fewer than two directions
    const auto px = [&](double v) { return x0 + plot_width * (v - a) / (b - a); };
    const auto py = [&](double v) { return bottom - height * (v - c) / (d - c); };
    for (double v = a; v <= b; v += 10) {
        svg.line(px(v), top, px(v), bottom, v == 0 ? "#b8b8c4" : "#ececf2");
        svg.text(px(v), bottom + 15, fmt::format("{:g}", v), 11, Anchor::middle, quiet);
    }
    for (double v = c; v <= d; v += 10) {
        svg.line(x0, py(v), x0 + plot_width, py(v), v == 0 ? "#b8b8c4" : "#ececf2");
        svg.text(x0 - 8, py(v) + 4, fmt::format("{:g}", v), 11, Anchor::end, quiet);
    }
    for (size_t i = 0; i < n; ++i)
        svg.circle(px(r.scores[i]), py(r.scores[n + i]), 2.4, category_colour(static_cast<size_t>(images.digit[i])),
                   0.72);
    svg.text(x0 + plot_width / 2, bottom + 32, "first component", 11.5, Anchor::middle, quiet);
    svg.text_upwards(x + 4, (top + bottom) / 2, "second component", 11.5);
    for (int digit = 0; digit < 10; ++digit) {
        const double lx = x0 + digit * 32;
        svg.circle(lx + 5, y + 38, 5, category_colour(static_cast<size_t>(digit)));
        svg.text(lx + 14, y + 42, fmt::format("{}", digit), 12, Anchor::start, "#333");
    }
}

} // namespace

void draw_pca(const std::string& file, const Images& images, const Principal& result)
{
    const double total = std::accumulate(result.variance.begin(), result.variance.end(), 0.0);
    constexpr double first_row = 100, second_row = first_row + 316;
    Svg svg(right + right_width + margin, 824);
    svg.text(margin, 44, "What handwritten digits have in common", 24, Anchor::start, "#111", true);
    svg.text(margin, 67,
             fmt::format("Principal component analysis of {} scanned digits, 8 x 8 pixels each", images.count), 13.5,
             Anchor::start, quiet);
    draw_components(svg, margin, first_row, result, total);
    draw_scree(svg, right, first_row, result, total);
    draw_digits(svg, margin, second_row, images, result);
    draw_scatter(svg, right, second_row, images, result);
    svg.save(file);
}

} // namespace ork::tool

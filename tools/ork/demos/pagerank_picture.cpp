// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cmath>
#include <fmt/format.h>

#include "demos/pagerank.h"
#include "svg.h"

namespace ork::tool {
namespace {

using Anchor = Svg::Anchor;

constexpr int typical = 8, odd = 4; // shown of each digit
constexpr double margin = 40, tile = 44, step = tile + 12, row_height = tile + 24, top = 132, label = 26;
constexpr double odd_left = margin + label + typical * step + 34, sheet_right = odd_left + odd * step;
constexpr double plot_left = sheet_right + 84, plot_width = 440, plot_height = 10 * row_height - 24;
constexpr const char* quiet = "#667";

void draw_sheet(Svg& svg, const Images& images, const Ranking& ranking, const std::vector<size_t>& order)
{
    const auto draw = [&](size_t image, double x, double y) {
        draw_tile(svg, x, y, tile,
                  [&](int p) { return ink(images.pixel(static_cast<int>(image), p) / double{darkest}); });
        svg.text(x + tile / 2, y + tile + 13,
                 fmt::format("{:.2f}", ranking.rank[image] * static_cast<double>(images.count)), 10.5, Anchor::middle,
                 quiet);
    };
    svg.text(margin + label, top - 14, "most typical", 13, Anchor::start, "#111", true);
    svg.text(odd_left, top - 14, "least typical", 13, Anchor::start, "#111", true);
    for (int digit = 0; digit < 10; ++digit) {
        std::vector<size_t> mine;
        for (const size_t image : order)
            if (images.digit[image] == digit) mine.push_back(image);
        const double y = top + row_height * digit;
        svg.text(margin, y + tile / 2 + 6, fmt::format("{}", digit), 18, Anchor::start,
                 category_colour(static_cast<size_t>(digit)), true);
        for (size_t i = 0; i < std::min<size_t>(typical, mine.size()); ++i)
            draw(mine[i], margin + label + step * static_cast<double>(i), y);
        for (size_t i = 0; i < std::min<size_t>(odd, mine.size()); ++i)
            draw(mine[mine.size() - 1 - i], odd_left + step * static_cast<double>(i), y);
    }
}

// Of each digit the ranks in descending order.
void draw_curves(Svg& svg, const Images& images, const Ranking& ranking, const std::vector<size_t>& order)
{
    const auto scaled = [&](size_t image) { return ranking.rank[image] * static_cast<double>(images.count); };
    const double low = std::floor(std::log10(scaled(order.back()))),
                 high = std::ceil(std::log10(scaled(order.front())));
    const auto y = [&](double rank) {
        return top + plot_height * (1 - (std::log10(rank) - low) / std::max(1.0, high - low));
    };
    svg.text(plot_left, top - 32, "Ranks of each digit's images in descending order", 13, Anchor::start, "#111", true);
    svg.text(plot_left, top - 14, "times the number of images, so 1 is the mean; logarithmic", 12, Anchor::start,
             quiet);
    for (double decade = low; decade <= high; ++decade)
        for (const int line : {1, 2, 5}) {
            const double rank = line * std::pow(10, decade);
            if (rank > 1.0001 * std::pow(10, high)) continue;
            svg.line(plot_left, y(rank), plot_left + plot_width, y(rank), line == 1 ? "#c8c8d0" : "#e6e6ea");
            svg.text(plot_left - 8, y(rank) + 4, fmt::format("{:g}", rank), 11, Anchor::end, quiet);
        }
    for (int digit = 0; digit < 10; ++digit) {
        std::vector<double> ranks;
        for (const size_t image : order)
            if (images.digit[image] == digit) ranks.push_back(scaled(image));
        std::vector<std::pair<double, double>> points;
        for (size_t i = 0; i < ranks.size(); ++i)
            points.emplace_back(plot_left +
                                    plot_width * (static_cast<double>(i) + 0.5) / static_cast<double>(ranks.size()),
                                y(ranks[i]));
        if (!points.empty()) svg.polyline(points, category_colour(static_cast<size_t>(digit)), 1.8);
        svg.text(plot_left + plot_width - 14 * (10 - digit), top + 18, fmt::format("{}", digit), 13, Anchor::start,
                 category_colour(static_cast<size_t>(digit)), true);
    }
    svg.frame(plot_left, top, plot_width, plot_height, "#c8c8d0");
}

} // namespace

void draw_pagerank(const std::string& file, const Images& images, const Graph& graph, const Ranking& ranking)
{
    const std::vector<size_t> order = order_of(ranking.rank);
    Svg svg(plot_left + plot_width + margin, top + plot_height + margin);
    svg.text(margin, 44, "Which handwritten digits are typical", 24, Anchor::start, "#111", true);
    svg.text(
        margin, 67,
        fmt::format("PageRank of {} images with {} links from each to those most like it; ranks times their number",
                    images.count, graph.links.entries() / graph.nodes()),
        13.5, Anchor::start, quiet);
    draw_sheet(svg, images, ranking, order);
    draw_curves(svg, images, ranking, order);
    svg.save(file);
}

} // namespace ork::tool

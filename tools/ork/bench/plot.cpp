// SPDX-License-Identifier: MIT
// One panel a routine and variant: rate over size, ork thick, peers thin, the machine's limit dashed.
#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <map>
#include <set>

#include "bench/result.h"
#include "svg.h"

namespace ork::tool::bench {
namespace {

constexpr double panel_width = 460, panel_height = 300, left = 52, right = 14, top = 34, bottom = 40;

struct Curve {
    std::string name;
    bool wide;                                     // free to use wider registers
    std::vector<std::pair<double, double>> points; // size, rate
};

std::vector<Curve> curves(const std::vector<const Result*>& results)
{
    std::vector<Curve> all;
    const auto curve = [&](const std::string& name, bool wide) -> Curve& {
        for (Curve& c : all)
            if (c.name == name) return c;
        return all.emplace_back(Curve{name, wide, {}});
    };
    for (const Result* r : results) {
        for (const Figure& f : r->figures)
            if (f.rate > 0) curve(f.name, f.kind == peers::Kind::wide).points.emplace_back(r->size, f.rate);
        if (r->limit > 0) curve("limit", false).points.emplace_back(r->size, r->limit);
    }
    return all;
}

// A round step that divides the axis into four to eight.
double step_for(double highest)
{
    const double power = std::pow(10, std::floor(std::log10(highest / 4)));
    for (const double factor : {1.0, 2.0, 5.0, 10.0})
        if (highest / (factor * power) <= 7) return factor * power;
    return highest;
}

class Panel {
public:
    Panel(Svg& svg, double x, double y, const std::vector<const Result*>& results,
          std::map<std::string, size_t>& colours)
        : svg_(svg), x_(x), y_(y), curves_(curves(results)), colours_(colours)
    {
        const Result& first = *results.front();
        for (const Result* r : results) {
            low_ = std::min(low_, std::log2(r->size));
            high_ = std::max(high_, std::log2(r->size));
        }
        // The wide build may leave the frame; ork, the peers and the limit don't.
        for (const Curve& c : curves_)
            for (const auto& point : c.points)
                if (!c.wide) highest_ = std::max(highest_, point.second);
        highest_ *= 1.08;
        axes(first.routine + (first.variant.empty() ? "" : " " + first.variant), first.unit, results);
        for (const Curve& c : curves_)
            if (c.name != "ork") draw(c);
        for (const Curve& c : curves_)
            if (c.name == "ork") draw(c);
    }

private:
    double across(double size) const
    {
        return x_ + left + (panel_width - left - right) * (std::log2(size) - low_) / std::max(high_ - low_, 1e-9);
    }
    double up(double rate) const
    {
        return y_ + panel_height - bottom - (panel_height - top - bottom) * std::min(rate / highest_, 1.0);
    }

    void axes(const std::string& title, const std::string& unit, const std::vector<const Result*>& results)
    {
        svg_.text(x_ + left, y_ + 20, title, 14, Svg::Anchor::start, "#111", true);
        svg_.text_upwards(x_ + 14, y_ + (panel_height - bottom + top) / 2, unit, 12);
        const double step = step_for(highest_);
        for (double rate = 0; rate <= highest_; rate += step) {
            svg_.line(x_ + left, up(rate), x_ + panel_width - right, up(rate), rate == 0 ? "#888" : "#e6e6e6");
            svg_.text(x_ + left - 6, up(rate) + 4, fmt::format("{:g}", rate), 11, Svg::Anchor::end, "#444");
        }
        double last = -1e9;
        for (const Result* r : results) {
            const double at = across(r->size);
            svg_.line(at, up(0), at, up(0) + 4, "#888");
            if (at - last < 34) continue; // labels that would touch are left out
            const bool whole = r->size >= 1e6;
            svg_.text(at, up(0) + 18, whole ? fmt::format("{:.3g}M", r->size / 1e6) : fmt::format("{}", r->size), 11,
                      Svg::Anchor::middle, "#444");
            last = at;
        }
        svg_.text(x_ + (panel_width + left - right) / 2, y_ + panel_height - 6, "size", 11, Svg::Anchor::middle,
                  "#444");
    }

    void draw(const Curve& c)
    {
        std::vector<std::pair<double, double>> points; // a stretch within the frame
        for (const auto& [size, rate] : c.points) {
            if (rate <= highest_) points.emplace_back(across(size), up(rate));
            if (rate > highest_ || size == c.points.back().first) {
                draw_stretch(c, points);
                points.clear();
            }
        }
    }

    void draw_stretch(const Curve& c, const std::vector<std::pair<double, double>>& points)
    {
        if (c.name == "limit") return svg_.polyline(points, "#222", 1.3, "6 4");
        const char* colour = category_colour(colours_.at(c.name));
        svg_.polyline(points, colour, c.name == "ork" ? 3 : 1.4);
        for (const auto& [px, py] : points) svg_.circle(px, py, c.name == "ork" ? 3 : 1.8, colour);
    }

    Svg& svg_;
    double x_, y_, low_ = 1e9, high_ = -1e9, highest_ = 0;
    std::vector<Curve> curves_;
    std::map<std::string, size_t>& colours_;
};

} // namespace

void write_plot(const std::string& file, const Machine& machine, const std::vector<Result>& results)
{
    std::vector<std::vector<const Result*>> groups;
    std::map<std::string, size_t> colours = {{"ork", 3}}; // vermilion, whoever else takes part
    std::vector<std::string> names = {"ork"};
    std::set<std::string> wide;
    for (const Result& r : results) {
        if (r.size <= 0 || r.figures.empty()) continue;
        if (groups.empty() || groups.back().front()->routine != r.routine ||
            groups.back().front()->variant != r.variant)
            groups.emplace_back();
        groups.back().push_back(&r);
        for (const Figure& f : r.figures) {
            if (f.kind == peers::Kind::wide) wide.insert(f.name);
            if (colours.emplace(f.name, names.size() - (names.size() <= 3 ? 1 : 0)).second) names.push_back(f.name);
        }
    }
    std::erase_if(groups, [](const auto& g) { return g.size() < 2; });
    const size_t columns = groups.size() > 1 ? 2 : 1,
                 rows = std::max<size_t>((groups.size() + columns - 1) / columns, 1);
    constexpr double head = 78;
    Svg svg(panel_width * static_cast<double>(columns) + 20, head + panel_height * static_cast<double>(rows) + 10);
    svg.text(16, 26, "ork bench", 18, Svg::Anchor::start, "#111", true);
    svg.text(126, 26, machine.processor, 12, Svg::Anchor::start, "#666");
    double at = 16;
    const double width = panel_width * static_cast<double>(columns);
    double line = 50;
    if (std::any_of(results.begin(), results.end(), [](const Result& r) { return r.limit > 0; }))
        names.emplace_back("limit");
    for (const std::string& name : names) {
        const std::string words = name == "limit"        ? "128-bit limit"
                                  : wide.count(name) > 0 ? name + " (where it fits)"
                                                         : name;
        const double needed = 44 + 7.2 * static_cast<double>(words.size());
        if (at + needed > width) at = 16, line += 18;
        if (name == "limit")
            svg.line(at, line - 4, at + 22, line - 4, "#222", 1.3, "6 4");
        else
            svg.line(at, line - 4, at + 22, line - 4, category_colour(colours.at(name)), name == "ork" ? 3 : 1.6);
        svg.text(at + 28, line, words, 12);
        at += needed;
    }
    for (size_t g = 0; g < groups.size(); ++g)
        Panel(svg, 10 + panel_width * static_cast<double>(g % columns),
              head + panel_height * static_cast<double>(g / columns), groups[g], colours);
    if (groups.empty()) svg.text(16, head + 40, "No routine was measured at two sizes or more.", 13);
    svg.save(file);
}

} // namespace ork::tool::bench

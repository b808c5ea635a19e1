// SPDX-License-Identifier: MIT
#include "svg.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fmt/format.h>
#include <iterator>
#include <stdexcept>

namespace ork::tool {
namespace {

std::string dash(std::string_view dashes)
{
    return dashes.empty() ? std::string() : fmt::format(" stroke-dasharray=\"{}\"", dashes);
}

} // namespace

std::string escaped(std::string_view words)
{
    std::string out;
    for (const char c : words) {
        if (c == '&')
            out += "&amp;";
        else if (c == '<')
            out += "&lt;";
        else if (c == '>')
            out += "&gt;";
        else if (c == '"')
            out += "&quot;";
        else
            out += c;
    }
    return out;
}

Svg::Svg(double width, double height) : width_(width), height_(height) {}

void Svg::rect(double x, double y, double width, double height, std::string_view fill, double radius)
{
    fmt::format_to(std::back_inserter(body_),
                   "<rect x=\"{:.2f}\" y=\"{:.2f}\" width=\"{:.2f}\" height=\"{:.2f}\"{} fill=\"{}\"/>\n", x, y, width,
                   height, radius > 0 ? fmt::format(" rx=\"{:.1f}\"", radius) : "", fill);
}

void Svg::frame(double x, double y, double width, double height, std::string_view stroke)
{
    fmt::format_to(std::back_inserter(body_),
                   "<rect x=\"{:.2f}\" y=\"{:.2f}\" width=\"{:.2f}\" height=\"{:.2f}\" fill=\"none\" stroke=\"{}\"/>\n",
                   x, y, width, height, stroke);
}

void Svg::line(double x1, double y1, double x2, double y2, std::string_view stroke, double width,
               std::string_view dashes)
{
    fmt::format_to(
        std::back_inserter(body_),
        "<line x1=\"{:.2f}\" y1=\"{:.2f}\" x2=\"{:.2f}\" y2=\"{:.2f}\" stroke=\"{}\" stroke-width=\"{}\"{}/>\n", x1, y1,
        x2, y2, stroke, width, dash(dashes));
}

void Svg::circle(double x, double y, double radius, std::string_view fill, double opacity)
{
    fmt::format_to(std::back_inserter(body_), "<circle cx=\"{:.2f}\" cy=\"{:.2f}\" r=\"{}\" fill=\"{}\"{}/>\n", x, y,
                   radius, fill, opacity < 1 ? fmt::format(" fill-opacity=\"{}\"", opacity) : "");
}

void Svg::polyline(const std::vector<std::pair<double, double>>& points, std::string_view stroke, double width,
                   std::string_view dashes)
{
    body_ += "<polyline points=\"";
    for (const auto& [x, y] : points) fmt::format_to(std::back_inserter(body_), "{:.2f},{:.2f} ", x, y);
    fmt::format_to(std::back_inserter(body_),
                   "\" fill=\"none\" stroke=\"{}\" stroke-width=\"{}\" stroke-linejoin=\"round\"{}/>\n", stroke, width,
                   dash(dashes));
}

void Svg::image(double x, double y, double width, double height, std::string_view href)
{
    fmt::format_to(std::back_inserter(body_),
                   "<image x=\"{:.2f}\" y=\"{:.2f}\" width=\"{:.2f}\" height=\"{:.2f}\" href=\"{}\"/>\n", x, y, width,
                   height, href);
}

void Svg::text(double x, double y, std::string_view words, double size, Anchor anchor, std::string_view fill, bool bold)
{
    const char* side = anchor == Anchor::start ? "start" : anchor == Anchor::middle ? "middle" : "end";
    fmt::format_to(std::back_inserter(body_),
                   "<text x=\"{:.2f}\" y=\"{:.2f}\" font-size=\"{}\" text-anchor=\"{}\" fill=\"{}\"{}>{}</text>\n", x,
                   y, size, side, fill, bold ? " font-weight=\"600\"" : "", escaped(words));
}

void Svg::text_upwards(double x, double y, std::string_view words, double size)
{
    fmt::format_to(std::back_inserter(body_),
                   "<text x=\"{0:.2f}\" y=\"{1:.2f}\" font-size=\"{2}\" text-anchor=\"middle\" fill=\"#444\" "
                   "transform=\"rotate(-90 {0:.2f} {1:.2f})\">{3}</text>\n",
                   x, y, size, escaped(words));
}

std::string Svg::str() const
{
    return fmt::format("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"{0}\" height=\"{1}\" viewBox=\"0 0 {0} {1}\" "
                       "font-family=\"system-ui, 'DejaVu Sans', Helvetica, Arial, sans-serif\">\n"
                       "<rect width=\"{0}\" height=\"{1}\" fill=\"#ffffff\"/>\n{2}</svg>\n",
                       width_, height_, body_);
}

void Svg::save(const std::string& file) const
{
    std::FILE* out = std::fopen(file.c_str(), "w");
    if (out == nullptr) throw std::runtime_error(file + ": can't be written");
    const std::string all = str();
    const bool written = std::fwrite(all.data(), 1, all.size(), out) == all.size();
    if (std::fclose(out) != 0 || !written) throw std::runtime_error(file + ": can't be written");
}

std::string diverging(double t)
{
    // Ends and middle of a red-blue map; mixed in linear steps.
    constexpr double blue[] = {33, 102, 172}, white[] = {247, 247, 247}, red[] = {178, 24, 43};
    const double* end = t < 0 ? blue : red;
    const double share = std::pow(std::min(std::fabs(t), 1.0), 0.8);
    int c[3];
    for (int i = 0; i < 3; ++i) c[i] = static_cast<int>(std::lround(white[i] + (end[i] - white[i]) * share));
    return fmt::format("#{:02x}{:02x}{:02x}", c[0], c[1], c[2]);
}

std::string ink(double t)
{
    const int grey = static_cast<int>(std::lround(250 - 225 * std::clamp(t, 0.0, 1.0)));
    return fmt::format("#{0:02x}{0:02x}{0:02x}", grey);
}

const char* category_colour(size_t index)
{
    static constexpr const char* colours[] = {"#0072b2", "#e69f00", "#009e73", "#d55e00", "#cc79a7",
                                              "#56b4e9", "#8c6d1f", "#6a51a3", "#444444", "#7fb800"};
    return colours[index % std::size(colours)];
}

} // namespace ork::tool

// SPDX-License-Identifier: MIT
#include "demos/panels.h"

#include <algorithm>
#include <fstream>
#include <stdexcept>

#include "png.h"
#include "svg.h"

namespace ork::tool {

void draw_panels(const std::string& file, const std::vector<std::pair<std::string, const Picture*>>& panels,
                 double side)
{
    constexpr double margin = 24;
    Svg svg(margin + (side + margin) * static_cast<double>(panels.size()), side + 3 * margin + 8);
    double x = margin;
    for (const auto& [title, p] : panels) {
        const double unit = side / std::max(p->width, p->height);
        svg.text(x, margin + 8, title, 14, Svg::Anchor::start, "#111", true);
        svg.image(x, 2 * margin, p->width * unit, p->height * unit, data_uri(png(p->width, p->height, p->pixels)));
        x += side + margin;
    }
    svg.save(file);
}

void write_png(const std::string& file, const Picture& picture)
{
    std::ofstream out(file, std::ios::binary);
    out << png(picture.width, picture.height, picture.pixels);
    out.close();
    if (!out) throw std::runtime_error(file + ": can't be written");
}

} // namespace ork::tool

// SPDX-License-Identifier: MIT
// The handwritten digits that several demos look at, and how one of them is drawn.
#pragma once

#include <string>
#include <vector>

#include "svg.h"

namespace ork::tool {

struct Images {
    int count = 0;
    std::vector<int> pixels; // count x 64, an image a row, stored by columns, each 0 to 16
    std::vector<int> digit;  // what the image shows

    int pixel(int image, int at) const
    {
        return pixels[static_cast<size_t>(at) * static_cast<size_t>(count) + static_cast<size_t>(image)];
    }
};

constexpr int side = 8, pixels_each = side * side, darkest = 16;

Images read_digits(const std::string& file); // throws std::runtime_error

// 8 x 8 cells; colour(pixel) in reading order.
template <class Colour>
void draw_tile(Svg& svg, double x, double y, double size, const Colour& colour)
{
    const double cell = size / side;
    for (int row = 0; row < side; ++row)
        for (int column = 0; column < side; ++column) // a hair larger than a cell: no seams between neighbours
            svg.rect(x + column * cell, y + row * cell, cell + 0.3, cell + 0.3, colour(row * side + column));
    svg.frame(x, y, size, size, "#c8c8d0");
}

} // namespace ork::tool
